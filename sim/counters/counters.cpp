#include "sim/answer.h"

#include <algorithm>
#include <cstring>

namespace {

void answer_traffic(host &state, exchange &talk) {
    if (const auto *told = value_in(state.counters.traffic, talk.request.arg)) {
        talk.tell(state, *told);
    } else {
        talk.reply_with(kx_port_statistics{});
    }
}

// A port without traffic is not described.
void learn_traffic(host &state, const exchange &told) {
    const bool none =
        std::all_of(told.reply.begin(), told.reply.end(), [](uint8_t byte) { return byte == 0; });
    if (!told.is_told() || !none) {
        told.learn(state.counters.traffic[told.request.arg]);
    }
}

void clear_traffic(host &state, exchange &talk) {
    state.counters.traffic.erase(talk.request.arg);
}

void clear_all_traffic(host &state, exchange & /*talk*/) {
    state.counters.traffic.clear();
}

void answer_stage(host &state, exchange &talk) {
    const auto &stages = state.counters.stages;
    talk.tell(state, talk.request.arg < stages.size() ? &stages[talk.request.arg] : nullptr);
}

// A described host has no gaps between its stages: one that is refused is there, but not shown.
void learn_stage(host &state, const exchange &told) {
    auto &stages = state.counters.stages;
    if (!told.is_told() || told.request.arg > UINT8_MAX) {
        return;
    }
    while (stages.size() <= told.request.arg) {
        stages.push_back({static_cast<uint8_t>(stages.size()), 0, {}, {}});
    }
    stages[told.request.arg] = told.reply_as<kx_stage_descriptor>();
}

// Nothing was dropped at any stage.
kx_drop_counters no_drops(const counter_table &table) {
    kx_drop_counters counters{};
    for (size_t i = 0; i < std::min<size_t>(table.stages.size(), KX_STAGES); ++i) {
        counters.stages[i].valid = table.stages[i].present;
    }
    return counters;
}

// An internal LTL need not be a port.
bool is_stranger(const host &state, uint32_t ltl) {
    return ltl >= KX_LTL_FIRST_EXTERNAL && !state.ports.by_ltl.contains(ltl);
}

void answer_drops(host &state, exchange &talk) {
    const uint32_t ltl = talk.request.arg;
    if (const auto *told = value_in(state.counters.drops, ltl)) {
        talk.tell(state, *told);
    } else if (state.counters.drops_of_ports_alone && is_stranger(state, ltl)) {
        talk.fail(state);
    } else {
        talk.reply_with(no_drops(state.counters));
    }
}

// Drops at a stage whose entry is not used cannot be described, yet one display shows them.
void describe(std::optional<kx_drop_counters> &counters) {
    for (size_t i = 0; counters && i < KX_STAGES; ++i) {
        kx_stage_drops &stage = counters->stages[i];
        stage.drops = stage.valid == 0 ? 0 : stage.drops;
    }
}

void learn_drops(host &state, const exchange &told) {
    auto &counters = state.counters.drops[told.request.arg];
    told.learn(counters);
    describe(counters);
}

template <auto member> void learn_common(host &state, const exchange &told) {
    learn_value<&host::counters, member>(state, told);
    describe(state.counters.*member);
}

template <auto member> constexpr answer common(kxdpa_opcode opcode) {
    return get<kx_drop_counters>(opcode, answer_value<&host::counters, member>,
                                 learn_common<member>);
}

constexpr answer COUNTER_ANSWERS[] = {
    get<kx_port_statistics>(KXDPA_OP_PORT_STATISTICS, answer_traffic, learn_traffic)
        .from_key("traffic"),
    set<uint32_t>(KXDPA_OP_CLEAR_PORT_STATISTICS, clear_traffic),
    command(KXDPA_OP_CLEAR_ALL_PORT_STATISTICS, clear_all_traffic),
    get<kx_stage_descriptor>(KXDPA_OP_STAGE_DESCRIPTOR, answer_stage, learn_stage)
        .from_key("stages"),
    get<kx_drop_counters>(KXDPA_OP_DROP_COUNTERS, answer_drops, learn_drops),
    common<&counter_table::multicast_drops>(KXDPA_OP_MULTICAST_DROPS).from_key("multicast_drops"),
    common<&counter_table::flood_drops>(KXDPA_OP_FLOOD_DROPS).from_key("flood_drops"),
};

} // namespace

constinit const family counter_family = COUNTER_ANSWERS;

void settle_drops(host &state, uint32_t stranger) {
    counter_table &counters = state.counters;
    const auto asked = counters.drops.find(stranger);
    counters.drops_of_ports_alone = asked != counters.drops.end() && !asked->second;
    const kx_drop_counters none = no_drops(counters);
    std::erase_if(counters.drops, [&](const auto &entry) {
        const auto &[ltl, told] = entry;
        const bool refused_by_default = counters.drops_of_ports_alone && is_stranger(state, ltl);
        return told ? !refused_by_default && std::memcmp(&*told, &none, sizeof none) == 0
                    : refused_by_default;
    });
}
