// What the drop counters export besides their commands.
#include "handlers/port/port_drops.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

TEST(PortDrops, FormattersFillTheTextCellByCell) {
    kx_drop_counters counters{};
    for (const uint32_t stage : {0U, 5U, 23U, 24U, 39U, 40U}) {
        counters.stages[stage].valid = 0x80;
        counters.stages[stage].drops = 4294967200U + stage;
    }
    const std::string ingress = "     4294967200      4294967205      4294967223 ";
    const std::string egress = "     4294967224      4294967239      4294967240 ";
    for (size_t size = 1; size < 80; size++) {
        // A cell is begun while 16 bytes are left. A cell that needs one byte more loses its blank.
        const size_t length = std::min((size / 16) * 16, size_t{48});
        const std::string cut = std::string(1, ' ').substr(0, length == size ? 1 : 0);
        std::vector<char> text(size, '#');
        kx_port_ingress_drops_to_str(text.data(), size, &counters);
        EXPECT_EQ(std::string(text.data()) + cut, ingress.substr(0, length)) << size;
        kx_port_egress_drops_to_str(text.data(), size, &counters);
        EXPECT_EQ(std::string(text.data()) + cut, egress.substr(0, length)) << size;
    }
}

} // namespace
