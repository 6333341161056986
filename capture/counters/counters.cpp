#include "capture/host_capture.h"
#include "handlers/port/port_record.h"

#include <algorithm>
#include <set>

namespace {

constexpr uint32_t STAGES_LIMIT = 256; // more stages no pipeline has

// A described host has no gaps between its stages: one that is refused is there, but not shown.
void walk_stages(host_capture &host) {
    inquiry &driver = host.driver;
    driver.begin("stages");
    std::vector<kx_stage_descriptor> &stages = host.captured.counters.stages;
    host.has_stages = true;
    for (uint32_t i = 0; i < STAGES_LIMIT; i++) {
        kx_stage_descriptor stage;
        if (driver.get<KXDPA_OP_STAGE_DESCRIPTOR>(i, &stage, if_refused::WALK_END)) {
            for (auto gap = static_cast<uint32_t>(stages.size()); gap < i; gap++) {
                stages.push_back({static_cast<uint8_t>(gap), 0, {}, {}});
                driver.keep_refusal(KXDPA_OP_STAGE_DESCRIPTOR, gap);
            }
            stages.push_back(stage);
        } else if (i >= KX_STAGES) {
            return;
        }
    }
    driver.report("there are more than " + std::to_string(STAGES_LIMIT) + " stages (opcode 275)");
}

const std::vector<kx_stage_descriptor> &walked_stages(host_capture &host) {
    if (!host.has_stages) {
        walk_stages(host);
    }
    return host.captured.counters.stages;
}

// What a described host tells of a port of which nothing is said.
kx_drop_counters no_drops(const std::vector<kx_stage_descriptor> &stages) {
    kx_drop_counters counters{};
    for (size_t i = 0; i < std::min<size_t>(stages.size(), KX_STAGES); i++) {
        counters.stages[i].valid = stages[i].present;
    }
    return counters;
}

bool is_alike(const kx_drop_counters &a, const kx_drop_counters &b) {
    return std::equal(std::begin(a.stages), std::end(a.stages), std::begin(b.stages),
                      [](const kx_stage_drops &one, const kx_stage_drops &other) {
                          return (one.valid != 0) == (other.valid != 0) && one.drops == other.drops;
                      });
}

// An unused entry has no drops to describe, yet one display shows them.
bool can_be_described(const kx_drop_counters &counters) {
    return std::none_of(
        std::begin(counters.stages), std::end(counters.stages),
        [](const kx_stage_drops &stage) { return stage.valid == 0 && stage.drops != 0; });
}

// Every port is refused or described, one of which there is nothing to say is left out. Where all
// are refused, that is kept instead of saying it of each.
template <kxdpa_opcode opcode, typename Record, typename Describe>
void ask_each(host_capture &host, const number_set &ltls,
              std::map<uint32_t, std::optional<Record>> &into, Describe is_worth_saying) {
    bool any = false;
    for (const uint32_t ltl : ltls) {
        Record counters;
        const bool told = host.driver.get<opcode>(ltl, &counters);
        any |= told;
        if (!told) {
            into[ltl] = std::nullopt;
        } else if (is_worth_saying(ltl, counters)) {
            into[ltl] = counters;
        }
    }
    if (!any) {
        into.clear();
        for (const uint32_t ltl : ltls) {
            host.driver.keep_refusal(opcode, ltl);
        }
    }
}

bool has_no_traffic(const kx_port_statistics &counters) {
    return counters.received_packets == 0 && counters.received_bytes == 0 &&
           counters.receive_drops == 0 && counters.sent_packets == 0 && counters.sent_bytes == 0 &&
           counters.transmit_drops == 0 && counters.transmit_floods == 0;
}

template <kxdpa_opcode opcode>
void ask_common(host_capture &host, std::optional<kx_drop_counters> &into) {
    host.driver.begin("drop counters");
    host.driver.get<opcode>(0, &into);
    if (into && !can_be_described(*into)) {
        host.driver.keep_reply(opcode, 0, *into);
    }
}

} // namespace

void capture_traffic(host_capture &host) {
    const std::vector<uint32_t> &ltls = walked_ltls(host);
    host.driver.begin("traffic");
    ask_each<KXDPA_OP_PORT_STATISTICS>(
        host, {ltls.begin(), ltls.end()}, host.captured.counters.traffic,
        [](uint32_t, const kx_port_statistics &counters) { return !has_no_traffic(counters); });
}

void capture_stages(host_capture &host) {
    walked_stages(host);
}

void capture_drops(host_capture &host) {
    const kx_drop_counters usual = no_drops(walked_stages(host));
    const std::vector<uint32_t> &walked = walked_ltls(host);
    number_set ltls(walked.begin(), walked.end());
    // Displays ask for the internal LTLs whether or not there is a port.
    for (uint32_t ltl = 0; ltl < KX_LTL_FIRST_EXTERNAL; ltl++) {
        ltls.insert(ltl);
    }
    host.driver.begin("drop counters");
    ask_each<KXDPA_OP_DROP_COUNTERS>(host, ltls, host.captured.counters.drops,
                                     [&](uint32_t ltl, const kx_drop_counters &counters) {
                                         if (!can_be_described(counters)) {
                                             host.driver.keep_reply(KXDPA_OP_DROP_COUNTERS, ltl,
                                                                    counters);
                                         }
                                         return !is_alike(counters, usual);
                                     });
}

void capture_multicast_drops(host_capture &host) {
    ask_common<KXDPA_OP_MULTICAST_DROPS>(host, host.captured.counters.multicast_drops);
}

void capture_flood_drops(host_capture &host) {
    ask_common<KXDPA_OP_FLOOD_DROPS>(host, host.captured.counters.flood_drops);
}
