#include "sim/port/port_channels.h"

#include "handlers/port/port_record.h"
#include "sim/object_reader.h"

namespace {

port_channel_member parse_member(object_reader &keys) {
    port_channel_member member;
    keys.require("ltl");
    keys.number("ltl", member.ltl);
    keys.number("sub_group", member.sub_group);
    if (keys.has("pinned")) {
        keys.number("pinned", member.pinned.emplace());
    }
    return member;
}

void parse_channel(object_reader &keys, port_channel_table &table) {
    uint32_t ltl = 0;
    port_channel channel;
    keys.require("ltl");
    keys.number("ltl", ltl, KX_LTL_FIRST_PORT_CHANNEL, KX_LTL_LAST_PORT_CHANNEL);
    keys.number("channel", channel.channel);
    keys.number("designated_sub_group", channel.designated_sub_group);
    keys.each("members", [&](object_reader &member) {
        if (channel.members.size() == KX_PC_MEMBERS) {
            member.fail("ltl", "is one member too many");
        }
        channel.members.push_back(parse_member(member));
    });
    if (!table.by_ltl.emplace(ltl, channel).second) {
        keys.fail("ltl", "is used twice");
    }
}

void parse_port_channels(object_reader &file, host &into) {
    file.choice("port_channel_mode", into.port_channels.mode,
                {{"none", KX_PC_MODE_NONE},
                 {"static", KX_PC_MODE_STATIC},
                 {"lacp-active", KX_PC_MODE_LACP_ACTIVE},
                 {"lacp-passive", KX_PC_MODE_LACP_PASSIVE},
                 {"mac-pinning", KX_PC_MODE_MAC_PINNING}});
    file.each("port_channels",
              [&](object_reader &keys) { parse_channel(keys, into.port_channels); });
}

void answer_mode(host &state, exchange &talk) {
    talk.tell(state.port_channels.mode);
}

void answer_record(host &state, exchange &talk) {
    const auto found = state.port_channels.by_ltl.find(talk.request.arg);
    if (found == state.port_channels.by_ltl.end()) {
        talk.fail();
        return;
    }
    const port_channel &channel = found->second;
    kx_port_channel_record record{};
    record.channel = channel.channel;
    record.designated_sub_group = channel.designated_sub_group;
    for (const port_channel_member &member : channel.members) {
        record.members[record.member_count++] = {member.ltl, member.sub_group};
    }
    talk.reply_with(record);
}

// What is told of the first member that is the LTL.
void answer_pinned(host &state, exchange &talk) {
    for (const auto &[ltl, channel] : state.port_channels.by_ltl) {
        for (const port_channel_member &member : channel.members) {
            if (member.ltl == talk.request.arg && member.pinned) {
                talk.reply_with(*member.pinned);
                return;
            }
        }
    }
    talk.fail();
}

constexpr answer ANSWERS[] = {
    {.opcode = KXDPA_OP_PINNING_MODE, .flags = KXDPA_FLAG_OUT, .len1 = 4, .reply = answer_mode},
    {.opcode = KXDPA_OP_PORT_CHANNEL_RECORD,
     .flags = KXDPA_FLAG_OUT,
     .len1 = sizeof(kx_port_channel_record),
     .reply = answer_record},
    {.opcode = KXDPA_OP_PINNED_PORTS, .flags = KXDPA_FLAG_OUT, .len1 = 4, .reply = answer_pinned},
};

} // namespace

constinit const family port_channel_family = {parse_port_channels, ANSWERS};
