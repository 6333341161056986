// "card ...": the card's identity and management addresses. Nothing reports a refused setting; only
// the traces show what was set.
#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/card/card_record.h"
#include "infra/utils/kxstrings.h"

namespace {

struct ipv6_address {
    uint8_t bytes[16];
};

void trace_ipv6(const ipv6_address &address) {
    char text[sizeof "0000:0000:0000:0000:0000:0000:0000:0000"];
    snprintf_ipv6_address(text, sizeof text, address.bytes);
    kx_trace(kx_debug_print_hmx_cmds, KX_DEBUG_TRACE, "card ip v6 %s\n", text);
}

} // namespace

int kestrel_cmd_card_uuid_vmware(const char *arg) {
    if (arg == nullptr) {
        return 0;
    }
    if (kx_dpa_set_text(KXDPA_OP_SET_CARD_UUID, KX_CARD_UUID_VMWARE, arg, KX_CARD_UUID_CAPACITY) ==
        KXDPA_STATUS_SUCCESS) {
        kx_trace(kx_debug_print_hmx_cmds, KX_DEBUG_DETAIL, "Set card uuid %s\n", arg);
    }
    return 0;
}

int kestrel_cmd_card_name(const char *arg) {
    if (arg == nullptr) {
        return 0;
    }
    if (kx_dpa_set_text(KXDPA_OP_SET_CARD_NAME, 0, arg, KX_CARD_NAME_CAPACITY) ==
        KXDPA_STATUS_SUCCESS) {
        kx_trace(kx_debug_print_hmx_cmds, KX_DEBUG_DETAIL, "Set card name %s\n", arg);
    }
    return 0;
}

int kestrel_cmd_card_ip(const char *arg) {
    if (arg == nullptr) {
        return 0;
    }
    uint32_t address = 0;
    if (kx_parse_ip_address(&address, arg) != 0) {
        kx_print_stamped("card ip (%s) parsing failed\n", arg);
        return 0;
    }
    kx_trace(kx_debug_print_hmx_cmds, KX_DEBUG_TRACE, "card ip %u\n", address);
    if (kx_dpa_set(KXDPA_OP_SET_MANAGEMENT_IPV4, 0, &address) == KXDPA_STATUS_SUCCESS) {
        kx_trace(kx_debug_print_hmx_cmds, KX_DEBUG_TRACE, "Set card ip %08x\n", address);
    }
    return 0;
}

int kestrel_cmd_card_ipv6(const char *arg) {
    if (arg == nullptr) {
        return 0;
    }
    ipv6_address address{};
    if (kx_parse_ipv6_address(address.bytes, arg) != 0) {
        kx_print_stamped("card ipv6 (%s) parsing failed\n", arg);
        return 0;
    }
    trace_ipv6(address);
    if (kx_dpa_set(KXDPA_OP_SET_MANAGEMENT_IPV6, 0, &address) == KXDPA_STATUS_SUCCESS) {
        trace_ipv6(address);
    }
    return 0;
}

int kestrel_cmd_upd_level(const char *arg) {
    if (arg == nullptr) {
        kx_print_stamped("Card ESX Update Level (%s) parsing failed\n", "NULL");
        return 0;
    }
    // Deliberately without a range check: 256 is sent as 0.
    const auto level = static_cast<uint8_t>(kx_parse_number(arg));
    if (kx_dpa_set(KXDPA_OP_SET_UPDATE_LEVEL, 0, &level) == KXDPA_STATUS_SUCCESS) {
        kx_trace(kx_debug_print_hmx_cmds, KX_DEBUG_TRACE, "Set ESX update level :%d \n", level);
    }
    return 0;
}
