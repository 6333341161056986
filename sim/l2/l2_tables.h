// The host's L2 (MAC) tables, one for each bridge domain, and its get-mac tables.
#ifndef SIM_L2_L2_TABLES_H
#define SIM_L2_L2_TABLES_H

#include "handlers/port/l2_record.h"
#include "sim/answer.h"

#include <array>
#include <cstdint>
#include <map>
#include <vector>

using mac_address = std::array<uint8_t, KX_MAC_SIZE>;

struct l2_table {
    uint32_t limit = 1024;     // entries
    uint32_t aging_time = 300; // seconds
    std::map<mac_address, kx_l2_entry> entries;
    std::vector<kx_get_mac_entry> announced;
};

struct l2_state {
    uint32_t slots = 4; // an address belongs to the slot that its last byte gives
    kx_l2_totals totals{};
    kx_l2_aging_statistics aging{};
    std::map<uint32_t, l2_table> tables; // by bridge-domain index
};

// "l2" of the host file.
extern const family l2_family;

#endif
