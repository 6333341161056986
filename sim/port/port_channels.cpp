#include "sim/port/port_channels.h"

#include "handlers/port/port_record.h"

namespace {

void answer_mode(host &state, exchange &talk) {
    talk.tell(state.port_channels.mode);
}

void answer_port_channel(host &state, exchange &talk) {
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

constexpr answer PORT_CHANNEL_ANSWERS[] = {
    {.opcode = KXDPA_OP_PINNING_MODE, .flags = KXDPA_FLAG_OUT, .len1 = 4, .reply = answer_mode},
    {.opcode = KXDPA_OP_PORT_CHANNEL_RECORD,
     .flags = KXDPA_FLAG_OUT,
     .len1 = sizeof(kx_port_channel_record),
     .reply = answer_port_channel},
    {.opcode = KXDPA_OP_PINNED_PORTS, .flags = KXDPA_FLAG_OUT, .len1 = 4, .reply = answer_pinned},
};

} // namespace

constinit const family port_channel_family = {PORT_CHANNEL_ANSWERS};
