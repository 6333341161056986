#include "dpa/userspace/kxdpa_request.h"

kxdpa_request kxdpa_make_request(uint8_t marker, uint8_t version, int opcode, uint32_t arg,
                                 uint8_t flags) {
    kxdpa_request request{};
    request.opcode = static_cast<uint16_t>(opcode);
    request.marker = marker;
    request.version = version;
    request.flags = flags;
    request.arg = arg;
    request.status = KXDPA_STATUS_NO_EXCHANGE;
    return request;
}

void kxdpa_attach(void *buf, uint32_t len, uint32_t *buf_field, uint32_t *len_field) {
    *buf_field = reinterpret_cast<uintptr_t>(buf);
    *len_field = len;
}

bool kxdpa_give_capacity(uint8_t flags, const uint32_t *max_ref, uint32_t *max_field,
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
