#include "infra/utils/kxlibbmp.h"
#include "tests/infra/printed_by.h"

#include <bitset>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int BITS = 256;
using Set = kxbmp_template<BITS>;
using Model = std::bitset<BITS>;

Set set_of(const Model &model) {
    Set set{};
    set.size = sizeof set.bits;
    for (size_t bit = 0; bit < BITS; ++bit)
        if (model[bit])
            bitset_set_bit(&set, static_cast<int32_t>(bit));
    return set;
}

Set set_of(std::initializer_list<int32_t> bits) {
    Model model;
    for (const int32_t bit : bits)
        model.set(static_cast<size_t>(bit));
    return set_of(model);
}

Model model_of(const Set &set) {
    Model model;
    for (int32_t bit = 0; bit < BITS; ++bit)
        model[static_cast<size_t>(bit)] = bitset_is_bit_set(&set, bit) == 1;
    return model;
}

int32_t find(const Model &model, bool value, int32_t from, int32_t step) {
    for (int32_t bit = from; bit >= 0 && bit < BITS; bit += step)
        if (model[static_cast<size_t>(bit)] == value)
            return bit;
    return -1;
}

std::vector<std::pair<int32_t, int32_t>> runs(const Model &model, bool value) {
    std::vector<std::pair<int32_t, int32_t>> found;
    for (int32_t lower = find(model, value, 0, 1); lower >= 0;) {
        const int32_t end = find(model, !value, lower, 1);
        found.emplace_back(lower, end < 0 ? BITS - 1 : end - 1);
        lower = end < 0 ? -1 : find(model, value, end, 1);
    }
    return found;
}

std::string list_of(const Model &model) {
    std::string text;
    for (const auto &[lower, upper] : runs(model, true)) {
        text += (text.empty() ? "" : ",") + std::to_string(lower);
        text += lower == upper ? "" : "-" + std::to_string(upper);
    }
    return text;
}

// Sets of every density, with long and short runs; also the empty set and the full one.
class BitSets : public testing::Test {
protected:
    Model random_model() {
        Model model;
        const uint32_t density = random() % 9;
        const uint32_t run = 1 + random() % 40;
        for (size_t bit = 0; bit < BITS;) {
            const bool value = random() % 8 < density;
            for (const size_t end = bit + 1 + random() % run; bit < end && bit < BITS; ++bit)
                model[bit] = value;
        }
        return model;
    }

    std::mt19937 random{7};
};

TEST(BitSetLayout, BitZeroIsTheTopOfTheFirstByte) {
    bmp4096 vlans;
    memset(&vlans, 0xff, sizeof vlans);
    bmp4096_init(&vlans);
    EXPECT_EQ(vlans.size, 512u);
    EXPECT_EQ(bitset_numbits(&vlans), 4096);
    EXPECT_EQ(bitset_size(&vlans), 516u);
    EXPECT_EQ(bmp4096_bitcount(&vlans), 0);
    for (const int32_t bit : {0, 9, 4095})
        bitset_set_bit(&vlans, bit);
    EXPECT_EQ(vlans.bits[0], 0x80);
    EXPECT_EQ(vlans.bits[1], 0x40);
    EXPECT_EQ(vlans.bits[511], 0x01);
    EXPECT_EQ(bmp4096_bitcount(&vlans), 3);
    bitset_clear_bit(&vlans, 9);
    EXPECT_EQ(vlans.bits[1], 0);
    EXPECT_EQ(bmp4096_bitcount(&vlans), 2);
    bitset_fill(&vlans);
    EXPECT_EQ(bmp4096_bitcount(&vlans), 4096);
    const Set lowest_of_a_byte = set_of({7}); // 1, as a word
    EXPECT_EQ(bitset_bitcount(&lowest_of_a_byte), 1);
}

