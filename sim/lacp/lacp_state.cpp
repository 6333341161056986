#include "sim/answer.h"

#include <type_traits>

namespace {

template <auto member>
using uplink_value = typename std::remove_reference_t<decltype(lacp_uplink{}.*member)>::value_type;

// A member of the uplink that the argument names.
template <auto member> void answer_uplink(host &state, exchange &talk) {
    talk.tell(state, member_in<member>(value_in(state.lacp.uplinks, talk.request.arg)));
}

// What a driver refuses of a port of which it has told nothing is refused of any port.
template <auto member> void learn_uplink(host &state, const exchange &told) {
    const uint32_t ltl = told.request.arg;
    if (told.is_told() || state.lacp.uplinks.contains(ltl)) {
        told.learn(state.lacp.uplinks[ltl].*member);
    }
}

template <auto member> constexpr answer of_uplink(kxdpa_opcode opcode) {
    return get<uplink_value<member>>(opcode, answer_uplink<member>, learn_uplink<member>);
}

constexpr answer LACP_ANSWERS[] = {
    value<&host::lacp, &lacp_state::offload>(KXDPA_OP_LACP_OFFLOAD),
    value<&host::lacp, &lacp_state::carriers>(KXDPA_OP_LACP_CARRIERS),
    of_uplink<&lacp_uplink::bit>(KXDPA_OP_LACP_BIT),
    of_uplink<&lacp_uplink::port_state>(KXDPA_OP_LACP_PORT_STATE),
    of_uplink<&lacp_uplink::upgrade_notify>(KXDPA_OP_LACP_UPGRADE_NOTIFY),
    of_uplink<&lacp_uplink::pdus>(KXDPA_OP_LACP_PDU_CACHE),
    of_uplink<&lacp_uplink::host_data>(KXDPA_OP_LACP_HOST_DATA),
};

} // namespace

constinit const family lacp_family = LACP_ANSWERS;
