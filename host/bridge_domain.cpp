#include "host/access.h"
#include "host/host.h"
#include "host/keys.h"

namespace {

using domain_entry = keyed<decltype(bridge_domain_table::by_index)>;

constexpr key_word KINDS[] = {{"vlan", 0}, {"segment", KX_BD_KIND_SEGMENT}};

constexpr key_word SEGMENT_MODES[] = {{"multicast", KX_SEGMENT_MULTICAST},
                                      {"unicast", KX_SEGMENT_UNICAST}};

constexpr key_word SEGMENT_FEATURES[] = {{"mac-distribution", KX_SEGMENT_MAC_DISTRIBUTION},
                                         {"local-arp-termination", KX_SEGMENT_LOCAL_ARP}};

template <auto member>
constexpr key_access IN_DOMAIN = at<&domain_entry::value, &bridge_domain::record, member>;

uint32_t index_of(const domain_entry &entry) {
    return entry.key;
}

// The record names itself, too.
void set_index(domain_entry &entry, uint32_t index) {
    entry.key = entry.value.record.index = index;
}

uint16_t vlan_of(const domain_entry &entry) {
    return entry.value.record.vlan;
}

// The software number follows the VLAN, unless it is given, too.
void set_vlan(domain_entry &entry, uint16_t vlan) {
    entry.value.record.swbd = entry.value.record.vlan = vlan;
}

std::optional<uint32_t> segment_of(const domain_entry &entry) {
    const kx_bd_record &record = entry.value.record;
    const bool is_segment = record.kind == KX_BD_KIND_SEGMENT || record.segment_id != 0;
    return is_segment ? std::optional(record.segment_id) : std::nullopt;
}

void set_segment(domain_entry &entry, std::optional<uint32_t> segment) {
    entry.value.record.segment_id = *segment;
    entry.value.record.kind = KX_BD_KIND_SEGMENT;
}

constexpr key_access INDEX = computed<index_of, set_index>;
constexpr key_access DOMAIN_VLAN = computed<vlan_of, set_vlan>;
constexpr key_access SEGMENT = computed<segment_of, set_segment>;

constexpr key_access GROUP = computed<[](const uint32_t &group) { return group; },
                                      [](uint32_t &group, uint32_t given) { group = given; }>;

constexpr key GROUP_ROWS[] = {
    ipv4_key("group", GROUP, "the group's address").once(),
};

constexpr key_table GROUP_KEYS = {"multicast_group", "A multicast group", GROUP_ROWS,
                                  make_object<uint32_t>};

constexpr key BRIDGE_DOMAIN_ROWS[] = {
    number_key("index", INDEX, "the bridge domain's number").from(1).once().in("bridge domain"),
    flag_key("known", at<&domain_entry::value, &bridge_domain::known>,
             "false for one that is listed but cannot be asked for"),
    number_key("vlan", DOMAIN_VLAN, "the VLAN").to(KX_LAST_VLAN).in("VLAN"),
    number_key("vdc", IN_DOMAIN<&kx_bd_record::vdc>, "virtual device context of the VLAN"),
    text_key("name", IN_DOMAIN<&kx_bd_record::name>, "the bridge domain's name"),
    number_key("segment", SEGMENT, "segment ID; makes it a segment").or_else("none").in("segment"),
    word_key("kind", IN_DOMAIN<&kx_bd_record::kind>, KINDS, "what carries it")
        .or_else("`segment` where one is given, else `vlan`"),
    ipv4_key("group", IN_DOMAIN<&kx_bd_record::segment_group>, "multicast group of the segment"),
    flag_key("native", IN_DOMAIN<&kx_bd_record::native_encap>,
             "the segment is carried natively, else in VXLAN"),
    flag_key("proxy", IN_DOMAIN<&kx_bd_record::vff_mode>, "forwarded by proxy, else anycast"),
    number_key("swbd", IN_DOMAIN<&kx_bd_record::swbd>, "software bridge-domain number")
        .or_else("the VLAN"),
    number_key("designated_receiver", IN_DOMAIN<&kx_bd_record::dr_ltl>,
               "the port that receives floods")
        .in("LTL"),
    flag_key("multiple_uplinks", IN_DOMAIN<&kx_bd_record::multi_uplinks>,
             "it has more than one uplink"),
    word_key("segment_mode", IN_DOMAIN<&kx_bd_record::segment_mode>, SEGMENT_MODES,
             "how the segment floods"),
    words_key("segment_features", IN_DOMAIN<&kx_bd_record::segment_features>, SEGMENT_FEATURES,
              "what the segment does besides"),
    number_key("vtep_dsn", IN_DOMAIN<&kx_bd_record::vtep_dsn>, "sequence number of the VTEPs"),
    number_key("mac_dsn", IN_DOMAIN<&kx_bd_record::mac_dsn>, "sequence number of the MACs"),
    number_key("bgp_vtep_dsn", IN_DOMAIN<&kx_bd_record::bgp_vtep_dsn>,
               "sequence number of the VTEPs from BGP"),
    numbers_key("members", at<&domain_entry::value, &bridge_domain::members>, "its ports")
        .to(LAST_LTL)
        .in("LTL"),
    list_key("multicast", items_of<&domain_entry::value, &bridge_domain::groups>, GROUP_KEYS,
             "IPv4 multicast groups of the VLAN, in the order of the walk"),
};

} // namespace

constinit const key_table BRIDGE_DOMAIN_KEYS = {"bridge_domain", "A bridge domain",
                                                BRIDGE_DOMAIN_ROWS, make_object<domain_entry>};
