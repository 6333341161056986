// The host's port channels and what is pinned to their members.
#ifndef HOST_PORT_CHANNEL_H
#define HOST_PORT_CHANNEL_H

#include "handlers/port/port_channel_record.h"
#include "host/port.h"

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

struct port_channel_member {
    uint32_t ltl = 0; // of the physical port
    uint32_t sub_group = NO_SUB_GROUP;
    std::optional<uint32_t> pinned; // virtual ports; refused when absent
};

struct port_channel {
    uint32_t channel = 0; // its number on the switch
    uint32_t designated_sub_group = NO_SUB_GROUP;
    std::vector<port_channel_member> members; // at most KX_PC_MEMBERS
};

struct port_channel_table {
    std::optional<uint32_t> mode = KX_PC_MODE_NONE; // kx_port_channel_mode
    std::map<uint32_t, port_channel> by_ltl;
};

#endif
