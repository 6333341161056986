// The layout of the interface index: the number and the fields of every type, once, as data.
//
// An interface index is one 32-bit word in host byte order:
//
//     bit 31       wildcard: every interface of the type (no part of the type)
//     bits 30..24  type number
//     bits 23..0   fields, cut up by the type as the table below says
//
// Accessors, constructors and names all read this table; nothing else knows a bit position.
#ifndef IF_INDEX_IF_INDEX_LAYOUT_H
#define IF_INDEX_IF_INDEX_LAYOUT_H

#include <cstdint>

// Type numbers. 0, 3 and everything above IF_TYPE_LAST are invalid; the numbers from 38 to
// IF_TYPE_LAST are valid but opaque, without fields.
enum if_index_type : uint8_t {
    IF_TYPE_PHY_FC = 1,            // Fibre Channel port
    IF_TYPE_PHY_ETH = 2,           // Gigabit Ethernet port
    IF_TYPE_RESERVED = 3,          // never valid
    IF_TYPE_PORT_CHANNEL = 4,      // (SAN) port-channel
    IF_TYPE_MGMT_SUP = 5,          // management port
    IF_TYPE_INBAND = 6,            // supervisor inband
    IF_TYPE_EOBC = 7,              // control network
    IF_TYPE_VSAN = 8,              // control-plane port, or a VSAN interface
    IF_TYPE_VLAN = 9,              // VLAN interface
    IF_TYPE_FCIP = 10,             // FCIP interface
    IF_TYPE_ISCSI = 11,            // iSCSI port
    IF_TYPE_AVANTI = 12,           // service port
    IF_TYPE_FAPORT = 13,           // FA port
    IF_TYPE_FV = 14,               // FV port
    IF_TYPE_FCMPLS_TNNL = 15,      // FC tunnel
    IF_TYPE_IVR = 16,              // IVR virtual port
    IF_TYPE_IFC = 17,              // internal FC port
    IF_TYPE_SME = 18,              // SME port
    IF_TYPE_SDM = 19,              // SDM virtual port
    IF_TYPE_ISAPI = 20,            // ISAPI port
    IF_TYPE_ETH_INBAND = 21,       // supervisor Ethernet inband
    IF_TYPE_ETH_PORT_CHANNEL = 22, // Ethernet port-channel
    IF_TYPE_NULL = 23,             // null interface, no fields
    IF_TYPE_TUNNEL = 24,           // tunnel
    IF_TYPE_SUP_DIAG = 25,         // supervisor diagnostic inband, no fields
    IF_TYPE_PHY_ETHERNET = 26,     // Ethernet port
    IF_TYPE_LVETH = 27,            // logical virtual Ethernet
    IF_TYPE_VETH = 28,             // virtual Ethernet
    IF_TYPE_VIF = 29,              // VIF
    IF_TYPE_VFC = 30,              // virtual FC, by sub-type
    IF_TYPE_SAT = 31,              // satellite (fabric extender) Ethernet port
    IF_TYPE_SAT_FIF = 32,          // satellite fabric interface
    IF_TYPE_IOA = 33,              // IOA port
    IF_TYPE_OVERLAY = 34,          // overlay family, by kind
    IF_TYPE_VL3 = 35,              // virtual layer-3, or a replicator
    IF_TYPE_GPC = 36,              // gateway port-channel
    IF_TYPE_HMX_ETH = 37,          // host switch module Ethernet
    IF_TYPE_OPAQUE_38 = 38,        // no fields; the last type with a wildcard
    IF_TYPE_LAST = 74,
    IF_TYPE_LOOPBACK = 126, // what a loopback's top byte 0xFE reads as; never valid
};

constexpr uint32_t IF_INDEX_WILDCARD = 0x80000000;
constexpr uint32_t IF_INDEX_BODY_BITS = 24; // the bits below the type
constexpr uint32_t IF_INDEX_BODY_MASK = 0x00FFFFFF;
constexpr uint32_t IF_INDEX_LOOPBACK_BASE = 0xFE000000;
constexpr uint32_t IF_INDEX_NULL_INTERFACE = 0x17000000;

