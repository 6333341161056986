#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/output_sink.h"
#include "handlers/lacp/lacp.h"
#include "infra/utils/kxstrings.h"

namespace {

const char *port_state_text(uint32_t state) {
    static const char *const NAMES[] = {
        "Initialized", "Undefined", "Channeling",  "Individual",
        "Failed",      "Suspended", "Hot standby",
    };
    return state < sizeof NAMES / sizeof NAMES[0] ? NAMES[state] : "Undefined";
}

const char *channel_mode_text(uint32_t mode) {
    switch (mode) {
    case KX_LACP_ACTIVE:
        return "Active";
    case KX_LACP_PASSIVE:
        return "Passive";
    default:
        return "Invalid";
    }
}

const char *yes_or_no(uint32_t flag) {
    return flag != 0 ? "Yes" : "No";
}

bool is_offloaded() {
    uint32_t offload = 0;
    return kx_dpa_get(KXDPA_OP_LACP_OFFLOAD, 0, &offload) == KXDPA_STATUS_SUCCESS &&
           offload == KX_LACP_OFFLOAD_ENABLED;
}

// Deliberate: the status does not count. What the driver does not write is 0.
uint32_t get_or_zero(kxdpa_opcode opcode, uint32_t ltl) {
    uint32_t value = 0;
    kx_dpa_get(opcode, ltl, &value);
    return value;
}

void print_dash_line() {
    kx_print("---------------------------------------------------\n");
}

void show_offload_view(uint32_t ltl) {
    const uint32_t bit = get_or_zero(KXDPA_OP_LACP_BIT, ltl);
    const uint32_t port_state = get_or_zero(KXDPA_OP_LACP_PORT_STATE, ltl);
    kx_print("\n");
    print_dash_line();
    kx_print("LACP Offload Config for LTL %d\n", ltl);
    print_dash_line();
    kx_print("LACP Bit Set    : %s\n", yes_or_no(bit));
    kx_print("LACP Port state : %s\n", port_state_text(port_state));
}

void show_pdu_cache(uint32_t ltl) {
    kx_lacp_pdu_cache cache{};
    uint32_t upgrade_notify = 0;
    if (kx_dpa_get(KXDPA_OP_LACP_PDU_CACHE, ltl, &cache) != KXDPA_STATUS_SUCCESS ||
        kx_dpa_get(KXDPA_OP_LACP_UPGRADE_NOTIFY, ltl, &upgrade_notify) != KXDPA_STATUS_SUCCESS) {
        return;
    }
    const uint32_t bit = get_or_zero(KXDPA_OP_LACP_BIT, ltl);
    kx_print("\n");
    print_dash_line();
    kx_print("LACP PDU Cache for LTL %d\n", ltl);
    print_dash_line();
    kx_print("Upgrade Notify is %s\n", upgrade_notify != 0 ? "Enabled" : "Disabled");
    // Deliberately not aligned as in the offload view.
    kx_print("LACP Bit Set : %s\n", yes_or_no(bit));
    kx_print("KRT Actor Info\n");
    kx_print("--------------\n");
    kx_show_lacp_internal(cache.krt_actor);
    kx_print("KRT Partner Info\n");
    kx_print("----------------\n");
    kx_show_lacp_internal(cache.krt_partner);
    kx_print("Upstream Actor Info\n");
    kx_print("-------------------\n");
    kx_show_lacp_internal(cache.upstream_actor);
    kx_print("Upstream Partner Info\n");
    kx_print("---------------------\n");
    kx_show_lacp_internal(cache.upstream_partner);
}

void print_carriers(const kx_lacp_carriers &carriers) {
    kx_print("Phy LTL List : ");
    bool first = true;
    for (const uint32_t ltl : carriers.physical_ltls) {
        if (ltl < KX_LACP_FIRST_LTL || ltl > KX_LACP_LAST_LTL) {
            continue;
        }
        if (first) {
            kx_print("%d", ltl);
        } else {
            kx_print(", %d", ltl);
        }
        first = false;
    }
    kx_print("\n");
    kx_print("PC LTL in LACP Carrier List : %d\n", carriers.port_channel_ltl);
}

} // namespace

void kx_show_lacp_offload_state() {
    if (is_offloaded()) {
        kx_print("LACP Offload is Enabled\n");
        return;
    }
    kx_print("LACP Offload is Disabled\n");
    kx_lacp_carriers carriers{};
    if (kx_dpa_get(KXDPA_OP_LACP_CARRIERS, 0, &carriers) != KXDPA_STATUS_SUCCESS) {
        kx_print("No LACP Carrier Information\n");
        return;
    }
    print_carriers(carriers);
}

int kx_show_lacp_ltl(uint32_t ltl) {
    if (is_offloaded()) {
        show_offload_view(ltl);
    } else {
        show_pdu_cache(ltl);
    }
    return 0;
}

void kx_show_lacp_internal(const kx_lacp_partner &partner) {
    char mac[KX_MAC_TEXT_SIZE];
    snprintf_mac_address(mac, sizeof mac, partner.system_mac);
    kx_print("%10s : Sys Pri(%d), Sys MAC(%s)\n", "Sys ID", partner.system_priority, mac);
    kx_print("%10s : Key(%d), Port Num(0x%x), Port Pri(%d)\n", "Port ID", partner.key,
             partner.port_number, partner.port_priority);
    kx_print("%10s : %x\n", "State", partner.state & 0xFF);
}

int kx_show_lacp_ltl_hostdata(uint32_t ltl) {
    kx_lacp_host_data data{};
    if (kx_dpa_get(KXDPA_OP_LACP_HOST_DATA, ltl, &data) != KXDPA_STATUS_SUCCESS) {
        return 0;
    }
    if (data.channel_index == KX_LACP_NO_HOST_DATA) {
        kx_print("\nNo LACP hostdata for LTL %d\n", ltl);
        return 0;
    }
    kx_print("\n");
    print_dash_line();
    kx_print("LACP Hostdata for LTL %d\n", ltl);
    print_dash_line();
    kx_print("Channel Index   : %d\n", data.channel_index);
    kx_print("Channel Mode    : %s\n", channel_mode_text(data.channel_mode));
    kx_print("Port Priority   : 0x%x\n", data.port_priority);
    return 0;
}
