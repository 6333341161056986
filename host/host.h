// The described host: one member for each part of it.
#ifndef HOST_HOST_H
#define HOST_HOST_H

#include "host/acl.h"
#include "host/agent.h"
#include "host/bridge_domain.h"
#include "host/capture_note.h"
#include "host/card.h"
#include "host/counters.h"
#include "host/l2.h"
#include "host/lacp.h"
#include "host/memory.h"
#include "host/override.h"
#include "host/port.h"
#include "host/port_channel.h"
#include "host/private_vlan.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// What a described host answers for something that it leaves out, and at the end of a walk, unless
// it says otherwise.
constexpr uint32_t HOST_STATUS_NOT_FOUND = 61;

struct host {
    std::optional<capture_note> capture; // of a captured host
    uint32_t refusal_status = HOST_STATUS_NOT_FOUND;
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

#endif
