// The walks that several parts of a capture need.
#include "capture/host_capture.h"
#include "capture/walk.h"
#include "handlers/port/shared/bridge_domain.h"
#include "handlers/port/shared/port.h"

namespace {

constexpr uint32_t BEFORE_FIRST_BD = 0;

void walk_ltls(host_capture &host) {
    inquiry &driver = host.driver;
    driver.begin("LTLs");
    const auto step = [&](uint32_t *ltl) {
        return driver.get<KXDPA_OP_NEXT_LTL>(*ltl, ltl, if_refused::WALK_END) &&
               is_walked_ltl(driver, KXDPA_OP_NEXT_LTL, *ltl);
    };
    host.ltls = collect_walk(driver, KXDPA_OP_NEXT_LTL, KX_LTL_BEFORE_FIRST, step, LTL_WALK_LIMIT);
    keep_odd_steps(driver, KXDPA_OP_NEXT_LTL, *host.ltls, KX_LTL_BEFORE_FIRST);
}

void walk_bridge_domains(host_capture &host) {
    inquiry &driver = host.driver;
    driver.begin("bridge domains");
    const std::vector<uint32_t> indexes =
        collect_walk(driver, KXDPA_OP_NEXT_BD, BEFORE_FIRST_BD, [&](uint32_t *index) {
            const uint32_t from = *index;
            if (!driver.get<KXDPA_OP_NEXT_BD>(from, index, if_refused::WALK_END)) {
                return false;
            }
            if (*index == BEFORE_FIRST_BD) { // ends the lists, too
                driver.keep_reply(KXDPA_OP_NEXT_BD, from, *index);
            }
            return *index != BEFORE_FIRST_BD;
        });
    keep_odd_steps(driver, KXDPA_OP_NEXT_BD, indexes, BEFORE_FIRST_BD);
    std::vector<walked_bridge_domain> &walked = host.bridge_domains.emplace();
    for (const uint32_t index : indexes) {
        kx_bd_record record;
        const bool known = driver.get<KXDPA_OP_BD_RECORD>(index, &record);
        record.index = index;
        walked.push_back({index, known, record});
    }
}

void ask_records(host_capture &host, uint32_t ltl, port &into) {
    for (const kx_port_view which : PORT_VIEW_ORDER) {
        port_view &view = into.views[which];
        kx_port_record record;
        view.known = host.driver.get<KXDPA_OP_PORT_RECORD>(kx_port_argument(which, ltl), &record);
        // A view without a record is described like the HMX's own.
        view.record = view.known ? record : into.views[KX_VIEW_HMX].record;
    }
}

} // namespace

bool is_displayed(uint32_t ltl, const port_view &view) {
    return view.known && !kx_port_is_hidden(ltl, view.record);
}

port_table &walked_ports(host_capture &host) {
    port_table &ports = host.captured.ports;
    if (!host.has_ports) {
        host.has_ports = true;
        for (const uint32_t ltl : walked_ltls(host)) {
            host.driver.begin("ports");
            ask_records(host, ltl, ports.by_ltl[ltl]);
        }
    }
    return ports;
}

const std::vector<uint32_t> &walked_ltls(host_capture &host) {
    if (!host.ltls) {
        walk_ltls(host);
    }
    return *host.ltls;
}

const std::vector<walked_bridge_domain> &walked_bridge_domains(host_capture &host) {
    if (!host.bridge_domains) {
        walk_bridge_domains(host);
    }
    return *host.bridge_domains;
}

const std::set<uint16_t> &walked_port_vlans(host_capture &host) {
    if (!host.port_vlans) {
        std::set<uint16_t> &vlans = host.port_vlans.emplace();
        for (const walked_bridge_domain &bd : walked_bridge_domains(host)) {
            if (bd.known && !kx_bd_is_vxlan_segment(bd.record)) {
                vlans.insert(bd.record.vlan);
            }
        }
    }
    return *host.port_vlans;
}
