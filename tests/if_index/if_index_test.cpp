#include "if_index/if_index.h"
#include "if_index/if_index_platform.h"
#include "tests/golden.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

constexpr uint32_t UNTOUCHED = 0xDEADBEEF;

bool is_valid_type(uint32_t type) {
    return type >= 1 && type <= 74 && type != 3;
}

TEST(IfIndex, Types) {
    std::vector<int> walked;
    uint8_t type = 0;
    while (if_index_get_next_type(&type) == IF_INDEX_OK)
        walked.push_back(type);
    EXPECT_EQ(type, 74);
    EXPECT_EQ(walked.size(), 36U); // 1 to 38 without 3 and 27
    EXPECT_EQ(std::count(walked.begin(), walked.end(), 3), 0);
    EXPECT_EQ(std::count(walked.begin(), walked.end(), 27), 0);
    EXPECT_EQ(walked.back(), 38);
    type = 80;
    EXPECT_EQ(if_index_get_next_type(&type), IF_INDEX_NO_MORE);
    EXPECT_EQ(type, 80);
    EXPECT_TRUE(if_index_is_type_valid_in_current_release(0));
    EXPECT_EQ(if_index_get_next_type(nullptr), 14);

    for (uint32_t top = 0; top < 256; top++) {
        const uint32_t expected = top & 127;
        EXPECT_EQ(if_index_get_type(top << 24 | 5, &type), is_valid_type(expected) ? 0 : 11) << top;
        EXPECT_EQ(type, expected);
        const bool has_all = (top >= 1 && top <= 38 && top != 3) || top == 0xFE;
        EXPECT_EQ(if_index_get_if_index_all_for_type(static_cast<uint8_t>(top)),
                  has_all ? (top | 0x80) << 24 | 0xFFFFFF : 0);
    }
    EXPECT_EQ(if_index_get_type(0x1A000000, nullptr), 14);
}

using Accessor = int(uint32_t if_index, uint32_t *value);

// `only` is the index in which, below the type, exactly the bits of the field are set.
void expect_field(const char *name, Accessor *get, uint32_t only, uint32_t expected) {
    SCOPED_TRACE(name);
    const bool whole = (expected & (expected + 1)) == 0;
    const uint32_t neighbours = only ^ 0x00FFFFFF;
    const uint32_t type = only >> 24;
    uint32_t value = UNTOUCHED;
    EXPECT_EQ(get(only, &value), 0);
    EXPECT_EQ(value, expected);
    EXPECT_EQ(get(only | 0x80000000, &value), 0);
    EXPECT_EQ(value, expected);
    EXPECT_EQ(get(neighbours, &value), 0);
    EXPECT_EQ(value, whole ? 0 : 0x1FEU) << "with every other bit set";
    for (uint32_t other = 0; other < 128; other++) {
        value = UNTOUCHED;
        const bool shared = other == type || (type == 31 && other == 32);
        const int wrong = is_valid_type(other) ? 12 : 11;
        EXPECT_EQ(get(other << 24, &value), shared ? 0 : wrong) << other;
        EXPECT_EQ(value, shared ? 0 : UNTOUCHED) << other;
    }
    EXPECT_EQ(get(only, nullptr), 14);
}

