#include "capture/bridge_domain/groups.h"
#include "capture/host_capture.h"
#include "capture/walk.h"

#include <algorithm>
#include <iterator>
#include <set>

namespace {

constexpr uint32_t BEFORE_FIRST_VLAN = 0; // and behind the last one

void ask_members(inquiry &driver, uint32_t index, bridge_domain &into) {
    uint32_t count = 0;
    const bool counted = driver.get<KXDPA_OP_BD_PORT_COUNT>(index, &count);
    const auto step = [&](uint32_t *ltl) {
        return driver.exchange<KXDPA_OP_BD_NEXT_PORT>(index, ltl, if_refused::WALK_END) &&
               is_walked_ltl(driver, KXDPA_OP_BD_NEXT_PORT, *ltl);
    };
    const std::vector<uint32_t> members =
        collect_walk(driver, KXDPA_OP_BD_NEXT_PORT, KX_LTL_BEFORE_FIRST, step, LTL_WALK_LIMIT);
    if (!counted && members.empty()) {
        into.members.reset();
        return;
    }
    into.members.emplace(members.begin(), members.end());
    for_odd_steps(members, KX_LTL_BEFORE_FIRST, [&](uint32_t from, std::optional<uint32_t> to) {
        if (to) {
            driver.keep_reply(KXDPA_OP_BD_NEXT_PORT, index, from, *to);
        } else {
            driver.keep_refusal(KXDPA_OP_BD_NEXT_PORT, index, from);
        }
    });
    if (!counted) {
        driver.keep_refusal(KXDPA_OP_BD_PORT_COUNT, index);
    } else if (count != into.members->size()) {
        driver.keep_reply(KXDPA_OP_BD_PORT_COUNT, index, count);
    }
}

bool can_be_described(const kx_bd_record &record) {
    return record.vlan <= KX_LAST_VLAN;
}

// Members may be ports that the walk of the ports does not name: displays ask for them all the
// same.
void check_members(host_capture &host) {
    std::vector<uint32_t> ports;
    for (const auto &[ltl, port] : walked_ports(host).by_ltl) {
        ports.push_back(ltl);
    }
    std::vector<uint32_t> others;
    for (const auto &[index, bd] : host.captured.bridge_domains.by_index) {
        if (bd.members) {
            std::set_difference(bd.members->begin(), bd.members->end(), ports.begin(), ports.end(),
                                std::back_inserter(others));
        }
    }
    for (const uint32_t ltl : number_set(others.begin(), others.end())) {
        kx_port_record record;
        const uint32_t argument = kx_port_argument(KX_VIEW_HMX, ltl);
        if (host.driver.get<KXDPA_OP_PORT_RECORD>(argument, &record)) {
            host.driver.keep_reply(KXDPA_OP_PORT_RECORD, argument, record);
        }
    }
}

} // namespace

void capture_bridge_domains(host_capture &host) {
    std::set<uint32_t> vlans; // whose groups have been asked for
    auto &into = host.captured.bridge_domains.by_index;
    for (const walked_bridge_domain &walked : walked_bridge_domains(host)) {
        host.driver.begin("bridge domains");
        bridge_domain &bd = into[walked.index];
        bd.known = walked.known;
        bd.record.index = walked.index;
        if (!walked.known) {
            continue;
        }
        ask_members(host.driver, walked.index, bd);
        const uint32_t vlan = walked.record.vlan;
        const bool has_groups = walked.record.kind == 0 && vlan != 0 && vlans.insert(vlan).second;
        if (can_be_described(walked.record)) {
            bd.record = walked.record;
            bd.groups = has_groups ? ask_groups(host.driver, vlan) : bd.groups;
        } else {
            host.driver.keep_reply(KXDPA_OP_BD_RECORD, walked.index, walked.record);
            if (has_groups) {
                keep_groups(host.driver, vlan);
            }
        }
    }
    check_number<KXDPA_OP_BD_COUNT>(host, 0, static_cast<uint32_t>(into.size()));
    if (host.exact) {
        check_members(host);
        check_lookups(host);
    }
}

void capture_vlans(host_capture &host) {
    inquiry &driver = host.driver;
    driver.begin("VLANs");
    auto &into = host.captured.bridge_domains.vlans;
    uint32_t count = 0;
    const bool counted = driver.get<KXDPA_OP_VLAN_COUNT>(0, &count);
    const std::vector<uint32_t> vlans =
        collect_walk(driver, KXDPA_OP_NEXT_VLAN, BEFORE_FIRST_VLAN, [&](uint32_t *vlan) {
            const uint32_t from = *vlan;
            if (!driver.get<KXDPA_OP_NEXT_VLAN>(from, vlan, if_refused::WALK_END)) {
                return false;
            }
            if (*vlan == BEFORE_FIRST_VLAN || *vlan > KX_LAST_VLAN) {
                driver.keep_reply(KXDPA_OP_NEXT_VLAN, from, *vlan);
                return false;
            }
            return true;
        });
    if (!counted && vlans.empty()) {
        into.reset();
        return;
    }
    into.emplace(vlans.begin(), vlans.end());
    keep_odd_steps(driver, KXDPA_OP_NEXT_VLAN, vlans, BEFORE_FIRST_VLAN);
    if (!counted) {
        driver.keep_refusal(KXDPA_OP_VLAN_COUNT, 0);
    } else if (count != into->size()) {
        driver.keep_reply(KXDPA_OP_VLAN_COUNT, 0, count);
    }
}
