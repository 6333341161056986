// "show port security": which ports learn addresses securely, and their private VLANs.
#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/port/port_security_record.h"
#include "handlers/port/shared/port_pvlan.h"
#include "handlers/port/shared/port_walk.h"
#include "infra/utils/kxstrings.h"

#include <cstdio>

namespace {

bool learns_securely(uint32_t ltl) {
    kx_port_security_record security{};
    return kx_dpa_get(KXDPA_OP_PORT_SECURITY, ltl, &security) == KXDPA_STATUS_SUCCESS &&
           security.learning != 0;
}

// One of the letters of the legend; "(P)" marks a trunk that is promiscuous.
const char *mode_mark(const kx_port_record &record, uint16_t role) {
    if (record.vlan_mode == KX_VLAN_MODE) {
        return role == KX_PVLAN_PROMISCUOUS_TRUNK ? "T(P)" : "T";
    }
    switch (role) {
    case KX_PVLAN_ISOLATED:
        return "I";
    case KX_PVLAN_COMMUNITY:
        return "C";
    case KX_PVLAN_PROMISCUOUS:
        return "P";
    default:
        return "A";
    }
}

struct vlan_text {
    char text[8];
};

vlan_text format_vlan(uint16_t vlan) {
    vlan_text column{};
    if (vlan != 0) {
        snprintf(column.text, sizeof column.text, "%u", vlan);
    }
    return column;
}

void print_legend() {
    kx_print("  *A = Access \n");
    kx_print("  *C = Community \n");
    kx_print("  *I = Isolated \n");
    kx_print("  *P = Promiscous \n");
    kx_print("  *T = Trunk \n");
}

void print_row(uint32_t ltl, const kx_port_record &record, kx_port_view view) {
    const char *secure = learns_securely(ltl) ? "ON" : "";
    kx_port_pvlan pvlan{};
    kx_walk bds{0};
    const bool more = kx_next_pvlan(ltl, view, &bds, &pvlan);
    if (!more) {
        pvlan = {};
    }
    kx_print("%5u   %8s  %4s  %7s  %5s  %5s\n", ltl, kx_get_port_name(ltl, record).text,
             mode_mark(record, pvlan.role), secure, format_vlan(pvlan.primary).text,
             format_vlan(pvlan.secondary).text);
    // The other private VLANs of the port are printed under the columns of the first.
    while (more && kx_next_pvlan(ltl, view, &bds, &pvlan)) {
        kx_print("%38s  %5s\n", format_vlan(pvlan.primary).text, format_vlan(pvlan.secondary).text);
    }
}

} // namespace

int kx_port_security_table_dump(const char *arg) {
    const kx_port_selection shown = {KX_VIEW_HMX, kx_begins_with(arg, "internal")};
    const uint32_t first = kx_get_first_ltl(arg);
    if (first == KX_LTL_BEFORE_FIRST) {
        kx_print("  LTL   KRT Port  Mode  PortSec  PVLAN  SVLAN\n");
    }
    const auto show = [&](uint32_t ltl, const kx_port_record &record) {
        if (!kx_is_shown(shown, ltl, record)) {
            return KX_ROW_LEFT_OUT;
        }
        print_row(ltl, record, shown.view);
        return KX_ROW_PRINTED;
    };
    if (kx_print_ports(first, shown.view, show) == KX_WALK_TABLE_END) {
        print_legend();
    }
    return 0;
}
