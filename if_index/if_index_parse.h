// From an interface name that a user typed (ethernet4/1, port-channel5, veth12) to the index.
#ifndef IF_INDEX_IF_INDEX_PARSE_H
#define IF_INDEX_IF_INDEX_PARSE_H

#include <cstdint>

// The keywords with which a name can begin, in the order in which they are tried. Keyword numbers
// are not type numbers.
//
// clang-format off
#define IF_KEYWORDS(K) \
    K(UNKNOWN, "Unknown") \
    K(FC, "fc") \
    K(GIGABITETHERNET, "gigabitethernet") \
    K(VSAN, "vsan") \
    K(ISCSI, "iscsi") \
    K(PORT_CHANNEL, "port-channel") \
    K(CPP, "cpp") \
    K(FCIP, "fcip") \
    K(MGMT, "mgmt") \
    K(FV, "fv") \
    K(FA, "fa") \
    K(SVC, "svc") \
    K(SUP_FC, "sup-fc") \
    K(FC_TUNNEL, "fc-tunnel") \
    K(IPC, "ipc") \
    K(LOOPBACK, "loopback") \
    K(VLAN, "vlan") \
    K(NULL_INTERFACE, "null") \
    K(SME, "sme") \
    K(BAY, "bay") \
    K(EXT, "ext") \
    K(SAN_PORT_CHANNEL, "san-port-channel") \
    K(ETHERNET_PORT_CHANNEL, "ethernet-port-channel") \
    K(TUNNEL, "tunnel") \
    K(ETHERNET, "ethernet") \
    K(SUP_ETH, "sup-eth") \
    K(ISAPI, "isapi") \
    K(VETHERNET, "vethernet") \
    K(VFC, "vfc") \
    K(REMOTE_ETHERNET, "remote-ethernet") \
    K(IOA, "ioa") \
    K(OVERLAY, "overlay") \
    K(LVETH, "lveth") \
    K(VETH, "veth") \
    K(HMX_ETHERNET, "hmx-ethernet") \
    K(TUNNEL_TE, "tunnel-te") \
    K(MTI, "mti") \
    K(CONTROL, "control") \
    K(DATA, "data") \
    K(VFC_VETH, "vfc-veth") \
    K(VFC_PORT_CHANNEL, "vfc-port-channel") \
    K(PLC, "plc") \
    K(SERIAL, "serial") \
    K(CELLULAR, "cellular") \
    K(DIALER, "dialer") \
    K(PSEUDOWIRE, "pseudowire") \
    K(WIMAX, "wimax") \
    K(EFP_ETHERNET, "efp-ethernet") \
    K(EFP_ETHERNET_PORT_CHANNEL, "efp-ethernet-port-channel") \
    K(VFI, "vfi") \
    K(SHADOW_PC, "shadow-pc") \
    K(SHADOW_FABPC, "shadow-fabpc") \
    K(WPAN, "wpan") \
    K(WIFI, "wifi") \
    K(GLT, "glt") \
    K(VNI, "vni") \
    K(VSI_ETHERNET, "vsi-ethernet") \
    K(VSI_ETHERNET_PORT_CHANNEL, "vsi-ethernet-port-channel") \
    K(VTEP, "vtep") \
    K(BDI, "bdi") \
    K(IP_STORAGE, "IPStorage") \
    K(NVE, "nve") \
    K(II, "ii") \
    K(SUPER, "Super") \
    K(TEN_GIG_ETHER, "10GigEther") \
    K(POS, "POS") \
    K(RP_TO_RP, "RP-to-RP") \
    K(AUTOTUNNEL, "Autotunnel") \
    K(ETH_PORT_CHANNEL, "eth-port-channel")
// clang-format on

enum if_keyword : uint32_t {
#define IF_KEYWORD_NUMBER(name, text) IF_KEYWORD_##name,
    IF_KEYWORDS(IF_KEYWORD_NUMBER)
#undef IF_KEYWORD_NUMBER
        IF_KEYWORD_COUNT
};

// The texts of the keywords, by keyword number.
extern const char *const INTERFACE_TYPE_TABLE_PREFIXinterface_type_names[IF_KEYWORD_COUNT];

// The largest count of numbers that is read from a name.
constexpr int IF_NAME_MAX_NUMBERS = 10;

// Turn a name into an index: leading blanks, a keyword in any case (ASCII, whatever the locale),
// then its numbers with anything but digits between them, up to a "," or "-" right before a number.
// Returns 1 when the keyword builds an index and the count of numbers is right, else 0.
//
// 1 does not mean that the numbers are in range. When they are not, *if_index is unchanged, so set
// it before the call.
int vsh_interface_name_to_ifindex(const char *text, uint32_t *if_index);

// The same from a keyword number (if_keyword) and its numbers, as a user types them. The numbers
// 65 to 68 mean the keywords 1 to 4. The VDC of a VLAN interface comes from the environment
// variable SYSMGR_VDC_ID, 0 without it.
int vsh_interface_coordinates_to_ifindex(uint32_t keyword, const uint32_t *numbers, int count,
                                         uint32_t *if_index);

// An interface database would find the index of a name here. There is none: returns
// IF_INDEX_NO_DATABASE.
int if_db_str2ifindex_wrapper(const char *text, uint32_t *if_index);

#endif
