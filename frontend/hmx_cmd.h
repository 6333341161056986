/*
 * The command layer as a host process sees it.
 *
 * tarncmd itself calls these entry points for one command line and exits. A process that serves the
 * switch's remote CLI calls them again and again, in agent-driven mode: it points the output sink
 * at hmx_rcli_buffer, sets hmx_rcli_fromdpa, runs a command text, sends the buffer on, and asks for
 * the next page with the continuation word that the command left behind:
 *
 *     hmx_rcli_fromdpa = 1;
 *     hmx_rcli_buffer_ptr = hmx_rcli_buffer;      before every page
 *     hmx_rcli_entry_start_ptr = NULL;            before every page
 *     hmx_rcli_print_len = 0;                     before every page
 *     hmx_rcli_more_output = 0;                   before every page
 *     hmx_cmd_run(text, (int)strlen(text), 1);
 *     length = hmx_rcli_buffer_ptr - hmx_rcli_buffer, at most HMX_RCLI_BUFFER_SIZE
 *     hmx_rcli_more_output != 0: run the same command with "cookie <hmx_rcli_more_output>" next
 *
 * All state here is one set per process and is not locked: one command runs at a time.
 * This header can be included from C and from C++.
 */
#ifndef HMX_CMD_H
#define HMX_CMD_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Bytes of the remote-CLI output buffer; its end bounds every buffered write. */
#define HMX_RCLI_BUFFER_SIZE 50000

/*
 * Open the kernel request channel (the driver device). Returns 0, or -1 when the device cannot be
 * opened. Call it once before the first hmx_cmd_run.
 */
int kx_dpa_api_init(void);

/* Close the kernel request channel. Returns 0. Call it last. */
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

/* The remote-CLI output buffer. The host reads it after a run. */
extern char hmx_rcli_buffer[HMX_RCLI_BUFFER_SIZE];

/*
 * Next write position; NULL (at start) selects standard output. The host sets it to the buffer's
 * start before each run. After a run a position at or past the buffer's end says that output was
 * cut or dropped: the buffer then holds HMX_RCLI_BUFFER_SIZE bytes at most.
 */
extern char *hmx_rcli_buffer_ptr;

/*
 * Start of the entry being written, owned by the host. While it is NULL a write needs 201 free
 * bytes in the buffer; while it is set a write goes in as long as one byte is free.
 */
extern char *hmx_rcli_entry_start_ptr;

/* Characters that the last buffered write needed, also when it was cut. The host clears it. */
extern int32_t hmx_rcli_print_len;

/*
 * Continuation word of paging commands: 0 when the output is complete, otherwise the cookie for the
 * next page. Commands that page set it; others leave it alone, so the host clears it before a run.
 */
extern uint32_t hmx_rcli_more_output;

/* Non-zero selects agent-driven mode: paged commands print one page and honour a cookie. */
extern int32_t hmx_rcli_fromdpa;

/* Reserved for the host; nothing here reads or writes it. */
extern int32_t hmx_rcli_dpa_loga_log;

/*
 * Debug words, one a module, 0x87 at start. A trace line is printed to standard output when its bit
 * is set: value 16 for ordinary traces, 4 for length and parse complaints, 1 for some failures.
 */
extern uint32_t kx_debug_print_kxdump;             /* command handlers */
extern uint32_t kx_debug_print_hmx_cmds;           /* command entry and card settings */
extern uint32_t kx_debug_print_kxdpa_indirect;     /* kernel request channel */
extern uint32_t kx_debug_print_kxtarncmd_indirect; /* agent socket channel */
extern uint32_t kx_debug_print_kxcmd;              /* command matcher */
extern uint32_t kx_debug_print_kxstrings;          /* text parsing */
extern uint32_t kx_debug_print_dpa_platform;       /* platform open and close */
extern uint32_t kx_debug_print_dpa_main;           /* the agent's main loop; no line here */

#ifdef __cplusplus
}
#endif

#endif
