#include "if_index/if_index_name.h"

#include <gtest/gtest.h>

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

TEST(if_index_name, short_names) {
    for (const named_index &row : short_names) {
        char buffer[IF_INDEX_NAME_SIZE] = "untouched";
        const int length = snprintf_if_index_short(buffer, sizeof buffer, row.if_index);
        EXPECT_STREQ(buffer, row.name) << std::hex << row.if_index;
        EXPECT_EQ(length, (int)std::string(row.name).size()) << std::hex << row.if_index;
    }
}

} // namespace
