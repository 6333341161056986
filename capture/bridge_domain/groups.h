// The IPv4 multicast groups of a VLAN.
#ifndef CAPTURE_BRIDGE_DOMAIN_GROUPS_H
#define CAPTURE_BRIDGE_DOMAIN_GROUPS_H

#include "capture/inquiry.h"

#include <cstdint>
#include <vector>

// The groups of the driver's walk, for a VLAN of which a described host has some, or none.
std::vector<uint32_t> ask_groups(inquiry &driver, uint32_t vlan);

// Keep the walk as it is, for a VLAN that no described bridge domain has.
void keep_groups(inquiry &driver, uint32_t vlan);

#endif
