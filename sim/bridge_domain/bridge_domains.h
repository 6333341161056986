// The host's VLANs and bridge domains.
#ifndef SIM_BRIDGE_DOMAIN_BRIDGE_DOMAINS_H
#define SIM_BRIDGE_DOMAIN_BRIDGE_DOMAINS_H

#include "handlers/port/bridge_domain_record.h"
#include "sim/answer.h"

#include <cstdint>
#include <map>
#include <set>

struct bridge_domain {
    kx_bd_record record{}; // as the views read it; index included
};

struct bridge_domain_table {
    std::set<uint32_t> vlans;                   // that exist, reserved ones included
    std::map<uint32_t, bridge_domain> by_index; // bridge-domain index, from 1
};

// "vlans" and "bridge_domains" of the host file.
extern const family bridge_domain_family;

#endif