TEST_F(BitSets, SearchesAgreeWithTheModel) {
    for (int round = 0; round < 50; ++round) {
        const Model model = random_model();
        const Set set = set_of(model);
        ASSERT_EQ(bitset_bitcount(&set), static_cast<int32_t>(model.count()));
        int32_t set_bits = 0;
        int32_t free_bits = 0;
        for (int32_t bit = 0; bit < BITS; ++bit) {
            ASSERT_EQ(bitset_find_bit(&set, bit), find(model, true, bit, 1));
            ASSERT_EQ(bitset_next_bit(&set, bit), find(model, true, bit + 1, 1));
            ASSERT_EQ(bitset_find_free_bit(&set, bit), find(model, false, bit, 1));
            ASSERT_EQ(bitset_next_free_bit(&set, bit), find(model, false, bit + 1, 1));
            ASSERT_EQ(bitset_find_prev_bit(&set, bit), find(model, true, bit, -1));
            if (model[static_cast<size_t>(bit)])
                ASSERT_EQ(bitset_nth_bit(&set, set_bits++), bit);
            else
                ASSERT_EQ(bitset_nth_free_bit(&set, free_bits++), bit);
        }
        ASSERT_EQ(bitset_nth_bit(&set, set_bits), -1);
        ASSERT_EQ(bitset_nth_free_bit(&set, free_bits), -1);
        ASSERT_EQ(bitset_first_bit(&set), find(model, true, 0, 1));
        ASSERT_EQ(bitset_first_free_bit(&set), find(model, false, 0, 1));
        ASSERT_EQ(bitset_find_bit(&set, BITS), -1);
        ASSERT_EQ(bitset_find_bit(&set, INT32_MAX), -1);
    }
}

TEST_F(BitSets, SetAlgebraAgreesWithTheModel) {
    for (int round = 0; round < 200; ++round) {
        const Model model = random_model();
        const Model other_model = random_model();
        const Model mask_model = random_model();
        const Set set = set_of(model);
        const Set other = set_of(other_model);
        const Set mask = set_of(mask_model);
        const auto result_of = [&](void (*operation)(bitset *, const bitset *)) {
            Set result = set;
            operation(&result, &other);
            return model_of(result);
        };
        ASSERT_EQ(result_of(bitset_union), model | other_model);
        ASSERT_EQ(result_of(bitset_intersection), model & other_model);
        ASSERT_EQ(result_of(bitset_subtract), model & ~other_model);
        ASSERT_EQ(result_of(bitset_copy), other_model);

        Set merged = set;
        bitset_maskcopy(&merged, &other, &mask);
        ASSERT_EQ(model_of(merged), (model & ~mask_model) | (other_model & mask_model));
        ASSERT_EQ(bitset_maskequal(&merged, &other, &mask), 1);
        ASSERT_EQ(bitset_maskequal(&set, &other, &mask),
                  ((model ^ other_model) & mask_model).none() ? 1 : 0);
        ASSERT_EQ(bitset_equal(&set, &other), model == other_model ? 1 : 0);
        ASSERT_EQ(bitset_equal(&set, &set), 1);
        ASSERT_EQ(bitset_subset(&set, &other), (model & ~other_model).none() ? 1 : 0);
        Set both = set;
        bitset_union(&both, &other);
        ASSERT_EQ(bitset_subset(&set, &both), 1);
    }
}

TEST_F(BitSets, RangesAgreeWithTheModel) {
    for (int round = 0; round < 500; ++round) {
        Model model = random_model();
        Set set = set_of(model);
        const auto first = static_cast<int32_t>(random() % BITS);
        const auto count = static_cast<int32_t>(random() % static_cast<uint32_t>(BITS - first + 1));
        const bool value = random() % 2 == 0;
        (value ? bitset_set_range : bitset_clear_range)(&set, first, count);
        for (int32_t bit = first; bit < first + count; ++bit)
            model[static_cast<size_t>(bit)] = value;
        ASSERT_EQ(model_of(set), model) << first << "+" << count;

        const bitset_range range = {
            first, first + static_cast<int32_t>(random() % static_cast<uint32_t>(BITS - first))};
        const int32_t bit = find(model, true, first, 1);
        ASSERT_EQ(bitset_is_range_free(&set, &range), bit < 0 || bit > range.upper ? 1 : 0);
    }
}

