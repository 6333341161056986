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

// Calls visit(pinned) for each member that is the LTL, until it returns true.
template <typename Visit> void find_member(host &state, uint32_t ltl, Visit visit) {
    for (auto &[channel_ltl, channel] : state.port_channels.by_ltl) {
        for (uint32_t i = 0; i < std::min(channel.record.member_count, KX_PC_MEMBERS); i++) {
            if (channel.record.members[i].ltl == ltl && visit(channel.pinned[i])) {
                return;
            }
        }
    }
}

// What is told of the first member that is the LTL.
void answer_pinned(host &state, exchange &talk) {
    std::optional<uint32_t> told;
    find_member(state, talk.request.arg, [&](const std::optional<uint32_t> &pinned) {
        told = pinned;
        return told.has_value();
    });
    talk.tell(state, told);
}

void learn_pinned(host &state, const exchange &told) {
    find_member(state, told.request.arg, [&](std::optional<uint32_t> &pinned) {
        told.learn(pinned);
        return false;
    });
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
