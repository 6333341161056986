// The interface index: a 32-bit number that identifies every interface of the switch data path.
//
// The index describes itself: if_index_layout.h has the types and the meaning of the other bits.
// The functions here compute with the value; none allocates or holds state. Unless a function says
// otherwise, it returns an if_index_status and stores results through output pointers. It stores
// nothing when the status is not IF_INDEX_OK. A null output pointer gives IF_INDEX_OUT_OF_RANGE.
#ifndef IF_INDEX_IF_INDEX_H
#define IF_INDEX_IF_INDEX_H

#include <cstddef>
#include <cstdint>

#include "if_index/if_index_layout.h"

// Statuses of the library.
enum if_index_status : int {
    IF_INDEX_OK = 0,
    IF_INDEX_NO_DATABASE = 7,   // the interface database is not available
    IF_INDEX_INVALID_TYPE = 11, // the index carries no valid type
    IF_INDEX_WRONG_TYPE = 12,   // a valid index, but of another type than is asked for
    IF_INDEX_NO_MORE = 13,      // the end of a walk
    IF_INDEX_OUT_OF_RANGE = 14, // a field value is out of range, or an output pointer is null
};

// The first and last index of a range of interfaces of one type.
struct if_index_range {
    uint32_t first;
    uint32_t last;
};

// --- Types -------------------------------------------------------------------------------------

// Store the type number of the index, even when it is not valid. IF_INDEX_INVALID_TYPE unless the
// number is 1 to 74 except 3.
int if_index_get_type(uint32_t if_index, uint8_t *type);

// Whether this release builds interfaces of the type: 0 to 38 except 3 and 27. Except for type 0,
// if_index_get_type accepts all of these and more.
bool if_index_is_type_valid_in_current_release(uint8_t type);

// Step `*type` up to the next type of this release. IF_INDEX_NO_MORE at the end: `*type` is then
// 74, or unchanged when it started at 74 or above.
int if_index_get_next_type(uint8_t *type);

// Whether the type has no hardware of its own: IVR and SDM ports.
bool if_index_is_virtual_type(uint8_t type);

// The index that stands for every interface of the type, or 0 for a type that has none. The
// loopback is identified by its whole top byte, 0xFE.
uint32_t if_index_get_if_index_all_for_type(uint8_t type);

// --- Accessors ---------------------------------------------------------------------------------

// For every kind of the layout table, an accessor for each field and one for all of them:
//
//     int if_index_KIND_get_FIELD(uint32_t if_index, uint32_t *value);
//     int if_index_KIND_get_fields(uint32_t if_index, uint32_t *FIELD, ...);   in table order
//
// Values are the stored ones, without the base that names add. IF_INDEX_INVALID_TYPE for an index
// without a type, IF_INDEX_WRONG_TYPE for one of another type. The sub-type of an index is not
// checked: the caller must know which form of a vfc, inband port or port-channel it reads. The sat
// accessors also read the satellite fabric interfaces.
// NOLINTBEGIN(bugprone-macro-parentheses): parameter names cannot stand in parentheses
#define IF_INDEX_ACCESSOR(kind, field)                                                             \
    int if_index_##kind##_get_##field(uint32_t if_index, uint32_t *value);
#define IF_INDEX_ACCESSORS_1(kind, type, a, ah, al, ab)                                            \
    IF_INDEX_ACCESSOR(kind, a)                                                                     \
    int if_index_##kind##_get_fields(uint32_t if_index, uint32_t *a);
#define IF_INDEX_ACCESSORS_2(kind, type, a, ah, al, ab, b, bh, bl, bb)                             \
    IF_INDEX_ACCESSOR(kind, a)                                                                     \
    IF_INDEX_ACCESSOR(kind, b)                                                                     \
    int if_index_##kind##_get_fields(uint32_t if_index, uint32_t *a, uint32_t *b);
#define IF_INDEX_ACCESSORS_3(kind, type, a, ah, al, ab, b, bh, bl, bb, c, ch, cl, cb)              \
    IF_INDEX_ACCESSOR(kind, a)                                                                     \
    IF_INDEX_ACCESSOR(kind, b)                                                                     \
    IF_INDEX_ACCESSOR(kind, c)                                                                     \
    int if_index_##kind##_get_fields(uint32_t if_index, uint32_t *a, uint32_t *b, uint32_t *c);
