#include "sim/answer.h"

#include "handlers/port/bridge_domain_record.h"

#include <algorithm>
#include <cstring>

namespace {

// A port without a role on the VLAN answers that it has none.
void answer_private_vlan(host &state, exchange &talk) {
    if (find_port_view(state, talk.request.arg) == nullptr) {
        return talk.fail(state);
    }
    const auto asked = talk.input_as<kx_port_pvlan>();
    const auto found = state.private_vlans.find({talk.request.arg & LAST_LTL, asked.vlan});
    talk.reply_with(found == state.private_vlans.end() ? asked : found->second);
}

// The views share one description: what the first of them says.
void learn_private_vlan(host &state, const exchange &told) {
    const auto asked = told.input_as<kx_port_pvlan>();
    const auto pvlan = told.reply_as<kx_port_pvlan>();
    if (told.is_told() && std::memcmp(&asked, &pvlan, sizeof pvlan) != 0 &&
        std::max({asked.vlan, pvlan.primary, pvlan.secondary}) <= KX_LAST_VLAN) {
        state.private_vlans.try_emplace({told.request.arg & LAST_LTL, asked.vlan}, pvlan);
    }
}

constexpr answer PRIVATE_VLAN_ANSWERS[] = {
    exchanged<kx_port_pvlan>(KXDPA_OP_PORT_PVLAN, answer_private_vlan, learn_private_vlan),
};

} // namespace

constinit const family private_vlan_family = PRIVATE_VLAN_ANSWERS;
