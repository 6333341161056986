// What the port views share: the walk over the LTLs, the port's record, the rule for empty entries
// and the name columns.
#ifndef HANDLERS_PORT_SHARED_PORT_H
#define HANDLERS_PORT_SHARED_PORT_H

#include "handlers/port/port_record.h"
#include "handlers/walk.h"

// Step to the next LTL that the DPA has; start from KX_LTL_BEFORE_FIRST. False at the end of the
// walk.
bool kx_next_ltl(kx_walk *walk);

// Clear a port's record and ask for it. False when the request fails.
bool kx_get_port(uint32_t ltl, kx_port_view view, kx_port_record *record);

inline bool kx_is_internal_ltl(uint32_t ltl) {
    return ltl < KX_LTL_FIRST_EXTERNAL;
}

inline bool kx_is_port_channel(uint32_t ltl) {
    return ltl >= KX_LTL_FIRST_PORT_CHANNEL && ltl <= KX_LTL_LAST_PORT_CHANNEL;
}

// True for an entry on which nothing was ever configured.
bool kx_port_is_empty(const kx_port_record &record);

// True for an empty entry that port tables leave out; they show port channels even when empty.
bool kx_port_is_hidden(uint32_t ltl, const kx_port_record &record);

// Bytes of the interface name column, its NUL included.
constexpr size_t KX_PORT_NAME_SIZE = 16;

struct kx_port_name {
    char text[KX_PORT_NAME_SIZE];
};

// The port's interface name: the short name of its interface index, which may be empty. Without an
// index it is "Internal" for an internal LTL and empty for any other.
kx_port_name kx_get_port_name(uint32_t ltl, const kx_port_record &record);

struct kx_sub_group_text {
    char text[12];
};

// A sub-group's number, empty for one that does not exist.
kx_sub_group_text kx_format_sub_group(uint32_t sub_group);

// The LTL after which a page starts: the number after the word "cookie" in the argument. Only
// agent-driven runs page; any other run starts from KX_LTL_BEFORE_FIRST.
uint32_t kx_get_first_ltl(const char *arg);

inline const char *kx_up_or_down(uint8_t state) {
    return state == KX_PORT_UP ? "UP" : "DOWN";
}

#endif
