// Paging of long tables for the remote CLI.
//
// From a shell, a table is printed whole. In agent-driven mode, a handler prints one page and
// leaves a cookie, the key of the last entry that it printed. The remote CLI runs the command again
// with the word "cookie" and that key, and gets the page after it. A cookie of 0 says that the
// table is complete.
#ifndef HANDLERS_PAGING_H
#define HANDLERS_PAGING_H

#include "frontend/hmx_cmd.h"

#include <cstdint>

inline bool kx_is_agent_driven() {
    return hmx_rcli_fromdpa != 0;
}

// The page ends here, and the next one starts after `cookie`. REQUIRES: agent-driven. A key of 0
// cannot be a cookie: if a DPA shows internal LTL 0, the table seems complete after it.
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
