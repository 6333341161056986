#include "frontend/hmx_cmd.h"
#include "host/hex.h"
#include "infra/utils/kxstrings.h"
#include "tests/golden.h"
#include "tests/infra/printed_by.h"

#include <arpa/inet.h>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

// Fixed-size outputs start with this value, to show that a failure does not change them.
constexpr uint8_t OLD_BYTE = 0xa5;

TEST(Number, FollowsTheStandardUnsignedConversion) {
    for (const auto &row : golden("numbers.tsv"))
        EXPECT_EQ(kx_parse_number(row.at(0).c_str()), number(row.at(1))) << row[0];
    EXPECT_EQ(kx_parse_number(nullptr), 0u);
}

// A parser writes its address and nothing after it. For a text that it refuses, it writes nothing.
TEST(Addresses, AreTakenOrRefusedAsTheGoldenTableSays) {
    const std::map<std::string, int (*)(uint8_t *, const char *)> parsers = {
        {"ip",
         [](uint8_t *address, const char *text) {
             return kx_parse_ip_address(reinterpret_cast<uint32_t *>(address), text);
         }},
        {"ipv6", kx_parse_ipv6_address},
        {"mac", kx_parse_mac_address},
    };
    for (const auto &row : golden("address_texts.tsv")) {
        SCOPED_TRACE(row.at(0) + " " + row.at(1));
        alignas(4) uint8_t address[20];
        memset(address, OLD_BYTE, sizeof address);
        Bytes expected = bytes_from_hex(row.at(2)).value_or(Bytes());
        const int expected_status = expected.empty() ? -1 : 0;
        expected.resize(sizeof address, OLD_BYTE);
        int status = 0;
        EXPECT_EQ(traced_by([&] { status = parsers.at(row[0])(address, row[1].c_str()); }),
                  row.size() > 3 ? row[3] : "");
        EXPECT_EQ(status, expected_status);
        EXPECT_EQ(Bytes(std::begin(address), std::end(address)), expected);
    }
    for (const auto &[name, parse] : parsers)
        EXPECT_EQ(parse(nullptr, nullptr), -1) << name;
}

// Without exceptions: whatever the C library accepts is accepted, with the same bytes.
TEST(Ipv6Address, MutatedTextsAgreeWithTheCLibrary) {
    std::vector<std::string> seeds;
    for (const auto &row : golden("address_texts.tsv"))
        if (row.at(0) == "ipv6" && row.at(2) != "-")
            seeds.push_back(row[1]);
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
            if (kind == 0)
                text.insert(at, 1, c);
            else if (at < text.size())
                kind == 1 ? text.erase(at, 1) : text.replace(at, 1, 1, c);
        }
        Bytes expected(16, OLD_BYTE);
        Bytes address(16, OLD_BYTE);
        const int reference = inet_pton(AF_INET6, text.c_str(), expected.data());
        ASSERT_EQ(kx_parse_ipv6_address(address.data(), text.c_str()), reference - 1) << text;
        ASSERT_EQ(address, expected) << text;
        accepted += reference;
    }
    EXPECT_GT(accepted, 20000); // the corpus reaches both sides
    EXPECT_LT(accepted, 180000);
}

TEST(MacAddress, AdjustmentIsTraced) {
    uint8_t mac[6];
    const uint32_t debug_word = kx_debug_print_kxstrings;
    kx_debug_print_kxstrings = 0x97;
    EXPECT_EQ(traced_by([&] { kx_parse_mac_address(mac, "0:11:22:33:44:55 and more"); }), "");
    kx_debug_print_kxstrings = 8;
    EXPECT_EQ(traced_by([&] { kx_parse_mac_address(mac, "0:11:22:33:44:55 and more"); }),
              "Adjusted MAC String from 0:11:22:33:44:55 and more to 00:11:22:33:44:55 an\n");
    EXPECT_EQ(traced_by([&] { kx_parse_mac_address(mac, "00:11:22:33:44:55"); }), "");
    kx_debug_print_kxstrings = 16;
    EXPECT_EQ(traced_by([&] { kx_parse_mac_address(mac, "00:11:22:33:44:55"); }),
              "No adjustment in MAC String needed 00:11:22:33:44:55\n");
    EXPECT_EQ(traced_by([&] { kx_parse_mac_address(mac, "bogus"); }),
              "No adjustment in MAC String needed bogus\n");
    kx_debug_print_kxstrings = debug_word;
}

TEST(Scanners, TakeTheirNumbersFromTheWords) {
    for (const auto &row : golden("scanned_words.tsv")) {
        const char *const text = row.at(0).c_str();
        EXPECT_EQ(kx_get_ltl_from_args(text), static_cast<int32_t>(number(row.at(1)))) << text;
        EXPECT_EQ(kx_get_ltl_cookie_frm_args(text), static_cast<int32_t>(number(row.at(2))))
            << text;
    }
    EXPECT_EQ(kx_get_ltl_from_args(nullptr), -1);
    EXPECT_EQ(kx_get_ltl_cookie_frm_args(nullptr), -1);
}

} // namespace
