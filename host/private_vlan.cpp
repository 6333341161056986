#include "host/private_vlan.h"
#include "host/access.h"
#include "host/keys.h"

#include "handlers/port/bridge_domain_record.h"

namespace {

using pair_entry = keyed<private_vlan_table>;

constexpr key_word ROLES[] = {{"none", KX_PVLAN_NONE},
                              {"isolated", KX_PVLAN_ISOLATED},
                              {"community", KX_PVLAN_COMMUNITY},
                              {"promiscuous", KX_PVLAN_PROMISCUOUS},
                              {"promiscuous-trunk", KX_PVLAN_PROMISCUOUS_TRUNK}};

template <auto member> constexpr key_access IN_PAIR = at<&pair_entry::value, member>;

// The VLAN is part of the key that the entry is kept under.
constexpr key_access VLAN = computed<[](const pair_entry &entry) { return entry.key.second; },
                                     [](pair_entry &entry, uint32_t vlan) {
                                         entry.key.second = vlan;
                                         entry.value.vlan = static_cast<uint16_t>(vlan);
                                     }>;

constexpr key PRIVATE_VLAN_ROWS[] = {
    number_key("ltl", at<&pair_entry::key, &private_vlan_table::key_type::first>, "the port")
        .once()
        .in("LTL"),
    number_key("vlan", VLAN, "a bridge domain's VLAN").to(KX_LAST_VLAN).once().in("VLAN"),
    word_key("role", IN_PAIR<&kx_port_pvlan::role>, ROLES, "what the port is to that VLAN"),
    number_key("primary", IN_PAIR<&kx_port_pvlan::primary>, "primary VLAN")
        .to(KX_LAST_VLAN)
        .in("VLAN"),
    number_key("secondary", IN_PAIR<&kx_port_pvlan::secondary>,
               "secondary VLAN, 0 where a promiscuous port is asked for the primary itself")
        .to(KX_LAST_VLAN)
        .in("VLAN"),
};

} // namespace

constinit const key_table PRIVATE_VLAN_KEYS = {"private_vlan", "A port on a private VLAN",
                                               PRIVATE_VLAN_ROWS, make_object<pair_entry>};
