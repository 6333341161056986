/*
 * The command layer as a host process sees it.
 *
 * tarncmd itself calls these entry points for one command line and exits. A process that serves the
 * switch's remote CLI calls them again and again, in agent-driven mode: it points the output sink
 * at hmx_rcli_buffer, runs a command text, sends the buffer on, and asks for the next page with the
 * continuation word that the command left behind:
 *
 *     kx_dpa_api_init(), hmx_cmd_init()           once
 *     hmx_rcli_fromdpa = 1;                       once
 *     hmx_rcli_buffer[0] = '\0';                  before every run, as are the next four
 *     hmx_rcli_buffer_ptr = hmx_rcli_buffer;
 *     hmx_rcli_entry_start_ptr = NULL;
 *     hmx_rcli_print_len = 0;
 *     hmx_rcli_more_output = 0;
 *     hmx_cmd_run(text, (int)strlen(text), 1);
 *     the page is the NUL-terminated text in hmx_rcli_buffer
 *     hmx_rcli_buffer_ptr is not where that text ends: the page did not fit, its end is lost
 *     hmx_rcli_more_output != 0: the next page is the same text with " cookie N" after it, N being
 *         hmx_rcli_more_output in decimal; the same N twice in a row ends the table as 0 does,
 *         and so does page 1048576: a driver may answer in circles
 *     hmx_cmd_exit(), kx_dpa_api_exit()           once
 *
 * Nothing here resets the sink: what the host leaves in it, the next run finds. A command that
 * refuses its cookie leaves hmx_rcli_more_output alone, so a host that does not clear it takes the
 * old word for a next page. A page that ends with LTL 0, which a driver may show, leaves the word
 * 0: the table seems to end there.
 *
 * All state is one set per process and is not locked: one command runs at a time, and no two
 * threads may be in here at once. Lines about refused and unknown commands, complaints of commands
 * that set something, and trace lines go to standard output, never into the buffer. Nothing here
 * writes to standard error, which is the host's own; the shell that "show card" asks for the
 * management address inherits it and may.
 *
 * Everything is 32-bit x86 code. This header can be included from C and from C++.
 */
#ifndef HMX_CMD_H
#define HMX_CMD_H

#ifndef __i386__
#error "hmx_cmd.h is for 32-bit x86 programs: compile with -m32"
#endif

/* The version of this header and its libraries. */
#define HMX_CMD_VERSION "1.3.0"

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* These names, and no others, leave the library. */
#pragma GCC visibility push(default)

/* Bytes of the remote-CLI output buffer; its end bounds every buffered write. */
#define HMX_RCLI_BUFFER_SIZE 50000

/*
 * Open the kernel request channel (the driver device). Returns 0, or -1 when the device cannot be
 * opened. Call it once before the first hmx_cmd_run; a second call opens the channel anew.
 */
int kx_dpa_api_init(void);

/* Close the kernel request channel, if it is open. Returns 0. Call it last. */
int kx_dpa_api_exit(void);

/* Set-up hook of the command layer, to be called once before the first command. Returns 0. */
int hmx_cmd_init(void);

/* Tear-down hook of the command layer, to be called once after the last command. */
void hmx_cmd_exit(void);

/*
 * Run a command text. It may hold several commands, separated by ";" or control characters; one
 * command is at most 255 bytes. "length" bounds the text, which needs no NUL. With a non-zero
 * "from_agent", rows that are not allowed from the agent are refused with a line on standard
 * output. The handlers' own results are not reported: returns "length" unchanged.
 */
int hmx_cmd_run(const char *text, int length, int from_agent);

/*
 * Write the command catalogue into "buffer" of "size" bytes, NUL-terminated. Returns the characters
 * written, or "size" itself when the text did not fit (the buffer then holds what did). Sorts the
 * command table in place.
 */
int hmx_cmd_help(char *buffer, unsigned int size);

/*
 * Clear the drop counters of all pipeline stages, which no command does. Returns the driver's
 * status: 0, or why it refused. Needs the open request channel.
 */
uint32_t kx_port_drops_clear(void);

/*
 * The remote-CLI output buffer. Every write ends with a NUL inside the buffer, so a cut text is
 * HMX_RCLI_BUFFER_SIZE - 1 characters at most. A run that prints nothing leaves the buffer alone.
 */
extern char hmx_rcli_buffer[HMX_RCLI_BUFFER_SIZE];

/*
 * Next write position; NULL (at start) selects standard output. The host sets it to the buffer's
 * start before each run. Writes that find no room are dropped but move it all the same, by the
 * length of the write before, and may move it past the buffer's end. So after a run everything
 * fitted when it stands at the text's end,
 *
 *     hmx_rcli_buffer_ptr == hmx_rcli_buffer + strlen(hmx_rcli_buffer)
 *
 * and when it stands after the end, what came last is lost. A page is made of whole entries, and one entry
 * alone may be larger than the buffer: the MAC table of one bridge domain, for one.
 */
extern char *hmx_rcli_buffer_ptr;

/*
 * Start of the entry being written, owned by the host: the command layer only reads it. While it is
 * NULL a write needs 201 free bytes in the buffer; while it is set a write goes in as long as one
 * byte is free, and is cut at the end.
 */
extern char *hmx_rcli_entry_start_ptr;

/*
 * Characters that the last write into the buffer needed, also when it was cut. The host clears it
 * before a run, as a first write that finds no room moves the position by it.
 */
extern int32_t hmx_rcli_print_len;

/*
 * Continuation word of paging commands: 0 when the output is complete, otherwise the cookie for the
 * next page, the key of the last entry. Commands that do not page leave it alone, so the host
 * clears it before a run.
 */
extern uint32_t hmx_rcli_more_output;

/*
 * Non-zero selects agent-driven mode: paged commands print one page and honour a cookie. 0 at
 * start; the host sets it. It is independent of hmx_cmd_run's from_agent, which refuses rows.
 */
extern int32_t hmx_rcli_fromdpa;

/* Reserved for the host; nothing here reads or writes it. */
extern int32_t hmx_rcli_dpa_loga_log;

/*
 * Debug words, one a module, 0x87 at start. A trace line is printed to standard output when its bit
 * is set: value 16 for ordinary traces, 4 for length and parse complaints, 1 for some failures, and
 * 8 for what a few settings sent (the card's name and UUID, vmnic flags, the MAC-move timer) and
 * for MAC addresses that were completed before they were read. 2 and 128 print nothing.
 */
extern uint32_t kx_debug_print_kxdump;             /* command handlers */
extern uint32_t kx_debug_print_hmx_cmds;           /* command entry and card settings */
extern uint32_t kx_debug_print_kxdpa_indirect;     /* kernel request channel */
extern uint32_t kx_debug_print_kxtarncmd_indirect; /* agent socket channel */
extern uint32_t kx_debug_print_kxcmd;              /* command matcher */
extern uint32_t kx_debug_print_kxstrings;          /* text parsing */
extern uint32_t kx_debug_print_dpa_platform;       /* what the host's shell tells of its address */
extern uint32_t kx_debug_print_dpa_main;           /* the agent's main loop; no line here */

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif
