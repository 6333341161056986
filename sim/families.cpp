#include "sim/answer.h"

#include <map>

namespace {

// A new part of the host is one line here, one in answer.h and one in host.h.
// clang-format off
constexpr const family *FAMILIES[] = {
    &card_family,
    &memory_family,
    &bridge_domain_family,
    &port_family,
    &private_vlan_family,
    &port_channel_family,
    &l2_family,
    &counter_family,
    &acl_family,
    &lacp_family,
    &settings_family,
};
// clang-format on

std::multimap<uint16_t, const answer *> by_opcode() {
    std::multimap<uint16_t, const answer *> answers;
    for (const family *part : FAMILIES) {
        for (const answer &one : *part) {
            answers.emplace(one.opcode, &one);
        }
    }
    return answers;
}

} // namespace

std::span<const family *const> all_families() {
    return FAMILIES;
}

const answer *find_answer(const kxdpa_request &request) {
    // Never destroyed: a preloaded library answers until its process ends.
    static const auto &answers = *new std::multimap(by_opcode());
    const answer *found = nullptr;
    const auto [first, end] = answers.equal_range(request.opcode);
    for (auto at = first; at != end; ++at) {
        const answer &candidate = *at->second;
        if (candidate.flags == request.flags &&
            (candidate.argument == ANY_ARGUMENT || candidate.argument == request.arg)) {
            return &candidate;
        }
        found = found == nullptr ? &candidate : found;
    }
    return found;
}
