// The one print step of every handler, and the trace lines.
//
// A handler does not know whether it prints to a terminal or into the remote-CLI buffer: kx_print
// decides by the sink state of hmx_cmd.h. Trace lines always go to standard output.
#ifndef FRONTEND_OUTPUT_SINK_H
#define FRONTEND_OUTPUT_SINK_H

#include "frontend/hmx_cmd.h"

// Bits of a debug word.
enum kx_debug_bit : uint32_t {
    KX_DEBUG_FAILURE = 1,   // some failure lines, on by default
    KX_DEBUG_COMPLAINT = 4, // length and parse complaints, on by default
    KX_DEBUG_DETAIL = 8,    // a few settings traces, off by default
    KX_DEBUG_TRACE = 16,    // ordinary traces, off by default
};

// Print through the output sink. Without a buffer pointer this is printf. With one, the text is
// formatted at the pointer, up to the buffer's end, when there is room (see
// hmx_rcli_entry_start_ptr), and dropped otherwise. Either way the pointer advances by
// hmx_rcli_print_len, the length that the last write needed. Never fails.
void kx_print(const char *format, ...) __attribute__((format(printf, 1, 2)));

// Print one line to standard output after the time stamp "Mon dd hh:mm:ss.uuuuuu: ", whatever the
// debug words are. When standard output has grown past 1 MiB, it is then sought back to its start,
// so that a trace log in a file stays bounded.
void kx_print_stamped(const char *format, ...) __attribute__((format(printf, 1, 2)));

// The same line, printed only when `bit` (kx_debug_bit) is set in the module's `debug_word`. A
// macro: requests are traced by the hundred thousand, and a trace that is off must cost no more
// than one test.
#define kx_trace(debug_word, bit, ...)                                                             \
    do {                                                                                           \
        if (((debug_word) & (bit)) != 0) {                                                         \
            kx_print_stamped(__VA_ARGS__);                                                         \
        }                                                                                          \
    } while (0)

#endif
