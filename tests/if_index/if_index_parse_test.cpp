#include "if_index/if_index_parse.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "if_index/if_index_name.h"

namespace {

constexpr uint32_t UNTOUCHED = 0xDEADBEEF;

TEST(if_index_parse, names) {
    const struct {
        const char *text;
        int built;
        uint32_t if_index;
    } rows[] = {
        {"  null0", 1, 0x17000000},
        {"NULL0", 1, 0x17000000},
        {"null0 ", 0, UNTOUCHED},
        {"null1", 0, UNTOUCHED},
        {"ethernet4/1", 1, 0x2500C000},
        {"  Ethernet4/1.5", 1, 0x2500C005},
        {"\tEthernet4/1.5", 0, UNTOUCHED},
        {"hmx-ethernet4/1", 1, 0x2500C000},
        {"ethernet4", 0, UNTOUCHED},
        {"ethernet4/1/2/3", 0, UNTOUCHED},
        {"ethernet", 0, UNTOUCHED},
        {"ethernet4/1,5", 1, 0x2500C000},
        {"ethernet4/1,ethernet5/1", 0, UNTOUCHED}, // only a digit right behind a comma is cut off
        {"ethernet4/1-9", 1, 0x2500C000},
        {"ethernet4,1", 0, UNTOUCHED},
        {"vethernet7", 1, 0x1C000060},
        {"veth12.3", 1, 0x1C0000B3},
        {"po5", 0, UNTOUCHED},
        {"port-channel5", 1, 0x04000004},
        {"san-port-channel 5.3", 1, 0x04000304},
        {"ethernet-port-channel5", 1, 0x16000004},
        {"ipc 2/5/3", 1, 0x04200304},
        {"fc32/128.7", 1, 0x01FFF007},
        {"fc99/1", 1, UNTOUCHED}, // out of range reads as success
        {"fc99999999999/1", 1, UNTOUCHED},
        {"fc1", 0, UNTOUCHED},
        {"fcip7", 0, UNTOUCHED}, // begins with "fc"
        {"fc1/2/3/4/5/6/7/8/9/10", 0, UNTOUCHED},
        {"fc1/2/3/4/5/6/7/8/9/10/11", 0, UNTOUCHED},
        {"gigabitethernet2/3", 1, 0x02082000},
        {"gigabitethernet2/3/5.7", 1, 0x1F012147},
        {"mgmt0", 1, 0x05000000},
        {"mgmt0/2", 1, 0x05080000},
        {"sup-fc0", 1, 0x05000000},
        {"cpp1/4/7", 1, 0x08003007},
        {"vsan7", 1, 0x08F80007},
        {"vlan4095", 1, UNTOUCHED},
        {"loopback1023", 1, 0xFE0003FF},
        {"tunnel-te5", 1, 0x18000005}, // begins with "tunnel"
        {"vfc-veth5", 1, 0x1E000004},  // begins with "vfc"
        {"vfc4/2/3", 1, 0x1E402103},
        {"remote-ethernet101/2/3", 1, 0x1F641080},
        {"bay1", 0, UNTOUCHED},
        {"serial1", 0, UNTOUCHED},
        {"Unknown1", 0, UNTOUCHED},
        {"POS2/3", 1, 0x01082000},
        {"RP-to-RP2/3", 1, 0x02082000},
        {"Autotunnel7", 1, 0x08F80007},
        {"eth-port-channel3/2", 1, 0x0B101000},
        {"", 0, UNTOUCHED},
        {"7", 0, UNTOUCHED},
    };
    for (const auto &row : rows) {
        uint32_t if_index = UNTOUCHED;
        EXPECT_EQ(vsh_interface_name_to_ifindex(row.text, &if_index), row.built) << row.text;
        EXPECT_EQ(if_index, row.if_index) << row.text;
    }
    EXPECT_EQ(vsh_interface_name_to_ifindex("null0", nullptr), 0);
}

TEST(if_index_parse, vlan_interfaces_belong_to_the_vdc_of_the_environment) {
    const struct {
        const char *vdc;
        uint32_t if_index;
    } rows[] = {{"3", 0x09030064}, {"256", UNTOUCHED}, {"-1", UNTOUCHED}, {"x", 0x09000064}};
    for (const auto &row : rows) {
        uint32_t if_index = UNTOUCHED;
        setenv("SYSMGR_VDC_ID", row.vdc, 1);
        EXPECT_EQ(vsh_interface_name_to_ifindex("vlan100", &if_index), 1);
        EXPECT_EQ(if_index, row.if_index) << row.vdc;
    }
    unsetenv("SYSMGR_VDC_ID");
}

TEST(if_index_parse, a_name_comes_back_from_its_index) {
    // Long names whose first keyword is their own.
    for (const char *name : {"fc3/4",
                             "fc3/4.5",
                             "GigabitEthernet3/4",
                             "GigabitEthernet3/4.5",
                             "san-port-channel 5",
                             "san-port-channel 5.3",
                             "mgmt0",
                             "mgmt3",
                             "control2",
                             "cpp1/4/7",
                             "vsan7",
                             "Vlan100",
                             "iscsi3/2",
                             "svc3/2",
                             "faport 3/2",
                             "fv3/2/8",
                             "sme3/2",
                             "Null0",
                             "Tunnel7",
                             "Ethernet4/1",
                             "Ethernet4/1.5",
                             "lveth515/2",
                             "lveth515/2.8",
                             "Vethernet2",
                             "Vethernet2.3",
                             "vfc5",
                             "vfc17/3",
                             "vfc4/2/3",
                             "ioa3/2",
                             "Overlay9",
                             "mti9"}) {
        uint32_t if_index = UNTOUCHED;
        char again[IF_INDEX_NAME_SIZE];
        EXPECT_EQ(vsh_interface_name_to_ifindex(name, &if_index), 1) << name;
        sprintf_if_index(again, if_index);
        EXPECT_STREQ(again, name);
    }
    // Types whose keyword only a caller can choose: another keyword is found in the name first, or
    // the name begins with another word.
    const struct {
        uint32_t keyword;
        std::vector<uint32_t> numbers;
        const char *name;
    } rows[] = {
        {IF_KEYWORD_FCIP, {7}, "fcip7"},
        {IF_KEYWORD_FC_TUNNEL, {7}, "fc-tunnel 7"},
        {IF_KEYWORD_VFC_VETH, {5}, "vfc-veth5"},
        {IF_KEYWORD_TUNNEL_TE, {5}, "tunnel-te5"},
        {IF_KEYWORD_VETHERNET, {7, 2}, "Vethernet7.2"},
        {IF_KEYWORD_REMOTE_ETHERNET, {101, 2, 3}, "Ethernet101/2/3"},
        {IF_KEYWORD_ETHERNET_PORT_CHANNEL, {5, 3}, "port-channel5.3"},
        {IF_KEYWORD_MGMT, {0, 2}, "mgmt0 on slot 2"},
        {IF_KEYWORD_IPC, {2, 5, 0}, "internal san-port-channel 5"},
        {IF_KEYWORD_VFC_PORT_CHANNEL, {5}, "tunnel-te4"}, // reads as an overlay kind
    };
    for (const auto &row : rows) {
        uint32_t if_index = UNTOUCHED;
        char name[IF_INDEX_NAME_SIZE];
        EXPECT_EQ(vsh_interface_coordinates_to_ifindex(row.keyword, row.numbers.data(),
                                                       (int)row.numbers.size(), &if_index),
                  1);
        sprintf_if_index(name, if_index);
        EXPECT_STREQ(name, row.name);
    }
}

TEST(if_index_parse, coordinates_out_of_bounds) {
    const uint32_t numbers[IF_NAME_MAX_NUMBERS + 1] = {1, 1};
    uint32_t if_index = UNTOUCHED;
    for (uint32_t keyword : {0U, 64U, 69U, 0xFFFFFFFFU}) {
        EXPECT_EQ(vsh_interface_coordinates_to_ifindex(keyword, numbers, 2, &if_index), 0);
    }
    for (int count : {-1, 0, 11}) {
        EXPECT_EQ(vsh_interface_coordinates_to_ifindex(IF_KEYWORD_FC, numbers, count, &if_index),
                  0);
    }
    EXPECT_EQ(vsh_interface_coordinates_to_ifindex(IF_KEYWORD_FC, nullptr, 2, &if_index), 0);
    EXPECT_EQ(if_index, UNTOUCHED);
}

} // namespace
