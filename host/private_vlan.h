// What the host's ports are to private VLANs.
#ifndef HOST_PRIVATE_VLAN_H
#define HOST_PRIVATE_VLAN_H

#include "handlers/port/shared/port_pvlan.h"

#include <cstdint>
#include <map>
#include <utility>

// By LTL and the VLAN that is asked about; the same in all views.
using private_vlan_table = std::map<std::pair<uint32_t, uint32_t>, kx_port_pvlan>;

#endif
