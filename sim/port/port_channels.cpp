#include "sim/port/port_channels.h"

#include "handlers/port/port_record.h"
#include "sim/host.h"
#include "sim/object_reader.h"

namespace {

constexpr uint32_t NO_SUB_GROUP = 0xFFFFFFFF;

void parse_member(object_reader &keys, kx_port_channel_record &record, port_channel_table &table) {
    if (record.member_count == KX_PC_MEMBERS) {
        keys.fail("ltl", "is one member too many");
    }
    kx_port_channel_member &member = record.members[record.member_count++];
    member.sub_group = NO_SUB_GROUP;
    keys.require("ltl");
    keys.number("ltl", member.ltl);
    keys.number("sub_group", member.sub_group);
    if (keys.has("pinned")) {
        keys.number("pinned", table.pinned[member.ltl]);
    }
}

void parse_channel(object_reader &keys, port_channel_table &table) {
    uint32_t ltl = 0;
    kx_port_channel_record record{};
    record.designated_sub_group = NO_SUB_GROUP;
    keys.require("ltl");
    keys.number("ltl", ltl, KX_LTL_FIRST_PORT_CHANNEL, KX_LTL_LAST_PORT_CHANNEL);
    keys.number("channel", record.channel);
    keys.number("designated_sub_group", record.designated_sub_group);
    keys.each("members", [&](object_reader &member) { parse_member(member, record, table); });
    if (!table.by_ltl.emplace(ltl, record).second) {
        keys.fail("ltl", "is used twice");
    }
}

void parse_port_channels(object_reader &file, host &into) {
    if (file.has("port_channel_mode")) {
        file.choice("port_channel_mode", into.port_channels.mode.emplace(),
                    {{"none", KX_PC_MODE_NONE},
                     {"static", KX_PC_MODE_STATIC},
                     {"lacp-active", KX_PC_MODE_LACP_ACTIVE},
                     {"lacp-passive", KX_PC_MODE_LACP_PASSIVE},
                     {"mac-pinning", KX_PC_MODE_MAC_PINNING}});
    }
    file.each("port_channels",
              [&](object_reader &keys) { parse_channel(keys, into.port_channels); });
}

void answer_mode(host &state, exchange &talk) {
    if (state.port_channels.mode) {
        talk.reply_with(*state.port_channels.mode);
    } else {
        talk.fail();
    }
}

// Answers with the entry of the LTL that the argument names.
template <auto table> void answer_entry(host &state, exchange &talk) {
    const auto &entries = state.port_channels.*table;
    const auto found = entries.find(talk.request.arg);
    if (found == entries.end()) {
        talk.fail();
    } else {
        talk.reply_with(found->second);
    }
}

constexpr answer ANSWERS[] = {
    {.opcode = KXDPA_OP_PINNING_MODE, .flags = KXDPA_FLAG_OUT, .len1 = 4, .reply = answer_mode},
    {.opcode = KXDPA_OP_PORT_CHANNEL_RECORD,
     .flags = KXDPA_FLAG_OUT,
     .len1 = sizeof(kx_port_channel_record),
     .reply = answer_entry<&port_channel_table::by_ltl>},
    {.opcode = KXDPA_OP_PINNED_PORTS,
     .flags = KXDPA_FLAG_OUT,
     .len1 = 4,
     .reply = answer_entry<&port_channel_table::pinned>},
};

} // namespace

constinit const family port_channel_family = {parse_port_channels, ANSWERS};
