// The DPA operations that this tool asks for, by opcode, grouped by subject.
//
// The numbers are the driver's. Unless a comment says otherwise, arg is 0 and the reply's record is
// declared next to the handlers that print it.
#ifndef DPA_USERSPACE_KXDPA_OPCODES_H
#define DPA_USERSPACE_KXDPA_OPCODES_H

#include <cstdint>

enum kxdpa_opcode : uint16_t {
    // The card: handshake, versions, identity
    KXDPA_OP_L3_CONTROL_VLAN = 42, // arg: index with its class in the top byte
    KXDPA_OP_CARD_UUID = 49,       // string and UUID type
    KXDPA_OP_CARD_API = 50,        // answers when the card requests can be asked
    KXDPA_OP_SET_CARD_UUID = 51,   // string; arg 2 VMware
    KXDPA_OP_CARD_NAME = 52,       // string
    KXDPA_OP_SET_CARD_NAME = 53,   // string
    KXDPA_OP_CARD_SLOT = 54,
    KXDPA_OP_SET_MANAGEMENT_IPV4 = 57,
    KXDPA_OP_MAX_PORTS = 61,       // arg 1 physical, 2 virtual
    KXDPA_OP_CARD_DOMAIN = 63,     // card domain; also the version handshake
    KXDPA_OP_CARD_MAC = 75,        // arg 1 control, 2 packet, 3 SPAN
    KXDPA_OP_LOAD_BALANCING = 151, // port-channel algorithm
    KXDPA_OP_AGENT_MAC = 153,
    KXDPA_OP_SWITCH_NAME = 171, // string
    KXDPA_OP_SWITCH_UUID = 175, // string
    KXDPA_OP_CONTROL_VLAN = 177,
    KXDPA_OP_PACKET_VLAN = 179,
    KXDPA_OP_HEARTBEAT = 193,    // feeds the headless and the heartbeat line
    KXDPA_OP_SWITCH_ALIAS = 256, // string
    KXDPA_OP_VERSION_TEXT = 284, // version string; arg 0 HMX, 1 KRT, 2 system
    KXDPA_OP_PROCESSORS = 286,
    KXDPA_OP_MANAGEMENT_IPV6 = 382,
    KXDPA_OP_SET_MANAGEMENT_IPV6 = 383,
    KXDPA_OP_TUNNEL_MODE = 390, // 3 is L3; in the port table the reserved-VLAN mode
    KXDPA_OP_L3_CONTROL_INDEX = 391,
    KXDPA_OP_PRIMARY_KRT_MAC = 399,
    KXDPA_OP_SECONDARY_KRT_MAC = 401,
    KXDPA_OP_UPGRADE_STATE = 407,
    KXDPA_OP_SET_VERSION_WORD = 416, // the same 8 bytes, written back
    KXDPA_OP_LINK_UP_DELAY = 453,    // seconds
    KXDPA_OP_PRIMARY_KRT_PACKET_MAC = 547,
    KXDPA_OP_PRIMARY_KRT_MANAGEMENT_MAC = 548,
    KXDPA_OP_STANDBY_KRT_CONTROL_MAC = 549,
    KXDPA_OP_PORTSET_EVENT = 592,
    KXDPA_OP_GLOBAL_UUFB = 640,
    KXDPA_OP_GET_VERSION_WORD = 709, // 8 bytes, read by "show version"
    KXDPA_OP_L3_CONTROL_IPV4 = 728,
    KXDPA_OP_CONTROL_MULTICAST = 730,
    KXDPA_OP_AGENT_STATUS = 811,
    KXDPA_OP_DATAPATH_INITIALIZED = 878,
    KXDPA_OP_TAG_NATIVE_VLAN = 880,
    KXDPA_OP_GLOBAL_BPDU_GUARD = 886,
    KXDPA_OP_GET_UPDATE_LEVEL = 948, // ESX version update level
    KXDPA_OP_SET_UPDATE_LEVEL = 949,
    KXDPA_OP_L3SEC_MODE = 987,
    KXDPA_OP_KRT_UPTIME = 1012,
    KXDPA_OP_GLOBAL_BPDU_FILTER = 1026,
    KXDPA_OP_LEAF_MODE = 1033,
    KXDPA_OP_OPFLEX_SDK_VERSION = 1128, // OpFlex SDK version string

    // Memory, kernel messages and asserts
    KXDPA_OP_NEXT_HEAP = 298,
    KXDPA_OP_NEXT_MEMORY_POOL = 299,
    KXDPA_OP_CLEAR_PRINTK_COUNTS = 1035,
    KXDPA_OP_ASSERT_COUNT = 1126,

    // Settings
    KXDPA_OP_SCHEDULER_CONTROL = 276, // arg 11 clears drop counters, 12 sets intrusion detection
    KXDPA_OP_ISCSI_PINNING_STATE = 386,
    KXDPA_OP_SET_ISCSI_NIC = 490, // string
    KXDPA_OP_SET_ISCSI_PINNING = 491,
    KXDPA_OP_SET_PORT_MODE = 556,       // arg: LTL
    KXDPA_OP_CLEAR_ISCSI_NIC = 567,     // string
    KXDPA_OP_SET_MIRRA_NIC = 583,       // string
    KXDPA_OP_CLEAR_MIRRA_NIC = 584,     // string
    KXDPA_OP_SET_MAC_MOVE_TIMER = 916,  // seconds
    KXDPA_OP_SET_BVL_SGT = 921,         // arg: LTL
    KXDPA_OP_SET_BVL_ENABLE = 922,      // arg: LTL
    KXDPA_OP_SET_BVL_TRUST = 923,       // arg: LTL
    KXDPA_OP_SET_BVL_ENFORCEMENT = 924, // arg: LTL
    KXDPA_OP_SET_BVL_PROPAGATE = 925,   // arg: LTL
    KXDPA_OP_SET_BVL_POLICY = 929,
    KXDPA_OP_SET_QOS_EXPORT = 1122, // arg 1 statistics, 2 full dispatch

