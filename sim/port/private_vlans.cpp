#include "sim/port/private_vlans.h"

#include "handlers/port/bridge_domain_record.h"
#include "sim/object_reader.h"
#include "sim/port/ports.h"

namespace {

void parse_private_vlans(object_reader &file, host &into) {
    file.each("private_vlans", [&](object_reader &keys) {
        uint32_t ltl = 0;
        kx_port_pvlan pvlan{};
        keys.require("ltl");
        keys.number("ltl", ltl);
        keys.require("vlan");
        keys.number("vlan", pvlan.vlan, 0, KX_LAST_VLAN);
        keys.choice("role", pvlan.role,
                    {{"none", KX_PVLAN_NONE},
                     {"isolated", KX_PVLAN_ISOLATED},
                     {"community", KX_PVLAN_COMMUNITY},
                     {"promiscuous", KX_PVLAN_PROMISCUOUS},
                     {"promiscuous-trunk", KX_PVLAN_PROMISCUOUS_TRUNK}});
        keys.number("primary", pvlan.primary, 0, KX_LAST_VLAN);
        keys.number("secondary", pvlan.secondary, 0, KX_LAST_VLAN);
        if (!into.private_vlans.emplace(std::pair{ltl, pvlan.vlan}, pvlan).second) {
            keys.fail("vlan", "is used twice on the port");
        }
    });
}

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

constexpr answer ANSWERS[] = {
    {.opcode = KXDPA_OP_PORT_PVLAN,
     .flags = KXDPA_FLAG_OUT | KXDPA_FLAG_IN,
     .len1 = sizeof(kx_port_pvlan),
     .reply = answer_private_vlan},
};

} // namespace

constinit const family private_vlan_family = {parse_private_vlans, ANSWERS};
