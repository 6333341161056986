#include "if_index/if_index_parse.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "if_index/if_index.h"
#include "if_index/if_index_platform.h"
#include "infra/utils/kxstrings.h"

#define KEYWORD_TEXT(name, text) text,
const char *const INTERFACE_TYPE_TABLE_PREFIXinterface_type_names[IF_KEYWORD_COUNT] = {
    IF_KEYWORDS(KEYWORD_TEXT)};

int if_db_str2ifindex_wrapper(const char *, uint32_t *) {
    return IF_INDEX_NO_DATABASE;
}

namespace {

constexpr int MOST_NUMBERS = 3; // that any keyword takes

// Builds the index of a keyword from its numbers; a sub-interface that is not given is 0. Returns
// the constructor's status.
using name_builder = int (*)(uint32_t *if_index, const uint32_t *n);

// The least and most numbers of a keyword: those of its name, and one more for a sub-interface.
struct keyword_rule {
    uint8_t keyword;
    int8_t least;
    int8_t most;
    name_builder build;
};

// The numbers in the order in which the constructor takes them.
template <int (*INIT)(uint32_t *, uint32_t)> int build(uint32_t *if_index, const uint32_t *n) {
    return INIT(if_index, n[0]);
}

template <int (*INIT)(uint32_t *, uint32_t, uint32_t)>
int build(uint32_t *if_index, const uint32_t *n) {
    return INIT(if_index, n[0], n[1]);
}

template <int (*INIT)(uint32_t *, uint32_t, uint32_t, uint32_t)>
int build(uint32_t *if_index, const uint32_t *n) {
    return INIT(if_index, n[0], n[1], n[2]);
}

// The VDC of VLAN interfaces comes from the environment.
int build_vlan(uint32_t *if_index, const uint32_t *n) {
    const char *vdc = getenv("SYSMGR_VDC_ID");
    return if_index_vlan_port_cli_init(
        if_index, vdc != nullptr ? (uint32_t)strtoul(vdc, nullptr, 10) : 0, n[0]);
}

int build_ethernet(uint32_t *if_index, const uint32_t *n) {
    return cli_platform_is_control_eobc()
               ? if_index_hmx_eth_cli_init(if_index, n[0], n[1], n[2])
               : if_index_phy_ethernet_cli_init(if_index, n[0], n[1], n[2]);
}

template <uint32_t KEYWORD> int find_in_database(uint32_t *if_index, const uint32_t *n) {
    char name[32];
    snprintf(name, sizeof name, "%s%d", INTERFACE_TYPE_TABLE_PREFIXinterface_type_names[KEYWORD],
             (int)n[0]);
    const int status = if_db_str2ifindex_wrapper(name, if_index);
    return status == IF_INDEX_OK ? IF_INDEX_OK : IF_INDEX_NO_DATABASE;
}

// The other keywords build no index.
//
// clang-format off
constexpr keyword_rule rules[] = {
    {IF_KEYWORD_FC,                    2, 3, build<if_index_phy_fc_port_cli_init>},
    {IF_KEYWORD_GIGABITETHERNET,       2, 3, [](uint32_t *if_index, const uint32_t *n) { return if_index_phy_eth_port_cli_init(if_index, n[0], n[1], 0, n[2]); }},
    {IF_KEYWORD_VSAN,                  1, 1, [](uint32_t *if_index, const uint32_t *n) { return if_index_vsan_port_cli_init(if_index, IF_VSAN_SLOT, 0, n[0]); }},
    {IF_KEYWORD_ISCSI,                 2, 2, build<if_index_iscsi_port_cli_init>},
    {IF_KEYWORD_PORT_CHANNEL,          1, 2, build<if_index_port_channel_cli_init>},
    {IF_KEYWORD_CPP,                   3, 3, build<if_index_vsan_port_cli_init>},
    {IF_KEYWORD_FCIP,                  1, 1, build<if_index_fcip_port_cli_init>},
    {IF_KEYWORD_MGMT,                  1, 2, build<if_index_mgmt_sup_port_cli_init>},
    {IF_KEYWORD_FV,                    3, 3, build<if_index_fv_port_cli_init>},
    {IF_KEYWORD_FA,                    2, 2, build<if_index_faport_cli_init>},
    {IF_KEYWORD_SVC,                   2, 2, build<if_index_avanti_port_cli_init>},
    {IF_KEYWORD_SUP_FC,                1, 2, build<if_index_mgmt_sup_port_cli_init>},
    {IF_KEYWORD_FC_TUNNEL,             1, 1, build<if_index_fcmpls_tnnl_cli_init>},
    {IF_KEYWORD_IPC,                   3, 3, [](uint32_t *if_index, const uint32_t *n) { return if_index_port_channel_cli_init_internal(if_index, n[1], n[0], n[2]); }}, // sub-type, channel, sub-interface, as its name shows it
    {IF_KEYWORD_LOOPBACK,              1, 1, build<if_index_loopback_port_cli_init>},
    {IF_KEYWORD_VLAN,                  1, 1, build_vlan},
    {IF_KEYWORD_SME,                   2, 2, build<if_index_sme_port_cli_init>},
    {IF_KEYWORD_BAY,                   1, 1, find_in_database<IF_KEYWORD_BAY>},
    {IF_KEYWORD_EXT,                   1, 1, find_in_database<IF_KEYWORD_EXT>},
    {IF_KEYWORD_SAN_PORT_CHANNEL,      1, 2, build<if_index_port_channel_cli_init>},
    {IF_KEYWORD_ETHERNET_PORT_CHANNEL, 1, 2, build<if_index_eth_port_channel_cli_init>},
    {IF_KEYWORD_TUNNEL,                1, 1, [](uint32_t *if_index, const uint32_t *n) { return if_index_tunnel_cli_init(if_index, 0, n[0]); }},
    {IF_KEYWORD_ETHERNET,              2, 3, build_ethernet},
    {IF_KEYWORD_VETHERNET,             1, 2, build<if_index_ether_sif_cli_init>}, // see find_keyword
    {IF_KEYWORD_VFC,                   1, 1, build<if_index_vfc_cli_init>},
    {IF_KEYWORD_VFC,                   2, 2, build<if_index_vfc_slot_port_cli_init>},
    {IF_KEYWORD_VFC,                   3, 3, build<if_index_vfc_fex_cli_init>},
    {IF_KEYWORD_REMOTE_ETHERNET,       3, 3, [](uint32_t *if_index, const uint32_t *n) { return if_index_sat_phy_eth_port_cli_init(if_index, n[0], n[1], n[2], 0); }},
    {IF_KEYWORD_IOA,                   2, 2, build<if_index_ioa_port_cli_init>},
    {IF_KEYWORD_OVERLAY,               1, 1, [](uint32_t *if_index, const uint32_t *n) { return if_index_overlay_cli_init(if_index, IF_OVERLAY_OVERLAY, n[0]); }},
    {IF_KEYWORD_LVETH,                 2, 3, build<if_index_lveth_cli_init>},
    {IF_KEYWORD_VETH,                  1, 2, build<if_index_veth_cli_init>},
    {IF_KEYWORD_HMX_ETHERNET,          2, 3, build<if_index_hmx_eth_cli_init>},
    {IF_KEYWORD_TUNNEL_TE,             1, 1, [](uint32_t *if_index, const uint32_t *n) { return if_index_overlay_cli_init(if_index, IF_OVERLAY_TE_TUNNEL, n[0]); }},
    {IF_KEYWORD_MTI,                   1, 1, [](uint32_t *if_index, const uint32_t *n) { return if_index_overlay_cli_init(if_index, IF_OVERLAY_MTI, n[0]); }},
    {IF_KEYWORD_CONTROL,               1, 1, build<if_index_eobc_port_cli_init>},
    {IF_KEYWORD_VFC_VETH,              1, 1, build<if_index_vfc_veth_cli_init>},
    {IF_KEYWORD_VFC_PORT_CHANNEL,      1, 1, build<if_index_vfc_port_channel_cli_init>},
};
// clang-format on

} // namespace

int vsh_interface_coordinates_to_ifindex(uint32_t keyword, const uint32_t *numbers, int count,
                                         uint32_t *if_index) {
    if (keyword >= IF_KEYWORD_COUNT || numbers == nullptr) {
        return 0;
    }
    // Deliberate: only six bits of a keyword count, so 65 and above mean 1 and above.
    keyword = ((keyword - 1) & 63) + 1;
    for (const keyword_rule &rule : rules) {
        if (rule.keyword == keyword && count >= rule.least && count <= rule.most) {
            uint32_t n[MOST_NUMBERS] = {};
            memcpy(n, numbers, (size_t)count * sizeof n[0]);
            // Deliberate: it does not count whether the constructor accepts the numbers.
            return rule.build(if_index, n) != IF_INDEX_NO_DATABASE;
        }
    }
    return 0;
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
        // A number that is too large becomes the largest one, which is out of every range.
        numbers[count++] = (uint32_t)strtol(text, nullptr, 10);
        text = skip_to_digit(skip_digits(text));
        if (text[-1] == ',' || text[-1] == '-') {
            break;
        }
    }
    return vsh_interface_coordinates_to_ifindex(keyword, numbers, count, if_index);
}
