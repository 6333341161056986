// "show port-old": the earlier form of the port table, with the private VLANs of each port.
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/port/shared/port_pvlan.h"
#include "handlers/port/shared/port_walk.h"
#include "infra/utils/field_text.h"

#include <cstdio>

namespace {

const char *port_type(uint32_t ltl, const kx_port_record &record) {
    if (kx_is_port_channel(ltl)) {
        return "CHAN";
    }
    return record.vlan_mode == KX_VLAN_MODE ? "Trunk" : "Access";
}

// An empty entry is a port channel that is not in use; it has no link.
const char *link_state(const kx_port_record &record) {
    return kx_port_is_empty(record) ? "NONE" : kx_up_or_down(record.link_state);
}

struct segment_text {
    char text[12];
};

// The column has room for a VLAN, too, but no known word of the record holds it.
segment_text segment(const kx_port_record &record) {
    segment_text column{};
    if (record.segment_id != 0) {
        snprintf(column.text, sizeof column.text, "%u", record.segment_id);
    }
    return column;
}

kx_sub_group_text sub_group_of_mode(const kx_port_record &record, kx_port_mode mode,
                                    uint32_t sub_group) {
    return record.port_mode == mode ? kx_format_sub_group(sub_group) : kx_sub_group_text{};
}

void print_row(uint32_t ltl, const kx_port_record &record) {
    kx_print("%5u 0x%08x %7s %7u %6s %11s  %-6s%5s %5s %8s %4u   %s\n", ltl, record.if_index,
             segment(record).text, record.pc_ltl,
             sub_group_of_mode(record, KX_PORT_MODE_SUB_GROUP_A, record.sub_group_a).text,
             sub_group_of_mode(record, KX_PORT_MODE_SUB_GROUP_B, record.sub_group_b).text,
             port_type(ltl, record), kx_up_or_down(record.admin_state), link_state(record),
             record.forwarding != 0 ? "FWD" : "BLK", record.port_mode,
             kx_field_text(record.hmx_port_name).text);
}

// A promiscuous port heads the mappings of its secondary VLANs; `last` is the line before this one.
void print_promiscuous(const kx_port_pvlan &pvlan, const kx_port_pvlan &last) {
    if (pvlan.role == KX_PVLAN_PROMISCUOUS_TRUNK && last.role != pvlan.role) {
        kx_print("        pvlan promiscuous trunk port\n");
    }
    if (pvlan.role == KX_PVLAN_PROMISCUOUS &&
        (last.role != pvlan.role || last.primary != pvlan.primary)) {
        kx_print("            pvlan promiscuous %d\n", pvlan.primary);
    }
    if (pvlan.secondary != 0) {
        kx_print("            %d --> %d\n", pvlan.secondary, pvlan.primary);
    }
}

void print_pvlans(uint32_t ltl, kx_port_view view) {
    kx_port_pvlan last{};
    kx_port_pvlan pvlan;
    for (kx_walk bds{0}; kx_next_pvlan(ltl, view, &bds, &pvlan);) {
        switch (pvlan.role) {
        case KX_PVLAN_ISOLATED:
            kx_print("        pvlan isolated %d %d\n", pvlan.primary, pvlan.secondary);
            break;
        case KX_PVLAN_COMMUNITY:
            kx_print("        pvlan community %d %d\n", pvlan.primary, pvlan.secondary);
            break;
        case KX_PVLAN_PROMISCUOUS:
        case KX_PVLAN_PROMISCUOUS_TRUNK:
            print_promiscuous(pvlan, last);
            break;
        default:
            break;
        }
        last = pvlan;
    }
}

} // namespace

int kx_port_old_table_dump(const char *arg) {
    const kx_port_selection shown = kx_select_ports_old(arg);
    const uint32_t first = kx_get_first_ltl(arg);
    if (first == KX_LTL_BEFORE_FIRST) {
        kx_print("                  SegId\n");
        kx_print("  LTL    IfIndex   Vlan/    Bndl  SG_ID Pinned_SGID  Type  Admin State      CBL "
                 "Mode   Name\n");
    }
    kx_print_ports(first, shown.view, [&](uint32_t ltl, const kx_port_record &record) {
        if (!kx_is_shown(shown, ltl, record)) {
            return KX_ROW_LEFT_OUT;
        }
        print_row(ltl, record);
        print_pvlans(ltl, shown.view);
        return KX_ROW_PRINTED;
    });
    return 0;
}
