// One request on its way through the model: what came in and what goes back.
#ifndef SIM_EXCHANGE_H
#define SIM_EXCHANGE_H

#include "dpa/userspace/kxdpa_request.h"
#include "host/host.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

// Status words of the model. The channel gives meaning to 1, 2 and 6 only.
constexpr uint32_t SIM_STATUS_MALFORMED = 22;      // the record breaks the driver's rules
constexpr uint32_t SIM_STATUS_UNKNOWN_OPCODE = 38; // nobody answers it
constexpr uint32_t SIM_STATUS_NOT_FOUND = HOST_STATUS_NOT_FOUND;

struct exchange {
    const kxdpa_request &request;
    std::vector<uint8_t> input; // what buffer 1 carried: len1 bytes, or a text up to its NUL
    std::vector<uint8_t> reply; // a fixed-size reply is filled up with zeros or cut
    uint32_t status = KXDPA_STATUS_SUCCESS;
    std::optional<uint32_t> returned; // length handed back in the capacity word, if not the reply's

    // The input as a record; what the caller left out is zero.
    template <typename record> record input_as() const {
        static_assert(std::is_trivially_copyable_v<record>);
        record value{};
        std::memcpy(&value, input.data(), std::min(sizeof value, input.size()));
        return value;
    }

    // Answer with a record (or a plain number).
    template <typename record> void reply_with(const record &value) {
        static_assert(std::is_trivially_copyable_v<record>);
        const auto *bytes = reinterpret_cast<const uint8_t *>(&value);
        reply.assign(bytes, bytes + sizeof value);
    }

    // Answer with a text and its terminator.
    void reply_with_text(std::string_view text) {
        reply.assign(text.begin(), text.end());
        reply.push_back(0);
    }

    // Answer with a value, or refuse one that this driver does not tell.
    template <typename record> void tell(const std::optional<record> &value) {
        if (!value) {
            fail();
        } else if constexpr (std::is_same_v<record, std::string>) {
            reply_with_text(*value);
        } else {
            reply_with(*value);
        }
    }

    void fail(uint32_t with_status = SIM_STATUS_NOT_FOUND) {
        status = with_status;
        reply.clear();
    }
};

#endif