TEST_F(BitSets, WalksVisitEveryRun) {
    const auto walked = [](const Set &set, int (*next)(const bitset *, bitset_range *)) {
        std::vector<std::pair<int32_t, int32_t>> found;
        for (bitset_range range = {1, 0}; next(&set, &range) == 0;)
            found.emplace_back(range.lower, range.upper);
        return found;
    };
    for (int round = 0; round < 500; ++round) {
        const Model model = random_model();
        const Set set = set_of(model);
        ASSERT_EQ(walked(set, bitset_next_range), runs(model, true));
        ASSERT_EQ(walked(set, bitset_next_free_range), runs(model, false));
    }
    // A run that ends on the last bit but one leaves no room for another.
    Set last = set_of({BITS - 2});
    bitset_range range = {BITS - 2, BITS - 2};
    EXPECT_EQ(bitset_next_range(&last, &range), -1);
    EXPECT_EQ(range.lower, BITS - 2);
    // The bit after the caller's range is never looked at.
    const Set first = set_of({0, 1, 2, 3});
    range = {0, 1};
    EXPECT_EQ(bitset_next_range(&first, &range), 0);
    EXPECT_EQ(range.lower, 3);
}

TEST_F(BitSets, PiecesOfAListAreTheListInAnyBuffer) {
    constexpr size_t LONGEST_ITEM = sizeof "254-255";
    for (size_t size = LONGEST_ITEM; size < 200; ++size) {
        const Model model = random_model();
        const Set set = set_of(model);
        char whole[4 * BITS];
        ASSERT_EQ(bitset_sprintf(whole, &set), static_cast<int>(list_of(model).size()));
        ASSERT_EQ(whole, list_of(model));

        std::string rest = whole;
        int done = 0;
        for (int first = 1; done == 0; first = 0) {
            std::vector<char> buffer(size, '#'); // exact, for the sanitizer
            const int length = bitset_snprintf(buffer.data(), size, &set, first, &done);
            const std::string piece = buffer.data();
            ASSERT_EQ(length, static_cast<int>(piece.size()));
            ASSERT_EQ(rest.substr(0, piece.size()), piece);
            // A piece ends where an item ends, and only because the next item would not have
            // fitted.
            const size_t next = std::min(piece.size() + 1, rest.size());
            const size_t next_end = std::min(rest.find(',', next), rest.size());
            ASSERT_TRUE(rest[piece.size()] == ',' || next == piece.size()) << piece;
            ASSERT_TRUE(next == piece.size() ? done == 1 : next_end >= size) << piece;
            rest.erase(0, next);
        }
        ASSERT_EQ(rest, "") << size;
    }
}

TEST(BitSetList, BufferTooSmallForAnyItem) {
    const Set set = set_of({100, 101});
    char text[8] = "#######";
    int done = 7;
    EXPECT_EQ(bitset_snprintf(text, sizeof text - 1, &set, 1, &done), 0);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(done, 0);
    EXPECT_EQ(bitset_snprintf(text, 0, &set, 1, &done), 0);
    EXPECT_EQ(done, 0);
    const Set empty = set_of({});
    EXPECT_EQ(bitset_snprintf(nullptr, 0, &empty, 1, &done), 0);
    EXPECT_EQ(done, 1);
    text[0] = '#';
    EXPECT_EQ(bitset_snprintf(text, 1, &set, 1, &done), 0);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(bitset_snprintf(text, sizeof text, &set, 0, &done), 7)
        << "what did not fit comes next";
    EXPECT_STREQ(text, "100-101");
}

TEST(BitSetArrays, BitOrderIsReversedAndLengthsAreCut) {
    const Set set = set_of({0, 9, 15, 30, 40});
    const std::vector<uint8_t> expected = {0x01, 0x82, 0x00, 0x40, 0x00, 0x01};
    for (size_t length = 0; length < 40; ++length) {
        std::vector<uint8_t> array(length, 0xff);
        bitset_to_bitarray(&set, array.data(), static_cast<uint32_t>(length));
        std::vector<uint8_t> cut(expected);
        cut.resize(length);
        EXPECT_EQ(array, cut);

        Set back = set_of({200});
        bitset_from_bitarray(&back, array.data(), static_cast<uint32_t>(length));
        Set front = set;
        const auto kept = static_cast<int32_t>(std::min<size_t>(length * 8, BITS));
        bitset_clear_range(&front, kept, BITS - kept);
        EXPECT_EQ(bitset_equal(&back, &front), 1) << length;
    }
}

