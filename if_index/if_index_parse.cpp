#include "if_index/if_index_parse.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "if_index/if_index.h"
#include "if_index/if_index_platform.h"
#include "infra/utils/kxstrings.h"

#define KEYWORD_TEXT(name, text, least, most) text,
const char *const INTERFACE_TYPE_TABLE_PREFIXinterface_type_names[IF_KEYWORD_COUNT] = {
    IF_KEYWORDS(KEYWORD_TEXT)};

namespace {

struct number_counts {
    int least;
    int most;
};

} // namespace

#define KEYWORD_COUNTS(name, text, least, most) {least, most},
static constexpr number_counts keyword_counts[IF_KEYWORD_COUNT] = {IF_KEYWORDS(KEYWORD_COUNTS)};

int if_db_str2ifindex_wrapper(const char *, uint32_t *) {
    return IF_INDEX_NO_DATABASE;
}

// The VDC that VLAN interfaces belong to.
static uint32_t vdc_of_environment() {
    const char *text = getenv("SYSMGR_VDC_ID");
    return text != nullptr ? (uint32_t)strtoul(text, nullptr, 10) : 0;
}

int vsh_interface_coordinates_to_ifindex(uint32_t keyword, const uint32_t *numbers, int count,
                                         uint32_t *if_index) {
    const uint32_t vdc = vdc_of_environment();
    if (keyword >= IF_KEYWORD_COUNT) {
        return 0;
    }
    // Deliberate: keywords are told apart by six bits, so 65 and above come round to 1.
    keyword = ((keyword - 1) & 63) + 1;
    const number_counts counts = keyword_counts[keyword];
    if (numbers == nullptr || count < counts.least || count > counts.most) {
        return 0;
    }

    uint32_t n[IF_NAME_MAX_NUMBERS] = {}; // sub-interfaces that are not given are 0
    for (int i = 0; i < count; i++) {
        n[i] = numbers[i];
    }
    char database_name[32];
    switch (keyword) {
    case IF_KEYWORD_FC:
        if_index_phy_fc_port_cli_init(if_index, n[0], n[1], n[2]);
        return 1;
    case IF_KEYWORD_GIGABITETHERNET:
        if_index_phy_eth_port_cli_init(if_index, n[0], n[1], 0, n[2]);
        return 1;
    case IF_KEYWORD_VSAN:
        if_index_vsan_port_cli_init(if_index, IF_VSAN_SLOT, 0, n[0]);
        return 1;
    case IF_KEYWORD_CPP:
        if_index_vsan_port_cli_init(if_index, n[0], n[1], n[2]);
        return 1;
    case IF_KEYWORD_ISCSI:
        if_index_iscsi_port_cli_init(if_index, n[0], n[1]);
        return 1;
    case IF_KEYWORD_PORT_CHANNEL:
    case IF_KEYWORD_SAN_PORT_CHANNEL:
        if_index_port_channel_cli_init(if_index, n[0], n[1]);
        return 1;
    case IF_KEYWORD_FCIP:
        if_index_fcip_port_cli_init(if_index, n[0]);
        return 1;
    case IF_KEYWORD_MGMT:
    case IF_KEYWORD_SUP_FC:
        if_index_mgmt_sup_port_cli_init(if_index, n[0], n[1]);
        return 1;
    case IF_KEYWORD_FV:
        if_index_fv_port_cli_init(if_index, n[0], n[1], n[2]);
        return 1;
    case IF_KEYWORD_FA:
        if_index_faport_cli_init(if_index, n[0], n[1]);
        return 1;
    case IF_KEYWORD_SVC:
        if_index_avanti_port_cli_init(if_index, n[0], n[1]);
        return 1;
    case IF_KEYWORD_FC_TUNNEL:
        if_index_fcmpls_tnnl_cli_init(if_index, n[0]);
        return 1;
    case IF_KEYWORD_IPC: // as its name shows it: sub-type, channel, sub-interface
        if_index_port_channel_cli_init_internal(if_index, n[1], n[0], n[2]);
        return 1;
    case IF_KEYWORD_LOOPBACK:
        if_index_loopback_port_cli_init(if_index, n[0]);
        return 1;
    case IF_KEYWORD_VLAN:
        if_index_vlan_port_cli_init(if_index, vdc, n[0]);
        return 1;
    case IF_KEYWORD_SME:
        if_index_sme_port_cli_init(if_index, n[0], n[1]);
        return 1;
    case IF_KEYWORD_BAY:
        snprintf(database_name, sizeof database_name, "bay%d", (int)n[0]);
        return if_db_str2ifindex_wrapper(database_name, if_index) == IF_INDEX_OK;
    case IF_KEYWORD_EXT:
        snprintf(database_name, sizeof database_name, "ext%d", (int)n[0]);
        return if_db_str2ifindex_wrapper(database_name, if_index) == IF_INDEX_OK;
    case IF_KEYWORD_ETHERNET_PORT_CHANNEL:
        if_index_eth_port_channel_cli_init(if_index, n[0], n[1]);
        return 1;
    case IF_KEYWORD_TUNNEL:
        if_index_tunnel_cli_init(if_index, 0, n[0]);
        return 1;
    case IF_KEYWORD_ETHERNET:
        if (cli_platform_is_control_eobc()) {
            if_index_hmx_eth_cli_init(if_index, n[0], n[1], n[2]);
        } else {
            if_index_phy_ethernet_cli_init(if_index, n[0], n[1], n[2]);
        }
        return 1;
    case IF_KEYWORD_VETHERNET: // never found in a name, see find_keyword
        if_index_ether_sif_cli_init(if_index, n[0], n[1]);
        return 1;
    case IF_KEYWORD_VFC:
        if (count == 1) {
            if_index_vfc_cli_init(if_index, n[0]);
        } else if (count == 2) {
            if_index_vfc_slot_port_cli_init(if_index, n[0], n[1]);
        } else {
            if_index_vfc_fex_cli_init(if_index, n[0], n[1], n[2]);
        }
        return 1;
    case IF_KEYWORD_REMOTE_ETHERNET:
        if_index_sat_phy_eth_port_cli_init(if_index, n[0], n[1], n[2], 0);
        return 1;
    case IF_KEYWORD_IOA:
        if_index_ioa_port_cli_init(if_index, n[0], n[1]);
        return 1;
    case IF_KEYWORD_OVERLAY:
        if_index_overlay_cli_init(if_index, IF_OVERLAY_OVERLAY, n[0]);
        return 1;
    case IF_KEYWORD_TUNNEL_TE:
        if_index_overlay_cli_init(if_index, IF_OVERLAY_TE_TUNNEL, n[0]);
        return 1;
    case IF_KEYWORD_MTI:
        if_index_overlay_cli_init(if_index, IF_OVERLAY_MTI, n[0]);
        return 1;
    case IF_KEYWORD_LVETH:
        if_index_lveth_cli_init(if_index, n[0], n[1], n[2]);
        return 1;
    case IF_KEYWORD_VETH:
        if_index_veth_cli_init(if_index, n[0], n[1]);
        return 1;
    case IF_KEYWORD_HMX_ETHERNET:
        if_index_hmx_eth_cli_init(if_index, n[0], n[1], n[2]);
        return 1;
    case IF_KEYWORD_CONTROL:
        if_index_eobc_port_cli_init(if_index, n[0]);
        return 1;
    case IF_KEYWORD_VFC_VETH:
        if_index_vfc_veth_cli_init(if_index, n[0]);
        return 1;
    case IF_KEYWORD_VFC_PORT_CHANNEL:
        if_index_vfc_port_channel_cli_init(if_index, n[0]);
        return 1;
    default:
        return 0;
    }
}

