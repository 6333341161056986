#include "sim/lacp/lacp_state.h"

#include "sim/object_reader.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <set>

namespace {

void parse_carriers(object_reader &keys, kx_lacp_carriers &carriers) {
    std::set<uint32_t> physical;
    keys.numbers("physical", physical, 0, UINT32_MAX);
    if (physical.size() > std::size(carriers.physical_ltls)) {
        keys.fail("physical", "expected at most 8 LTLs");
    }
    std::copy(physical.begin(), physical.end(), carriers.physical_ltls);
    keys.number("port_channel", carriers.port_channel_ltl);
}

void parse_partner(object_reader &keys, kx_lacp_partner &partner) {
    keys.number("system_priority", partner.system_priority);
    std::array<uint8_t, 6> mac{};
    keys.mac("system_mac", mac);
    std::copy(mac.begin(), mac.end(), partner.system_mac);
    keys.number("key", partner.key);
    keys.number("port_priority", partner.port_priority);
    keys.number("port_number", partner.port_number);
    keys.number("state", partner.state);
}

void parse_pdus(object_reader &keys, kx_lacp_pdu_cache &pdus) {
    const auto partner = [&](const char *key, kx_lacp_partner &into) {
        keys.object(key, [&](object_reader &side) { parse_partner(side, into); });
    };
    partner("krt_actor", pdus.krt_actor);
    partner("krt_partner", pdus.krt_partner);
    partner("upstream_actor", pdus.upstream_actor);
    partner("upstream_partner", pdus.upstream_partner);
}

void parse_host_data(object_reader &keys, kx_lacp_host_data &data) {
    data.channel_index = KX_LACP_NO_HOST_DATA;
    keys.number("channel", data.channel_index);
    keys.choice("mode", data.channel_mode,
                {{"active", KX_LACP_ACTIVE}, {"passive", KX_LACP_PASSIVE}});
    keys.number("port_priority", data.port_priority);
}

lacp_uplink parse_uplink(object_reader &keys) {
    lacp_uplink uplink;
    keys.flag("bit", uplink.bit);
    keys.choice("state", uplink.port_state,
                {{"initialized", 0},
                 {"undefined", 1},
                 {"channeling", 2},
                 {"individual", 3},
                 {"failed", 4},
                 {"suspended", 5},
                 {"hot-standby", 6}});
    keys.flag("upgrade_notify", uplink.upgrade_notify);
    keys.object("pdus", [&](object_reader &pdus) { parse_pdus(pdus, uplink.pdus.emplace()); });
    keys.object("host_data",
                [&](object_reader &data) { parse_host_data(data, uplink.host_data.emplace()); });
    return uplink;
}

void parse_lacp(object_reader &file, host &into) {
    file.object("lacp", [&](object_reader &keys) {
        keys.flag("offload", into.lacp.offload);
        keys.object("carriers", [&](object_reader &carriers) {
            parse_carriers(carriers, into.lacp.carriers.emplace());
        });
        keys.each("uplinks", [&](object_reader &uplink) {
            uint32_t ltl = 0;
            uplink.require("ltl");
            uplink.number("ltl", ltl);
            if (!into.lacp.uplinks.emplace(ltl, parse_uplink(uplink)).second) {
                uplink.fail("ltl", "is used twice");
            }
        });
    });
}

// Answers with a member of the uplink that the argument names; fails where it has none.
template <auto member> void answer_uplink(host &state, exchange &talk) {
    const auto found = state.lacp.uplinks.find(talk.request.arg);
    if (found == state.lacp.uplinks.end()) {
        talk.fail();
    } else {
        talk.tell(found->second.*member);
    }
}

void answer_offload(host &state, exchange &talk) {
    talk.tell(state.lacp.offload);
}

void answer_carriers(host &state, exchange &talk) {
    talk.tell(state.lacp.carriers);
}

constexpr answer record(kxdpa_opcode opcode, uint32_t size, void (*reply)(host &, exchange &)) {
    return {.opcode = opcode, .flags = KXDPA_FLAG_OUT, .len1 = size, .reply = reply};
}

constexpr answer ANSWERS[] = {
    record(KXDPA_OP_LACP_OFFLOAD, 4, answer_offload),
    record(KXDPA_OP_LACP_CARRIERS, sizeof(kx_lacp_carriers), answer_carriers),
    record(KXDPA_OP_LACP_BIT, 4, answer_uplink<&lacp_uplink::bit>),
    record(KXDPA_OP_LACP_PORT_STATE, 4, answer_uplink<&lacp_uplink::port_state>),
    record(KXDPA_OP_LACP_UPGRADE_NOTIFY, 4, answer_uplink<&lacp_uplink::upgrade_notify>),
    record(KXDPA_OP_LACP_PDU_CACHE, sizeof(kx_lacp_pdu_cache), answer_uplink<&lacp_uplink::pdus>),
    record(KXDPA_OP_LACP_HOST_DATA, sizeof(kx_lacp_host_data),
           answer_uplink<&lacp_uplink::host_data>),
};

} // namespace

constinit const family lacp_family = {parse_lacp, ANSWERS};
