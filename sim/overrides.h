// Finds the answers that a host file replaces.
#ifndef SIM_OVERRIDES_H
#define SIM_OVERRIDES_H

#include "dpa/userspace/kxdpa_request.h"
#include "host/override.h"

#include <cstdint>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

// A recording has a rule for each of many thousand requests, so the rules are found by what they
// ask for. The list may be replaced between two requests, as a whole; the count of requests starts
// again then.
class override_index {
public:
    // The first rule that holds for the request, nullptr for none. `input` is what buffer 1
    // carried. Every request that a rule asks for is counted for its `time`, whether or not the
    // rule is the first.
    const override_rule *find(std::vector<override_rule> &rules, const kxdpa_request &request,
                              std::span<const uint8_t> input);

private:
    // The rules that ask for the same requests.
    struct group {
        uint32_t seen = 0;                            // requests so far
        std::unordered_map<uint32_t, size_t> by_time; // first rule of each time, 0 for each time
    };

    void index(std::vector<override_rule> &rules);

    std::unordered_map<std::string, group> groups_;
    size_t indexed_ = 0; // rules
};

#endif
