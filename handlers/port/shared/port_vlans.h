// A port's VLANs, as far as several port views ask for them.
#ifndef HANDLERS_PORT_SHARED_PORT_VLANS_H
#define HANDLERS_PORT_SHARED_PORT_VLANS_H

#include "handlers/port/port_record.h"
#include "infra/utils/kxlibbmp.h"

// Ask for the set of VLANs that are configured on a port. A failed request leaves the set empty.
// Returns how many there are, or -1 when the driver broke the set's size word: the assertion has
// then been reported and the caller gives up.
int32_t kx_get_port_vlans(uint32_t ltl, kx_port_view view, bmp4096 *vlans);

// True when the port forwards on the VLAN; a failed request counts as not forwarding.
bool kx_port_forwards_on_vlan(uint32_t ltl, kx_port_view view, uint16_t vlan);

// How many VLANs a port can have: those that exist, less the reserved ones.
int64_t kx_get_usable_vlan_count();

// Print the set as a range list that ends its line. A long list goes on in lines of its own, under
// the column where it started.
void kx_print_vlan_list(const bmp4096 &vlans, int column);

#endif
