// "show port vlans": the VLANs of each port: those on which it forwards and those on which it is
// blocked.
#include "handlers/port/shared/port_vlans.h"
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "frontend/run_state.h"
#include "handlers/leaf_mode.h"
#include "handlers/port/shared/bridge_domain.h"
#include "handlers/port/shared/port_walk.h"

namespace {

// Split the configured VLANs of a port. On entry `blocked` holds all of them; afterwards
// `forwarding` holds the VLANs on which the port forwards, and `blocked` the rest.
using split_vlans = void (*)(uint32_t ltl, kx_port_view view, const kx_port_record &record,
                             bmp4096 *blocked, bmp4096 *forwarding);

// A port outside VLAN mode has one state on all its VLANs.
void split_whole(bool forwards, bmp4096 *blocked, bmp4096 *forwarding) {
    if (forwards) {
        bitset_copy(forwarding, blocked);
        bitset_clear(blocked);
    }
}

void split_classic(uint32_t ltl, kx_port_view view, const kx_port_record &record, bmp4096 *blocked,
                   bmp4096 *forwarding) {
    if (record.vlan_mode != KX_VLAN_MODE) {
        split_whole(record.forwarding != 0, blocked, forwarding);
        return;
    }
    kx_bd_record bd;
    for (kx_walk bds{0}; kx_next_vlan_bd(&bds, &bd);) {
        if (kx_port_forwards_on_vlan(ltl, view, bd.vlan) && bd.vlan < bitset_numbits(forwarding)) {
            bitset_set_bit(forwarding, bd.vlan);
        }
    }
    bitset_subtract(blocked, forwarding);
}

// In leaf mode a VLAN port that carries uplink traffic forwards on all configured VLANs.
void split_opflex(uint32_t ltl, kx_port_view view, const kx_port_record &record, bmp4096 *blocked,
                  bmp4096 *forwarding) {
    const bool all_forward =
        record.port_mode == KX_PORT_MODE_SUB_GROUP_A || record.port_mode == KX_PORT_MODE_LEAF_VLANS;
    if (record.vlan_mode == KX_VLAN_MODE && all_forward) {
        split_whole(true, blocked, forwarding);
    } else {
        split_classic(ltl, view, record, blocked, forwarding);
    }
}

// Column in which the lists start.
constexpr int LIST_COLUMN = 25;

void print_vlans(uint32_t ltl, const kx_port_record &record, const bmp4096 &blocked,
                 const bmp4096 &forwarding) {
    const bool any_forwarding = bitset_first_bit(&forwarding) >= 0;
    const bool any_blocked = bitset_first_bit(&blocked) >= 0;
    // A port without VLANs still has its state.
    const bool forwards = any_forwarding || (!any_blocked && record.forwarding != 0);
    kx_print("%5u   %8s  %5s  ", ltl, kx_get_port_name(ltl, record).text, forwards ? "FWD" : "BLK");
    kx_print_vlan_list(forwards ? forwarding : blocked, LIST_COLUMN);
    if (forwards && any_blocked) {
        kx_print("%5s   %8s  %5s  ", "", "", "BLK");
        kx_print_vlan_list(blocked, LIST_COLUMN);
    }
}

int port_vlan_table_dump(const char *arg, split_vlans split) {
    const kx_port_selection shown = kx_select_ports(arg);
    const uint32_t first = kx_get_first_ltl(arg);
    if (first == KX_LTL_BEFORE_FIRST) {
        kx_print("  LTL   KRT Port  State  Vlans\n");
    }
    const auto show = [&](uint32_t ltl, const kx_port_record &record) {
        if (!kx_is_shown(shown, ltl, record)) {
            return KX_ROW_LEFT_OUT;
        }
        bmp4096 blocked;
        if (kx_get_port_vlans(ltl, shown.view, &blocked) < 0) {
            return KX_ROW_BROKEN;
        }
        bmp4096 forwarding;
        bmp4096_init(&forwarding);
        split(ltl, shown.view, record, &blocked, &forwarding);
        print_vlans(ltl, record, blocked, forwarding);
        return KX_ROW_PRINTED;
    };
    return kx_print_ports(first, shown.view, show) == KX_WALK_BROKEN ? kx_give_up() : 0;
}

int kx_classic_port_vlan_table_dump(const char *arg) {
    return port_vlan_table_dump(arg, split_classic);
}

int kx_opflex_port_vlan_table_dump(const char *arg) {
    return port_vlan_table_dump(arg, split_opflex);
}

} // namespace

int kx_port_vlan_table_dump(const char *arg) {
    return kx_hmx_is_leaf_mode() ? kx_opflex_port_vlan_table_dump(arg)
                                 : kx_classic_port_vlan_table_dump(arg);
}
