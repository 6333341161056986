// The host's port channels and what is pinned to their members.
#ifndef SIM_PORT_PORT_CHANNELS_H
#define SIM_PORT_PORT_CHANNELS_H

#include "handlers/port/port_channel_record.h"
#include "sim/answer.h"

#include <cstdint>
#include <map>
#include <optional>

struct port_channel_table {
    std::optional<uint32_t> mode; // kx_port_channel_mode
    std::map<uint32_t, kx_port_channel_record> by_ltl;
    std::map<uint32_t, uint32_t> pinned; // virtual ports by the LTL of the member
};

// "port_channel_mode" and "port_channels" of the host file.
extern const family port_channel_family;

#endif
