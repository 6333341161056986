#include "sim/l2/l2_tables.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <set>

namespace {

kx_l2_entry wire_entry(const l2_entry &entry, uint32_t now) {
    kx_l2_entry wire{};
    std::copy(entry.mac.begin(), entry.mac.end(), wire.mac);
    wire.ltl = entry.ltl;
    wire.pvlan = entry.pvlan;
    wire.seen_time = now - entry.age;
    wire.now = now;
    wire.flags = entry.flags;
    wire.dsn = entry.dsn;
    wire.remote_ip = entry.remote_ip;
    wire.slot = entry.slot;
    wire.encap = entry.encap;
    return wire;
}

// The table of a bridge domain, empty when the host file says nothing about it; nullptr, with the
// request failed, for a bridge domain that does not exist.
l2_table *table_of(host &state, exchange &talk) {
    const uint32_t index = talk.request.arg;
    if (!state.bridge_domains.by_index.contains(index)) {
        talk.fail();
        return nullptr;
    }
    return &state.l2.tables[index];
}

void answer_limit(host &state, exchange &talk) {
    if (const l2_table *table = table_of(state, talk)) {
        talk.tell(table->limit);
    }
}

void answer_entry_count(host &state, exchange &talk) {
    if (const l2_table *table = table_of(state, talk)) {
        talk.reply_with(static_cast<uint32_t>(table->entries.size()));
    }
}

void answer_aging_time(host &state, exchange &talk) {
    if (const l2_table *table = table_of(state, talk)) {
        talk.tell(table->aging_time);
    }
}

// The place of the entry behind the one with the address, of the first for the address zero, which
// therefore is never told itself. A walk asks for one after the other, so the place of the last
// answer is looked at first.
size_t place_behind(l2_table &table, const mac_address &mac) {
    const auto &entries = table.entries;
    size_t &last = table.last_asked;
    if (mac == mac_address{}) {
        last = 0;
        return 0;
    }
    if (last >= entries.size() || entries[last].mac != mac) {
        const auto found = std::find_if(entries.begin(), entries.end(),
                                        [&](const l2_entry &entry) { return entry.mac == mac; });
        last = static_cast<size_t>(found - entries.begin());
    }
    last = std::min(last + 1, entries.size());
    return last;
}

// The first entry from a place on that `matches` holds for; the walk stands there then.
template <typename predicate>
const l2_entry *find_entry(l2_table &table, size_t first, predicate matches) {
    for (size_t place = first; place < table.entries.size(); place++) {
        const l2_entry &entry = table.entries[place];
        if (entry.mac != mac_address{} && matches(entry)) {
            table.last_asked = place;
            return &entry;
        }
    }
    return nullptr;
}

void answer_next_entry(host &state, exchange &talk) {
    l2_table *table = table_of(state, talk);
    if (table == nullptr) {
        return;
    }
    const size_t first = place_behind(*table, talk.input_as<mac_address>());
    const l2_entry *found = find_entry(*table, first, [](const l2_entry &) { return true; });
    if (found == nullptr) {
        talk.fail();
    } else {
        talk.reply_with(wire_entry(*found, state.l2.now));
    }
}

// Behind the entry that the step names, the slot's next one: first in the same bridge domain.
void answer_slot_step(host &state, exchange &talk) {
    l2_state &l2 = state.l2;
    const auto step = talk.input_as<kx_l2_slot_step>();
    if (!l2.slots || talk.request.arg >= *l2.slots) {
        talk.fail();
        return;
    }
    const auto in_slot = [&](const l2_entry &entry) {
        return entry.mac.back() % *l2.slots == talk.request.arg;
    };
    for (auto table = l2.tables.lower_bound(step.bd_index); table != l2.tables.end(); ++table) {
        if (!state.bridge_domains.by_index.contains(table->first)) {
            continue; // nor does any other request find it
        }
        const bool goes_on = table->first == step.bd_index;
        const size_t first =
            goes_on ? place_behind(table->second, std::to_array(step.entry.mac)) : 0;
        if (const l2_entry *found = find_entry(table->second, first, in_slot)) {
            talk.reply_with(kx_l2_slot_step{*l2.slots, table->first, wire_entry(*found, l2.now)});
            return;
        }
    }
    talk.reply_with(kx_l2_slot_step{*l2.slots, 0, {}});
}

void answer_totals(host &state, exchange &talk) {
    talk.tell(state.l2.totals);
}

void answer_aging(host &state, exchange &talk) {
    talk.tell(state.l2.aging);
}

void answer_get_mac(host &state, exchange &talk) {
    const l2_table *table = table_of(state, talk);
    if (table == nullptr) {
        return;
    }
    if (!table->announced) {
        talk.fail();
        return;
    }
    kx_get_mac_info info{};
    for (const announced_mac &announced : *table->announced) {
        kx_get_mac_entry &entry = info.entries[info.count++];
        entry.bd_index = talk.request.arg;
        std::copy(announced.mac.begin(), announced.mac.end(), entry.mac);
        entry.sent = announced.sent;
        entry.last_sent = announced.last_sent;
    }
    talk.reply_with(info);
}

constexpr answer L2_ANSWERS[] = {
    {.opcode = KXDPA_OP_L2_TABLE_LIMIT, .flags = KXDPA_FLAG_OUT, .len1 = 4, .reply = answer_limit},
    {.opcode = KXDPA_OP_L2_ENTRY_COUNT,
     .flags = KXDPA_FLAG_OUT,
     .len1 = 4,
     .reply = answer_entry_count},
    {.opcode = KXDPA_OP_L2_AGING_TIME,
     .flags = KXDPA_FLAG_OUT,
     .len1 = 4,
     .reply = answer_aging_time},
    {.opcode = KXDPA_OP_NEXT_L2_ENTRY,
     .flags = KXDPA_FLAG_OUT | KXDPA_FLAG_IN | KXDPA_FLAG_TWO,
     .len1 = KX_MAC_SIZE,
     .len2 = sizeof(kx_l2_entry),
     .reply = answer_next_entry},
    {.opcode = KXDPA_OP_L2_SLOTS,
     .flags = KXDPA_FLAG_OUT | KXDPA_FLAG_IN,
     .len1 = sizeof(kx_l2_slot_step),
     .reply = answer_slot_step},
    {.opcode = KXDPA_OP_L2_ENTRY_TOTALS,
     .flags = KXDPA_FLAG_OUT,
     .len1 = sizeof(kx_l2_totals),
     .reply = answer_totals},
    {.opcode = KXDPA_OP_L2_AGING_STATISTICS,
     .flags = KXDPA_FLAG_OUT,
     .len1 = sizeof(kx_l2_aging_statistics),
     .reply = answer_aging},
    {.opcode = KXDPA_OP_GET_MAC_TABLE,
     .flags = KXDPA_FLAG_OUT,
     .len1 = sizeof(kx_get_mac_info),
     .reply = answer_get_mac},
};

} // namespace

constinit const family l2_family = {L2_ANSWERS};
