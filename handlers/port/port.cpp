// "show port": one row for each port, with its forwarding state and what causes it.
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "frontend/run_state.h"
#include "handlers/leaf_mode.h"
#include "handlers/port/shared/bridge_domain.h"
#include "handlers/port/shared/port_vlans.h"
#include "handlers/port/shared/port_walk.h"
#include "infra/utils/field_text.h"

namespace {

constexpr const char *FORWARDING = "FWD";
constexpr const char *BLOCKED = "BLK";
constexpr const char *PARTLY_BLOCKED = "F/B";

// What the state and the cause column show.
struct port_state {
    const char *state;
    const char *cause;
};

constexpr const char *NO_CAUSE = " - ";

struct errdis_event {
    uint8_t code;
    const char *name;
};

constexpr errdis_event ERRDIS_EVENTS[] = {
    {0, "LnkFlpEr"}, {1, "UdldEr"},  {2, "BpduEr"},    {3, "LpbckEr"},    {4, "StmCtlEr"},
    {5, "DhcpEr"},   {6, "ArpEr"},   {7, "SecEr"},     {8, "PsecEr"},     {9, "VpcEr"},
    {10, "StpEr"},   {12, "VicEr"},  {13, "DcbxEr"},   {14, "RtLmEr"},    {19, "IpAdEr"},
    {22, "QosEr"},   {23, "SoftEr"}, {24, "InLnPwEr"}, {253, "HmxCfgEr"}, {254, "HmxEr"},
    {255, "none"},
};

// The short name of an err-disable event; empty for a code without one.
const char *kx_get_errdis_event_short_str(uint8_t code) {
    for (const errdis_event &event : ERRDIS_EVENTS) {
        if (event.code == code) {
            return event.name;
        }
    }
    return "";
}

const char *leaf_block_cause(const kx_port_record &record) {
    switch (record.leaf_block_reason) {
    case KX_LEAF_BLOCK_BPDU:
        return "BPDU Viol";
    case KX_LEAF_BLOCK_ZERO_MAC:
        return "Zero Mac";
    default:
        break;
    }
    switch (record.leaf_wait_state) {
    case KX_LEAF_WAIT_ACK:
        return "WAIT ACK";
    case KX_LEAF_WAIT_POLICY:
        return "WAIT EPP";
    default:
        return NO_CAUSE;
    }
}

// The state of a port that forwards as a whole.
port_state whole_port_state(const kx_port_record &record, bool leaf_mode) {
    if (record.forwarding != 0) {
        return {FORWARDING, NO_CAUSE};
    }
    return {BLOCKED, leaf_mode ? leaf_block_cause(record)
                               : kx_get_errdis_event_short_str(record.errdis_event)};
}

// True when the port forwards on some VLAN, as far as the walk looks. When the port's forwarding
// byte is clear, the walk stops at the first VLAN after which the answer is yes.
bool forwards_somewhere(uint32_t ltl, kx_port_view view, const kx_port_record &record,
                        int vlan_count) {
    const bool stop_at_first = record.forwarding == 0;
    bool forwards = vlan_count != 0 || record.forwarding != 0;
    kx_bd_record bd;
    for (kx_walk bds{0}; kx_next_vlan_bd(&bds, &bd);) {
        forwards |= kx_port_forwards_on_vlan(ltl, view, bd.vlan);
        if (forwards && stop_at_first) {
            break;
        }
    }
    return forwards;
}

// The state of a port that forwards per VLAN and has `vlan_count` VLANs configured. A partly
// blocked port needs the footnote.
const char *vlan_port_state(uint32_t ltl, kx_port_view view, const kx_port_record &record,
                            bool leaf_mode, int vlan_count, bool *footnote_due) {
    const int64_t expected_count = kx_get_usable_vlan_count();
    const bool forwards = forwards_somewhere(ltl, view, record, vlan_count);
    if (leaf_mode && (record.port_mode == KX_PORT_MODE_SUB_GROUP_A ||
                      record.port_mode == KX_PORT_MODE_LEAF_VLANS)) {
        // Deliberate: the flag belongs to the whole walk, so such a port also cancels a footnote
        // that an earlier row needed.
        *footnote_due = false;
        return vlan_count != 0 ? FORWARDING : BLOCKED;
    }
    if (!forwards) {
        return BLOCKED;
    }
    if (vlan_count == expected_count && record.forwarding != 0) {
        return FORWARDING;
    }
    *footnote_due = true;
    return PARTLY_BLOCKED;
}

// Deliberate: the column is eight wide, but its text seven long, so "L3VNSERVICE" is always cut.
const char *port_type(const kx_port_record &record) {
    if (record.vxlan != 0) {
        return "VXLAN";
    }
    if (record.vmotion != 0) {
        return "VMOTION";
    }
    return record.l3_service != 0 ? "L3VNSER" : "";
}

kx_sub_group_text sub_group(const kx_port_record &record, bool leaf_mode) {
    if (record.port_mode == KX_PORT_MODE_SUB_GROUP_A) {
        return kx_format_sub_group(record.sub_group_a);
    }
    if (record.port_mode == KX_PORT_MODE_SUB_GROUP_B &&
        (!leaf_mode || record.leaf_sub_group_valid == 1)) {
        return kx_format_sub_group(record.sub_group_b);
    }
    return {};
}

void print_row(uint32_t ltl, const kx_port_record &record, const port_state &shown,
               bool leaf_mode) {
    const bool partly_blocked = shown.state == PARTLY_BLOCKED;
    kx_print("%5u   %8s   %4s %4s  %5s%s %8s %6u  %4s  %3u  %7u  %-8s    %8s\n", ltl,
             kx_get_port_name(ltl, record).text, kx_up_or_down(record.admin_state),
             kx_up_or_down(record.link_state), shown.state, partly_blocked ? "*" : " ", shown.cause,
             record.pc_ltl, sub_group(record, leaf_mode).text, record.org, record.service_path,
             port_type(record), kx_field_text(record.hmx_port_name).text);
}

void print_footnote() {
    kx_print("\n* %s: Port is BLOCKED on some of the vlans.\n"
             "       One or more vlans are either not created or\n"
             "       not in the list of allowed vlans for this port.\n"
             " Please run \"tarncmd show port vlans\" to see the details. \n",
             PARTLY_BLOCKED);
}

} // namespace

