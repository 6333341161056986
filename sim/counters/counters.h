// Traffic and drop counters of the ports, and the pipeline stages that drops are counted at.
#ifndef SIM_COUNTERS_COUNTERS_H
#define SIM_COUNTERS_COUNTERS_H

#include "handlers/port/counter_records.h"
#include "sim/answer.h"

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

struct counter_table {
    std::map<uint32_t, kx_port_statistics> traffic; // by LTL; a port without has zeros
    std::map<uint32_t, kx_drop_counters> drops;     // by LTL
    std::optional<kx_drop_counters> multicast_drops;
    std::optional<kx_drop_counters> flood_drops;
    std::vector<kx_stage_descriptor> stages; // by index
};

// "traffic", "drops", "multicast_drops", "flood_drops" and "stages" of the host file.
extern const family counter_family;

#endif
