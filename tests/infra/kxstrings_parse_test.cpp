#include "frontend/hmx_cmd.h"
#include "infra/utils/kxstrings.h"

#include <arpa/inet.h>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

// Fixed-size outputs start as this, to see that a failure leaves them alone.
constexpr uint8_t UNTOUCHED = 0xa5;

TEST(Number, FollowsTheStandardUnsignedConversion) {
    const struct {
        const char *text;
        uint32_t number;
    } rows[] = {
        {nullptr, 0},
        {"", 0},
        {"12", 12},
        {"0x1F", 31},
        {"017", 15},
        {"08", 0},
        {" \t7", 7},
        {"12abc", 12},
        {"abc", 0},
        {"0x", 0},
        {"-1", 0xffffffff},
        {"-2", 0xfffffffe},
        {"+5", 5},
        {"4294967295", 0xffffffff},
        {"4294967296", 0xffffffff},
        {"99999999999999999999", 0xffffffff},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(kx_parse_number(row.text), row.number) << (row.text ? row.text : "NULL");
    }
}

TEST(IpAddress, Forms) {
    const struct {
        const char *text;
        Bytes bytes; // empty: refused
    } rows[] = {
        {"1.2.3.4", {1, 2, 3, 4}},
        {" \t10.0.255.1", {10, 0, 255, 1}},
        {"1.2.3.4 mask 5", {1, 2, 3, 4}},
        {"1.2.3.4\n", {1, 2, 3, 4}},
        {"001.002.003.0000004", {1, 2, 3, 4}},
        {"08.09.010.1", {8, 9, 10, 1}},
        {"1.2.", {}},
        {"1.2.3", {}},
        {"1.2.3.", {}},
        {"1.2.3 4", {}},
        {"1..2.3.4", {}},
        {".1.2.3.4", {}},
        {"1.2.3.4.", {}},
        {"1.2.3.4.5", {}},
        {"1.2.3.4;", {}},
        {"256.1.1.1", {}},
        {"1.1.1.4294967297", {}},
        {"0x1.2.3.4", {}},
        {"1.2.3.-4", {}},
        {"", {}},
        {"        ", {}},
        {nullptr, {}},
    };
    for (const auto &row : rows) {
        Bytes address(4, UNTOUCHED);
        uint32_t word = 0;
        memcpy(&word, address.data(), 4);
        const int status = kx_parse_ip_address(&word, row.text);
        memcpy(address.data(), &word, 4);
        EXPECT_EQ(status, row.bytes.empty() ? -1 : 0) << (row.text ? row.text : "NULL");
        EXPECT_EQ(address, row.bytes.empty() ? Bytes(4, UNTOUCHED) : row.bytes) << row.text;
    }
}

void expect_same_as_c_library(const std::string &text) {
    Bytes expected(16, UNTOUCHED);
    Bytes address(16, UNTOUCHED);
    const int reference = inet_pton(AF_INET6, text.c_str(), expected.data());
    ASSERT_EQ(kx_parse_ipv6_address(address.data(), text.c_str()), reference == 1 ? 0 : -1) << text;
    ASSERT_EQ(address, expected) << text;
}

TEST(Ipv6Address, NamedFormsAgreeWithTheCLibrary) {
    const struct {
        const char *text;
        int status;
    } rows[] = {
        {"::", 0},
        {"::1", 0},
        {"1::", 0},
        {"::ffff:1.2.3.4", 0},
        {"1:2:3:4:5:6:1.2.3.4", 0},
        {"1:2:3:4:5:6:7:8", 0},
        {"FE80::aBcD", 0},
        {"1::3:4:5:6:7:8", 0},
        {"", -1},
        {":", -1},
        {":1", -1},
        {"1:", -1},
        {":::", -1},
        {"1:::2", -1},
        {"1::2::3", -1},
        {"1:: 2", -1},
        {" ::1", -1},
        {"::1 ", -1},
        {"::00001", -1},
        {"::12345", -1},
        {"::g", -1},
        {"1:2:3:4:5:6:7", -1},
        {"1:2:3:4:5:6:7:8:9", -1},
        {"1:2:3:4:5:6:7::8", -1},  // the gap stands for nothing
        {"1:2:3:4:5:6:7:8::", -1}, // nor here
        {"1:2:3:4:5:6:7:1.2.3.4", -1},
        {"::1.2.3", -1},
        {"::1.2.3.4.", -1},
        {"::1.2.3.4:5", -1},
        {"::1.2.3.256", -1},
        {"::1.2.3.04", -1},
        {"::1..3.4", -1},
        {"::.1.2.3", -1},
        {"::a.1.2.3", -1},
    };
    for (const auto &row : rows) {
        uint8_t address[16];
        EXPECT_EQ(kx_parse_ipv6_address(address, row.text), row.status) << row.text;
        expect_same_as_c_library(row.text);
    }
    EXPECT_EQ(kx_parse_ipv6_address(nullptr, nullptr), -1);
}

