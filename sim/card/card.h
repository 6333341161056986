// The card's global state: what holds for the host as a whole.
#ifndef SIM_CARD_CARD_H
#define SIM_CARD_CARD_H

#include "handlers/card/card_record.h"
#include "sim/answer.h"

#include <array>
#include <cstdint>
#include <string>

using mac_address = std::array<uint8_t, 6>;

struct card_macs {
    mac_address control{}, packet{}, span{}, agent{};
    mac_address primary_krt{}, primary_krt_packet{}, primary_krt_management{};
    mac_address standby_krt_control{}, secondary_krt{};
};

struct card_versions {
    std::string hmx, krt, system, opflex_sdk;
    uint8_t update_level = 0;
    uint64_t word = 0; // read and written back by the tool
};

struct card_state {
    bool version_mismatch = false; // the running HMX refuses this tool's version
    std::string name, uuid, switch_name, switch_alias, switch_uuid;
    uint32_t uuid_type = 0;
    uint32_t domain = 0;      // the switch's domain number
    uint32_t slot = 0;        // of this host in the domain
    uint32_t tunnel_mode = 0; // 3 is layer 3; also the reserved-VLAN mode
    uint32_t l3_control_index = 0;
    uint32_t l3_control_vlan = 0;
    uint32_t l3_control_ipv4 = 0; // network byte order
    uint32_t management_ipv4 = 0; // as the tool has told it
    std::array<uint8_t, 16> management_ipv6{};
    card_macs macs;
    card_versions versions;
    uint32_t krt_uptime = 0; // seconds
    uint32_t upgrade = 0;
    uint32_t physical_ports = 0, virtual_ports = 0; // most of each
    uint32_t control_vlan = 0, packet_vlan = 0;
    kx_card_processors processors{};
    uint32_t link_up_delay = 0; // seconds
    uint32_t load_balancing = 0;
    uint32_t heartbeat = 0;
    // Flags, in the width that they are asked with.
    uint32_t dpa_up = 0, uufb = 0, portset_event = 0, tag_native_vlan = 0, l3sec = 0;
    uint8_t leaf_mode = 0; // the HMX is a leaf of an overlay policy controller
    uint8_t control_multicast = 0, bpdu_guard = 0, bpdu_filter = 0, datapath_initialized = 0;
};

// "card" of the host file.
extern const family card_family;

#endif
