#include "handlers/port/shared/port_pvlan.h"

#include "dpa/userspace/kxdpa_indirect.h"
#include "handlers/port/shared/bridge_domain.h"

bool kx_next_pvlan(uint32_t ltl, kx_port_view view, kx_walk *bds, kx_port_pvlan *pvlan) {
    kx_bd_record bd;
    while (kx_next_vlan_bd(bds, &bd)) {
        *pvlan = {};
        pvlan->vlan = bd.vlan;
        if (kx_dpa_exchange(KXDPA_OP_PORT_PVLAN, kx_port_argument(view, ltl), pvlan) ==
                KXDPA_STATUS_SUCCESS &&
            pvlan->role != KX_PVLAN_NONE) {
            return true;
        }
    }
    return false;
}