// There is no deviation: whatever the C library accepts is accepted with the same bytes.
TEST(Ipv6Address, MutatedTextsAgreeWithTheCLibrary) {
    const char *const seeds[] = {"::",
                                 "::1",
                                 "1::",
                                 "fe80::1:2",
                                 "1:2:3:4:5:6:7:8",
                                 "1:2::7:8",
                                 "::1.2.3.4",
                                 "::ffff:10.20.30.40",
                                 "1:2:3:4:5:6:10.0.0.255",
                                 "2001:db8:aaaa:bbbb:cccc:dddd:eeee:ffff"};
    const std::string alphabet = ":::::....0011259aFfgx% ";
    std::mt19937 random(20240229); // NOLINT: the same corpus every time
    const auto below = [&](size_t n) { return random() % n; };
    int accepted = 0;
    for (int round = 0; round < 200000; ++round) {
        std::string text = seeds[below(std::size(seeds))];
        for (size_t mutations = 1 + below(3); mutations > 0; --mutations) {
            const size_t at = below(text.size() + 1);
            const size_t kind = below(3);
            const char c = alphabet[below(alphabet.size())];
            if (kind == 0) {
                text.insert(at, 1, c);
            } else if (at < text.size()) {
                kind == 1 ? text.erase(at, 1) : text.replace(at, 1, 1, c);
            }
        }
        expect_same_as_c_library(text);
        if (HasFatalFailure()) {
            return;
        }
        uint8_t address[16];
        accepted += kx_parse_ipv6_address(address, text.c_str()) == 0 ? 1 : 0;
    }
    EXPECT_GT(accepted, 20000); // the corpus reaches both sides
    EXPECT_LT(accepted, 180000);
}

class MacAddress : public testing::Test {
protected:
    void TearDown() override {
        kx_debug_print_kxstrings = debug_word;
    }
    const uint32_t debug_word = kx_debug_print_kxstrings;
};

// What a call prints to standard output, the time stamps taken off.
template <typename Call> std::string trace_of(Call call) {
    testing::internal::CaptureStdout();
    call();
    fflush(stdout);
    std::string text = testing::internal::GetCapturedStdout();
    const size_t stamp = strlen("Jan  1 00:00:00.000000: ");
    for (size_t line = 0; line < text.size(); line = text.find('\n', line) + 1) {
        text.erase(line, stamp);
    }
    return text;
}

