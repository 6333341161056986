#include "sim/lacp/lacp_state.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <set>

namespace {

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

constexpr answer LACP_ANSWERS[] = {
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

constinit const family lacp_family = {LACP_ANSWERS};
