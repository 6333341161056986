#include "if_index/if_index.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

#include "if_index/if_index_platform.h"

namespace {

constexpr uint32_t UNTOUCHED = 0xDEADBEEF;

TEST(IfIndex, Types) {
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
    EXPECT_EQ(if_index_get_next_type(nullptr), 14);

    for (uint32_t top = 0; top < 256; top++) {
        const uint32_t number = top & 127;
        const bool valid = number >= 1 && number <= 74 && number != 3;
        EXPECT_EQ(if_index_get_type(top << 24 | 5, &type), valid ? 0 : 11) << top;
        EXPECT_EQ(type, number);
        const bool has_all = (top >= 1 && top <= 38 && top != 3) || top == 0xFE;
        EXPECT_EQ(if_index_get_if_index_all_for_type(static_cast<uint8_t>(top)),
                  has_all ? (top | 0x80) << 24 | 0xFFFFFF : 0);
    }
    EXPECT_EQ(if_index_get_type(0x1A000000, nullptr), 14);
}

using Accessor = int(uint32_t if_index, uint32_t *value);

TEST(IfIndex, AccessorsReadTheirBitsOfTheirType) {
    const struct {
        const char *name;
        Accessor *get;
        uint32_t only;  // the index with no other bit below its type than the field's, all set
        uint32_t value; // of the field then
    } rows[] = {
#define F(kind, field, only, value) {#kind " " #field, if_index_##kind##_get_##field, only, value}
        // clang-format off
        F(phy_fc, slot, 0x01F80000, 31), F(phy_fc, port, 0x0107F000, 127),
        F(phy_fc, sub_intf, 0x01000FFF, 4095),
        F(phy_eth, slot, 0x02F80000, 31), F(phy_eth, port, 0x0207F000, 127),
        F(phy_eth, sub_intf, 0x02000FFF, 4095),
        F(port_channel, channel_num, 0x040000FF, 255), F(port_channel, subtype, 0x04300000, 3),
        F(port_channel, subtype_arg, 0x040FFF00, 4095),
        F(port_channel_pair, first, 0x040F0000, 15), F(port_channel_pair, second, 0x0400F000, 15),
        F(mgmt_sup, slot, 0x05F80000, 31), F(mgmt_sup, port, 0x0507F000, 127),
        F(inband, subtype, 0x06F80000, 31),
        F(inband_linecard, num, 0x06000FF0, 255),
        F(eobc, slot, 0x07F80000, 31),
        F(vsan, slot, 0x08F80000, 31), F(vsan, port, 0x0807F000, 127),
        F(vsan, vsan, 0x08000FFF, 4095),
        F(vlan, vd, 0x09FF0000, 255), F(vlan, vlan, 0x09000FFF, 4095),
        F(fcip, tunnel, 0x0A000FFF, 4095),
        F(iscsi, slot, 0x0BF80000, 31), F(iscsi, port, 0x0B07F000, 127),
        F(avanti, slot, 0x0CF80000, 31), F(avanti, port, 0x0C07F000, 127),
        F(faport, slot, 0x0DF80000, 31), F(faport, port, 0x0D07F000, 127),
        F(fv, slot, 0x0EF80000, 31), F(fv, dpp_num, 0x0E07C000, 31),
        F(fv, port, 0x0E003FFF, 16383),
        F(fcmpls_tnnl, tunnel, 0x0F000FFF, 4095),
        F(ivr, first, 0x1000FF00, 255), F(ivr, second, 0x100000FF, 255),
        F(ifc, first, 0x1100F800, 31), F(ifc, second, 0x110007F0, 127),
        F(ifc, third, 0x1100000F, 15),
        F(sme, slot, 0x12F80000, 31), F(sme, port, 0x1207F000, 127),
        F(sdm, first, 0x1300FF00, 255), F(sdm, second, 0x130000FF, 255),
        F(isapi, slot, 0x14F80000, 31), F(isapi, node, 0x1407E000, 63),
        F(isapi, port, 0x1400003F, 63),
        F(eth_inband, num, 0x15FF0000, 255),
        F(eth_port_channel, channel_num, 0x16000FFF, 4095),
        F(eth_port_channel, subtype, 0x16300000, 3),
        F(eth_port_channel, subtype_arg, 0x16FFF000, 4095),
        F(tunnel, tunnel_num, 0x1800FFFF, 65535), F(tunnel, tunnel_type, 0x18FF0000, 255),
        F(phy_ethernet, slot, 0x1AF80000, 31), F(phy_ethernet, port, 0x1A07F000, 127),
        F(phy_ethernet, sub_intf, 0x1A000FFF, 4095),
        F(lveth, slot, 0x1BFF0003, 1023), F(lveth, port, 0x1B00FFF0, 4095),
        F(lveth, sub_intf, 0x1B00000C, 3),
        F(veth, vport, 0x1CFFFFF0, 1048575), F(veth, sub_intf, 0x1C00000F, 15),
        F(server_interface, vport, 0x1CFFFFF0, 1048575),
        F(server_interface, sub_intf, 0x1C00000F, 15),
        F(vif, vifindex, 0x1D0FFFFF, 1048575),
        F(vfc, vfc_subtype, 0x1EF00000, 15), F(vfc, vfc_num, 0x1E00FFFF, 65535),
        F(vfc_port_channel, channel_num, 0x1E000FFF, 4095),
        F(vfc_slot_port, slot, 0x1E0F8000, 31), F(vfc_slot_port, port, 0x1E007F00, 127),
        F(vfc_veth, veth_num, 0x1E00FFFF, 65535),
        F(vfc_fex, first, 0x1E0000FF, 255), F(vfc_fex, second, 0x1E000F00, 15),
        F(vfc_fex, third, 0x1E03F000, 63),
        F(sat, sat_num, 0x1FFF0000, 255), F(sat, slot, 0x1F00F000, 15),
        F(sat, port, 0x1F000FC0, 63), F(sat, sub_intf, 0x1F00003F, 63),
        F(sat_fif, internal, 0x20E00000, 7), F(sat_fif, slot, 0x2000F000, 15),
        F(sat_fif, port, 0x20000FC0, 63),
        F(ioa, slot, 0x21F80000, 31), F(ioa, port, 0x2107F000, 127),
        F(overlay, port_type, 0x22F80000, 31), F(overlay, port, 0x2200FFFF, 65535),
        F(vl3, subtype, 0x23C00000, 3), F(vl3, slot, 0x233E0000, 31),
        F(vl3, port, 0x2301FC00, 127), F(vl3, intf_num, 0x230003FF, 1023),
        F(gpc, switch_id, 0x24FFF000, 4095), F(gpc, ftag, 0x24000FFF, 4095),
        F(hmx_eth, slot, 0x25FFC000, 1023), F(hmx_eth, port, 0x25003FC0, 255),
        F(hmx_eth, sub_intf, 0x2500003F, 63),
    // clang-format on
#undef F
        {"lveth slot, in two pieces", if_index_lveth_get_slot, 0x1B010002, 0x201},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const bool whole = (row.value & (row.value + 1)) == 0;
        const uint32_t neighbours = row.only ^ 0x00FFFFFF;
        const uint32_t type = row.only >> 24;
        uint32_t value = UNTOUCHED;
        EXPECT_EQ(row.get(row.only, &value), 0);
        EXPECT_EQ(value, row.value);
        EXPECT_EQ(row.get(row.only | 0x80000000, &value), 0);
        EXPECT_EQ(value, row.value);
        EXPECT_EQ(row.get(neighbours, &value), 0);
        EXPECT_EQ(value, whole ? 0 : 0x1FEU) << "with every other bit set";
        for (uint32_t other = 0; other < 128; other++) {
            value = UNTOUCHED;
            const bool valid = other >= 1 && other <= 74 && other != 3;
            const bool shared = other == type || (type == 31 && other == 32);
            const int wrong = valid ? 12 : 11;
            EXPECT_EQ(row.get(other << 24, &value), shared ? 0 : wrong) << other;
            EXPECT_EQ(value, shared ? 0 : UNTOUCHED) << other;
        }
        EXPECT_EQ(row.get(row.only, nullptr), 14);
    }
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

TEST(IfIndex, Constructors) {
    struct {
        const char *call;
        std::function<int(uint32_t *)> build;
        uint32_t if_index; // UNTOUCHED: out of range
    } rows[] = {
#define ROW(call, if_index) {#call, [](uint32_t *out) { return if_index_##call; }, if_index}
// Numbers as the index stores them, and the same numbers as a user types them.
#define BOTH(stem, stored, typed, ...)                                                             \
    ROW(stem##_init(out, __VA_ARGS__), stored), ROW(stem##_cli_init(out, __VA_ARGS__), typed)
        BOTH(phy_fc_port, 0x0150D006, 0x0148C006, 10, 13, 6),
        ROW(phy_eth_port_init(out, 10, 13, 6), 0x0250D006),
        BOTH(phy_ethernet, 0x1A50D006, 0x1A48C006, 10, 13, 6),
        ROW(mgmt_sup_port_init(out, 10, 13), 0x0550D000),
        BOTH(inband, 0x06500000, 0x06500000, 10),
        BOTH(inband_linecard, 0x062000A0, 0x06200090, 10),
        BOTH(eobc_port, 0x07500000, 0x07500000, 10),
        ROW(vsan_port_init(out, 10, 13, 6), 0x0850D006),
        BOTH(fcip_port, 0x0A00000A, 0x0A000009, 10),
        BOTH(iscsi_port, 0x0B50D000, 0x0B48C000, 10, 13),
        BOTH(avanti_port, 0x0C50D000, 0x0C48C000, 10, 13),
        BOTH(faport, 0x0D50D000, 0x0D48C000, 10, 13),
        BOTH(fv_port, 0x0E534006, 0x0E4B0005, 10, 13, 6),
        BOTH(fcmpls_tnnl, 0x0F00000A, 0x0F000009, 10),
        BOTH(ivr, 0x10000A0D, 0x10000A0D, 10, 13),
        BOTH(ifc, 0x110050D6, 0x110048C5, 10, 13, 6),
        BOTH(sme_port, 0x1250D000, 0x1248C000, 10, 13),
        BOTH(sdm, 0x13000A0D, 0x13000A0D, 10, 13),
        BOTH(isapi_port, 0x1451A006, 0x14498005, 10, 13, 6),
        BOTH(eth_inband, 0x150A0000, 0x150A0000, 10),
        ROW(lveth_init(out, 10, 13, 3), 0x1B0A00DC),
        BOTH(veth, 0x1C0000AD, 0x1C00009D, 10, 13),
        BOTH(ether_sif, 0x1C0000AD, 0x1C00009D, 10, 13),
        BOTH(vif, 0x1D00000A, 0x1D00000A, 10),
        BOTH(vfc, 0x1E00000A, 0x1E000009, 10),
        BOTH(vfc_port_channel, 0x1E10000A, 0x1E100009, 10),
        BOTH(vfc_slot_port, 0x1E250D00, 0x1E248C00, 10, 13),
        BOTH(vfc_veth, 0x1E30000A, 0x1E300009, 10),
        BOTH(vfc_fex, 0x1E406D0A, 0x1E405C09, 10, 13, 6),
        ROW(sat_phy_eth_fif_port_init(out, 10, 13, 6), 0x20C0A340),
        BOTH(ioa_port, 0x2150D000, 0x2148C000, 10, 13),
        BOTH(vl3, 0x239A180B, 0x2398140B, 2, 13, 6, 11),
        BOTH(gpc, 0x2400A00D, 0x2400A00D, 10, 13),
        ROW(phy_fc_port_init(out, 32, 0, 0), UNTOUCHED),
        ROW(phy_fc_port_init(out, 0, 128, 0), UNTOUCHED),
        ROW(phy_fc_port_init(out, 0, 0, 4096), UNTOUCHED),
        ROW(phy_fc_port_cli_init(out, 0, 1, 0), UNTOUCHED),
        ROW(phy_fc_port_cli_init(out, 33, 1, 0), UNTOUCHED),
        ROW(phy_eth_port_cli_init(out, 32, 128, 0, 7), 0x02FFF007),
        ROW(phy_eth_port_cli_init(out, 10, 11, 12, 13), 0x1F09A30D),
        ROW(phy_eth_port_cli_init(out, 2, 3, 63, 0), 0x1F012FC0),
        ROW(phy_eth_port_cli_init(out, 33, 1, 0, 0), UNTOUCHED),
        ROW(phy_eth_port_cli_init(out, 1, 129, 0, 0), UNTOUCHED),
        ROW(phy_eth_port_cli_init(out, 1, 1, 0, 4096), UNTOUCHED),
        ROW(phy_eth_port_cli_init(out, 1, 1, 64, 0), UNTOUCHED),
        ROW(port_channel_init(out, 300), 0x0400002C),
        ROW(port_channel_init(out, 4095), 0x040000FF),
        ROW(port_channel_init(out, 4096), UNTOUCHED),
        ROW(port_channel_init_internal(out, 10, 2, 13), 0x04200D0A),
        ROW(port_channel_init_internal(out, 0xFFF, 3, 0xFFF), 0x043FFFFF),
        ROW(port_channel_init_internal(out, 0, 4, 0), UNTOUCHED),
        ROW(port_channel_init_internal(out, 0, 0, 4096), UNTOUCHED),
        ROW(port_channel_cli_init(out, 10, 13), 0x04000D09),
        ROW(port_channel_cli_init(out, 4096, 0), 0x040000FF),
        ROW(port_channel_cli_init(out, 0, 0), UNTOUCHED),
        ROW(port_channel_cli_init_internal(out, 10, 2, 13), 0x04200D09),
        ROW(eth_port_channel_init(out, 4095), 0x16000FFF),
        ROW(eth_port_channel_init(out, 4096), UNTOUCHED),
        ROW(eth_port_channel_init_internal(out, 300, 1, 2), 0x1610022C),
        ROW(eth_port_channel_init_internal(out, 4096, 1, 2), UNTOUCHED),
        ROW(eth_port_channel_cli_init(out, 4096, 13), 0x1600DFFF),
        ROW(eth_port_channel_cli_init(out, 10, 13), 0x1600D009),
        ROW(mgmt_sup_port_cli_init(out, 10, 13), 0x0560A000),
        ROW(mgmt_sup_port_cli_init(out, 11, 0), 0x0500B000),
        ROW(mgmt_sup_port_cli_init(out, 128, 0), UNTOUCHED),
        ROW(vsan_port_cli_init(out, 10, 13, 6), 0x0848C006),
        ROW(vsan_port_cli_init(out, 31, 13, 6), 0x08F8D006),
        ROW(vsan_port_cli_init(out, 32, 1, 6), 0x08F80006),
        ROW(vlan_port_init(out, 255, 4094), 0x09FF0FFE),
        ROW(vlan_port_init(out, 10, 13), 0x090A000D),
        ROW(vlan_port_cli_init(out, 10, 13), 0x090A000D),
        ROW(vlan_port_init(out, 0, 0), UNTOUCHED),
        ROW(vlan_port_init(out, 0, 4095), UNTOUCHED),
        ROW(vlan_port_init(out, 256, 1), UNTOUCHED),
        ROW(tunnel_init(out, 0x1FF, 65535), 0x18FFFFFF),
        ROW(tunnel_init(out, 10, 13), 0x180A000D),
        ROW(tunnel_cli_init(out, 10, 13), 0x180A000D),
        ROW(tunnel_init(out, 0, 65536), UNTOUCHED),
        ROW(lveth_init(out, 1023, 4095, 3), 0x1BFFFFFF),
        ROW(lveth_cli_init(out, 10, 13, 8), 0x1B0900C8),
        ROW(lveth_cli_init(out, 515, 2, 1), UNTOUCHED),
        ROW(lveth_cli_init(out, 515, 2, 16), UNTOUCHED),
        ROW(lveth_cli_init(out, 1025, 2, 0), UNTOUCHED),
        ROW(sat_phy_eth_port_init(out, 10, 11, 12, 13), 0x1F0AB30D),
        ROW(sat_phy_eth_port_init(out, 255, 255, 255, 63), 0x1FFFFFFF),
        ROW(sat_phy_eth_port_init(out, 0, 255, 0, 0), 0x1F0FF000),
        ROW(sat_phy_eth_port_init(out, 0, 0, 255, 0), 0x1F003FC0),
        ROW(sat_phy_eth_port_init(out, 256, 0, 0, 0), UNTOUCHED),
        ROW(sat_phy_eth_port_init(out, 0, 256, 0, 0), UNTOUCHED),
        ROW(sat_phy_eth_port_init(out, 0, 0, 256, 0), UNTOUCHED),
        ROW(sat_phy_eth_port_init(out, 0, 0, 0, 64), UNTOUCHED),
        ROW(sat_phy_eth_port_cli_init(out, 10, 11, 12, 13), 0x1F09A2CD),
        ROW(overlay_init(out, 3, 65503), 0x2218FFDF),
        ROW(overlay_cli_init(out, 2, 13), 0x2210000D),
        ROW(overlay_init(out, 255, 0), 0x27F80000),
        ROW(overlay_init(out, 256, 0), UNTOUCHED),
        ROW(overlay_init(out, 3, 65504), UNTOUCHED),
        ROW(hmx_eth_init(out, 10, 13, 6), 0x25028346),
        ROW(hmx_eth_init(out, 514, 255, 63), 0x2580BFFF),
        ROW(hmx_eth_init(out, 515, 0, 0), UNTOUCHED),
        ROW(hmx_eth_init(out, 0, 256, 0), UNTOUCHED),
        ROW(hmx_eth_init(out, 0, 0, 64), UNTOUCHED),
        ROW(hmx_eth_init_from_mod(out, 3, 13, 6), 0x2500C346),
        ROW(hmx_eth_init_from_mod(out, 2, 0, 0), UNTOUCHED),
        ROW(hmx_eth_init_from_mod(out, 515, 0, 0), 0x2580C000),
        ROW(hmx_eth_init_from_mod(out, 516, 0, 0), UNTOUCHED),
        ROW(hmx_eth_init_from_slot(out, 2, 13, 63), 0x2500C37F),
        ROW(hmx_eth_init_from_slot(out, 514, 0, 0), 0x2580C000),
        ROW(hmx_eth_init_from_slot(out, 1, 0, 0), UNTOUCHED),
        ROW(hmx_eth_cli_init(out, 10, 13, 6), 0x25024306),
        ROW(hmx_eth_cli_init(out, 515, 256, 63), 0x2580BFFF),
        ROW(hmx_eth_cli_init(out, 0, 1, 0), UNTOUCHED),
        ROW(hmx_eth_cli_init(out, 516, 1, 0), UNTOUCHED),
        ROW(hmx_eth_cli_init(out, 4, 0, 0), UNTOUCHED),
        ROW(hmx_eth_cli_init(out, 4, 1, 64), UNTOUCHED),
        ROW(loopback_port_init(out, 1023), 0xFE0003FF),
        ROW(loopback_port_cli_init(out, 10), 0xFE00000A),
        ROW(loopback_port_init(out, 1024), UNTOUCHED),
        ROW(null_interface_init(out), 0x17000000),
    };
    for (const auto &row : rows) {
        uint32_t if_index = UNTOUCHED;
        EXPECT_EQ(row.build(&if_index), row.if_index == UNTOUCHED ? 14 : 0) << row.call;
        EXPECT_EQ(if_index, row.if_index) << row.call;
        EXPECT_EQ(row.build(nullptr), 14) << row.call;
    }
#undef BOTH
#undef ROW

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

TEST(IfIndex, GenericAccessorsAndPredicates) {
    constexpr int NONE = -1; // the accessor answers that the type has no such field
    enum { SUB = 1, PHYSICAL = 2, PORT_CHANNEL_SUB = 4 };
    const struct {
        uint32_t if_index;
        int slot, port, sub_intf;
        int is;
    } rows[] = {
        {0x01081000, 1, 1, 0, PHYSICAL},
        {0x02081000, 1, 1, 0, PHYSICAL},
        {0x02081005, 1, 1, 5, SUB},
        {0x1A081005, 1, 1, 5, SUB},
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
        {0x0E4A8011, 9, 17, NONE, 0},
        {0x20009280, 9, 10, NONE, 0},
        {0x26000000, NONE, NONE, NONE, 0},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.if_index);
        const struct {
            Accessor *get;
            int expected;
        } fields[] = {{if_index_get_slot, row.slot},
                      {if_index_get_port, row.port},
                      {if_index_get_sub_intf, row.sub_intf}};
        for (const auto &field : fields) {
            uint32_t value = UNTOUCHED;
            EXPECT_EQ(field.get(row.if_index, &value), field.expected == NONE ? 12 : 0);
            EXPECT_EQ(value,
                      field.expected == NONE ? UNTOUCHED : static_cast<uint32_t>(field.expected));
        }
        EXPECT_EQ(if_index_is_sub_intf(row.if_index), (row.is & SUB) != 0);
        EXPECT_EQ(if_index_is_physical_interface(row.if_index), (row.is & PHYSICAL) != 0);
        EXPECT_EQ(if_index_is_port_channel_sub_interface(row.if_index),
                  (row.is & PORT_CHANNEL_SUB) != 0);
        uint32_t main_if_index = UNTOUCHED;
        uint32_t back = UNTOUCHED;
        if (if_index_get_mainintf_from_subintf(row.if_index, &main_if_index) == 0) {
            EXPECT_FALSE(if_index_is_sub_intf(main_if_index));
            EXPECT_EQ(if_index_get_subintf_from_mainintf(
                          main_if_index, static_cast<uint32_t>(row.sub_intf), &back),
                      0);
            EXPECT_EQ(back, row.if_index);
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

// The number that each type counts goes up by one, from a first index to the third.
TEST(IfIndex, RangesCountTheNumberOfTheirType) {
    const struct {
        uint32_t first, step;
    } rows[] = {
        {0x01489000, 0x1000},  {0x0148900A, 1},      {0x02489000, 0x1000},  {0x0248900A, 1},
        {0x04000009, 1},       {0x04000A09, 0x100},  {0x04199000, 0x1000},  {0x04200009, 1},
        {0x05489000, 0x1000},  {0x06200090, 0x10},   {0x07500000, 0x80000}, {0x0848900A, 1},
        {0x0903000A, 1},       {0x0A000009, 1},      {0x0B489000, 0x1000},  {0x0C489000, 0x1000},
        {0x0D489000, 0x1000},  {0x0E4A4009, 1},      {0x0F000009, 1},       {0x10000A0A, 1},
        {0x11004899, 1},       {0x12489000, 0x1000}, {0x13000A0A, 1},       {0x14494009, 1},
        {0x150A0000, 0x10000}, {0x16000009, 1},      {0x1600A009, 0x1000},  {0x1805000A, 1},
        {0x1A489000, 0x1000},  {0x1A48900A, 1},      {0x1B090090, 0x10},    {0x1B090094, 4},
        {0x1C000090, 0x10},    {0x1C000099, 1},      {0x1D00000A, 1},       {0x1E000009, 1},
        {0x1E200900, 0x100},   {0x1E300009, 1},      {0x1E409909, 0x1000},  {0x1F099240, 0x40},
        {0x1F09924A, 1},       {0x20009240, 0x40},   {0x21489000, 0x1000},  {0x2208000A, 1},
        {0x2352240A, 1},       {0x2400A00A, 1},      {0x25024240, 0x40},    {0x2502424A, 1},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(testing::Message() << std::hex << row.first);
        const std::vector<uint32_t> expected = {row.first, row.first + row.step,
                                                row.first + 2 * row.step};
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
        for (uint32_t outside : {row.first - row.step, row.first + 3 * row.step,
                                 (row.first + row.step) ^ 0x01000000}) {
            EXPECT_EQ(if_index_get_next_if_index_in_range(&range, &outside), 14);
        }
    }
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
    const if_index_range good = {0x1A000000, 0x1A000000};
    EXPECT_EQ(if_index_get_num_ports_in_if_index_range(nullptr, &count), 14);
    EXPECT_EQ(if_index_get_num_ports_in_if_index_range(&good, nullptr), 14);
    EXPECT_EQ(if_index_get_if_index_in_range(nullptr, &if_index, 1, &count), 14);
    EXPECT_EQ(if_index_get_if_index_in_range(&good, nullptr, 1, &count), 14);
    EXPECT_EQ(if_index_get_if_index_in_range(&good, &if_index, 1, nullptr), 14);
    EXPECT_EQ(if_index_get_next_if_index_in_range(nullptr, &if_index), 14);
    EXPECT_EQ(if_index_get_next_if_index_in_range(&good, nullptr), 14);
    EXPECT_EQ(count, 5U);
    EXPECT_EQ(if_index, 0x1A000000U);
    EXPECT_EQ(if_index_get_tunnel_range(5, nullptr), 14);
    EXPECT_EQ(if_index_get_overlay_range(4, nullptr), 14);
    EXPECT_EQ(if_index_vlan_port_convert_to_vdc(nullptr, 5), 14);
    EXPECT_EQ(if_index_vlan_port_convert_to_vdc(&if_index, 5), 12);
    EXPECT_EQ(if_index_is_virtual_interface(0x10000000, nullptr), 14);
    EXPECT_EQ(if_index_get_max_channel_id_for_ifindex(0x04000000, nullptr), 14);
    EXPECT_EQ(if_index_phy_eth_get_mainintf_from_subintf(0x02081005, nullptr), 14);
    EXPECT_EQ(if_index_phy_eth_get_mainintf_from_subintf(0x02081005, &if_index), 0);
    EXPECT_EQ(if_index, 0x02081000U);
    EXPECT_EQ(if_index_phy_eth_get_mainintf_from_subintf(0x1A081005, &if_index), 12);
    EXPECT_EQ(if_index_get_subintf_from_mainintf(0x02081000, 1, nullptr), 14);
    EXPECT_EQ(if_index_get_subintf_from_mainintf(0x02081005, 4095, &if_index), 0);
    EXPECT_EQ(if_index, 0x02081FFFU);
}

TEST(IfIndex, ByteOrderComparisonAndFspf) {
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
