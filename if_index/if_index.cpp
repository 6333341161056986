#include "if_index/if_index.h"

#include <cstring>
#include <initializer_list>

using namespace if_layout;

// --- Types -------------------------------------------------------------------------------------

int if_index_get_type(uint32_t if_index, uint8_t *type) {
    if (type == nullptr) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    *type = if_index_type_bits(if_index);
    const bool valid = *type != 0 && *type != IF_TYPE_RESERVED && *type <= IF_TYPE_LAST;
    return valid ? IF_INDEX_OK : IF_INDEX_INVALID_TYPE;
}

bool if_index_is_type_valid_in_current_release(uint8_t type) {
    return type <= IF_TYPE_OPAQUE_38 && type != IF_TYPE_RESERVED && type != IF_TYPE_LVETH;
}

int if_index_get_next_type(uint8_t *type) {
    if (type == nullptr) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    if (*type >= IF_TYPE_LAST) {
        return IF_INDEX_NO_MORE;
    }
    do {
        ++*type;
    } while (*type < IF_TYPE_LAST && !if_index_is_type_valid_in_current_release(*type));
    return *type < IF_TYPE_LAST ? IF_INDEX_OK : IF_INDEX_NO_MORE;
}

bool if_index_is_virtual_type(uint8_t type) {
    return type == IF_TYPE_IVR || type == IF_TYPE_SDM;
}

uint32_t if_index_get_if_index_all_for_type(uint8_t type) {
    const uint8_t loopback_top_byte = IF_INDEX_LOOPBACK_BASE >> IF_INDEX_BODY_BITS;
    const bool has_all = type != 0 && type != IF_TYPE_RESERVED && type <= IF_TYPE_OPAQUE_38;
    if (!has_all && type != loopback_top_byte) {
        return 0;
    }
    return IF_INDEX_WILDCARD | ((uint32_t)type << IF_INDEX_BODY_BITS) | IF_INDEX_BODY_MASK;
}

// --- Accessors ---------------------------------------------------------------------------------

namespace {

struct field_output {
    if_index_field field;
    uint32_t *value;
};

struct named_field {
    const char *name;
    if_index_field field;
};

} // namespace

static int read_fields(uint32_t if_index, std::initializer_list<field_output> outputs) {
    for (const field_output &output : outputs) {
        if (output.value == nullptr) {
            return IF_INDEX_OUT_OF_RANGE;
        }
    }
    uint8_t type = 0;
    const int status = if_index_get_type(if_index, &type);
    if (status != IF_INDEX_OK) {
        return status;
    }
    // A satellite's fabric interface has slot and port in the same bits as the satellite's ports.
    const uint8_t kind = type == IF_TYPE_SAT_FIF ? (uint8_t)IF_TYPE_SAT : type;
    for (const field_output &output : outputs) {
        if (output.field.type != type && output.field.type != kind) {
            return IF_INDEX_WRONG_TYPE;
        }
        *output.value = stored(if_index, output.field);
    }
    return IF_INDEX_OK;
}

