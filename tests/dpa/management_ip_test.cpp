#include "dpa/command/management_ip.h"
#include "dpa/userspace/kxdpa_indirect.h"
#include "sim/host_programs.h"
#include "sim/interpose.h"
#include "tests/golden.h"
#include "tests/host/described.h"
#include "tests/infra/printed_by.h"

#include <cstring>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/wait.h>

namespace {

TEST(ManagementAddress, ConvertsDottedText) {
    for (const auto &row : golden("dotted_texts.tsv")) {
        std::string text = row.at(0); // it is cut into its parts
        EXPECT_EQ(conv_ip_address(text.data()), number(row.at(1))) << row[0];
    }
    EXPECT_EQ(conv_ip_address(nullptr), 0U);
}

TEST(ManagementAddress, IsAskedFromTheHostAndToldToTheDriver) {
    const struct {
        std::optional<std::string> told; // by the host's program, none without the program
        const char *sent;                // in network byte order
        uint32_t stored;                 // the same bytes read as a word of this machine
    } rows[] = {
        {"10.193.4.21", "0ac10415", 0x1504C10A},
        {"255.255.255.255", "ffffffff", 0xFFFFFFFF},
        {"1.2.3.4.5.6.7.8.9.10.11.12.13", "0a0b0c0d", 0x0D0C0B0A}, // the line's last piece counts
        {"", "00000000", 0},
        {std::nullopt, "00000000", 0},
    };
    for (const auto &row : rows) {
        std::string asked;
        model driver;
        driver.state.management_address = row.told;
        driver.trace = [&](const std::string &line) { asked += line; };
        host_programs programs;
        std::string error;
        ASSERT_TRUE(programs.install(driver.state, error)) << error;
        interpose_model(&driver);
        kx_platform_open();
        testing::internal::CaptureStderr(); // the shell's complaint about a missing program
        uint32_t address = 1;
        EXPECT_EQ(kx_dpa_platform_get_management_ip(&address), 0U);
        testing::internal::GetCapturedStderr();
        kx_platform_close();
        interpose_model(nullptr);
        EXPECT_EQ(address, row.stored);
        EXPECT_EQ(asked.substr(0, asked.find(" ->")),
                  std::string("op 57 arg 0x0 flags 2 len 4 in ") + row.sent);
    }
    EXPECT_EQ(kx_dpa_platform_get_management_ip(nullptr), 1U);
}

TEST(ManagementAddress, IsEmptyWhenTheHostSaysNothing) {
    host_programs programs;
    std::string error;
    ASSERT_TRUE(programs.install(described(R"({"management_address": ""})"), error)) << error;
    while (waitpid(-1, nullptr, WNOHANG) > 0) {
    }
    char address[KX_MANAGEMENT_IP_SIZE];
    memset(address, '1', sizeof address);
    kx_dpa_platform_read_management_ip(address);
    EXPECT_STREQ(address, "");
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "the host's program was not waited for";
}

TEST(ManagementAddress, TracesEveryLineThatItReads) {
    host_programs programs;
    std::string error;
    ASSERT_TRUE(programs.install(described(R"({"management_address": "10.1.1.1"})"), error))
        << error;
    kx_debug_print_dpa_platform = 0x97;
    uint32_t address = 0;
    const std::string traced = printed_by([&] { kx_dpa_platform_get_management_ip(&address); });
    kx_debug_print_dpa_platform = 0x87;
    EXPECT_TRUE(traced.ends_with(": value of 10.1.1.1\n ")) << traced;
}

} // namespace
