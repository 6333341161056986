#ifndef SIM_PORT_PRIVATE_VLANS_H
#define SIM_PORT_PRIVATE_VLANS_H

#include "sim/answer.h"

// "private_vlans" of the host file.
extern const family private_vlan_family;

#endif