// Values that tell the forms of one type apart.
enum {
    IF_PORT_CHANNEL_PLAIN = 0, // channel and sub-interface
    IF_PORT_CHANNEL_PAIR = 1,  // two numbers; 2 and 3 are internal channels
    IF_INBAND_LINECARD = 4,    // line-card inband Ethernet
    IF_VSAN_SLOT = 31,         // a control-plane port with this slot is a VSAN interface
    IF_VFC_NUMBERED = 0,
    IF_VFC_PORT_CHANNEL = 1,
    IF_VFC_SLOT_PORT = 2,
    IF_VFC_VETH = 3,
    IF_VFC_FEX = 4,
    IF_OVERLAY_OVERLAY = 1,
    IF_OVERLAY_TE_TUNNEL = 2,
    IF_OVERLAY_MTI = 3,
    IF_OVERLAY_PEER_ID = 4,
};

// The table. One row for each kind: name, type, then for each field its name, high bit, low bit and
// base. Base is the displayed number minus the stored one: 1 for fields that hold n-1. A field
// whose high bit is below its low bit continues from bit 23 to bit 0. A type whose layout depends
// on a sub-type has one row for each form.
//
// clang-format off
#define IF_INDEX_LAYOUT(K1, K2, K3, K4) \
    K3(phy_fc,             PHY_FC,           slot, 23, 19, 1, port, 18, 12, 1, sub_intf, 11, 0, 0) \
    K3(phy_eth,            PHY_ETH,          slot, 23, 19, 1, port, 18, 12, 1, sub_intf, 11, 0, 0) \
    K3(port_channel,       PORT_CHANNEL,     channel_num, 7, 0, 1, subtype, 21, 20, 0, subtype_arg, 19, 8, 0) \
    K2(port_channel_pair,  PORT_CHANNEL,     first, 19, 16, 1, second, 15, 12, 1) \
    K2(mgmt_sup,           MGMT_SUP,         slot, 23, 19, 1, port, 18, 12, 0) \
    K1(inband,             INBAND,           subtype, 23, 19, 0) \
    K1(inband_linecard,    INBAND,           num, 11, 4, 1) \
    K1(eobc,               EOBC,             slot, 23, 19, 0) \
    K3(vsan,               VSAN,             slot, 23, 19, 1, port, 18, 12, 1, vsan, 11, 0, 0) \
    K2(vlan,               VLAN,             vd, 23, 16, 0, vlan, 11, 0, 0) \
    K1(fcip,               FCIP,             tunnel, 11, 0, 1) \
    K2(iscsi,              ISCSI,            slot, 23, 19, 1, port, 18, 12, 1) \
    K2(avanti,             AVANTI,           slot, 23, 19, 1, port, 18, 12, 1) \
    K2(faport,             FAPORT,           slot, 23, 19, 1, port, 18, 12, 1) \
    K3(fv,                 FV,               slot, 23, 19, 1, dpp_num, 18, 14, 1, port, 13, 0, 1) \
    K1(fcmpls_tnnl,        FCMPLS_TNNL,      tunnel, 11, 0, 1) \
    K2(ivr,                IVR,              first, 15, 8, 0, second, 7, 0, 0) \
    K3(ifc,                IFC,              first, 15, 11, 1, second, 10, 4, 1, third, 3, 0, 1) \
    K2(sme,                SME,              slot, 23, 19, 1, port, 18, 12, 1) \
    K2(sdm,                SDM,              first, 15, 8, 0, second, 7, 0, 0) \
    K3(isapi,              ISAPI,            slot, 23, 19, 1, node, 18, 13, 1, port, 5, 0, 1) \
    K1(eth_inband,         ETH_INBAND,       num, 23, 16, 0) \
    K3(eth_port_channel,   ETH_PORT_CHANNEL, channel_num, 11, 0, 1, subtype, 21, 20, 0, subtype_arg, 23, 12, 0) \
    K2(tunnel,             TUNNEL,           tunnel_num, 15, 0, 0, tunnel_type, 23, 16, 0) \
    K3(phy_ethernet,       PHY_ETHERNET,     slot, 23, 19, 1, port, 18, 12, 1, sub_intf, 11, 0, 0) \
    K3(lveth,              LVETH,            slot, 1, 16, 1, port, 15, 4, 1, sub_intf, 3, 2, 0) \
    K2(veth,               VETH,             vport, 23, 4, 1, sub_intf, 3, 0, 0) \
    K2(server_interface,   VETH,             vport, 23, 4, 1, sub_intf, 3, 0, 0) \
    K1(vif,                VIF,              vifindex, 19, 0, 0) \
    K2(vfc,                VFC,              vfc_subtype, 23, 20, 0, vfc_num, 15, 0, 1) \
    K1(vfc_port_channel,   VFC,              channel_num, 11, 0, 1) \
    K2(vfc_slot_port,      VFC,              slot, 19, 15, 1, port, 14, 8, 1) \
    K1(vfc_veth,           VFC,              veth_num, 15, 0, 1) \
    K3(vfc_fex,            VFC,              first, 7, 0, 1, second, 11, 8, 1, third, 17, 12, 1) \
    K4(sat,                SAT,              sat_num, 23, 16, 1, slot, 15, 12, 1, port, 11, 6, 1, sub_intf, 5, 0, 0) \
    K3(sat_fif,            SAT_FIF,          internal, 23, 21, 0, slot, 15, 12, 1, port, 11, 6, 1) \
    K2(ioa,                IOA,              slot, 23, 19, 1, port, 18, 12, 1) \
    K2(overlay,            OVERLAY,          port_type, 23, 19, 0, port, 15, 0, 0) \
    K4(vl3,                VL3,              subtype, 23, 22, 0, slot, 21, 17, 1, port, 16, 10, 1, intf_num, 9, 0, 0) \
    K2(gpc,                GPC,              switch_id, 23, 12, 0, ftag, 11, 0, 0) \
    K3(hmx_eth,            HMX_ETH,          slot, 23, 14, 1, port, 13, 6, 1, sub_intf, 5, 0, 0)
