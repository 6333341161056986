// The host's L2 (MAC) tables, one for each bridge domain, and its get-mac tables.
#ifndef HOST_L2_H
#define HOST_L2_H

#include "handlers/port/l2_record.h"

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

// The DPA's time in its own unit, unless a description says otherwise. The times of an entry count
// by this clock, whatever the description says: only its age is described.
constexpr uint32_t L2_TIME = 100000;

constexpr kx_l2_entry l2_entry_defaults() {
    kx_l2_entry entry{};
    entry.seen_time = entry.now = L2_TIME;
    return entry;
}

struct l2_table {
    std::optional<uint32_t> limit = 1024;     // entries
    std::optional<uint32_t> aging_time = 300; // seconds
    std::vector<kx_l2_entry> entries;         // in the order of the walk, no address twice
    // At most KX_GET_MAC_ENTRIES, but for the bridge domain's index.
    std::optional<std::vector<kx_get_mac_entry>> announced{std::in_place};
};

struct l2_state {
    uint32_t now = L2_TIME;            // the DPA's time
    std::optional<uint32_t> slots = 4; // an address belongs to the slot that its last byte gives
    std::optional<kx_l2_totals> totals{kx_l2_totals{}};
    std::optional<kx_l2_aging_statistics> aging{kx_l2_aging_statistics{}};
    std::map<uint32_t, l2_table> tables; // by bridge-domain index
};

#endif
