#include "infra/utils/kxlibbmp.h"

#include "infra/utils/kxassert.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cstdio>
#include <cstring>

namespace {

constexpr int32_t NO_BIT = -1;
constexpr int32_t WORD_BITS = 32;

// "," and two bit numbers joined by "-", with the NUL.
constexpr size_t LONGEST_ITEM_SIZE = 23;

// The last bit that a resumable listing has printed.
int32_t list_cursor;

uint8_t *bits_of(bitset *b) {
    return reinterpret_cast<uint8_t *>(b + 1);
}

const uint8_t *bits_of(const bitset *b) {
    return reinterpret_cast<const uint8_t *>(b + 1);
}

uint8_t bit_mask(int32_t bit) {
    return static_cast<uint8_t>(0x80 >> bit % 8);
}

// The bits of one word; the first of them is the top bit.
uint32_t word_at(const bitset *b, uint32_t index) {
    uint32_t word = 0;
    memcpy(&word, bits_of(b) + index * sizeof word, sizeof word);
    return __builtin_bswap32(word);
}

// Preconditions that several operations share; `function` is the operation's name.

bool exists(const bitset *b, const char *function) {
    return kx_assert(b != nullptr, function, "b");
}

bool is_aligned(const bitset *b, const char *function) {
    const auto address = reinterpret_cast<uintptr_t>(b + 1);
    return kx_assert((address & 3) == 0, function, "!((uint32_t)bp & 0x3)");
}

bool is_bit_of(const bitset *b, int32_t bNo, const char *function) {
    return exists(b, function) && kx_assert(bNo >= 0 && bNo < bitset_numbits(b), function,
                                            "bNo >= 0 && bNo < bitset_numbits( b )");
}

bool are_alike(const bitset *b, const bitset *b1, const char *function) {
    return kx_assert(b != nullptr && b1 != nullptr, function, "b && b1") &&
           kx_assert(b->size == b1->size, function, "b->size == b1->size");
}

bool are_alike(const bitset *b, const bitset *b1, const bitset *mask, const char *function) {
    return kx_assert(b != nullptr && b1 != nullptr && mask != nullptr, function,
                     "b && b1 && mask") &&
           kx_assert(b->size == b1->size, function, "b->size == b1->size") &&
           kx_assert(b1->size == mask->size, function, "b1->size == mask->size");
}

// The lowest bit from bNo on, in the words of the set after an exclusive or with `flip`.
int32_t search(const bitset *b, int32_t bNo, uint32_t flip, const char *function) {
    if (!exists(b, function) || !kx_assert(bNo >= 0, function, "bNo >= 0") ||
        !is_aligned(b, function)) {
        return NO_BIT;
    }
    const uint32_t words = b->size / sizeof(uint32_t);
    auto index = static_cast<uint32_t>(bNo / WORD_BITS);
    uint32_t mask = UINT32_MAX >> bNo % WORD_BITS;
    for (; index < words; ++index, mask = UINT32_MAX) {
        const uint32_t word = (word_at(b, index) ^ flip) & mask;
        if (word != 0) {
            return static_cast<int32_t>(index * WORD_BITS) + std::countl_zero(word);
        }
    }
    return NO_BIT;
}

// The bit after bNo. After the largest number it is negative, which the search refuses.
int32_t successor(int32_t bNo) {
    return static_cast<int32_t>(static_cast<uint32_t>(bNo) + 1);
}

int32_t nth(const bitset *b, int32_t index, int32_t (*find)(const bitset *, int32_t)) {
    int32_t bit = find(b, 0);
    for (; bit != NO_BIT && index > 0; --index) {
        bit = find(b, bit + 1);
    }
    return bit;
}

// Step to the next run of the bits that `find` finds; `find_other` finds the rest.
int next_range(const bitset *b, bitset_range *range, int32_t (*find)(const bitset *, int32_t),
               int32_t (*find_other)(const bitset *, int32_t)) {
    const int32_t bits = bitset_numbits(b);
    if (range->upper >= bits - 2) {
        return -1;
    }
    const bool at_start =
        range->lower == BITSET_RANGE_START.lower && range->upper == BITSET_RANGE_START.upper;
    // The bit right after a run cannot belong to the next one.
    range->lower = find(b, at_start ? 0 : range->upper + 2);
    if (range->lower == NO_BIT || range->lower >= bits) {
        return -1;
    }
    const int32_t end = find_other(b, range->lower + 1);
    range->upper = (end == NO_BIT ? bits : end) - 1;
    return 0;
}

// The last bit of the run that begins at `lower`, as far as searches see.
int32_t run_end(const bitset *b, int32_t lower) {
    const int32_t end = bitset_next_free_bit(b, lower);
    const auto searched_bits = static_cast<int32_t>(b->size / sizeof(uint32_t)) * WORD_BITS;
    return (end == NO_BIT ? searched_bits : end) - 1;
}

// Format one item of a range list; snprintf's bound and result.
int format_item(char *buffer, size_t room, const char *separator, int32_t lower, int32_t upper) {
    if (lower == upper) {
        return snprintf(buffer, room, "%s%d", separator, lower);
    }
    return snprintf(buffer, room, "%s%d-%d", separator, lower, upper);
}

uint8_t reversed(uint8_t byte) {
    static const uint8_t nibbles[16] = {0, 8, 4, 12, 2, 10, 6, 14, 1, 9, 5, 13, 3, 11, 7, 15};
    return static_cast<uint8_t>(nibbles[byte & 0xf] << 4 | nibbles[byte >> 4]);
}

void copy_reversed(uint8_t *to, const uint8_t *from, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        to[i] = reversed(from[i]);
    }
}

} // namespace

