// "show trunk": on which VLANs each trunk port forwards.
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/port/shared/bridge_domain.h"
#include "handlers/port/shared/port_vlans.h"
#include "handlers/port/shared/port_walk.h"

namespace {

// No known word of the port record holds the native VLAN; 0 is not a VLAN.
constexpr int NATIVE_VLAN_UNKNOWN = 0;

} // namespace

int kx_trunk_table_dump(const char *arg) {
    const kx_port_selection shown = kx_select_ports_old(arg);
    const auto show = [&](uint32_t ltl, const kx_port_record &record) {
        if (!kx_is_shown(shown, ltl, record) || record.vlan_mode != KX_VLAN_MODE) {
            return KX_ROW_LEFT_OUT;
        }
        kx_print("Trunk port %d native_vlan %d CBL %d\n", static_cast<int>(ltl),
                 NATIVE_VLAN_UNKNOWN, record.forwarding);
        kx_bd_record bd;
        for (kx_walk bds{0}; kx_next_vlan_bd(&bds, &bd);) {
            kx_print("vlan(%d) cbl %d, ", bd.vlan,
                     kx_port_forwards_on_vlan(ltl, shown.view, bd.vlan) ? 1 : 0);
        }
        kx_print("\n");
        return KX_ROW_PRINTED;
    };
    kx_print_ports(kx_get_first_ltl(arg), shown.view, show);
    return 0;
}
