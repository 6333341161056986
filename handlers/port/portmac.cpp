// "show portmac": the MAC address of each port.
#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/paging.h"
#include "handlers/port/shared/port.h"

int kx_port_table_mac_dump(const char * /*arg*/) {
    kx_print("  LTL     Mac Address\n");
    for (kx_walk walk{KX_LTL_BEFORE_FIRST}; kx_next_ltl(&walk);) {
        uint8_t mac[6] = {};
        uint32_t capacity = sizeof mac;
        if (kx_dpa_get_variable(KXDPA_OP_PORT_MAC, walk.at, mac, &capacity) ==
            KXDPA_STATUS_SUCCESS) {
            kx_print("%5d     %2.2x:%2.2x:%2.2x:%2.2x:%2.2x:%2.2x\n", static_cast<int>(walk.at),
                     mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
        }
    }
    kx_end_table();
    return 0;
}
