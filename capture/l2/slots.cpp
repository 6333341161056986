#include "capture/l2/slots.h"

#include "capture/walk.h"

#include <algorithm>
#include <array>
#include <set>
#include <utility>

namespace {

constexpr uint8_t DESCRIBED_FLAGS =
    KX_L2_STATIC | KX_L2_PVLAN | KX_L2_SECURE | KX_L2_DROP | KX_L2_SOFTWARE;

constexpr uint32_t NO_BRIDGE_DOMAIN = 0; // ends a slot

// A step of the walk over a slot.
struct told_step {
    kx_l2_slot_step asked;
    kx_l2_slot_step told;
};

using told_place = std::pair<uint32_t, l2_entry>; // bridge domain and entry

// True where a display shows the same for both but the age, which goes on while the host is asked.
bool is_alike_place(const told_place &a, const told_place &b) {
    const l2_entry &one = a.second;
    const l2_entry &other = b.second;
    return a.first == b.first && one.mac == other.mac && one.ltl == other.ltl &&
           one.flags == other.flags && one.pvlan == other.pvlan;
}

// The slots as the described host fills them: by the last byte of the address.
std::vector<std::vector<told_place>> described_slots(const l2_state &l2, size_t count) {
    std::vector<std::vector<told_place>> slots(count);
    for (const auto &[index, table] : l2.tables) {
        for (const l2_entry &entry : table.entries) {
            const size_t slot = entry.mac.back() % *l2.slots;
            if (slot < count) {
                slots[slot].emplace_back(index, entry);
            }
        }
    }
    return slots;
}

// Returns false when a step is refused, which ends the display.
bool check_slot(inquiry &driver, uint32_t slot, const std::vector<told_place> &expected) {
    std::vector<told_step> steps;
    std::vector<told_place> places;
    std::set<std::pair<uint32_t, mac_address>> passed;
    kx_l2_slot_step step{};
    bool told = false;
    do {
        const kx_l2_slot_step asked = step;
        told = driver.exchange<KXDPA_OP_L2_SLOTS>(slot, &step, if_refused::KEPT);
        if (!told) {
            break;
        }
        steps.push_back({asked, step});
        if (step.bd_index != NO_BRIDGE_DOMAIN) {
            places.emplace_back(step.bd_index, described_l2_entry(step.entry));
            if (!passed.emplace(step.bd_index, places.back().second.mac).second ||
                places.size() == L2_WALK_LIMIT) {
                driver.report_endless_walk(KXDPA_OP_L2_SLOTS, places.size() - 1);
                return false;
            }
        }
    } while (step.bd_index != NO_BRIDGE_DOMAIN);
    // A step names the one before in the driver's own bytes, so a slot is kept as a whole.
    if (!told || !std::equal(places.begin(), places.end(), expected.begin(), expected.end(),
                             is_alike_place)) {
        for (const told_step &kept : steps) {
            driver.keep_reply(KXDPA_OP_L2_SLOTS, slot, kept.asked, kept.told);
        }
    }
    return told;
}

} // namespace

l2_entry described_l2_entry(const kx_l2_entry &told) {
    l2_entry entry;
    entry.mac = std::to_array(told.mac);
    entry.ltl = told.ltl;
    entry.age = told.now - told.seen_time;
    entry.flags = told.flags & DESCRIBED_FLAGS;
    entry.pvlan = (told.flags & KX_L2_PVLAN) != 0 ? told.pvlan : 0;
    entry.dsn = told.dsn;
    entry.remote_ip = told.remote_ip;
    entry.slot = told.slot;
    entry.encap = told.encap;
    return entry;
}

void ask_slot_count(host_capture &host) {
    std::optional<uint32_t> &into = host.captured.l2.slots;
    kx_l2_slot_step step{};
    const kx_l2_slot_step start = step;
    into.reset();
    if (!host.driver.exchange<KXDPA_OP_L2_SLOTS>(0, &step)) {
        return;
    }
    if (step.slot_count != 0) {
        into = step.slot_count;
    } else {
        host.driver.keep_reply(KXDPA_OP_L2_SLOTS, 0, start, step);
    }
}

void check_slots(host_capture &host) {
    const l2_state &l2 = host.captured.l2;
    const size_t count = std::min<size_t>(l2.slots.value_or(0), WALK_LIMIT);
    if (l2.slots.value_or(0) > count) {
        host.driver.report("of the " + std::to_string(*l2.slots) + " slots of the L2 tables " +
                           std::to_string(count) + " are compared");
    }
    const std::vector<std::vector<told_place>> expected = described_slots(l2, count);
    for (uint32_t slot = 0; slot < count && !host.driver.is_hopeless(KXDPA_OP_L2_SLOTS); slot++) {
        if (!check_slot(host.driver, slot, expected[slot])) {
            return;
        }
    }
}
