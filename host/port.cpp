#include "host/access.h"
#include "host/host.h"
#include "host/interface.h"
#include "host/keys.h"

#include "handlers/port/bridge_domain_record.h"
#include "if_index/if_index_name.h"

namespace {

using port_entry = keyed<decltype(port_table::by_ltl)>;

constexpr key_word UP_OR_DOWN[] = {{"up", KX_PORT_UP}, {"down", 0}};

constexpr key_word MODES[] = {{"none", 0},
                              {"uplink", KX_PORT_MODE_SUB_GROUP_A},
                              {"virtual", KX_PORT_MODE_SUB_GROUP_B},
                              {"leaf", KX_PORT_MODE_LEAF_VLANS}};

constexpr key_word ERRORS[] = {{"link-flap", 0},    {"udld", 1},        {"bpdu", 2},
                               {"loopback", 3},     {"storm", 4},       {"dhcp", 5},
                               {"arp", 6},          {"security", 7},    {"psec", 8},
                               {"vpc", 9},          {"stp", 10},        {"vic", 12},
                               {"dcbx", 13},        {"rate-limit", 14}, {"ip-address", 19},
                               {"qos", 22},         {"software", 23},   {"power", 24},
                               {"hmx-config", 253}, {"hmx", 254},       {"none", NO_ERRDIS_EVENT}};

constexpr key_word SUB_GROUPS[] = {{"none", NO_SUB_GROUP}};

constexpr key_word LEAF_BLOCKS[] = {
    {"none", 0}, {"bpdu", KX_LEAF_BLOCK_BPDU}, {"zero-mac", KX_LEAF_BLOCK_ZERO_MAC}};

constexpr key_word LEAF_WAITS[] = {
    {"none", 0}, {"ack", KX_LEAF_WAIT_ACK}, {"policy", KX_LEAF_WAIT_POLICY}};

constexpr key_word SECURE_LEARNING[] = {{"ages-absolute", KX_SECURE_AGES_ABSOLUTE},
                                        {"ages-inactivity", KX_SECURE_AGES_INACTIVITY},
                                        {"never-ages", KX_SECURE_NEVER_AGES}};

template <auto member> constexpr key_access IN_RECORD = at<&port_view::record, member>;

// Whatever a driver says beside "up" is shown as down.
template <auto member> uint8_t up_or_down(const port_view &view) {
    return view.record.*member == KX_PORT_UP ? KX_PORT_UP : uint8_t{0};
}

template <auto member>
constexpr key_access UP = computed<up_or_down<member>, [](port_view &view, uint8_t state) {
    view.record.*member = state;
}>;

constexpr key_access INTERFACE_NAME = {
    .get = [](const void *object) -> key_value {
        const uint32_t index = static_cast<const port_view *>(object)->record.if_index;
        key_value name;
        name.bytes = shown_interface(index);
        if (name.bytes.empty() || interface_index(name.bytes) == index) {
            name.is = key_value::state::out_of_place;
        }
        return name;
    },
    .set = [](void *, const key_value &) { return true; },
    .most = IF_INDEX_NAME_SIZE,
};

constexpr key VIEW_ROWS[] = {
    flag_key("known", at<&port_view::known>, "false for a port that the view has no record of"),
    text_key("interface_name", INTERFACE_NAME,
             "the name that is shown for an interface that stands there as a number; not read")
        .or_else("that of `interface`"),
    interface_key("interface", IN_RECORD<&kx_port_record::if_index>, "its interface")
        .or_else("none"),
    text_key("name", IN_RECORD<&kx_port_record::hmx_port_name>, "its name on the host"),
    text_key("device", IN_RECORD<&kx_port_record::device_type>, "the device behind it"),
    word_key("admin", UP<&kx_port_record::admin_state>, UP_OR_DOWN, "whether it is enabled")
        .written(),
    word_key("link", UP<&kx_port_record::link_state>, UP_OR_DOWN, "whether it has a link")
        .written(),
    flag_key("forwarding", IN_RECORD<&kx_port_record::forwarding>, "it forwards"),
    word_key("mode", IN_RECORD<&kx_port_record::port_mode>, MODES,
             "`uplink` has the sub-group a, `virtual` b, `leaf` forwards when it has VLANs"),
    flag_key("vlan_mode", IN_RECORD<&kx_port_record::vlan_mode>, "it forwards per VLAN: a trunk"),
    numbers_key("vlans", at<&port_view::vlans>, "configured on it").to(KX_LAST_VLAN).in("VLAN"),
    numbers_key("forwards_on", at<&port_view::forwards_on>, "on which it forwards")
        .to(KX_LAST_VLAN)
        .in("VLAN"),
    word_key("error", IN_RECORD<&kx_port_record::errdis_event>, ERRORS, "why it is error-disabled"),
    number_key("port_channel", IN_RECORD<&kx_port_record::pc_ltl>,
               "port channel that it is a member of, 0 for none")
        .in("LTL"),
    word_key("sub_group_a", IN_RECORD<&kx_port_record::sub_group_a>, SUB_GROUPS,
             "sub-group of an uplink"),
    word_key("sub_group_b", IN_RECORD<&kx_port_record::sub_group_b>, SUB_GROUPS,
             "sub-group that a virtual port is pinned to"),
    flag_key("leaf_sub_group", IN_RECORD<&kx_port_record::leaf_sub_group_valid>,
             "in leaf mode, sub-group b counts"),
    number_key("segment", IN_RECORD<&kx_port_record::segment_id>, "its segment, 0 for none")
        .in("segment"),
    flag_key("vxlan", IN_RECORD<&kx_port_record::vxlan>, "it carries VXLAN"),
    flag_key("vmotion", IN_RECORD<&kx_port_record::vmotion>, "it carries vMotion"),
    flag_key("l3_service", IN_RECORD<&kx_port_record::l3_service>, "a layer-3 virtual service"),
    number_key("service_path", IN_RECORD<&kx_port_record::service_path>, "its service path"),
    number_key("org", IN_RECORD<&kx_port_record::org>, "its organization"),
    number_key("dvport", IN_RECORD<&kx_port_record::dvport_id>,
               "its number on the distributed switch"),
    text_key("dvport_group", IN_RECORD<&kx_port_record::dvport_group>,
             "its group on the distributed switch"),
    flag_key("may_be_empty", IN_RECORD<&kx_port_record::presence>,
             "an entry that nothing need be configured on"),
    word_key("leaf_block", IN_RECORD<&kx_port_record::leaf_block_reason>, LEAF_BLOCKS,
             "in leaf mode, why it is blocked"),
    word_key("leaf_wait", IN_RECORD<&kx_port_record::leaf_wait_state>, LEAF_WAITS,
             "in leaf mode, what it waits for"),
};

constexpr key_table PORT_VIEW_KEYS = {"port_view", "A view of a port", VIEW_ROWS,
                                      make_object<port_view>};

// What the other views do not say for themselves is as in the HMX's.
template <kx_port_view view>
constexpr key_access VIEW = {
    .look = [](const void *object) -> const void * {
        return &view_of(static_cast<const port_entry *>(object)->value, view);
    },
    .open = [](void *object) -> void * {
        return &own_view(static_cast<port_entry *>(object)->value, view);
    },
};

constexpr key PORT_ROWS[] = {
    number_key("ltl", at<&port_entry::key>, "the port's number").to(LAST_LTL).once().in("LTL"),
    included_keys(PORT_VIEW_KEYS, VIEW<KX_VIEW_HMX>),
    object_key("krt", VIEW<KX_VIEW_KRT>, PORT_VIEW_KEYS, "the KRT's view, where it differs")
        .or_else("the port's own keys"),
    object_key("system", VIEW<KX_VIEW_SYSTEM>, PORT_VIEW_KEYS,
               "the hypervisor's view, where it differs")
        .or_else("the port's own keys"),
    mac_key("mac", at<&port_entry::value, &port::mac>, "its MAC address").or_else("refused"),
    flag_key("secure", at<&port_entry::value, &port::secure>, "it has a secure-port state"),
    words_key("secure_learning",
              head_of<&kx_port_security_record::learning, &port_entry::value, &port::security>,
              SECURE_LEARNING, "how addresses that it learns securely age"),
};

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

constinit const key_table PORT_KEYS = {"port", "A port", PORT_ROWS, make_object<port_entry>};

constinit const key_table PRIVATE_VLAN_KEYS = {"private_vlan", "A port on a private VLAN",
                                               PRIVATE_VLAN_ROWS, make_object<pair_entry>};
