#include "sim/overrides.h"

#include <algorithm>
#include <limits>

namespace {

// What a rule asks for, or what a request that it asks for is like.
std::string group_key(uint16_t opcode, const uint32_t *argument, const uint8_t *input,
                      size_t input_size) {
    std::string key = std::to_string(opcode);
    key += argument == nullptr ? "any" : "=" + std::to_string(*argument);
    if (input != nullptr) {
        key += ':';
        key.append(reinterpret_cast<const char *>(input), input_size);
    }
    return key;
}

std::string group_key(const override_rule &rule) {
    static constexpr uint8_t nothing = 0;
    const uint8_t *input = nullptr;
    size_t size = 0;
    if (rule.in) {
        input = rule.in->empty() ? &nothing : rule.in->data();
        size = rule.in->size();
    }
    return group_key(rule.opcode, rule.argument ? &*rule.argument : nullptr, input, size);
}

} // namespace

void override_index::index(std::vector<override_rule> &rules) {
    groups_.clear();
    for (size_t place = 0; place < rules.size(); place++) {
        rules[place].indexed = true;
        groups_[group_key(rules[place])].by_time.emplace(rules[place].only_time, place);
    }
    indexed_ = rules.size();
}

const override_rule *override_index::find(std::vector<override_rule> &rules,
                                          const kxdpa_request &request,
                                          std::span<const uint8_t> input) {
    if (rules.size() != indexed_ || (!rules.empty() && !rules.front().indexed)) {
        index(rules);
    }
    if (rules.empty()) {
        return nullptr;
    }
    constexpr size_t none = std::numeric_limits<size_t>::max();
    static constexpr uint8_t nothing = 0;
    const uint8_t *bytes = input.empty() ? &nothing : input.data();
    size_t first = none;
    for (const uint32_t *argument : {&request.arg, static_cast<const uint32_t *>(nullptr)}) {
        for (const uint8_t *in : {bytes, static_cast<const uint8_t *>(nullptr)}) {
            const auto found = groups_.find(group_key(request.opcode, argument, in, input.size()));
            if (found == groups_.end()) {
                continue;
            }
            group &asked = found->second;
            asked.seen++;
            for (const uint32_t time : {uint32_t{0}, asked.seen}) {
                const auto rule = asked.by_time.find(time);
                first = std::min(first, rule == asked.by_time.end() ? none : rule->second);
            }
        }
    }
    return first == none ? nullptr : &rules[first];
}