void bmp4096_init(bmp4096 *b) {
    if (!exists(b, __func__)) {
        return;
    }
    b->size = sizeof b->bits;
    bitset_clear(b);
}

int32_t bmp4096_bitcount(const bmp4096 *b) {
    if (!exists(b, __func__) ||
        !kx_assert(b->size == sizeof b->bits, __func__, "b->size == BITBYTES(BITSIZE)")) {
        return -1;
    }
    return bitset_bitcount(b);
}

int32_t bitset_numbits(const bitset *b) {
    return exists(b, __func__) ? static_cast<int32_t>(b->size * CHAR_BIT) : 0;
}

uint32_t bitset_size(const bitset *b) {
    if (!exists(b, __func__)) {
        return 0;
    }
    return b->size + static_cast<uint32_t>(sizeof *b);
}

void bitset_clear(bitset *b) {
    if (!exists(b, __func__)) {
        return;
    }
    memset(bits_of(b), 0, b->size);
}

void bitset_fill(bitset *b) {
    if (!exists(b, __func__)) {
        return;
    }
    memset(bits_of(b), 0xff, b->size);
}

void bitset_copy(bitset *dst, const bitset *src) {
    if (!kx_assert(dst != nullptr && src != nullptr, __func__, "b && b1") ||
        !kx_assert(dst->size == src->size, __func__, "dst->size == src->size")) {
        return;
    }
    memmove(bits_of(dst), bits_of(src), dst->size);
}

void bitset_set_bit(bitset *b, int32_t bNo) {
    if (!is_bit_of(b, bNo, __func__)) {
        return;
    }
    bits_of(b)[bNo / CHAR_BIT] |= bit_mask(bNo);
}

void bitset_clear_bit(bitset *b, int32_t bNo) {
    if (!is_bit_of(b, bNo, __func__)) {
        return;
    }
    bits_of(b)[bNo / CHAR_BIT] &= static_cast<uint8_t>(~bit_mask(bNo));
}

int bitset_is_bit_set(const bitset *b, int32_t bNo) {
    if (!is_bit_of(b, bNo, __func__)) {
        return 0;
    }
    return (bits_of(b)[bNo / CHAR_BIT] & bit_mask(bNo)) != 0 ? 1 : 0;
}

void bitset_set_range_value(bitset *b, int32_t bNo, int32_t len, int value) {
    if (len < 1) {
        return;
    }
    if (!exists(b, __func__) ||
        !kx_assert(bNo >= 0 && int64_t{bNo} + len <= bitset_numbits(b), __func__,
                   "bNo >= 0 && bNo+len <= bitset_numbits( b )")) {
        return;
    }
    const int32_t end = bNo + len;
    for (int32_t bit = bNo; bit < end; bit = (bit / CHAR_BIT + 1) * CHAR_BIT) {
        int mask = 0xff >> bit % CHAR_BIT;
        if (bit / CHAR_BIT == end / CHAR_BIT) {
            mask &= ~(0xff >> end % CHAR_BIT);
        }
        uint8_t &byte = bits_of(b)[bit / CHAR_BIT];
        byte = static_cast<uint8_t>(value != 0 ? byte | mask : byte & ~mask);
    }
}

