// The opcodes of the agent's socket channel, a numbering of its own.
//
// Unless a comment says otherwise, arg is 0 and the request is KXDPA_FLAG_OUT with a reply of the
// size given.
#ifndef DPA_COMMAND_KXTARNCMD_OPCODES_H
#define DPA_COMMAND_KXTARNCMD_OPCODES_H

#include <cstdint>

enum kxtarncmd_opcode : uint16_t {
    KXTARNCMD_OP_MULTICAST_VLAN = 1,     // 16 bytes; arg: the command's own argument
    KXTARNCMD_OP_VLAN_COUNT = 2,         // 8 bytes; sizes the list
    KXTARNCMD_OP_VLAN_LIST = 3,          // OUT, IN and MAX: 4 bytes of input plus the capacity
    KXTARNCMD_OP_VLAN_INFO = 4,          // 28 bytes
    KXTARNCMD_OP_PROFILE_COUNT = 5,      // 8 bytes; sizes the list
    KXTARNCMD_OP_PROFILE_LIST = 6,       // OUT, IN and MAX: 4 bytes of input plus the capacity
    KXTARNCMD_OP_PROFILE_ENTRY = 7,      // 84 bytes; arg: a word of KXTARNCMD_OP_PROFILE_INFO
    KXTARNCMD_OP_PROFILE_INFO = 8,       // 1168 bytes
    KXTARNCMD_OP_VLAN_DETAIL = 9,        // 88 bytes
    KXTARNCMD_OP_VLAN_DETAIL_2 = 11,     // 88 bytes
    KXTARNCMD_OP_SECURE_PORT_STATS = 13, // 12 bytes; arg: as in the driver's request before it
};

#endif
