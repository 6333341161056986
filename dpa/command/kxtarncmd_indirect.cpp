#include "dpa/command/kxtarncmd_indirect.h"

#include "frontend/output_sink.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr const char *AGENT_SOCKET_PATH = "/var/tmp/kxtarncmd_api_socket";

// A message up to this many bytes is received on the stack.
constexpr size_t STACK_REPLY_SIZE = 4096;

// As in the kernel channel, failure lines carry this path and a number, one for each message.
constexpr const char *SOURCE_PATH = "dpa/command/kxtarncmd_indirect.cpp";
constexpr int PLACE_SIMPLE_EXCHANGE = 294;
constexpr int PLACE_ONE_BUFFER_CAPACITY = 321;
constexpr int PLACE_ONE_BUFFER_EXCHANGE = 339;
constexpr int PLACE_TWO_BUFFER_CAPACITY1 = 368;
constexpr int PLACE_TWO_BUFFER_CAPACITY2 = 382;
constexpr int PLACE_TWO_BUFFER_EXCHANGE = 395;

constexpr const char *EXCHANGE = "kx_tarncmd_socket_api";

// The parts of a message, in bytes and in the order of the message.
struct message_layout {
    size_t header;
    size_t data1;
    size_t data2;
    size_t total;
};

uint64_t data_size(uint32_t length, uint32_t capacity, uint32_t capacity_valid) {
    return uint64_t{length} + (capacity_valid != 0 ? capacity : 0);
}

// False for a message that a 32-bit process cannot hold.
bool lay_out(const kxdpa_request &record, uint32_t header_len, message_layout *layout) {
    const uint64_t data1 = data_size(record.len1, record.max1, record.max1_valid);
    const uint64_t data2 = (record.flags & KXDPA_FLAG_TWO) != 0
                               ? data_size(record.len2, record.max2, record.max2_valid)
                               : 0;
    const uint64_t total = header_len + data1 + data2;
    if (total > INT32_MAX) {
        return false;
    }
    *layout = {header_len, static_cast<size_t>(data1), static_cast<size_t>(data2),
               static_cast<size_t>(total)};
    return true;
}

void *buffer_at(uint32_t address) {
    return reinterpret_cast<void *>(address);
}

void copy_data(void *to, const void *from, size_t size) {
    if (to != nullptr && from != nullptr && size != 0) {
        memcpy(to, from, size);
    }
}

void fill_message(uint8_t *message, const message_layout &layout, const kxdpa_request *record) {
    memcpy(message, record, layout.header);
    copy_data(message + layout.header, buffer_at(record->buf1), layout.data1);
    copy_data(message + layout.header + layout.data1, buffer_at(record->buf2), layout.data2);
}

// The reply's head has the size of the record, whatever the size of the head that was sent.
void take_reply(const uint8_t *reply, const message_layout &layout, kxdpa_request *record) {
    const uint8_t *data = reply + sizeof *record;
    memcpy(&record->status, reply + offsetof(kxdpa_request, status), sizeof record->status);
    copy_data(buffer_at(record->buf1), data, layout.data1);
    copy_data(buffer_at(record->buf2), data + layout.data1, layout.data2);
}

bool send_message(int fd, const uint8_t *message, size_t size) {
    size_t sent = 0;
    while (sent < size) {
        kx_trace(kx_debug_print_kxtarncmd_indirect, KX_DEBUG_TRACE,
                 "%s: Sent (%d) bytes, not (%d), sending (%d) more\n", EXCHANGE,
                 static_cast<int>(sent), static_cast<int>(size), static_cast<int>(size - sent));
        const ssize_t written = send(fd, message + sent, size - sent, MSG_NOSIGNAL);
        if (written < 1) {
            kx_trace(kx_debug_print_kxtarncmd_indirect, KX_DEBUG_TRACE,
                     "%s: EOF writing more data %d\n", EXCHANGE, static_cast<int>(written));
            return false;
        }
        sent += static_cast<size_t>(written);
    }
    return true;
}

bool receive_message(int fd, uint8_t *message, size_t size) {
    size_t received = 0;
    while (received < size) {
        const ssize_t got = read(fd, message + received, size - received);
        if (got < 1) {
            kx_trace(kx_debug_print_kxtarncmd_indirect, KX_DEBUG_TRACE,
                     "%s: EOF reading bytes back %d\n", EXCHANGE, static_cast<int>(got));
            return false;
        }
        received += static_cast<size_t>(got);
    }
    return true;
}