void bitset_set_range(bitset *b, int32_t bNo, int32_t len) {
    bitset_set_range_value(b, bNo, len, 1);
}

void bitset_clear_range(bitset *b, int32_t bNo, int32_t len) {
    bitset_set_range_value(b, bNo, len, 0);
}

int32_t bitset_find_bit(const bitset *b, int32_t bNo) {
    return search(b, bNo, 0, __func__);
}

int32_t bitset_first_bit(const bitset *b) {
    return bitset_find_bit(b, 0);
}

int32_t bitset_next_bit(const bitset *b, int32_t bNo) {
    return bitset_find_bit(b, successor(bNo));
}

int32_t bitset_find_free_bit(const bitset *b, int32_t bNo) {
    return search(b, bNo, UINT32_MAX, __func__);
}

int32_t bitset_first_free_bit(const bitset *b) {
    return bitset_find_free_bit(b, 0);
}

int32_t bitset_next_free_bit(const bitset *b, int32_t bNo) {
    return bitset_find_free_bit(b, successor(bNo));
}

int32_t bitset_find_prev_bit(const bitset *b, int32_t bNo) {
    if (!exists(b, __func__) || !kx_assert(bNo >= 0, __func__, "bNo >= 0") ||
        !is_aligned(b, __func__) ||
        !kx_assert(bNo < bitset_numbits(b), __func__, "bNo < (b->size * 8)")) {
        return NO_BIT;
    }
    const uint32_t words = b->size / sizeof(uint32_t);
    auto end = static_cast<uint32_t>(bNo / WORD_BITS) + 1;
    uint32_t mask = UINT32_MAX << (WORD_BITS - 1 - bNo % WORD_BITS);
    if (end > words) {
        end = words;
        mask = UINT32_MAX;
    }
    for (; end > 0; --end, mask = UINT32_MAX) {
        const uint32_t word = word_at(b, end - 1) & mask;
        if (word != 0) {
            return static_cast<int32_t>(end * WORD_BITS) - 1 - std::countr_zero(word);
        }
    }
    return NO_BIT;
}

int32_t bitset_nth_bit(const bitset *b, int32_t index) {
    if (!kx_assert(index >= 0, __func__, "0")) {
        return NO_BIT;
    }
    return nth(b, index, bitset_find_bit);
}

int32_t bitset_nth_free_bit(const bitset *b, int32_t index) {
    if (!kx_assert(index >= 0, __func__, "0")) {
        return NO_BIT;
    }
    return nth(b, index, bitset_find_free_bit);
}

int32_t bitset_bitcount(const bitset *b) {
    if (!exists(b, __func__)) {
        return 0;
    }
    const uint8_t *const bits = bits_of(b);
    int32_t count = 0;
    uint32_t i = 0;
    for (uint32_t word = 0; i + sizeof word <= b->size; i += sizeof word) {
        memcpy(&word, bits + i, sizeof word);
        if (word != 0) {
            count += std::popcount(word);
        }
    }
    for (; i < b->size; ++i) {
        count += std::popcount(bits[i]);
    }
    return count;
}

void bitset_union(bitset *b, const bitset *b1) {
    if (!are_alike(b, b1, __func__)) {
        return;
    }
    for (uint32_t i = 0; i < b->size; ++i) {
        bits_of(b)[i] |= bits_of(b1)[i];
    }
}

void bitset_intersection(bitset *b, const bitset *b1) {
    if (!are_alike(b, b1, __func__)) {
        return;
    }
    for (uint32_t i = 0; i < b->size; ++i) {
        bits_of(b)[i] &= bits_of(b1)[i];
    }
}

void bitset_subtract(bitset *b, const bitset *b1) {
    if (!are_alike(b, b1, __func__)) {
        return;
    }
    for (uint32_t i = 0; i < b->size; ++i) {
        bits_of(b)[i] &= static_cast<uint8_t>(~bits_of(b1)[i]);
    }
}

