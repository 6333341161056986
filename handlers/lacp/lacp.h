// The LACP state of one uplink, or of all together.
#ifndef HANDLERS_LACP_LACP_H
#define HANDLERS_LACP_LACP_H

#include "handlers/lacp/lacp_record.h"

// Print whether LACP is offloaded to the host, and without offload the uplinks that carry it.
void kx_show_lacp_offload_state();

// Print the uplink's offload state, or its PDU cache when there is no offload. Prints nothing when
// the cache cannot be read. Returns 0.
int kx_show_lacp_ltl(uint32_t ltl);

// Print one side of a PDU as three lines.
void kx_show_lacp_internal(const kx_lacp_partner &partner);

// Print what the host was told about the uplink's channel; nothing when that cannot be read.
// Returns 0.
int kx_show_lacp_ltl_hostdata(uint32_t ltl);

#endif
