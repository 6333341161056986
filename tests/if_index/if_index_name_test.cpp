#include "if_index/if_index_name.h"
#include "tests/golden.h"

#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <random>

namespace {

using NamePrinter = int(char *buffer, size_t size, uint32_t if_index);
using SmallPrinter = int(char *buffer, uint32_t if_index);

// Every type and every form, with numbers of two digits that differ from each other: the index and
// its short, long and internal name.
TEST(IfIndexName, HasTheNamesOfTheGoldenTable) {
    const struct {
        NamePrinter *print;
        SmallPrinter *print_small;
    } columns[] = {{snprintf_if_index_short, sprintf_if_index_short},
                   {snprintf_if_index, sprintf_if_index},
                   {snprintf_if_index_internal, sprintf_if_index_internal}};
    for (const auto &row : golden("interface_names.tsv")) {
        const uint32_t if_index = number(row.at(0));
        for (size_t column = 1; column <= std::size(columns); column++) {
            const auto &[print, print_small] = columns[column - 1];
            for (const bool small : {false, true}) {
                char buffer[IF_INDEX_NAME_SIZE] = "untouched";
                const int length =
                    small ? print_small(buffer, if_index) : print(buffer, sizeof buffer, if_index);
                EXPECT_EQ(buffer, row.at(column)) << row[0];
                EXPECT_EQ(length, static_cast<int>(row.at(column).size())) << row[0];
            }
        }
    }
}

TEST(IfIndexName, HasNoDatabase) {
    char buffer[IF_INDEX_NAME_SIZE] = "untouched";
    EXPECT_EQ(if_db_ifindex2str_wrapper(0x1A000000, buffer, sizeof buffer), 7);
    EXPECT_STREQ(buffer, "untouched");
}

// The first and the last index, the result and the name.
TEST(IfIndexName, HasTheRangesOfTheGoldenTable) {
    for (const auto &row : golden("interface_ranges.tsv")) {
        char buffer[IF_INDEX_NAME_SIZE] = "untouched";
        const if_index_range range = {number(row.at(0)), number(row.at(1))};
        EXPECT_EQ(snprintf_if_index_range_short(buffer, sizeof buffer, &range),
                  static_cast<int>(number(row.at(2))));
        EXPECT_EQ(buffer, row.at(3)) << row[0];
    }
    char buffer[IF_INDEX_NAME_SIZE];
    const if_index_range range = {0x1A000000, 0x1A003000};
    EXPECT_EQ(snprintf_if_index_range(buffer, sizeof buffer, &range), 13);
    EXPECT_STREQ(buffer, "Ethernet1/1-4");
}

TEST(IfIndexName, RangeThatDoesNotFit) {
    for (const auto &row : golden("interface_range_cuts.tsv")) {
        const if_index_range cut = {number(row.at(0)), number(row.at(1))};
        const size_t size = number(row.at(2));
        const std::unique_ptr<char[]> buffer(new char[if_index_range_storage(size)]);
        EXPECT_EQ(snprintf_if_index_range_short(buffer.get(), size, &cut),
                  static_cast<int>(number(row.at(3))));
        EXPECT_EQ(buffer.get(), row.at(4)) << size;
    }
    const if_index_range range = {0x1A000000, 0x1A003000};
    char exact[if_index_range_storage(12)];
    EXPECT_EQ(snprintf_if_index_range(exact, 12, &range), 13);
    EXPECT_STREQ(exact, "Ethernet1/1-4");
}

// For any index and any buffer: the text is the start of the whole name, and no byte is written
// beyond the size that the header asks for.
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
            if (size > 0)
                range_buffer[0] = '\0';
            EXPECT_GE(print(range_buffer.get(), size, &range), 0);
            if (size > 0) {
                EXPECT_LT(strnlen(range_buffer.get(), storage), storage);
            }
        }
    }
}

} // namespace
