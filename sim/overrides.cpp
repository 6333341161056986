#include "sim/overrides.h"

#include <algorithm>

namespace {

// What a rule asks for, or what a request that it asks for is like.
std::string group_key(uint16_t opcode, const uint32_t *argument,
                      const std::span<const uint8_t> *input) {
    std::string key = std::to_string(opcode);
    key += argument == nullptr ? "any" : "=" + std::to_string(*argument);
    if (input != nullptr) {
        key += ':';
        key.append(input->begin(), input->end());
    }
    return key;
}

} // namespace

override_index::override_index(const std::vector<override_rule> &rules) {
    for (size_t place = 0; place < rules.size(); place++) {
        const override_rule &rule = rules[place];
        std::span<const uint8_t> input;
        if (rule.in) {
            input = *rule.in;
        }
        const std::string key = group_key(rule.opcode, rule.argument ? &*rule.argument : nullptr,
                                          rule.in ? &input : nullptr);
        groups_[key].by_time.emplace(rule.only_time, place);
    }
}

size_t override_index::find(const kxdpa_request &request, std::span<const uint8_t> input) {
    size_t first = NONE;
    if (groups_.empty()) {
        return first;
    }
    for (const uint32_t *argument : {&request.arg, static_cast<const uint32_t *>(nullptr)}) {
        for (const auto *in : {&input, static_cast<std::span<const uint8_t> *>(nullptr)}) {
            const auto found = groups_.find(group_key(request.opcode, argument, in));
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
