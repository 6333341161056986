// The host's VLANs and bridge domains.
#ifndef SIM_BRIDGE_DOMAIN_BRIDGE_DOMAINS_H
#define SIM_BRIDGE_DOMAIN_BRIDGE_DOMAINS_H

#include "handlers/port/bridge_domain_record.h"
#include "sim/answer.h"

#include <cstdint>
#include <map>
#include <set>
#include <vector>

struct bridge_domain {
    kx_bd_record record{};        // as the views read it; index included
    std::set<uint32_t> members;   // LTLs
    std::vector<uint32_t> groups; // IPv4 multicast groups, network byte order, in the walk's order
};

struct bridge_domain_table {
    std::set<uint32_t> vlans;                   // that exist, reserved ones included
    std::map<uint32_t, bridge_domain> by_index; // bridge-domain index, from 1
};

// "vlans" and "bridge_domains" of the host file.
extern const family bridge_domain_family;

#endif
