#include "sim/settings/settings.h"

#include "handlers/bvl/bvl_record.h"
#include "handlers/card/port_mode_record.h"
#include "handlers/iscsi/iscsi_record.h"
#include "handlers/port/bridge_domain_record.h"
#include "sim/port/ports.h"

namespace {

// A trunk carries its native VLAN beside the others, an access port carries no other one.
void set_port_mode(port_view &view, const kx_port_mode_request &request) {
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

void answer_port_mode(host &state, exchange &talk) {
    port *found = find_port(state, talk.request.arg);
    const auto request = talk.input_as<kx_port_mode_request>();
    const bool native = request.native_vlan >= 1 && request.native_vlan <= KX_LAST_VLAN;
    const bool trunk = request.mode == KX_PORT_TRUNK;
    if (found == nullptr || (!trunk && request.mode != KX_PORT_ACCESS) ||
        !(native || (trunk && request.native_vlan == KX_NO_NATIVE_VLAN))) {
        talk.fail();
        return;
    }
    for (port_view &view : found->views) {
        set_port_mode(view, request);
    }
}

void accept_setting(host &, exchange &) {
}

constexpr answer set(kxdpa_opcode opcode, uint32_t length) {
    return {opcode, KXDPA_FLAG_IN, length, 0, 0, accept_setting};
}

constexpr answer set_text(kxdpa_opcode opcode) {
    return {opcode, KXDPA_FLAG_IN | KXDPA_FLAG_MAX, 0, 0, 1, accept_setting};
}

constexpr answer SETTING_ANSWERS[] = {
    {KXDPA_OP_SET_PORT_MODE, KXDPA_FLAG_IN, sizeof(kx_port_mode_request), 0, 0, answer_port_mode},
    {KXDPA_OP_ISCSI_PINNING_STATE, KXDPA_FLAG_OUT, 4, 0, 0, accept_setting},
    set(KXDPA_OP_SET_ISCSI_PINNING, sizeof(kx_iscsi_pinning)),
    set_text(KXDPA_OP_SET_ISCSI_NIC),
    set_text(KXDPA_OP_CLEAR_ISCSI_NIC),
    set_text(KXDPA_OP_SET_MIRRA_NIC),
    set_text(KXDPA_OP_CLEAR_MIRRA_NIC),
    {KXDPA_OP_SCHEDULER_CONTROL, KXDPA_FLAG_IN | KXDPA_FLAG_OUT, 8, 0, 0, accept_setting},
    set(KXDPA_OP_SET_QOS_EXPORT, 4),
    set(KXDPA_OP_SET_MAC_MOVE_TIMER, 4),
    set(KXDPA_OP_SET_BVL_SGT, 2),
    set(KXDPA_OP_SET_BVL_TRUST, 1),
    set(KXDPA_OP_SET_BVL_ENABLE, 1),
    set(KXDPA_OP_SET_BVL_ENFORCEMENT, 1),
    set(KXDPA_OP_SET_BVL_PROPAGATE, 1),
    set(KXDPA_OP_SET_BVL_POLICY, sizeof(kx_bvl_policy)),
    {KXDPA_OP_CLEAR_PRINTK_COUNTS, KXDPA_FLAG_NODATA, 0, 0, 0, accept_setting},
};

} // namespace

constinit const family settings_family = {SETTING_ANSWERS};
