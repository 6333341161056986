// "show pc": the port channels and their members.
#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/paging.h"
#include "handlers/port/port_channel_record.h"
#include "handlers/port/shared/port.h"
#include "handlers/port/shared/port_walk.h"

#include <algorithm>

namespace {

const char *mode_line(uint32_t mode) {
    switch (mode) {
    case KX_PC_MODE_NONE:
        return "PC Mode: None\n";
    case KX_PC_MODE_STATIC:
        return "PC Mode: Static\n";
    case KX_PC_MODE_LACP_ACTIVE:
        return "PC Mode: LACP active\n";
    case KX_PC_MODE_LACP_PASSIVE:
        return "PC Mode: LACP passive\n";
    case KX_PC_MODE_MAC_PINNING:
        return "PC Mode: MAC Pinning\n";
    default:
        return "PC Mode: Invalid value\n";
    }
}

void print_headings() {
    uint32_t mode = 0xFFFFFFFF; // a mode that cannot be read is no valid one
    kx_dpa_get(KXDPA_OP_PINNING_MODE, 0, &mode);
    kx_print("pce_ind    chan   pc_ltl   pce_in_pc   LACP   SG_ID   NumVethsPinned   mbrs\n");
    kx_print("-------    ----   ------   ---------   ----   -----   --------------   ----\n");
    kx_print("%s", mode_line(mode));
}

uint32_t get_word(kxdpa_opcode opcode, uint32_t ltl) {
    uint32_t word = 0;
    return kx_dpa_get(opcode, ltl, &word) == KXDPA_STATUS_SUCCESS ? word : 0;
}

// A row for each member; a port channel without members has one row with its own columns.
void print_port_channel(uint32_t ltl, const kx_port_channel_record &record) {
    const uint32_t entry = ltl - KX_LTL_FIRST_PORT_CHANNEL;
    if (record.member_count == 0) {
        kx_print("%7u    %4u   %6u\n", entry, record.channel, ltl);
    }
    const uint32_t members = std::min(record.member_count, KX_PC_MEMBERS);
    for (uint32_t i = 0; i < members; ++i) {
        const kx_port_channel_member &member = record.members[i];
        const bool designated = member.sub_group == record.designated_sub_group &&
                                member.sub_group <= KX_SUB_GROUP_LAST;
        const uint32_t lacp = get_word(KXDPA_OP_LACP_BIT, member.ltl);
        const uint32_t pinned = get_word(KXDPA_OP_PINNED_PORTS, member.ltl);
        kx_print("%7u    %4u   %6u   %9u   %4s   %4s%s   %14u   %4u\n", entry, record.channel, ltl,
                 i, lacp != 0 ? "Yes" : "No", kx_format_sub_group(member.sub_group).text,
                 designated ? "*" : " ", pinned, member.ltl);
    }
}

} // namespace

int kx_pc_table_dump(const char *arg) {
    const uint32_t cookie = kx_get_bare_cookie(arg);
    const bool continued = kx_is_agent_driven() && arg != nullptr;
    if (continued && !kx_is_port_channel(cookie)) {
        kx_print("Invalid cookie param \n");
        return -1;
    }
    if (!continued) {
        print_headings();
    }
    uint32_t ltl = continued ? cookie + 1 : KX_LTL_FIRST_PORT_CHANNEL;
    for (; kx_is_port_channel(ltl); ++ltl) {
        kx_port_channel_record record{};
        if (kx_dpa_get(KXDPA_OP_PORT_CHANNEL_RECORD, ltl, &record) != KXDPA_STATUS_SUCCESS) {
            continue;
        }
        print_port_channel(ltl, record);
        if (kx_is_agent_driven()) {
            kx_end_page(ltl);
            return 0;
        }
    }
    kx_end_table();
    kx_print("\n* denotes a designated sub-group \n");
    return 0;
}