#define IF_INDEX_ACCESSORS_4(kind, type, a, ah, al, ab, b, bh, bl, bb, c, ch, cl, cb, d, dh, dl,   \
                             db)                                                                   \
    IF_INDEX_ACCESSOR(kind, a)                                                                     \
    IF_INDEX_ACCESSOR(kind, b)                                                                     \
    IF_INDEX_ACCESSOR(kind, c)                                                                     \
    IF_INDEX_ACCESSOR(kind, d)                                                                     \
    int if_index_##kind##_get_fields(uint32_t if_index, uint32_t *a, uint32_t *b, uint32_t *c,     \
                                     uint32_t *d);
IF_INDEX_LAYOUT(IF_INDEX_ACCESSORS_1, IF_INDEX_ACCESSORS_2, IF_INDEX_ACCESSORS_3,
                IF_INDEX_ACCESSORS_4)
#undef IF_INDEX_ACCESSORS_1
#undef IF_INDEX_ACCESSORS_2
#undef IF_INDEX_ACCESSORS_3
#undef IF_INDEX_ACCESSORS_4
#undef IF_INDEX_ACCESSOR
// NOLINTEND(bugprone-macro-parentheses)

// The slot or port of an index of any type that has one, as stored. IF_INDEX_WRONG_TYPE for the
// types and vfc sub-types that have none.
int if_index_get_slot(uint32_t if_index, uint32_t *slot);
int if_index_get_port(uint32_t if_index, uint32_t *port);

// The sub-interface, 0 for a main interface. IF_INDEX_WRONG_TYPE for types that have none, and for
// port-channels other than the plain sub-type.
int if_index_get_sub_intf(uint32_t if_index, uint32_t *sub_intf);

// The main interface of a sub-interface, or of itself. Statuses as above.
int if_index_get_mainintf_from_subintf(uint32_t if_index, uint32_t *main_if_index);

// The sub-interface with the given number of an index's main interface. Statuses as above.
int if_index_get_subintf_from_mainintf(uint32_t if_index, uint32_t sub_intf,
                                       uint32_t *sub_if_index);

// The main interface of a Gigabit Ethernet sub-interface.
int if_index_phy_eth_get_mainintf_from_subintf(uint32_t if_index, uint32_t *main_if_index);

// The sub-interface bits of a port-channel (returned directly), which carry a VLAN id: bits 23..12
// of an Ethernet port-channel, bits 19..8 of any other index.
uint32_t if_index_port_channel_get_vlan_id(uint32_t if_index);

// The largest channel id of a port-channel's kind.
int if_index_get_max_channel_id_for_ifindex(uint32_t if_index, uint16_t *max_channel_id);

// --- Constructors ------------------------------------------------------------------------------

// Constructors that only check that each number fits its field. One row each: the constructor's
// stem, the kind of the layout table, the body bits that every index of this form has, and the
// fields in the order of the arguments:
//
//     int if_index_STEM_init(uint32_t *if_index, uint32_t FIELD, ...);       numbers as stored
//     int if_index_STEM_cli_init(uint32_t *if_index, uint32_t FIELD, ...);   as a user types them
//
// Users type the numbers that names show: one more than stored where the table's base is 1.
// IF_INDEX_OUT_OF_RANGE, with `*if_index` unchanged, when a number does not fit. The I rows have no
// _cli_init here; theirs has a rule of its own below.
//
// clang-format off
#define IF_INDEX_VFC_FORM(subtype) if_field_bits(if_layout::vfc_vfc_subtype, subtype)
#define IF_INDEX_CONSTRUCTORS(C1, C2, C3, C4, I2, I3) \
    C3(phy_fc_port,          phy_fc,           0, slot, port, sub_intf) \
    I3(phy_eth_port,         phy_eth,          0, slot, port, sub_intf) \
    C3(phy_ethernet,         phy_ethernet,     0, slot, port, sub_intf) \
    I2(mgmt_sup_port,        mgmt_sup,         0, slot, port) \
    C1(inband,               inband,           0, subtype) \
    C1(inband_linecard,      inband_linecard,  if_field_bits(if_layout::inband_subtype, IF_INBAND_LINECARD), num) \
    C1(eobc_port,            eobc,             0, slot) \
    I3(vsan_port,            vsan,             0, slot, port, vsan) \
    C1(fcip_port,            fcip,             0, tunnel) \
    C2(iscsi_port,           iscsi,            0, slot, port) \
    C2(avanti_port,          avanti,           0, slot, port) \
    C2(faport,               faport,           0, slot, port) \
    C3(fv_port,              fv,               0, slot, dpp_num, port) \
    C1(fcmpls_tnnl,          fcmpls_tnnl,      0, tunnel) \
    C2(ivr,                  ivr,              0, first, second) \
    C3(ifc,                  ifc,              0, first, second, third) \
    C2(sme_port,             sme,              0, slot, port) \
    C2(sdm,                  sdm,              0, first, second) \
    C3(isapi_port,           isapi,            0, slot, node, port) \
    C1(eth_inband,           eth_inband,       0, num) \
    I3(lveth,                lveth,            0, slot, port, sub_intf) \
    C2(veth,                 veth,             0, vport, sub_intf) \
    C2(ether_sif,            server_interface, 0, vport, sub_intf) \
    C1(vif,                  vif,              0, vifindex) \
    C1(vfc,                  vfc,              IF_INDEX_VFC_FORM(IF_VFC_NUMBERED), vfc_num) \
    C1(vfc_port_channel,     vfc_port_channel, IF_INDEX_VFC_FORM(IF_VFC_PORT_CHANNEL), channel_num) \
    C2(vfc_slot_port,        vfc_slot_port,    IF_INDEX_VFC_FORM(IF_VFC_SLOT_PORT), slot, port) \
    C1(vfc_veth,             vfc_veth,         IF_INDEX_VFC_FORM(IF_VFC_VETH), veth_num) \
    C3(vfc_fex,              vfc_fex,          IF_INDEX_VFC_FORM(IF_VFC_FEX), first, second, third) \
    I3(sat_phy_eth_fif_port, sat_fif,          0, slot, port, internal) \
    C2(ioa_port,             ioa,              0, slot, port) \
    C4(vl3,                  vl3,              0, subtype, slot, port, intf_num) \
    C2(gpc,                  gpc,              0, switch_id, ftag)
