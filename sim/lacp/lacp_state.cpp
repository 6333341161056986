#include "sim/answer.h"

#include <type_traits>

namespace {

template <auto member>
using uplink_value = typename std::remove_reference_t<decltype(lacp_uplink{}.*member)>::value_type;

// A member of the uplink that the argument names.
template <auto member> void answer_uplink(host &state, exchange &talk) {
    const auto found = state.lacp.uplinks.find(talk.request.arg);
    if (found == state.lacp.uplinks.end()) {
        talk.fail(state);
    } else {
        talk.tell(state, found->second.*member);
    }
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

template <auto member> void answer_common(host &state, exchange &talk) {
    talk.tell(state, state.lacp.*member);
}

template <auto member> void learn_common(host &state, const exchange &told) {
    told.learn(state.lacp.*member);
}

constexpr answer LACP_ANSWERS[] = {
    get<uint32_t>(KXDPA_OP_LACP_OFFLOAD, answer_common<&lacp_state::offload>,
                  learn_common<&lacp_state::offload>),
    get<kx_lacp_carriers>(KXDPA_OP_LACP_CARRIERS, answer_common<&lacp_state::carriers>,
                          learn_common<&lacp_state::carriers>),
    of_uplink<&lacp_uplink::bit>(KXDPA_OP_LACP_BIT),
    of_uplink<&lacp_uplink::port_state>(KXDPA_OP_LACP_PORT_STATE),
    of_uplink<&lacp_uplink::upgrade_notify>(KXDPA_OP_LACP_UPGRADE_NOTIFY),
    of_uplink<&lacp_uplink::pdus>(KXDPA_OP_LACP_PDU_CACHE),
    of_uplink<&lacp_uplink::host_data>(KXDPA_OP_LACP_HOST_DATA),
};

} // namespace

constinit const family lacp_family = LACP_ANSWERS;
