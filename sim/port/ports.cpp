#include "sim/port/ports.h"

#include "handlers/port/bridge_domain_record.h"
#include "infra/utils/kxlibbmp.h"

namespace {

void answer_next_ltl(host &state, exchange &talk) {
    const auto &ports = state.ports.by_ltl;
    const bool from_start = talk.request.arg == KX_LTL_BEFORE_FIRST;
    const auto next = from_start ? ports.begin() : ports.upper_bound(talk.request.arg);
    if (next == ports.end()) {
        talk.fail();
    } else {
        talk.reply_with(next->first);
    }
}

void answer_port(host &state, exchange &talk) {
    const port_view *view = find_port_view(state, talk.request.arg);
    if (view == nullptr) {
        talk.fail();
    } else {
        talk.reply_with(view->record);
    }
}

void answer_mac(host &state, exchange &talk) {
    const port *found = find_port(state, talk.request.arg);
    if (found == nullptr) {
        talk.fail();
    } else {
        talk.tell(found->mac);
    }
}

void answer_security(host &state, exchange &talk) {
    const port *found = find_port(state, talk.request.arg);
    if (found == nullptr) {
        talk.fail();
    } else {
        talk.tell(found->security);
    }
}

void answer_secure_state(host &state, exchange &talk) {
    const port *found = find_port(state, talk.request.arg);
    if (found == nullptr || !found->secure) {
        talk.fail();
    } else {
        talk.reply_with(uint32_t{1});
    }
}

void answer_forwarding(host &state, exchange &talk) {
    const port_view *view = find_port_view(state, talk.request.arg);
    auto query = talk.input_as<kx_vlan_forwarding>();
    if (view == nullptr) {
        talk.fail();
        return;
    }
    query.forwarding = view->forwards_on.contains(query.vlan) ? 1 : 0;
    talk.reply_with(query);
}

void answer_vlan_set(host &state, exchange &talk) {
    const port_view *view = find_port_view(state, talk.request.arg);
    if (view == nullptr || !view->vlans) {
        talk.fail();
        return;
    }
    bmp4096 set{};
    set.size = sizeof set.bits;
    for (const uint32_t vlan : *view->vlans) {
        set.bits[vlan / 8] = static_cast<uint8_t>(set.bits[vlan / 8] | 0x80U >> vlan % 8);
    }
    talk.reply_with(set);
}

constexpr answer PORT_ANSWERS[] = {
    {.opcode = KXDPA_OP_NEXT_LTL, .flags = KXDPA_FLAG_OUT, .len1 = 4, .reply = answer_next_ltl},
    {.opcode = KXDPA_OP_PORT_RECORD,
     .flags = KXDPA_FLAG_OUT,
     .len1 = sizeof(kx_port_record),
     .reply = answer_port},
    {.opcode = KXDPA_OP_PORT_MAC,
     .flags = KXDPA_FLAG_OUT | KXDPA_FLAG_MAX,
     .capacity = 6,
     .reply = answer_mac},
    {.opcode = KXDPA_OP_PORT_SECURITY,
     .flags = KXDPA_FLAG_OUT,
     .len1 = sizeof(kx_port_security_record),
     .reply = answer_security},
    {.opcode = KXDPA_OP_SECURE_PORT_STATE,
     .flags = KXDPA_FLAG_OUT,
     .len1 = 4,
     .reply = answer_secure_state},
    {.opcode = KXDPA_OP_VLAN_FORWARDING,
     .flags = KXDPA_FLAG_OUT | KXDPA_FLAG_IN,
     .len1 = sizeof(kx_vlan_forwarding),
     .reply = answer_forwarding},
    {.opcode = KXDPA_OP_PORT_VLAN_SET,
     .flags = KXDPA_FLAG_OUT | KXDPA_FLAG_IN | KXDPA_FLAG_MAX,
     .len1 = sizeof(bmp4096),
     .capacity = sizeof(bmp4096),
     .reply = answer_vlan_set},
};

} // namespace

port *find_port(host &state, uint32_t ltl) {
    const auto found = state.ports.by_ltl.find(ltl);
    return found == state.ports.by_ltl.end() ? nullptr : &found->second;
}

port_view *find_port_view(host &state, uint32_t argument) {
    port *found = find_port(state, argument & LAST_LTL);
    const uint32_t view = argument >> 24;
    if (found == nullptr || view >= PORT_VIEWS || !found->views[view].known) {
        return nullptr;
    }
    return &found->views[view];
}

constinit const family port_family = {PORT_ANSWERS};