// clang-format on

#define IF_INDEX_INIT_2(stem, kind, form, a, b)                                                    \
    int if_index_##stem##_init(uint32_t *if_index, uint32_t a, uint32_t b);
#define IF_INDEX_INIT_3(stem, kind, form, a, b, c)                                                 \
    int if_index_##stem##_init(uint32_t *if_index, uint32_t a, uint32_t b, uint32_t c);
#define IF_INDEX_INITS_1(stem, kind, form, a)                                                      \
    int if_index_##stem##_init(uint32_t *if_index, uint32_t a);                                    \
    int if_index_##stem##_cli_init(uint32_t *if_index, uint32_t a);
#define IF_INDEX_INITS_2(stem, kind, form, a, b)                                                   \
    IF_INDEX_INIT_2(stem, kind, form, a, b)                                                        \
    int if_index_##stem##_cli_init(uint32_t *if_index, uint32_t a, uint32_t b);
#define IF_INDEX_INITS_3(stem, kind, form, a, b, c)                                                \
    IF_INDEX_INIT_3(stem, kind, form, a, b, c)                                                     \
    int if_index_##stem##_cli_init(uint32_t *if_index, uint32_t a, uint32_t b, uint32_t c);
#define IF_INDEX_INITS_4(stem, kind, form, a, b, c, d)                                             \
    int if_index_##stem##_init(uint32_t *if_index, uint32_t a, uint32_t b, uint32_t c,             \
                               uint32_t d);                                                        \
    int if_index_##stem##_cli_init(uint32_t *if_index, uint32_t a, uint32_t b, uint32_t c,         \
                                   uint32_t d);
IF_INDEX_CONSTRUCTORS(IF_INDEX_INITS_1, IF_INDEX_INITS_2, IF_INDEX_INITS_3, IF_INDEX_INITS_4,
                      IF_INDEX_INIT_2, IF_INDEX_INIT_3)
#undef IF_INDEX_INITS_1
#undef IF_INDEX_INITS_2
#undef IF_INDEX_INITS_3
#undef IF_INDEX_INITS_4
#undef IF_INDEX_INIT_2
#undef IF_INDEX_INIT_3

// The constructors below have rules of their own. When a number is outside the given range, all
// return IF_INDEX_OUT_OF_RANGE and leave `*if_index` unchanged.

// As typed: slot 1..32, port 1..128, third 0..63, sub-interface 0..4095. Without a third number
// this is a Gigabit Ethernet port. With one it is a satellite port: slot - 1 as the satellite,
// port - 1 from bit 12, third from bit 6 and the sub-interface below, ORed together unmasked.
int if_index_phy_eth_port_cli_init(uint32_t *if_index, uint32_t slot, uint32_t port, uint32_t third,
                                   uint32_t sub_intf);