// The number of the first keyword that the text begins with, or IF_KEYWORD_COUNT.
static uint32_t find_keyword(const char *text) {
    for (uint32_t keyword = 0; keyword < IF_KEYWORD_COUNT; keyword++) {
        // Deliberate: "vethernet" is left to "veth" further down, which skips the other letters.
        if (keyword == IF_KEYWORD_VETHERNET) {
            continue;
        }
        const char *name = INTERFACE_TYPE_TABLE_PREFIXinterface_type_names[keyword];
        if (kx_strncasecmp(text, name, strlen(name)) == 0) {
            return keyword;
        }
    }
    return IF_KEYWORD_COUNT;
}

static bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

static const char *skip_digits(const char *text) {
    while (is_digit(*text)) {
        text++;
    }
    return text;
}

static const char *skip_to_digit(const char *text) {
    while (*text != '\0' && !is_digit(*text)) {
        text++;
    }
    return text;
}

int vsh_interface_name_to_ifindex(const char *text, uint32_t *if_index) {
    if (text == nullptr || if_index == nullptr) {
        return 0;
    }
    text += strspn(text, " ");
    if (kx_strncasecmp(text, "null0", sizeof "null0") == 0) {
        *if_index = if_index_get_null_interface();
        return 1;
    }
    const uint32_t keyword = find_keyword(text);
    if (keyword == IF_KEYWORD_COUNT) {
        return 0;
    }

    uint32_t numbers[IF_NAME_MAX_NUMBERS] = {};
    int count = 0;
    text = skip_to_digit(text + strlen(INTERFACE_TYPE_TABLE_PREFIXinterface_type_names[keyword]));
    while (*text != '\0') {
        if (count == IF_NAME_MAX_NUMBERS) {
            return 0;
        }
        // Too large a number becomes the largest one, which is out of every range.
        numbers[count++] = (uint32_t)strtol(text, nullptr, 10);
        text = skip_to_digit(skip_digits(text));
        if (text[-1] == ',' || text[-1] == '-') {
            break;
        }
    }
    return vsh_interface_coordinates_to_ifindex(keyword, numbers, count, if_index);
}
