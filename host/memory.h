// The DPA's memory accounting: its heaps and pools in the order of the walks, and its asserts.
#ifndef HOST_MEMORY_H
#define HOST_MEMORY_H

#include "handlers/card/memory_record.h"

#include <cstdint>
#include <optional>
#include <vector>

struct memory_state {
    std::vector<kx_heap_record> heaps;
    std::vector<kx_memory_pool_record> pools;
    std::optional<uint32_t> asserts = 0; // counted so far
};

#endif
