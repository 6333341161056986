#include "host/host.h"
#include "host/access.h"
#include "host/keys.h"

#include "handlers/port/bridge_domain_record.h"

namespace {

constexpr uint64_t LONGEST_ADDRESS = 126; // bytes

constexpr key_word PORT_CHANNEL_MODES[] = {{"none", KX_PC_MODE_NONE},
                                           {"static", KX_PC_MODE_STATIC},
                                           {"lacp-active", KX_PC_MODE_LACP_ACTIVE},
                                           {"lacp-passive", KX_PC_MODE_LACP_PASSIVE},
                                           {"mac-pinning", KX_PC_MODE_MAC_PINNING}};

constexpr key HOST_ROWS[] = {
    object_key("capture", part<&host::capture>, CAPTURE_KEYS,
               "what a capture says of itself; it takes no part in comparisons")
        .or_else("described by hand"),
    number_key("refusal_status", at<&host::refusal_status>,
               "what the driver refuses with, and ends walks with")
        .from(1),
    object_key("card", part<&host::card>, CARD_KEYS, "the card's global state"),
    list_key("heaps", items_of<&host::memory, &memory_state::heaps>, HEAP_KEYS,
             "the DPA's heaps, in the order of the walk"),
    list_key("memory_pools", items_of<&host::memory, &memory_state::pools>, MEMORY_POOL_KEYS,
             "its memory pools, in the order of the walk"),
    number_key("asserts", at<&host::memory, &memory_state::asserts>, "asserts that failed"),
    numbers_key("vlans", at<&host::bridge_domains, &bridge_domain_table::vlans>,
                "the VLANs that exist, reserved ones included")
        .from(1)
        .to(KX_LAST_VLAN)
        .in("VLAN"),
    list_key("bridge_domains", items_of<&host::bridge_domains, &bridge_domain_table::by_index>,
             BRIDGE_DOMAIN_KEYS, "the bridge domains"),
    list_key("ports", items_of<&host::ports, &port_table::by_ltl>, PORT_KEYS, "the ports"),
    list_key("private_vlans", items_of<&host::private_vlans>, PRIVATE_VLAN_KEYS,
             "what ports are to private VLANs; a port that is not listed has no role"),
    word_key("port_channel_mode", at<&host::port_channels, &port_channel_table::mode>,
             PORT_CHANNEL_MODES, "how the port channels are formed"),
    list_key("port_channels", items_of<&host::port_channels, &port_channel_table::by_ltl>,
             PORT_CHANNEL_KEYS, "the port channels"),
    object_key("l2", part<&host::l2>, L2_KEYS, "the L2 (MAC) tables"),
    list_key("acls", items_of<&host::acls, &acl_table::acls>, ACCESS_LIST_KEYS,
             "access control lists, in the driver's order"),
    object_key("lacp", part<&host::lacp>, LACP_KEYS, "LACP on the uplinks"),
    list_key("traffic", items_of<&host::counters, &counter_table::traffic>, TRAFFIC_KEYS,
             "traffic of ports; one that is not listed has none"),
    list_key("stages", items_of<&host::counters, &counter_table::stages>, STAGE_KEYS,
             "the pipeline's stages in order, 0 to 23 ingress, from 24 egress")
        .up_to(UINT8_MAX + 1),
    list_key("drops", items_of<&host::counters, &counter_table::drops>, DROP_KEYS,
             "drops of ports; one that is not listed has 0 at every stage that is present"),
    flag_key("drops_of_ports_alone", at<&host::counters, &counter_table::drops_of_ports_alone>,
             "those of an LTL that is neither listed, a port nor internal are refused, else they "
             "are 0, too"),
    object_key("multicast_drops", part<&host::counters, &counter_table::multicast_drops>,
               STAGE_DROP_KEYS, "drops of multicast")
        .or_else("refused"),
    object_key("flood_drops", part<&host::counters, &counter_table::flood_drops>, STAGE_DROP_KEYS,
               "drops of floods")
        .or_else("refused"),
    object_key("agent", part<&host::agent>, AGENT_KEYS, "the user-space agent")
        .or_else("none runs"),
    text_key("management_address", at<&host::management_address>,
             "what the host's own program tells; empty for no output")
        .to(LONGEST_ADDRESS)
        .or_else("no such program"),
    list_key("overrides", items_of<&host::overrides>, OVERRIDE_KEYS,
             "answers to replace; the first that fits a request is given"),
};

} // namespace

constinit const key_table HOST_KEYS = {"host", "The host file", HOST_ROWS, make_object<host>};
