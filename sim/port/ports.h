// The ports of a described host, as each of the three views reports them.
#ifndef SIM_PORT_PORTS_H
#define SIM_PORT_PORTS_H

#include "sim/answer.h"

// The port of an LTL, nullptr for none.
port *find_port(host &state, uint32_t ltl);

// The view of the port that an argument "view << 24 | LTL" names, nullptr for none.
port_view *find_port_view(host &state, uint32_t argument);

extern const family port_family;

#endif