// NOLINTBEGIN(bugprone-macro-parentheses): parameter names cannot stand in parentheses
#define ACCESSOR(kind, field)                                                                      \
    int if_index_##kind##_get_##field(uint32_t if_index, uint32_t *value) {                        \
        return read_fields(if_index, {{kind##_##field, value}});                                   \
    }
#define ACCESSORS_1(kind, type, a, ah, al, ab)                                                     \
    ACCESSOR(kind, a)                                                                              \
    int if_index_##kind##_get_fields(uint32_t if_index, uint32_t *a) {                             \
        return read_fields(if_index, {{kind##_##a, a}});                                           \
    }
#define ACCESSORS_2(kind, type, a, ah, al, ab, b, bh, bl, bb)                                      \
    ACCESSOR(kind, a)                                                                              \
    ACCESSOR(kind, b)                                                                              \
    int if_index_##kind##_get_fields(uint32_t if_index, uint32_t *a, uint32_t *b) {                \
        return read_fields(if_index, {{kind##_##a, a}, {kind##_##b, b}});                          \
    }
#define ACCESSORS_3(kind, type, a, ah, al, ab, b, bh, bl, bb, c, ch, cl, cb)                       \
    ACCESSOR(kind, a)                                                                              \
    ACCESSOR(kind, b)                                                                              \
    ACCESSOR(kind, c)                                                                              \
    int if_index_##kind##_get_fields(uint32_t if_index, uint32_t *a, uint32_t *b, uint32_t *c) {   \
        return read_fields(if_index, {{kind##_##a, a}, {kind##_##b, b}, {kind##_##c, c}});         \
    }
#define ACCESSORS_4(kind, type, a, ah, al, ab, b, bh, bl, bb, c, ch, cl, cb, d, dh, dl, db)        \
    ACCESSOR(kind, a)                                                                              \
    ACCESSOR(kind, b)                                                                              \
    ACCESSOR(kind, c)                                                                              \
    ACCESSOR(kind, d)                                                                              \
    int if_index_##kind##_get_fields(uint32_t if_index, uint32_t *a, uint32_t *b, uint32_t *c,     \
                                     uint32_t *d) {                                                \
        return read_fields(if_index,                                                               \
                           {{kind##_##a, a}, {kind##_##b, b}, {kind##_##c, c}, {kind##_##d, d}});  \
    }
IF_INDEX_LAYOUT(ACCESSORS_1, ACCESSORS_2, ACCESSORS_3, ACCESSORS_4)
// NOLINTEND(bugprone-macro-parentheses)

// Every field of the table with its name, for the accessors that serve many types.
#define NAMED_1(kind, type, a, ...)             {#a, kind##_##a},
#define NAMED_2(kind, type, a, ah, al, ab, ...) {#a, kind##_##a}, NAMED_1(kind, type, __VA_ARGS__)
#define NAMED_3(kind, type, a, ah, al, ab, ...) {#a, kind##_##a}, NAMED_2(kind, type, __VA_ARGS__)
#define NAMED_4(kind, type, a, ah, al, ab, ...) {#a, kind##_##a}, NAMED_3(kind, type, __VA_ARGS__)
static constexpr named_field named_fields[] = {IF_INDEX_LAYOUT(NAMED_1, NAMED_2, NAMED_3, NAMED_4)};

// The field with that name of the index's type, or null.
static const if_index_field *field_of_name(uint32_t if_index, const char *name) {
    const uint8_t type = if_index_type_bits(if_index);
    const bool vfc_without_slot =
        type == IF_TYPE_VFC && stored(if_index, vfc_vfc_subtype) != IF_VFC_SLOT_PORT;
    for (const named_field &row : named_fields) {
        if (row.field.type == type && strcmp(row.name, name) == 0) {
            return vfc_without_slot ? nullptr : &row.field;
        }
    }
    return nullptr;
}

static const if_index_field *sub_intf_field(uint32_t if_index) {
    switch (if_index_type_bits(if_index)) {
    case IF_TYPE_PORT_CHANNEL:
        if (stored(if_index, port_channel_subtype) != IF_PORT_CHANNEL_PLAIN) {
            return nullptr;
        }
        return &port_channel_subtype_arg;
    case IF_TYPE_ETH_PORT_CHANNEL:
        return &eth_port_channel_subtype_arg;
    default:
        return field_of_name(if_index, "sub_intf");
    }
}

static int read_found(uint32_t if_index, const if_index_field *field, uint32_t *value) {
    uint8_t type = 0;
    const int status = if_index_get_type(if_index, &type);
    if (value == nullptr) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    if (status != IF_INDEX_OK) {
        return status;
    }
    if (field == nullptr) {
        return IF_INDEX_WRONG_TYPE;
    }
    *value = stored(if_index, *field);
    return IF_INDEX_OK;
}

int if_index_get_slot(uint32_t if_index, uint32_t *slot) {
    return read_found(if_index, field_of_name(if_index, "slot"), slot);
}

int if_index_get_port(uint32_t if_index, uint32_t *port) {
    return read_found(if_index, field_of_name(if_index, "port"), port);
}

int if_index_get_sub_intf(uint32_t if_index, uint32_t *sub_intf) {
    return read_found(if_index, sub_intf_field(if_index), sub_intf);
}

int if_index_get_mainintf_from_subintf(uint32_t if_index, uint32_t *main_if_index) {
    return if_index_get_subintf_from_mainintf(if_index, 0, main_if_index);
}

int if_index_get_subintf_from_mainintf(uint32_t if_index, uint32_t sub_intf,
                                       uint32_t *sub_if_index) {
    uint32_t old_sub_intf = 0;
    const int status = if_index_get_sub_intf(if_index, &old_sub_intf);
    if (sub_if_index == nullptr) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    if (status != IF_INDEX_OK) {
        return status;
    }
    const if_index_field field = *sub_intf_field(if_index);
    if (sub_intf > if_field_max(field)) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    *sub_if_index =
        (if_index & ~if_field_bits(field, if_field_max(field))) | if_field_bits(field, sub_intf);
    return IF_INDEX_OK;
}

int if_index_phy_eth_get_mainintf_from_subintf(uint32_t if_index, uint32_t *main_if_index) {
    uint32_t sub_intf = 0;
    const int status = if_index_phy_eth_get_sub_intf(if_index, &sub_intf);
    return status != IF_INDEX_OK ? status
                                 : if_index_get_mainintf_from_subintf(if_index, main_if_index);
}

uint32_t if_index_port_channel_get_vlan_id(uint32_t if_index) {
    if (if_index_type_bits(if_index) == IF_TYPE_ETH_PORT_CHANNEL) {
        return stored(if_index, eth_port_channel_subtype_arg);
    }
    return stored(if_index, port_channel_subtype_arg);
}

int if_index_get_max_channel_id_for_ifindex(uint32_t if_index, uint16_t *max_channel_id) {
    if (max_channel_id == nullptr) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    uint8_t type = 0;
    const int status = if_index_get_type(if_index, &type);
    if (status != IF_INDEX_OK) {
        return status;
    }
    if (type != IF_TYPE_PORT_CHANNEL && type != IF_TYPE_ETH_PORT_CHANNEL) {
        return IF_INDEX_WRONG_TYPE;
    }
    *max_channel_id = 4095;
    return IF_INDEX_OK;
}

// --- Predicates --------------------------------------------------------------------------------

static bool is_of_type(uint32_t if_index, uint8_t wanted) {
    uint8_t type = 0;
    return if_index_get_type(if_index, &type) == IF_INDEX_OK && type == wanted;
}

bool if_index_is_port_channel_intf(uint32_t if_index) {
    return is_of_type(if_index, IF_TYPE_PORT_CHANNEL);
}

bool if_index_is_eth_port_channel_intf(uint32_t if_index) {
    return is_of_type(if_index, IF_TYPE_ETH_PORT_CHANNEL);
}

bool if_index_is_tunnel_intf(uint32_t if_index) {
    return is_of_type(if_index, IF_TYPE_TUNNEL);
}

bool if_index_is_overlay_intf(uint32_t if_index) {
    return is_of_type(if_index, IF_TYPE_OVERLAY);
}

bool if_index_is_satellite_interface(uint32_t if_index) {
    return is_of_type(if_index, IF_TYPE_SAT);
}

bool if_index_is_sub_intf(uint32_t if_index) {
    uint32_t sub_intf = 0;
    return if_index_get_sub_intf(if_index, &sub_intf) == IF_INDEX_OK && sub_intf != 0;
}

bool if_index_is_port_channel_sub_interface(uint32_t if_index) {
    const uint8_t type = if_index_type_bits(if_index);
    if (type != IF_TYPE_PORT_CHANNEL && type != IF_TYPE_ETH_PORT_CHANNEL) {
        return false;
    }
    return if_index_is_sub_intf(if_index);
}

bool if_index_is_physical_interface(uint32_t if_index) {
    switch (if_index_type_bits(if_index)) {
    case IF_TYPE_PHY_FC:
    case IF_TYPE_PHY_ETH:
    case IF_TYPE_PHY_ETHERNET:
    case IF_TYPE_SAT:
        return !if_index_is_sub_intf(if_index);
    case IF_TYPE_MGMT_SUP:
        return true;
    default:
        return false;
    }
}

int if_index_is_virtual_interface(uint32_t if_index, bool *is_virtual) {
    if (is_virtual == nullptr) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    uint8_t type = 0;
    const int status = if_index_get_type(if_index, &type);
    *is_virtual = status == IF_INDEX_OK && if_index_is_virtual_type(type);
    return status;
}

bool if_index_is_valid_vlan_id(uint32_t vlan_id) {
    return vlan_id >= 1 && vlan_id < 4095;
}

// --- Ranges ------------------------------------------------------------------------------------

// The field that a range of such indexes counts, or null for a type without numbers.
static const if_index_field *number_field(uint32_t if_index) {
    if (if_index_is_sub_intf(if_index)) {
        return sub_intf_field(if_index);
    }
    switch (if_index_type_bits(if_index)) {
    case IF_TYPE_PORT_CHANNEL:
        if (stored(if_index, port_channel_subtype) == IF_PORT_CHANNEL_PAIR) {
            return &port_channel_pair_second;
        }
        return &port_channel_channel_num;
    case IF_TYPE_INBAND:
        if (stored(if_index, inband_subtype) != IF_INBAND_LINECARD) {
            return nullptr;
        }
        return &inband_linecard_num;
    case IF_TYPE_EOBC:
        return &eobc_slot;
    case IF_TYPE_VSAN:
        return &vsan_vsan;
    case IF_TYPE_VLAN:
        return &vlan_vlan;
    case IF_TYPE_FCIP:
        return &fcip_tunnel;
    case IF_TYPE_FCMPLS_TNNL:
        return &fcmpls_tnnl_tunnel;
    case IF_TYPE_IVR:
        return &ivr_second;
    case IF_TYPE_IFC:
        return &ifc_third;
    case IF_TYPE_SDM:
        return &sdm_second;
    case IF_TYPE_ETH_INBAND:
        return &eth_inband_num;
    case IF_TYPE_ETH_PORT_CHANNEL:
        return &eth_port_channel_channel_num;
    case IF_TYPE_TUNNEL:
        return &tunnel_tunnel_num;
    case IF_TYPE_VETH:
        return &veth_vport;
    case IF_TYPE_VIF:
        return &vif_vifindex;
    case IF_TYPE_VFC:
        if (stored(if_index, vfc_vfc_subtype) == IF_VFC_FEX) {
            return &vfc_fex_third;
        }
        if (stored(if_index, vfc_vfc_subtype) == IF_VFC_SLOT_PORT) {
            return &vfc_slot_port_port;
        }
        return &vfc_vfc_num;
    case IF_TYPE_VL3:
        return &vl3_intf_num;
    case IF_TYPE_GPC:
        return &gpc_ftag;
    default:
        return field_of_name(if_index, "port");
    }
}

// Store the field that the range counts.
static int check_range(const if_index_range *range, if_index_field *field) {
    if (range == nullptr) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    uint8_t first_type = 0;
    uint8_t last_type = 0;
    int status = if_index_get_type(range->first, &first_type);
    if (status == IF_INDEX_OK) {
        status = if_index_get_type(range->last, &last_type);
    }
    if (status != IF_INDEX_OK) {
        return status;
    }
    const if_index_field *number = number_field(range->last);
    if (first_type != last_type || number == nullptr) {
        return IF_INDEX_WRONG_TYPE;
    }
    const uint32_t number_bits = if_field_bits(*number, if_field_max(*number));
    if (((range->first ^ range->last) & ~number_bits) != 0) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    if (stored(range->first, *number) > stored(range->last, *number)) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    *field = *number;
    return IF_INDEX_OK;
}

// The index with its number field one higher.
static uint32_t next_number(uint32_t if_index, if_index_field field) {
    const uint32_t others = if_index & ~if_field_bits(field, if_field_max(field));
    return others | if_field_bits(field, stored(if_index, field) + 1);
}

int if_index_get_num_ports_in_if_index_range(const if_index_range *range, uint32_t *count) {
    if_index_field field{};
    if (count == nullptr) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    const int status = check_range(range, &field);
    if (status != IF_INDEX_OK) {
        return status;
    }
    *count = stored(range->last, field) - stored(range->first, field) + 1;
    return IF_INDEX_OK;
}

int if_index_get_if_index_in_range(const if_index_range *range, uint32_t *if_indexes,
                                   size_t capacity, uint32_t *count) {
    if_index_field field{};
    uint32_t total = 0;
    int status = check_range(range, &field);
    if (status == IF_INDEX_OK) {
        status = if_index_get_num_ports_in_if_index_range(range, &total);
    }
    if (status != IF_INDEX_OK) {
        return status;
    }
    if (if_indexes == nullptr || count == nullptr || total > capacity) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    uint32_t if_index = range->first;
    for (uint32_t i = 0; i < total; i++) {
        if_indexes[i] = if_index;
        if_index = next_number(if_index, field);
    }
    *count = total;
    return IF_INDEX_OK;
}

int if_index_get_next_if_index_in_range(const if_index_range *range, uint32_t *if_index) {
    if_index_field field{};
    const int status = check_range(range, &field);
    if (status != IF_INDEX_OK) {
        return status;
    }
    if (if_index == nullptr) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    if (*if_index == range->last) {
        return IF_INDEX_NO_MORE;
    }
    const uint32_t number_bits = if_field_bits(field, if_field_max(field));
    const uint32_t number = stored(*if_index, field);
    if (((*if_index ^ range->last) & ~number_bits) != 0 || number < stored(range->first, field) ||
        number > stored(range->last, field)) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    *if_index = next_number(*if_index, field);
    return IF_INDEX_OK;
}

// --- Byte order, comparison, FSPF --------------------------------------------------------------

uint32_t hton_if_index(uint32_t if_index) {
    return __builtin_bswap32(if_index);
}

uint32_t ntoh_if_index(uint32_t if_index) {
    return __builtin_bswap32(if_index);
}

int32_t if_index_compare(uint32_t a, uint32_t b) {
    return (int32_t)(a - b);
}

uint32_t convert_if_index_to_fspf_if_index(uint32_t if_index) {
    const uint32_t type = if_index >> IF_INDEX_BODY_BITS; // with the wildcard bit
    return type == IF_TYPE_PHY_FC || type == IF_TYPE_PORT_CHANNEL ? if_index : 0;
}

uint32_t convert_fspf_if_index_to_if_index(uint32_t fspf_if_index) {
    return convert_if_index_to_fspf_if_index(fspf_if_index);
}

// The bits of the type in the 16-bit form, and of slot and port in a Fibre Channel index.
static constexpr uint32_t FSPF16_TYPE_SHIFT = 12;
static constexpr uint32_t FSPF16_NUMBER_MASK = 0x0FFF;
static constexpr uint32_t FC_SLOT_PORT_SHIFT = phy_fc_port.low;

uint16_t convert_if_index_to_fspf16_if_index(uint32_t if_index) {
    const uint32_t body = if_index & IF_INDEX_BODY_MASK;
    switch (if_index >> IF_INDEX_BODY_BITS) {
    case IF_TYPE_PHY_FC:
        if (stored(if_index, phy_fc_sub_intf) != 0) {
            return 0;
        }
        return (uint16_t)(IF_TYPE_PHY_FC << FSPF16_TYPE_SHIFT | body >> FC_SLOT_PORT_SHIFT);
    case IF_TYPE_PORT_CHANNEL:
        if (body > if_field_max(port_channel_channel_num)) {
            return 0;
        }
        return (uint16_t)(IF_TYPE_PORT_CHANNEL << FSPF16_TYPE_SHIFT | body);
    default:
        return 0;
    }
}

uint32_t convert_fspf16_if_index_to_if_index(uint16_t fspf16_if_index) {
    const uint32_t type = fspf16_if_index >> FSPF16_TYPE_SHIFT;
    const uint32_t number = fspf16_if_index & FSPF16_NUMBER_MASK;
    const uint32_t body = type == IF_TYPE_PHY_FC ? number << FC_SLOT_PORT_SHIFT : number;
    const uint32_t if_index = type << IF_INDEX_BODY_BITS | body;
    return convert_if_index_to_fspf16_if_index(if_index) == fspf16_if_index ? if_index : 0;
}
