#include "sim/answer.h"

#include "handlers/bvl/bvl_record.h"
#include "handlers/card/port_mode_record.h"
#include "handlers/iscsi/iscsi_record.h"
#include "handlers/port/bridge_domain_record.h"

namespace {

// A trunk carries its native VLAN beside the others, an access port carries no other one.
void set_mode_of(port_view &view, const kx_port_mode_request &request) {
    const bool trunk = request.mode == KX_PORT_TRUNK;
    view.record.vlan_mode = trunk ? KX_VLAN_MODE : 0;
    if (!trunk) {
        view.vlans.emplace();
        view.forwards_on.clear();
    }
    if (request.native_vlan == KX_NO_NATIVE_VLAN) {
        return;
    }
    if (view.vlans) {
        view.vlans->insert(request.native_vlan);
    }
    if (view.record.forwarding != 0) {
        view.forwards_on.insert(request.native_vlan);
    }
}

void set_port_mode(host &state, exchange &talk) {
    port *found = value_in(state.ports.by_ltl, talk.request.arg);
    const auto request = talk.input_as<kx_port_mode_request>();
    const bool native = request.native_vlan >= 1 && request.native_vlan <= KX_LAST_VLAN;
    const bool trunk = request.mode == KX_PORT_TRUNK;
    if (found == nullptr || (!trunk && request.mode != KX_PORT_ACCESS) ||
        !(native || (trunk && request.native_vlan == KX_NO_NATIVE_VLAN))) {
        return talk.fail(state);
    }
    set_mode_of(found->hmx, request);
    for (auto &[which, view] : found->others) {
        set_mode_of(view, request);
    }
}

constexpr answer SETTING_ANSWERS[] = {
    set<kx_port_mode_request>(KXDPA_OP_SET_PORT_MODE, set_port_mode),
    get<uint32_t>(KXDPA_OP_ISCSI_PINNING_STATE, accept, nullptr),
    set<kx_iscsi_pinning>(KXDPA_OP_SET_ISCSI_PINNING, accept),
    set_text(KXDPA_OP_SET_ISCSI_NIC, 1, accept),
    set_text(KXDPA_OP_CLEAR_ISCSI_NIC, 1, accept),
    set_text(KXDPA_OP_SET_MIRRA_NIC, 1, accept),
    set_text(KXDPA_OP_CLEAR_MIRRA_NIC, 1, accept),
    exchanged<uint64_t>(KXDPA_OP_SCHEDULER_CONTROL, accept),
    set<uint32_t>(KXDPA_OP_SET_QOS_EXPORT, accept),
    set<uint32_t>(KXDPA_OP_SET_MAC_MOVE_TIMER, accept),
    set<uint16_t>(KXDPA_OP_SET_BVL_SGT, accept),
    set<uint8_t>(KXDPA_OP_SET_BVL_TRUST, accept),
    set<uint8_t>(KXDPA_OP_SET_BVL_ENABLE, accept),
    set<uint8_t>(KXDPA_OP_SET_BVL_ENFORCEMENT, accept),
    set<uint8_t>(KXDPA_OP_SET_BVL_PROPAGATE, accept),
    set<kx_bvl_policy>(KXDPA_OP_SET_BVL_POLICY, accept),
    command(KXDPA_OP_CLEAR_PRINTK_COUNTS, accept),
};

} // namespace

constinit const family settings_family = SETTING_ANSWERS;
