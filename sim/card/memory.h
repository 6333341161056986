// The DPA's memory accounting: its heaps and pools in the order of the walks, and its asserts.
#ifndef SIM_CARD_MEMORY_H
#define SIM_CARD_MEMORY_H

#include "handlers/card/memory_record.h"
#include "sim/answer.h"

#include <cstdint>
#include <vector>

struct memory_state {
    std::vector<kx_heap_record> heaps;
    std::vector<kx_memory_pool_record> pools;
    uint32_t asserts = 0; // counted so far
};

// "heaps", "memory_pools" and "asserts" of the host file.
extern const family memory_family;

#endif
