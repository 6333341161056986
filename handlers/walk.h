// The walks over the driver's tables: a request names a position, the answer is the next one, and a
// refusal ends the walk.
//
// No answer keeps a walk going for ever, since that would be the end of a host process: a walk has
// also ended when the answer is the very position that it was asked with, and after
// KX_WALK_REQUESTS requests.
#ifndef HANDLERS_WALK_H
#define HANDLERS_WALK_H

#include <cstdint>

// Many more than any table has entries.
constexpr uint32_t KX_WALK_REQUESTS = 1U << 20;

// A walk over what the driver numbers: LTLs, VLANs, bridge domains, multicast groups.
struct kx_walk {
    uint32_t at;           // the number that the walk has come to; where it starts from, at first
    uint32_t requests = 0; // made so far
};

// Count one more request of a walk. False when it has made too many.
inline bool kx_may_ask(uint32_t *requests) {
    if (*requests == KX_WALK_REQUESTS) {
        return false;
    }
    ++*requests;
    return true;
}

inline bool kx_may_ask(kx_walk *walk) {
    return kx_may_ask(&walk->requests);
}

// Go on to the number that the driver answered. False when that is where the walk stands.
inline bool kx_go_to(kx_walk *walk, uint32_t next) {
    const bool moved = next != walk->at;
    walk->at = next;
    return moved;
}

#endif
