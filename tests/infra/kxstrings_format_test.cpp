#include "infra/utils/kxstrings.h"
#include "tests/golden.h"
#include "tests/infra/printed_by.h"

#include <cstdlib>
#include <cstring>
#include <map>
#include <set>
#include <string>

namespace {

TEST(AddressText, Forms) {
    const uint8_t bytes[16] = {0x00, 0x1a, 10,   0xff, 0x02, 0xb0, 0x67, 0x78,
                               0x89, 0x9a, 0xab, 0xbc, 0xcd, 0xde, 0xef, 0xf1};
    char text[64];
    EXPECT_EQ(snprintf_mac_address(text, sizeof text, bytes), 17);
    EXPECT_STREQ(text, "00:1a:0a:ff:02:b0");
    EXPECT_EQ(snprintf_mac_address(text, 6, bytes), 17);
    EXPECT_STREQ(text, "00:1a");
    EXPECT_EQ(snprintf_mac_address(nullptr, 0, bytes), 17);
    EXPECT_EQ(snprintf_ipv6_address(text, sizeof text, bytes), 39);
    EXPECT_STREQ(text, "001a:0aff:02b0:6778:899a:abbc:cdde:eff1");
    EXPECT_EQ(snprintf_ipv6_address(text, 6, bytes), 39);
    EXPECT_STREQ(text, "001a:");

    uint32_t address = 0;
    memcpy(&address, bytes, sizeof address);
    EXPECT_EQ(snprintf_ip_address(text, sizeof text, address), 11);
    EXPECT_STREQ(text, "0.26.10.255");
    EXPECT_EQ(ipv4_to_a(0x001a0aff, text, sizeof text), 0);
    EXPECT_STREQ(text, "0.26.10.255");
    EXPECT_EQ(ipv4_to_a(0xffffffff, text, 16), 0);
    EXPECT_STREQ(text, "255.255.255.255");
    EXPECT_EQ(ipv4_to_a(1, text, 15), -1);
    EXPECT_STREQ(text, "255.255.255.255");
    EXPECT_EQ(ipv4_to_a(1, nullptr, 16), -1);
}

TEST(TimeText, IsCutBehindTheSeconds) {
    setenv("TZ", "UTC0", 1);
    tzset();
    char buffer[33];
    memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(kx_local_ctime(1709164799, buffer), buffer);
    EXPECT_STREQ(buffer, "Wed Feb 28 23:59:59");
    EXPECT_EQ(buffer[31], '\0');
    EXPECT_EQ(buffer[32], '#');
    EXPECT_EQ(kx_local_ctime(0, nullptr), nullptr);
}

TEST(Dumps, PrintLinesUnderATitle) {
    using namespace std::string_literals;
    const std::string x(200, 'x');
    const struct {
        std::string bytes;
        std::string lines; // of od_dump
        std::string extra; // of dump_extra_ascii
    } rows[] = {{"", "", ""},
                {"ab\ncd", "ab\n", "ab\ncd\n"},
                {"\r\n\0ab\0cd"s, "\n\n\nab\n", "ab\n"},
                {"\x01\xff\x1f", "", ""},
                {"\x80\x7fz\xff\n", "\x80\x7fz\xff\n", "\x7fz\xff\n\n"},
                {x.substr(0, 80), "", x.substr(0, 80) + "\n"},
                {x.substr(0, 80) + "\nq", x.substr(0, 80) + "\n", x.substr(0, 80) + "\nq\n"},
                {x.substr(0, 100), x.substr(0, 80) + "\n", x.substr(0, 84) + "\n"},
                {x.substr(0, 162), x.substr(0, 80) + "\n" + x.substr(0, 80) + "\n",
                 x.substr(0, 84) + "\n"}};
    for (const auto &row : rows) {
        // Exact allocations, so that the sanitizer sees a read beyond the length.
        const std::vector<uint8_t> bytes(row.bytes.begin(), row.bytes.end());
        const int length = static_cast<int>(bytes.size());
        EXPECT_EQ(printed_by([&] { od_dump("title", bytes.data(), length); }),
                  "title\n" + row.lines);
        EXPECT_EQ(printed_by([&] { dump_extra_ascii("title", bytes.data(), length); }),
                  "title\n" + row.extra);
    }
    EXPECT_EQ(printed_by([] { od_dump("t", nullptr, -1); }), "t\n");
    EXPECT_EQ(printed_by([] { dump_extra_ascii("t", nullptr, -1); }), "t\n");
}

const char *pvlan_text(uint32_t type) {
    return pvlan_type_string[type];
}

const char *rpool_text(uint32_t status) {
    return rpool_status_to_str[status] == nullptr ? "-" : rpool_status_to_str[status];
}

TEST(Enumerations, HaveTheTextsOfTheGoldenTable) {
    const std::map<std::string, const char *(*)(uint32_t)> functions = {
        {"get_str_cache_type", get_str_cache_type},
        {"get_upgrade_str", get_upgrade_str},
        {"op_to_str", op_to_str},
        {"filter_type_to_str", filter_type_to_str},
        {"set_to_str", set_to_str},
        {"kx_print_protocol", kx_print_protocol},
        {"kx_print_ip_protocol", kx_print_ip_protocol},
        {"kx_storm_status_int_to_string", kx_storm_status_int_to_string},
        {"get_str_fnf_status", get_str_fnf_status},
        {"pvlan_type_string", pvlan_text},
        {"rpool_status_to_str", rpool_text},
    };
    std::set<std::string> seen;
    for (const auto &row : golden("enumerations.tsv")) {
        EXPECT_EQ(functions.at(row.at(0))(number(row.at(1))), row.at(2)) << row[0] << " " << row[1];
        seen.insert(row[0]);
    }
    EXPECT_EQ(seen.size(), functions.size());
}

} // namespace
