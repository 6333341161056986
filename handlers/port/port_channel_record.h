// The port channels: LTLs 1040 to 1047, each with the physical ports that are its members.
#ifndef HANDLERS_PORT_PORT_CHANNEL_RECORD_H
#define HANDLERS_PORT_PORT_CHANNEL_RECORD_H

#include <cstddef>
#include <cstdint>

// Reply of KXDPA_OP_PINNING_MODE, 4 bytes. The numbers are an assumption of this tool.
enum kx_port_channel_mode : uint32_t {
    KX_PC_MODE_NONE = 0,
    KX_PC_MODE_STATIC = 1,
    KX_PC_MODE_LACP_ACTIVE = 2,
    KX_PC_MODE_LACP_PASSIVE = 3,
    KX_PC_MODE_MAC_PINNING = 4,
};

constexpr uint32_t KX_PC_MEMBERS = 32;

struct kx_port_channel_member {
    uint32_t ltl;       // of the physical port
    uint32_t sub_group; // larger than KX_SUB_GROUP_LAST for none
};

static_assert(sizeof(kx_port_channel_member) == 8);
static_assert(offsetof(kx_port_channel_member, ltl) == 0);
static_assert(offsetof(kx_port_channel_member, sub_group) == 4);

// Reply of KXDPA_OP_PORT_CHANNEL_RECORD, asked with the LTL of the port channel. The request fails
// for a port channel that is not in use. Every word and the size are an assumption of this tool.
struct kx_port_channel_record {
    uint32_t channel;              // number of the port channel on the switch
    uint32_t designated_sub_group; // larger than KX_SUB_GROUP_LAST for none
    uint32_t member_count;         // entries of `members` in use; never trusted beyond them
    kx_port_channel_member members[KX_PC_MEMBERS];
};

static_assert(sizeof(kx_port_channel_record) == 268);
static_assert(offsetof(kx_port_channel_record, channel) == 0);
static_assert(offsetof(kx_port_channel_record, designated_sub_group) == 4);
static_assert(offsetof(kx_port_channel_record, member_count) == 8);
static_assert(offsetof(kx_port_channel_record, members) == 12);

// The reply of KXDPA_OP_PINNED_PORTS, asked with a member's LTL, is assumed to be one word: how
// many virtual ports are pinned to it.

#endif
