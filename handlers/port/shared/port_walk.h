// What every port view does: it selects ports, walks over them, and pages.
#ifndef HANDLERS_PORT_SHARED_PORT_WALK_H
#define HANDLERS_PORT_SHARED_PORT_WALK_H

#include "handlers/paging.h"
#include "handlers/port/shared/port.h"

// What the first word of a port view's argument chooses.
struct kx_port_selection {
    kx_port_view view;
    bool internal; // internal LTLs are shown
};

// Read "internal", "system" or "krt"; case matters. Anything else is the HMX's own view without the
// internal LTLs.
kx_port_selection kx_select_ports(const char *arg);

// The words of the older views: "priv" is the HMX's own view, "krt" the KRT's; both show internal
// LTLs.
kx_port_selection kx_select_ports_old(const char *arg);

// True unless the port is an empty entry, or an internal one that the selection leaves out.
inline bool kx_is_shown(const kx_port_selection &selection, uint32_t ltl,
                        const kx_port_record &record) {
    return !kx_port_is_hidden(ltl, record) && (selection.internal || !kx_is_internal_ltl(ltl));
}

// The LTL after which a page starts, for commands whose last keyword is "cookie" itself: the
// argument is the number alone.
uint32_t kx_get_bare_cookie(const char *arg);

// What became of a port.
enum kx_port_row {
    KX_ROW_LEFT_OUT,
    KX_ROW_PRINTED,
    KX_ROW_BROKEN, // a broken invariant was reported
};

enum kx_port_walk {
    KX_WALK_PAGE_END,  // the cookie is set
    KX_WALK_TABLE_END, // no port is left
    KX_WALK_BROKEN,    // print_row gave up
};

// Walk the ports after `ltl` and call print_row(ltl, record), which returns a kx_port_row, for
// each. A port whose record cannot be read is skipped. In agent-driven mode the walk ends with the
// first row printed, or at a port whose record cannot be read.
template <typename PrintRow>
kx_port_walk kx_print_ports(uint32_t ltl, kx_port_view view, PrintRow print_row) {
    kx_port_record record;
    for (kx_walk walk{ltl}; kx_next_ltl(&walk);) {
        const bool known = kx_get_port(walk.at, view, &record);
        const kx_port_row row = known ? print_row(walk.at, record) : KX_ROW_LEFT_OUT;
        if (row == KX_ROW_BROKEN) {
            return KX_WALK_BROKEN;
        }
        if (kx_is_agent_driven() && (!known || row == KX_ROW_PRINTED)) {
            kx_end_page(walk.at);
            return KX_WALK_PAGE_END;
        }
    }
    kx_end_table();
    return KX_WALK_TABLE_END;
}

#endif
