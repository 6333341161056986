#include "frontend/output_sink.h"

#include "frontend/run_state.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <sys/time.h>

namespace {

// A write outside an entry needs this many free bytes, so that no row is begun that does not fit.
constexpr size_t ROOM_FOR_A_ROW = 201;

// Bytes in which a row is formatted for standard output; printf formats a longer text.
constexpr size_t ROW_SIZE = 512;

// Standard output is sought back to its start once it has passed this position.
constexpr off_t TRACE_LOG_LIMIT = 0x100000;

constexpr uint32_t DEBUG_WORD_AT_START = 0x87;

// The month, day and time of day within ctime's text.
constexpr int STAMP_START = 4;
constexpr int STAMP_LENGTH = 15;

char *buffer_end() {
    return hmx_rcli_buffer + HMX_RCLI_BUFFER_SIZE;
}

// Positions are compared as numbers: after a cut write the pointer is past the buffer.
bool has_room(uintptr_t position) {
    const auto end = reinterpret_cast<uintptr_t>(buffer_end());
    if (position >= end) {
        return false;
    }
    return hmx_rcli_entry_start_ptr != nullptr || end - position >= ROOM_FOR_A_ROW;
}

// printf copies each of the about twenty pieces of a row into the stream, which takes longer than
// all of the formatting. Here the stream gets the finished row in one piece.
__attribute__((format(printf, 1, 0))) void print_to_stdout(const char *format, va_list arguments) {
    const char *const conversion = strchrnul(format, '%');
    if (*conversion == '\0') {
        fwrite(format, 1, static_cast<size_t>(conversion - format), stdout);
        return;
    }
    char row[ROW_SIZE];
    va_list again;
    va_copy(again, arguments);
    const int length = vsnprintf(row, sizeof row, format, arguments);
    if (length >= 0 && static_cast<size_t>(length) < sizeof row) {
        fwrite(row, 1, static_cast<size_t>(length), stdout);
    } else {
        vprintf(format, again);
    }
    va_end(again);
}

} // namespace

char hmx_rcli_buffer[HMX_RCLI_BUFFER_SIZE];
char *hmx_rcli_buffer_ptr;
char *hmx_rcli_entry_start_ptr;
int32_t hmx_rcli_print_len;
uint32_t hmx_rcli_more_output;
int32_t hmx_rcli_fromdpa;
int32_t hmx_rcli_dpa_loga_log;

uint32_t kx_debug_print_kxdump = DEBUG_WORD_AT_START;
uint32_t kx_debug_print_hmx_cmds = DEBUG_WORD_AT_START;
uint32_t kx_debug_print_kxdpa_indirect = DEBUG_WORD_AT_START;
uint32_t kx_debug_print_kxtarncmd_indirect = DEBUG_WORD_AT_START;
uint32_t kx_debug_print_kxcmd = DEBUG_WORD_AT_START;
uint32_t kx_debug_print_kxstrings = DEBUG_WORD_AT_START;
uint32_t kx_debug_print_dpa_platform = DEBUG_WORD_AT_START;
uint32_t kx_debug_print_dpa_main = DEBUG_WORD_AT_START;

void kx_print(const char *format, ...) {
    kx_has_printed = true;
    va_list arguments;
    va_start(arguments, format);
    if (hmx_rcli_buffer_ptr == nullptr) {
        // The pointer stays NULL even when a host left a length from an earlier buffered run: a
        // terminal run never starts buffering by itself.
        print_to_stdout(format, arguments);
    } else {
        const auto position = reinterpret_cast<uintptr_t>(hmx_rcli_buffer_ptr);
        if (has_room(position)) {
            hmx_rcli_print_len =
                vsnprintf(hmx_rcli_buffer_ptr, reinterpret_cast<uintptr_t>(buffer_end()) - position,
                          format, arguments);
        }
        // Dropped writes advance the pointer, too. It may move far past the end but must not wrap
        // around into the buffer again.
        const auto advance =
            static_cast<uintptr_t>(hmx_rcli_print_len < 0 ? 0 : hmx_rcli_print_len);
        if (advance <= UINTPTR_MAX - position) {
            hmx_rcli_buffer_ptr = reinterpret_cast<char *>(position + advance);
        }
    }
    va_end(arguments);
}

void kx_print_stamped(const char *format, ...) {
    kx_has_printed = true;
    timeval now{};
    gettimeofday(&now, nullptr);
    const time_t seconds = now.tv_sec;
    char stamp[32] = "";
    if (ctime_r(&seconds, stamp) == nullptr) {
        stamp[STAMP_START] = '\0';
    }
    printf("%.*s.%06d: ", STAMP_LENGTH, stamp + STAMP_START, static_cast<int>(now.tv_usec));
    va_list arguments;
    va_start(arguments, format);
    vprintf(format, arguments);
    va_end(arguments);
    if (ftello(stdout) > TRACE_LOG_LIMIT) {
        fseeko(stdout, 0, SEEK_SET);
    }
}
