#include "capture/capture.h"

#include <algorithm>
#include <iterator>

namespace {

struct part {
    const char *key;
    void (*capture)(host_capture &host);
};

constexpr const char *OVERRIDES = "overrides";

// Parts that fill something in for others stand in front of them.
constexpr part PARTS[] = {
    {"card", capture_card},
    {"heaps", capture_heaps},
    {"memory_pools", capture_memory_pools},
    {"asserts", capture_asserts},
    {"vlans", capture_vlans},
    {"bridge_domains", capture_bridge_domains},
    {"ports", capture_ports},
    {"private_vlans", capture_private_vlans},
    {"port_channel_mode", capture_port_channel_mode},
    {"port_channels", capture_port_channels},
    {"l2", capture_l2},
    {"acls", capture_acls},
    {"lacp", capture_lacp},
    {"traffic", capture_traffic},
    {"stages", capture_stages},
    {"drops", capture_drops},
    {"multicast_drops", capture_multicast_drops},
    {"flood_drops", capture_flood_drops},
    {"management_address", capture_management_address},
};

template <typename Part>
void forget_unless(const std::set<std::string> &keys, const char *key, Part &described) {
    if (!keys.contains(key)) {
        described = {};
    }
}

} // namespace

bool can_be_captured(const std::string &key) {
    return key == OVERRIDES || std::any_of(std::begin(PARTS), std::end(PARTS),
                                           [&](const part &known) { return key == known.key; });
}

void capture_host(host_capture &host, const std::set<std::string> &keys) {
    host.exact = keys.empty() || keys.contains(OVERRIDES);
    for (const part &asked : PARTS) {
        if (keys.empty() || keys.contains(asked.key)) {
            asked.capture(host);
        }
    }
    if (host.exact) {
        host.captured.overrides = host.driver.overrides();
    }
    // Parts that were asked for the sake of others are not asked for by name.
    if (!keys.empty()) {
        forget_unless(keys, "ports", host.captured.ports);
        forget_unless(keys, "port_channels", host.captured.port_channels.by_ltl);
        forget_unless(keys, "stages", host.captured.counters.stages);
    }
}
