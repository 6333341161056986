#include "capture/host_capture.h"
#include "handlers/port/port_record.h"

#include <optional>

namespace {

// The views that displays ask for private VLANs.
constexpr kx_port_view VIEWS[] = {KX_VIEW_HMX, KX_VIEW_KRT};

bool can_be_described(const kx_port_pvlan &pvlan) {
    return pvlan.vlan <= KX_LAST_VLAN && pvlan.primary <= KX_LAST_VLAN &&
           pvlan.secondary <= KX_LAST_VLAN;
}

// True where displays print the same for both.
bool is_alike(const kx_port_pvlan &a, const kx_port_pvlan &b) {
    return a.role == b.role &&
           (a.role == KX_PVLAN_NONE || (a.primary == b.primary && a.secondary == b.secondary));
}

// The views share one description: the first answer, from which the other view may differ.
void ask_about(host_capture &host, uint32_t ltl, const port &port, uint16_t vlan) {
    kx_port_pvlan asked{};
    asked.vlan = vlan;
    std::optional<kx_port_pvlan> described;
    for (const kx_port_view view : VIEWS) {
        kx_port_pvlan told = asked;
        const uint32_t argument = kx_port_argument(view, ltl);
        if (!is_displayed(ltl, port.views[view]) ||
            !host.driver.exchange<KXDPA_OP_PORT_PVLAN>(argument, &told, if_refused::KEPT)) {
            continue;
        }
        told.vlan = vlan;
        if (!described) {
            described = can_be_described(told) ? told : asked;
        }
        if (!is_alike(told, *described)) {
            host.driver.keep_reply(KXDPA_OP_PORT_PVLAN, argument, asked, told);
        }
    }
    if (described && described->role != KX_PVLAN_NONE) {
        host.captured.private_vlans.emplace(std::pair{ltl, vlan}, *described);
    }
}

} // namespace

void capture_private_vlans(host_capture &host) {
    const std::set<uint16_t> &vlans = walked_port_vlans(host);
    const port_table &ports = walked_ports(host);
    host.driver.begin("private VLANs");
    for (const auto &[ltl, port] : ports.by_ltl) {
        for (const uint16_t vlan : vlans) {
            ask_about(host, ltl, port, vlan);
        }
    }
}
