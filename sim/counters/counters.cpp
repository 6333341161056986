#include "sim/counters/counters.h"

#include <algorithm>
#include <string>

namespace {

void answer_traffic(host &state, exchange &talk) {
    const auto found = state.counters.traffic.find(talk.request.arg);
    if (found == state.counters.traffic.end()) {
        talk.reply_with(kx_port_statistics{});
    } else {
        talk.tell(found->second);
    }
}

void answer_clear_traffic(host &state, exchange &talk) {
    state.counters.traffic.erase(talk.request.arg);
}

void answer_clear_all_traffic(host &state, exchange & /*talk*/) {
    state.counters.traffic.clear();
}

void answer_stage(host &state, exchange &talk) {
    if (talk.request.arg < state.counters.stages.size()) {
        talk.reply_with(state.counters.stages[talk.request.arg]);
    } else {
        talk.fail();
    }
}

// A port of which nothing is said has dropped nothing at any stage.
kx_drop_counters no_drops(const counter_table &table) {
    kx_drop_counters counters{};
    for (size_t i = 0; i < std::min<size_t>(table.stages.size(), KX_STAGES); ++i) {
        counters.stages[i].valid = table.stages[i].present;
    }
    return counters;
}

void answer_drops(host &state, exchange &talk) {
    const counter_table &table = state.counters;
    const auto found = table.drops.find(talk.request.arg);
    if (found == table.drops.end()) {
        talk.reply_with(no_drops(table));
    } else {
        talk.tell(found->second);
    }
}

void answer_multicast_drops(host &state, exchange &talk) {
    talk.tell(state.counters.multicast_drops);
}

void answer_flood_drops(host &state, exchange &talk) {
    talk.tell(state.counters.flood_drops);
}

constexpr answer COUNTER_ANSWERS[] = {
    {.opcode = KXDPA_OP_PORT_STATISTICS,
     .flags = KXDPA_FLAG_OUT,
     .len1 = sizeof(kx_port_statistics),
     .reply = answer_traffic},
    {.opcode = KXDPA_OP_CLEAR_PORT_STATISTICS,
     .flags = KXDPA_FLAG_IN,
     .len1 = 4,
     .reply = answer_clear_traffic},
    {.opcode = KXDPA_OP_CLEAR_ALL_PORT_STATISTICS,
     .flags = KXDPA_FLAG_NODATA,
     .reply = answer_clear_all_traffic},
    {.opcode = KXDPA_OP_STAGE_DESCRIPTOR,
     .flags = KXDPA_FLAG_OUT,
     .len1 = sizeof(kx_stage_descriptor),
     .reply = answer_stage},
    {.opcode = KXDPA_OP_DROP_COUNTERS,
     .flags = KXDPA_FLAG_OUT,
     .len1 = sizeof(kx_drop_counters),
     .reply = answer_drops},
    {.opcode = KXDPA_OP_MULTICAST_DROPS,
     .flags = KXDPA_FLAG_OUT,
     .len1 = sizeof(kx_drop_counters),
     .reply = answer_multicast_drops},
    {.opcode = KXDPA_OP_FLOOD_DROPS,
     .flags = KXDPA_FLAG_OUT,
     .len1 = sizeof(kx_drop_counters),
     .reply = answer_flood_drops},
};

} // namespace

constinit const family counter_family = {COUNTER_ANSWERS};
