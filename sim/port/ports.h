// The host's ports, by LTL, as each of the three views reports them.
#ifndef SIM_PORT_PORTS_H
#define SIM_PORT_PORTS_H

#include "handlers/port/port_record.h"
#include "handlers/port/port_security_record.h"
#include "sim/answer.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <set>

constexpr uint32_t PORT_VIEWS = 3; // kx_port_view

struct port_view {
    bool known = true;              // the view has a record of the port
    kx_port_record record{};        // as the views read it
    std::set<uint32_t> vlans;       // configured on the port
    std::set<uint32_t> forwards_on; // VLANs
};

struct port {
    std::array<port_view, PORT_VIEWS> views;
    std::optional<std::array<uint8_t, 6>> mac;
    kx_port_security_record security{};
    bool secure = false; // it has a secure-port state
};

struct port_table {
    std::map<uint32_t, port> by_ltl;
};

// The port of an LTL, nullptr for none.
port *find_port(host &state, uint32_t ltl);

// The view of the port that an argument "view << 24 | LTL" names, nullptr for none.
port_view *find_port_view(host &state, uint32_t argument);

// "ports" of the host file.
extern const family port_family;

#endif
