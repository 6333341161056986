#include "dpa/command/management_ip.h"

#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/output_sink.h"
#include "infra/utils/kxstrings.h"

#include <arpa/inet.h>
#include <cstdio>
#include <cstring>

namespace {

constexpr const char *ADDRESS_COMMAND =
    "esxcfg-advcfg -g /Misc/HostIPAddr | awk '{ print $NF }' >&1 ";

} // namespace

void kx_dpa_platform_read_management_ip(char (&address)[KX_MANAGEMENT_IP_SIZE]) {
    address[0] = '\0';
    // The text is the host's own; nothing of it comes from the command line.
    FILE *output = popen(ADDRESS_COMMAND, "r");
    if (output == nullptr) {
        return;
    }
    while (fgets(address, sizeof address, output) != nullptr) {
        kx_trace(kx_debug_print_dpa_platform, KX_DEBUG_TRACE, "value of %s ", address);
    }
    pclose(output);
    const size_t length = strlen(address);
    if (length > 0) {
        address[length - 1] = '\0';
    }
}

uint32_t kx_dpa_platform_get_management_ip(uint32_t *out) {
    if (out == nullptr) {
        return 1;
    }
    char text[KX_MANAGEMENT_IP_SIZE];
    kx_dpa_platform_read_management_ip(text);
    const uint32_t address = htonl(conv_ip_address(text));
    kx_dpa_set(KXDPA_OP_SET_MANAGEMENT_IPV4, 0, &address);
    *out = address;
    return 0;
}

uint32_t conv_ip_address(char *text) {
    if (text == nullptr) {
        return 0;
    }
    uint32_t value = 0;
    char *rest = nullptr;
    for (const char *part = strtok_r(text, ".", &rest); part != nullptr;
         part = strtok_r(nullptr, ".", &rest)) {
        value = value * 256 + kx_parse_number(part);
    }
    return value;
}

void kxdpa_set_thread_name() {
}
