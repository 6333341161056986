// The bridge-domain views and the paged companions of the list commands.
#ifndef HANDLERS_PORT_BD_H
#define HANDLERS_PORT_BD_H

#include "handlers/port/shared/bridge_domain.h"

// Print one bridge domain: its data, its member ports and, for a VLAN, its multicast groups.
// `selector` is a kx_bd_selector: the number is a bridge-domain index, or a VLAN to look up.
// Complains when no bridge domain has the VLAN. Prints nothing when the record cannot be read.
void kx_bd_vlan_dump(uint32_t number, int selector);

// Print one bridge domain with its designated receiver; nothing when the record cannot be read.
void kx_bd_dump_dr(uint32_t index);

// The list commands as the agent runs them: one entry a page. `arg` and the result are those of the
// handlers that call them.
int kx_vlan_fromdpa_list_dump(const char *arg);
int kx_bd_fromdpa_table_dump(const char *arg);
int kx_segment_fromdpa_table_dump(const char *arg);
int kx_bd_fromdpa_table_dump_dr(const char *arg);

#endif
