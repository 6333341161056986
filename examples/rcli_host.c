/*
 * A host process of the command layer: runs one command as the switch's remote CLI does and prints
 * its pages.
 *
 *     rcli_host show l2 all
 *
 * A command that pages takes its cookie as the two words "cookie N" after everything else:
 * "show port cookie 20", "show vlan cookie 100", "show lacp hostdata cookie 21", "show l2 all
 * cookie 3". Commands that do not page leave the continuation word at 0 and are one page.
 *
 * A page that the buffer cannot hold loses its last rows. Asking for less is no way out: "show l2
 * all" counts its cookies in bridge domains, so the MAC table of one bridge domain is never parted,
 * and one of more than some 600 MACs does not fit. Then the exit value is 1, with a line on
 * standard error.
 */
#include <hmx_cmd.h>

#include <stdio.h>
#include <string.h>

/* Bytes of one command, its NUL included: the command layer runs no longer one. */
#define COMMAND_SIZE 256
#define MOST_PAGES   1048576L

/* Join the words with blanks. Returns 0, or -1 when they do not fit. */
static int join_words(char command[COMMAND_SIZE], int count, char *const words[]) {
    size_t length = 0;
    command[0] = '\0';
    for (int i = 0; i < count; i++) {
        const size_t room = COMMAND_SIZE - length;
        const int written = snprintf(command + length, room, i == 0 ? "%s" : " %s", words[i]);
        if (written < 0 || (size_t)written >= room) {
            return -1;
        }
        length += (size_t)written;
    }
    return 0;
}

/* Run the text and print what it left in the buffer. Returns the continuation word. */
static uint32_t print_page(const char *text, int *rows_lost) {
    hmx_rcli_buffer[0] = '\0';
    hmx_rcli_buffer_ptr = hmx_rcli_buffer;
    hmx_rcli_entry_start_ptr = NULL;
    hmx_rcli_print_len = 0;
    hmx_rcli_more_output = 0;
    hmx_cmd_run(text, (int)strlen(text), 1);
    fputs(hmx_rcli_buffer, stdout);
    if (hmx_rcli_buffer_ptr != hmx_rcli_buffer + strlen(hmx_rcli_buffer)) {
        *rows_lost = 1;
    }
    return hmx_rcli_more_output;
}

/*
 * Print page after page. A cookie that comes back unchanged would ask for the same page again, and
 * a driver that answers in circles has no last page. Returns 0, or -1 when something is missing.
 */
static int print_pages(const char *command) {
    char text[COMMAND_SIZE];
    int rows_lost = 0;
    uint32_t previous = 0;
    long pages = 1;
    uint32_t cookie = print_page(command, &rows_lost);
    while (cookie != 0 && cookie != previous && pages++ < MOST_PAGES) {
        const int length = snprintf(text, sizeof text, "%s cookie %u", command, (unsigned)cookie);
        if (length < 0 || (size_t)length >= sizeof text) {
            fputs("rcli_host: no room for the cookie\n", stderr);
            return -1;
        }
        previous = cookie;
        cookie = print_page(text, &rows_lost);
    }
    if (rows_lost) {
        fputs("rcli_host: rows were lost: a page is larger than the buffer\n", stderr);
        return -1;
    }
    return 0;
}

int main(int argc, char *argv[]) {
    char command[COMMAND_SIZE];
    int result;
    if (argc < 2 || join_words(command, argc - 1, argv + 1) != 0) {
        fputs("Usage: rcli_host COMMAND WORDS...\n", stderr);
        return 2;
    }
    if (kx_dpa_api_init() != 0) {
        fputs("rcli_host: cannot open the driver device\n", stderr);
        return 1;
    }
    hmx_cmd_init();
    hmx_rcli_fromdpa = 1;
    result = print_pages(command);
    hmx_cmd_exit();
    kx_dpa_api_exit();
    return result == 0 ? 0 : 1;
}
