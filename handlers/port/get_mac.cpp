// "show get-mac bd-name": the MAC addresses that a bridge domain announces.
#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/port/l2_record.h"
#include "handlers/port/shared/bridge_domain.h"

#include <algorithm>
#include <cstdlib>

namespace {

void print_table(const kx_get_mac_info &info) {
    const uint32_t count = std::min(info.count, KX_GET_MAC_ENTRIES);
    for (uint32_t i = 0; i < count; ++i) {
        const kx_get_mac_entry &entry = info.entries[i];
        const uint8_t *mac = entry.mac;
        kx_print("%d  %02x:%02x:%02x:%02x:%02x:%02x    %d        %u\n", entry.bd_index, mac[0],
                 mac[1], mac[2], mac[3], mac[4], mac[5], entry.sent, entry.last_sent);
    }
}

} // namespace

int kx_get_mac_table_dump(const char *arg) {
    kx_named_bd bd;
    if (kx_find_named_bd(arg, &bd) != 0) {
        return -1;
    }
    if (bd.index == 0) {
        return 0;
    }
    // Too large for the stack of a host process that runs commands on a small thread.
    auto *info = static_cast<kx_get_mac_info *>(calloc(1, sizeof(kx_get_mac_info)));
    if (info == nullptr) {
        kx_print("Error allocating get mac info struct\n");
        return -1;
    }
    kx_print("Printing get-mac for BD %s\n", bd.name);
    kx_print("BD       MAC Address     Sent flag    Last sent time\n");
    if (kx_dpa_get(KXDPA_OP_GET_MAC_TABLE, bd.index, info) == KXDPA_STATUS_SUCCESS) {
        print_table(*info);
    }
    free(info);
    return 0;
}
