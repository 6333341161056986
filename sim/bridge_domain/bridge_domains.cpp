#include "sim/bridge_domain/bridge_domains.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

constexpr uint32_t BEFORE_FIRST_LTL = 0xFFFFFFFF;

void answer_domain_count(host &state, exchange &talk) {
    talk.reply_with(static_cast<uint32_t>(state.bridge_domains.by_index.size()));
}

void answer_next_index(host &state, exchange &talk) {
    const auto next = state.bridge_domains.by_index.upper_bound(talk.request.arg);
    if (next == state.bridge_domains.by_index.end()) {
        talk.fail();
    } else {
        talk.reply_with(next->first);
    }
}

// nullptr when there is none of that index.
const bridge_domain *find_bridge_domain(const host &state, uint32_t index) {
    const auto found = state.bridge_domains.by_index.find(index);
    return found == state.bridge_domains.by_index.end() ? nullptr : &found->second;
}

kx_bd_record wire_record(uint32_t index, const bridge_domain &bd) {
    kx_bd_record wire = bd.record;
    wire.index = index;
    return wire;
}

void answer_bridge_domain(host &state, exchange &talk) {
    const bridge_domain *found = find_bridge_domain(state, talk.request.arg);
    if (found == nullptr || !found->known) {
        talk.fail();
    } else {
        talk.reply_with(wire_record(talk.request.arg, *found));
    }
}

// Answer a lookup with the first bridge domain that `matches` the record asked with.
template <typename predicate> void find_record(host &state, exchange &talk, predicate matches) {
    const auto asked = talk.input_as<kx_bd_record>();
    for (const auto &[index, found] : state.bridge_domains.by_index) {
        if (found.known && matches(found.record, asked)) {
            talk.reply_with(wire_record(index, found));
            return;
        }
    }
    talk.fail();
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

void answer_port_count(host &state, exchange &talk) {
    const bridge_domain *found = find_bridge_domain(state, talk.request.arg);
    if (found == nullptr || !found->members) {
        talk.fail();
    } else {
        talk.reply_with(static_cast<uint32_t>(found->members->size()));
    }
}

void answer_next_port(host &state, exchange &talk) {
    const bridge_domain *found = find_bridge_domain(state, talk.request.arg);
    if (found == nullptr || !found->members) {
        talk.fail();
        return;
    }
    const auto &members = *found->members;
    const auto ltl = talk.input_as<uint32_t>();
    const auto next = ltl == BEFORE_FIRST_LTL ? members.begin() : members.upper_bound(ltl);
    if (next == members.end()) {
        talk.fail();
    } else {
        talk.reply_with(*next);
    }
}

// Group 0 stands before the first one and, in the reply, behind the last one.
void answer_next_group(host &state, exchange &talk) {
    const auto group = talk.input_as<uint32_t>();
    for (const auto &[index, bd] : state.bridge_domains.by_index) {
        if (!bd.known || bd.record.kind != 0 || bd.record.vlan != talk.request.arg) {
            continue;
        }
        const auto current = std::find(bd.groups.begin(), bd.groups.end(), group);
        const auto next =
            group == 0 ? bd.groups.begin() : current + (current == bd.groups.end() ? 0 : 1);
        talk.reply_with(next == bd.groups.end() ? 0U : *next);
        return;
    }
    talk.fail();
}

void answer_vlan_count(host &state, exchange &talk) {
    const auto &vlans = state.bridge_domains.vlans;
    if (vlans) {
        talk.reply_with(static_cast<uint32_t>(vlans->size()));
    } else {
        talk.fail();
    }
}

void answer_next_vlan(host &state, exchange &talk) {
    const auto &vlans = state.bridge_domains.vlans;
    if (!vlans) {
        talk.fail();
        return;
    }
    const auto next = vlans->upper_bound(talk.request.arg);
    if (next == vlans->end()) {
        talk.fail();
    } else {
        talk.reply_with(*next);
    }
}

constexpr answer BRIDGE_DOMAIN_ANSWERS[] = {
    {.opcode = KXDPA_OP_BD_COUNT, .flags = KXDPA_FLAG_OUT, .len1 = 4, .reply = answer_domain_count},
    {.opcode = KXDPA_OP_NEXT_BD, .flags = KXDPA_FLAG_OUT, .len1 = 4, .reply = answer_next_index},
    {.opcode = KXDPA_OP_BD_RECORD,
     .flags = KXDPA_FLAG_OUT,
     .len1 = sizeof(kx_bd_record),
     .reply = answer_bridge_domain},
    {.opcode = KXDPA_OP_BD_BY_VLAN,
     .flags = KXDPA_FLAG_OUT | KXDPA_FLAG_IN,
     .len1 = sizeof(kx_bd_record),
     .reply = answer_by_vlan},
    {.opcode = KXDPA_OP_BD_BY_VLAN_L2,
     .flags = KXDPA_FLAG_OUT | KXDPA_FLAG_IN,
     .len1 = sizeof(kx_bd_record),
     .reply = answer_by_vlan},
    {.opcode = KXDPA_OP_BD_BY_SWBD,
     .flags = KXDPA_FLAG_OUT | KXDPA_FLAG_IN,
     .len1 = sizeof(kx_bd_record),
     .reply = answer_by_swbd},
    {.opcode = KXDPA_OP_BD_BY_NAME,
     .flags = KXDPA_FLAG_OUT | KXDPA_FLAG_IN,
     .len1 = sizeof(kx_bd_record),
     .reply = answer_by_name},
    {.opcode = KXDPA_OP_BD_BY_SEGMENT,
     .flags = KXDPA_FLAG_OUT | KXDPA_FLAG_IN,
     .len1 = sizeof(kx_bd_record),
     .reply = answer_by_segment},
    {.opcode = KXDPA_OP_BD_PORT_COUNT,
     .flags = KXDPA_FLAG_OUT,
     .len1 = 4,
     .reply = answer_port_count},
    {.opcode = KXDPA_OP_BD_NEXT_PORT,
     .flags = KXDPA_FLAG_OUT | KXDPA_FLAG_IN,
     .len1 = 4,
     .reply = answer_next_port},
    {.opcode = KXDPA_OP_NEXT_VLAN_GROUP,
     .flags = KXDPA_FLAG_OUT | KXDPA_FLAG_IN,
     .len1 = 4,
     .reply = answer_next_group},
    {.opcode = KXDPA_OP_VLAN_COUNT, .flags = KXDPA_FLAG_OUT, .len1 = 4, .reply = answer_vlan_count},
    {.opcode = KXDPA_OP_NEXT_VLAN, .flags = KXDPA_FLAG_OUT, .len1 = 4, .reply = answer_next_vlan},
};

} // namespace

constinit const family bridge_domain_family = {BRIDGE_DOMAIN_ANSWERS};
