// The host's VLANs and bridge domains.
#ifndef HOST_BRIDGE_DOMAIN_H
#define HOST_BRIDGE_DOMAIN_H

#include "handlers/port/bridge_domain_record.h"
#include "host/number_set.h"

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

constexpr kx_bd_record bd_record_defaults() {
    kx_bd_record record{};
    record.vdc = KX_BD_LOOKUP_VDC;
    record.native_encap = 1;
    return record;
}

struct bridge_domain {
    bool known = true;                                // its record can be asked for
    kx_bd_record record = bd_record_defaults();       // as the views read it, but for its index
    std::optional<number_set> members{std::in_place}; // LTLs
    std::vector<uint32_t> groups; // IPv4 multicast groups, network byte order, in the walk's order
};

struct bridge_domain_table {
    std::optional<number_set> vlans{std::in_place}; // that exist, reserved ones included
    std::map<uint32_t, bridge_domain> by_index;     // bridge-domain index, from 1
};

#endif
