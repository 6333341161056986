#include "sim/overrides.h"

#include <algorithm>

override_index::override_index(const std::vector<override_rule> &rules) {
    for (size_t place = 0; place < rules.size(); place++) {
        const override_rule &rule = rules[place];
        groups_[{rule.opcode, rule.argument, rule.in}].by_time.emplace(rule.only_time, place);
    }
}

size_t override_index::find(const kxdpa_request &request, std::span<const uint8_t> input) {
    size_t first = NONE;
    if (groups_.empty()) {
        return first;
    }
    // As they stand in the question: an argument or any, an input or any.
    const std::optional<uint32_t> arguments[] = {request.arg, std::nullopt};
    const std::optional<std::vector<uint8_t>> inputs[] = {
        std::vector<uint8_t>(input.begin(), input.end()), std::nullopt};
    for (const auto &argument : arguments) {
        for (const auto &in : inputs) {
            const auto found = groups_.find({request.opcode, argument, in});
            if (found == groups_.end()) {
                continue;
            }
            group &asked = found->second;
            asked.seen++;
            for (const uint32_t time : {uint32_t{0}, asked.seen}) {
                const auto rule = asked.by_time.find(time);
                first = std::min(first, rule == asked.by_time.end() ? NONE : rule->second);
            }
        }
    }
    return first;
}
