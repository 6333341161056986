// The host's ports, by LTL, as each of the three views reports them.
#ifndef HOST_PORT_H
#define HOST_PORT_H

#include "handlers/port/port_record.h"
#include "handlers/port/port_security_record.h"
#include "host/address.h"
#include "host/number_set.h"

#include <cstdint>
#include <map>
#include <optional>

constexpr uint32_t PORT_VIEWS = 3; // kx_port_view

constexpr uint32_t LAST_LTL = 0xFFFFFF; // what fits beside a view

constexpr uint32_t NO_SUB_GROUP = 0xFFFFFFFF; // any number above KX_SUB_GROUP_LAST stands for none
constexpr uint8_t NO_ERRDIS_EVENT = 255;

constexpr kx_port_record port_record_defaults() {
    kx_port_record record{};
    record.sub_group_a = NO_SUB_GROUP;
    record.sub_group_b = NO_SUB_GROUP;
    record.errdis_event = NO_ERRDIS_EVENT;
    return record;
}

struct port_view {
    bool known = true;                              // the view has a record of the port
    kx_port_record record = port_record_defaults(); // as the views read it
    std::optional<number_set> vlans{std::in_place}; // configured on the port
    number_set forwards_on;                         // VLANs
};

struct port {
    port_view hmx;                            // the HMX's own view
    std::map<kx_port_view, port_view> others; // the views that differ from it
    std::optional<mac_address> mac;
    std::optional<kx_port_security_record> security{kx_port_security_record{}};
    bool secure = false; // it has a secure-port state
};

// What a view reports.
inline const port_view &view_of(const port &reported, kx_port_view view) {
    const auto other = reported.others.find(view);
    return other == reported.others.end() ? reported.hmx : other->second;
}

// The same to be changed, a view of its own from now on.
inline port_view &own_view(port &reported, kx_port_view view) {
    return view == KX_VIEW_HMX ? reported.hmx
                               : reported.others.try_emplace(view, reported.hmx).first->second;
}

struct port_table {
    std::map<uint32_t, port> by_ltl;
};

#endif
