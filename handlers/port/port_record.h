// One port of the DPA, as every port view reads it.
//
// Ports are numbered by LTL (32 bits, unsigned). LTLs below 18 are internal, 1040 to 1047 are the
// port channels.
#ifndef HANDLERS_PORT_PORT_RECORD_H
#define HANDLERS_PORT_PORT_RECORD_H

#include <cstddef>
#include <cstdint>

constexpr uint32_t KX_LTL_BEFORE_FIRST = 0xFFFFFFFF; // where a walk starts
constexpr uint32_t KX_LTL_FIRST_EXTERNAL = 18;
constexpr uint32_t KX_LTL_FIRST_PORT_CHANNEL = 1040;
constexpr uint32_t KX_LTL_LAST_PORT_CHANNEL = 1047;

// Whose view of a port: the request's argument carries the view above the 24-bit LTL.
enum kx_port_view : uint32_t {
    KX_VIEW_KRT = 0,
    KX_VIEW_SYSTEM = 1,
    KX_VIEW_HMX = 2,
};

constexpr uint32_t kx_port_argument(kx_port_view view, uint32_t ltl) {
    return static_cast<uint32_t>(view) << 24 | (ltl & 0xFFFFFF);
}

enum kx_port_mode : uint8_t {
    KX_PORT_MODE_SUB_GROUP_A = 1, // the sub-group is sub_group_a
    KX_PORT_MODE_SUB_GROUP_B = 2, // the sub-group is sub_group_b
    KX_PORT_MODE_LEAF_VLANS = 3,  // like 1, a leaf port that forwards when it has VLANs
};

constexpr uint32_t KX_SUB_GROUP_LAST = 31; // larger numbers stand for no sub-group

enum kx_leaf_block_reason : uint8_t {
    KX_LEAF_BLOCK_BPDU = 1,
    KX_LEAF_BLOCK_ZERO_MAC = 2,
};

enum kx_leaf_wait_state : uint16_t {
    KX_LEAF_WAIT_ACK = 147,
    KX_LEAF_WAIT_POLICY = 229,
};

constexpr uint8_t KX_VLAN_MODE = 1; // of vlan_mode: forwards per VLAN

constexpr uint8_t KX_PORT_UP = 1; // of link_state and admin_state; anything else is down

// Reply of KXDPA_OP_PORT_RECORD, as the driver fills it.
struct kx_port_record {
    uint8_t reserved0[4];
    uint32_t if_index;  // 0 when the port has none
    uint32_t dvport_id; // distributed virtual port number
    uint8_t reserved12[4];
    uint32_t pc_ltl; // port channel that the port is a member of, 0 for none
    uint8_t reserved20[4];
    uint8_t vlan_mode;         // KX_VLAN_MODE or as a whole
    uint8_t port_mode;         // kx_port_mode
    uint8_t link_state;        // KX_PORT_UP or down
    uint8_t admin_state;       // KX_PORT_UP or down
    uint8_t leaf_block_reason; // kx_leaf_block_reason, in leaf mode
    uint8_t reserved29[3];
    uint16_t presence; // 1 on an entry that may be empty
    uint8_t reserved34[558];
    uint8_t forwarding; // non-zero: the port forwards
    uint8_t reserved593[5];
    uint16_t leaf_wait_state; // kx_leaf_wait_state, in leaf mode
    uint32_t sub_group_a;     // sub-group of a port in mode 1
    uint32_t sub_group_b;     // sub-group of a port in mode 2
    uint8_t reserved608[144];
    uint32_t segment_id; // 0 when the port is in no segment
    uint32_t vxlan;      // non-zero: a VXLAN port
    uint32_t vmotion;    // non-zero: the port carries vMotion
    uint32_t l3_service; // non-zero: a layer-3 virtual service port
    uint8_t reserved768[12];
    uint16_t service_path;
    uint8_t org;
    uint8_t reserved783[2];
    uint8_t errdis_event; // reason code of an error-disabled port
    uint8_t reserved786;
    char hmx_port_name[64];        // NUL-terminated unless it fills the field; empty for none
    char device_type[64];          // likewise
    char dvport_group[213];        // likewise
    uint32_t leaf_sub_group_valid; // in leaf mode, sub_group_b counts only when this is 1
    uint8_t reserved1132[16];
};

static_assert(sizeof(kx_port_record) == 1148);
static_assert(offsetof(kx_port_record, if_index) == 4);
static_assert(offsetof(kx_port_record, dvport_id) == 8);
static_assert(offsetof(kx_port_record, pc_ltl) == 16);
static_assert(offsetof(kx_port_record, vlan_mode) == 24);
static_assert(offsetof(kx_port_record, port_mode) == 25);
static_assert(offsetof(kx_port_record, link_state) == 26);
static_assert(offsetof(kx_port_record, admin_state) == 27);
static_assert(offsetof(kx_port_record, leaf_block_reason) == 28);
static_assert(offsetof(kx_port_record, presence) == 32);
static_assert(offsetof(kx_port_record, forwarding) == 592);
static_assert(offsetof(kx_port_record, leaf_wait_state) == 598);
static_assert(offsetof(kx_port_record, sub_group_a) == 600);
static_assert(offsetof(kx_port_record, sub_group_b) == 604);
static_assert(offsetof(kx_port_record, segment_id) == 752);
static_assert(offsetof(kx_port_record, vxlan) == 756);
static_assert(offsetof(kx_port_record, vmotion) == 760);
static_assert(offsetof(kx_port_record, l3_service) == 764);
static_assert(offsetof(kx_port_record, service_path) == 780);
static_assert(offsetof(kx_port_record, org) == 782);
static_assert(offsetof(kx_port_record, errdis_event) == 785);
static_assert(offsetof(kx_port_record, hmx_port_name) == 787);
static_assert(offsetof(kx_port_record, device_type) == 851);
static_assert(offsetof(kx_port_record, dvport_group) == 915);
static_assert(offsetof(kx_port_record, leaf_sub_group_valid) == 1128);

// Buffer of KXDPA_OP_VLAN_FORWARDING, asked with the argument of the port record.
struct kx_vlan_forwarding {
    uint16_t vlan;      // in
    uint8_t forwarding; // out: non-zero when the port forwards on the VLAN
    uint8_t reserved[3];
};

static_assert(sizeof(kx_vlan_forwarding) == 6);
static_assert(offsetof(kx_vlan_forwarding, vlan) == 0);
static_assert(offsetof(kx_vlan_forwarding, forwarding) == 2);

#endif
