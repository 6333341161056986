// Interface names typed by a user: from ethernet4/1, port-channel5 or veth12 to the index.
#ifndef IF_INDEX_IF_INDEX_PARSE_H
#define IF_INDEX_IF_INDEX_PARSE_H

#include <cstdint>

// The keywords that a name can begin with, in the order in which they are tried, and the least and
// most numbers that each takes behind it: those of its name, and one more for a sub-interface.
// -1 stands for keywords that are known but build no index. Keyword numbers are not type numbers.
//
// clang-format off
#define IF_KEYWORDS(K) \
    K(UNKNOWN, "Unknown", -1, -1) \
    K(FC, "fc", 2, 3) \
    K(GIGABITETHERNET, "gigabitethernet", 2, 3) \
    K(VSAN, "vsan", 1, 1) \
    K(ISCSI, "iscsi", 2, 2) \
    K(PORT_CHANNEL, "port-channel", 1, 2) \
    K(CPP, "cpp", 3, 3) \
    K(FCIP, "fcip", 1, 1) \
    K(MGMT, "mgmt", 1, 2) \
    K(FV, "fv", 3, 3) \
    K(FA, "fa", 2, 2) \
    K(SVC, "svc", 2, 2) \
    K(SUP_FC, "sup-fc", 1, 2) \
    K(FC_TUNNEL, "fc-tunnel", 1, 1) \
    K(IPC, "ipc", 3, 3) \
    K(LOOPBACK, "loopback", 1, 1) \
    K(VLAN, "vlan", 1, 1) \
    K(NULL_INTERFACE, "null", -1, -1) \
    K(SME, "sme", 2, 2) \
    K(BAY, "bay", 1, 1) \
    K(EXT, "ext", 1, 1) \
    K(SAN_PORT_CHANNEL, "san-port-channel", 1, 2) \
    K(ETHERNET_PORT_CHANNEL, "ethernet-port-channel", 1, 2) \
    K(TUNNEL, "tunnel", 1, 1) \
    K(ETHERNET, "ethernet", 2, 3) \
    K(SUP_ETH, "sup-eth", -1, -1) \
    K(ISAPI, "isapi", -1, -1) \
    K(VETHERNET, "vethernet", 1, 2) \
    K(VFC, "vfc", 1, 3) \
    K(REMOTE_ETHERNET, "remote-ethernet", 3, 3) \
    K(IOA, "ioa", 2, 2) \
    K(OVERLAY, "overlay", 1, 1) \
    K(LVETH, "lveth", 2, 3) \
    K(VETH, "veth", 1, 2) \
    K(HMX_ETHERNET, "hmx-ethernet", 2, 3) \
    K(TUNNEL_TE, "tunnel-te", 1, 1) \
    K(MTI, "mti", 1, 1) \
    K(CONTROL, "control", 1, 1) \
    K(DATA, "data", -1, -1) \
    K(VFC_VETH, "vfc-veth", 1, 1) \
    K(VFC_PORT_CHANNEL, "vfc-port-channel", 1, 1) \
    K(PLC, "plc", -1, -1) \
    K(SERIAL, "serial", -1, -1) \
    K(CELLULAR, "cellular", -1, -1) \
    K(DIALER, "dialer", -1, -1) \
    K(PSEUDOWIRE, "pseudowire", -1, -1) \
    K(WIMAX, "wimax", -1, -1) \
    K(EFP_ETHERNET, "efp-ethernet", -1, -1) \
    K(EFP_ETHERNET_PORT_CHANNEL, "efp-ethernet-port-channel", -1, -1) \
    K(VFI, "vfi", -1, -1) \
    K(SHADOW_PC, "shadow-pc", -1, -1) \
    K(SHADOW_FABPC, "shadow-fabpc", -1, -1) \
    K(WPAN, "wpan", -1, -1) \
    K(WIFI, "wifi", -1, -1) \
    K(GLT, "glt", -1, -1) \
    K(VNI, "vni", -1, -1) \
    K(VSI_ETHERNET, "vsi-ethernet", -1, -1) \
    K(VSI_ETHERNET_PORT_CHANNEL, "vsi-ethernet-port-channel", -1, -1) \
    K(VTEP, "vtep", -1, -1) \
    K(BDI, "bdi", -1, -1) \
    K(IP_STORAGE, "IPStorage", -1, -1) \
    K(NVE, "nve", -1, -1) \
    K(II, "ii", -1, -1) \
    K(SUPER, "Super", -1, -1) \
    K(TEN_GIG_ETHER, "10GigEther", -1, -1) \
    K(POS, "POS", -1, -1) \
    K(RP_TO_RP, "RP-to-RP", -1, -1) \
    K(AUTOTUNNEL, "Autotunnel", -1, -1) \
    K(ETH_PORT_CHANNEL, "eth-port-channel", -1, -1)
// clang-format on

enum if_keyword : uint32_t {
#define IF_KEYWORD_NUMBER(name, text, least, most) IF_KEYWORD_##name,
    IF_KEYWORDS(IF_KEYWORD_NUMBER)
#undef IF_KEYWORD_NUMBER
        IF_KEYWORD_COUNT
};

// The texts of the keywords, by keyword number.
extern const char *const INTERFACE_TYPE_TABLE_PREFIXinterface_type_names[IF_KEYWORD_COUNT];

// The most numbers that are read from a name.
constexpr int IF_NAME_MAX_NUMBERS = 10;

// Turn a name into an index: leading blanks, a keyword in any case (ASCII, whatever the locale),
// then its numbers with anything but digits between them, up to a "," or "-" right before a number.
// Returns 1 when the keyword builds an index and the count of numbers is right, else 0.
//
// 1 does not say that the numbers are in range: when they are not, *if_index is left as it was, so
// preset it.
int vsh_interface_name_to_ifindex(const char *text, uint32_t *if_index);

// The same from a keyword number (if_keyword) and its numbers, as a user types them. The numbers
// 65 to 68 mean the keywords 1 to 4. The VDC of a VLAN interface comes from the environment
// variable SYSMGR_VDC_ID, 0 without it.
int vsh_interface_coordinates_to_ifindex(uint32_t keyword, const uint32_t *numbers, int count,
                                         uint32_t *if_index);

// The seam for an interface database: find the index of a name. Answers IF_INDEX_NO_DATABASE.
int if_db_str2ifindex_wrapper(const char *text, uint32_t *if_index);

#endif