TEST_F(MacAddress, Forms) {
    const Bytes good = {0x00, 0x1a, 0x22, 0x33, 0x44, 0xF5};
    const std::string extra = "kx_get_adjusted_mac_string: Mac[";
    const struct {
        const char *text;
        bool accepted;
        std::string trace;
    } rows[] = {
        {"00:1a:22:33:44:f5", true, ""},
        {"00-1A-22-33-44-F5", true, ""},
        {"00:1a-22:33-44:f5", true, ""},
        {"001a.2233.44f5", true, ""},
        {"001a-2233-44f5", true, ""},
        {"001a.2233-44f5", true, ""},
        {"0:1a:22:33:44:f5", true, ""},
        {" \t00:1a:22:33:44:f5 vlan 10", true, ""},
        {"0:1a:22:33:44:f5 vlan 10", true, ""},
        {"001a.2233.44f5 10", true, ""},
        {"00:1a:22:33:44:f5\tx", true, ""},
        {"0-1a:22:33:44:f5", false, "Couldn't parse MAC address 0-1a:22:33:44:f5\n"},
        {"00:1:22:33:44:55", false, ""},
        {"00:1a:22:33:44:5", false, ""},
        {"00:1a:22:33:44", false, ""},
        {"00:1a:22.33:44:f5", false, ""},
        {"00:1a:22:33:44:g5", false, ""},
        {"001a.2233.44f", false, ""},
        {"001a.2233.44f55", false, ""},
        {"001a.2233.44f5x", false, ""},
        {"001a:2233:44f5", false, "Couldn't parse MAC address 001a:2233:44f5\n"},
        {"00:1a:22:33:44:f56", false, extra + "00:1a:22:33:44:f56] parsed has extra characters\n"},
        {"001a.2233.44f5 vlan 10", false,
         extra + "001a.2233.44f5 vlan 10] parsed has extra characters\n"},
        {"001a223344f5", false, "Couldn't parse MAC address 001a223344f5\n"},
        {"bogus", false, "Couldn't parse MAC address bogus\n"},
        {" 00:1", false, ""},
        {"", false, ""},
        {nullptr, false, ""},
    };
    for (const auto &row : rows) {
        Bytes mac(6, UNTOUCHED);
        int status = 1;
        const std::string trace =
            trace_of([&] { status = kx_parse_mac_address(mac.data(), row.text); });
        const char *const name = row.text ? row.text : "NULL";
        EXPECT_EQ(status, row.accepted ? 0 : -1) << name;
        EXPECT_EQ(mac, row.accepted ? good : Bytes(6, UNTOUCHED)) << name;
        EXPECT_EQ(trace, row.trace) << name;
    }
}

TEST_F(MacAddress, AdjustmentIsTraced) {
    uint8_t mac[6];
    kx_debug_print_kxstrings = 8 | 16;
    EXPECT_EQ(trace_of([&] { kx_parse_mac_address(mac, "0:11:22:33:44:55 and more"); }),
              "Adjusted MAC String from 0:11:22:33:44:55 and more to 00:11:22:33:44:55 an\n");
    EXPECT_EQ(trace_of([&] { kx_parse_mac_address(mac, "00:11:22:33:44:55"); }),
              "No adjustment in MAC String needed 00:11:22:33:44:55\n");
    kx_debug_print_kxstrings = 0;
    EXPECT_EQ(trace_of([&] { kx_parse_mac_address(mac, "bogus"); }), "");
}

TEST(Scanners, TakeTheirNumbersFromTheWords) {
    const std::string blanks(234, ' ');
    const struct {
        std::string text;
        int32_t ltl;
        int32_t cookie;
    } rows[] = {
        {"", -1, -1},
        {"   ", -1, -1},
        {"ltl 12", 12, -1},
        {"12", 12, -1},
        {"0x20", 32, -1},
        {"ltl", 1, -1},
        {"ltl12", 1, -1},
        {"LTL 12", 0, -1},
        {"ltl 12 extra", 0, -1},
        {"12 extra ltl", 1, -1},
        {"extra 12", 0, -1},
        {"extra ltl 12", 12, -1},
        {"-1", -1, -1},
        {"ltl\t12", 1, -1},
        {"cookie 7", 0, 7},
        {"cookie", 0, -1},
        {"krt  cookie   7", 0, 7},
        {"cookie 7 x", 0, 0},
        {"cookie 7 cookie 9", 0, 9},
        {"cookies 4294967295", 0, -1},
        {"7 cookie", 0, -1},
        {"cookie cookie", 0, 0},
        // 239 characters are examined.
        {blanks + "12345678", 12345, -1},
        {"cookie " + blanks.substr(2) + "12345678", 0, -1},
        {"cookie " + blanks.substr(4) + "12345678", 0, 12},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(kx_get_ltl_from_args(row.text.c_str()), row.ltl) << row.text;
        EXPECT_EQ(kx_get_ltl_cookie_frm_args(row.text.c_str()), row.cookie) << row.text;
    }
    EXPECT_EQ(kx_get_ltl_from_args(nullptr), -1);
    EXPECT_EQ(kx_get_ltl_cookie_frm_args(nullptr), -1);
}

} // namespace
