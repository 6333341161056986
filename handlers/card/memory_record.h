// The DPA's memory accounting: its heaps and its pools. Each is a list that is walked by name.
#ifndef HANDLERS_CARD_MEMORY_RECORD_H
#define HANDLERS_CARD_MEMORY_RECORD_H

#include "dpa/userspace/kxdpa_indirect.h"
#include "handlers/walk.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

constexpr size_t KX_MEMORY_NAME_SIZE = 16;

// Buffer of KXDPA_OP_NEXT_HEAP: the request sends the name of a heap, the reply is the heap after
// it.
struct kx_heap_record {
    uint64_t objects;               // allocated
    uint64_t bytes;                 // allocated
    uint64_t denied;                // allocations
    uint64_t denied_bytes;          // their bytes
    uint64_t largest_object;        // bytes
    uint64_t maximum;               // of the heap's size, bytes
    uint64_t minimum;               // likewise
    uint64_t null_pointers;         // checks or frees of null pointers
    uint64_t bad_magics;            // ... of pointers with a bad magic
    uint64_t bad_redzones;          // ... of pointers with a bad red zone
    uint64_t wrong_heaps;           // ... of pointers of another heap
    char name[KX_MEMORY_NAME_SIZE]; // NUL-terminated unless it fills the field
};

static_assert(sizeof(kx_heap_record) == 104);
static_assert(offsetof(kx_heap_record, objects) == 0);
static_assert(offsetof(kx_heap_record, bytes) == 8);
static_assert(offsetof(kx_heap_record, denied) == 16);
static_assert(offsetof(kx_heap_record, denied_bytes) == 24);
static_assert(offsetof(kx_heap_record, largest_object) == 32);
static_assert(offsetof(kx_heap_record, maximum) == 40);
static_assert(offsetof(kx_heap_record, minimum) == 48);
static_assert(offsetof(kx_heap_record, null_pointers) == 56);
static_assert(offsetof(kx_heap_record, bad_magics) == 64);
static_assert(offsetof(kx_heap_record, bad_redzones) == 72);
static_assert(offsetof(kx_heap_record, wrong_heaps) == 80);
static_assert(offsetof(kx_heap_record, name) == 88);

// Buffer of KXDPA_OP_NEXT_MEMORY_POOL, likewise.
struct kx_memory_pool_record {
    uint64_t object_size; // bytes
    uint64_t reserved8;   // the DPA's own
    uint64_t reserved16;  // the DPA's own
    uint64_t pages;
    uint64_t minimum;
    uint64_t maximum;
    uint64_t total;                 // objects
    uint64_t available;             // objects
    uint64_t low_water_mark;        // objects
    uint64_t high_water_mark;       // objects
    char name[KX_MEMORY_NAME_SIZE]; // NUL-terminated unless it fills the field
};

static_assert(sizeof(kx_memory_pool_record) == 96);
static_assert(offsetof(kx_memory_pool_record, object_size) == 0);
static_assert(offsetof(kx_memory_pool_record, pages) == 24);
static_assert(offsetof(kx_memory_pool_record, minimum) == 32);
static_assert(offsetof(kx_memory_pool_record, maximum) == 40);
static_assert(offsetof(kx_memory_pool_record, total) == 48);
static_assert(offsetof(kx_memory_pool_record, available) == 56);
static_assert(offsetof(kx_memory_pool_record, low_water_mark) == 64);
static_assert(offsetof(kx_memory_pool_record, high_water_mark) == 72);
static_assert(offsetof(kx_memory_pool_record, name) == 80);

// A walk over heaps or pools: the current one, all zero to start.
template <typename Record> struct kx_name_walk {
    Record at{};
    uint32_t requests = 0;
};

// Step to the next heap or pool. Only the name is sent. False at the end of the walk.
template <typename Record> bool kx_next_by_name(kxdpa_opcode opcode, kx_name_walk<Record> *walk) {
    Record next{};
    memcpy(next.name, walk->at.name, sizeof next.name);
    if (!kx_may_ask(&walk->requests) || kx_dpa_exchange(opcode, 0, &next) != KXDPA_STATUS_SUCCESS ||
        memcmp(next.name, walk->at.name, sizeof next.name) == 0) {
        return false;
    }
    walk->at = next;
    return true;
}

#endif