// Send `message`, then receive `reply`, both of layout.total bytes.
bool exchange_messages(int fd, const uint8_t *message, uint8_t *reply, const message_layout &layout,
                       kxdpa_request *record) {
    if (!send_message(fd, message, layout.total) || !receive_message(fd, reply, layout.total)) {
        close(fd);
        kx_tarncmd_call_fd = -1;
        return false;
    }
    take_reply(reply, layout, record);
    return true;
}

// The exchange, with memory for the reply, NULL when there is none.
bool exchange_with_reply_buffer(int fd, uint8_t *reply, const message_layout &layout,
                                kxdpa_request *record) {
    if (reply == nullptr) {
        kx_trace(kx_debug_print_kxtarncmd_indirect, KX_DEBUG_FAILURE,
                 "%s: Failed allocating return buffer\n", EXCHANGE);
        return false;
    }
    // Cleared, so that a missing buffer's place in the message shows the agent nothing of this
    // process.
    auto *message = static_cast<uint8_t *>(calloc(1, layout.total));
    if (message == nullptr) {
        kx_trace(kx_debug_print_kxtarncmd_indirect, KX_DEBUG_FAILURE,
                 "%s: Failed allocating data\n", EXCHANGE);
        return false;
    }
    fill_message(message, layout, record);
    kx_trace(kx_debug_print_kxtarncmd_indirect, KX_DEBUG_TRACE, "%s: Sending (%d) bytes across\n",
             EXCHANGE, static_cast<int>(layout.total));
    const bool exchanged = exchange_messages(fd, message, reply, layout, record);
    free(message);
    return exchanged;
}

bool exchange(int fd, kxdpa_request *record, uint32_t header_len) {
    if (fd < 0) {
        fd = dpa_platform_open();
        if (fd == -1) {
            return false;
        }
    }
    message_layout layout{};
    if (!lay_out(*record, header_len, &layout)) {
        return exchange_with_reply_buffer(fd, nullptr, layout, record);
    }
    if (layout.total <= STACK_REPLY_SIZE) {
        uint8_t reply[STACK_REPLY_SIZE];
        return exchange_with_reply_buffer(fd, reply, layout, record);
    }
    auto *reply = static_cast<uint8_t *>(malloc(layout.total));
    const bool exchanged = exchange_with_reply_buffer(fd, reply, layout, record);
    free(reply);
    return exchanged;
}

kxdpa_request make_request(int opcode, uint32_t arg, uint8_t flags) {
    kxdpa_request request =
        kxdpa_make_request(KXDPA_SOCKET_MARKER, KXDPA_SOCKET_VERSION, opcode, arg, flags);
    // A failed exchange sets the status itself; an agent that echoes the head leaves the status at
    // success.
    request.status = KXDPA_STATUS_SUCCESS;
    return request;
}

int exchange_record(kxdpa_request *request) {
    return kx_tarncmd_socket_api(kx_tarncmd_call_fd, request, sizeof *request);
}

uint32_t fail_without_capacity(int place, int opcode) {
    kx_trace(kx_debug_print_kxtarncmd_indirect, KX_DEBUG_TRACE, "%s/%d: Failed, opcode %d\n",
             SOURCE_PATH, place, opcode);
    return KXDPA_STATUS_NO_CAPACITY;
}

void trace_status(const kxdpa_request &request) {
    kx_trace(kx_debug_print_kxtarncmd_indirect, KX_DEBUG_TRACE, "di status %d\n",
             static_cast<int>(request.status));
}

} // namespace

int kx_tarncmd_call_fd = -1;