    // Ports
    KXDPA_OP_NEXT_LTL = 25,              // arg: current LTL, all ones to start
    KXDPA_OP_PORT_RECORD = 44,           // arg: view << 24 | LTL
    KXDPA_OP_PORT_STATISTICS = 45,       // arg: LTL
    KXDPA_OP_CLEAR_PORT_STATISTICS = 47, // arg: LTL
    KXDPA_OP_PORT_MAC = 68,              // arg: LTL
    KXDPA_OP_VLAN_FORWARDING = 96,       // arg: view << 24 | LTL
    KXDPA_OP_PINNED_PORTS = 122,         // arg: LTL
    KXDPA_OP_PORT_PVLAN = 165,           // arg: view << 24 | LTL
    KXDPA_OP_PORT_SECURITY = 222,        // arg: LTL
    KXDPA_OP_STAGE_DESCRIPTOR = 275,     // arg: stage index
    KXDPA_OP_SECURE_PORT_STATE = 287,    // arg: LTL; only its success counts
    KXDPA_OP_LACP_BIT = 394,             // arg: LTL
    KXDPA_OP_DROP_COUNTERS = 511,        // arg: LTL
    KXDPA_OP_MULTICAST_DROPS = 512,
    KXDPA_OP_FLOOD_DROPS = 513,
    KXDPA_OP_PORT_VLAN_SET = 595,       // arg: view << 24 | LTL
    KXDPA_OP_PORT_CHANNEL_RECORD = 628, // arg: LTL of the port channel
    KXDPA_OP_CLEAR_ALL_PORT_STATISTICS = 1028,
    KXDPA_OP_PINNING_MODE = 1084, // of the port channels

    // VLANs, bridge domains, segments
    KXDPA_OP_BD_COUNT = 2,
    KXDPA_OP_BD_PORT_COUNT = 8, // arg: bridge-domain index
    KXDPA_OP_BD_NEXT_PORT = 9,  // arg: bridge-domain index
    KXDPA_OP_BD_RECORD = 48,    // arg: bridge-domain index
    KXDPA_OP_VLAN_COUNT = 617,
    KXDPA_OP_NEXT_VLAN = 618,       // arg: current VLAN, 0 to start
    KXDPA_OP_NEXT_BD = 619,         // arg: current bridge-domain index, 0 to start
    KXDPA_OP_BD_BY_VLAN = 621,      // of the VLAN views
    KXDPA_OP_BD_BY_SWBD = 623,      // of the designated-receiver view
    KXDPA_OP_NEXT_VLAN_GROUP = 627, // arg: VLAN
    KXDPA_OP_BD_BY_NAME = 629,
    KXDPA_OP_BD_BY_SEGMENT = 630,
    KXDPA_OP_BD_BY_VLAN_L2 = 689, // of the L2 views

    // L2 tables
    KXDPA_OP_L2_ENTRY_COUNT = 10, // arg: bridge-domain index
    KXDPA_OP_L2_TABLE_LIMIT = 11, // arg: bridge-domain index
    KXDPA_OP_L2_AGING_TIME = 13,  // arg: bridge-domain index
    KXDPA_OP_NEXT_L2_ENTRY = 15,  // arg: bridge-domain index
    KXDPA_OP_L2_SLOTS = 573,
    KXDPA_OP_L2_AGING_STATISTICS = 574,
    KXDPA_OP_L2_ENTRY_TOTALS = 598,
    KXDPA_OP_GET_MAC_TABLE = 931,

    // Access control lists
    KXDPA_OP_ACL_COUNT = 306,
    KXDPA_OP_ACL_LIST = 307,
    KXDPA_OP_DUMP_ACL_POLICY = 310,
    KXDPA_OP_CLEAN_PACL_TABLE = 367, // arg: entry
    KXDPA_OP_DUMP_PACL_ENTRY = 368,  // arg: entry
    KXDPA_OP_FLUSH_ACL_FLOWS = 651,
    KXDPA_OP_CLEAR_ACL_FLOW_STATISTICS = 669,   // the first of two
    KXDPA_OP_CLEAR_ACL_FLOW_STATISTICS_2 = 684, // the second of two
    KXDPA_OP_CLEAR_ACL_STATISTICS = 715,

    // LACP
    KXDPA_OP_LACP_PDU_CACHE = 484, // arg: LTL
    KXDPA_OP_LACP_OFFLOAD = 531,
    KXDPA_OP_LACP_HOST_DATA = 536,      // arg: LTL
    KXDPA_OP_LACP_UPGRADE_NOTIFY = 545, // arg: LTL
    KXDPA_OP_LACP_CARRIERS = 550,
    KXDPA_OP_LACP_PORT_STATE = 823, // arg: LTL
};

// Reply of KXDPA_OP_TUNNEL_MODE; every other value is L2.
constexpr uint32_t KX_TUNNEL_MODE_L3 = 3;

#endif