// Port-channels. Channel 0..4095 (1..4096 as typed); a type-4 index keeps only its low eight bits.
// Sub-type 0..3, sub-interface 0..4095. The internal form of the Ethernet port-channel writes the
// bits of the other kind's internal form, not those of its own layout.
int if_index_port_channel_init(uint32_t *if_index, uint32_t channel);
int if_index_port_channel_init_internal(uint32_t *if_index, uint32_t channel, uint32_t subtype,
                                        uint32_t sub_intf);
int if_index_port_channel_cli_init(uint32_t *if_index, uint32_t channel, uint32_t sub_intf);
int if_index_port_channel_cli_init_internal(uint32_t *if_index, uint32_t channel, uint32_t subtype,
                                            uint32_t sub_intf);
int if_index_eth_port_channel_init(uint32_t *if_index, uint32_t channel);
int if_index_eth_port_channel_init_internal(uint32_t *if_index, uint32_t channel, uint32_t subtype,
                                            uint32_t sub_intf);
int if_index_eth_port_channel_cli_init(uint32_t *if_index, uint32_t channel, uint32_t sub_intf);

// As typed in mgmtPORT/MODULE: port 0..127; module 1..32, or 0 for the supervisor's own port.
int if_index_mgmt_sup_port_cli_init(uint32_t *if_index, uint32_t port, uint32_t module);

// As typed: slot 1..32, port 1..128, number 0..4095. Slot 31 (IF_VSAN_SLOT) is stored unchanged and
// makes a VSAN interface; its port 0..127 is stored unchanged, too.
int if_index_vsan_port_cli_init(uint32_t *if_index, uint32_t slot, uint32_t port, uint32_t vsan);

// VDC 0..255, VLAN 1..4094; both forms take them as stored.
int if_index_vlan_port_init(uint32_t *if_index, uint32_t vdc, uint32_t vlan);
int if_index_vlan_port_cli_init(uint32_t *if_index, uint32_t vdc, uint32_t vlan);

// Move a VLAN interface to another VDC. IF_INDEX_WRONG_TYPE for any other type.
int if_index_vlan_port_convert_to_vdc(uint32_t *if_index, uint8_t vdc);

// Tunnel type (the low eight bits count) and number 0..65535; both forms take them as stored.
int if_index_tunnel_init(uint32_t *if_index, uint32_t tunnel_type, uint32_t number);
int if_index_tunnel_cli_init(uint32_t *if_index, uint32_t tunnel_type, uint32_t number);

// All tunnels of one tunnel type.
int if_index_get_tunnel_range(uint8_t tunnel_type, if_index_range *range);

// As typed: slot 1..1024, port 1..4096, and the sub-interface as names show it: 0, 4, 8 or 12.
int if_index_lveth_cli_init(uint32_t *if_index, uint32_t slot, uint32_t port, uint32_t sub_intf);

// Satellite, slot and port 0..255 each, sub-interface 0..63. Slot and port are ORed in unmasked: a
// number that is too large for its field changes the field above.
int if_index_sat_phy_eth_port_init(uint32_t *if_index, uint32_t satellite, uint32_t slot,
                                   uint32_t port, uint32_t sub_intf);

// As typed: satellite 1..256, slot 1..16, port 1..64, sub-interface 0..63.
int if_index_sat_phy_eth_port_cli_init(uint32_t *if_index, uint32_t satellite, uint32_t slot,
                                       uint32_t port, uint32_t sub_intf);

// Overlay kind 0..255 (IF_OVERLAY_...) and number 0..65503; both forms take them as stored. The
// kind is ORed in unmasked: one above 31 changes the type.
int if_index_overlay_init(uint32_t *if_index, uint32_t kind, uint32_t number);
int if_index_overlay_cli_init(uint32_t *if_index, uint32_t kind, uint32_t number);

// The range of all numbers of an overlay kind that can be allocated: the top 32 are reserved.
int if_index_get_overlay_range(uint8_t kind, if_index_range *range);

// Host switch module Ethernet ports: module 0..514, port 0..255, sub-interface 0..63, as stored.
// The other forms take a module 3..515 or a slot 2..514 (module slot + 1), or as typed a module
// from 1 (from 128 where modules count from there) and a port from 1.
int if_index_hmx_eth_init(uint32_t *if_index, uint32_t module, uint32_t port, uint32_t sub_intf);
int if_index_hmx_eth_init_from_mod(uint32_t *if_index, uint32_t module, uint32_t port,
                                   uint32_t sub_intf);
