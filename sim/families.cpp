#include "sim/answer.h"

#include <map>

namespace {

// A new part of the host is one line here, one in answer.h and one in host.h.
constexpr struct {
    const family *answers;
    const char *key; // of the host file, nullptr for none
} FAMILIES[] = {
    {&card_family, "card"},      {&bridge_domain_family, "bridge_domains"},
    {&port_family, "ports"},     {&port_channel_family, "port_channels"},
    {&l2_family, "l2"},          {&counter_family, "drops"},
    {&acl_family, "acls"},       {&lacp_family, "lacp"},
    {&settings_family, nullptr},
};

std::multimap<uint16_t, answer> by_opcode() {
    std::multimap<uint16_t, answer> answers;
    for (const auto &[part, key] : FAMILIES) {
        for (const answer &one : *part) {
            answers.emplace(one.opcode, one.key == nullptr ? one.from_key(key) : one);
        }
    }
    return answers;
}

} // namespace

std::vector<const family *> all_families() {
    std::vector<const family *> all;
    for (const auto &[part, key] : FAMILIES) {
        all.push_back(part);
    }
    return all;
}

const answer *find_answer(const kxdpa_request &request) {
    // Never destroyed: a preloaded library answers until its process ends.
    static const auto &answers = *new std::multimap(by_opcode());
    const answer *found = nullptr;
    const auto [first, end] = answers.equal_range(request.opcode);
    for (auto at = first; at != end; ++at) {
        const answer &candidate = at->second;
        if (candidate.flags == request.flags &&
            (candidate.argument == ANY_ARGUMENT || candidate.argument == request.arg)) {
            return &candidate;
        }
        found = found == nullptr ? &candidate : found;
    }
    return found;
}
