#include "if_index/if_index_name.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>

namespace {

struct NamedIndex {
    uint32_t if_index;
    const char *name;
    const char *long_name = nullptr; // where it differs
};

// Every type and every form, each number of two digits and different from its neighbours.
const NamedIndex NAMES[] = {
    {0x0148A000, "fc10/11"},
    {0x0148A00C, "fc10/11.12"},
    {0x0248A000, "GigE10/11", "GigabitEthernet10/11"},
    {0x0248A00C, "GigE10/11.12", "GigabitEthernet10/11.12"},
    {0x04000009, "San-po10", "san-port-channel 10"},
    {0x04000C09, "San-po10.12", "san-port-channel 10.12"},
    {0x0419A000, "fc10/11"},
    {0x04200009, "int San-po10", "internal san-port-channel 10"},
    {0x0430000A, "int San-po11", "internal san-port-channel 11"},
    {0x05494000, "mgmt0/10", "mgmt0 on slot 10"},
    {0x0500A000, "mgmt10"},
    {0x06200090, "lc-eth0/10", "0x06200090"},
    {0x06180000, "sup-fc0", "0x06180000"},
    {0x06280000, "sup-fc0", "0x06280000"},
    {0x07500000, "control10"},
    {0x0848A00C, "cpp10/11/12"},
    {0x08F0A00C, "cpp31/11/12"},
    {0x08F8A00C, "vsan12"},
    {0x09030064, "Vlan100"},
    {0x0A000009, "fcip10"},
    {0x0B48A000, "iscsi10/11"},
    {0x0C48A000, "svc10/11"},
    {0x0D48A000, "faport 10/11"},
    {0x0E4A800B, "fv10/11/12"},
    {0x0F000009, "fc-tunnel 10"},
    {0x10000A0B, "ivr 10:11"},
    {0x110048AB, "ifc 10:11:12"},
    {0x1248A000, "sme10/11"},
    {0x13000A0B, "sdm 10:11", "sdv 10:11"},
    {0x1449400B, "isapi10/11/12"},
    {0x150A0000, "sup-eth10"},
    {0x16000009, "Po10", "port-channel10"},
    {0x1600C009, "Po10.12", "port-channel10.12"},
    {0x17000000, "Null0"},
    {0x1805000A, "Tunnel10"},
    {0x19000000, "sup-diag0"},
    {0x1A48A000, "Eth10/11", "Ethernet10/11"},
    {0x1A48A00C, "Eth10/11.12", "Ethernet10/11.12"},
    {0x9A48A00C, "Eth10/11.12", "Ethernet10/11.12"}, // bit 31 is no part of the type
    {0x1B0900A0, "lveth10/11"},
    {0x1B0900AE, "lveth522/11.12"},
    {0x1B0900A8, "lveth10/11.8"},
    {0x1C000090, "Veth10", "Vethernet10"},
    {0x1C00009C, "Veth10.12", "Vethernet10.12"},
    {0x1D00000A, "vif10"},
    {0x1E000009, "vfc10"},
    {0x1E100009, "tunnel-te9"}, // also reads as an overlay kind
    {0x1E2C8A00, "vfc26/11"},
    {0x1E300009, "vfc-veth10"},
    {0x1E40BA09, "vfc10/11/12"},
    {0x1E500009, ""},
    {0x1E08000A, "Overlay10"},
    {0x1E10000A, "tunnel-te10"},
    {0x1E18000A, "mti10"},
    {0x1E20000A, "peer-id10"},
    {0x1E280A00, "vfc17/11"},
    {0x1F09A2CC, "Eth10/11/12", "Ethernet10/11/12"},
    {0x20009280, "fif10/11"},
    {0x20209280, "fif_int10/11"},
    {0x20809280, "fif_int10/11"},
    {0x2148A000, "ioa10/11"},
    {0x2208000A, "Overlay10"},
    {0x2210000A, "tunnel-te10"},
    {0x2218000A, "mti10"},
    {0x2220000A, "peer-id10"},
    {0x2200000A, ""},
    {0x2228000A, ""},
    {0x2352280C, "repl10/12/11", "Replicator10/12/11"},
    {0x2312280C, "vl3", "Virtual Layer-3"},
    {0x2400A00B, "gpc10:11", "Gateway Port-Channel10:11"},
    {0x25024280, "Eth10/11", "Ethernet10/11"},
    {0x2502428C, "Eth10/11.12", "Ethernet10/11.12"},
    {0x2600000A, "0x2600000a"},
    {0x4A00000A, "0x4a00000a"},
    {0x00000000, ""},
    {0x0300000A, ""},
    {0x4B00000A, ""},
    {0xFE00000A, ""},
    {0x01FFFFFF, "fc32/128.4095"},
    {0x1BFFFFF3, "lveth1024/4096"},
    {0x1CFFFFF0, "Veth1048576", "Vethernet1048576"},
};

const NamedIndex INTERNAL_NAMES[] = {
    {0x06000000, "sup-fc0 (high)"}, {0x06080000, "sup-fc0 (low)"},   {0x06100000, "sup-fc0 (drop)"},
    {0x06180000, "sup-fc0 (L)"},    {0x06200090, "lc-eth(10) (LC)"}, {0x06280000, "sup-fc0 (R)"},
    {0x06300000, "sup-fc0"},        {0x06F80000, "sup-fc0"},         {0x04200C09, "ipc 2/10/12"},
    {0x04300C09, "ipc 3/10/12"},    {0x04000C09, "San-po10.12"},     {0x0419A000, "fc10/11"},
    {0x110048AB, "xgfc 10/11/12"},  {0x1A48A000, "Eth10/11"},        {0xFE00000A, ""},
};

using NamePrinter = int(char *buffer, size_t size, uint32_t if_index);
using SmallPrinter = int(char *buffer, uint32_t if_index);

void expect_name(NamePrinter *print, SmallPrinter *print_small, uint32_t if_index,
                 const char *name) {
    for (const bool small : {false, true}) {
        char buffer[IF_INDEX_NAME_SIZE] = "untouched";
        const int length =
            small ? print_small(buffer, if_index) : print(buffer, sizeof buffer, if_index);
        EXPECT_STREQ(buffer, name) << std::hex << if_index;
        EXPECT_EQ(length, static_cast<int>(strlen(name))) << std::hex << if_index;
    }
}

TEST(IfIndexName, ShortLongAndInternal) {
    for (const NamedIndex &row : NAMES) {
        const char *long_name = row.long_name == nullptr ? row.name : row.long_name;
        expect_name(snprintf_if_index_short, sprintf_if_index_short, row.if_index, row.name);
        expect_name(snprintf_if_index, sprintf_if_index, row.if_index, long_name);
    }
    for (const NamedIndex &row : INTERNAL_NAMES) {
        expect_name(snprintf_if_index_internal, sprintf_if_index_internal, row.if_index, row.name);
    }
}

TEST(IfIndexName, Ranges) {
    const struct {
        uint32_t first, last;
        const char *name;
        int length = -1; // that of the name
    } rows[] = {
        {0x1A489000, 0x1A48B000, "Eth10/10-12"},
        {0x1A48900A, 0x1A48900C, "Eth10/10.10-12"},
        {0x02489000, 0x0248B000, "GigE10/10-12"},
        {0x0248900A, 0x0248900C, "GigE10/10.10-12"},
        {0x01489000, 0x0148B000, "fc10/10-12"},
        {0x0148900A, 0x0148900C, "fc10/10.10fc10/10.10-12"},
        {0x04000009, 0x0400000B, "San-po10-12"},
        {0x04000A09, 0x04000C09, "San-po10.10-12"},
        {0x04199000, 0x0419B000, "fc10/10-12"},
        {0x04200009, 0x0420000B, "int San-po10-12"},
        {0x16000009, 0x1600000B, "Po10-12"},
        {0x1600A009, 0x1600C009, "Po10.10-12"},
        {0x07500000, 0x07600000, "control10-13"},
        {0x08F8000A, 0x08F8000C, "vsan10-12"},
        {0x0848900A, 0x0848900C, "cpp10/10/10-12"},
        {0x09000064, 0x090000C8, "Vlan100-200"},
        {0x0A000009, 0x0A00000B, "fcip10-12"},
        {0x0F000009, 0x0F00000B, "fc-tunnel 10-12"},
        {0x0B489000, 0x0B48B000, "iscsi10/10-12"},
        {0x0C489000, 0x0C48B000, "svc10/10-12"},
        {0x0D489000, 0x0D48B000, "faport 10/10-12"},
        {0x12489000, 0x1248B000, "sme10/10-12"},
        {0x21489000, 0x2148B000, "ioa10/10-12"},
        {0x0E4A4009, 0x0E4A400B, "fv10/10/10-12"},
        {0x10000A0A, 0x10000A0C, "ivr 10:10-12"},
        {0x13000A0A, 0x13000A0C, "sdm 10:10-12"},
        {0x11004899, 0x1100489B, "ifc 10:10:10-12"},
        {0x1800000A, 0x1800000C, "Tunnel10-12"},
        {0x1D00000A, 0x1D00000C, "vif10-13"},
        {0x1E000009, 0x1E00000B, "vfc10-12"},
        {0x1E2C0900, 0x1E2C0B00, "vfc25/10-2817"},
        {0x1F099240, 0x1F0992C0, "Eth10/10/10-12"},
        {0x1F099240, 0x1F09924D, "Eth10/10/10-13"},
        {0x2208000A, 0x2208000C, "Overlay10-12"},
        {0x2220000A, 0x2220000C, "peer-id10-12"},
        {0x25024240, 0x250242C0, "Eth10/10-12"},
        {0x2502424A, 0x2502424C, "Eth10/10.10-12"},
        {0x1A489000, 0x1A489000, "Eth10/10"},
        // No range form: the first name, counted twice.
        {0x2218000A, 0x2218000C, "mti10", 10},
        {0x2210000A, 0x2210000C, "tunnel-te10", 22},
        {0x1C000090, 0x1C0000B0, "Veth10", 12},
        {0x4A00000A, 0x4A00000C, "0x4a00000a", 20},
        {0x1A000000, 0x02000000, "untouched", 0},
        {0xFE000001, 0xFE000002, "untouched", 0},
    };
    for (const auto &row : rows) {
        char buffer[IF_INDEX_NAME_SIZE] = "untouched";
        const if_index_range range = {row.first, row.last};
        const int length = snprintf_if_index_range_short(buffer, sizeof buffer, &range);
        EXPECT_STREQ(buffer, row.name) << std::hex << row.first;
        EXPECT_EQ(length, row.length < 0 ? static_cast<int>(strlen(row.name)) : row.length);
    }
    char buffer[IF_INDEX_NAME_SIZE];
    const if_index_range range = {0x1A000000, 0x1A003000};
    EXPECT_EQ(snprintf_if_index_range(buffer, sizeof buffer, &range), 13);
    EXPECT_STREQ(buffer, "Ethernet1/1-4");
}

TEST(IfIndexName, RangeThatDoesNotFit) {
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
TEST(IfIndexName, SmallBuffers) {
    std::mt19937 random(20260);
    for (int i = 0; i < 20000; i++) {
        const uint32_t type = random() % 40;
        const uint32_t if_index = type << 24 | (random() & 0xFFFFFF);
        const if_index_range range = {if_index, type << 24 | (random() & 0xFFFFFF)};
        const size_t size = random() % 20;
        const std::unique_ptr<char[]> buffer(new char[size]);
        const size_t storage = if_index_range_storage(size);
        const std::unique_ptr<char[]> range_buffer(new char[storage]);
        for (NamePrinter *print :
             {snprintf_if_index_short, snprintf_if_index, snprintf_if_index_internal}) {
            char whole[64];
            const int length = print(whole, sizeof whole, if_index);
            ASSERT_LT(static_cast<size_t>(length), sizeof whole);
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
