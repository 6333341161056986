// Finds the answers that a host file replaces.
#ifndef SIM_OVERRIDES_H
#define SIM_OVERRIDES_H

#include "dpa/userspace/kxdpa_request.h"
#include "host/override.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <tuple>
#include <vector>

// A recording has a rule for each of many thousand requests, so the rules are found by what they
// ask for.
class override_index {
public:
    static constexpr size_t NONE = SIZE_MAX;

    override_index() = default;
    explicit override_index(const std::vector<override_rule> &rules);

    // The place of the first rule that holds for the request, NONE for none. `input` is what buffer
    // 1 carried. Every request that a rule asks for is counted for its `time`, whether or not the
    // rule is the first.
    size_t find(const kxdpa_request &request, std::span<const uint8_t> input);

private:
    // What a rule asks for; any argument or input when absent.
    using question =
        std::tuple<uint16_t, std::optional<uint32_t>, std::optional<std::vector<uint8_t>>>;

    // The rules that ask for the same requests.
    struct group {
        uint32_t seen = 0;                  // requests so far
        std::map<uint32_t, size_t> by_time; // first rule of each time, 0 for each time
    };

    std::map<question, group> groups_;
};

#endif
