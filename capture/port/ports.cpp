#include "capture/host_capture.h"
#include "infra/utils/kxlibbmp.h"

namespace {

number_set vlans_in(const bmp4096 &set) {
    number_set vlans;
    for (uint32_t byte = 0; byte < sizeof set.bits; byte++) {
        for (uint32_t bit = 0; set.bits[byte] != 0 && bit < 8; bit++) {
            if ((set.bits[byte] & 0x80U >> bit) != 0) {
                vlans.insert(byte * 8 + bit);
            }
        }
    }
    return vlans;
}

void ask_vlans(inquiry &driver, uint32_t argument, port_view &view) {
    bmp4096 set;
    bmp4096_init(&set);
    const uint32_t size = set.size;
    if (!driver.exchange_variable<KXDPA_OP_PORT_VLAN_SET>(argument, &set)) {
        view.vlans.reset();
        return;
    }
    view.vlans = vlans_in(set);
    if (set.size != size) {
        driver.keep_reply(KXDPA_OP_PORT_VLAN_SET, argument, set);
    }
}

// Only a port in VLAN mode is asked on which VLANs it forwards.
void ask_forwarding(host_capture &host, uint32_t argument, port_view &view) {
    view.forwards_on.clear();
    for (const uint16_t vlan : walked_port_vlans(host)) {
        kx_vlan_forwarding query{};
        query.vlan = vlan;
        const kx_vlan_forwarding asked = query;
        if (!host.driver.exchange<KXDPA_OP_VLAN_FORWARDING>(argument, &query, if_refused::KEPT) ||
            query.forwarding == 0) {
            continue;
        }
        if (vlan <= KX_LAST_VLAN) {
            view.forwards_on.insert(vlan);
        } else {
            host.driver.keep_reply(KXDPA_OP_VLAN_FORWARDING, argument, asked, query);
        }
    }
}

void ask_about(host_capture &host, uint32_t ltl, port &into) {
    inquiry &driver = host.driver;
    for (const kx_port_view which : PORT_VIEW_ORDER) {
        port_view &view = into.views[which];
        if (is_displayed(ltl, view)) {
            ask_vlans(driver, kx_port_argument(which, ltl), view);
            if (view.record.vlan_mode == KX_VLAN_MODE) {
                ask_forwarding(host, kx_port_argument(which, ltl), view);
            }
        } else if (which != KX_VIEW_HMX) {
            // Nobody asks for these, so they are as in the HMX's own view.
            view.vlans = into.views[KX_VIEW_HMX].vlans;
            view.forwards_on = into.views[KX_VIEW_HMX].forwards_on;
        }
    }
    mac_address mac;
    uint32_t capacity = sizeof mac;
    if (driver.get_variable<KXDPA_OP_PORT_MAC>(ltl, &mac, sizeof mac, &capacity)) {
        into.mac = mac;
    }
    driver.get<KXDPA_OP_PORT_SECURITY>(ltl, &into.security);
    uint32_t state = 0;
    into.secure = driver.get<KXDPA_OP_SECURE_PORT_STATE>(ltl, &state);
}

} // namespace

void capture_ports(host_capture &host) {
    port_table &ports = walked_ports(host);
    host.driver.begin("ports");
    for (auto &[ltl, into] : ports.by_ltl) {
        ask_about(host, ltl, into);
    }
}
