#include "sim/answer.h"

#include <algorithm>
#include <string_view>

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

kx_bd_record wire_record(uint32_t index, const bridge_domain &bd) {
    kx_bd_record wire = bd.record;
    wire.index = index;
    return wire;
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

// Answer a lookup with the first bridge domain that `matches` the record asked with.
template <typename predicate> void find_record(host &state, exchange &talk, predicate matches) {
    const auto asked = talk.input_as<kx_bd_record>();
    for (const auto &[index, found] : state.bridge_domains.by_index) {
        if (found.known && matches(found.record, asked)) {
            return talk.reply_with(wire_record(index, found));
        }
    }
    talk.fail(state);
}

void answer_by_vlan(host &state, exchange &talk) {
    find_record(state, talk, [](const kx_bd_record &bd, const kx_bd_record &asked) {
        return bd.kind == 0 && bd.vlan == asked.vlan && bd.vdc == asked.vdc;
    });
}

void answer_by_swbd(host &state, exchange &talk) {
    find_record(state, talk, [](const kx_bd_record &bd, const kx_bd_record &asked) {
        return bd.swbd == asked.swbd;
    });
}

std::string_view name_of(const kx_bd_record &bd) {
    return {bd.name, strnlen(bd.name, sizeof bd.name)};
}

void answer_by_name(host &state, exchange &talk) {
    find_record(state, talk, [](const kx_bd_record &bd, const kx_bd_record &asked) {
        return name_of(bd) == name_of(asked);
    });
}

void answer_by_segment(host &state, exchange &talk) {
    find_record(state, talk, [](const kx_bd_record &bd, const kx_bd_record &asked) {
        return bd.kind == KX_BD_KIND_SEGMENT && bd.segment_id == asked.segment_id;
    });
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

void answer_step(const host &state, exchange &talk, const std::optional<number_set> *set,
                 uint32_t from, uint32_t start) {
    if (set == nullptr || !*set) {
        return talk.fail(state);
    }
    const auto next = from == start ? (*set)->begin() : (*set)->upper_bound(from);
    talk.tell(state, next == (*set)->end() ? nullptr : &*next);
}

void learn_step(const exchange &told, std::optional<number_set> *set, uint32_t least,
                uint32_t most) {
    const auto number = told.reply_as<uint32_t>();
    if (set != nullptr && told.is_told() && number >= least && number <= most) {
        (*set ? **set : set->emplace()).insert(number);
    }
}

void answer_next_port(host &state, exchange &talk) {
    answer_step(state, talk, members_of(state, talk), talk.input_as<uint32_t>(), BEFORE_FIRST_LTL);
}

void learn_next_port(host &state, const exchange &told) {
    learn_step(told, members_of(state, told), 0, LAST_LTL);
}

void answer_next_vlan(host &state, exchange &talk) {
    answer_step(state, talk, &state.bridge_domains.vlans, talk.request.arg, 0);
}

void learn_next_vlan(host &state, const exchange &told) {
    learn_step(told, &state.bridge_domains.vlans, 1, KX_LAST_VLAN);
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

// Group 0 stands before the first one and, in the reply, behind the last one.
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

constexpr answer lookup(kxdpa_opcode opcode, answer_function *reply) {
    return exchanged<kx_bd_record>(opcode, reply, learn_nothing);
}

constexpr answer BRIDGE_DOMAIN_ANSWERS[] = {
    get<uint32_t>(KXDPA_OP_BD_COUNT, answer_domain_count, learn_nothing),
    get<uint32_t>(KXDPA_OP_NEXT_BD, answer_next_index, learn_next_index),
    get<kx_bd_record>(KXDPA_OP_BD_RECORD, answer_bridge_domain, learn_bridge_domain),
    lookup(KXDPA_OP_BD_BY_VLAN, answer_by_vlan),
    lookup(KXDPA_OP_BD_BY_VLAN_L2, answer_by_vlan),
    lookup(KXDPA_OP_BD_BY_SWBD, answer_by_swbd),
    lookup(KXDPA_OP_BD_BY_NAME, answer_by_name),
    lookup(KXDPA_OP_BD_BY_SEGMENT, answer_by_segment),
    get<uint32_t>(KXDPA_OP_BD_PORT_COUNT, answer_count<members_of>, learn_count<members_of>),
    exchanged<uint32_t>(KXDPA_OP_BD_NEXT_PORT, answer_next_port, learn_next_port),
    exchanged<uint32_t>(KXDPA_OP_NEXT_VLAN_GROUP, answer_next_group, learn_next_group),
    get<uint32_t>(KXDPA_OP_VLAN_COUNT, answer_count<vlans_of>, learn_count<vlans_of>)
        .from_key("vlans"),
    get<uint32_t>(KXDPA_OP_NEXT_VLAN, answer_next_vlan, learn_next_vlan).from_key("vlans"),
};

} // namespace

constinit const family bridge_domain_family = BRIDGE_DOMAIN_ANSWERS;
