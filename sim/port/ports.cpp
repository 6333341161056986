#include "sim/port/ports.h"

#include "handlers/port/bridge_domain_record.h"
#include "infra/utils/kxlibbmp.h"
#include "sim/object_reader.h"

namespace {

void parse_states(object_reader &keys, kx_port_record &record) {
    keys.choice("admin", record.admin_state, {{"up", KX_PORT_UP}, {"down", 0}});
    keys.choice("link", record.link_state, {{"up", KX_PORT_UP}, {"down", 0}});
    keys.flag("forwarding", record.forwarding);
    keys.choice("error", record.errdis_event,
                {{"link-flap", 0},    {"udld", 1},        {"bpdu", 2},
                 {"loopback", 3},     {"storm", 4},       {"dhcp", 5},
                 {"arp", 6},          {"security", 7},    {"psec", 8},
                 {"vpc", 9},          {"stp", 10},        {"vic", 12},
                 {"dcbx", 13},        {"rate-limit", 14}, {"ip-address", 19},
                 {"qos", 22},         {"software", 23},   {"power", 24},
                 {"hmx-config", 253}, {"hmx", 254},       {"none", NO_ERRDIS_EVENT}});
    keys.choice("leaf_block", record.leaf_block_reason,
                {{"bpdu", KX_LEAF_BLOCK_BPDU}, {"zero-mac", KX_LEAF_BLOCK_ZERO_MAC}});
    keys.choice("leaf_wait", record.leaf_wait_state,
                {{"ack", KX_LEAF_WAIT_ACK}, {"policy", KX_LEAF_WAIT_POLICY}});
}

void parse_record(object_reader &keys, kx_port_record &record) {
    parse_states(keys, record);
    keys.interface("interface", record.if_index);
    keys.number("dvport", record.dvport_id);
    keys.number("port_channel", record.pc_ltl);
    keys.flag("vlan_mode", record.vlan_mode);
    keys.number("mode", record.port_mode);
    keys.flag("may_be_empty", record.presence);
    keys.number("sub_group_a", record.sub_group_a);
    keys.number("sub_group_b", record.sub_group_b);
    keys.flag("leaf_sub_group", record.leaf_sub_group_valid);
    keys.number("segment", record.segment_id);
    keys.flag("vxlan", record.vxlan);
    keys.flag("vmotion", record.vmotion);
    keys.flag("l3_service", record.l3_service);
    keys.number("service_path", record.service_path);
    keys.number("org", record.org);
    keys.text("name", record.hmx_port_name);
    keys.text("device", record.device_type);
    keys.text("dvport_group", record.dvport_group);
}

void parse_view(object_reader &keys, port_view &view) {
    keys.flag("known", view.known);
    parse_record(keys, view.record);
    keys.numbers("vlans", *view.vlans, 0, KX_LAST_VLAN);
    keys.numbers("forwards_on", view.forwards_on, 0, KX_LAST_VLAN);
}

// The port's own keys are the HMX's view; the other views say where they differ.
port parse_port(object_reader &keys) {
    port parsed;
    port_view &own = parsed.views[KX_VIEW_HMX];
    parse_view(keys, own);
    parsed.views[KX_VIEW_KRT] = own;
    parsed.views[KX_VIEW_SYSTEM] = own;
    keys.object("krt", [&](object_reader &view) { parse_view(view, parsed.views[KX_VIEW_KRT]); });
    keys.object("system",
                [&](object_reader &view) { parse_view(view, parsed.views[KX_VIEW_SYSTEM]); });
    if (keys.has("mac")) {
        keys.mac("mac", parsed.mac.emplace());
    }
    keys.flag("secure", parsed.secure);
    keys.number("secure_learning", parsed.security->learning);
    return parsed;
}

void parse_ports(object_reader &file, host &into) {
    file.each("ports", [&](object_reader &keys) {
        uint32_t ltl = 0;
        keys.require("ltl");
        keys.number("ltl", ltl, 0, LAST_LTL);
        if (!into.ports.by_ltl.emplace(ltl, parse_port(keys)).second) {
            keys.fail("ltl", "is used twice");
        }
    });
}

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

void answer_record(host &state, exchange &talk) {
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

constexpr answer ANSWERS[] = {
    {.opcode = KXDPA_OP_NEXT_LTL, .flags = KXDPA_FLAG_OUT, .len1 = 4, .reply = answer_next_ltl},
    {.opcode = KXDPA_OP_PORT_RECORD,
     .flags = KXDPA_FLAG_OUT,
     .len1 = sizeof(kx_port_record),
     .reply = answer_record},
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

constinit const family port_family = {parse_ports, ANSWERS};
