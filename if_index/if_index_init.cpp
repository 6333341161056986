// The constructors of interface indexes.
#include <initializer_list>

#include "if_index/if_index.h"
#include "if_index/if_index_platform.h"

using namespace if_layout;

namespace {

struct field_input {
    if_index_field field;
    uint32_t value;
};

// Whether numbers are given as the index stores them or as a user types them.
enum class numbering { as_stored, as_typed };

} // namespace

static constexpr uint32_t CHANNEL_MAX = 4095;
static constexpr uint32_t TUNNEL_NUMBER_MAX = 0xFFFF;
static constexpr uint32_t OVERLAY_NUMBER_MAX = 65503;
static constexpr uint32_t LOOPBACK_PORT_MAX = 1023;
static constexpr uint32_t HMX_MODULE_MAX = 514;

// Store the index of the type with the body bits.
static int store(uint32_t *if_index, uint32_t type, uint32_t body) {
    if (if_index == nullptr) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    *if_index = type << IF_INDEX_BODY_BITS | body;
    return IF_INDEX_OK;
}

// Store the index of the fields' type, if every number fits its field.
static int build(uint32_t *if_index, numbering numbers, uint32_t form,
                 std::initializer_list<field_input> inputs) {
    uint32_t body = form;
    uint32_t type = 0;
    for (const field_input &input : inputs) {
        const uint32_t base = numbers == numbering::as_typed ? input.field.base : 0;
        // Where numbers count from 1, a typed 0 wraps to a number that fits no field.
        const uint32_t value = input.value - base;
        if (value > if_field_max(input.field)) {
            return IF_INDEX_OUT_OF_RANGE;
        }
        body |= if_field_bits(input.field, value);
        type = input.field.type;
    }
    return store(if_index, type, body);
}

#define INPUT(kind, a)                                                                             \
    { kind##_##a, a }
#define DEFINE_1(suffix, numbers, stem, kind, form, a)                                             \
    int if_index_##stem##suffix(uint32_t *if_index, uint32_t a) {                                  \
        return build(if_index, numbers, form, {INPUT(kind, a)});                                   \
    }
#define DEFINE_2(suffix, numbers, stem, kind, form, a, b)                                          \
    int if_index_##stem##suffix(uint32_t *if_index, uint32_t a, uint32_t b) {                      \
        return build(if_index, numbers, form, {INPUT(kind, a), INPUT(kind, b)});                   \
    }
#define DEFINE_3(suffix, numbers, stem, kind, form, a, b, c)                                       \
    int if_index_##stem##suffix(uint32_t *if_index, uint32_t a, uint32_t b, uint32_t c) {          \
        return build(if_index, numbers, form, {INPUT(kind, a), INPUT(kind, b), INPUT(kind, c)});   \
    }
#define DEFINE_4(suffix, numbers, stem, kind, form, a, b, c, d)                                    \
    int if_index_##stem##suffix(uint32_t *if_index, uint32_t a, uint32_t b, uint32_t c,            \
                                uint32_t d) {                                                      \
        return build(if_index, numbers, form,                                                      \
                     {INPUT(kind, a), INPUT(kind, b), INPUT(kind, c), INPUT(kind, d)});            \
    }
#define BOTH(define, ...)                                                                          \
    define(_init, numbering::as_stored, __VA_ARGS__)                                               \
        define(_cli_init, numbering::as_typed, __VA_ARGS__)
#define BOTH_1(...)   BOTH(DEFINE_1, __VA_ARGS__)
#define BOTH_2(...)   BOTH(DEFINE_2, __VA_ARGS__)
#define BOTH_3(...)   BOTH(DEFINE_3, __VA_ARGS__)
#define BOTH_4(...)   BOTH(DEFINE_4, __VA_ARGS__)
#define STORED_2(...) DEFINE_2(_init, numbering::as_stored, __VA_ARGS__)
#define STORED_3(...) DEFINE_3(_init, numbering::as_stored, __VA_ARGS__)
IF_INDEX_CONSTRUCTORS(BOTH_1, BOTH_2, BOTH_3, BOTH_4, STORED_2, STORED_3)

int if_index_phy_eth_port_cli_init(uint32_t *if_index, uint32_t slot, uint32_t port, uint32_t third,
                                   uint32_t sub_intf) {
    uint32_t main_if_index = 0;
    const int status =
        build(&main_if_index, numbering::as_typed, 0,
              {INPUT(phy_eth, slot), INPUT(phy_eth, port), INPUT(phy_eth, sub_intf)});
    if (status != IF_INDEX_OK || third > if_field_max(sat_port)) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    if (third == 0) {
        return store(if_index, IF_TYPE_PHY_ETH, main_if_index & IF_INDEX_BODY_MASK);
    }
    return store(if_index, IF_TYPE_SAT,
                 (slot - 1) << sat_sat_num.low | (port - 1) << sat_slot.low |
                     third << sat_port.low | sub_intf);
}

