#include "host/access.h"
#include "host/host.h"
#include "host/keys.h"

#include "dpa/userspace/kxdpa_opcodes.h"

#include <array>
#include <iterator>

namespace {

constexpr uint64_t LONGEST_TEXT = KX_CARD_NAME_CAPACITY; // bytes; other texts are cut by the driver

constexpr key_word TUNNEL_MODES[] = {{"l2", 0}, {"l3", KX_TUNNEL_MODE_L3}};

constexpr key_word UPGRADE_STATES[] = {
    {"default", 0}, {"started", 1}, {"completed", 2}, {"aborted", 3}};

// The words that are printed, but for the first.
constexpr auto LOAD_BALANCING = [] {
    std::array<key_word, std::size(KX_LOAD_BALANCING)> words{};
    for (uint32_t number = 0; number != words.size(); number++) {
        words[number] = {KX_LOAD_BALANCING[number], number};
    }
    words[0].name = "unknown";
    return words;
}();

constexpr key MAC_KEYS[] = {
    mac_key("control", at<&card_macs::control>, "of the HMX for control traffic"),
    mac_key("packet", at<&card_macs::packet>, "of the HMX for packets to the KRT"),
    mac_key("span", at<&card_macs::span>, "of the HMX for mirrored traffic"),
    mac_key("agent", at<&card_macs::agent>, "of the user-space agent"),
    mac_key("primary_krt", at<&card_macs::primary_krt>, "of the active KRT"),
    mac_key("primary_krt_packet", at<&card_macs::primary_krt_packet>,
            "of the active KRT for packets"),
    mac_key("primary_krt_management", at<&card_macs::primary_krt_management>,
            "of the active KRT's management interface"),
    mac_key("standby_krt_control", at<&card_macs::standby_krt_control>,
            "of the standby KRT for control traffic"),
    mac_key("secondary_krt", at<&card_macs::secondary_krt>, "of the second KRT"),
};

constexpr key_table MACS = {"card_macs", "The card's MAC addresses", MAC_KEYS,
                            make_object<card_macs>};

constexpr key VERSION_KEYS[] = {
    text_key("hmx", at<&card_versions::hmx>, "version of the HMX").to(LONGEST_TEXT),
    text_key("krt", at<&card_versions::krt>, "version of the KRT").to(LONGEST_TEXT),
    text_key("system", at<&card_versions::system>, "version of the hypervisor").to(LONGEST_TEXT),
    text_key("opflex_sdk", at<&card_versions::opflex_sdk>,
             "version of the OpFlex SDK, shown in leaf mode")
        .to(LONGEST_TEXT),
    number_key("update_level", at<&card_versions::update_level>, "the hypervisor's update level"),
    number_key("word", at<&card_versions::word>,
               "eight bytes that \"show version\" reads and writes back"),
};

constexpr key_table VERSIONS = {"card_versions", "The versions on the card", VERSION_KEYS,
                                make_object<card_versions>};

constexpr key KEYS[] = {
    text_key("name", at<&card_state::name>, "the host's name on the switch").to(LONGEST_TEXT),
    text_key("uuid", at<&card_state::uuid>, "the host's UUID").to(LONGEST_TEXT),
    number_key("uuid_type", at<&card_state::uuid_type>,
               "the kind of UUID; where the driver puts it, behind the room for the text, is an "
               "assumption, and null is a driver that puts nothing there"),
    text_key("switch_name", at<&card_state::switch_name>, "the switch's name").to(LONGEST_TEXT),
    text_key("switch_alias", at<&card_state::switch_alias>, "the switch's name on the host")
        .to(LONGEST_TEXT),
    text_key("switch_uuid", at<&card_state::switch_uuid>, "the switch's UUID").to(LONGEST_TEXT),
    number_key("domain", at<&card_state::domain>, "the switch's domain number"),
    number_key("slot", at<&card_state::slot>, "the host's module number on the switch"),
    flag_key("version_mismatch", at<&card_state::version_mismatch>,
             "the HMX refuses a tool of this version"),
    word_key("tunnel_mode", at<&card_state::tunnel_mode>, TUNNEL_MODES,
             "how the HMX reaches the KRT; also how many VLANs are reserved"),
    flag_key("leaf_mode", at<&card_state::leaf_mode>,
             "the HMX is a leaf of an overlay policy controller"),
    number_key("l3_control_index", at<&card_state::l3_control_index>,
               "index of the layer-3 control interface"),
    number_key("l3_control_vlan", at<&card_state::l3_control_vlan>, "VLAN of that interface"),
    ipv4_key("l3_control_ipv4", at<&card_state::l3_control_ipv4>, "the KRT's layer-3 address"),
    ipv6_key("management_ipv6", at<&card_state::management_ipv6>,
             "the host's management address over IPv6"),
    object_key("macs", part<&card_state::macs>, MACS, "MAC addresses"),
    object_key("versions", part<&card_state::versions>, VERSIONS, "versions"),
    word_key("upgrade", at<&card_state::upgrade>, UPGRADE_STATES, "the state of an upgrade"),
    number_key("physical_ports", at<&card_state::physical_ports>, "most physical ports"),
    number_key("virtual_ports", at<&card_state::virtual_ports>, "most virtual ports"),
    number_key("control_vlan", at<&card_state::control_vlan>, "VLAN of the control traffic"),
    number_key("packet_vlan", at<&card_state::packet_vlan>, "VLAN of the packets to the KRT"),
    flag_key("control_multicast", at<&card_state::control_multicast>,
             "control traffic is multicast"),
    number_key("heartbeat", at<&card_state::heartbeat>,
               "1 with a heartbeat from the KRT, 0 for a headless card"),
    number_key("krt_uptime", head_of<&kx_krt_uptime::seconds, &card_state::krt_uptime>,
               "since the KRT started")
        .in("seconds"),
    flag_key("dpa_up", at<&card_state::dpa_up>, "the user-space agent is up"),
    number_key("processors", head_of<&kx_card_processors::processors, &card_state::processors>,
               "logical processors; null for all about processors"),
    number_key("processor_cores", at<&card_state::processors, &kx_card_processors::cores>,
               "processor cores"),
    number_key("processor_sockets", at<&card_state::processors, &kx_card_processors::sockets>,
               "processor sockets"),
    number_key("kernel_memory", at<&card_state::processors, &kx_card_processors::kernel_memory>,
               "the kernel's memory, in the driver's own unit"),
    number_key("link_up_delay", at<&card_state::link_up_delay>, "before a port's link is used")
        .in("seconds"),
    word_key("load_balancing", at<&card_state::load_balancing>, LOAD_BALANCING,
             "what a port channel picks the member by"),
    flag_key("uufb", at<&card_state::uufb>, "floods to unknown unicast addresses are blocked"),
    flag_key("portset_event", at<&card_state::portset_event>, "a portset event is in progress"),
    flag_key("bpdu_guard", at<&card_state::bpdu_guard>, "BPDU guard on all ports"),
    flag_key("bpdu_filter", at<&card_state::bpdu_filter>, "BPDU filter on all ports"),
    flag_key("datapath_initialized", at<&card_state::datapath_initialized>,
             "the data path is initialized"),
    flag_key("tag_native_vlan", at<&card_state::tag_native_vlan>, "the native VLAN is tagged"),
    flag_key("l3sec", at<&card_state::l3sec>, "layer-3 control traffic is secured"),
};

constexpr key HEAP_ROWS[] = {
    text_key("name", at<&kx_heap_record::name>, "the heap's name").once(),
    number_key("objects", at<&kx_heap_record::objects>, "allocated"),
    number_key("bytes", at<&kx_heap_record::bytes>, "allocated").in("bytes"),
    number_key("denied", at<&kx_heap_record::denied>, "allocations denied"),
    number_key("denied_bytes", at<&kx_heap_record::denied_bytes>, "allocations denied").in("bytes"),
    number_key("largest_object", at<&kx_heap_record::largest_object>, "largest object").in("bytes"),
    number_key("minimum", at<&kx_heap_record::minimum>, "least size of the heap").in("bytes"),
    number_key("maximum", at<&kx_heap_record::maximum>, "most size of the heap").in("bytes"),
    number_key("null_pointers", at<&kx_heap_record::null_pointers>,
               "null pointers checked or freed"),
    number_key("bad_magics", at<&kx_heap_record::bad_magics>, "pointers with a bad magic"),
    number_key("bad_redzones", at<&kx_heap_record::bad_redzones>, "pointers with a bad red zone"),
    number_key("wrong_heaps", at<&kx_heap_record::wrong_heaps>, "pointers of another heap"),
};

constexpr key POOL_ROWS[] = {
    text_key("name", at<&kx_memory_pool_record::name>, "the pool's name").once(),
    number_key("object_size", at<&kx_memory_pool_record::object_size>, "size of an object")
        .in("bytes"),
    number_key("pages", at<&kx_memory_pool_record::pages>, "pages in use"),
    number_key("minimum", at<&kx_memory_pool_record::minimum>, "least objects of the pool"),
    number_key("maximum", at<&kx_memory_pool_record::maximum>, "most objects of the pool"),
    number_key("total", at<&kx_memory_pool_record::total>, "objects there are"),
    number_key("available", at<&kx_memory_pool_record::available>, "objects that are free"),
    number_key("low_water_mark", at<&kx_memory_pool_record::low_water_mark>,
               "free objects below which the pool grows"),
    number_key("high_water_mark", at<&kx_memory_pool_record::high_water_mark>,
               "free objects above which it shrinks"),
};

} // namespace

constinit const key_table CARD_KEYS = {"card", "The card", KEYS, make_object<card_state>};

constinit const key_table HEAP_KEYS = {"heap", "A heap of the DPA", HEAP_ROWS,
                                       make_object<kx_heap_record>};

constinit const key_table MEMORY_POOL_KEYS = {"memory_pool", "A memory pool of the DPA", POOL_ROWS,
                                              make_object<kx_memory_pool_record>};
