#include "if_index/if_index_parse.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

namespace {

constexpr uint32_t NOT_PARSED = 0xDEADBEEF;

TEST(IfIndexParse, Names) {
    const struct {
        const char *text;
        int built;
        uint32_t if_index;
    } rows[] = {
        {"  null0", 1, 0x17000000},
        {"NULL0", 1, 0x17000000},
        {"null0 ", 0, NOT_PARSED},
        {"null1", 0, NOT_PARSED},
        {"ethernet4/1", 1, 0x2500C000},
        {"  Ethernet4/1.5", 1, 0x2500C005},
        {"\tEthernet4/1.5", 0, NOT_PARSED},
        {"hmx-ethernet4/1", 1, 0x2500C000},
        {"ethernet4", 0, NOT_PARSED},
        {"ethernet4/1/2/3", 0, NOT_PARSED},
        {"ethernet", 0, NOT_PARSED},
        {"ethernet4/1,5", 1, 0x2500C000},
        {"ethernet4/1,ethernet5/1", 0, NOT_PARSED}, // only a digit right behind a comma is cut off
        {"ethernet4/1-9", 1, 0x2500C000},
        {"ethernet4,1", 0, NOT_PARSED},
        {"vethernet7", 1, 0x1C000060},
        {"veth12.3", 1, 0x1C0000B3},
        {"po5", 0, NOT_PARSED},
        {"port-channel5", 1, 0x04000004},
        {"san-port-channel 5.3", 1, 0x04000304},
        {"ethernet-port-channel5", 1, 0x16000004},
        {"ipc 2/5/3", 1, 0x04200304},
        {"fc32/128.7", 1, 0x01FFF007},
        {"fc99/1", 1, NOT_PARSED}, // out of range reads as success
        {"fc99999999999/1", 1, NOT_PARSED},
        {"fc1", 0, NOT_PARSED},
        {"fcip7", 0, NOT_PARSED}, // begins with "fc"
        {"fc1/2/3/4/5/6/7/8/9/10", 0, NOT_PARSED},
        {"fc1/2/3/4/5/6/7/8/9/10/11", 0, NOT_PARSED},
        {"gigabitethernet2/3", 1, 0x02082000},
        {"gigabitethernet2/3/5.7", 1, 0x1F012147},
        {"mgmt0", 1, 0x05000000},
        {"mgmt0/2", 1, 0x05080000},
        {"sup-fc0", 1, 0x05000000},
        {"cpp1/4/7", 1, 0x08003007},
        {"vsan7", 1, 0x08F80007},
        {"vlan4095", 1, NOT_PARSED},
        {"loopback1023", 1, 0xFE0003FF},
        {"tunnel-te5", 1, 0x18000005}, // begins with "tunnel"
        {"vfc-veth5", 1, 0x1E000004},  // begins with "vfc"
        {"vfc4/2/3", 1, 0x1E402103},
        {"remote-ethernet101/2/3", 1, 0x1F641080},
        {"bay1", 0, NOT_PARSED},
        {"serial1", 0, NOT_PARSED},
        {"Unknown1", 0, NOT_PARSED},
        {"POS2/3", 1, 0x01082000},
        {"RP-to-RP2/3", 1, 0x02082000},
        {"Autotunnel7", 1, 0x08F80007},
        {"eth-port-channel3/2", 1, 0x0B101000},
        {"", 0, NOT_PARSED},
        {"7", 0, NOT_PARSED},
    };
    for (const auto &row : rows) {
        uint32_t if_index = NOT_PARSED;
        EXPECT_EQ(vsh_interface_name_to_ifindex(row.text, &if_index), row.built) << row.text;
        EXPECT_EQ(if_index, row.if_index) << row.text;
    }
    EXPECT_EQ(vsh_interface_name_to_ifindex("null0", nullptr), 0);
}

TEST(IfIndexParse, VlanInterfacesBelongToTheVdcOfTheEnvironment) {
    const struct {
        const char *vdc;
        uint32_t if_index;
    } rows[] = {{"3", 0x09030064}, {"256", NOT_PARSED}, {"-1", NOT_PARSED}, {"x", 0x09000064}};
    for (const auto &row : rows) {
        uint32_t if_index = NOT_PARSED;
        setenv("SYSMGR_VDC_ID", row.vdc, 1);
        EXPECT_EQ(vsh_interface_name_to_ifindex("vlan100", &if_index), 1);
        EXPECT_EQ(if_index, row.if_index) << row.vdc;
    }
    unsetenv("SYSMGR_VDC_ID");
}

// A row a keyword: its text, and what it builds of the first one, two, three and four numbers.
TEST(IfIndexParse, KeywordsBuildWhatTheGoldenTableSays) {
    const uint32_t numbers[IF_NAME_MAX_NUMBERS] = {2, 11, 12, 13};
    std::ifstream file(TESTS_DIR "/golden/interface_keywords.tsv");
    uint32_t keyword = 0;
    for (std::string line; std::getline(file, line); keyword++) {
        SCOPED_TRACE(line);
        std::istringstream columns(line);
        std::string text, index;
        std::getline(columns, text, '\t');
        ASSERT_LT(keyword, IF_KEYWORD_COUNT);
        EXPECT_EQ(INTERFACE_TYPE_TABLE_PREFIXinterface_type_names[keyword], text);
        for (int count = 0; count <= IF_NAME_MAX_NUMBERS; count++) {
            const bool builds = count >= 1 && columns >> index && index != "-";
            uint32_t if_index = NOT_PARSED;
            EXPECT_EQ(vsh_interface_coordinates_to_ifindex(keyword, numbers, count, &if_index),
                      builds ? 1 : 0)
                << count;
            EXPECT_EQ(if_index, builds ? std::stoul(index, nullptr, 16) : NOT_PARSED) << count;
        }
    }
    EXPECT_EQ(keyword, 69U);
}

TEST(IfIndexParse, CoordinatesOutOfBounds) {
    const uint32_t numbers[IF_NAME_MAX_NUMBERS + 1] = {1, 1};
    uint32_t if_index = NOT_PARSED;
    for (uint32_t keyword : {0U, 64U, 69U, 0xFFFFFFFFU}) {
        EXPECT_EQ(vsh_interface_coordinates_to_ifindex(keyword, numbers, 2, &if_index), 0);
    }
    for (int count : {-1, 0, 11}) {
        EXPECT_EQ(vsh_interface_coordinates_to_ifindex(IF_KEYWORD_FC, numbers, count, &if_index),
                  0);
    }
    EXPECT_EQ(vsh_interface_coordinates_to_ifindex(IF_KEYWORD_FC, nullptr, 2, &if_index), 0);
    EXPECT_EQ(if_index, NOT_PARSED);
}

} // namespace
