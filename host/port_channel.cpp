#include "host/port_channel.h"
#include "host/access.h"
#include "host/keys.h"

namespace {

using channel_entry = keyed<decltype(port_channel_table::by_ltl)>;

constexpr key_word CHANNEL_SUB_GROUPS[] = {{"none", NO_SUB_GROUP}};

constexpr key MEMBER_ROWS[] = {
    number_key("ltl", at<&port_channel_member::ltl>, "the physical port").must().in("LTL"),
    word_key("sub_group", at<&port_channel_member::sub_group>, CHANNEL_SUB_GROUPS, "its sub-group"),
    number_key("pinned", at<&port_channel_member::pinned>, "virtual ports that are pinned to it")
        .or_else("refused"),
};

constexpr key_table MEMBER_KEYS = {"port_channel_member", "A member of a port channel", MEMBER_ROWS,
                                   make_object<port_channel_member>};

constexpr key PORT_CHANNEL_ROWS[] = {
    number_key("ltl", at<&channel_entry::key>, "the port channel's own number")
        .from(KX_LTL_FIRST_PORT_CHANNEL)
        .to(KX_LTL_LAST_PORT_CHANNEL)
        .once()
        .in("LTL"),
    number_key("channel", at<&channel_entry::value, &port_channel::channel>,
               "its number on the switch"),
    word_key("designated_sub_group", at<&channel_entry::value, &port_channel::designated_sub_group>,
             CHANNEL_SUB_GROUPS, "the sub-group that floods are received on"),
    list_key("members", items_of<&channel_entry::value, &port_channel::members>, MEMBER_KEYS,
             "the physical ports in it")
        .up_to(KX_PC_MEMBERS),
};

} // namespace

constinit const key_table PORT_CHANNEL_KEYS = {"port_channel", "A port channel", PORT_CHANNEL_ROWS,
                                               make_object<channel_entry>};
