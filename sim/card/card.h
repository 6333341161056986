// The card's global state: what holds for the host as a whole.
#ifndef SIM_CARD_CARD_H
#define SIM_CARD_CARD_H

#include "sim/answer.h"

#include <cstdint>

struct card_state {
    uint32_t domain = 0;           // the switch's domain number
    bool version_mismatch = false; // the running HMX refuses this tool's version
    uint32_t tunnel_mode = 0;      // 3 is layer 3; also the reserved-VLAN mode
    bool leaf_mode = false;        // the HMX is a leaf of an overlay policy controller
};

// "card" of the host file.
extern const family card_family;

#endif
