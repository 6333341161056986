// Traffic and drop counters of the ports, and the pipeline stages that drops are counted at.
#ifndef HOST_COUNTERS_H
#define HOST_COUNTERS_H

#include "handlers/port/counter_records.h"

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

// By LTL. An entry without counters stands for a port whose counters the driver refuses; a port
// without an entry has counted nothing.
using traffic_table = std::map<uint32_t, std::optional<kx_port_statistics>>;
using drop_table = std::map<uint32_t, std::optional<kx_drop_counters>>;

struct counter_table {
    traffic_table traffic;
    drop_table drops;
    std::optional<kx_drop_counters> multicast_drops;
    std::optional<kx_drop_counters> flood_drops;
    std::vector<kx_stage_descriptor> stages; // by index
    bool drops_of_ports_alone = false; // those of any other LTL but an internal one are refused
};

#endif
