#include "host/access.h"
#include "host/host.h"
#include "host/keys.h"

#include <algorithm>
#include <functional>

namespace {

using channel_entry = keyed<decltype(port_channel_table::by_ltl)>;

constexpr key_word CHANNEL_SUB_GROUPS[] = {{"none", NO_SUB_GROUP}};

// A member on its way into or out of a port channel.
struct member_entry {
    kx_port_channel_member record = {0, NO_SUB_GROUP};
    std::optional<uint32_t> pinned{};
};

constexpr key_access MEMBERS = {
    .most = KX_PC_MEMBERS,
    .each = [](const void *object, const std::function<void(const void *)> &visit) -> bool {
        const port_channel &channel = static_cast<const channel_entry *>(object)->value;
        for (uint32_t i = 0; i < std::min(channel.record.member_count, KX_PC_MEMBERS); i++) {
            const member_entry member = {channel.record.members[i], channel.pinned[i]};
            visit(&member);
        }
        return true;
    },
    .append = [](void *object, void *item) -> void {
        port_channel &channel = static_cast<channel_entry *>(object)->value;
        const auto &member = *static_cast<const member_entry *>(item);
        const uint32_t place = channel.record.member_count++;
        channel.record.members[place] = member.record;
        channel.pinned[place] = member.pinned;
    },
};

template <auto member>
constexpr key_access IN_CHANNEL = at<&channel_entry::value, &port_channel::record, member>;

template <auto member> constexpr key_access IN_MEMBER = at<&member_entry::record, member>;

constexpr key MEMBER_ROWS[] = {
    number_key("ltl", IN_MEMBER<&kx_port_channel_member::ltl>, "the physical port")
        .must()
        .in("LTL"),
    word_key("sub_group", IN_MEMBER<&kx_port_channel_member::sub_group>, CHANNEL_SUB_GROUPS,
             "its sub-group"),
    number_key("pinned", at<&member_entry::pinned>, "virtual ports that are pinned to it")
        .or_else("refused"),
};

constexpr key_table MEMBER_KEYS = {"port_channel_member", "A member of a port channel", MEMBER_ROWS,
                                   make_object<member_entry>};

constexpr key PORT_CHANNEL_ROWS[] = {
    number_key("ltl", at<&channel_entry::key>, "the port channel's own number")
        .from(KX_LTL_FIRST_PORT_CHANNEL)
        .to(KX_LTL_LAST_PORT_CHANNEL)
        .once()
        .in("LTL"),
    number_key("channel", IN_CHANNEL<&kx_port_channel_record::channel>, "its number on the switch"),
    word_key("designated_sub_group", IN_CHANNEL<&kx_port_channel_record::designated_sub_group>,
             CHANNEL_SUB_GROUPS, "the sub-group that floods are received on"),
    list_key("members", MEMBERS, MEMBER_KEYS, "the physical ports in it").up_to(KX_PC_MEMBERS),
};

} // namespace

constinit const key_table PORT_CHANNEL_KEYS = {"port_channel", "A port channel", PORT_CHANNEL_ROWS,
                                               make_object<channel_entry>};
