// Which bytes of its caller a request names.
#ifndef SIM_TRANSFER_H
#define SIM_TRANSFER_H

#include "dpa/userspace/kxdpa_request.h"

#include <cstdint>

inline bool has_flag(const kxdpa_request &request, kxdpa_flag flag) {
    return (request.flags & flag) != 0;
}

// True when buffer 1 carries something: len1 bytes, or without a length a text of at most max1.
inline bool has_input(const kxdpa_request &request) {
    return has_flag(request, KXDPA_FLAG_IN) || has_flag(request, KXDPA_FLAG_TWO);
}

// Where a reply goes, and what the caller has room for: a capacity comes on top of the length.
struct reply_place {
    uint32_t address = 0; // 0 for none
    uint32_t room = 0;
    uint32_t *returned = nullptr; // the capacity word; nullptr for a fixed-size reply
};

inline reply_place reply_place_of(kxdpa_request &record) {
    if (!has_flag(record, KXDPA_FLAG_OUT)) {
        return {};
    }
    const bool two = has_flag(record, KXDPA_FLAG_TWO);
    uint32_t *const capacity = two ? &record.max2 : &record.max1;
    const uint32_t length = two ? record.len2 : record.len1;
    const uint32_t address = two ? record.buf2 : record.buf1;
    if (!has_flag(record, KXDPA_FLAG_MAX)) {
        return {address, length, nullptr};
    }
    return {address, length + *capacity, capacity};
}

#endif
