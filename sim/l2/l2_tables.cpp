#include "sim/answer.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <set>

namespace {

// The key of an entry as a number; 0 for the address zero, which stands before the first entry and
// therefore is never told itself.
uint64_t key_of(const uint8_t (&mac)[KX_MAC_SIZE]) {
    uint64_t key = 0;
    std::memcpy(&key, mac, sizeof mac);
    return key;
}

// As the driver tells it at the host's time.
kx_l2_entry wire_entry(const host &state, const kx_l2_entry &entry) {
    kx_l2_entry wire = entry;
    wire.now += state.l2.now - L2_TIME;
    wire.seen_time += state.l2.now - L2_TIME;
    return wire;
}

// The table of a bridge domain, an empty one when the description says nothing about it; nullptr
// for a bridge domain that does not exist.
const l2_table *table_of(const host &state, uint32_t index) {
    static const auto &empty = *new l2_table;
    if (!state.bridge_domains.by_index.contains(index)) {
        return nullptr;
    }
    const l2_table *found = value_in(state.l2.tables, index);
    return found == nullptr ? &empty : found;
}

// The same to be filled.
l2_table *learnt_table(host &state, uint32_t index) {
    return state.bridge_domains.by_index.contains(index) ? &state.l2.tables[index] : nullptr;
}

template <auto member> void answer_member(host &state, exchange &talk) {
    talk.tell(state, member_in<member>(table_of(state, talk.request.arg)));
}

template <auto member> void learn_member(host &state, const exchange &told) {
    if (l2_table *table = learnt_table(state, told.request.arg)) {
        told.learn(table->*member);
    }
}

template <auto member> constexpr answer member_of(kxdpa_opcode opcode) {
    return get<uint32_t>(opcode, answer_member<member>, learn_member<member>);
}

void answer_entry_count(host &state, exchange &talk) {
    if (const l2_table *table = table_of(state, talk.request.arg)) {
        talk.reply_with(static_cast<uint32_t>(table->entries.size()));
    } else {
        talk.fail(state);
    }
}

// In the table of a bridge domain the first entry after the one with this key that `matches` holds
// for. A walk asks for one after the other, so the place of its last answer is looked at first; who
// does not keep such places begins from the start.
template <typename predicate>
const kx_l2_entry *find_after(exchange &talk, uint32_t index, const l2_table &table, uint64_t key,
                              predicate matches) {
    size_t start = 0;
    size_t &last = talk.places == nullptr ? start : (*talk.places)[index];
    const auto &entries = table.entries;
    size_t place = 0;
    if (key != 0) {
        if (last >= entries.size() || key_of(entries[last].mac) != key) {
            const auto found =
                std::find_if(entries.begin(), entries.end(),
                             [&](const kx_l2_entry &entry) { return key_of(entry.mac) == key; });
            last = static_cast<size_t>(found - entries.begin());
        }
        place = last + 1;
    }
    for (; place < entries.size(); place++) {
        if (key_of(entries[place].mac) != 0 && matches(entries[place])) {
            last = place;
            return &entries[place];
        }
    }
    return nullptr;
}

void answer_next_entry(host &state, exchange &talk) {
    const l2_table *table = table_of(state, talk.request.arg);
    if (table == nullptr) {
        return talk.fail(state);
    }
    const kx_l2_entry *found = find_after(talk, talk.request.arg, *table, talk.input_as<uint64_t>(),
                                          [](const kx_l2_entry &) { return true; });
    if (found == nullptr) {
        talk.fail(state);
    } else {
        talk.reply_with(wire_entry(state, *found));
    }
}

void learn_next_entry(host &state, const exchange &told) {
    l2_table *table = learnt_table(state, told.request.arg);
    const auto entry = told.reply_as<kx_l2_entry>();
    if (table != nullptr && told.is_told() && key_of(entry.mac) != 0) {
        table->entries.push_back(entry);
    }
}

// After the entry that the step names, the slot's next one: first in the same bridge domain.
void answer_slot_step(host &state, exchange &talk) {
    const l2_state &l2 = state.l2;
    const auto step = talk.input_as<kx_l2_slot_step>();
    if (!l2.slots || talk.request.arg >= *l2.slots) {
        return talk.fail(state);
    }
    const auto in_slot = [&](const kx_l2_entry &entry) {
        return entry.mac[KX_MAC_SIZE - 1] % *l2.slots == talk.request.arg;
    };
    for (auto at = l2.tables.lower_bound(step.bd_index); at != l2.tables.end(); ++at) {
        const auto &[index, table] = *at;
        if (!state.bridge_domains.by_index.contains(index)) {
            continue; // nor does any other request find it
        }
        const uint64_t key = index == step.bd_index ? key_of(step.entry.mac) : 0;
        if (const kx_l2_entry *found = find_after(talk, index, table, key, in_slot)) {
            return talk.reply_with(kx_l2_slot_step{*l2.slots, index, wire_entry(state, *found)});
        }
    }
    talk.reply_with(kx_l2_slot_step{*l2.slots, 0, {}});
}

// The first step of the first slot tells how many there are.
void learn_slot_step(host &state, const exchange &told) {
    const auto asked = told.input_as<kx_l2_slot_step>();
    if (told.request.arg != 0 || asked.bd_index != 0) {
        return;
    }
    state.l2.slots.reset();
    if (const uint32_t slots = told.reply_as<kx_l2_slot_step>().slot_count; slots != 0) {
        state.l2.slots = slots;
    }
}

// The time goes on while the host is asked.
bool is_alike_step(const exchange &one, const exchange &other) {
    auto a = one.reply_as<kx_l2_slot_step>();
    const auto b = other.reply_as<kx_l2_slot_step>();
    a.entry.now = b.entry.now;
    return std::memcmp(&a, &b, sizeof a) == 0;
}

void answer_get_mac(host &state, exchange &talk) {
    const l2_table *table = table_of(state, talk.request.arg);
    if (table == nullptr || !table->announced) {
        return talk.fail(state);
    }
    kx_get_mac_info info{};
    for (const kx_get_mac_entry &announced : *table->announced) {
        info.entries[info.count] = announced;
        info.entries[info.count++].bd_index = talk.request.arg;
    }
    talk.reply_with(info);
}

void learn_get_mac(host &state, const exchange &told) {
    l2_table *table = learnt_table(state, told.request.arg);
    if (table == nullptr) {
        return;
    }
    table->announced.reset();
    if (told.is_told()) {
        const auto info = told.reply_as<kx_get_mac_info>();
        table->announced.emplace(info.entries,
                                 info.entries + std::min(info.count, KX_GET_MAC_ENTRIES));
    }
}

constexpr answer L2_ANSWERS[] = {
    member_of<&l2_table::limit>(KXDPA_OP_L2_TABLE_LIMIT),
    get<uint32_t>(KXDPA_OP_L2_ENTRY_COUNT, answer_entry_count, learn_nothing),
    member_of<&l2_table::aging_time>(KXDPA_OP_L2_AGING_TIME),
    answer{KXDPA_OP_NEXT_L2_ENTRY, KXDPA_FLAG_OUT | KXDPA_FLAG_IN | KXDPA_FLAG_TWO, KX_MAC_SIZE,
           sizeof(kx_l2_entry), 0, answer_next_entry, learn_next_entry}
        .of_walk(MOST_ADDRESSES),
    exchanged<kx_l2_slot_step>(KXDPA_OP_L2_SLOTS, answer_slot_step, learn_slot_step)
        .of_walk(MOST_ADDRESSES)
        .told_alike(is_alike_step)
        .with(&answer::steps_by_reply, 1U),
    value<&host::l2, &l2_state::totals>(KXDPA_OP_L2_ENTRY_TOTALS),
    value<&host::l2, &l2_state::aging>(KXDPA_OP_L2_AGING_STATISTICS),
    get<kx_get_mac_info>(KXDPA_OP_GET_MAC_TABLE, answer_get_mac, learn_get_mac),
};

bool is_default(const l2_table &table) {
    const l2_table other;
    return table.limit == other.limit && table.aging_time == other.aging_time &&
           table.entries.empty() && table.announced && table.announced->empty();
}

} // namespace

constinit const family l2_family = L2_ANSWERS;

void settle_l2(host &state) {
    std::erase_if(state.l2.tables, [](const auto &table) { return is_default(table.second); });
    for (auto &[index, table] : state.l2.tables) {
        std::set<uint64_t> seen;
        std::erase_if(table.entries, [&](const kx_l2_entry &entry) {
            return !seen.insert(key_of(entry.mac)).second;
        });
    }
}
