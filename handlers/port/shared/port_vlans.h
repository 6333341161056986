// A port's VLANs, as several port views use them.
#ifndef HANDLERS_PORT_SHARED_PORT_VLANS_H
#define HANDLERS_PORT_SHARED_PORT_VLANS_H

#include "handlers/port/port_record.h"
#include "infra/utils/kxlibbmp.h"

// Ask for the set of VLANs that are configured on a port. When the request fails, the set is empty.
// Returns their number, or -1 when the driver broke the set's size word: the assertion is then
// already reported, and the caller gives up.
int32_t kx_get_port_vlans(uint32_t ltl, kx_port_view view, bmp4096 *vlans);

// True when the port forwards on the VLAN; a failed request counts as not forwarding.
bool kx_port_forwards_on_vlan(uint32_t ltl, kx_port_view view, uint16_t vlan);

// The number of VLANs a port can have: those that exist, less the reserved ones.
int64_t kx_get_usable_vlan_count();

// Print the set as a range list that ends its line. A long list continues in further lines, below
// the column where it started.
void kx_print_vlan_list(const bmp4096 &vlans, int column);

#endif
