// Private VLANs of a port.
#ifndef HANDLERS_PORT_SHARED_PORT_PVLAN_H
#define HANDLERS_PORT_SHARED_PORT_PVLAN_H

#include "handlers/port/port_record.h"
#include "handlers/walk.h"

enum kx_pvlan_role : uint16_t {
    KX_PVLAN_NONE = 0,
    KX_PVLAN_ISOLATED = 1,
    KX_PVLAN_COMMUNITY = 2,
    KX_PVLAN_PROMISCUOUS = 3,
    KX_PVLAN_PROMISCUOUS_TRUNK = 4,
};

// Buffer of KXDPA_OP_PORT_PVLAN, asked with the argument of the port record: the port's role in a
// private VLAN, asked VLAN by VLAN like the forwarding. The whole layout, its size and the numbers
// of kx_pvlan_role are an assumption of this tool.
struct kx_port_pvlan {
    uint16_t vlan;      // in: a bridge domain's VLAN
    uint16_t role;      // out: kx_pvlan_role
    uint16_t primary;   // out: VLAN
    uint16_t secondary; // out: VLAN, 0 where a promiscuous port is asked for the primary itself
};

static_assert(sizeof(kx_port_pvlan) == 8);
static_assert(offsetof(kx_port_pvlan, vlan) == 0);
static_assert(offsetof(kx_port_pvlan, role) == 2);
static_assert(offsetof(kx_port_pvlan, primary) == 4);
static_assert(offsetof(kx_port_pvlan, secondary) == 6);

// Step to the next bridge domain on whose VLAN the port has a private-VLAN role; start from 0.
// False at the end of the walk.
bool kx_next_pvlan(uint32_t ltl, kx_port_view view, kx_walk *bds, kx_port_pvlan *pvlan);

#endif
