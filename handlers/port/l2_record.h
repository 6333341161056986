// The L2 (MAC) tables of the DPA, as the L2 views read them.
#ifndef HANDLERS_PORT_L2_RECORD_H
#define HANDLERS_PORT_L2_RECORD_H

#include <cstddef>
#include <cstdint>

constexpr size_t KX_MAC_SIZE = 6;

enum kx_l2_flag : uint8_t {
    KX_L2_STATIC = 0x01,
    KX_L2_PVLAN = 0x04, // learnt on a private VLAN
    KX_L2_SECURE = 0x08,
    KX_L2_DROP = 0x10,
    KX_L2_SOFTWARE = 0x40, // installed by software
};

// Reply of KXDPA_OP_NEXT_L2_ENTRY; its key is the previous MAC address. The times are in the DPA's
// own unit.
struct kx_l2_entry {
    uint32_t ltl;       // the port that the address was learnt on
    uint32_t pvlan;     // private VLAN, meaningful with KX_L2_PVLAN
    uint32_t seen_time; // of the last sighting
    uint32_t now;       // when the DPA replied
    uint8_t mac[KX_MAC_SIZE];
    uint8_t flags; // kx_l2_flag bits
    uint8_t dsn;   // of a segment's entry
    uint8_t reserved24[4];
    uint32_t remote_ip; // IPv4 address of the remote tunnel endpoint, network byte order
    uint8_t reserved32[4];
    uint32_t slot;  // of a software-installed entry
    uint32_t encap; // encapsulation ID of a static entry, in leaf mode
};

static_assert(sizeof(kx_l2_entry) == 44);
static_assert(offsetof(kx_l2_entry, ltl) == 0);
static_assert(offsetof(kx_l2_entry, pvlan) == 4);
static_assert(offsetof(kx_l2_entry, seen_time) == 8);
static_assert(offsetof(kx_l2_entry, now) == 12);
static_assert(offsetof(kx_l2_entry, mac) == 16);
static_assert(offsetof(kx_l2_entry, flags) == 22);
static_assert(offsetof(kx_l2_entry, dsn) == 23);
static_assert(offsetof(kx_l2_entry, remote_ip) == 28);
static_assert(offsetof(kx_l2_entry, slot) == 36);
static_assert(offsetof(kx_l2_entry, encap) == 40);

// Reply of KXDPA_OP_L2_ENTRY_TOTALS. The first word is 64 bits wide and aligned to 4.
struct kx_l2_totals {
    uint64_t flow_entries; // of the whole flow table
    uint32_t vnic_entries;
};

static_assert(sizeof(kx_l2_totals) == 12);
static_assert(offsetof(kx_l2_totals, flow_entries) == 0);
static_assert(offsetof(kx_l2_totals, vnic_entries) == 8);

// Reply of KXDPA_OP_L2_AGING_STATISTICS.
struct kx_l2_aging_statistics {
    uint8_t reserved0[4];
    uint32_t aged; // entries
    uint8_t reserved8[12];
    uint32_t rejected; // entries
};

static_assert(sizeof(kx_l2_aging_statistics) == 24);
static_assert(offsetof(kx_l2_aging_statistics, aged) == 4);
static_assert(offsetof(kx_l2_aging_statistics, rejected) == 20);

// Buffer of KXDPA_OP_L2_SLOTS, asked with the slot number: one step of the walk over a slot's
// entries. The driver's layout is not known. Only the entry is the driver's; the three words and
// the step itself are an assumption of this tool.
struct kx_l2_slot_step {
    uint32_t slot_count; // out: slots of the table
    uint32_t bd_index;   // bridge domain; in: of the entry before, 0 to start; out: 0 at the end
    kx_l2_entry entry;   // in: the MAC address of the entry before
};

static_assert(sizeof(kx_l2_slot_step) == 52);
static_assert(offsetof(kx_l2_slot_step, slot_count) == 0);
static_assert(offsetof(kx_l2_slot_step, bd_index) == 4);
static_assert(offsetof(kx_l2_slot_step, entry) == 8);

// The largest number of slots that the tool walks, whatever the driver answers. It is also an
// assumption.
constexpr uint32_t KX_L2_SLOTS_LIMIT = 4096;

// One record of the get-mac table. The driver's layout is not known: the fields are the columns
// that the view prints, and their order is an assumption of this tool.
struct kx_get_mac_entry {
    uint32_t bd_index;
    uint8_t mac[KX_MAC_SIZE];
    uint8_t sent; // non-zero: announced
    uint8_t reserved11;
    uint32_t last_sent; // time, in the DPA's own unit
};

static_assert(sizeof(kx_get_mac_entry) == 16);
static_assert(offsetof(kx_get_mac_entry, bd_index) == 0);
static_assert(offsetof(kx_get_mac_entry, mac) == 4);
static_assert(offsetof(kx_get_mac_entry, sent) == 10);
static_assert(offsetof(kx_get_mac_entry, last_sent) == 12);

constexpr uint32_t KX_GET_MAC_ENTRIES = 512;

// Reply of KXDPA_OP_GET_MAC_TABLE, asked with the bridge-domain index; an assumption as well.
struct kx_get_mac_info {
    uint32_t count; // entries that are filled
    kx_get_mac_entry entries[KX_GET_MAC_ENTRIES];
};

static_assert(sizeof(kx_get_mac_info) == 4 + 16 * KX_GET_MAC_ENTRIES);
static_assert(offsetof(kx_get_mac_info, count) == 0);
static_assert(offsetof(kx_get_mac_info, entries) == 4);

#endif
