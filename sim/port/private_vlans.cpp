#include "sim/port/private_vlans.h"

#include "handlers/port/bridge_domain_record.h"
#include "sim/port/ports.h"

namespace {

// A port without a role on the VLAN answers that it has none.
void answer_private_vlan(host &state, exchange &talk) {
    const uint32_t ltl = talk.request.arg & 0xFFFFFF;
    if (find_port_view(state, talk.request.arg) == nullptr) {
        talk.fail();
        return;
    }
    const auto asked = talk.input_as<kx_port_pvlan>();
    const auto found = state.private_vlans.find({ltl, asked.vlan});
    talk.reply_with(found == state.private_vlans.end() ? asked : found->second);
}

constexpr answer PRIVATE_VLAN_ANSWERS[] = {
    {.opcode = KXDPA_OP_PORT_PVLAN,
     .flags = KXDPA_FLAG_OUT | KXDPA_FLAG_IN,
     .len1 = sizeof(kx_port_pvlan),
     .reply = answer_private_vlan},
};

} // namespace

constinit const family private_vlan_family = {PRIVATE_VLAN_ANSWERS};
