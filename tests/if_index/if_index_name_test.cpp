#include "if_index/if_index_name.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>

namespace {

struct named_index {
    uint32_t if_index;
    const char *name;
};

// Every type and every form, with the lowest and an awkward number.
const named_index short_names[] = {
    {0x01000000, "fc1/1"},
    {0x01FFFFFF, "fc32/128.4095"},
    {0x02081000, "GigE2/2"},
    {0x02081005, "GigE2/2.5"},
    {0x04000004, "San-po5"},
    {0x04000304, "San-po5.3"},
    {0x04125000, "fc3/6"},
    {0x04200004, "int San-po5"},
    {0x04300004, "int San-po5"},
    {0x05080000, "mgmt0/2"},
    {0x05001000, "mgmt1"},
    {0x06200030, "lc-eth0/4"},
    {0x06000000, "sup-fc0"},
    {0x07100000, "control2"},
    {0x08003007, "cpp1/4/7"},
    {0x08F80007, "vsan7"},
    {0x09000064, "Vlan100"},
    {0x0A000006, "fcip7"},
    {0x0B101000, "iscsi3/2"},
    {0x0C101000, "svc3/2"},
    {0x0D101000, "faport 3/2"},
    {0x0E104007, "fv3/2/8"},
    {0x0F000006, "fc-tunnel 7"},
    {0x10000A0B, "ivr 10:11"},
    {0x11000812, "ifc 2:2:3"},
    {0x12101000, "sme3/2"},
    {0x13000A0B, "sdm 10:11"},
    {0x14102003, "isapi3/2/4"},
    {0x15070000, "sup-eth7"},
    {0x16000004, "Po5"},
    {0x16003FFF, "Po4096.3"},
    {0x17000000, "Null0"},
    {0x18050007, "Tunnel7"},
    {0x19000000, "sup-diag0"},
    {0x1A000000, "Eth1/1"},
    {0x1A081005, "Eth2/2.5"},
    {0x9A081005, "Eth2/2.5"},
    {0x1BFFFFF3, "lveth1024/4096"},
    {0x1B02001A, "lveth515/2.8"},
    {0x1C000010, "Veth2"},
    {0x1C000013, "Veth2.3"},
    {0x1CFFFFF0, "Veth1048576"},
    {0x1D0FFFFF, "vif1048575"},
    {0x1E000004, "vfc5"},
    {0x1E280200, "vfc17/3"},
    {0x1E300004, "vfc-veth5"},
    {0x1E402103, "vfc4/2/3"},
    {0x1E500000, ""},
    {0x1E080004, "Overlay4"},
    {0x1E100004, "tunnel-te4"},
    {0x1E180004, "mti4"},
    {0x1E200200, "peer-id512"},
    {0x1F641085, "Eth101/2/3"},
    {0x20001080, "fif2/3"},
    {0x20201080, "fif_int2/3"},
    {0x21101000, "ioa3/2"},
    {0x22080009, "Overlay9"},
    {0x22100009, "tunnel-te9"},
    {0x22180009, "mti9"},
    {0x22200009, "peer-id9"},
    {0x22280009, ""},
    {0x23420807, "repl2/7/3"},
    {0x23000807, "vl3"},
    {0x24005006, "gpc5:6"},
    {0x2500C000, "Eth4/1"},
    {0x2500C045, "Eth4/2.5"},
    {0x26000001, "0x26000001"},
    {0x4A000001, "0x4a000001"},
    {0x00000000, ""},
    {0x03000001, ""},
    {0x4B000001, ""},
    {0xFE000001, ""},
};

// Where the long name differs from the short one.
const named_index long_names[] = {
    {0x02081000, "GigabitEthernet2/2"},
    {0x02081005, "GigabitEthernet2/2.5"},
    {0x04000004, "san-port-channel 5"},
    {0x04000304, "san-port-channel 5.3"},
    {0x04200004, "internal san-port-channel 5"},
    {0x05080000, "mgmt0 on slot 2"},
    {0x06200030, "0x06200030"},
    {0x06000000, "0x06000000"},
    {0x13000A0B, "sdv 10:11"},
    {0x16000004, "port-channel5"},
    {0x16003FFF, "port-channel4096.3"},
    {0x1A000000, "Ethernet1/1"},
    {0x1A081005, "Ethernet2/2.5"},
    {0x9A081005, "Ethernet2/2.5"},
    {0x1C000010, "Vethernet2"},
    {0x1C000013, "Vethernet2.3"},
    {0x1CFFFFF0, "Vethernet1048576"},
    {0x1F641085, "Ethernet101/2/3"},
    {0x23420807, "Replicator2/7/3"},
    {0x23000807, "Virtual Layer-3"},
    {0x24005006, "Gateway Port-Channel5:6"},
    {0x2500C000, "Ethernet4/1"},
    {0x2500C045, "Ethernet4/2.5"},
    {0x04300004, "internal san-port-channel 5"},
};

const named_index internal_names[] = {
    {0x06000000, "sup-fc0 (high)"}, {0x06080000, "sup-fc0 (low)"},  {0x06100000, "sup-fc0 (drop)"},
    {0x06180000, "sup-fc0 (L)"},    {0x06200030, "lc-eth(4) (LC)"}, {0x06280000, "sup-fc0 (R)"},
    {0x06300000, "sup-fc0"},        {0x04200304, "ipc 2/5/3"},      {0x04000304, "San-po5.3"},
    {0x11000812, "xgfc 2/2/3"},     {0x1A000000, "Eth1/1"},         {0xFE000001, ""},
};

using name_printer = int(char *buffer, size_t size, uint32_t if_index);
using small_printer = int(char *buffer, uint32_t if_index);

void expect_name(name_printer *print, small_printer *print_small, const named_index &row) {
    for (bool small : {false, true}) {
        char buffer[IF_INDEX_NAME_SIZE] = "untouched";
        const int length =
            small ? print_small(buffer, row.if_index) : print(buffer, sizeof buffer, row.if_index);
        EXPECT_STREQ(buffer, row.name) << std::hex << row.if_index;
        EXPECT_EQ(length, (int)strlen(row.name)) << std::hex << row.if_index;
    }
}

TEST(if_index_name, short_long_and_internal_names) {
    for (const named_index &row : short_names) {
        expect_name(snprintf_if_index_short, sprintf_if_index_short, row);
        named_index expected = row;
        for (const named_index &other : long_names) {
            if (other.if_index == row.if_index) {
                expected = other;
            }
        }
        expect_name(snprintf_if_index, sprintf_if_index, expected);
    }
    for (const named_index &row : internal_names) {
        expect_name(snprintf_if_index_internal, sprintf_if_index_internal, row);
    }
}

TEST(if_index_name, ranges) {
    const struct {
        uint32_t first, last;
        const char *name;
        int length; // -1: that of the name
    } rows[] = {
        {0x1A000000, 0x1A003000, "Eth1/1-4", -1},
        {0x1A000001, 0x1A000004, "Eth1/1.1-4", -1},
        {0x1A000000, 0x1A000000, "Eth1/1", -1},
        {0x02000000, 0x02003000, "GigE1/1-4", -1},
        {0x01000000, 0x01003000, "fc1/1-4", -1},
        {0x01000001, 0x01000004, "fc1/1.1fc1/1.1-4", -1}, // the first name is repeated
        {0x04000004, 0x04000006, "San-po5-7", -1},
        {0x04000104, 0x04000304, "San-po5.1-3", -1},
        {0x04125000, 0x04127000, "fc3/6-8", -1},
        {0x04200004, 0x04200006, "int San-po5-7", -1},
        {0x16000004, 0x16000006, "Po5-7", -1},
        {0x16001004, 0x16003004, "Po5.1-3", -1},
        {0x07100000, 0x07200000, "control2-5", -1}, // ends in slot + 1
        {0x08F80007, 0x08F80009, "vsan7-9", -1},
        {0x09000064, 0x090000C8, "Vlan100-200", -1},
        {0x0A000006, 0x0A000008, "fcip7-9", -1},
        {0x0B101000, 0x0B103000, "iscsi3/2-4", -1},
        {0x0C101000, 0x0C103000, "svc3/2-4", -1},
        {0x0D101000, 0x0D103000, "faport 3/2-4", -1},
        {0x0E104007, 0x0E104009, "fv3/2/8-10", -1},
        {0x0F000006, 0x0F000008, "fc-tunnel 7-9", -1},
        {0x10000A0B, 0x10000A0D, "ivr 10:11-13", -1},
        {0x11000812, 0x11000814, "ifc 2:2:3-5", -1},
        {0x12101000, 0x12103000, "sme3/2-4", -1},
        {0x13000A0B, 0x13000A0D, "sdm 10:11-13", -1},
        {0x18050007, 0x18050009, "Tunnel7-9", -1},
        {0x1D000007, 0x1D000009, "vif7-10", -1}, // one more than the name shows
        {0x1E000004, 0x1E000006, "vfc5-7", -1},
        {0x1E280200, 0x1E280400, "vfc17/3-1025", -1}, // bits 15..0 for every sub-type
        {0x1F641080, 0x1F641100, "Eth101/2/3-5", -1},
        {0x1F641080, 0x1F641085, "Eth101/2/3-5", -1},
        {0x21101000, 0x21103000, "ioa3/2-4", -1},
        {0x22080007, 0x22080009, "Overlay7-9", -1},
        {0x22200007, 0x22200009, "peer-id7-9", -1},
        {0x22180007, 0x22180009, "mti7", 8},   // no range form: counted twice
        {0x1C000010, 0x1C000030, "Veth2", 10}, // likewise
        {0x4A000001, 0x4A000002, "0x4a000001", 20},
        {0x2500C000, 0x2500C080, "Eth4/1-3", -1},
        {0x2500C001, 0x2500C003, "Eth4/1.1-3", -1},
        {0x1A000000, 0x02000000, "untouched", 0},
        {0xFE000001, 0xFE000002, "untouched", 0},
    };
    for (const auto &row : rows) {
        char buffer[IF_INDEX_NAME_SIZE] = "untouched";
        const if_index_range range = {row.first, row.last};
        const int length = snprintf_if_index_range_short(buffer, sizeof buffer, &range);
        EXPECT_STREQ(buffer, row.name) << std::hex << row.first;
        EXPECT_EQ(length, row.length < 0 ? (int)strlen(row.name) : row.length);
    }
    char buffer[IF_INDEX_NAME_SIZE];
    const if_index_range range = {0x1A000000, 0x1A003000};
    EXPECT_EQ(snprintf_if_index_range(buffer, sizeof buffer, &range), 13);
    EXPECT_STREQ(buffer, "Ethernet1/1-4");
}

TEST(if_index_name, a_range_that_does_not_fit) {
    const struct {
        if_index_range range;
        size_t size;
        const char *text;
        int length;
    } rows[] = {
        {{0x1A000000, 0x1A003000}, 7, "Eth1/1-4", 8}, // the end may go beyond the size
        {{0x1A000000, 0x1A003000}, 6, "", 0},         // not even the first name
        {{0x09000064, 0x090000C8}, 8, "Vlan100-200", 11},
        {{0x1D000007, 0x1D0FFFFE}, 8, "vif7", 0}, // "-1048575" alone is too long
        {{0x1D000007, 0x1D0FFFFE}, 9, "vif7-1048575", 12},
        {{0x01000001, 0x01000004}, 10, "fc1/1.1fc1/1.1-4", 16},
        {{0x01000001, 0x01000004}, 9, "fc1/1.1", 0},
    };
    for (const auto &row : rows) {
        const std::unique_ptr<char[]> buffer(new char[if_index_range_storage(row.size)]);
        EXPECT_EQ(snprintf_if_index_range_short(buffer.get(), row.size, &row.range), row.length);
        EXPECT_STREQ(buffer.get(), row.text) << row.size;
    }
    const if_index_range range = {0x1A000000, 0x1A003000};
    char exact[if_index_range_storage(12)];
    EXPECT_EQ(snprintf_if_index_range(exact, 12, &range), 13);
    EXPECT_STREQ(exact, "Ethernet1/1-4");
}

// Whatever the index and the buffer: the start of the whole name, and not a byte beyond what the
// header asks for.
TEST(if_index_name, small_buffers) {
    std::mt19937 random(20260);
    for (int i = 0; i < 20000; i++) {
        const uint32_t type = random() % 40;
        const uint32_t if_index = type << 24 | (random() & 0xFFFFFF);
        const if_index_range range = {if_index, type << 24 | (random() & 0xFFFFFF)};
        const size_t size = random() % 20;
        const std::unique_ptr<char[]> buffer(new char[size]);
        const size_t storage = if_index_range_storage(size);
        const std::unique_ptr<char[]> range_buffer(new char[storage]);
        for (name_printer *print :
             {snprintf_if_index_short, snprintf_if_index, snprintf_if_index_internal}) {
            char whole[64];
            const int length = print(whole, sizeof whole, if_index);
            ASSERT_LT((size_t)length, sizeof whole);
            EXPECT_EQ(print(buffer.get(), size, if_index), length);
            if (size > 0) {
                EXPECT_EQ(std::string(buffer.get()), std::string(whole).substr(0, size - 1));
            }
        }
        for (auto *print : {snprintf_if_index_range_short, snprintf_if_index_range}) {
            if (size > 0) {
                range_buffer[0] = '\0';
            }
            EXPECT_GE(print(range_buffer.get(), size, &range), 0);
            if (size > 0) {
                EXPECT_LT(strnlen(range_buffer.get(), storage), storage);
            }
        }
    }
}

} // namespace
