// The request channel's system call, on its way to the driver, and what the driver answers.
//
// The program is linked with --wrap=ioctl, so that the call comes through here, in a dynamic and in
// a static program alike. Calls that nobody listens to, and calls on other descriptors, pass
// through untouched.
#ifndef CAPTURE_DRIVER_CALL_H
#define CAPTURE_DRIVER_CALL_H

#include "dpa/userspace/kxdpa_request.h"
#include "host/host_file.h"
#include "sim/transfer.h"

#include <cstdint>
#include <cstring>
#include <optional>
#include <span>

// Stands for the system call: fills the record, and returns 0 or an errno.
using call_listener = int(kxdpa_request &record);

// Who gets the calls from now on; nullptr for the driver.
void listen_to_calls(call_listener *listener);

inline uint8_t *bytes_at(uint32_t address) {
    return reinterpret_cast<uint8_t *>(static_cast<uintptr_t>(address));
}

// What a request carries: its length in bytes, or a text up to its NUL; nothing without input.
inline std::span<const uint8_t> input_of(const kxdpa_request &request) {
    if (!has_input(request) || request.buf1 == 0) {
        return {};
    }
    const uint8_t *bytes = bytes_at(request.buf1);
    return {bytes, request.len1 != 0
                       ? request.len1
                       : strnlen(reinterpret_cast<const char *>(bytes), request.max1)};
}

// What the caller finds afterwards.
struct driver_answer {
    int error = 0; // errno of a failed call, 0 for none
    uint32_t status = 0;
    // The whole span that the driver may write, however much of it was written; none for a request
    // without a reply, and for a refused one that left it alone. In the caller's memory.
    std::optional<std::span<const uint8_t>> reply{};
    std::optional<uint32_t> returned{}; // the capacity word, where there is one
};

// Let the driver answer the record in place.
driver_answer ask_driver(kxdpa_request &record);

// --- An answer as an override of a host file ---

// More rules make a file that is too large for anybody, whatever they say.
constexpr size_t RULES_LIMIT = HOST_FILE_LIMIT / 32;

// The capacity word of an answer where it is neither the reply's size nor, without a reply, as it
// was asked with.
std::optional<uint32_t> odd_length(const kxdpa_request &asked, const driver_answer &told);

// The rule that gives this answer to this question, and to no other one. REQUIRES: the answer has
// no capacity word but an odd one.
override_rule rule_for(const kxdpa_request &asked, std::optional<std::span<const uint8_t>> input,
                       const driver_answer &told);

#endif