// clang-format on

// One field of the table.
struct if_index_field {
    uint8_t type; // if_index_type
    uint8_t high; // bit, inclusive
    uint8_t low;  // bit, inclusive
    uint8_t base; // displayed number minus stored number
};

// The fields under the names KIND_FIELD, for example if_layout::veth_vport. They are not inline: no
// tool can make the symbol of an inline variable local, so it would be visible in the static
// library.
namespace if_layout {
#define IF_INDEX_FIELD(kind, type, field, high, low, base)                                         \
    constexpr if_index_field kind##_##field = {IF_TYPE_##type, high, low, base};
#define IF_INDEX_FIELDS_1(kind, type, f, h, l, b) IF_INDEX_FIELD(kind, type, f, h, l, b)
#define IF_INDEX_FIELDS_2(kind, type, f, h, l, b, ...)                                             \
    IF_INDEX_FIELD(kind, type, f, h, l, b)                                                         \
    IF_INDEX_FIELDS_1(kind, type, __VA_ARGS__)
#define IF_INDEX_FIELDS_3(kind, type, f, h, l, b, ...)                                             \
    IF_INDEX_FIELD(kind, type, f, h, l, b)                                                         \
    IF_INDEX_FIELDS_2(kind, type, __VA_ARGS__)
#define IF_INDEX_FIELDS_4(kind, type, f, h, l, b, ...)                                             \
    IF_INDEX_FIELD(kind, type, f, h, l, b)                                                         \
    IF_INDEX_FIELDS_3(kind, type, __VA_ARGS__)
IF_INDEX_LAYOUT(IF_INDEX_FIELDS_1, IF_INDEX_FIELDS_2, IF_INDEX_FIELDS_3, IF_INDEX_FIELDS_4)
#undef IF_INDEX_FIELDS_1
#undef IF_INDEX_FIELDS_2
#undef IF_INDEX_FIELDS_3
#undef IF_INDEX_FIELDS_4
#undef IF_INDEX_FIELD
} // namespace if_layout

// The largest value the field can store.
constexpr uint32_t if_field_max(if_index_field field) {
    const uint32_t width = (field.high + IF_INDEX_BODY_BITS - field.low) % IF_INDEX_BODY_BITS + 1;
    return (1U << width) - 1;
}

// The body bits of an index whose field stores `value`, which must fit.
constexpr uint32_t if_field_bits(if_index_field field, uint32_t value) {
    const uint32_t wrapped = value >> (IF_INDEX_BODY_BITS - field.low);
    return ((value << field.low) | wrapped) & IF_INDEX_BODY_MASK;
}

namespace if_layout {

// The field as the index stores it. The type is not looked at.
constexpr uint32_t stored(uint32_t if_index, if_index_field field) {
    const uint32_t body = if_index & IF_INDEX_BODY_MASK;
    const uint32_t wrapped = body << (IF_INDEX_BODY_BITS - field.low);
    return ((body >> field.low) | wrapped) & if_field_max(field);
}

// The field as names show it.
constexpr int shown(uint32_t if_index, if_index_field field) {
    return (int)(stored(if_index, field) + field.base);
}

} // namespace if_layout

// The type number in the index, valid or not.
constexpr uint8_t if_index_type_bits(uint32_t if_index) {
    return (uint8_t)((if_index >> IF_INDEX_BODY_BITS) & 0x7F);
}

#endif
