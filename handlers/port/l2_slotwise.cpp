// "show l2-slotwise": the L2 table of every bridge domain, slot by slot.
#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/port/l2.h"
#include "handlers/port/shared/bridge_domain.h"
#include "infra/utils/kxstrings.h"

#include <algorithm>
#include <cstring>

namespace {

// The bridge domain of the current entries.
struct slot_bd {
    uint32_t index = 0;
    bool known = false; // its aging time and its record could be read
    uint32_t aging_time = 0;
    kx_bd_record record{};
};

// The walk over all slots.
struct slot_walk {
    kx_l2_slot_step at{};  // cleared where a slot starts
    uint32_t requests = 0; // of all slots together, which hold one table
};

bool is_same_entry(const kx_l2_slot_step &a, const kx_l2_slot_step &b) {
    return a.bd_index == b.bd_index && memcmp(a.entry.mac, b.entry.mac, sizeof a.entry.mac) == 0;
}

// Step to the slot's next entry. Its bridge domain is 0 at the end of the slot. False at the end of
// the walk.
bool next_in_slot(uint32_t slot, slot_walk *walk) {
    const kx_l2_slot_step asked = walk->at;
    if (!kx_may_ask(&walk->requests) ||
        kx_dpa_exchange(KXDPA_OP_L2_SLOTS, slot, &walk->at) != KXDPA_STATUS_SUCCESS) {
        return false;
    }
    if (is_same_entry(walk->at, asked)) {
        walk->at.bd_index = 0;
    }
    return true;
}

bool is_segment(const slot_bd &bd) {
    return bd.record.kind == KX_BD_KIND_SEGMENT;
}

void read_bd(uint32_t index, slot_bd *bd) {
    bd->index = index;
    bd->known =
        kx_dpa_get(KXDPA_OP_L2_AGING_TIME, index, &bd->aging_time) == KXDPA_STATUS_SUCCESS &&
        kx_get_bd(index, &bd->record);
}

void print_header(bool segments) {
    if (segments) {
        kx_print("SegID      Type         MAC Address   LTL   timeout   Flags    PVLAN\n");
    } else {
        kx_print("VLAN       Type         MAC Address   LTL   timeout   Flags    PVLAN\n");
    }
}

void print_row(const slot_bd &bd, const kx_l2_entry &entry) {
    char mac[KX_MAC_TEXT_SIZE];
    snprintf_mac_address(mac, sizeof mac, entry.mac);
    const uint32_t age =
        kx_get_mac_age(entry.ltl, entry.flags, entry.seen_time, entry.now, bd.aging_time);
    kx_print("%4d    %7.7s   %s %5d %9d   %10s\n",
             is_segment(bd) ? bd.record.segment_id : bd.record.vlan, kx_l2_type(entry.flags), mac,
             entry.ltl, age, kx_l2_flags(entry).text);
}

// Print the rows of a slot from the current entry on, with a header wherever VLANs change to
// segments or segments to VLANs. False at the end of the walk.
bool print_slot(uint32_t slot, slot_walk *walk) {
    const kx_l2_slot_step &step = walk->at;
    kx_print("\nL2 Table Slot::%d\n", slot);
    kx_print_l2_flags_legend();
    slot_bd bd;
    bool has_header = false;
    bool header_of_segments = false;
    while (step.bd_index != 0) {
        if (step.bd_index != bd.index) {
            read_bd(step.bd_index, &bd);
        }
        if (bd.known) {
            if (!has_header || header_of_segments != is_segment(bd)) {
                has_header = true;
                header_of_segments = is_segment(bd);
                print_header(header_of_segments);
            }
            print_row(bd, step.entry);
        }
        if (!next_in_slot(slot, walk)) {
            return false;
        }
    }
    return true;
}

} // namespace

int kx_l2_table_dump_slotwise(const char * /*arg*/) {
    kx_trace(kx_debug_print_kxdump, KX_DEBUG_TRACE, "kx_l2_table_dump_slotwise:\n");
    slot_walk walk;
    if (!next_in_slot(0, &walk)) {
        return 0;
    }
    const uint32_t slot_count = std::min(walk.at.slot_count, KX_L2_SLOTS_LIMIT);
    kx_print("Slot count:%d\n", walk.at.slot_count);
    for (uint32_t slot = 0; slot < slot_count; ++slot) {
        walk.at = {};
        if (!next_in_slot(slot, &walk) || !print_slot(slot, &walk)) {
            break;
        }
    }
    return 0;
}