int if_index_port_channel_init(uint32_t *if_index, uint32_t channel) {
    return if_index_port_channel_init_internal(if_index, channel, IF_PORT_CHANNEL_PLAIN, 0);
}

int if_index_port_channel_init_internal(uint32_t *if_index, uint32_t channel, uint32_t subtype,
                                        uint32_t sub_intf) {
    if (channel > CHANNEL_MAX) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    // Deliberate: only the low bits of the channel are kept.
    const uint32_t channel_num = channel & if_field_max(port_channel_channel_num);
    return build(if_index, numbering::as_stored, 0,
                 {INPUT(port_channel, channel_num),
                  INPUT(port_channel, subtype),
                  {port_channel_subtype_arg, sub_intf}});
}

int if_index_port_channel_cli_init(uint32_t *if_index, uint32_t channel, uint32_t sub_intf) {
    return if_index_port_channel_init_internal(if_index, channel - 1, IF_PORT_CHANNEL_PLAIN,
                                               sub_intf);
}

int if_index_port_channel_cli_init_internal(uint32_t *if_index, uint32_t channel, uint32_t subtype,
                                            uint32_t sub_intf) {
    return if_index_port_channel_init_internal(if_index, channel - 1, subtype, sub_intf);
}

int if_index_eth_port_channel_init(uint32_t *if_index, uint32_t channel) {
    return build(if_index, numbering::as_stored, 0, {{eth_port_channel_channel_num, channel}});
}

int if_index_eth_port_channel_init_internal(uint32_t *if_index, uint32_t channel, uint32_t subtype,
                                            uint32_t sub_intf) {
    uint32_t same_bits = 0;
    const int status = if_index_port_channel_init_internal(&same_bits, channel, subtype, sub_intf);
    if (status != IF_INDEX_OK) {
        return status;
    }
    return store(if_index, IF_TYPE_ETH_PORT_CHANNEL, same_bits & IF_INDEX_BODY_MASK);
}

int if_index_eth_port_channel_cli_init(uint32_t *if_index, uint32_t channel, uint32_t sub_intf) {
    return build(
        if_index, numbering::as_typed, 0,
        {{eth_port_channel_channel_num, channel}, {eth_port_channel_subtype_arg, sub_intf}});
}

int if_index_mgmt_sup_port_cli_init(uint32_t *if_index, uint32_t port, uint32_t module) {
    const uint32_t slot = module == 0 ? mgmt_sup_slot.base : module;
    return build(if_index, numbering::as_typed, 0, {INPUT(mgmt_sup, slot), INPUT(mgmt_sup, port)});
}

int if_index_vsan_port_cli_init(uint32_t *if_index, uint32_t slot, uint32_t port, uint32_t vsan) {
    const numbering numbers = slot == IF_VSAN_SLOT ? numbering::as_stored : numbering::as_typed;
    return build(if_index, numbers, 0, {INPUT(vsan, slot), INPUT(vsan, port), INPUT(vsan, vsan)});
}

int if_index_vlan_port_init(uint32_t *if_index, uint32_t vdc, uint32_t vlan) {
    if (!if_index_is_valid_vlan_id(vlan)) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    return build(if_index, numbering::as_stored, 0, {{vlan_vd, vdc}, {vlan_vlan, vlan}});
}

int if_index_vlan_port_cli_init(uint32_t *if_index, uint32_t vdc, uint32_t vlan) {
    return if_index_vlan_port_init(if_index, vdc, vlan);
}

int if_index_vlan_port_convert_to_vdc(uint32_t *if_index, uint8_t vdc) {
    if (if_index == nullptr) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    uint32_t old_vdc = 0;
    const int status = if_index_vlan_get_vd(*if_index, &old_vdc);
    if (status == IF_INDEX_OK) {
        *if_index = (*if_index & ~if_field_bits(vlan_vd, old_vdc)) | if_field_bits(vlan_vd, vdc);
    }
    return status;
}

int if_index_tunnel_init(uint32_t *if_index, uint32_t tunnel_type, uint32_t number) {
    return build(if_index, numbering::as_stored, 0,
                 {{tunnel_tunnel_type, tunnel_type & if_field_max(tunnel_tunnel_type)},
                  {tunnel_tunnel_num, number}});
}

int if_index_tunnel_cli_init(uint32_t *if_index, uint32_t tunnel_type, uint32_t number) {
    return if_index_tunnel_init(if_index, tunnel_type, number);
}

