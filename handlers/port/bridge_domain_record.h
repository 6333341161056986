// One bridge domain of the DPA: a VLAN or an overlay segment, as the port, L2 and bridge-domain
// views read it.
#ifndef HANDLERS_PORT_BRIDGE_DOMAIN_RECORD_H
#define HANDLERS_PORT_BRIDGE_DOMAIN_RECORD_H

#include <cstddef>
#include <cstdint>

constexpr uint32_t KX_LAST_VLAN = 4095;

constexpr uint16_t KX_BD_KIND_SEGMENT = 1;

enum kx_segment_mode : uint8_t {
    KX_SEGMENT_MULTICAST = 0,
    KX_SEGMENT_UNICAST = 1,
};

enum kx_segment_feature : uint8_t {
    KX_SEGMENT_MAC_DISTRIBUTION = 0x01,
    KX_SEGMENT_LOCAL_ARP = 0x02,
};

// The virtual device context in which VLANs are looked up.
constexpr uint16_t KX_BD_LOOKUP_VDC = 1;

// Reply of KXDPA_OP_BD_RECORD; key and reply of the lookups by VLAN, name and segment.
struct kx_bd_record {
    uint32_t index; // bridge-domain index; filled by the lookups, 0 for not found
    uint16_t vlan;
    uint16_t vdc;           // virtual device context of the VLAN
    uint32_t dr_ltl;        // LTL of the designated receiver
    uint32_t multi_uplinks; // non-zero: more than one uplink
    uint32_t segment_id;
    uint32_t segment_group; // IPv4 multicast group of the segment, network byte order
    uint32_t native_encap;  // non-zero: carried natively, 0: in VXLAN
    uint8_t reserved28[4];
    uint32_t vff_mode;        // non-zero: proxy, 0: anycast
    uint32_t swbd;            // software bridge-domain number
    uint16_t kind;            // KX_BD_KIND_SEGMENT, else VLAN-based
    uint8_t segment_mode;     // kx_segment_mode
    uint8_t segment_features; // kx_segment_feature bits
    char name[128];           // NUL-terminated unless it fills the field
    uint8_t reserved172;
    uint8_t vtep_dsn;
    uint8_t mac_dsn;
    uint8_t bgp_vtep_dsn;
    uint8_t reserved176[4];
};

static_assert(sizeof(kx_bd_record) == 180);
static_assert(offsetof(kx_bd_record, index) == 0);
static_assert(offsetof(kx_bd_record, vlan) == 4);
static_assert(offsetof(kx_bd_record, vdc) == 6);
static_assert(offsetof(kx_bd_record, dr_ltl) == 8);
static_assert(offsetof(kx_bd_record, multi_uplinks) == 12);
static_assert(offsetof(kx_bd_record, segment_id) == 16);
static_assert(offsetof(kx_bd_record, segment_group) == 20);
static_assert(offsetof(kx_bd_record, native_encap) == 24);
static_assert(offsetof(kx_bd_record, vff_mode) == 32);
static_assert(offsetof(kx_bd_record, swbd) == 36);
static_assert(offsetof(kx_bd_record, kind) == 40);
static_assert(offsetof(kx_bd_record, segment_mode) == 42);
static_assert(offsetof(kx_bd_record, segment_features) == 43);
static_assert(offsetof(kx_bd_record, name) == 44);
static_assert(offsetof(kx_bd_record, vtep_dsn) == 173);
static_assert(offsetof(kx_bd_record, mac_dsn) == 174);
static_assert(offsetof(kx_bd_record, bgp_vtep_dsn) == 175);

#endif
