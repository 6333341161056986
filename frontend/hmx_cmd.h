/*
 * The command layer as a host process sees it.
 *
 * tarncmd itself calls these functions for one command line and exits. A process that serves the
 * switch's remote CLI calls them again and again, in agent-driven mode. It points the output sink
 * at hmx_rcli_buffer, runs a command text, sends the buffer on, and asks for the next page with the
 * key that the command stored in hmx_rcli_more_output:
 *
 *     kx_dpa_api_init(), hmx_cmd_init()           once
 *     hmx_rcli_fromdpa = 1;                       once
 *     hmx_rcli_buffer[0] = '\0';                  before every run, like the next four
 *     hmx_rcli_buffer_ptr = hmx_rcli_buffer;
 *     hmx_rcli_entry_start_ptr = NULL;
 *     hmx_rcli_print_len = 0;
 *     hmx_rcli_more_output = 0;
 *     hmx_cmd_run(text, (int)strlen(text), 1);
 *     the page is the NUL-terminated text in hmx_rcli_buffer
 *     hmx_rcli_buffer_ptr is not where that text ends: the page did not fit, its end is lost
 *     hmx_rcli_more_output is not 0: for the next page run the same text with " cookie N" after it;
 *         N is hmx_rcli_more_output in decimal
 *     the table ends when N is 0; stop also when N is the same twice in a row, and at page 1048576,
 *         since a driver may answer in circles
 *     hmx_cmd_exit(), kx_dpa_api_exit()           once
 *
 * The library never resets the sink: the next run finds what the host left in it. A command that
 * refuses its cookie does not change hmx_rcli_more_output, so a host that did not clear it takes
 * the old key for that of a next page. A driver may show LTL 0; a page that ends with it stores 0,
 * so the table seems to end there.
 *
 * The process has one set of state, without locks: run one command at a time, and call these
 * functions from one thread at a time. Lines about refused and unknown commands, complaints of
 * commands that set something, and trace lines go to standard output, never into the buffer. The
 * library writes nothing to standard error, which is the host's own. "show card" starts a shell to
 * get the management address; that shell inherits standard error and may write to it.
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

/* The library exports these names and no others. */
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
 * Clear the drop counters of all pipeline stages. No command does that. Returns the driver's
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
 * start before each run. A write that finds no room is dropped, but it still moves the position, by
 * the length of the write before, maybe past the buffer's end. So everything fitted when, after a
 * run, the position is at the text's end,
 *
 *     hmx_rcli_buffer_ptr == hmx_rcli_buffer + strlen(hmx_rcli_buffer)
 *
 * and when it is after the text's end, the end of the page is lost. A page consists of whole
 * entries, and a single entry, such as the MAC table of one bridge domain, may be larger than the
 * buffer.
 */
extern char *hmx_rcli_buffer_ptr;

/*
 * Start of the entry being written. The host owns it; the command layer only reads it. While it is
 * NULL, a write needs 201 free bytes in the buffer. While it is set, a write needs one free byte,
 * and is cut at the buffer's end.
 */
extern char *hmx_rcli_entry_start_ptr;

/*
 * Characters that the last write into the buffer needed, also when it was cut. The host clears it
 * before a run, because a first write that finds no room moves the position by it.
 */
extern int32_t hmx_rcli_print_len;

/*
 * Continuation word of paging commands: 0 when the output is complete, otherwise the cookie for the
 * next page, which is the key of the last entry. Commands that do not page do not change it, so the
 * host clears it before a run.
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
 * Debug words, one for each module, 0x87 at start. A trace line goes to standard output when its
 * bit is set: 16 for ordinary traces, 4 for length and parse complaints, 1 for some failures, and 8
 * for what a few settings sent (the card's name and UUID, vmnic flags, the MAC-move timer) and for
 * MAC addresses with a digit missing, which were completed before they were read. 2 and 128 print
 * nothing.
 */
extern uint32_t kx_debug_print_kxdump;             /* command handlers */
extern uint32_t kx_debug_print_hmx_cmds;           /* command entry and card settings */
extern uint32_t kx_debug_print_kxdpa_indirect;     /* kernel request channel */
extern uint32_t kx_debug_print_kxtarncmd_indirect; /* agent socket channel */
extern uint32_t kx_debug_print_kxcmd;              /* command matcher */
extern uint32_t kx_debug_print_kxstrings;          /* text parsing */
extern uint32_t kx_debug_print_dpa_platform;       /* the host's address as its shell says it */
extern uint32_t kx_debug_print_dpa_main;           /* the agent's main loop; prints no line here */

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif
