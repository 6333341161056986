#include "infra/utils/kxstrings.h"
#include "tests/golden.h"
#include "tests/infra/printed_by.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

TEST(Words, NextWordSkipsWordAndWhiteSpace) {
    const struct {
        const char *text;
        const char *next;
    } rows[] = {
        {nullptr, nullptr},  {"", nullptr},         {"show", nullptr},
        {"show  ", nullptr}, {"show port", "port"}, {"show \t\n\v\f\r port x", "port x"},
        {" port", "port"},   {"a; b", "b"},         {"a;b", nullptr},
    };
    for (const auto &row : rows)
        EXPECT_STREQ(kx_find_next_arg(row.text), row.next) << (row.text ? row.text : "NULL");
}

TEST(Words, WordEqualsWholeKeywordOnly) {
    for (const auto &row : golden("words.tsv")) {
        EXPECT_EQ(stris(row.at(0).c_str(), row.at(1).c_str()), row.at(2) == "0" ? 0 : 1)
            << row[0] << " against " << row[1];
    }
    const char *const line = "ASSERT  stris:  str != NULL && cmpstr != NULL\n";
    EXPECT_EQ(printed_by([] { EXPECT_EQ(stris(nullptr, nullptr), 1); }), line);
    EXPECT_EQ(printed_by([] { EXPECT_EQ(stris("show", nullptr), 1); }), line);
}

TEST(Words, CaselessComparisonCountsCharacters) {
    EXPECT_EQ(kx_strncasecmp("TRUNK vlan", "trunk", 5), 0);
    EXPECT_EQ(kx_strncasecmp("TRUNK vlan", "trunk", 6), 1);
    EXPECT_EQ(kx_strncasecmp("tr", "trunk", 5), 1);
    EXPECT_EQ(kx_strncasecmp("a\0B", "A\0b", 3), 0);
    EXPECT_EQ(kx_strncasecmp("a\0b", "a\0c", 3), 1);
    EXPECT_EQ(kx_strncasecmp("a", "b", 0), 0);
}

TEST(Words, CopyStopsAtWhiteSpaceSizeAndEnd) {
    for (const auto &row : golden("word_copies.tsv")) {
        // Exact allocations, so that the sanitizer sees every byte read or written too far.
        const char *const text = row.at(0).c_str();
        std::vector<char> source(text, text + strlen(text) + 1);
        std::vector<char> destination(number(row.at(1)), '#');
        EXPECT_EQ(strncpy_until_space(destination.data(), destination.size(), source.data()), 0);
        EXPECT_EQ(destination.data(), row.at(2)) << text;
    }
    char untouched = '#';
    EXPECT_EQ(strncpy_until_space(&untouched, 0, "x"), 0);
    EXPECT_EQ(untouched, '#');
}

TEST(Words, SplitAtBlanksOnly) {
    const struct {
        const char *text;
        size_t size;
        int max_words;
        std::vector<std::string> words;
    } rows[] = {
        {"trunk  native-vlan 5 ", 64, 8, {"trunk", "native-vlan", "5"}},
        {" a\tb c", 64, 8, {"a\tb", "c"}},
        {"a b c d", 64, 2, {"a", "b"}},
        {"abc def", 6, 8, {"abc", "d"}},
        {"abc", 1, 8, {}},
        {"abc", 0, 8, {}},
        {"  ", 64, 8, {}},
        {nullptr, 64, 8, {}},
    };
    for (const auto &row : rows) {
        std::vector<char> work(row.size, '#');
        std::vector<char *> words(static_cast<size_t>(row.max_words));
        const int count =
            kx_split_words(work.data(), row.size, row.text, words.data(), row.max_words);
        ASSERT_EQ(count, static_cast<int>(row.words.size()));
        EXPECT_EQ(std::vector<std::string>(words.begin(), words.begin() + count), row.words);
    }
}

} // namespace
