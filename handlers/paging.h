// Paging of long tables for the remote CLI.
//
// Run from a shell a table is printed whole. Driven by the agent a handler prints one page and
// leaves a cookie, the key of the last entry it printed; the remote CLI runs the command again with
// the word "cookie" and that key, and the page after it follows. A cookie of 0 says that the table
// is complete.
#ifndef HANDLERS_PAGING_H
#define HANDLERS_PAGING_H

#include "frontend/hmx_cmd.h"

#include <cstdint>

inline bool kx_is_agent_driven() {
    return hmx_rcli_fromdpa != 0;
}

// The page ends here and the next one goes on after `cookie`. REQUIRES: agent-driven. A key of 0
// cannot be a cookie: after LTL 0, should a DPA show that internal port, the table reads as
// complete.
inline void kx_end_page(uint32_t cookie) {
    hmx_rcli_more_output = cookie;
}

// The table is complete. A run from a shell has no continuation word to set.
inline void kx_end_table() {
    if (kx_is_agent_driven()) {
        hmx_rcli_more_output = 0;
    }
}

#endif
