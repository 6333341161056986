// The host's port channels and what is pinned to their members.
#ifndef HOST_PORT_CHANNEL_H
#define HOST_PORT_CHANNEL_H

#include "handlers/port/port_channel_record.h"
#include "host/port.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>

// A port channel without members and designated sub-group.
constexpr kx_port_channel_record port_channel_defaults() {
    kx_port_channel_record record{};
    record.designated_sub_group = NO_SUB_GROUP;
    return record;
}

struct port_channel {
    kx_port_channel_record record = port_channel_defaults(); // at most KX_PC_MEMBERS members
    // By member, how many virtual ports are pinned to it; refused when absent.
    std::array<std::optional<uint32_t>, KX_PC_MEMBERS> pinned{};
};

struct port_channel_table {
    std::optional<uint32_t> mode = KX_PC_MODE_NONE; // kx_port_channel_mode
    std::map<uint32_t, port_channel> by_ltl;
};

#endif