TEST(BitSetSizes, SearchesSeeWholeWordsOnly) {
    kxbmp_template<48> set{};
    set.size = sizeof set.bits;
    bitset_set_range(&set, 31, 17);
    EXPECT_EQ(bitset_bitcount(&set), 17);
    EXPECT_EQ(bitset_is_bit_set(&set, 47), 1);
    EXPECT_EQ(bitset_first_bit(&set), 31);
    EXPECT_EQ(bitset_next_bit(&set, 31), -1);
    EXPECT_EQ(bitset_find_prev_bit(&set, 47), 31);
    EXPECT_EQ(bitset_nth_bit(&set, 1), -1);
    const bitset_range tail = {32, 47};
    EXPECT_EQ(bitset_is_range_free(&set, &tail), 1);
    char text[16];
    bitset_sprintf(text, &set);
    EXPECT_STREQ(text, "31");

    bitset empty = {0};
    bitset_range range = BITSET_RANGE_START;
    EXPECT_EQ(bitset_next_range(&empty, &range), -1);
    EXPECT_EQ(bitset_equal(&empty, &empty), 1);
    EXPECT_EQ(bitset_subset(&empty, &set), 1);
    EXPECT_EQ(bitset_subset(&set, &empty), 0);
}

TEST(BitSetAssertions, AreReportedWithoutEffect) {
    const Set sample = set_of({3, 200});
    struct {
        Set set;
        uint8_t behind;
    } guarded = {sample, 0x40}; // a bit that is clear, and one that is set
    Set &set = guarded.set;
    kxbmp_template<128> small{};
    small.size = sizeof small.bits;
    bitset_fill(&small);
    bmp4096 vlans;
    bmp4096_init(&vlans);
    vlans.size = 511;
    alignas(4) char storage[sizeof(Set) + 4] = {};
    // Nothing reads it: a misaligned record is refused because of its address.
    const auto *const crooked = reinterpret_cast<const bitset *>(storage + 1);
    const bitset_range backwards = {5, 4};
    const bitset_range outside = {0, BITS};
    const bitset_range before = {-1, 4};

    int32_t got = 0; // stays so where the operation has no result
    const auto expect_reported = [&](const std::string &line, int32_t result, const auto &call) {
        got = 0;
        EXPECT_EQ(printed_by(call), "ASSERT  bitset_" + line + "\n");
        EXPECT_EQ(got, result) << line;
        EXPECT_EQ(memcmp(&set, &sample, sizeof set), 0) << line;
        EXPECT_EQ(guarded.behind, 0x40) << line;
    };
#define REFUSED(line, call)          expect_reported(line, 0, [&] { call; });
#define ANSWERED(line, result, call) expect_reported(line, result, [&] { got = call; });
#include "tests/golden/bitset_assertions.def"
#undef ANSWERED
#undef REFUSED
    EXPECT_EQ(printed_by([&] { got = bmp4096_bitcount(&vlans); }),
              "ASSERT  bmp4096_bitcount:  b->size == BITBYTES(BITSIZE)\n");
    EXPECT_EQ(got, -1);
    EXPECT_EQ(printed_by([&] { got = bmp4096_bitcount(nullptr); }),
              "ASSERT  bmp4096_bitcount:  b\n");
    EXPECT_EQ(printed_by([] { bmp4096_init(nullptr); }), "ASSERT  bmp4096_init:  b\n");
    const bitset_range lowest = {0, 2};
    EXPECT_EQ(printed_by([&] { got = bitset_is_range_free(&set, &lowest); }), "");
    EXPECT_EQ(got, 1);
    // An empty range is not an error.
    EXPECT_EQ(printed_by([&] { bitset_set_range(&set, -5, 0); }), "");
}

} // namespace
