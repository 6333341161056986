// "show dr": bridge domains with their designated receiver.
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/paging.h"
#include "handlers/port/bd.h"
#include "infra/utils/kxstrings.h"

namespace {

bool print_listed_dr(uint32_t index) {
    kx_bd_dump_dr(index);
    return true;
}

int print_given_dr(uint32_t vlan) {
    if (vlan == 0 || vlan > KX_LAST_VLAN) {
        kx_print("vlan %u is out of range \n", vlan);
        return -1;
    }
    const uint32_t index = kx_find_bd_by_swbd(vlan);
    if (index != 0) {
        kx_bd_dump_dr(index);
    }
    return 0;
}

} // namespace

void kx_bd_dump_dr(uint32_t index) {
    kx_bd_record bd;
    if (!kx_get_bd(index, &bd)) {
        return;
    }
    const int32_t port_count = kx_get_bd_port_count(index);
    kx_print("BD %d, vdc %d, vlan %d, %d ports, DR %d, multi_uplinks %s\n", index, bd.vdc, bd.vlan,
             port_count, bd.dr_ltl, bd.multi_uplinks != 0 ? "TRUE" : "FALSE");
    kx_print("Portlist:\n");
    kx_print_bd_ports(index, &bd.dr_ltl);
}

int kx_bd_table_dump_dr(const char *arg) {
    if (kx_is_agent_driven()) {
        return kx_bd_fromdpa_table_dump_dr(arg);
    }
    if (arg != nullptr) {
        return print_given_dr(kx_parse_number(arg));
    }
    kx_print_bd_count();
    kx_print_bd_list(print_listed_dr);
    return 0;
}

int kx_bd_fromdpa_table_dump_dr(const char *arg) {
    kx_list_page page;
    if (kx_read_list_page(arg, &page) != 0) {
        return -1;
    }
    if (page.is_key) {
        kx_end_table();
        return print_given_dr(page.number);
    }
    return kx_print_bd_page(page, print_listed_dr);
}
