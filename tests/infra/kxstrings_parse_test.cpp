#include "frontend/hmx_cmd.h"
#include "infra/utils/kxstrings.h"
#include "tests/infra/printed_by.h"

#include <arpa/inet.h>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

// Fixed-size outputs start as this, to see that a failure leaves them alone.
constexpr uint8_t OLD_BYTE = 0xa5;

// The texts between the bars.
std::vector<std::string> texts(const std::string &joined) {
    std::vector<std::string> list(1);
    for (const char c : joined) {
        c == '|' ? list.emplace_back() : list.back() += c;
    }
    return list;
}

TEST(Number, FollowsTheStandardUnsignedConversion) {
    const struct {
        const char *text;
        uint32_t number;
    } rows[] = {{"", 0},
                {"12", 12},
                {"0x1F", 31},
                {"017", 15},
                {"08", 0},
                {" \t7", 7},
                {"12abc", 12},
                {"abc", 0},
                {"0x", 0},
                {"-2", 0xfffffffe},
                {"+5", 5},
                {"4294967295", 0xffffffff},
                {"99999999999999999999", 0xffffffff}};
    for (const auto &row : rows) {
        EXPECT_EQ(kx_parse_number(row.text), row.number) << row.text;
    }
    EXPECT_EQ(kx_parse_number(nullptr), 0u);
}

TEST(IpAddress, Forms) {
    for (const std::string &text : texts("1.20.3.255| \t1.20.3.255|1.20.3.255 mask 5|1.20.3.255\n|"
                                         "001.020.03.00000255")) {
        uint8_t address[4];
        uint32_t word = 0;
        EXPECT_EQ(kx_parse_ip_address(&word, text.c_str()), 0) << text;
        memcpy(address, &word, sizeof word);
        EXPECT_EQ(Bytes(address, address + 4), Bytes({1, 20, 3, 255})) << text;
    }
    for (const std::string &text :
         texts("1.2.|1.2.3|1.2.3.|1.2.3 4|1..2.3.4|.1.2.3.4|1.2.3.4.|1.2.3.4.5|"
               "1.2.3.4;|256.1.1.1|1.1.1.4294967297|0x1.2.3.4|1.2.3.-4||         ")) {
        uint32_t word = 0x12345678;
        EXPECT_EQ(kx_parse_ip_address(&word, text.c_str()), -1) << text;
        EXPECT_EQ(word, 0x12345678u) << text;
    }
    EXPECT_EQ(kx_parse_ip_address(nullptr, nullptr), -1);
}

void expect_same_as_c_library(const std::string &text) {
    Bytes expected(16, OLD_BYTE);
    Bytes address(16, OLD_BYTE);
    const int reference = inet_pton(AF_INET6, text.c_str(), expected.data());
    ASSERT_EQ(kx_parse_ipv6_address(address.data(), text.c_str()), reference == 1 ? 0 : -1) << text;
    ASSERT_EQ(address, expected) << text;
}

TEST(Ipv6Address, NamedFormsAgreeWithTheCLibrary) {
    for (const std::string &text :
         texts("::|::1|1::|::ffff:1.2.3.4|1:2:3:4:5:6:1.2.3.4|1:2:3:4:5:6:7:8|"
               "FE80::aBcD|1::3:4:5:6:7:8")) {
        uint8_t address[16];
        EXPECT_EQ(kx_parse_ipv6_address(address, text.c_str()), 0) << text;
        expect_same_as_c_library(text);
    }
    for (const std::string &text :
         texts("|:|:1|1:|:::|1:::2|1::2::3|1:: 2| ::1|::1 |::00001|::g|"
               "1:2:3:4:5:6:7|1:2:3:4:5:6:7:8:9|1:2:3:4:5:6:7::8|"
               "1:2:3:4:5:6:7:8::|1:2:3:4:5:6:7:1.2.3.4|::1.2.3|::1.2.3.4.|"
               "::1.2.3.4:5|::1.2.3.256|::1.2.3.04|::1..3.4|::.1.2.3|::a.1.2.3")) {
        uint8_t address[16];
        EXPECT_EQ(kx_parse_ipv6_address(address, text.c_str()), -1) << text;
        expect_same_as_c_library(text);
    }
    EXPECT_EQ(kx_parse_ipv6_address(nullptr, nullptr), -1);
}

