#include "sim/answer.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr uint32_t BEFORE_FIRST_LTL = 0xFFFFFFFF;

void answer_domain_count(host &state, exchange &talk) {
    talk.reply_with(static_cast<uint32_t>(state.bridge_domains.by_index.size()));
}

void answer_next_index(host &state, exchange &talk) {
    const auto next = state.bridge_domains.by_index.upper_bound(talk.request.arg);
    talk.tell(state, next == state.bridge_domains.by_index.end() ? nullptr : &next->first);
}

void learn_next_index(host &state, const exchange &told) {
    const auto index = told.reply_as<uint32_t>();
    if (told.is_told() && index != 0) {
        state.bridge_domains.by_index.try_emplace(index).first->second.record.index = index;
    }
}

// A driver need not say the index of the one that was asked for.
void answer_bridge_domain(host &state, exchange &talk) {
    const bridge_domain *found = value_in(state.bridge_domains.by_index, talk.request.arg);
    talk.tell(state, found != nullptr && found->known ? &found->record : nullptr);
}

void learn_bridge_domain(host &state, const exchange &told) {
    bridge_domain *found = value_in(state.bridge_domains.by_index, told.request.arg);
    const auto record = told.reply_as<kx_bd_record>();
    if (found == nullptr || record.vlan > KX_LAST_VLAN) {
        return;
    }
    found->known = told.is_told();
    if (found->known) {
        found->record = record;
    }
}

// What the lookups find a bridge domain by.

bool is_of_vlan(const kx_bd_record &bd, const kx_bd_record &asked) {
    return bd.kind == 0 && bd.vlan == asked.vlan && bd.vdc == asked.vdc;
}

bool is_of_swbd(const kx_bd_record &bd, const kx_bd_record &asked) {
    return bd.swbd == asked.swbd;
}

bool has_name(const kx_bd_record &bd, const kx_bd_record &asked) {
    return std::strncmp(bd.name, asked.name, sizeof bd.name) == 0;
}

bool is_of_segment(const kx_bd_record &bd, const kx_bd_record &asked) {
    return bd.kind == KX_BD_KIND_SEGMENT && bd.segment_id == asked.segment_id;
}

// The first bridge domain that `matches` the record asked with.
template <auto matches> void answer_lookup(host &state, exchange &talk) {
    const auto asked = talk.input_as<kx_bd_record>();
    for (const auto &[index, found] : state.bridge_domains.by_index) {
        if (found.known && matches(found.record, asked)) {
            kx_bd_record wire = found.record;
            wire.index = index;
            return talk.reply_with(wire);
        }
    }
    talk.fail(state);
}

template <auto matches> constexpr answer lookup(kxdpa_opcode opcode) {
    return exchanged<kx_bd_record>(opcode, answer_lookup<matches>, learn_nothing);
}

// A set of numbers that is counted and walked, and may be refused as a whole.

std::optional<number_set> *members_of(host &state, const exchange &talk) {
    return member_in<&bridge_domain::members>(
        value_in(state.bridge_domains.by_index, talk.request.arg));
}

std::optional<number_set> *vlans_of(host &state, const exchange & /*talk*/) {
    return &state.bridge_domains.vlans;
}

template <auto set_of> void answer_count(host &state, exchange &talk) {
    const auto *set = set_of(state, talk);
    if (set == nullptr || !*set) {
        talk.fail(state);
    } else {
        talk.reply_with(static_cast<uint32_t>((*set)->size()));
    }
}

// Before any step of the walk.
template <auto set_of> void learn_count(host &state, const exchange &told) {
    auto *set = set_of(state, told);
    if (set != nullptr && !told.is_told()) {
        set->reset();
    }
}

