// The request record: one numbered question to the data path agent (DPA).
//
// The kernel channel hands the record to the driver by address (kxdpa_indirect.h); the agent's
// socket channel sends the same record as the head of a message.
#ifndef DPA_USERSPACE_KXDPA_REQUEST_H
#define DPA_USERSPACE_KXDPA_REQUEST_H

#include <cstddef>
#include <cstdint>

#if __SIZEOF_POINTER__ != 4
#error "tarncmd is a 32-bit program: compile it with -m32"
#endif

// Transfer flags; values combine by OR.
enum kxdpa_flag : uint8_t {
    KXDPA_FLAG_OUT = 1,     // the reply goes into buffer 1 (buffer 2 with KXDPA_FLAG_TWO)
    KXDPA_FLAG_IN = 2,      // buffer 1 carries len1 bytes of input
    KXDPA_FLAG_MAX = 4,     // variable length: the capacity is passed in max1 (and max2)
    KXDPA_FLAG_TWO = 8,     // buffer 1 holds the key, buffer 2 receives the reply
    KXDPA_FLAG_NODATA = 16, // no buffer: the request is opcode and arg alone
};

// Little-endian, read and written in place by the driver. Addresses are 32-bit user addresses.
struct kxdpa_request {
    uint16_t opcode;     // the DPA operation
    uint8_t marker;      // tells the channels apart, see below
    uint8_t version;     // of the record, as the channel writes it
    uint8_t flags;       // kxdpa_flag values
    uint8_t reserved[3]; // zero
    uint32_t arg;        // index, LTL or selector; its meaning belongs to the opcode
    uint32_t status;     // written by the driver: 0 success, else the operation's error code
    uint32_t len1;       // bytes of data in buffer 1: input, or a fixed-size reply
    uint32_t len2;       // bytes of buffer 2, 0 without one
    uint32_t max1;       // capacity of buffer 1 in bytes; after the request the length returned
    uint32_t max2;       // the same for buffer 2
    uint32_t max1_valid; // 1 when max1 is given
    uint32_t max2_valid; // 1 when max2 is given
    uint32_t buf1;       // address of buffer 1, 0 for none
    uint32_t buf2;       // address of buffer 2, 0 for none
};

static_assert(sizeof(kxdpa_request) == 48);
static_assert(offsetof(kxdpa_request, opcode) == 0);
static_assert(offsetof(kxdpa_request, marker) == 2);
static_assert(offsetof(kxdpa_request, version) == 3);
static_assert(offsetof(kxdpa_request, flags) == 4);
static_assert(offsetof(kxdpa_request, reserved) == 5);
static_assert(offsetof(kxdpa_request, arg) == 8);
static_assert(offsetof(kxdpa_request, status) == 12);
static_assert(offsetof(kxdpa_request, len1) == 16);
static_assert(offsetof(kxdpa_request, len2) == 20);
static_assert(offsetof(kxdpa_request, max1) == 24);
static_assert(offsetof(kxdpa_request, max2) == 28);
static_assert(offsetof(kxdpa_request, max1_valid) == 32);
static_assert(offsetof(kxdpa_request, max2_valid) == 36);
static_assert(offsetof(kxdpa_request, buf1) == 40);
static_assert(offsetof(kxdpa_request, buf2) == 44);

// Marker and version bytes of the two channels.
constexpr uint8_t KXDPA_KERNEL_MARKER = 0x7C;
constexpr uint8_t KXDPA_KERNEL_VERSION = 1;
constexpr uint8_t KXDPA_SOCKET_MARKER = 0x03;
constexpr uint8_t KXDPA_SOCKET_VERSION = 0;

// Status words that the channels know; any other non-zero value belongs to the operation.
constexpr uint32_t KXDPA_STATUS_SUCCESS = 0;
constexpr uint32_t KXDPA_STATUS_NO_EXCHANGE = 1;      // the request never reached its peer
constexpr uint32_t KXDPA_STATUS_NO_CAPACITY = 2;      // KXDPA_FLAG_MAX without a capacity
constexpr uint32_t KXDPA_STATUS_VERSION_MISMATCH = 6; // tool and running HMX differ

// How the call forms of both channels fill their record.

// A record without buffers and capacities; the opcode is cut to its field. The status is preset, so
// that a request that never reached its peer reads as a failure.
inline kxdpa_request kxdpa_make_request(uint8_t marker, uint8_t version, int opcode, uint32_t arg,
                                        uint8_t flags) {
    // Field by field: to clear the whole record first would cost more than all else here.
    kxdpa_request request;
    request.opcode = static_cast<uint16_t>(opcode);
    request.marker = marker;
    request.version = version;
    request.flags = flags;
    request.reserved[0] = request.reserved[1] = request.reserved[2] = 0;
    request.arg = arg;
    request.status = KXDPA_STATUS_NO_EXCHANGE;
    request.len1 = request.len2 = 0;
    request.max1 = request.max2 = 0;
    request.max1_valid = request.max2_valid = 0;
    request.buf1 = request.buf2 = 0;
    return request;
}

// Point one of the record's buffers at `len` bytes.
inline void kxdpa_attach(void *buf, uint32_t len, uint32_t *buf_field, uint32_t *len_field) {
    *buf_field = reinterpret_cast<uintptr_t>(buf);
    *len_field = len;
}

// With KXDPA_FLAG_MAX, copy the capacity from `max_ref`; without it, do not change the two words.
// Returns false when the flag asks for a capacity and there is none.
inline bool kxdpa_give_capacity(uint8_t flags, const uint32_t *max_ref, uint32_t *max_field,
                                uint32_t *valid_field) {
    if ((flags & KXDPA_FLAG_MAX) == 0) {
        return true;
    }
    if (max_ref == nullptr) {
        return false;
    }
    *max_field = *max_ref;
    *valid_field = 1;
    return true;
}

#endif
