// "show bd": bridge domains with their member ports.
#include "handlers/port/bd.h"

#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "frontend/run_state.h"
#include "handlers/leaf_mode.h"
#include "handlers/paging.h"
#include "infra/utils/field_text.h"
#include "infra/utils/kxstrings.h"

namespace {

constexpr uint32_t NO_VLAN = 0;

constexpr size_t IP_SIZE = 16;

void print_segment_mode(const kx_bd_record &bd) {
    if (bd.segment_mode == KX_SEGMENT_MULTICAST) {
        kx_print("Segment Mode: Multicast");
    } else if (bd.segment_mode == KX_SEGMENT_UNICAST) {
        kx_print("Segment Mode: Unicast");
    }
    if ((bd.segment_features & KX_SEGMENT_MAC_DISTRIBUTION) != 0) {
        kx_print(", Mac-Distribution");
    }
    if ((bd.segment_features & KX_SEGMENT_LOCAL_ARP) != 0) {
        kx_print(", Local ARP Termination");
    }
    if (bd.segment_mode == KX_SEGMENT_UNICAST) {
        kx_print("\nVTEP DSN: %u , MAC DSN: %u,  BGP VTEP DSN: %u", bd.vtep_dsn, bd.mac_dsn,
                 bd.bgp_vtep_dsn);
    }
}

void print_segment_heading(uint32_t index, const kx_bd_record &bd, int32_t port_count) {
    char group[IP_SIZE];
    snprintf_ip_address(group, sizeof group, bd.segment_group);
    kx_print("BD %d, vdc %d, segment id %d, segment group IP %s, encap %s, vff_mode %s,swbd %d, "
             "VLAN %d, %d ports, \"%s\"\n",
             index, bd.vdc, bd.segment_id, group, bd.native_encap != 0 ? "NATIVE" : "VXLAN",
             bd.vff_mode != 0 ? "Proxy" : "Anycast", bd.swbd, bd.vlan, port_count,
             kx_field_text(bd.name).text);
    print_segment_mode(bd);
}

void print_vlan_heading(uint32_t index, const kx_bd_record &bd, int32_t port_count) {
    kx_print("BD %d, vdc %d, vlan %d, swbd %d, %d ports, \"%s\"\n", index, bd.vdc, bd.vlan, bd.swbd,
             port_count, kx_field_text(bd.name).text);
}

// Step to the VLAN's next IPv4 multicast group; start from 0. False at the end, also when the
// driver answers group 0.
bool next_group(uint32_t vlan, kx_walk *walk) {
    uint32_t group = walk->at;
    if (!kx_may_ask(walk) ||
        kx_dpa_exchange(KXDPA_OP_NEXT_VLAN_GROUP, vlan, &group) != KXDPA_STATUS_SUCCESS) {
        return false;
    }
    kx_trace(kx_debug_print_kxdump, KX_DEBUG_TRACE, "dpa_kx_get_next_vlan_v4_group(%d) = 0x%08x)\n",
             vlan, group);
    return group != 0 && kx_go_to(walk, group);
}

// Walk the multicast groups of a VLAN. Their tables belong to the multicast display, which this
// tool does not have. So the groups are asked for and traced, and nothing is printed.
void walk_groups(uint32_t vlan) {
    for (kx_walk walk{0}; next_group(vlan, &walk);) {
        kx_has_unbuilt_groups = true;
    }
}

bool print_listed_bd(uint32_t index) {
    kx_bd_vlan_dump(index, KX_BD_BY_INDEX);
    return true;
}

// On a leaf of the overlay policy controller, an overlay display prints the bridge domains. Its
// layout is not known, so this one prints what it prints on every other host.
bool print_listed_leaf_bd(uint32_t index) {
    return print_listed_bd(index);
}

int print_given_bd(uint32_t index) {
    if (kx_check_bd_index(index)) {
        kx_bd_vlan_dump(index, KX_BD_BY_INDEX);
    }
    return 0;
}

} // namespace

void kx_bd_vlan_dump(uint32_t number, int selector) {
    uint32_t index = number;
    if (selector == KX_BD_BY_VLAN) {
        index = kx_find_bd_by_vlan(KXDPA_OP_BD_BY_VLAN, static_cast<uint16_t>(number));
        if (index == 0) {
            kx_print("Can't find BD for VLAN %d\n", number);
            return;
        }
    }
    kx_bd_record bd;
    if (!kx_get_bd(index, &bd)) {
        return;
    }
    const int32_t port_count = kx_get_bd_port_count(index);
    uint32_t vlan = NO_VLAN; // whose multicast groups are printed
    if (selector == KX_BD_BY_VLAN) {
        kx_print("VLAN %d, vdc %d, swbd %d, hwbd %d, %d ports\n", number, bd.vdc, bd.swbd, index,
                 port_count);
        vlan = number;
    } else if (bd.kind != 0) { // deliberate: here every kind but 0 is a segment
        print_segment_heading(index, bd, port_count);
    } else {
        print_vlan_heading(index, bd, port_count);
        vlan = bd.vlan;
    }
    kx_print("\nPortlist:\n");
    kx_print_bd_ports(index, nullptr);
    if (vlan != NO_VLAN) {
        walk_groups(vlan);
    }
}

int kx_bd_table_dump(const char *arg) {
    if (kx_is_agent_driven()) {
        return kx_bd_fromdpa_table_dump(arg);
    }
    if (arg != nullptr) {
        return print_given_bd(kx_parse_number(arg));
    }
    kx_print_bd_count();
    kx_print_bd_list(kx_hmx_is_leaf_mode() ? print_listed_leaf_bd : print_listed_bd);
    return 0;
}

int kx_bd_fromdpa_table_dump(const char *arg) {
    kx_list_page page;
    if (kx_read_list_page(arg, &page) != 0) {
        return -1;
    }
    if (page.is_key) {
        kx_end_table();
        return print_given_bd(page.number);
    }
    return kx_print_bd_page(page, print_listed_bd);
}

int kx_bd_table_dump_bdname(const char *arg) {
    kx_named_bd bd;
    if (kx_find_named_bd(arg, &bd) != 0) {
        return -1;
    }
    if (bd.index != 0) {
        kx_bd_vlan_dump(bd.index, KX_BD_BY_INDEX);
    }
    return 0;
}
