// The described host: one member for each part of it.
//
// Throughout it an optional value that the driver is asked for by itself is empty where the driver
// refuses to tell it.
#ifndef HOST_HOST_H
#define HOST_HOST_H

#include "handlers/acl/acl_record.h"
#include "handlers/card/card_record.h"
#include "handlers/card/memory_record.h"
#include "handlers/lacp/lacp_record.h"
#include "handlers/port/bridge_domain_record.h"
#include "handlers/port/counter_records.h"
#include "handlers/port/l2_record.h"
#include "handlers/port/port_channel_record.h"
#include "handlers/port/port_record.h"
#include "handlers/port/port_security_record.h"
#include "handlers/port/shared/port_pvlan.h"
#include "host/agent.h"
#include "host/number_set.h"
#include "host/override.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

using mac_address = std::array<uint8_t, 6>;   // in transmission order
using ipv6_address = std::array<uint8_t, 16>; // likewise

// --- The card: what holds for the host as a whole ---

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
    std::optional<uint32_t> uuid_type = 0;   // told behind the UUID, if anything is
    std::optional<uint32_t> domain = 0;      // the switch's domain number
    std::optional<uint32_t> slot = 0;        // of this host in the domain
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

// The DPA's memory accounting: its heaps and pools in the order of the walks, and its asserts.
struct memory_state {
    std::vector<kx_heap_record> heaps;
    std::vector<kx_memory_pool_record> pools;
    std::optional<uint32_t> asserts = 0; // counted so far
};

// --- VLANs and bridge domains ---

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

// --- Ports, by LTL, as each of the three views reports them ---

constexpr uint32_t PORT_VIEWS = 3; // kx_port_view

constexpr uint32_t LAST_LTL = 0xFFFFFF; // what fits beside a view

constexpr uint32_t NO_SUB_GROUP = 0xFFFFFFFF; // any number above KX_SUB_GROUP_LAST stands for none
constexpr uint8_t NO_ERRDIS_EVENT = 255;

constexpr kx_port_record port_record_defaults() {
    kx_port_record record{};
    record.sub_group_a = NO_SUB_GROUP;
    record.sub_group_b = NO_SUB_GROUP;
    record.errdis_event = NO_ERRDIS_EVENT;
    return record;
}

struct port_view {
    bool known = true;                              // the view has a record of the port
    kx_port_record record = port_record_defaults(); // as the views read it
    std::optional<number_set> vlans{std::in_place}; // configured on the port
    number_set forwards_on;                         // VLANs
};

struct port {
    port_view hmx;                            // the HMX's own view
    std::map<kx_port_view, port_view> others; // the views that differ from it
    std::optional<mac_address> mac;
    std::optional<kx_port_security_record> security{kx_port_security_record{}};
    bool secure = false; // it has a secure-port state
};

// What a view reports.
inline const port_view &view_of(const port &reported, kx_port_view view) {
    const auto other = reported.others.find(view);
    return other == reported.others.end() ? reported.hmx : other->second;
}

// The same to be changed, a view of its own from now on.
inline port_view &own_view(port &reported, kx_port_view view) {
    return view == KX_VIEW_HMX ? reported.hmx
                               : reported.others.try_emplace(view, reported.hmx).first->second;
}

struct port_table {
    std::map<uint32_t, port> by_ltl;
};

// What the ports are to private VLANs, by LTL and the VLAN that is asked about; the same in all
// views.
using private_vlan_table = std::map<std::pair<uint32_t, uint32_t>, kx_port_pvlan>;

// --- Port channels, and what is pinned to their members ---

// A port channel without members and designated sub-group.
constexpr kx_port_channel_record port_channel_defaults() {
    kx_port_channel_record record{};
    record.designated_sub_group = NO_SUB_GROUP;
    return record;
}

struct port_channel {
    kx_port_channel_record record = port_channel_defaults(); // at most KX_PC_MEMBERS members
    // By member, how many virtual ports are pinned to it; refused when absent.
    std::array<std::optional<uint32_t>, KX_PC_MEMBERS> pinned{};
};

struct port_channel_table {
    std::optional<uint32_t> mode = KX_PC_MODE_NONE; // kx_port_channel_mode
    std::map<uint32_t, port_channel> by_ltl;
};

// --- L2 (MAC) tables, one for each bridge domain, and its get-mac tables ---

// The DPA's time in its own unit, unless a description says otherwise. The times of an entry count
// by this clock, whatever the description says: only its age is described.
constexpr uint32_t L2_TIME = 100000;

constexpr kx_l2_entry l2_entry_defaults() {
    kx_l2_entry entry{};
    entry.seen_time = entry.now = L2_TIME;
    return entry;
}

struct l2_table {
    std::optional<uint32_t> limit = 1024;     // entries
    std::optional<uint32_t> aging_time = 300; // seconds
    std::vector<kx_l2_entry> entries;         // in the order of the walk, no address twice
    // At most KX_GET_MAC_ENTRIES, but for the bridge domain's index.
    std::optional<std::vector<kx_get_mac_entry>> announced{std::in_place};
};

struct l2_state {
    uint32_t now = L2_TIME;            // the DPA's time
    std::optional<uint32_t> slots = 4; // an address belongs to the slot that its last byte gives
    std::optional<kx_l2_totals> totals{kx_l2_totals{}};
    std::optional<kx_l2_aging_statistics> aging{kx_l2_aging_statistics{}};
    std::map<uint32_t, l2_table> tables; // by bridge-domain index
};

// --- Access control lists that the KRT pushed to the host ---

// The record stands without gaps in the driver's list, here it is aligned.
struct access_list {
    alignas(uint32_t) kx_acl_record record{};
};

struct acl_table {
    std::optional<std::vector<access_list>> acls{std::in_place}; // in the order of the list
};

// --- LACP: who runs it, and what each uplink knows of its partner ---

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

// --- Traffic and drop counters of the ports, and the stages that drops are counted at ---

// By LTL. An entry without counters stands for a port whose counters the driver refuses; a port
// without an entry has counted nothing.
using traffic_table = std::map<uint32_t, std::optional<kx_port_statistics>>;
using drop_table = std::map<uint32_t, std::optional<kx_drop_counters>>;

struct counter_table {
    traffic_table traffic;
    drop_table drops;
    std::optional<kx_drop_counters> multicast_drops;
    std::optional<kx_drop_counters> flood_drops;
    std::vector<kx_stage_descriptor> stages; // by index
    bool drops_of_ports_alone = false; // those of any other LTL but an internal one are refused
};

// --- What a captured host file says of the capture; it takes no part in comparisons ---

struct refused_opcode {
    uint16_t opcode = 0;
    uint32_t count = 0; // questions that were refused, ends of walks aside
};

struct capture_note {
    std::string version;                                // of the program
    std::string time;                                   // of its start, "2026-11-22T06:20:00Z"
    std::optional<std::vector<std::string>> keys;       // that were asked for; all when absent
    bool whole = true;                                  // nothing was cut
    std::optional<std::vector<std::string>> cut;        // what was, in a line each
    std::optional<std::vector<refused_opcode>> refused; // absent when nothing was
};

// --- All of it ---

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