int if_index_hmx_eth_init_from_slot(uint32_t *if_index, uint32_t slot, uint32_t port,
                                    uint32_t sub_intf);
int if_index_hmx_eth_cli_init(uint32_t *if_index, uint32_t module, uint32_t port,
                              uint32_t sub_intf);

// Loopback port 0..1023; both forms take it as stored. The type of such an index is never valid.
int if_index_loopback_port_init(uint32_t *if_index, uint32_t port);
int if_index_loopback_port_cli_init(uint32_t *if_index, uint32_t port);

// The loopback index of a port (returned directly), unchecked.
uint32_t if_index_get_loopback_port(uint32_t port);

// The null interface; the second form returns it directly.
int if_index_null_interface_init(uint32_t *if_index);
uint32_t if_index_get_null_interface();

// --- Predicates --------------------------------------------------------------------------------

// All return false for an index without a valid type.
bool if_index_is_port_channel_intf(uint32_t if_index);
bool if_index_is_eth_port_channel_intf(uint32_t if_index);
bool if_index_is_tunnel_intf(uint32_t if_index);
bool if_index_is_overlay_intf(uint32_t if_index);
bool if_index_is_satellite_interface(uint32_t if_index); // a satellite's Ethernet port

// Whether the index has a sub-interface and it is not 0.
bool if_index_is_sub_intf(uint32_t if_index);

// Whether the index is a sub-interface of a port-channel of either kind.
bool if_index_is_port_channel_sub_interface(uint32_t if_index);

// Whether there is a physical port: a main interface of a Fibre Channel, Gigabit Ethernet,
// Ethernet or satellite port, or a management port.
bool if_index_is_physical_interface(uint32_t if_index);

// Store whether the index's type is virtual (if_index_is_virtual_type); false for an index without
// a valid type.
int if_index_is_virtual_interface(uint32_t if_index, bool *is_virtual);

// Whether the VLAN id can carry an interface: 1 to 4094.
bool if_index_is_valid_vlan_id(uint32_t vlan_id);

// --- Ranges ------------------------------------------------------------------------------------

// A range counts the number field of its type: the sub-interface when the last index has one, else
// the port, channel, VLAN or other number of the type. First and last are equal in all other bits.
// IF_INDEX_INVALID_TYPE or IF_INDEX_WRONG_TYPE when one has no type, when the types differ, or when
// the type has no numbers; IF_INDEX_OUT_OF_RANGE when the two are not a range.

// Store how many indexes the range holds.
int if_index_get_num_ports_in_if_index_range(const if_index_range *range, uint32_t *count);

// Store the indexes of the range and their count. IF_INDEX_OUT_OF_RANGE, with nothing stored, when
// there are more than `capacity`.
int if_index_get_if_index_in_range(const if_index_range *range, uint32_t *if_indexes,
                                   size_t capacity, uint32_t *count);

// Step `*if_index` to the next one of the range. IF_INDEX_NO_MORE at the last,
// IF_INDEX_OUT_OF_RANGE outside the range.
int if_index_get_next_if_index_in_range(const if_index_range *range, uint32_t *if_index);

// --- Byte order, comparison, FSPF --------------------------------------------------------------

// Between host and wire order: the four bytes reversed (the host is little-endian).
uint32_t hton_if_index(uint32_t if_index);
uint32_t ntoh_if_index(uint32_t if_index);

// The order of two indexes: returns the wrapping difference a - b, whose sign counts.
int32_t if_index_compare(uint32_t a, uint32_t b);

// The numbering of the fabric routing protocol (FSPF), for Fibre Channel ports and port-channels.
// All return the result directly, 0 for anything that has no compact form (other types, wildcards).
//
// The 32-bit form passes the index through.
uint32_t convert_if_index_to_fspf_if_index(uint32_t if_index);
uint32_t convert_fspf_if_index_to_if_index(uint32_t fspf_if_index);

// The 16-bit form passes the number through (slot and port, or the channel) below the type in bits
// 15..12. Sub-interfaces and port-channel sub-types other than the plain one have none.
uint16_t convert_if_index_to_fspf16_if_index(uint32_t if_index);
uint32_t convert_fspf16_if_index_to_if_index(uint16_t fspf16_if_index);

#endif
