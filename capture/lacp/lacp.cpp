#include "capture/host_capture.h"
#include "handlers/lacp/lacp_record.h"

#include <algorithm>
#include <iterator>

namespace {

// What is no LACP uplink stands for an unused entry.
bool is_used(uint32_t ltl) {
    return ltl >= KX_LACP_FIRST_LTL && ltl <= KX_LACP_LAST_LTL;
}

void ask_carriers(inquiry &driver, std::optional<kx_lacp_carriers> &into) {
    driver.get<KXDPA_OP_LACP_CARRIERS>(0, &into);
    if (into) {
        std::replace_if(
            std::begin(into->physical_ltls), std::end(into->physical_ltls),
            [](uint32_t ltl) { return !is_used(ltl); }, 0U);
    }
}

bool is_told(const lacp_uplink &uplink) {
    return uplink.bit || uplink.port_state || uplink.upgrade_notify || uplink.pdus ||
           uplink.host_data;
}

} // namespace

void capture_lacp(host_capture &host) {
    inquiry &driver = host.driver;
    driver.begin("LACP");
    lacp_state &into = host.captured.lacp;
    driver.get<KXDPA_OP_LACP_OFFLOAD>(0, &into.offload);
    ask_carriers(driver, into.carriers);
    for (uint32_t ltl = 0; ltl <= KX_LACP_LAST_LTL; ltl++) {
        lacp_uplink uplink;
        driver.get<KXDPA_OP_LACP_BIT>(ltl, &uplink.bit);
        driver.get<KXDPA_OP_LACP_PORT_STATE>(ltl, &uplink.port_state);
        driver.get<KXDPA_OP_LACP_UPGRADE_NOTIFY>(ltl, &uplink.upgrade_notify);
        driver.get<KXDPA_OP_LACP_PDU_CACHE>(ltl, &uplink.pdus);
        driver.get<KXDPA_OP_LACP_HOST_DATA>(ltl, &uplink.host_data);
        if (is_told(uplink)) {
            into.uplinks.emplace(ltl, uplink);
        }
    }
    if (!host.exact) {
        return;
    }
    // Of any other member of a port channel a display asks for its bit alone.
    capture_port_channels(host);
    for (const auto &[channel_ltl, channel] : host.captured.port_channels.by_ltl) {
        for (const port_channel_member &member : channel.members) {
            lacp_uplink uplink;
            if (member.ltl <= KX_LACP_LAST_LTL || into.uplinks.contains(member.ltl)) {
                continue;
            }
            driver.get<KXDPA_OP_LACP_BIT>(member.ltl, &uplink.bit);
            if (uplink.bit) {
                into.uplinks.emplace(member.ltl, uplink);
            }
        }
    }
}
