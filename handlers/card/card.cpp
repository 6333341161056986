// "show card": one request, one line, down the whole list. A line whose request fails is left out.
#include "dpa/command/management_ip.h"
#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/card/card_record.h"
#include "handlers/leaf_mode.h"
#include "infra/utils/kxstrings.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

constexpr uint32_t TEXT_SIZE = 300;

// The buffer and the one capacity word that all string requests share. Each request leaves the
// length of its reply in the word; the next request passes that, unless the word is set again.
struct shared_text {
    union {
        char text[TEXT_SIZE];
        kx_card_uuid uuid;
    };
    uint32_t capacity;
};

struct mac_text {
    char text[KX_MAC_TEXT_SIZE];
};

struct ipv6_address {
    uint8_t bytes[16];
};

bool ask_text(kxdpa_opcode opcode, shared_text *reply) {
    memset(reply->text, 0, TEXT_SIZE);
    reply->capacity = std::min(reply->capacity, TEXT_SIZE);
    return kx_dpa_get_variable(opcode, 0, reply->text, &reply->capacity) == KXDPA_STATUS_SUCCESS;
}

// A number of the size of `value`, which is 0 when the driver does not write it.
template <typename Number> bool ask(kxdpa_opcode opcode, uint32_t arg, Number *value) {
    *value = {};
    return kx_dpa_get(opcode, arg, value) == KXDPA_STATUS_SUCCESS;
}

// The same for the requests that also send the buffer.
template <typename Number> bool ask_with_input(kxdpa_opcode opcode, Number *value) {
    *value = {};
    return kx_dpa_exchange(opcode, 0, value) == KXDPA_STATUS_SUCCESS;
}

bool ask_mac(kxdpa_opcode opcode, uint32_t arg, mac_text *mac) {
    kx_card_mac reply;
    if (!ask(opcode, arg, &reply)) {
        return false;
    }
    snprintf_mac_address(mac->text, sizeof mac->text, reply.mac);
    return true;
}

const char *load_balancing_text(uint32_t algorithm) {
    return algorithm < std::size(KX_LOAD_BALANCING) ? KX_LOAD_BALANCING[algorithm]
                                                    : KX_LOAD_BALANCING[0];
}

void print_names() {
    shared_text reply;
    reply.capacity = KX_CARD_UUID_CAPACITY;
    if (ask_text(KXDPA_OP_CARD_UUID, &reply)) {
        kx_print("Card UUID type %2d: %.*s\n", static_cast<int>(reply.uuid.type),
                 static_cast<int>(sizeof reply.uuid.text), reply.uuid.text);
    }
    reply.capacity = KX_CARD_NAME_CAPACITY;
    if (ask_text(KXDPA_OP_CARD_NAME, &reply)) {
        kx_print("Card name: %.*s\n", static_cast<int>(TEXT_SIZE), reply.text);
    }
    // Deliberately with the capacity that the previous request left.
    if (ask_text(KXDPA_OP_SWITCH_NAME, &reply)) {
        kx_print("Switch name: %.*s\n", static_cast<int>(TEXT_SIZE), reply.text);
    }
    if (ask_text(KXDPA_OP_SWITCH_ALIAS, &reply)) {
        kx_print("Switch alias: %.*s\n", static_cast<int>(TEXT_SIZE), reply.text);
    }
    reply.capacity = KX_CARD_UUID_CAPACITY;
    if (ask_text(KXDPA_OP_SWITCH_UUID, &reply)) {
        kx_print("Switch uuid: %.*s\n", static_cast<int>(TEXT_SIZE), reply.text);
    }
}

void print_place() {
    int32_t number;
    if (ask(KXDPA_OP_CARD_DOMAIN, 0, &number)) {
        kx_print("Card domain: %d\n", number);
    }
    if (ask(KXDPA_OP_CARD_SLOT, 0, &number)) {
        kx_print("Card slot: %d\n", number);
    }
}