int if_index_get_tunnel_range(uint8_t tunnel_type, if_index_range *range) {
    if (range == nullptr) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    if_index_tunnel_init(&range->first, tunnel_type, 0);
    return if_index_tunnel_init(&range->last, tunnel_type, TUNNEL_NUMBER_MAX);
}

int if_index_lveth_cli_init(uint32_t *if_index, uint32_t slot, uint32_t port, uint32_t sub_intf) {
    // Names show the sub-interface with its place in the index, so it is typed that way, too.
    const uint32_t shown_bits = if_field_bits(lveth_sub_intf, if_field_max(lveth_sub_intf));
    if ((sub_intf & ~shown_bits) != 0) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    return build(if_index, numbering::as_typed, sub_intf, {INPUT(lveth, slot), INPUT(lveth, port)});
}

int if_index_sat_phy_eth_port_init(uint32_t *if_index, uint32_t satellite, uint32_t slot,
                                   uint32_t port, uint32_t sub_intf) {
    if (satellite > 0xFF || slot > 0xFF || port > 0xFF || sub_intf > if_field_max(sat_sub_intf)) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    // Deliberate: a number too large for its field changes the field above.
    return store(if_index, IF_TYPE_SAT,
                 satellite << sat_sat_num.low | slot << sat_slot.low | port << sat_port.low |
                     sub_intf);
}

int if_index_sat_phy_eth_port_cli_init(uint32_t *if_index, uint32_t satellite, uint32_t slot,
                                       uint32_t port, uint32_t sub_intf) {
    return build(
        if_index, numbering::as_typed, 0,
        {{sat_sat_num, satellite}, INPUT(sat, slot), INPUT(sat, port), INPUT(sat, sub_intf)});
}

int if_index_overlay_init(uint32_t *if_index, uint32_t kind, uint32_t number) {
    if (kind > 0xFF || number > OVERLAY_NUMBER_MAX) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    // Deliberate: a kind too large for its field changes the type.
    return store(if_index, IF_TYPE_OVERLAY, kind << overlay_port_type.low | number);
}

int if_index_overlay_cli_init(uint32_t *if_index, uint32_t kind, uint32_t number) {
    return if_index_overlay_init(if_index, kind, number);
}

int if_index_get_overlay_range(uint8_t kind, if_index_range *range) {
    if (range == nullptr) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    if_index_overlay_init(&range->first, kind, 0);
    return if_index_overlay_init(&range->last, kind, OVERLAY_NUMBER_MAX);
}

// A host switch module port; the module is checked already.
static int build_hmx_eth(uint32_t *if_index, uint32_t module, uint32_t port, uint32_t sub_intf) {
    return build(if_index, numbering::as_stored, 0,
                 {{hmx_eth_slot, module}, INPUT(hmx_eth, port), INPUT(hmx_eth, sub_intf)});
}

int if_index_hmx_eth_init(uint32_t *if_index, uint32_t module, uint32_t port, uint32_t sub_intf) {
    if (module > HMX_MODULE_MAX) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    return build_hmx_eth(if_index, module, port, sub_intf);
}

int if_index_hmx_eth_init_from_mod(uint32_t *if_index, uint32_t module, uint32_t port,
                                   uint32_t sub_intf) {
    if (module < 3 || module > HMX_MODULE_MAX + 1) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    return build_hmx_eth(if_index, module, port, sub_intf);
}

int if_index_hmx_eth_init_from_slot(uint32_t *if_index, uint32_t slot, uint32_t port,
                                    uint32_t sub_intf) {
    return if_index_hmx_eth_init_from_mod(if_index, slot + 1, port, sub_intf);
}

int if_index_hmx_eth_cli_init(uint32_t *if_index, uint32_t module, uint32_t port,
                              uint32_t sub_intf) {
    const uint32_t first_module = cli_platform_is_module_base_128() ? 128 : 1;
    return if_index_hmx_eth_init(if_index, module - first_module, port - 1, sub_intf);
}

int if_index_loopback_port_init(uint32_t *if_index, uint32_t port) {
    if (if_index == nullptr || port > LOOPBACK_PORT_MAX) {
        return IF_INDEX_OUT_OF_RANGE;
    }
    *if_index = if_index_get_loopback_port(port);
    return IF_INDEX_OK;
}

int if_index_loopback_port_cli_init(uint32_t *if_index, uint32_t port) {
    return if_index_loopback_port_init(if_index, port);
}

uint32_t if_index_get_loopback_port(uint32_t port) {
    return IF_INDEX_LOOPBACK_BASE + port;
}

int if_index_null_interface_init(uint32_t *if_index) {
    return store(if_index, IF_TYPE_NULL, 0);
}

uint32_t if_index_get_null_interface() {
    return IF_INDEX_NULL_INTERFACE;
}