int kx_port_table_dump(const char *arg) {
    const bool leaf_mode = kx_hmx_is_leaf_mode();
    const kx_port_selection shown = kx_select_ports(arg);
    const uint32_t first = kx_get_first_ltl(arg);
    if (first == KX_LTL_BEFORE_FIRST) {
        kx_print(
            "  LTL   KRT Port  Admin Link  State    Cause  PC-LTL  SGID  ORG  svcpath  Type    "
            "Hmx Port\n");
    }
    bool footnote_due = false;
    const auto show = [&](uint32_t ltl, const kx_port_record &record) {
        if (!kx_is_shown(shown, ltl, record)) {
            return KX_ROW_LEFT_OUT;
        }
        port_state state{};
        if (record.vlan_mode == KX_VLAN_MODE) {
            bmp4096 vlans;
            const int32_t vlan_count = kx_get_port_vlans(ltl, shown.view, &vlans);
            if (vlan_count < 0) {
                return KX_ROW_BROKEN;
            }
            state = {vlan_port_state(ltl, shown.view, record, leaf_mode, vlan_count, &footnote_due),
                     NO_CAUSE};
        } else {
            state = whole_port_state(record, leaf_mode);
        }
        print_row(ltl, record, state, leaf_mode);
        return KX_ROW_PRINTED;
    };
    const kx_port_walk walk = kx_print_ports(first, shown.view, show);
    if (walk == KX_WALK_BROKEN) {
        return kx_give_up();
    }
    if (walk == KX_WALK_TABLE_END && (kx_is_agent_driven() || footnote_due)) {
        print_footnote();
    }
    return 0;
}