void print_tunnel_mode() {
    uint32_t mode;
    if (!ask(KXDPA_OP_TUNNEL_MODE, 0, &mode)) {
        return;
    }
    kx_print("HMX Tunnel Mode: %s\n", mode == KX_TUNNEL_MODE_L3 ? "L3 Mode" : "L2 Mode");
    if (mode != KX_TUNNEL_MODE_L3) {
        return;
    }
    uint32_t index;
    if (ask(KXDPA_OP_L3_CONTROL_INDEX, 0, &index)) {
        kx_print("L3 Ctrl Index: %d\n", static_cast<int>(index));
    }
    int32_t vlan;
    if (ask(KXDPA_OP_L3_CONTROL_VLAN, index | KX_L3_CONTROL_CLASS, &vlan)) {
        kx_print("L3 Ctrl VLAN: %d\n", vlan);
    }
}

void print_macs() {
    mac_text mac;
    if (ask_mac(KXDPA_OP_CARD_MAC, KX_CARD_MAC_CONTROL, &mac)) {
        kx_print("HMX Control (AIPC) MAC: %s\n", mac.text);
    }
    if (ask_mac(KXDPA_OP_CARD_MAC, KX_CARD_MAC_PACKET, &mac)) {
        kx_print("HMX Packet (Inband) MAC: %s\n", mac.text);
    }
    if (ask_mac(KXDPA_OP_AGENT_MAC, 0, &mac)) {
        kx_print("HMX Control Agent (DPA) MAC: %s\n", mac.text);
    }
    if (ask_mac(KXDPA_OP_CARD_MAC, KX_CARD_MAC_SPAN, &mac)) {
        kx_print("HMX SPAN MAC: %s\n", mac.text);
    }
    if (ask_mac(KXDPA_OP_PRIMARY_KRT_MAC, 0, &mac)) {
        kx_print("Primary KRT MAC : %s\n", mac.text);
    }
    if (ask_mac(KXDPA_OP_PRIMARY_KRT_PACKET_MAC, 0, &mac)) {
        kx_print("Primary KRT PKT MAC : %s\n", mac.text);
    }
    if (ask_mac(KXDPA_OP_PRIMARY_KRT_MANAGEMENT_MAC, 0, &mac)) {
        kx_print("Primary KRT MGMT MAC : %s\n", mac.text);
    }
    if (ask_mac(KXDPA_OP_STANDBY_KRT_CONTROL_MAC, 0, &mac)) {
        kx_print("Standby KRT CTRL MAC : %s\n", mac.text);
    }
}

void print_addresses() {
    char text[sizeof "0000:0000:0000:0000:0000:0000:0000:0000"];
    uint32_t ipv4 = 0;
    // The host's own address: shown, and sent to the DPA, whatever the DPA answers.
    if (kx_dpa_platform_get_management_ip(&ipv4) == 0) {
        snprintf_ip_address(text, sizeof text, ipv4);
        kx_print("Management IPv4 address: %s\n", text);
    }
    ipv6_address ipv6;
    if (ask(KXDPA_OP_MANAGEMENT_IPV6, 0, &ipv6)) {
        snprintf_ipv6_address(text, sizeof text, ipv6.bytes);
        kx_print("Management IPv6 address: %s\n", text);
    }
    if (ask(KXDPA_OP_L3_CONTROL_IPV4, 0, &ipv4)) {
        snprintf_ip_address(text, sizeof text, ipv4);
        kx_print("Primary L3 Control IPv4 address: %s\n", text);
    }
    mac_text mac;
    if (ask_mac(KXDPA_OP_SECONDARY_KRT_MAC, 0, &mac)) {
        kx_print("Secondary KRT MAC : %s\n", mac.text);
    }
}

void print_limits() {
    uint32_t state;
    if (ask(KXDPA_OP_UPGRADE_STATE, 0, &state)) {
        kx_print("Upgrade : %s\n", get_upgrade_str(state));
    }
    int32_t number;
    if (ask(KXDPA_OP_MAX_PORTS, KX_CARD_PHYSICAL_PORTS, &number)) {
        kx_print("Max physical ports: %d\n", number);
    }
    if (ask(KXDPA_OP_MAX_PORTS, KX_CARD_VIRTUAL_PORTS, &number)) {
        kx_print("Max virtual ports: %d\n", number);
    }
    if (ask(KXDPA_OP_CONTROL_VLAN, 0, &number)) {
        kx_print("Card control VLAN: %d\n", number);
    }
    if (ask(KXDPA_OP_PACKET_VLAN, 0, &number)) {
        kx_print("Card packet VLAN: %d\n", number);
    }
}

