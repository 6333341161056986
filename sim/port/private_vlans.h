// Who answers about private VLANs.
#ifndef SIM_PORT_PRIVATE_VLANS_H
#define SIM_PORT_PRIVATE_VLANS_H

#include "sim/answer.h"

extern const family private_vlan_family;

#endif
