// tarncmd: one command line against the HMX of this host.
#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/hmx_cmd.h"
#include "frontend/output_sink.h"
#include "frontend/run_state.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

// Holds the joined command line, or the help text; a run never needs both.
char cmdbuffer[20480];

constexpr const char *TRUNCATED_HELP = "***WARNING*** Help text has been truncated.";

// Ask for the card domain. The driver refuses this to a tool of another version; the domain itself
// is not used. Returns the request's status.
uint32_t check_version() {
    uint32_t domain = 0;
    uint32_t unused_capacity = 1;
    return kx_dpa_call_indirect1(KXDPA_OP_CARD_DOMAIN, 0, KXDPA_FLAG_OUT, &domain, sizeof domain,
                                 &unused_capacity);
}

// Join the words with single blanks into cmdbuffer. False when they do not fit: the beginning of a
// cut line could be another command, one that clears more than the operator asked for.
bool join_arguments(int count, char *const words[]) {
    size_t length = 0;
    for (int i = 0; i < count; ++i) {
        const size_t room = sizeof cmdbuffer - length;
        const int written = snprintf(cmdbuffer + length, room, "%s%s", i == 0 ? "" : " ", words[i]);
        if (written < 0 || static_cast<size_t>(written) >= room) {
            return false;
        }
        length += static_cast<size_t>(written);
    }
    return true;
}

void print_help() {
    const int length = hmx_cmd_help(cmdbuffer, sizeof cmdbuffer);
    const bool truncated = length >= static_cast<int>(sizeof cmdbuffer);
    if (truncated) {
        puts(TRUNCATED_HELP);
    }
    printf("%s", cmdbuffer);
    if (truncated) {
        puts(TRUNCATED_HELP);
    }
}

// Tell the operator what to do without the driver. `error` is errno of the open, or 0.
void explain_no_driver(int error) {
    fflush(stdout);
    fprintf(stderr,
            "tarncmd: %s: %s%s; \"tarnlab tarncmd help\" shows the commands on a simulated host, "
            "\"man tarncmd\" explains them\n",
            KX_DEVICE_PATH,
            error != 0 ? strerror(error) : "the HMX there is of another version than this tarncmd",
            error == EACCES ? " (try as root)" : "");
}

// The usual words to ask a program for help; no command has them.
bool asks_for_help(const char *word) {
    return strcmp(word, "--help") == 0 || strcmp(word, "-h") == 0 || strcmp(word, "--version") == 0;
}

} // namespace

int main(int argc, char *argv[]) {
    kx_run_from_shell = true;
    kx_has_unbuilt_groups = false;
    const bool help = argc <= 1 || (argc == 2 && strcmp(argv[1], "help") == 0);
    if (!help && !join_arguments(argc - 1, argv + 1)) {
        fprintf(
            stderr,
            "tarncmd: the command line is longer than %zu characters and nothing of it was run: "
            "give fewer commands at once\n",
            sizeof cmdbuffer - 1);
        return -1;
    }
    if (kx_dpa_api_init() != 0) {
        const int error = errno;
        puts("Error initializing kx_dpa_api_init()");
        explain_no_driver(error);
        return -1;
    }
    const uint32_t status = check_version();
    if (status == KXDPA_STATUS_VERSION_MISMATCH) {
        puts("Cannot execute tarncmd: tarncmd utility version does not match the running HMX "
             "version.");
        explain_no_driver(0);
        return -1;
    }
    if (status != KXDPA_STATUS_SUCCESS) {
        kx_print("Failed to get card domain - returned error %d\n", static_cast<int>(status));
    }
    hmx_cmd_init();
    if (help) {
        print_help();
    } else {
        hmx_cmd_run(cmdbuffer, static_cast<int>(strlen(cmdbuffer)), 0);
    }
    fflush(stdout);
    if (kx_has_unbuilt_groups) {
        fputs("tarncmd: there are multicast groups, whose tables are not built in this version\n",
              stderr);
    }
    if (argc == 2 && asks_for_help(argv[1])) {
        fputs("tarncmd: version " HMX_CMD_VERSION "; \"tarncmd help\" lists the commands\n",
              stderr);
    }
    hmx_cmd_exit();
    return kx_run_broken ? -1 : 0;
}