int dpa_platform_open() {
    dpa_platform_close();
    kx_tarncmd_call_fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (kx_tarncmd_call_fd == -1) {
        kx_trace(kx_debug_print_kxtarncmd_indirect, KX_DEBUG_FAILURE,
                 "%s: Error opening local socket\n", __func__);
        return -1;
    }
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    strncpy(address.sun_path, AGENT_SOCKET_PATH, sizeof address.sun_path - 1);
    const size_t length = offsetof(sockaddr_un, sun_path) + strlen(address.sun_path) + 1;
    if (connect(kx_tarncmd_call_fd, reinterpret_cast<const sockaddr *>(&address),
                static_cast<socklen_t>(length)) == -1) {
        const int reason = errno;
        kx_trace(kx_debug_print_kxtarncmd_indirect, KX_DEBUG_FAILURE,
                 "%s: Failed connect local socket err: %d - %s\n", __func__, reason,
                 strerror(reason));
        dpa_platform_close();
    }
    return kx_tarncmd_call_fd;
}

int dpa_platform_close() {
    if (kx_tarncmd_call_fd != -1) {
        close(kx_tarncmd_call_fd);
    }
    kx_tarncmd_call_fd = -1;
    return 0;
}

int kx_tarncmd_api_exit() {
    return kx_tarncmd_call_fd == -1 ? -1 : close(kx_tarncmd_call_fd);
}

int kx_tarncmd_socket_api(int fd, kxdpa_request *record, uint32_t header_len) {
    if (record == nullptr) {
        kx_trace(kx_debug_print_kxtarncmd_indirect, KX_DEBUG_TRACE, "%s: Invalid args passed \n",
                 EXCHANGE);
        return -1;
    }
    if (!exchange(fd, record, std::max<uint32_t>(header_len, sizeof *record))) {
        record->status = KXDPA_STATUS_NO_EXCHANGE;
        return -1;
    }
    return 0;
}

uint32_t kx_tarncmd_call_indirect1(int opcode, uint32_t arg, uint8_t flags, void *buf, uint32_t len,
                                   const uint32_t *max_ref) {
    kxdpa_request request = make_request(opcode, arg, flags);
    kxdpa_attach(buf, len, &request.buf1, &request.len1);
    if (!kxdpa_give_capacity(flags, max_ref, &request.max1, &request.max1_valid)) {
        return fail_without_capacity(PLACE_ONE_BUFFER_CAPACITY, opcode);
    }
    const int result = exchange_record(&request);
    if (result == -1) {
        kx_trace(kx_debug_print_kxtarncmd_indirect, KX_DEBUG_TRACE,
                 "%s/%d: Failed: %d, opcode %d\n", SOURCE_PATH, PLACE_ONE_BUFFER_EXCHANGE, result,
                 opcode);
        trace_status(request);
    }
    return request.status;
}

uint32_t kx_tarncmd_call_indirect2(int opcode, uint32_t arg, uint8_t flags, void *buf1,
                                   uint32_t len1, const uint32_t *max1_ref, void *buf2,
                                   uint32_t len2, const uint32_t *max2_ref) {
    kxdpa_request request = make_request(opcode, arg, flags);
    kxdpa_attach(buf1, len1, &request.buf1, &request.len1);
    kxdpa_attach(buf2, len2, &request.buf2, &request.len2);
    if (!kxdpa_give_capacity(flags, max1_ref, &request.max1, &request.max1_valid)) {
        return fail_without_capacity(PLACE_TWO_BUFFER_CAPACITY1, opcode);
    }
    if (!kxdpa_give_capacity(flags, max2_ref, &request.max2, &request.max2_valid)) {
        return fail_without_capacity(PLACE_TWO_BUFFER_CAPACITY2, opcode);
    }
    if (exchange_record(&request) == -1) {
        kx_trace(kx_debug_print_kxtarncmd_indirect, KX_DEBUG_TRACE, "%s/%d: Failed, opcode %d\n",
                 SOURCE_PATH, PLACE_TWO_BUFFER_EXCHANGE, opcode);
        trace_status(request);
    }
    return request.status;
}

int kx_tarncmd_call_indirect_simple(uint16_t opcode, uint32_t arg, uint8_t flags, void *buf,
                                    uint32_t len) {
    kxdpa_request request = make_request(opcode, arg, flags);
    kxdpa_attach(buf, len, &request.buf1, &request.len1);
    if (exchange_record(&request) == -1) {
        kx_trace(kx_debug_print_kxtarncmd_indirect, KX_DEBUG_FAILURE, "%s/%d: Failed\n",
                 SOURCE_PATH, PLACE_SIMPLE_EXCHANGE);
    }
    return static_cast<int>(request.status);
}
