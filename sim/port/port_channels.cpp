#include "sim/answer.h"

#include "handlers/port/port_record.h"

#include <algorithm>

namespace {

void answer_port_channel(host &state, exchange &talk) {
    const port_channel *found = value_in(state.port_channels.by_ltl, talk.request.arg);
    talk.tell(state, member_in<&port_channel::record>(found));
}

void learn_port_channel(host &state, const exchange &told) {
    auto record = told.reply_as<kx_port_channel_record>();
    record.member_count = std::min(record.member_count, KX_PC_MEMBERS);
    const uint32_t ltl = told.request.arg;
    if (told.is_told() && ltl >= KX_LTL_FIRST_PORT_CHANNEL && ltl <= KX_LTL_LAST_PORT_CHANNEL) {
        state.port_channels.by_ltl[ltl].record = record;
    }
}

// What is told of each member that is the LTL.
std::vector<std::optional<uint32_t> *> pinned_to(host &state, uint32_t ltl) {
    std::vector<std::optional<uint32_t> *> pinned;
    for (auto &[channel_ltl, channel] : state.port_channels.by_ltl) {
        for (uint32_t i = 0; i < std::min(channel.record.member_count, KX_PC_MEMBERS); i++) {
            if (channel.record.members[i].ltl == ltl) {
                pinned.push_back(&channel.pinned[i]);
            }
        }
    }
    return pinned;
}

// The first that is told at all.
void answer_pinned(host &state, exchange &talk) {
    for (const std::optional<uint32_t> *pinned : pinned_to(state, talk.request.arg)) {
        if (*pinned) {
            return talk.reply_with(**pinned);
        }
    }
    talk.fail(state);
}

void learn_pinned(host &state, const exchange &told) {
    for (std::optional<uint32_t> *pinned : pinned_to(state, told.request.arg)) {
        told.learn(*pinned);
    }
}

constexpr answer PORT_CHANNEL_ANSWERS[] = {
    value<&host::port_channels, &port_channel_table::mode>(KXDPA_OP_PINNING_MODE)
        .from_key("port_channel_mode"),
    get<kx_port_channel_record>(KXDPA_OP_PORT_CHANNEL_RECORD, answer_port_channel,
                                learn_port_channel),
    get<uint32_t>(KXDPA_OP_PINNED_PORTS, answer_pinned, learn_pinned),
};

} // namespace

constinit const family port_channel_family = PORT_CHANNEL_ANSWERS;