int bitset_equal(const bitset *b, const bitset *b1) {
    if (!are_alike(b, b1, __func__)) {
        return 0;
    }
    return memcmp(bits_of(b), bits_of(b1), b->size) == 0 ? 1 : 0;
}

int bitset_subset(const bitset *b, const bitset *b1) {
    if (!kx_assert(b != nullptr && b1 != nullptr, __func__, "b && b1")) {
        return 0;
    }
    for (uint32_t i = 0; i < b->size; ++i) {
        const int other = i < b1->size ? bits_of(b1)[i] : 0;
        if ((bits_of(b)[i] & ~other) != 0) {
            return 0;
        }
    }
    return 1;
}

void bitset_maskcopy(bitset *b, const bitset *b1, const bitset *mask) {
    if (!are_alike(b, b1, mask, __func__)) {
        return;
    }
    for (uint32_t i = 0; i < b->size; ++i) {
        const uint8_t taken = bits_of(mask)[i];
        bits_of(b)[i] = static_cast<uint8_t>((bits_of(b)[i] & ~taken) | (bits_of(b1)[i] & taken));
    }
}

int bitset_maskequal(const bitset *b, const bitset *b1, const bitset *mask) {
    if (!are_alike(b, b1, mask, __func__)) {
        return 0;
    }
    for (uint32_t i = 0; i < b->size; ++i) {
        if (((bits_of(b)[i] ^ bits_of(b1)[i]) & bits_of(mask)[i]) != 0) {
            return 0;
        }
    }
    return 1;
}

int bitset_is_range_free(const bitset *b, const bitset_range *range) {
    if (!exists(b, __func__) ||
        !kx_assert(range->lower <= range->upper, __func__, "range->lower <= range->upper") ||
        !kx_assert(range->lower >= 0 && range->upper < bitset_numbits(b), __func__,
                   "range->lower >= 0 && range->upper < bitset_numbits( b )")) {
        return 0;
    }
    const int32_t bit = bitset_find_bit(b, range->lower);
    return bit == NO_BIT || bit > range->upper ? 1 : 0;
}

int bitset_next_range(const bitset *b, bitset_range *range) {
    return next_range(b, range, bitset_find_bit, bitset_find_free_bit);
}

int bitset_next_free_range(const bitset *b, bitset_range *range) {
    return next_range(b, range, bitset_find_free_bit, bitset_find_bit);
}

void bitset_to_bitarray(const bitset *b, uint8_t *array, uint32_t length) {
    if (!exists(b, __func__)) {
        return;
    }
    const uint32_t copied = std::min(b->size, length);
    copy_reversed(array, bits_of(b), copied);
    if (copied < length) {
        memset(array + copied, 0, length - copied);
    }
}

void bitset_from_bitarray(bitset *b, const uint8_t *array, uint32_t length) {
    if (!exists(b, __func__)) {
        return;
    }
    bitset_clear(b);
    copy_reversed(bits_of(b), array, std::min(b->size, length));
}

int bitset_snprintf(char *buffer, size_t size, const bitset *b, int first, int *done) {
    *done = 0;
    int32_t lower = first != 0 ? bitset_first_bit(b) : bitset_next_bit(b, list_cursor);
    if (first != 0) {
        list_cursor = 0;
    }
    size_t used = 0;
    while (lower != NO_BIT) {
        const int32_t upper = run_end(b, lower);
        const int length =
            format_item(buffer + used, size - used, used == 0 ? "" : ",", lower, upper);
        if (length < 0 || static_cast<size_t>(length) >= size - used) {
            break;
        }
        used += static_cast<size_t>(length);
        list_cursor = upper;
        lower = bitset_next_bit(b, upper);
    }
    if (size > 0) {
        buffer[used] = '\0'; // also where an item did not fit
    }
    if (lower == NO_BIT) {
        *done = 1;
        list_cursor = 0;
    }
    return static_cast<int>(used);
}

int bitset_sprintf(char *buffer, const bitset *b) {
    buffer[0] = '\0';
    int used = 0;
    for (int32_t lower = bitset_first_bit(b); lower != NO_BIT;) {
        const int32_t upper = run_end(b, lower);
        used += format_item(buffer + used, LONGEST_ITEM_SIZE, used == 0 ? "" : ",", lower, upper);
        lower = bitset_next_bit(b, upper);
    }
    return used;
}
