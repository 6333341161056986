// One request and its answer, as the described host sees them: on the way through the model, or as
// a driver has answered it.
#ifndef SIM_EXCHANGE_H
#define SIM_EXCHANGE_H

#include "dpa/userspace/kxdpa_request.h"
#include "host/host.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

// Status words of the model. The channel gives meaning to 1, 2 and 6 only.
constexpr uint32_t SIM_STATUS_MALFORMED = 22;      // the record breaks the driver's rules
constexpr uint32_t SIM_STATUS_UNKNOWN_OPCODE = 38; // nobody answers it

// Where the walks of a host stand, so that the next step of a long one is found at once: places in
// the L2 table of a bridge domain.
using walk_places = std::map<uint32_t, size_t>;

struct exchange {
    kxdpa_request request{};
    std::span<const uint8_t> input{}; // what buffer 1 carried: len1 bytes, or a text up to its NUL
    std::vector<uint8_t> reply{};     // a fixed-size reply is filled up with zeros or cut
    uint32_t status = KXDPA_STATUS_SUCCESS;
    std::optional<uint32_t>
        returned{}; // length handed back in the capacity word, if not the reply's
    walk_places *places = nullptr;

    bool is_told() const {
        return status == KXDPA_STATUS_SUCCESS;
    }

    // The input as a record; what the caller left out is zero. Likewise the reply.
    template <typename record> record input_as() const {
        return as<record>(input);
    }
    template <typename record> record reply_as() const {
        return as<record>(reply);
    }

    // Answer with a record (or a plain number).
    template <typename record> void reply_with(const record &value) {
        static_assert(std::is_trivially_copyable_v<record>);
        const auto *bytes = reinterpret_cast<const uint8_t *>(&value);
        reply.assign(bytes, bytes + sizeof value);
    }

    // Answer with what an optional or a pointer holds, a text with its terminator, or refuse where
    // it holds nothing.
    template <typename holder> void tell(const host &state, const holder &value) {
        if (!value) {
            fail(state);
            // What a compilation leaves out looks alike. NOLINTNEXTLINE(bugprone-branch-clone)
        } else if constexpr (requires { value->has_value(); }) {
            tell(state, *value);
        } else if constexpr (requires { value->c_str(); }) {
            reply.assign(value->begin(), value->end());
            reply.push_back(0);
        } else {
            reply_with(*value);
        }
    }

    // What the driver told, into the description; empty where it refused.
    template <typename record> void learn(std::optional<record> &value) const {
        if (!is_told()) {
            value.reset();
        } else if constexpr (std::is_same_v<record, std::string>) {
            value.emplace(reply.begin(), std::find(reply.begin(), reply.end(), 0));
        } else {
            value = reply_as<record>();
        }
    }

    // Refuse, with the host's own status.
    void fail(const host &state) {
        status = state.refusal_status;
        reply.clear();
    }

private:
    template <typename record> static record as(std::span<const uint8_t> bytes) {
        static_assert(std::is_trivially_copyable_v<record>);
        record value{};
        if (!bytes.empty()) {
            std::memcpy(&value, bytes.data(), std::min(sizeof value, bytes.size()));
        }
        return value;
    }
};

#endif
