// The host's LACP state: who runs it, and what each uplink knows of its partner.
#ifndef HOST_LACP_H
#define HOST_LACP_H

#include "handlers/lacp/lacp_record.h"

#include <cstdint>
#include <map>
#include <optional>

struct lacp_uplink {
    std::optional<uint32_t> bit = 0;            // the port takes part in LACP
    std::optional<uint32_t> port_state = 0;     // while LACP is offloaded
    std::optional<uint32_t> upgrade_notify = 0; // the KRT is told of an upgrade
    std::optional<kx_lacp_pdu_cache> pdus;
    std::optional<kx_lacp_host_data> host_data;
};

struct lacp_state {
    std::optional<uint32_t> offload = 0; // 1: the host runs LACP itself
    std::optional<kx_lacp_carriers> carriers;
    std::map<uint32_t, lacp_uplink> uplinks; // by LTL; another port is refused
};

#endif
