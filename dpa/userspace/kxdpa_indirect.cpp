#include "dpa/userspace/kxdpa_indirect.h"

#include "frontend/output_sink.h"

#include <cstring>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

// The driver has one request code; the opcode selects the operation.
constexpr unsigned long REQUEST_CODE = 0;

// Failure lines name their place in the channel by this path and a number, one for each message.
// Operators search for the numbers, so they stay whatever happens to the lines of this file.
constexpr const char *SOURCE_PATH = "dpa/userspace/kxdpa_indirect.cpp";
constexpr int PLACE_SIMPLE_IOCTL = 105;
constexpr int PLACE_ONE_BUFFER_CAPACITY = 134;
constexpr int PLACE_ONE_BUFFER_IOCTL = 152;
constexpr int PLACE_TWO_BUFFER_CAPACITY1 = 190;
constexpr int PLACE_TWO_BUFFER_CAPACITY2 = 204;
constexpr int PLACE_TWO_BUFFER_IOCTL = 217;

kxdpa_request make_request(int opcode, uint32_t arg, uint8_t flags) {
    return kxdpa_make_request(KXDPA_KERNEL_MARKER, KXDPA_KERNEL_VERSION, opcode, arg, flags);
}

void trace_request(const char *function, int opcode) {
    kx_trace(kx_debug_print_kxdpa_indirect, KX_DEBUG_TRACE,
             "%s: Generating ioctl() for opcode %d\n", function, opcode);
}

uint32_t fail_without_capacity(int place, int opcode) {
    kx_trace(kx_debug_print_kxdpa_indirect, KX_DEBUG_TRACE, "%s/%d: Failed, opcode %d\n",
             SOURCE_PATH, place, opcode);
    return KXDPA_STATUS_NO_CAPACITY;
}

} // namespace

int kx_dpa_call_fd = -1;

int kx_platform_open() {
    kx_platform_close();
    kx_dpa_call_fd = open(KX_DEVICE_PATH, O_RDONLY | O_CLOEXEC);
    return kx_dpa_call_fd;
}

int kx_platform_close() {
    if (kx_dpa_call_fd != -1) {
        close(kx_dpa_call_fd);
    }
    kx_dpa_call_fd = -1;
    return 0;
}

int kx_dpa_api_init() {
    return kx_platform_open() == -1 ? -1 : 0;
}

int kx_dpa_api_exit() {
    return kx_platform_close();
}

uint32_t kx_dpa_call_indirect1(int opcode, uint32_t arg, uint8_t flags, void *buf, uint32_t len,
                               uint32_t *max_ref) {
    trace_request("kx_dpa_call_indirect1", opcode);
    kxdpa_request request = make_request(opcode, arg, flags);
    kxdpa_attach(buf, len, &request.buf1, &request.len1);
    if (!kxdpa_give_capacity(flags, max_ref, &request.max1, &request.max1_valid)) {
        return fail_without_capacity(PLACE_ONE_BUFFER_CAPACITY, opcode);
    }
    const int result = ioctl(kx_dpa_call_fd, REQUEST_CODE, &request);
    if (result == -1) {
        kx_trace(kx_debug_print_kxdpa_indirect, KX_DEBUG_TRACE, "%s/%d: Failed: %d, opcode %d\n",
                 SOURCE_PATH, PLACE_ONE_BUFFER_IOCTL, result, opcode);
        kx_trace(kx_debug_print_kxdpa_indirect, KX_DEBUG_TRACE, "di status %d\n",
                 static_cast<int>(request.status));
    }
    if ((flags & KXDPA_FLAG_MAX) != 0) {
        *max_ref = request.max1;
    }
    return request.status;
}

uint32_t kx_dpa_call_indirect2(int opcode, uint32_t arg, uint8_t flags, void *buf1, uint32_t len1,
                               uint32_t *max1_ref, void *buf2, uint32_t len2, uint32_t *max2_ref) {
    trace_request("kx_dpa_call_indirect2", opcode);
    kxdpa_request request = make_request(opcode, arg, flags);
    kxdpa_attach(buf1, len1, &request.buf1, &request.len1);
    kxdpa_attach(buf2, len2, &request.buf2, &request.len2);
    if (!kxdpa_give_capacity(flags, max1_ref, &request.max1, &request.max1_valid)) {
        return fail_without_capacity(PLACE_TWO_BUFFER_CAPACITY1, opcode);
    }
    if (!kxdpa_give_capacity(flags, max2_ref, &request.max2, &request.max2_valid)) {
        return fail_without_capacity(PLACE_TWO_BUFFER_CAPACITY2, opcode);
    }
    if (ioctl(kx_dpa_call_fd, REQUEST_CODE, &request) == -1) {
        kx_trace(kx_debug_print_kxdpa_indirect, KX_DEBUG_TRACE, "%s/%d: Failed, opcode %d\n",
                 SOURCE_PATH, PLACE_TWO_BUFFER_IOCTL, opcode);
        kx_trace(kx_debug_print_kxdpa_indirect, KX_DEBUG_TRACE, "di status %d\n",
                 static_cast<int>(request.status));
    }
    if ((flags & KXDPA_FLAG_MAX) != 0) {
        *max1_ref = request.max1;
        *max2_ref = request.max2;
    }
    return request.status;
}

int kx_dpa_call_indirect_simple(uint16_t opcode, uint32_t arg, uint8_t flags, void *buf,
                                uint32_t len) {
    trace_request("kx_dpa_call_indirect_simple", opcode);
    kxdpa_request request = make_request(opcode, arg, flags);
    kxdpa_attach(buf, len, &request.buf1, &request.len1);
    if (ioctl(kx_dpa_call_fd, REQUEST_CODE, &request) == -1) {
        kx_trace(kx_debug_print_kxdpa_indirect, KX_DEBUG_TRACE, "%s/%d: Failed\n", SOURCE_PATH,
                 PLACE_SIMPLE_IOCTL);
    }
    return static_cast<int>(request.status);
}

uint32_t kx_dpa_set_text(kxdpa_opcode opcode, uint32_t arg, const char *text, uint32_t capacity) {
    char sent[KXDPA_TEXT_CAPACITY] = {};
    memcpy(sent, text, strnlen(text, sizeof sent - 1));
    return kx_dpa_call_indirect1(opcode, arg, KXDPA_FLAG_IN | KXDPA_FLAG_MAX, sent, 0, &capacity);
}
