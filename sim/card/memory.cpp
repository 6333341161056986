#include "sim/card/memory.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace {

// The entry behind the one that the caller names; the first for an empty name.
template <auto list> void answer_next(host &state, exchange &talk) {
    const auto &entries = state.memory.*list;
    using record = typename std::remove_reference_t<decltype(entries)>::value_type;
    const auto query = talk.input_as<record>();
    auto next = entries.begin();
    if (query.name[0] != '\0') {
        next = std::find_if(entries.begin(), entries.end(), [&](const record &entry) {
            return std::memcmp(entry.name, query.name, sizeof query.name) == 0;
        });
        if (next != entries.end()) {
            ++next;
        }
    }
    if (next == entries.end()) {
        talk.fail();
    } else {
        talk.reply_with(*next);
    }
}

void answer_asserts(host &state, exchange &talk) {
    talk.tell(state.memory.asserts);
}

constexpr answer MEMORY_ANSWERS[] = {
    {.opcode = KXDPA_OP_NEXT_HEAP,
     .flags = KXDPA_FLAG_IN | KXDPA_FLAG_OUT,
     .len1 = sizeof(kx_heap_record),
     .reply = answer_next<&memory_state::heaps>},
    {.opcode = KXDPA_OP_NEXT_MEMORY_POOL,
     .flags = KXDPA_FLAG_IN | KXDPA_FLAG_OUT,
     .len1 = sizeof(kx_memory_pool_record),
     .reply = answer_next<&memory_state::pools>},
    {.opcode = KXDPA_OP_ASSERT_COUNT, .flags = KXDPA_FLAG_OUT, .len1 = 4, .reply = answer_asserts},
};

} // namespace

constinit const family memory_family = {MEMORY_ANSWERS};
