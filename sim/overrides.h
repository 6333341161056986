// Finds the answers that a host file replaces.
#ifndef SIM_OVERRIDES_H
#define SIM_OVERRIDES_H

#include "dpa/userspace/kxdpa_request.h"
#include "host/override.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <unordered_map>
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
    // The rules that ask for the same requests.
    struct group {
        uint32_t seen = 0;                            // requests so far
        std::unordered_map<uint32_t, size_t> by_time; // first rule of each time, 0 for each time
    };

    std::unordered_map<std::string, group> groups_;
};

#endif
