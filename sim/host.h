// The described host: one member for each part that a family parses and answers for.
#ifndef SIM_HOST_H
#define SIM_HOST_H

#include "sim/acl/acls.h"
#include "sim/agent/agent.h"
#include "sim/bridge_domain/bridge_domains.h"
#include "sim/card/card.h"
#include "sim/card/memory.h"
#include "sim/counters/counters.h"
#include "sim/l2/l2_tables.h"
#include "sim/lacp/lacp_state.h"
#include "sim/overrides.h"
#include "sim/port/port_channels.h"
#include "sim/port/ports.h"
#include "sim/port/private_vlans.h"

#include <optional>
#include <string>
#include <string_view>

struct host {
    card_state card;
    memory_state memory;
    bridge_domain_table bridge_domains;
    port_table ports;
    private_vlan_table private_vlans;
    port_channel_table port_channels;
    l2_state l2;
    counter_table counters;
    acl_table acls;
    lacp_state lacp;
    std::optional<agent_description> agent;        // none when absent
    std::optional<std::string> management_address; // as the host's own program tells it
    std::vector<override_rule> overrides;
};

// Read a host description. On failure returns false and sets `error` to one line "NAME:LINE:
// reason"; line 0 says that the file could not be read at all.
bool parse_host(std::string_view text, const std::string &name, host &into, std::string &error);
bool load_host(const std::string &path, host &into, std::string &error);

// The host that stands in when no file is named.
std::string_view builtin_host_text();

#endif
