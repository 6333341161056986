#include "sim/card/memory.h"

#include "sim/object_reader.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace {

void parse_heap(object_reader &keys, kx_heap_record &heap) {
    keys.text("name", heap.name);
    keys.number("objects", heap.objects);
    keys.number("bytes", heap.bytes);
    keys.number("denied", heap.denied);
    keys.number("denied_bytes", heap.denied_bytes);
    keys.number("largest_object", heap.largest_object);
    keys.number("minimum", heap.minimum);
    keys.number("maximum", heap.maximum);
    keys.number("null_pointers", heap.null_pointers);
    keys.number("bad_magics", heap.bad_magics);
    keys.number("bad_redzones", heap.bad_redzones);
    keys.number("wrong_heaps", heap.wrong_heaps);
}

void parse_pool(object_reader &keys, kx_memory_pool_record &pool) {
    keys.text("name", pool.name);
    keys.number("object_size", pool.object_size);
    keys.number("pages", pool.pages);
    keys.number("minimum", pool.minimum);
    keys.number("maximum", pool.maximum);
    keys.number("total", pool.total);
    keys.number("available", pool.available);
    keys.number("low_water_mark", pool.low_water_mark);
    keys.number("high_water_mark", pool.high_water_mark);
}

void parse_memory(object_reader &file, host &into) {
    file.each("heaps",
              [&](object_reader &keys) { parse_heap(keys, into.memory.heaps.emplace_back()); });
    file.each("memory_pools",
              [&](object_reader &keys) { parse_pool(keys, into.memory.pools.emplace_back()); });
    file.number("asserts", into.memory.asserts);
}

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

constexpr answer ANSWERS[] = {
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

constinit const family memory_family = {parse_memory, ANSWERS};
