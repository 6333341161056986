#include "sim/answer.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace {

template <auto list>
using record_of = typename std::remove_reference_t<decltype(memory_state{}.*list)>::value_type;

template <typename records, typename record>
auto find_by_name(records &entries, const record &named) {
    return std::find_if(entries.begin(), entries.end(), [&](const record &entry) {
        return std::strncmp(entry.name, named.name, sizeof named.name) == 0;
    });
}

// The entry after the one that the caller names; the first for an empty name.
template <auto list> void answer_next(host &state, exchange &talk) {
    const auto &entries = state.memory.*list;
    const auto query = talk.input_as<record_of<list>>();
    auto next = entries.begin();
    if (query.name[0] != '\0') {
        next = find_by_name(entries, query);
        next += next == entries.end() ? 0 : 1;
    }
    talk.tell(state, next == entries.end() ? nullptr : &*next);
}

// An entry without a name would start the walk again.
template <auto list> void learn_next(host &state, const exchange &told) {
    auto &entries = state.memory.*list;
    const auto entry = told.reply_as<record_of<list>>();
    if (told.is_told() && entry.name[0] != '\0' && find_by_name(entries, entry) == entries.end()) {
        entries.push_back(entry);
    }
}

template <auto list> constexpr answer walk(kxdpa_opcode opcode) {
    return exchanged<record_of<list>>(opcode, answer_next<list>, learn_next<list>);
}

constexpr answer MEMORY_ANSWERS[] = {
    walk<&memory_state::heaps>(KXDPA_OP_NEXT_HEAP).from_key("heaps"),
    walk<&memory_state::pools>(KXDPA_OP_NEXT_MEMORY_POOL).from_key("memory_pools"),
    value<&host::memory, &memory_state::asserts>(KXDPA_OP_ASSERT_COUNT).from_key("asserts"),
};

} // namespace

constinit const family memory_family = MEMORY_ANSWERS;
