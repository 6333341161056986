#include "handlers/port/shared/port.h"

#include "dpa/userspace/kxdpa_indirect.h"
#include "handlers/paging.h"
#include "if_index/if_index_name.h"
#include "infra/utils/kxstrings.h"

#include <cstring>

bool kx_next_ltl(kx_walk *walk) {
    uint32_t ltl = walk->at;
    return kx_may_ask(walk) && kx_dpa_get(KXDPA_OP_NEXT_LTL, ltl, &ltl) == KXDPA_STATUS_SUCCESS &&
           kx_go_to(walk, ltl);
}

bool kx_get_port(uint32_t ltl, kx_port_view view, kx_port_record *record) {
    *record = {};
    return kx_dpa_get(KXDPA_OP_PORT_RECORD, kx_port_argument(view, ltl), record) ==
           KXDPA_STATUS_SUCCESS;
}

bool kx_port_is_empty(const kx_port_record &record) {
    return record.presence == 1 && record.vlan_mode == 0 &&
           record.port_mode == KX_PORT_MODE_SUB_GROUP_B && record.admin_state != KX_PORT_UP &&
           record.link_state != KX_PORT_UP && record.pc_ltl == 0 && record.forwarding == 0 &&
           record.hmx_port_name[0] == '\0';
}

bool kx_port_is_hidden(uint32_t ltl, const kx_port_record &record) {
    return !kx_is_port_channel(ltl) && kx_port_is_empty(record);
}

kx_port_name kx_get_port_name(uint32_t ltl, const kx_port_record &record) {
    kx_port_name name{};
    if (record.if_index != 0) {
        snprintf_if_index_short(name.text, sizeof name.text, record.if_index);
    } else if (kx_is_internal_ltl(ltl)) {
        strcpy(name.text, "Internal");
    }
    return name;
}

kx_sub_group_text kx_format_sub_group(uint32_t sub_group) {
    kx_sub_group_text column{};
    if (sub_group <= KX_SUB_GROUP_LAST) {
        // Formatted by hand: every row of the port tables has one.
        char *digit = column.text;
        if (sub_group >= 10) {
            *digit++ = static_cast<char>('0' + sub_group / 10);
        }
        *digit = static_cast<char>('0' + sub_group % 10);
    }
    return column;
}

uint32_t kx_get_first_ltl(const char *arg) {
    return kx_is_agent_driven() ? static_cast<uint32_t>(kx_get_ltl_cookie_frm_args(arg))
                                : KX_LTL_BEFORE_FIRST;
}
