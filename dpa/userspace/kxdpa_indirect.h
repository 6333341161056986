// The kernel request channel: numbered requests to the HMX driver, one ioctl each.
//
// Every call fills a kxdpa_request, hands it to the driver and returns the record's status word
// unchanged: 0 success, anything else a failure, KXDPA_STATUS_NO_EXCHANGE when the ioctl itself
// failed. Nothing is retried. The channel has one descriptor for the process and no lock.
#ifndef DPA_USERSPACE_KXDPA_INDIRECT_H
#define DPA_USERSPACE_KXDPA_INDIRECT_H

#include "dpa/userspace/kxdpa_opcodes.h"
#include "dpa/userspace/kxdpa_request.h"
#include "frontend/hmx_cmd.h" // kx_dpa_api_init, kx_dpa_api_exit

constexpr const char *KX_DEVICE_PATH = "/vmfs/devices/char/vmkdriver/kestrel";

// Descriptor of the driver device, -1 while it is not open.
extern int kx_dpa_call_fd;

// Open the driver device read-only into kx_dpa_call_fd; one that is open already is replaced.
// Returns the descriptor, -1 on failure.
int kx_platform_open();

// Close kx_dpa_call_fd, unless it is -1, and set it to -1. Returns 0.
int kx_platform_close();

// The one-buffer request. `len` is the size in bytes of a fixed-size reply or of the input. With
// KXDPA_FLAG_MAX, `max_ref` gives the buffer's capacity in bytes and receives the length that the
// driver stored (never trust it beyond the capacity). A null `max_ref` then gives
// KXDPA_STATUS_NO_CAPACITY without a request. Without the flag, `max_ref` is ignored.
uint32_t kx_dpa_call_indirect1(int opcode, uint32_t arg, uint8_t flags, void *buf, uint32_t len,
                               uint32_t *max_ref);

// The two-buffer request: key in buffer 1, reply in buffer 2. With KXDPA_FLAG_MAX both capacities
// must be given.
uint32_t kx_dpa_call_indirect2(int opcode, uint32_t arg, uint8_t flags, void *buf1, uint32_t len1,
                               uint32_t *max1_ref, void *buf2, uint32_t len2, uint32_t *max2_ref);

// The request without capacities.
int kx_dpa_call_indirect_simple(uint16_t opcode, uint32_t arg, uint8_t flags, void *buf,
                                uint32_t len);

// The request shapes of the handlers, named by what they do.

// Fixed-size reply into `reply`.
template <typename Reply> uint32_t kx_dpa_get(kxdpa_opcode opcode, uint32_t arg, Reply *reply) {
    return kx_dpa_call_indirect1(opcode, arg, KXDPA_FLAG_OUT, reply, sizeof *reply, nullptr);
}

// `record` holds the key on the way in and the reply on the way out.
template <typename Record>
uint32_t kx_dpa_exchange(kxdpa_opcode opcode, uint32_t arg, Record *record) {
    return kx_dpa_call_indirect1(opcode, arg, KXDPA_FLAG_IN | KXDPA_FLAG_OUT, record,
                                 sizeof *record, nullptr);
}

// `input` is sent, nothing comes back.
template <typename Input>
uint32_t kx_dpa_set(kxdpa_opcode opcode, uint32_t arg, const Input *input) {
    Input sent = *input;
    return kx_dpa_call_indirect1(opcode, arg, KXDPA_FLAG_IN, &sent, sizeof sent, nullptr);
}

// The largest capacity with which a text is sent, its NUL included.
constexpr uint32_t KXDPA_TEXT_CAPACITY = 256;

// Send `text` with `capacity` in place of its length. The driver may read that many bytes, so it
// reads a zero-filled copy with the first 255 characters of the text. REQUIRES: capacity <=
// KXDPA_TEXT_CAPACITY.
uint32_t kx_dpa_set_text(kxdpa_opcode opcode, uint32_t arg, const char *text, uint32_t capacity);

// Variable-length reply into `buffer` of `*capacity` bytes; `*capacity` becomes the length that the
// driver stored.
inline uint32_t kx_dpa_get_variable(kxdpa_opcode opcode, uint32_t arg, void *buffer,
                                    uint32_t *capacity) {
    return kx_dpa_call_indirect1(opcode, arg, KXDPA_FLAG_OUT | KXDPA_FLAG_MAX, buffer, 0, capacity);
}

// Opcode and argument alone.
inline uint32_t kx_dpa_command(kxdpa_opcode opcode, uint32_t arg) {
    return kx_dpa_call_indirect1(opcode, arg, KXDPA_FLAG_NODATA, nullptr, 0, nullptr);
}

#endif
