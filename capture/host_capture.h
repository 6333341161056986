// A host that is being captured: the driver that is asked, what it has told so far, and the walks
// that several parts need.
#ifndef CAPTURE_HOST_CAPTURE_H
#define CAPTURE_HOST_CAPTURE_H

#include "capture/inquiry.h"
#include "handlers/port/bridge_domain_record.h"
#include "host/host.h"

#include <cstdint>
#include <optional>
#include <set>
#include <vector>

struct walked_bridge_domain {
    uint32_t index;
    bool known; // its record could be read
    kx_bd_record record;
};

struct host_capture {
    inquiry driver;
    host captured;
    // The answers are compared with those that the described host would give, and kept as overrides
    // where they differ. Takes some requests more.
    bool exact = true;

    // Asked once, through the functions below.
    std::optional<std::vector<uint32_t>> ltls;
    std::optional<std::vector<walked_bridge_domain>> bridge_domains;
    std::optional<std::set<uint16_t>> port_vlans;
    bool has_ports = false; // captured.ports holds the records
    bool has_port_channels = false;
    bool has_stages = false;
};

// The HMX's own view, from which the others may differ, first.
constexpr kx_port_view PORT_VIEW_ORDER[] = {KX_VIEW_HMX, KX_VIEW_KRT, KX_VIEW_SYSTEM};

// True for a view of a port that tables show: of any other one they ask for the record alone.
bool is_displayed(uint32_t ltl, const port_view &view);

// The LTLs of the driver's walk.
const std::vector<uint32_t> &walked_ltls(host_capture &host);

// The ports of that walk, with the record of each view and nothing else yet.
port_table &walked_ports(host_capture &host);

// The bridge domains of the driver's walk.
const std::vector<walked_bridge_domain> &walked_bridge_domains(host_capture &host);

// The VLANs that a display asks a port's state on.
const std::set<uint16_t> &walked_port_vlans(host_capture &host);

// Ask for a number that the described host works out by itself.
template <kxdpa_opcode opcode>
void check_number(host_capture &host, uint32_t argument, uint32_t expected) {
    uint32_t told = 0;
    if (host.exact && host.driver.get<opcode>(argument, &told, if_refused::KEPT) &&
        told != expected) {
        host.driver.keep_reply(opcode, argument, told);
    }
}

// The parts, each under its own top-level keys. They fill host.captured.
void capture_card(host_capture &host);
void capture_heaps(host_capture &host);
void capture_memory_pools(host_capture &host);
void capture_asserts(host_capture &host);
void capture_vlans(host_capture &host);
void capture_bridge_domains(host_capture &host);
void capture_ports(host_capture &host);
void capture_private_vlans(host_capture &host);
void capture_port_channel_mode(host_capture &host);
void capture_port_channels(host_capture &host);
void capture_l2(host_capture &host);
void capture_acls(host_capture &host);
void capture_lacp(host_capture &host);
void capture_traffic(host_capture &host);
void capture_stages(host_capture &host);
void capture_drops(host_capture &host);
void capture_multicast_drops(host_capture &host);
void capture_flood_drops(host_capture &host);
void capture_management_address(host_capture &host);

// Keep what the lookups of the captured bridge domains find otherwise than the described host.
void check_lookups(host_capture &host);

#endif