void print_health() {
    uint8_t multicast;
    if (ask(KXDPA_OP_CONTROL_MULTICAST, 0, &multicast)) {
        kx_print("Control type multicast: %s\n", multicast != 0 ? "Yes" : "No");
    }
    uint32_t state;
    // Deliberately inverted: without a heartbeat the card is headless.
    if (ask(KXDPA_OP_HEARTBEAT, 0, &state)) {
        kx_print("Card Headless Mode : %s\n", state == 0 ? "Yes" : "No");
    }
    if (ask(KXDPA_OP_AGENT_STATUS, 0, &state)) {
        kx_print("DPA Status : %s\n", state != 0 ? "Up" : "Down");
    }
}

void print_processors() {
    kx_card_processors host;
    if (!ask(KXDPA_OP_PROCESSORS, 0, &host)) {
        return;
    }
    kx_print("       Processors: %d\n", host.processors);
    kx_print("  Processor Cores: %d\n", host.cores);
    kx_print("Processor Sockets: %d\n", host.sockets);
    kx_print("  Kernel Memory:   %llu\n", host.kernel_memory);
}

void print_forwarding() {
    int32_t seconds;
    if (ask(KXDPA_OP_LINK_UP_DELAY, 0, &seconds)) {
        kx_print("Port link-up delay: %ds\n", seconds);
    }
    uint32_t state;
    if (ask_with_input(KXDPA_OP_GLOBAL_UUFB, &state)) {
        kx_print("Global UUFB: %s\n", state != 0 ? "ENABLED" : "DISABLED");
    }
    // Deliberately asked a second time, and true for exactly 1 only.
    if (ask(KXDPA_OP_HEARTBEAT, 0, &state)) {
        kx_print("Heartbeat Set: %s\n", state == 1 ? "True" : "False");
    }
    uint32_t algorithm;
    if (ask(KXDPA_OP_LOAD_BALANCING, 0, &algorithm)) {
        kx_trace(kx_debug_print_kxdump, KX_DEBUG_TRACE, "PC LB Algo: %u\n", algorithm);
        kx_print("PC LB Algo: %s\n", load_balancing_text(algorithm));
    }
    if (ask_with_input(KXDPA_OP_PORTSET_EVENT, &state)) {
        kx_print("Datapath portset event in progress : %s\n", state != 0 ? "yes" : "no");
    }
    uint8_t enabled;
    if (ask_with_input(KXDPA_OP_GLOBAL_BPDU_GUARD, &enabled)) {
        kx_print("Global BPDU Guard: %s\n", enabled != 0 ? "Enabled" : "Disabled");
    }
    if (kx_hmx_is_leaf_mode() && ask_with_input(KXDPA_OP_GLOBAL_BPDU_FILTER, &enabled)) {
        kx_print("Global BPDU Filter: %s\n", enabled != 0 ? "Enabled" : "Disabled");
    }
    if (ask(KXDPA_OP_DATAPATH_INITIALIZED, 0, &enabled)) {
        kx_print("DP Initialized: %s\n", enabled != 0 ? "Yes" : "No");
    }
    if (ask(KXDPA_OP_TAG_NATIVE_VLAN, 0, &state)) {
        kx_print("Tag Native VLAN: %s\n", state != 0 ? "Yes" : "No");
    }
    if (ask(KXDPA_OP_L3SEC_MODE, 0, &state)) {
        kx_print("L3Sec Mode: %s\n", state != 0 ? "TRUE" : "FALSE");
    }
}

} // namespace

int kx_card_dump(const char *) {
    uint32_t answer;
    if (!ask(KXDPA_OP_CARD_API, 0, &answer)) {
        kx_print("kx_card_dmp: card API is not working\n");
        return 0;
    }
    print_names();
    print_place();
    print_tunnel_mode();
    print_macs();
    print_addresses();
    print_limits();
    print_health();
    print_processors();
    print_forwarding();
    return 0;
}
