// What the views over bridge domains share: the walks, the lookups, the record, the list of member
// ports and the paged list of all bridge domains.
#ifndef HANDLERS_PORT_SHARED_BRIDGE_DOMAIN_H
#define HANDLERS_PORT_SHARED_BRIDGE_DOMAIN_H

#include "dpa/userspace/kxdpa_opcodes.h"
#include "handlers/list_page.h"
#include "handlers/port/bridge_domain_record.h"
#include "handlers/walk.h"

// The meaning of the number that a dump of one bridge domain is given.
enum kx_bd_selector : uint8_t {
    KX_BD_BY_VLAN = 0,
    KX_BD_BY_INDEX = 1,
};

// False, with a complaint, for a VLAN of 4095 or more.
bool kx_check_vlan(uint32_t vlan);

// False, with a complaint, for a bridge-domain index of 9300 or more.
bool kx_check_bd_index(uint32_t index);

// Step to the index of the DPA's next bridge domain; start from 0. False at the end of the walk,
// also when the driver answers index 0.
bool kx_next_bd(kx_walk *walk);

// Clear a bridge domain's record and ask for it. False when the request fails.
bool kx_get_bd(uint32_t index, kx_bd_record *record);

// True for a segment that is carried in VXLAN and not natively: its VLAN number says nothing about
// the ports.
bool kx_bd_is_vxlan_segment(const kx_bd_record &record);

// Step to the next bridge domain whose VLAN ports can carry, and ask for its record; start from 0.
// Skips a record that cannot be read, and a segment carried in VXLAN. False at the end of the walk.
bool kx_next_vlan_bd(kx_walk *walk, kx_bd_record *record);

// The lookups return a bridge-domain index, or 0 when there is none: the request failed or answered
// index 0. To look up a VLAN, the VLAN views and the L2 views use different opcodes.
uint32_t kx_find_bd_by_vlan(kxdpa_opcode opcode, uint16_t vlan);
uint32_t kx_find_bd_by_segment(uint32_t segment);
uint32_t kx_find_bd_by_swbd(uint32_t swbd);

struct kx_named_bd {
    char name[sizeof(kx_bd_record::name) + 1]; // as it was asked for, cut to the record's field
    uint32_t index;                            // 0 for none of this name
};

// The bridge domain that the argument's first word names. Complains about a missing argument and
// returns -1. Complains about an unknown name and returns 0, as for a known one.
int kx_find_named_bd(const char *arg, kx_named_bd *bd);

// Member ports of a bridge domain, -1 when they cannot be counted.
int32_t kx_get_bd_port_count(uint32_t index);

// Print the member ports, one a row with the HMX port name, and a blank line after every tenth. The
// row of the designated receiver, if given, is marked.
void kx_print_bd_ports(uint32_t index, const uint32_t *dr_ltl);

// Prints one bridge domain of a list; false when the list leaves it out.
using kx_print_listed_bd = bool(uint32_t index);

// Print the head of the list, the number of bridge domains, where the driver can be asked for it.
void kx_print_bd_count();

// Print the list of all bridge domains.
void kx_print_bd_list(kx_print_listed_bd *print);

// Print one page of that list, which holds one bridge domain, and leave the cookie of the next.
// Pages do not have the head. A cookie has no limit: it is an index from the driver's own walk.
// Returns the handler's result.
int kx_print_bd_page(const kx_list_page &page, kx_print_listed_bd *print);

#endif
