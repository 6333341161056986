// The host's L2 (MAC) tables, one for each bridge domain, and its get-mac tables.
#ifndef HOST_L2_H
#define HOST_L2_H

#include "handlers/port/l2_record.h"
#include "host/address.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

struct l2_entry {
    mac_address mac{};
    uint32_t ltl = 0;       // the port behind the address
    uint32_t age = 0;       // since the last sighting, in the DPA's own unit
    uint8_t flags = 0;      // kx_l2_flag bits
    uint32_t pvlan = 0;     // private VLAN, with KX_L2_PVLAN
    uint8_t dsn = 0;        // of a segment's entry
    uint32_t remote_ip = 0; // IPv4 address of the remote tunnel endpoint, network byte order
    uint32_t slot = 0;      // of a software-installed entry
    uint32_t encap = 0;     // encapsulation ID of a static entry, in leaf mode
};

// An address of the get-mac table.
struct announced_mac {
    mac_address mac{};
    uint8_t sent = 0;       // non-zero: announced
    uint32_t last_sent = 0; // time, in the DPA's own unit
};

struct l2_table {
    std::optional<uint32_t> limit = 1024;     // entries
    std::optional<uint32_t> aging_time = 300; // seconds
    std::vector<l2_entry> entries;            // in the order of the walk, no address twice
    size_t last_asked = 0;                    // where a walk of `entries` stands
    std::optional<std::vector<announced_mac>> announced{
        std::in_place}; // at most KX_GET_MAC_ENTRIES
};

struct l2_state {
    uint32_t now = 100000;             // the DPA's time
    std::optional<uint32_t> slots = 4; // an address belongs to the slot that its last byte gives
    std::optional<kx_l2_totals> totals{kx_l2_totals{}};
    std::optional<kx_l2_aging_statistics> aging{kx_l2_aging_statistics{}};
    std::map<uint32_t, l2_table> tables; // by bridge-domain index
};

#endif
