#include "host/host.h"
#include "host/access.h"
#include "host/hex.h"
#include "host/keys.h"

#include "handlers/port/bridge_domain_record.h"

#include <cerrno>

namespace {

constexpr uint64_t LONGEST_NOTE = 64; // bytes

constexpr key REFUSED_ROWS[] = {
    number_key("opcode", at<&refused_opcode::opcode>, "the requests").must(),
    number_key("count", at<&refused_opcode::count>, "how many of them were refused").written(),
};

constexpr key_table REFUSED_KEYS = {"refused_opcode", "Requests that were refused", REFUSED_ROWS,
                                    make_object<refused_opcode>};

constexpr key CAPTURE_ROWS[] = {
    text_key("version", at<&capture_note::version>, "of the program").to(LONGEST_NOTE).written(),
    text_key("time", at<&capture_note::time>, "when it began, in UTC").to(LONGEST_NOTE).written(),
    texts_key("keys", at<&capture_note::keys>, "the keys that were asked for").or_else("all"),
    flag_key("whole", at<&capture_note::whole>, "nothing was cut").written(),
    texts_key("cut", at<&capture_note::cut>, "what was cut").or_else("nothing"),
    list_key("refused", items_of<&capture_note::refused>, REFUSED_KEYS,
             "what the driver refused, by opcode, ends of walks aside")
        .or_else("nothing"),
};

constexpr key_table CAPTURE_KEYS = {"capture", "What was captured", CAPTURE_ROWS,
                                    make_object<capture_note>};

constexpr uint64_t LAST_ERROR = 4095; // the kernel has no larger ones

constexpr key_word ERROR_NAMES[] = {{"EPERM", EPERM},   {"ENOENT", ENOENT}, {"EINTR", EINTR},
                                    {"EIO", EIO},       {"ENXIO", ENXIO},   {"EBADF", EBADF},
                                    {"EAGAIN", EAGAIN}, {"ENOMEM", ENOMEM}, {"EACCES", EACCES},
                                    {"EFAULT", EFAULT}, {"EBUSY", EBUSY},   {"ENODEV", ENODEV},
                                    {"EINVAL", EINVAL}, {"ENOTTY", ENOTTY}, {"ENOSYS", ENOSYS}};

constexpr key OVERRIDE_ROWS[] = {
    number_key("opcode", at<&override_rule::opcode>, "of the requests that it answers").must(),
    number_key("argument", at<&override_rule::argument>, "of those requests").or_else("any"),
    hex_key("in", at<&override_rule::in>, "the input of those requests, as the trace shows it")
        .or_else("any"),
    number_key("time", at<&override_rule::only_time>, "the n-th of those requests")
        .from(1)
        .or_else("each"),
    word_key("error", at<&override_rule::error>, ERROR_NAMES,
             "the ioctl fails with this errno, after what the other keys say is done")
        .from(1)
        .to(LAST_ERROR)
        .or_else("none"),
    number_key("status", at<&override_rule::status>, "this status, and no reply without `reply`")
        .or_else("the answer's"),
    hex_key("reply", at<&override_rule::reply>,
            "these bytes, as they are, as far as the caller's buffer goes")
        .or_else("the answer's"),
    number_key("length", at<&override_rule::length>, "the reply is cut or filled up to this")
        .to(HEX_LIMIT)
        .or_else("the reply's")
        .in("bytes"),
    number_key("returned", at<&override_rule::returned>,
               "the length handed back in the capacity word")
        .or_else("the reply's")
        .in("bytes"),
};

constexpr key_table OVERRIDE_KEYS = {"override", "An answer to replace", OVERRIDE_ROWS,
                                     make_object<override_rule>};

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
