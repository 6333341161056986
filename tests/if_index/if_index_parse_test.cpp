#include "if_index/if_index_parse.h"
#include "tests/golden.h"

#include <cctype>
#include <cstdlib>
#include <gtest/gtest.h>

namespace {

// True while the C library is to compare as in a locale whose small "I" has no dot.
bool is_turkish = false;

} // namespace

extern "C" int strncasecmp(const char *a, const char *b, size_t count) noexcept {
    const auto lower = [](char c) { return c == 'I' && is_turkish ? 0xFD : tolower(c); };
    for (size_t i = 0; i < count; i++) {
        if (const int difference = lower(a[i]) - lower(b[i]); difference != 0 || a[i] == '\0')
            return difference;
    }
    return 0;
}

namespace {

constexpr uint32_t NOT_PARSED = 0xDEADBEEF;

TEST(IfIndexParse, Names) {
    for (const auto &row : golden("interface_parse.tsv")) {
        uint32_t if_index = NOT_PARSED;
        EXPECT_EQ(vsh_interface_name_to_ifindex(row.at(0).c_str(), &if_index), row.at(1) == "1")
            << row[0];
        EXPECT_EQ(if_index, row.at(2) == "-" ? NOT_PARSED : number(row[2])) << row[0];
    }
    uint32_t if_index = NOT_PARSED;
    EXPECT_EQ(vsh_interface_name_to_ifindex(nullptr, &if_index), 0);
    EXPECT_EQ(vsh_interface_name_to_ifindex("null0", nullptr), 0);
    EXPECT_EQ(if_db_str2ifindex_wrapper("bay1", nullptr), 7);
}

TEST(IfIndexParse, KeywordsAreAsciiInEveryLocale) {
    is_turkish = true;
    for (const char *name : {"ISCSI1/1", "iscsi1/1", "MTI5", "GIGABITETHERNET1/1"}) {
        uint32_t if_index = NOT_PARSED;
        EXPECT_EQ(vsh_interface_name_to_ifindex(name, &if_index), 1) << name;
    }
    is_turkish = false;
}

TEST(IfIndexParse, VlanInterfacesBelongToTheVdcOfTheEnvironment) {
    const struct {
        const char *vdc;
        uint32_t if_index;
    } rows[] = {{"10", 0x090A0064}, {"256", NOT_PARSED}, {"-1", NOT_PARSED}, {"x", 0x09000064}};
    for (const auto &row : rows) {
        uint32_t if_index = NOT_PARSED;
        setenv("SYSMGR_VDC_ID", row.vdc, 1);
        EXPECT_EQ(vsh_interface_name_to_ifindex("vlan100", &if_index), 1);
        EXPECT_EQ(if_index, row.if_index) << row.vdc;
    }
    unsetenv("SYSMGR_VDC_ID");
}

// A row for each keyword: its text, and the index for one, two, three and four numbers.
TEST(IfIndexParse, KeywordsBuildWhatTheGoldenTableSays) {
    const uint32_t numbers[IF_NAME_MAX_NUMBERS] = {2, 11, 12, 13};
    uint32_t keyword = 0;
    for (const auto &row : golden("interface_keywords.tsv")) {
        SCOPED_TRACE(row.at(0));
        ASSERT_LT(keyword, IF_KEYWORD_COUNT);
        EXPECT_EQ(INTERFACE_TYPE_TABLE_PREFIXinterface_type_names[keyword], row[0]);
        for (int count = 0; count <= IF_NAME_MAX_NUMBERS; count++) {
            const auto column = static_cast<size_t>(count);
            const bool builds = count >= 1 && column < row.size() && row[column] != "-";
            uint32_t if_index = NOT_PARSED;
            EXPECT_EQ(vsh_interface_coordinates_to_ifindex(keyword, numbers, count, &if_index),
                      builds ? 1 : 0)
                << count;
            EXPECT_EQ(if_index, builds ? number(row[column]) : NOT_PARSED) << count;
        }
        keyword++;
    }
    EXPECT_EQ(keyword, 69U);
}

TEST(IfIndexParse, CoordinatesOutOfBounds) {
    const uint32_t numbers[IF_NAME_MAX_NUMBERS + 1] = {1, 1};
    uint32_t if_index = NOT_PARSED;
    for (uint32_t keyword : {0U, 64U, 69U, 0xFFFFFFFFU})
        EXPECT_EQ(vsh_interface_coordinates_to_ifindex(keyword, numbers, 2, &if_index), 0);
    for (int count : {-1, 0, 11}) {
        EXPECT_EQ(vsh_interface_coordinates_to_ifindex(IF_KEYWORD_FC, numbers, count, &if_index),
                  0);
    }
    EXPECT_EQ(vsh_interface_coordinates_to_ifindex(IF_KEYWORD_FC, nullptr, 2, &if_index), 0);
    EXPECT_EQ(if_index, NOT_PARSED);
}

} // namespace