TEST(IfIndex, AccessorsReadTheirBitsOfTheirType) {
#define FIELD(kind, field, only, value)                                                            \
    expect_field(#kind " " #field, if_index_##kind##_get_##field, only, value);
#include "tests/golden/interface_fields.def"
#undef FIELD
}

TEST(IfIndex, AllFieldsAtOnce) {
    uint32_t a = 0, b = 0, c = 0, d = 0;
    EXPECT_EQ(if_index_sat_get_fields(0x1F64A2C5, &a, &b, &c, &d), 0);
    EXPECT_EQ((std::vector<uint32_t>{a, b, c, d}), (std::vector<uint32_t>{100, 10, 11, 5}));
    EXPECT_EQ(if_index_lveth_get_fields(0x1B02001A, &a, &b, &c), 0);
    EXPECT_EQ((std::vector<uint32_t>{a, b, c}), (std::vector<uint32_t>{0x202, 1, 2}));
    EXPECT_EQ(if_index_ivr_get_fields(0x10000A0D, &a, &b), 0);
    EXPECT_EQ((std::vector<uint32_t>{a, b}), (std::vector<uint32_t>{10, 13}));
    EXPECT_EQ(if_index_eobc_get_fields(0x07500000, &a), 0);
    EXPECT_EQ(a, 10U);
    EXPECT_EQ(if_index_lveth_get_fields(0x1B02001A, &a, nullptr, &c), 14);
    EXPECT_EQ(if_index_lveth_get_fields(0x1C02001A, &a, &b, &c), 12);
}

// UNTOUCHED is expected of numbers out of range.
void expect_built(const char *call, int (*build)(uint32_t *), uint32_t expected) {
    uint32_t if_index = UNTOUCHED;
    EXPECT_EQ(build(&if_index), expected == UNTOUCHED ? 14 : 0) << call;
    EXPECT_EQ(if_index, expected) << call;
    EXPECT_EQ(build(nullptr), 14) << call;
}

TEST(IfIndex, Constructors) {
#define ROW(call, if_index)                                                                        \
    expect_built(                                                                                  \
        #call, [](uint32_t *out) { return if_index_##call; }, if_index);
#define BOTH(stem, stored, typed, ...)                                                             \
    ROW(stem##_init(out, __VA_ARGS__), stored) ROW(stem##_cli_init(out, __VA_ARGS__), typed)
#include "tests/golden/interface_constructors.def"
#undef BOTH
#undef ROW
    if_index_range range = {};
    EXPECT_EQ(if_index_get_tunnel_range(5, &range), 0);
    EXPECT_EQ(range.first, 0x18050000U);
    EXPECT_EQ(range.last, 0x1805FFFFU);
    EXPECT_EQ(if_index_get_overlay_range(4, &range), 0);
    EXPECT_EQ(range.first, 0x22200000U);
    EXPECT_EQ(range.last, 0x2220FFDFU);
    uint32_t built = UNTOUCHED;
    EXPECT_EQ(if_index_phy_eth_get_mainintf_from_subintf(0x02081005, &built), 0);
    EXPECT_EQ(built, 0x02081000U);
    EXPECT_EQ(if_index_get_subintf_from_mainintf(0x02081005, 4095, &built), 0);
    EXPECT_EQ(built, 0x02081FFFU);
    uint32_t vlan = 0x09050064;
    EXPECT_EQ(if_index_vlan_port_convert_to_vdc(&vlan, 0xA2), 0);
    EXPECT_EQ(vlan, 0x09A20064U);
}

TEST(IfIndex, GenericAccessorsAndPredicates) {
    Accessor *const fields[] = {if_index_get_slot, if_index_get_port, if_index_get_sub_intf};
    for (const auto &row : golden("interface_views.tsv")) {
        SCOPED_TRACE(row.at(0));
        const uint32_t if_index = number(row[0]);
        for (size_t i = 0; i < std::size(fields); i++) {
            const bool has = row.at(i + 1) != "-";
            uint32_t value = UNTOUCHED;
            EXPECT_EQ(fields[i](if_index, &value), has ? 0 : 12);
            EXPECT_EQ(value, has ? number(row[i + 1]) : UNTOUCHED);
        }
        const std::string &what = row.at(4);
        EXPECT_EQ(if_index_is_sub_intf(if_index), what.starts_with("sub"));
        EXPECT_EQ(if_index_is_physical_interface(if_index), what == "physical");
        EXPECT_EQ(if_index_is_port_channel_sub_interface(if_index), what == "sub port-channel-sub");
        uint32_t main_if_index = UNTOUCHED;
        uint32_t back = UNTOUCHED;
        if (if_index_get_mainintf_from_subintf(if_index, &main_if_index) == 0) {
            EXPECT_FALSE(if_index_is_sub_intf(main_if_index));
            EXPECT_EQ(if_index_get_subintf_from_mainintf(main_if_index, number(row[3]), &back), 0);
            EXPECT_EQ(back, if_index);
            EXPECT_EQ(if_index_get_subintf_from_mainintf(main_if_index, 4096, &back), 14);
        }
    }
    for (Accessor *get : {if_index_get_slot, if_index_get_port, if_index_get_sub_intf,
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
        const bool valid = is_valid_type(type);
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

// The number that each type counts is one higher at each step, from a first index to the third.
TEST(IfIndex, RangesCountTheNumberOfTheirType) {
    for (const auto &row : golden("interface_steps.tsv")) {
        SCOPED_TRACE(row.at(0));
        const uint32_t first = number(row[0]);
        const uint32_t step = number(row.at(1));
        const std::vector<uint32_t> expected = {first, first + step, first + 2 * step};
        const if_index_range range = {expected.front(), expected.back()};
        uint32_t count = 0;
        EXPECT_EQ(if_index_get_num_ports_in_if_index_range(&range, &count), 0);
        EXPECT_EQ(count, 3U);
        std::vector<uint32_t> got(3);
        count = 0;
        EXPECT_EQ(if_index_get_if_index_in_range(&range, got.data(), 2, &count), 14);
        EXPECT_EQ(count, 0U);
        EXPECT_EQ(if_index_get_if_index_in_range(&range, got.data(), 3, &count), 0);
        EXPECT_EQ(count, 3U);
        EXPECT_EQ(got, expected);
        uint32_t walked = expected[0];
        for (const uint32_t next : {expected[1], expected[2]}) {
            EXPECT_EQ(if_index_get_next_if_index_in_range(&range, &walked), 0);
            EXPECT_EQ(walked, next);
        }
        EXPECT_EQ(if_index_get_next_if_index_in_range(&range, &walked), 13);
        for (uint32_t outside : {first - step, first + 3 * step, (first + step) ^ 0x01000000})
            EXPECT_EQ(if_index_get_next_if_index_in_range(&range, &outside), 14);
    }
    // Sub-interfaces are counted when the last index is a sub-interface.
    const if_index_range from_main_to_sub = {0x1A000000, 0x1A000003};
    uint32_t count = 0;
    EXPECT_EQ(if_index_get_num_ports_in_if_index_range(&from_main_to_sub, &count), 0);
    EXPECT_EQ(count, 4U);
}

TEST(IfIndex, RangesThatAreNone) {
    const struct {
        if_index_range range;
        int status;
    } rows[] = {
        {{0x1A000000, 0x1A081000}, 14},                                 // another slot
        {{0x1A002000, 0x1A000000}, 14},                                 // backwards
        {{0x1A000000, 0x02000000}, 12}, {{0x17000000, 0x17000000}, 12}, // nothing to count
        {{0x06180010, 0x06180020}, 12}, // inband, but of no line card
        {{0x26000000, 0x26000001}, 12}, {{0x1A000000, 0xFE000000}, 11},
        {{0xFE000000, 0x1A000000}, 11},
    };
    uint32_t count = 5;
    uint32_t if_index = 0x1A000000;
    for (const auto &row : rows) {
        SCOPED_TRACE(row.range.last);
        EXPECT_EQ(if_index_get_num_ports_in_if_index_range(&row.range, &count), row.status);
        EXPECT_EQ(if_index_get_if_index_in_range(&row.range, &if_index, 1, &count), row.status);
        EXPECT_EQ(if_index_get_next_if_index_in_range(&row.range, &if_index), row.status);
    }
    EXPECT_EQ(count, 5U);
    EXPECT_EQ(if_index, 0x1A000000U);
}

// The outputs are not changed.
TEST(IfIndex, RefusesMissingArgumentsAndWrongTypes) {
    const if_index_range good = {0x1A000000, 0x1A000000};
    uint32_t count = 5;
    uint32_t if_index = 0x1A000000;
#define REFUSED(status, call)                                                                      \
    EXPECT_EQ(if_index_##call, status) << #call;                                                   \
    EXPECT_EQ(count, 5U) << #call;                                                                 \
    EXPECT_EQ(if_index, 0x1A000000U) << #call;
#include "tests/golden/interface_refusals.def"
#undef REFUSED
}

TEST(IfIndex, ByteOrderComparisonAndFspf) {
    EXPECT_EQ(hton_if_index(0x1A081005), 0x0510081AU);
    EXPECT_EQ(ntoh_if_index(hton_if_index(0x9A081005)), 0x9A081005U);
    EXPECT_LT(if_index_compare(0x1A000000, 0x1A000001), 0);
    EXPECT_EQ(if_index_compare(5, 5), 0);
    EXPECT_GT(if_index_compare(1, 0xFFFFFFFF), 0); // the difference wraps

    for (const auto &row : golden("interface_fspf.tsv")) {
        const uint32_t if_index = number(row.at(0));
        const uint32_t fspf = number(row.at(1));
        const auto fspf16 = static_cast<uint16_t>(number(row.at(2)));
        EXPECT_EQ(convert_if_index_to_fspf_if_index(if_index), fspf);
        EXPECT_EQ(convert_fspf_if_index_to_if_index(fspf), fspf);
        EXPECT_EQ(convert_if_index_to_fspf16_if_index(if_index), fspf16);
        EXPECT_EQ(convert_fspf16_if_index_to_if_index(fspf16), fspf16 != 0 ? if_index : 0);
    }
    EXPECT_EQ(convert_fspf16_if_index_to_if_index(0x4100), 0U); // no such channel
}

TEST(IfIndex, EveryPlatformQuestionPinsTheSelector) {
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
