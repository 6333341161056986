// The tables of keys, one for each kind of object in the host file.
#ifndef HOST_KEYS_H
#define HOST_KEYS_H

#include "host/key.h"

extern const key_table HOST_KEYS; // of a host: the file as a whole

// The parts of it, each with the object that it is walked with.
extern const key_table CARD_KEYS;          // card_state
extern const key_table HEAP_KEYS;          // kx_heap_record
extern const key_table MEMORY_POOL_KEYS;   // kx_memory_pool_record
extern const key_table BRIDGE_DOMAIN_KEYS; // keyed<...> of bridge_domain_table::by_index
extern const key_table PORT_KEYS;          // keyed<...> of port_table::by_ltl
extern const key_table PORT_VIEW_KEYS;     // port_view
extern const key_table PRIVATE_VLAN_KEYS;  // keyed<private_vlan_table>
extern const key_table PORT_CHANNEL_KEYS;  // keyed<...> of port_channel_table::by_ltl
extern const key_table L2_KEYS;            // l2_state
extern const key_table ACCESS_LIST_KEYS;   // access_list
extern const key_table LACP_KEYS;          // lacp_state
extern const key_table TRAFFIC_KEYS;       // keyed<traffic_table>
extern const key_table DROP_KEYS;          // keyed<drop_table>
extern const key_table STAGE_DROP_KEYS;    // kx_drop_counters
extern const key_table STAGE_KEYS;         // kx_stage_descriptor
extern const key_table AGENT_KEYS;         // agent_description

#endif
