// "show vlan": the VLANs, each with its bridge domain.
#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/paging.h"
#include "handlers/port/bd.h"
#include "infra/utils/kxstrings.h"

namespace {

// Step to the next VLAN that exists; start from 0. False at the end of the walk, also when the
// driver answers VLAN 0.
bool next_vlan(kx_walk *walk) {
    uint32_t vlan = walk->at;
    return kx_may_ask(walk) &&
           kx_dpa_get(KXDPA_OP_NEXT_VLAN, vlan, &vlan) == KXDPA_STATUS_SUCCESS && vlan != 0 &&
           kx_go_to(walk, vlan);
}

int print_given_vlan(uint32_t vlan) {
    if (kx_check_vlan(vlan)) {
        kx_bd_vlan_dump(vlan, KX_BD_BY_VLAN);
    }
    return 0;
}

} // namespace

int kx_vlan_list_dump(const char *arg) {
    if (kx_is_agent_driven()) {
        return kx_vlan_fromdpa_list_dump(arg);
    }
    if (arg != nullptr) {
        return print_given_vlan(kx_parse_number(arg));
    }
    int32_t count = 0;
    if (kx_dpa_get(KXDPA_OP_VLAN_COUNT, 0, &count) == KXDPA_STATUS_SUCCESS) {
        kx_print("Number of valid VLANs: %d\n", count);
    }
    for (kx_walk walk{0}; next_vlan(&walk);) {
        kx_bd_vlan_dump(walk.at, KX_BD_BY_VLAN);
    }
    return 0;
}

int kx_vlan_fromdpa_list_dump(const char *arg) {
    kx_list_page page;
    if (kx_read_list_page(arg, &page) != 0) {
        return -1;
    }
    if (page.is_key) {
        kx_end_table();
        return print_given_vlan(page.number);
    }
    if (!kx_check_vlan(page.number)) {
        return 0;
    }
    kx_walk walk{page.number};
    if (!next_vlan(&walk)) {
        kx_end_table();
        return 0;
    }
    kx_bd_vlan_dump(walk.at, KX_BD_BY_VLAN);
    kx_end_page(walk.at);
    return 0;
}
