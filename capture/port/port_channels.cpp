#include "capture/host_capture.h"

#include <algorithm>

void capture_port_channel_mode(host_capture &host) {
    host.driver.begin("port channels");
    host.driver.get<KXDPA_OP_PINNING_MODE>(0, &host.captured.port_channels.mode);
}

void capture_port_channels(host_capture &host) {
    if (host.has_port_channels) {
        return;
    }
    host.has_port_channels = true;
    inquiry &driver = host.driver;
    driver.begin("port channels");
    for (uint32_t ltl = KX_LTL_FIRST_PORT_CHANNEL; ltl <= KX_LTL_LAST_PORT_CHANNEL; ltl++) {
        kx_port_channel_record record;
        if (!driver.get<KXDPA_OP_PORT_CHANNEL_RECORD>(ltl, &record)) {
            continue;
        }
        if (record.member_count > KX_PC_MEMBERS) {
            driver.keep_reply(KXDPA_OP_PORT_CHANNEL_RECORD, ltl, record);
        }
        port_channel &into = host.captured.port_channels.by_ltl[ltl];
        into.channel = record.channel;
        into.designated_sub_group = record.designated_sub_group;
        for (uint32_t i = 0; i < std::min(record.member_count, KX_PC_MEMBERS); i++) {
            port_channel_member &member = into.members.emplace_back();
            member.ltl = record.members[i].ltl;
            member.sub_group = record.members[i].sub_group;
            driver.get<KXDPA_OP_PINNED_PORTS>(member.ltl, &member.pinned);
        }
    }
}