// There is no deviation: whatever the C library accepts is accepted with the same bytes.
TEST(Ipv6Address, MutatedTextsAgreeWithTheCLibrary) {
    const auto seeds = texts("::|::1|1::|fe80::1:2|1:2:3:4:5:6:7:8|1:2::7:8|::1.2.3.4|"
                             "::ffff:10.20.30.40|1:2:3:4:5:6:10.0.0.255|"
                             "2001:db8:aaaa:bbbb:cccc:dddd:eeee:ffff");
    const std::string alphabet = ":::::....0011259aFfgx% ";
    std::mt19937 random(20240229);
    const auto below = [&](size_t n) { return random() % n; };
    int accepted = 0;
    for (int round = 0; round < 200000; ++round) {
        std::string text = seeds[below(seeds.size())];
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

TEST(MacAddress, Forms) {
    for (const std::string &text :
         texts("00:1a:22:33:44:f5|00-1A-22-33-44-F5|00:1a-22:33-44:f5|"
               "001a.2233.44f5|001a-2233-44f5|001a.2233-44f5|0:1a:22:33:44:f5|"
               " \t00:1a:22:33:44:f5 vlan 10|0:1a:22:33:44:f5 vlan 10|"
               "001a.2233.44f5 10|00:1a:22:33:44:f5\tx")) {
        Bytes mac(6);
        EXPECT_EQ(kx_parse_mac_address(mac.data(), text.c_str()), 0) << text;
        EXPECT_EQ(mac, Bytes({0x00, 0x1a, 0x22, 0x33, 0x44, 0xf5})) << text;
    }
    const struct {
        const char *before; // the trace line around the text
        const char *behind;
        const char *refused;
    } reasons[] = {
        {nullptr, nullptr,
         "00:1:22:33:44:55|00:1a:22:33:44:5|00:1a:22:33:44|00:1a:22.33:44:f5|00:1a:22:33:44:g5|"
         "001a.2233.44f|001a.2233.44f55|001a.2233.44f5x|00:1|"},
        {"Couldn't parse MAC address ", "\n", "001a:2233:44f5|0-1a:22:33:44:f5|001a223344f5|bogus"},
        {"kx_get_adjusted_mac_string: Mac[", "] parsed has extra characters\n",
         "00:1a:22:33:44:f56|001a.2233.44f5 vlan 10"}};
    for (const auto &reason : reasons) {
        for (const std::string &text : texts(reason.refused)) {
            Bytes mac(6, OLD_BYTE);
            int status = 0;
            EXPECT_EQ(traced_by([&] { status = kx_parse_mac_address(mac.data(), text.c_str()); }),
                      reason.before == nullptr ? "" : reason.before + text + reason.behind);
            EXPECT_EQ(status, -1) << text;
            EXPECT_EQ(mac, Bytes(6, OLD_BYTE)) << text;
        }
    }
    EXPECT_EQ(kx_parse_mac_address(nullptr, nullptr), -1);
}

TEST(MacAddress, AdjustmentIsTraced) {
    uint8_t mac[6];
    const uint32_t debug_word = kx_debug_print_kxstrings;
    kx_debug_print_kxstrings = 8 | 16;
    EXPECT_EQ(traced_by([&] { kx_parse_mac_address(mac, "0:11:22:33:44:55 and more"); }),
              "Adjusted MAC String from 0:11:22:33:44:55 and more to 00:11:22:33:44:55 an\n");
    EXPECT_EQ(traced_by([&] { kx_parse_mac_address(mac, "00:11:22:33:44:55"); }),
              "No adjustment in MAC String needed 00:11:22:33:44:55\n");
    EXPECT_EQ(traced_by([&] { kx_parse_mac_address(mac, "bogus"); }),
              "No adjustment in MAC String needed bogus\n");
    kx_debug_print_kxstrings = debug_word;
}

TEST(Scanners, TakeTheirNumbersFromTheWords) {
    const std::string blanks(234, ' ');
    const struct {
        std::string text;
        int32_t ltl;
        int32_t cookie;
    } rows[] = {{"   ", -1, -1},
                {"ltl 12", 12, -1},
                {"0x20", 32, -1},
                {"ltl", 1, -1},
                {"ltl12", 1, -1},
                {"LTL 12", 0, -1},
                {"ltl 12 extra", 0, -1},
                {"12 extra ltl", 1, -1},
                {"extra 12", 0, -1},
                {"extra ltl 12", 12, -1},
                {"-1", -1, -1},
                {"-1 5", 5, -1},
                {"ltl\t12", 1, -1},
                {"krt  cookie   7", 0, 7},
                {"cookie", 0, -1},
                {"cookie 7 x", 0, 0},
                {"cookie 7 cookie 9", 0, 9},
                {"cookies 4294967294", 0, -2},
                {"7 cookie", 0, -1},
                {"cookie cookie", 0, 0},
                // 239 characters are examined.
                {std::string(234, ' ') + "12345678", 12345, -1},
                {"cookie" + std::string(231, ' ') + "12345678", 0, 12}};
    for (const auto &row : rows) {
        EXPECT_EQ(kx_get_ltl_from_args(row.text.c_str()), row.ltl) << row.text;
        EXPECT_EQ(kx_get_ltl_cookie_frm_args(row.text.c_str()), row.cookie) << row.text;
    }
    EXPECT_EQ(kx_get_ltl_from_args(nullptr), -1);
    EXPECT_EQ(kx_get_ltl_cookie_frm_args(nullptr), -1);
}

} // namespace
