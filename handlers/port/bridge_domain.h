// What the views over bridge domains share: the walk and the record.
#ifndef HANDLERS_PORT_BRIDGE_DOMAIN_H
#define HANDLERS_PORT_BRIDGE_DOMAIN_H

#include "handlers/port/bridge_domain_record.h"

// Step `index` to the next bridge domain of the DPA; start from 0. False when the request fails,
// which ends the walk.
bool kx_next_bd(uint32_t *index);

// Ask for a bridge domain's record, cleared before. False when the request fails.
bool kx_get_bd(uint32_t index, kx_bd_record *record);

// True for a segment that is carried in VXLAN rather than natively: its VLAN number says nothing
// about the ports.
bool kx_bd_is_vxlan_segment(const kx_bd_record &record);

#endif
