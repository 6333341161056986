// Bit sets as the driver lays them out: a byte count and then the bits, most significant bit first.
//
// The record belongs to the caller, who sets `size` before the first use; nothing here allocates or
// changes it. Bit n lives in byte n / 8 under the mask 0x80 >> n % 8.
//
// The searches, and so the walks and lists, read whole 32-bit words. So the record must lie on a
// 4-byte boundary; when the size of a set is not a multiple of 4, they never see the last bytes.
//
// A failed precondition, also a null record, is reported (kxassert.h) and the operation does
// nothing: predicates and counts then return 0 (bmp4096_bitcount -1), searches and walks -1. Bit
// numbers are signed; -1 means that there is no such bit.
#ifndef INFRA_UTILS_KXLIBBMP_H
#define INFRA_UTILS_KXLIBBMP_H

#include <cstddef>
#include <cstdint>

// The head of every bit set.
struct bitset {
    uint32_t size; // bytes of bit storage, which follow the record
};

// A bit set with the storage for `BITS` bits.
template <uint32_t BITS> struct kxbmp_template : bitset { uint8_t bits[BITS / 8]; };

// One bit per VLAN.
using bmp4096 = kxbmp_template<4096>;

static_assert(sizeof(bmp4096) == 516 && alignof(bmp4096) == 4 && sizeof(bitset) == 4);

// An inclusive run of bits.
struct bitset_range {
    int32_t lower; // first bit
    int32_t upper; // last bit
};

static_assert(sizeof(bitset_range) == 8);
static_assert(offsetof(bitset_range, lower) == 0);
static_assert(offsetof(bitset_range, upper) == 4);

// Where the range walks start.
constexpr bitset_range BITSET_RANGE_START = {1, 0};

// Make an empty VLAN set.
void bmp4096_init(bmp4096 *b);

// The number of VLANs in the set, or -1 when a reply has changed its byte count.
int32_t bmp4096_bitcount(const bmp4096 *b);

// The number of bits that the set has room for.
int32_t bitset_numbits(const bitset *b);

// Bytes of the whole record, its head included.
uint32_t bitset_size(const bitset *b);

void bitset_clear(bitset *b);
void bitset_fill(bitset *b);

// REQUIRES: sets of one size, as for all operations on several sets but bitset_subset.
void bitset_copy(bitset *dst, const bitset *src);

// REQUIRES: 0 <= bNo < bitset_numbits(b).
void bitset_set_bit(bitset *b, int32_t bNo);
void bitset_clear_bit(bitset *b, int32_t bNo);
int bitset_is_bit_set(const bitset *b, int32_t bNo);

// Set (value 1) or clear (value 0) `len` bits from `bNo` on; nothing for a len below 1.
// REQUIRES: all of them within the set.
void bitset_set_range_value(bitset *b, int32_t bNo, int32_t len, int value);
void bitset_set_range(bitset *b, int32_t bNo, int32_t len);
void bitset_clear_range(bitset *b, int32_t bNo, int32_t len);

// The lowest set (clear) bit: from bNo on, in the whole set, after bNo. REQUIRES: a start >= 0.
int32_t bitset_find_bit(const bitset *b, int32_t bNo);
int32_t bitset_first_bit(const bitset *b);
int32_t bitset_next_bit(const bitset *b, int32_t bNo);
int32_t bitset_find_free_bit(const bitset *b, int32_t bNo);
int32_t bitset_first_free_bit(const bitset *b);
int32_t bitset_next_free_bit(const bitset *b, int32_t bNo);

// The highest set bit up to bNo. REQUIRES: 0 <= bNo < bitset_numbits(b).
int32_t bitset_find_prev_bit(const bitset *b, int32_t bNo);

// The index-th set (clear) bit, counted from 0. REQUIRES: index >= 0.
int32_t bitset_nth_bit(const bitset *b, int32_t index);
int32_t bitset_nth_free_bit(const bitset *b, int32_t index);

// The number of set bits.
int32_t bitset_bitcount(const bitset *b);

// Into b: its union with b1, its intersection with b1, b without b1.
void bitset_union(bitset *b, const bitset *b1);
void bitset_intersection(bitset *b, const bitset *b1);
void bitset_subtract(bitset *b, const bitset *b1);

int bitset_equal(const bitset *b, const bitset *b1);

// Whether every bit of b is set in b1. The sizes may differ: bits that b1 has no room for are
// clear.
int bitset_subset(const bitset *b, const bitset *b1);

// Take the bits under the mask from b1; compare the bits under the mask.
void bitset_maskcopy(bitset *b, const bitset *b1, const bitset *mask);
int bitset_maskequal(const bitset *b, const bitset *b1, const bitset *mask);

// Whether no bit of the range is set. REQUIRES: an ordered range within the set.
int bitset_is_range_free(const bitset *b, const bitset_range *range);

// Step to the next run of set (clear) bits, beginning with BITSET_RANGE_START. Returns 0, or -1 at
// the end.
int bitset_next_range(const bitset *b, bitset_range *range);
int bitset_next_free_range(const bitset *b, bitset_range *range);

// To and from a plain byte array of `length` bytes, in which bit 0 is the least significant bit of
// byte 0. What does not fit is cut; what is missing becomes clear bits.
void bitset_to_bitarray(const bitset *b, uint8_t *array, uint32_t length);
void bitset_from_bitarray(bitset *b, const uint8_t *array, uint32_t length);

// Write as many items of the range list ("1-5,10,20-30") as fit into the buffer. Start the list
// with a non-zero `first`, then call with 0 until `done` is 1. Items are never split, so with a
// buffer below 22 bytes the list may never go on. Returns the characters written.
// One listing at a time: the place where it stopped is stored here.
int bitset_snprintf(char *buffer, size_t size, const bitset *b, int first, int *done);

// Write the whole range list. Returns the characters written. REQUIRES: a buffer that holds it.
int bitset_sprintf(char *buffer, const bitset *b);

#endif
