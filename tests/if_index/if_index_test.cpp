#include "if_index/if_index.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

#include "if_index/if_index_platform.h"

namespace {

constexpr uint32_t UNTOUCHED = 0xDEADBEEF;

TEST(if_index, types) {
    std::vector<int> walked;
    uint8_t type = 0;
    while (if_index_get_next_type(&type) == IF_INDEX_OK) {
        walked.push_back(type);
    }
    EXPECT_EQ(type, 74);
    EXPECT_EQ(walked.size(), 36U); // 1 to 38 without 3 and 27
    EXPECT_EQ(std::count(walked.begin(), walked.end(), 3), 0);
    EXPECT_EQ(std::count(walked.begin(), walked.end(), 27), 0);
    EXPECT_EQ(walked.back(), 38);
    type = 80;
    EXPECT_EQ(if_index_get_next_type(&type), IF_INDEX_NO_MORE);
    EXPECT_EQ(type, 80);
    EXPECT_TRUE(if_index_is_type_valid_in_current_release(0));

    for (uint32_t top = 0; top < 256; top++) {
        const uint32_t number = top & 127;
        const bool valid = number >= 1 && number <= 74 && number != 3;
        EXPECT_EQ(if_index_get_type(top << 24 | 5, &type), valid ? 0 : 11) << top;
        EXPECT_EQ(type, number);
        const bool has_all = (top >= 1 && top <= 38 && top != 3) || top == 0xFE;
        EXPECT_EQ(if_index_get_if_index_all_for_type((uint8_t)top),
                  has_all ? (top | 0x80) << 24 | 0xFFFFFF : 0);
    }
    EXPECT_EQ(if_index_get_type(0x1A000000, nullptr), 14);
}

// Reads the field bit by bit: from the low bit up, going on from bit 23 to bit 0.
uint32_t bits_of(uint32_t if_index, int high, int low) {
    uint32_t value = 0;
    for (int bit = low, place = 0;; bit = (bit + 1) % 24, place++) {
        value |= ((if_index >> bit) & 1) << place;
        if (bit == high) {
            return value;
        }
    }
}

using accessor = int(uint32_t if_index, uint32_t *value);

void check_accessor(const char *name, accessor *get, uint8_t type, int high, int low) {
    SCOPED_TRACE(name);
    for (uint32_t body : {0x000000U, 0xFFFFFFU, 0xA5C396U, 0x5A3C69U, 0x123456U}) {
        const uint32_t if_index = (uint32_t)type << 24 | body;
        for (uint32_t wildcard : {0U, 0x80000000U}) {
            uint32_t value = UNTOUCHED;
            EXPECT_EQ(get(if_index | wildcard, &value), 0);
            EXPECT_EQ(value, bits_of(if_index, high, low));
        }
    }
    for (uint32_t other = 0; other < 128; other++) {
        const bool shared = type == IF_TYPE_SAT && other == IF_TYPE_SAT_FIF;
        if (other == type || shared) {
            continue;
        }
        uint32_t value = UNTOUCHED;
        const bool valid = other >= 1 && other <= 74 && other != 3;
        EXPECT_EQ(get(other << 24, &value), valid ? 12 : 11) << other;
        EXPECT_EQ(value, UNTOUCHED);
    }
    EXPECT_EQ(get((uint32_t)type << 24, nullptr), 14);
}

TEST(if_index, accessors_read_their_bits_of_their_type) {
#define CHECK_1(kind, type, f, h, l, b)                                                            \
    check_accessor(#kind "_" #f, if_index_##kind##_get_##f, IF_TYPE_##type, h, l);
#define CHECK_2(kind, type, f, h, l, b, ...)                                                       \
    CHECK_1(kind, type, f, h, l, b) CHECK_1(kind, type, __VA_ARGS__)
#define CHECK_3(kind, type, f, h, l, b, ...)                                                       \
    CHECK_1(kind, type, f, h, l, b) CHECK_2(kind, type, __VA_ARGS__)
#define CHECK_4(kind, type, f, h, l, b, ...)                                                       \
    CHECK_1(kind, type, f, h, l, b) CHECK_3(kind, type, __VA_ARGS__)
    IF_INDEX_LAYOUT(CHECK_1, CHECK_2, CHECK_3, CHECK_4)

    uint32_t a = 0, b = 0, c = 0, d = 0;
    EXPECT_EQ(if_index_sat_get_fields(0x1F641085, &a, &b, &c, &d), 0);
    EXPECT_EQ((std::vector<uint32_t>{a, b, c, d}), (std::vector<uint32_t>{0x64, 1, 2, 5}));
    EXPECT_EQ(if_index_lveth_get_fields(0x1B02001A, &a, &b, &c), 0);
    EXPECT_EQ((std::vector<uint32_t>{a, b, c}), (std::vector<uint32_t>{0x202, 1, 2}));
    EXPECT_EQ(if_index_lveth_get_fields(0x1B02001A, &a, nullptr, &c), 14);
}

TEST(if_index, constructors) {
    struct {
        const char *call;
        std::function<int(uint32_t *)> build;
        uint32_t if_index; // UNTOUCHED: out of range
    } rows[] = {
#define ROW(call, if_index) {#call, [](uint32_t *out) { return if_index_##call; }, if_index}
        ROW(phy_fc_port_init(out, 31, 127, 4095), 0x01FFFFFF),
        ROW(phy_fc_port_init(out, 32, 0, 0), UNTOUCHED),
        ROW(phy_fc_port_cli_init(out, 0, 1, 0), UNTOUCHED),
        ROW(phy_fc_port_cli_init(out, 33, 1, 0), UNTOUCHED),
        ROW(phy_eth_port_init(out, 1, 2, 3), 0x02082003),
        ROW(phy_eth_port_init(out, 0, 128, 0), UNTOUCHED),
        ROW(phy_eth_port_init(out, 0, 0, 4096), UNTOUCHED),
        ROW(phy_eth_port_cli_init(out, 32, 128, 0, 7), 0x02FFF007),
        ROW(phy_eth_port_cli_init(out, 2, 3, 5, 7), 0x1F012147),
        ROW(phy_eth_port_cli_init(out, 33, 1, 0, 0), UNTOUCHED),
        ROW(phy_eth_port_cli_init(out, 1, 1, 64, 0), UNTOUCHED),
        ROW(phy_ethernet_init(out, 1, 1, 5), 0x1A081005),
        ROW(port_channel_init(out, 300), 0x0400002C),
        ROW(port_channel_init(out, 4096), UNTOUCHED),
        ROW(port_channel_init_internal(out, 0xFFF, 3, 0xFFF), 0x043FFFFF),
        ROW(port_channel_init_internal(out, 0, 4, 0), UNTOUCHED),
        ROW(port_channel_init_internal(out, 0, 0, 4096), UNTOUCHED),
        ROW(port_channel_cli_init(out, 0, 0), UNTOUCHED),
        ROW(eth_port_channel_init(out, 4095), 0x16000FFF),
        ROW(eth_port_channel_init(out, 4096), UNTOUCHED),
        ROW(eth_port_channel_init_internal(out, 300, 1, 2), 0x1610022C),
        ROW(eth_port_channel_cli_init(out, 4096, 3), 0x16003FFF),
        ROW(inband_linecard_cli_init(out, 4), 0x06200030),
        ROW(vlan_port_init(out, 255, 4094), 0x09FF0FFE),
        ROW(vlan_port_init(out, 0, 0), UNTOUCHED),
        ROW(vlan_port_init(out, 0, 4095), UNTOUCHED),
        ROW(vlan_port_init(out, 256, 1), UNTOUCHED),
        ROW(isapi_port_cli_init(out, 3, 2, 4), 0x14102003),
        ROW(tunnel_init(out, 0x1FF, 65535), 0x18FFFFFF),
        ROW(tunnel_init(out, 0, 65536), UNTOUCHED),
        ROW(lveth_init(out, 1023, 4095, 3), 0x1BFFFFFF),
        ROW(lveth_cli_init(out, 515, 2, 1), UNTOUCHED),
        ROW(lveth_cli_init(out, 1025, 2, 0), UNTOUCHED),
        ROW(veth_init(out, 0xFFFFF, 15), 0x1CFFFFFF),
        ROW(veth_init(out, 0x100000, 0), UNTOUCHED),
        ROW(veth_init(out, 0, 16), UNTOUCHED),
        ROW(vfc_port_channel_cli_init(out, 5), 0x1E100004),
        ROW(vfc_veth_cli_init(out, 65536), 0x1E30FFFF),
        ROW(sat_phy_eth_port_init(out, 100, 1, 2, 5), 0x1F641085),
        ROW(sat_phy_eth_port_init(out, 1, 255, 255, 0), 0x1F0FFFC0),
        ROW(sat_phy_eth_port_init(out, 256, 0, 0, 0), UNTOUCHED),
        ROW(sat_phy_eth_fif_port_init(out, 1, 2, 1), 0x20201080),
        ROW(overlay_init(out, 3, 65503), 0x2218FFDF),
        ROW(overlay_init(out, 3, 65504), UNTOUCHED),
        ROW(vl3_cli_init(out, 1, 2, 3, 7), 0x23420807),
        ROW(hmx_eth_init(out, 514, 255, 63), 0x2580BFFF),
        ROW(hmx_eth_init(out, 515, 0, 0), UNTOUCHED),
        ROW(hmx_eth_init(out, 0, 256, 0), UNTOUCHED),
        ROW(hmx_eth_init_from_mod(out, 3, 0, 0), 0x2500C000),
        ROW(hmx_eth_init_from_mod(out, 2, 0, 0), UNTOUCHED),
        ROW(hmx_eth_init_from_mod(out, 515, 0, 0), 0x2580C000),
        ROW(hmx_eth_init_from_mod(out, 516, 0, 0), UNTOUCHED),
        ROW(hmx_eth_init_from_slot(out, 2, 0, 63), 0x2500C03F),
        ROW(hmx_eth_init_from_slot(out, 1, 0, 0), UNTOUCHED),
        ROW(hmx_eth_cli_init(out, 4, 1, 5), 0x2500C005),
        ROW(hmx_eth_cli_init(out, 0, 1, 0), UNTOUCHED),
        ROW(hmx_eth_cli_init(out, 516, 1, 0), UNTOUCHED),
        ROW(hmx_eth_cli_init(out, 4, 0, 0), UNTOUCHED),
        ROW(hmx_eth_cli_init(out, 4, 1, 64), UNTOUCHED),
        ROW(mgmt_sup_port_init(out, 31, 127), 0x05FFF000),
        ROW(inband_linecard_init(out, 255), 0x06200FF0),
        ROW(vsan_port_init(out, 31, 127, 4095), 0x08FFFFFF),
        ROW(fcip_port_init(out, 4095), 0x0A000FFF),
        ROW(faport_init(out, 31, 127), 0x0DFFF000),
        ROW(fv_port_init(out, 31, 31, 16383), 0x0EFFFFFF),
        ROW(ivr_init(out, 255, 255), 0x1000FFFF),
        ROW(ifc_init(out, 31, 127, 15), 0x1100FFFF),
        ROW(isapi_port_init(out, 31, 63, 63), 0x14FFE03F),
        ROW(eth_inband_init(out, 255), 0x15FF0000),
        ROW(vfc_port_channel_init(out, 4095), 0x1E100FFF),
        ROW(vfc_slot_port_init(out, 31, 127), 0x1E2FFF00),
        ROW(vfc_fex_init(out, 255, 15, 63), 0x1E43FFFF),
        ROW(sat_phy_eth_port_cli_init(out, 256, 16, 64, 63), 0x1FFFFFFF),
        ROW(sat_phy_eth_fif_port_init(out, 15, 63, 7), 0x20E0FFC0),
        ROW(vl3_init(out, 3, 31, 127, 1023), 0x23FFFFFF),
        ROW(gpc_init(out, 4095, 4095), 0x24FFFFFF),
        ROW(loopback_port_init(out, 1023), 0xFE0003FF),
        ROW(loopback_port_init(out, 1024), UNTOUCHED),
        ROW(null_interface_init(out), 0x17000000),
    };
    for (const auto &row : rows) {
        uint32_t if_index = UNTOUCHED;
        EXPECT_EQ(row.build(&if_index), row.if_index == UNTOUCHED ? 14 : 0) << row.call;
        EXPECT_EQ(if_index, row.if_index) << row.call;
        EXPECT_EQ(row.build(nullptr), 14) << row.call;
    }

    if_index_range range = {};
    EXPECT_EQ(if_index_get_tunnel_range(5, &range), 0);
    EXPECT_EQ(range.first, 0x18050000U);
    EXPECT_EQ(range.last, 0x1805FFFFU);
    EXPECT_EQ(if_index_get_overlay_range(4, &range), 0);
    EXPECT_EQ(range.first, 0x22200000U);
    EXPECT_EQ(range.last, 0x2220FFDFU);
    uint32_t vlan = 0x09050064;
    EXPECT_EQ(if_index_vlan_port_convert_to_vdc(&vlan, 0xA2), 0);
    EXPECT_EQ(vlan, 0x09A20064U);
}

TEST(if_index, generic_accessors_and_predicates) {
    constexpr int NONE = -1; // the accessor answers that the type has no such field
    enum { SUB = 1, PHYSICAL = 2, PORT_CHANNEL_SUB = 4 };
    const struct {
        uint32_t if_index;
        int slot, port, sub_intf;
        int is;
    } rows[] = {
        {0x01081000, 1, 1, 0, PHYSICAL},
        {0x02081005, 1, 1, 5, SUB},
        {0x9A081000, 1, 1, 0, PHYSICAL},
        {0x04000304, NONE, NONE, 3, SUB | PORT_CHANNEL_SUB},
        {0x04000004, NONE, NONE, 0, 0},
        {0x04125000, NONE, NONE, NONE, 0},
        {0x05081000, 1, 1, NONE, PHYSICAL},
        {0x09000064, NONE, NONE, NONE, 0},
        {0x16003004, NONE, NONE, 3, SUB | PORT_CHANNEL_SUB},
        {0x1B02001A, 0x202, 1, 2, SUB},
        {0x1C000013, NONE, NONE, 3, SUB},
        {0x1E000004, NONE, NONE, NONE, 0},
        {0x1E280200, 16, 2, NONE, 0},
        {0x1F641080, 1, 2, 0, PHYSICAL},
        {0x1F641085, 1, 2, 5, SUB},
        {0x2500C045, 3, 1, 5, SUB},
        {0x26000000, NONE, NONE, NONE, 0},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.if_index);
        const struct {
            accessor *get;
            int expected;
        } fields[] = {{if_index_get_slot, row.slot},
                      {if_index_get_port, row.port},
                      {if_index_get_sub_intf, row.sub_intf}};
        for (const auto &field : fields) {
            uint32_t value = UNTOUCHED;
            EXPECT_EQ(field.get(row.if_index, &value), field.expected == NONE ? 12 : 0);
            EXPECT_EQ(value, field.expected == NONE ? UNTOUCHED : (uint32_t)field.expected);
        }
        EXPECT_EQ(if_index_is_sub_intf(row.if_index), (row.is & SUB) != 0);
        EXPECT_EQ(if_index_is_physical_interface(row.if_index), (row.is & PHYSICAL) != 0);
        EXPECT_EQ(if_index_is_port_channel_sub_interface(row.if_index),
                  (row.is & PORT_CHANNEL_SUB) != 0);
        uint32_t main_if_index = UNTOUCHED;
        uint32_t back = UNTOUCHED;
        if (if_index_get_mainintf_from_subintf(row.if_index, &main_if_index) == 0) {
            EXPECT_FALSE(if_index_is_sub_intf(main_if_index));
            EXPECT_EQ(
                if_index_get_subintf_from_mainintf(main_if_index, (uint32_t)row.sub_intf, &back),
                0);
            EXPECT_EQ(back, row.if_index);
            EXPECT_EQ(if_index_get_subintf_from_mainintf(main_if_index, 4096, &back), 14);
        }
    }
    for (accessor *get : {if_index_get_slot, if_index_get_port, if_index_get_sub_intf,
                          if_index_get_mainintf_from_subintf}) {
        uint32_t value = UNTOUCHED;
        EXPECT_EQ(get(0xFE000001, &value), 11);
        EXPECT_EQ(get(0x1A000001, nullptr), 14);
    }

    for (uint32_t type = 0; type < 128; type++) {
        const uint32_t if_index = type << 24;
        EXPECT_EQ(if_index_is_port_channel_intf(if_index), type == 4);
        EXPECT_EQ(if_index_is_eth_port_channel_intf(if_index), type == 22);
        EXPECT_EQ(if_index_is_tunnel_intf(if_index), type == 24);
        EXPECT_EQ(if_index_is_overlay_intf(if_index), type == 34);
        EXPECT_EQ(if_index_is_satellite_interface(if_index), type == 31);
        bool is_virtual = true;
        const bool valid = type >= 1 && type <= 74 && type != 3;
        EXPECT_EQ(if_index_is_virtual_interface(if_index, &is_virtual), valid ? 0 : 11);
        EXPECT_EQ(is_virtual, type == 16 || type == 19);
        uint16_t max_channel = 0;
        const int status = type == 4 || type == 22 ? 0 : 12;
        EXPECT_EQ(if_index_get_max_channel_id_for_ifindex(if_index, &max_channel),
                  valid ? status : 11);
        EXPECT_EQ(max_channel, valid && status == 0 ? 4095 : 0);
    }
    EXPECT_EQ(if_index_port_channel_get_vlan_id(0x16ABC000), 0xABCU);
    EXPECT_EQ(if_index_port_channel_get_vlan_id(0x040ABC00), 0xABCU);
    EXPECT_FALSE(if_index_is_valid_vlan_id(0));
    EXPECT_TRUE(if_index_is_valid_vlan_id(4094));
    EXPECT_FALSE(if_index_is_valid_vlan_id(4095));
}

TEST(if_index, ranges) {
    const struct {
        if_index_range range;
        int status;
        std::vector<uint32_t> if_indexes;
    } rows[] = {
        {{0x1A000000, 0x1A002000}, 0, {0x1A000000, 0x1A001000, 0x1A002000}},
        {{0x1A000001, 0x1A000003}, 0, {0x1A000001, 0x1A000002, 0x1A000003}},
        {{0x09000064, 0x09000064}, 0, {0x09000064}},
        {{0x1C000010, 0x1C000030}, 0, {0x1C000010, 0x1C000020, 0x1C000030}},
        {{0x16000004, 0x16000005}, 0, {0x16000004, 0x16000005}},
        {{0x1A000000, 0x1A081000}, 14, {}}, // another slot
        {{0x1A002000, 0x1A000000}, 14, {}}, // backwards
        {{0x1A000000, 0x02000000}, 12, {}},
        {{0x17000000, 0x17000000}, 12, {}}, // nothing to count
        {{0x1A000000, 0xFE000000}, 11, {}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.range.last);
        uint32_t count = 0;
        EXPECT_EQ(if_index_get_num_ports_in_if_index_range(&row.range, &count), row.status);
        EXPECT_EQ(count, row.if_indexes.size());
        std::vector<uint32_t> got(3);
        EXPECT_EQ(if_index_get_if_index_in_range(&row.range, got.data(), got.size(), &count),
                  row.status);
        got.resize(count);
        EXPECT_EQ(got, row.if_indexes);
        if (row.status != 0) {
            continue;
        }
        EXPECT_EQ(if_index_get_if_index_in_range(&row.range, got.data(), count - 1, &count), 14);
        uint32_t walked = row.range.first;
        for (size_t i = 1; i < row.if_indexes.size(); i++) {
            EXPECT_EQ(if_index_get_next_if_index_in_range(&row.range, &walked), 0);
            EXPECT_EQ(walked, row.if_indexes[i]);
        }
        EXPECT_EQ(if_index_get_next_if_index_in_range(&row.range, &walked), 13);
        uint32_t outside = 0x1A081000;
        EXPECT_EQ(if_index_get_next_if_index_in_range(&row.range, &outside), 14);
    }
}

TEST(if_index, byte_order_comparison_and_fspf) {
    EXPECT_EQ(hton_if_index(0x1A081005), 0x0510081AU);
    EXPECT_EQ(ntoh_if_index(hton_if_index(0x9A081005)), 0x9A081005U);
    EXPECT_LT(if_index_compare(0x1A000000, 0x1A000001), 0);
    EXPECT_EQ(if_index_compare(5, 5), 0);
    EXPECT_GT(if_index_compare(1, 0xFFFFFFFF), 0); // the difference wraps

    const struct {
        uint32_t if_index, fspf;
        uint16_t fspf16;
    } rows[] = {
        {0x01000000, 0x01000000, 0x1000},
        {0x01FFF000, 0x01FFF000, 0x1FFF},
        {0x01000001, 0x01000001, 0},
        {0x04000004, 0x04000004, 0x4004},
        {0x04000104, 0x04000104, 0},
        {0x1A000000, 0, 0},
        {0x81FFFFFF, 0, 0},
        {0, 0, 0},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(convert_if_index_to_fspf_if_index(row.if_index), row.fspf);
        EXPECT_EQ(convert_fspf_if_index_to_if_index(row.fspf), row.fspf);
        EXPECT_EQ(convert_if_index_to_fspf16_if_index(row.if_index), row.fspf16);
        EXPECT_EQ(convert_fspf16_if_index_to_if_index(row.fspf16),
                  row.fspf16 != 0 ? row.if_index : 0);
    }
    EXPECT_EQ(convert_fspf16_if_index_to_if_index(0x4100), 0U); // no such channel
}

TEST(if_index, every_platform_question_pins_the_selector) {
    const struct {
        int first, second;
        uint32_t selector;
    } rows[] = {{1, 1, 2}, {0, 1, 3}, {0, 0, 1}};
    for (const auto &row : rows) {
        cli_set_platform(row.first, row.second);
        EXPECT_EQ(g_cli_platform, row.selector);
        EXPECT_FALSE(cli_platform_is_po_only());
        EXPECT_EQ(g_cli_platform, row.selector);
        EXPECT_FALSE(cli_platform_is_module_base_128());
        EXPECT_EQ(g_cli_platform, 4U);
        EXPECT_TRUE(cli_platform_is_control_eobc());
        EXPECT_TRUE(cli_platform_uses_san_pc());
        EXPECT_FALSE(cli_platform_probe());
    }
}

} // namespace
