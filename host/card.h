// The card's global state: what holds for the host as a whole.
//
// Throughout the described host an optional value that the driver is asked for by itself is empty
// where the driver refuses to tell it.
#ifndef HOST_CARD_H
#define HOST_CARD_H

#include "handlers/card/card_record.h"
#include "host/address.h"

#include <cstdint>
#include <optional>
#include <string>

struct card_macs {
    std::optional<mac_address> control{mac_address{}};
    std::optional<mac_address> packet{mac_address{}};
    std::optional<mac_address> span{mac_address{}};
    std::optional<mac_address> agent{mac_address{}};
    std::optional<mac_address> primary_krt{mac_address{}};
    std::optional<mac_address> primary_krt_packet{mac_address{}};
    std::optional<mac_address> primary_krt_management{mac_address{}};
    std::optional<mac_address> standby_krt_control{mac_address{}};
    std::optional<mac_address> secondary_krt{mac_address{}};
};

struct card_versions {
    std::optional<std::string> hmx{""}, krt{""}, system{""}, opflex_sdk{""};
    std::optional<uint8_t> update_level = 0;
    std::optional<uint64_t> word = 0; // read and written back by the tool
};

struct card_state {
    bool version_mismatch = false; // the running HMX refuses this tool's version
    std::optional<std::string> name{""}, uuid{""}, switch_name{""}, switch_alias{""};
    std::optional<std::string> switch_uuid{""};
    std::optional<uint32_t> uuid_type =
        0;                              // told with the UUID; nothing is told behind it when empty
    std::optional<uint32_t> domain = 0; // the switch's domain number
    std::optional<uint32_t> slot = 0;   // of this host in the domain
    std::optional<uint32_t> tunnel_mode = 0; // KX_TUNNEL_MODE_L3 or layer 2
    std::optional<uint32_t> l3_control_index = 0;
    std::optional<uint32_t> l3_control_vlan = 0;
    std::optional<uint32_t> l3_control_ipv4 = 0; // network byte order
    std::optional<ipv6_address> management_ipv6{ipv6_address{}};
    card_macs macs;
    card_versions versions;
    std::optional<kx_krt_uptime> krt_uptime{kx_krt_uptime{}};
    std::optional<uint32_t> upgrade = 0;
    std::optional<uint32_t> physical_ports = 0, virtual_ports = 0; // most of each
    std::optional<uint32_t> control_vlan = 0, packet_vlan = 0;
    std::optional<kx_card_processors> processors{kx_card_processors{}};
    std::optional<uint32_t> link_up_delay = 0; // seconds
    std::optional<uint32_t> load_balancing = 0;
    std::optional<uint32_t> heartbeat = 0;
    // Flags, in the width that they are asked with.
    std::optional<uint32_t> dpa_up = 0, uufb = 0, portset_event = 0, tag_native_vlan = 0, l3sec = 0;
    std::optional<uint8_t> leaf_mode = 0; // the HMX is a leaf of an overlay policy controller
    std::optional<uint8_t> control_multicast = 0, bpdu_guard = 0, bpdu_filter = 0;
    std::optional<uint8_t> datapath_initialized = 0;
};

#endif
