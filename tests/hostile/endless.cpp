// Walks that a driver would never end: it answers every step, either always with one place or with
// two places in turn.
#include "tests/hostile/endless.h"

#include "dpa/userspace/kxdpa_request.h"
#include "frontend/hmx_cmd.h"

#include <cstdio>
#include <cstring>

namespace {

constexpr uint32_t REFUSED = 61;
constexpr uint32_t LIMIT = 1U << 20; // requests of one walk

// The opcodes of walk steps. While one walk is tested, the steps of all others are refused.
constexpr uint16_t STEPS[] = {9, 15, 25, 298, 299, 573, 618, 619, 627};

struct endless_walk {
    const char *command;
    uint16_t opcode;
    uint32_t position; // of the place in the reply
    uint32_t to_one_place;
    uint32_t to_two_places;
};

constexpr endless_walk WALKS[] = {
    {"show portmac", 25, 0, 2, LIMIT},
    {"show stats", 25, 0, 2, LIMIT},
    {"show dvport", 25, 0, 2, LIMIT},
    {"show lacp hostdata", 25, 0, 2, LIMIT},
    {"show segment", 619, 0, 2, LIMIT},
    {"show bd 5", 9, 0, 2, LIMIT},
    {"show vlan", 618, 0, 2, LIMIT},
    {"show vlan 10", 627, 0, 2, LIMIT},
    {"show l2 10", 15, 16, 2, LIMIT},
    {"show heap", 298, 88, 2, LIMIT},
    {"show mempool", 299, 80, 2, LIMIT},
    // The number of slots is asked for before; then every slot is walked.
    {"show l2-slotwise", 573, 8 + 16, 1 + 2 * 4096, LIMIT},
    // Not a step, but a request that is repeated until it is answered.
    {"show port-drops egress internal", 511, 0, LIMIT, LIMIT},
};

struct {
    const endless_walk *walk;
    uint32_t places;
    uint32_t requests;
} endless;

bool is_step(uint16_t opcode) {
    for (const uint16_t step : STEPS) {
        if (opcode == step)
            return true;
    }
    return false;
}

uint32_t requests_with(const endless_walk &walk, uint32_t places) {
    endless = {&walk, places, 0};
    hmx_cmd_run(walk.command, static_cast<int>(strlen(walk.command)), 0);
    const uint32_t requests = endless.requests;
    endless.walk = nullptr;
    return requests;
}

bool is_as_expected(const endless_walk &walk, uint32_t places, uint32_t expected) {
    const uint32_t requests = requests_with(walk, places);
    if (requests != expected)
        fprintf(stderr, "\"%s\" on a driver of %u places: %u requests, not %u\n", walk.command,
                places, requests, expected);
    return requests == expected;
}

} // namespace

bool is_endless() {
    return endless.walk != nullptr;
}

void endless_answer(kxdpa_request *record) {
    const bool counts = record->opcode == endless.walk->opcode;
    endless.requests += counts ? 1 : 0;
    record->status = record->opcode == 511 || (is_step(record->opcode) && !counts) ? REFUSED : 0;
    const bool two = (record->flags & KXDPA_FLAG_TWO) != 0;
    auto *const reply = reinterpret_cast<uint8_t *>(two ? record->buf2 : record->buf1);
    if (record->status != 0 || (record->flags & KXDPA_FLAG_OUT) == 0)
        return;
    const uint32_t length = two ? record->len2 : record->len1 + record->max1;
    memset(reply, length == sizeof(uint32_t) ? 0 : 1, length);
    if (counts)
        reply[endless.walk->position] =
            static_cast<uint8_t>(20 + endless.requests % endless.places);
    // A driver may write to the key's buffer.
    if (two)
        memcpy(reinterpret_cast<void *>(record->buf1), reply + endless.walk->position,
               record->len1);
}

bool endless_walks_end() {
    bool all_end = true;
    for (const endless_walk &walk : WALKS) {
        all_end &= is_as_expected(walk, 1, walk.to_one_place);
        all_end &= is_as_expected(walk, 2, walk.to_two_places);
    }
    return all_end;
}
