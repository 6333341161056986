// The L2 table of a bridge domain, and the columns that the L2 views share.
#ifndef HANDLERS_PORT_L2_H
#define HANDLERS_PORT_L2_H

#include "handlers/port/l2_record.h"

// Print the L2 table of one bridge domain. `selector` is a kx_bd_selector: the number is a
// bridge-domain index, or a VLAN to look up. Complains when no bridge domain has the VLAN. Prints
// nothing when the bridge domain's limits or its record cannot be read.
void kx_l2_table_dump(uint16_t number, int selector);

// The age of an entry in the DPA's time unit: 0 for a static entry, and for a secure one that its
// port does not learn; otherwise the time since it was seen. Asks for the port of each entry that
// is not static; a failed request counts only for a secure entry. Does not use the aging time.
uint32_t kx_get_mac_age(uint32_t ltl, uint8_t flags, uint32_t seen_time, uint32_t now,
                        uint32_t aging_time);

const char *kx_l2_type(uint8_t flags);

constexpr size_t KX_L2_FLAGS_SIZE = 32;

struct kx_l2_flags_text {
    char text[KX_L2_FLAGS_SIZE];
};

// The flag letters in ten places; the private VLAN follows them when the entry has one.
kx_l2_flags_text kx_l2_flags(const kx_l2_entry &entry);

void kx_print_l2_flags_legend();

#endif
