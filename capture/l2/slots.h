// The L2 tables once more, slot by slot.
#ifndef CAPTURE_L2_SLOTS_H
#define CAPTURE_L2_SLOTS_H

#include "capture/host_capture.h"
#include "handlers/port/l2_record.h"

// An entry in the operator's words. What no display shows of it is left out.
l2_entry described_l2_entry(const kx_l2_entry &told);

// Ask for the number of slots.
void ask_slot_count(host_capture &host);

// Walk the slots, and keep those that the described host would walk otherwise. REQUIRES: the tables
// and the number of slots have been asked for.
void check_slots(host_capture &host);

#endif
