// The walks over the driver's tables: a request names a position, and the answer is the next one. A
// refused request ends the walk.
//
// A walk must end whatever the driver answers, or its host process would hang. So a walk also ends
// when the answer is the position that was asked with, and after KX_WALK_REQUESTS requests. For
// walks within walks, all end when the command has made KX_COMMAND_REQUESTS requests in all of its
// walks.
#ifndef HANDLERS_WALK_H
#define HANDLERS_WALK_H

#include "frontend/run_state.h"

#include <cstdint>

// Many more than any table has entries.
constexpr uint32_t KX_WALK_REQUESTS = 1U << 20;

// More than a walk over all bridge domains for each port needs, 1,048 times 9,300.
constexpr uint32_t KX_COMMAND_REQUESTS = 1U << 24;

// A walk over the numbers of a driver's table: LTLs, VLANs, bridge domains, multicast groups.
struct kx_walk {
    uint32_t at;           // the number that the walk has reached; at first, where it starts
    uint32_t requests = 0; // made so far
};

// Count one more request of a walk. False when there were too many.
inline bool kx_may_ask(uint32_t *requests) {
    if (*requests == KX_WALK_REQUESTS || kx_walked_requests == KX_COMMAND_REQUESTS) {
        return false;
    }
    ++*requests;
    ++kx_walked_requests;
    return true;
}

inline bool kx_may_ask(kx_walk *walk) {
    return kx_may_ask(&walk->requests);
}

// Go on to the number that the driver answered. False when it is the current one.
inline bool kx_go_to(kx_walk *walk, uint32_t next) {
    const bool moved = next != walk->at;
    walk->at = next;
    return moved;
}

#endif