// A port is named by the input, for the argument is its bridge domain; no VLAN is 0, but an LTL is.
template <auto set_of> void answer_step(host &state, exchange &talk) {
    const auto *set = set_of(state, talk);
    if (set == nullptr || !*set) {
        return talk.fail(state);
    }
    const bool is_port = !talk.input.empty();
    const uint32_t from = is_port ? talk.input_as<uint32_t>() : talk.request.arg;
    const bool starts = is_port && from == BEFORE_FIRST_LTL;
    const auto next = starts ? (*set)->begin() : (*set)->upper_bound(from);
    talk.tell(state, next == (*set)->end() ? nullptr : &*next);
}

template <auto set_of, uint32_t least, uint32_t most>
void learn_step(host &state, const exchange &told) {
    std::optional<number_set> *set = set_of(state, told);
    const auto number = told.reply_as<uint32_t>();
    if (set != nullptr && told.is_told() && number >= least && number <= most) {
        (*set ? **set : set->emplace()).insert(number);
    }
}

// The first bridge domain of a VLAN has its groups.
std::vector<uint32_t> *groups_of(host &state, uint32_t vlan) {
    for (auto &[index, bd] : state.bridge_domains.by_index) {
        if (bd.known && bd.record.kind == 0 && bd.record.vlan == vlan) {
            return &bd.groups;
        }
    }
    return nullptr;
}

// Group 0 stands before the first one and, in the reply, after the last one.
void answer_next_group(host &state, exchange &talk) {
    const auto *groups = groups_of(state, talk.request.arg);
    if (groups == nullptr) {
        return talk.fail(state);
    }
    const auto group = talk.input_as<uint32_t>();
    const auto current = std::find(groups->begin(), groups->end(), group);
    const auto next = group == 0 ? groups->begin() : current + (current == groups->end() ? 0 : 1);
    talk.reply_with(next == groups->end() ? 0U : *next);
}

void learn_next_group(host &state, const exchange &told) {
    auto *groups = groups_of(state, told.request.arg);
    const auto group = told.reply_as<uint32_t>();
    if (groups != nullptr && told.is_told() && group != 0 &&
        std::find(groups->begin(), groups->end(), group) == groups->end()) {
        groups->push_back(group);
    }
}

constexpr answer BRIDGE_DOMAIN_ANSWERS[] = {
    get<uint32_t>(KXDPA_OP_BD_COUNT, answer_domain_count, learn_nothing),
    get<uint32_t>(KXDPA_OP_NEXT_BD, answer_next_index, learn_next_index).of_walk(MOST_OTHERS),
    get<kx_bd_record>(KXDPA_OP_BD_RECORD, answer_bridge_domain, learn_bridge_domain),
    lookup<is_of_vlan>(KXDPA_OP_BD_BY_VLAN),
    lookup<is_of_vlan>(KXDPA_OP_BD_BY_VLAN_L2),
    lookup<is_of_swbd>(KXDPA_OP_BD_BY_SWBD),
    lookup<has_name>(KXDPA_OP_BD_BY_NAME),
    lookup<is_of_segment>(KXDPA_OP_BD_BY_SEGMENT),
    get<uint32_t>(KXDPA_OP_BD_PORT_COUNT, answer_count<members_of>, learn_count<members_of>),
    exchanged<uint32_t>(KXDPA_OP_BD_NEXT_PORT, answer_step<members_of>,
                        learn_step<members_of, 0, LAST_LTL>)
        .of_walk(MOST_PORTS),
    exchanged<uint32_t>(KXDPA_OP_NEXT_VLAN_GROUP, answer_next_group, learn_next_group)
        .of_walk(MOST_OTHERS),
    get<uint32_t>(KXDPA_OP_VLAN_COUNT, answer_count<vlans_of>, learn_count<vlans_of>)
        .from_key("vlans"),
    get<uint32_t>(KXDPA_OP_NEXT_VLAN, answer_step<vlans_of>, learn_step<vlans_of, 1, KX_LAST_VLAN>)
        .of_walk(MOST_OTHERS)
        .from_key("vlans"),
};

} // namespace

constinit const family bridge_domain_family = BRIDGE_DOMAIN_ANSWERS;
