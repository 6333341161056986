// What the host's ports are to private VLANs.
#ifndef SIM_PORT_PRIVATE_VLANS_H
#define SIM_PORT_PRIVATE_VLANS_H

#include "handlers/port/shared/port_pvlan.h"
#include "sim/answer.h"

#include <cstdint>
#include <map>
#include <utility>

// By LTL and the VLAN that is asked about; the same in all views.
using private_vlan_table = std::map<std::pair<uint32_t, uint32_t>, kx_port_pvlan>;

// "private_vlans" of the host file.
extern const family private_vlan_family;

#endif
