#include "handlers/port/shared/bridge_domain.h"

#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/output_sink.h"
#include "handlers/paging.h"
#include "handlers/port/shared/port.h"
#include "infra/utils/field_text.h"
#include "infra/utils/kxstrings.h"

#include <cstring>

namespace {

constexpr uint32_t VLAN_LIMIT = 4095;
constexpr uint32_t BD_INDEX_LIMIT = 9300;

constexpr uint32_t PORTS_OF_A_GROUP = 10;

uint32_t find_bd(kxdpa_opcode opcode, kx_bd_record *asked) {
    return kx_dpa_exchange(opcode, 0, asked) == KXDPA_STATUS_SUCCESS ? asked->index : 0;
}

// Step to the bridge domain's next member; start from KX_LTL_BEFORE_FIRST.
bool next_bd_port(uint32_t index, kx_walk *walk) {
    uint32_t ltl = walk->at;
    return kx_may_ask(walk) &&
           kx_dpa_exchange(KXDPA_OP_BD_NEXT_PORT, index, &ltl) == KXDPA_STATUS_SUCCESS &&
           kx_go_to(walk, ltl);
}

void print_bd_port(uint32_t ltl, const uint32_t *dr_ltl) {
    kx_port_record port;
    if (!kx_get_port(ltl, KX_VIEW_HMX, &port)) {
        port.hmx_port_name[0] = '\0';
    }
    const auto name = kx_field_text(port.hmx_port_name);
    if (dr_ltl == nullptr) {
        kx_print("  %5d  %s\n", ltl, name.text);
    } else {
        kx_print("  %5d  %s %s\n", ltl, ltl == *dr_ltl ? "DR" : "  ", name.text);
    }
}

} // namespace

bool kx_check_vlan(uint32_t vlan) {
    if (vlan < VLAN_LIMIT) {
        return true;
    }
    kx_print("Invalid VLAN, VLAN has to be less than %d\n", VLAN_LIMIT);
    return false;
}

bool kx_check_bd_index(uint32_t index) {
    if (index < BD_INDEX_LIMIT) {
        return true;
    }
    kx_print("Invalid BD, BD has to be less than %d\n", BD_INDEX_LIMIT);
    return false;
}

bool kx_next_bd(kx_walk *walk) {
    uint32_t index = walk->at;
    return kx_may_ask(walk) &&
           kx_dpa_get(KXDPA_OP_NEXT_BD, index, &index) == KXDPA_STATUS_SUCCESS && index != 0 &&
           kx_go_to(walk, index);
}

bool kx_get_bd(uint32_t index, kx_bd_record *record) {
    *record = {};
    return kx_dpa_get(KXDPA_OP_BD_RECORD, index, record) == KXDPA_STATUS_SUCCESS;
}

bool kx_bd_is_vxlan_segment(const kx_bd_record &record) {
    return record.kind == KX_BD_KIND_SEGMENT && record.native_encap == 0;
}

bool kx_next_vlan_bd(kx_walk *walk, kx_bd_record *record) {
    while (kx_next_bd(walk)) {
        if (kx_get_bd(walk->at, record) && !kx_bd_is_vxlan_segment(*record)) {
            return true;
        }
    }
    return false;
}

uint32_t kx_find_bd_by_vlan(kxdpa_opcode opcode, uint16_t vlan) {
    kx_bd_record asked{};
    asked.vlan = vlan;
    asked.vdc = KX_BD_LOOKUP_VDC;
    return find_bd(opcode, &asked);
}

uint32_t kx_find_bd_by_segment(uint32_t segment) {
    kx_bd_record asked{};
    asked.segment_id = segment;
    return find_bd(KXDPA_OP_BD_BY_SEGMENT, &asked);
}

uint32_t kx_find_bd_by_swbd(uint32_t swbd) {
    kx_bd_record asked{};
    asked.swbd = swbd;
    return find_bd(KXDPA_OP_BD_BY_SWBD, &asked);
}

int kx_find_named_bd(const char *arg, kx_named_bd *bd) {
    if (arg == nullptr) {
        kx_print("Insufficient arguments provided to the command\n");
        return -1;
    }
    strncpy_until_space(bd->name, sizeof bd->name, arg);
    kx_bd_record asked{};
    // A name that fills the field has no NUL.
    memcpy(asked.name, bd->name, strlen(bd->name));
    bd->index = find_bd(KXDPA_OP_BD_BY_NAME, &asked);
    if (bd->index == 0) {
        kx_print("No BD found with name %s \n", bd->name);
    }
    return 0;
}

int32_t kx_get_bd_port_count(uint32_t index) {
    int32_t count = -1;
    kx_dpa_get(KXDPA_OP_BD_PORT_COUNT, index, &count);
    return count;
}

void kx_print_bd_ports(uint32_t index, const uint32_t *dr_ltl) {
    uint32_t printed = 0;
    for (kx_walk walk{KX_LTL_BEFORE_FIRST}; next_bd_port(index, &walk);) {
        print_bd_port(walk.at, dr_ltl);
        if (++printed % PORTS_OF_A_GROUP == 0) {
            kx_print("\n");
        }
    }
    if (printed % PORTS_OF_A_GROUP != 0) {
        kx_print("\n");
    }
}

void kx_print_bd_count() {
    int32_t count = 0;
    if (kx_dpa_get(KXDPA_OP_BD_COUNT, 0, &count) == KXDPA_STATUS_SUCCESS) {
        kx_print("Number of valid BDS: %d\n", count);
    }
}

void kx_print_bd_list(kx_print_listed_bd *print) {
    for (kx_walk walk{0}; kx_next_bd(&walk);) {
        print(walk.at);
    }
}

int kx_print_bd_page(const kx_list_page &page, kx_print_listed_bd *print) {
    for (kx_walk walk{page.number}; kx_next_bd(&walk);) {
        if (print(walk.at)) {
            kx_end_page(walk.at);
            return 0;
        }
    }
    kx_end_table();
    return 0;
}
