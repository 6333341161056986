// The bit set operations, compared with a plain vector. The input is a program: an operation and
// its numbers, again and again, on three sets of one size.
#include "fuzz/fuzz.h"
#include "infra/utils/kxlibbmp.h"

#include <array>
#include <vector>

namespace {

using plain = std::vector<bool>;

// A set in memory of its own size, and its model.
struct pair {
    std::unique_ptr<uint32_t[]> memory;
    plain bits;

    explicit pair(uint32_t size)
        : memory(std::make_unique<uint32_t[]>(1 + size / sizeof(uint32_t))), bits(size * 8) {
        set()->size = size;
    }
    bitset *set() const {
        return reinterpret_cast<bitset *>(memory.get());
    }
};

int32_t find(const plain &bits, bool value, int64_t from, int step) {
    for (int64_t bit = from; bit >= 0 && bit < static_cast<int64_t>(bits.size()); bit += step) {
        if (bits[static_cast<size_t>(bit)] == value) {
            return static_cast<int32_t>(bit);
        }
    }
    return -1;
}

int32_t nth(const plain &bits, bool value, int32_t index) {
    int32_t found = find(bits, value, 0, 1);
    while (found != -1 && index-- > 0) {
        found = find(bits, value, int64_t{found} + 1, 1);
    }
    return found;
}

std::string list_of(const plain &bits) {
    std::string text;
    for (int32_t lower = find(bits, true, 0, 1); lower != -1;) {
        const int32_t end = find(bits, false, lower, 1);
        const int32_t upper = end == -1 ? static_cast<int32_t>(bits.size()) - 1 : end - 1;
        text += (text.empty() ? "" : ",") + std::to_string(lower);
        text += lower == upper ? "" : "-" + std::to_string(upper);
        lower = find(bits, true, int64_t{upper} + 1, 1);
    }
    return text;
}

// Piece by piece, in buffers that may be small, but large enough that the list always goes on. A
// piece does not begin with a comma.
std::string listed(const bitset *set, size_t room) {
    std::string text;
    int done = 0;
    for (int first = 1; done == 0; first = 0) {
        const auto piece = std::make_unique<char[]>(room);
        const int length = bitset_snprintf(piece.get(), room, set, first, &done);
        fuzz_require(length >= 0 && static_cast<size_t>(length) < room, "length of a piece");
        text += text.empty() || length == 0 ? "" : ",";
        text.append(piece.get(), static_cast<size_t>(length));
    }
    return text;
}

void check_searches(const pair &of, int32_t from) {
    const bitset *set = of.set();
    const auto count = static_cast<int32_t>(of.bits.size());
    fuzz_require(bitset_bitcount(set) == std::count(of.bits.begin(), of.bits.end(), true), "count");
    fuzz_require(bitset_first_bit(set) == find(of.bits, true, 0, 1), "first");
    fuzz_require(bitset_first_free_bit(set) == find(of.bits, false, 0, 1), "first free");
    if (from < 0) {
        fuzz_require(bitset_find_bit(set, from) == -1 && bitset_nth_bit(set, from) == -1 &&
                         bitset_is_bit_set(set, from) == 0,
                     "a refused number");
        return;
    }
    fuzz_require(bitset_find_bit(set, from) == find(of.bits, true, from, 1), "find");
    fuzz_require(bitset_find_free_bit(set, from) == find(of.bits, false, from, 1), "find free");
    fuzz_require(bitset_next_bit(set, from) == find(of.bits, true, int64_t{from} + 1, 1), "next");
    fuzz_require(bitset_next_free_bit(set, from) == find(of.bits, false, int64_t{from} + 1, 1),
                 "next free");
    fuzz_require(bitset_nth_bit(set, from) == nth(of.bits, true, from), "nth");
    fuzz_require(bitset_nth_free_bit(set, from) == nth(of.bits, false, from), "nth free");
    fuzz_require(bitset_find_prev_bit(set, from) ==
                     (from < count ? find(of.bits, true, from, -1) : -1),
                 "previous");
    fuzz_require((bitset_is_bit_set(set, from) != 0) ==
                     (from < count && of.bits[static_cast<size_t>(from)]),
                 "is set");
}

void change_range(pair &of, int32_t from, int32_t count, bool value) {
    bitset_set_range_value(of.set(), from, count, value ? 1 : 0);
    const auto room = static_cast<int64_t>(of.bits.size());
    if (from < 0 || int64_t{from} + count > room) {
        return;
    }
    for (int64_t bit = from; bit < int64_t{from} + count; bit++) {
        of.bits[static_cast<size_t>(bit)] = value;
    }
}

void combine(pair &of, const pair &by, uint8_t how) {
    for (size_t bit = 0; bit < of.bits.size(); bit++) {
        const bool a = of.bits[bit];
        const bool b = by.bits[bit];
        const bool results[] = {a || b, a && b, a && !b, b};
        of.bits[bit] = results[how % 4];
    }
    void (*const operations[])(bitset *, const bitset *) = {bitset_union, bitset_intersection,
                                                            bitset_subtract, bitset_copy};
    operations[how % 4](of.set(), by.set());
}

void check_same(const pair &of) {
    for (size_t bit = 0; bit < of.bits.size(); bit++) {
        fuzz_require((bitset_is_bit_set(of.set(), static_cast<int32_t>(bit)) != 0) == of.bits[bit],
                     "the set is its model");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    fuzz_input input(bytes, size);
    const uint32_t set_size = input.take<uint8_t>() % 16 * sizeof(uint32_t);
    std::array<pair, 3> sets = {pair(set_size), pair(set_size), pair(set_size)};
    for (int steps = 0; steps < 200 && !input.empty(); steps++) {
        const auto operation = input.take<uint8_t>();
        pair &of = sets[operation / 16U % 3];
        const pair &by = sets[operation / 64U % 3];
        const auto narrow = input.take<int16_t>();
        const int32_t number = (operation & 8) != 0 ? input.take<int32_t>() : narrow;
        switch (operation % 8) {
        case 0:
        case 1:
            change_range(of, number, input.take<int16_t>(), (operation & 1) != 0);
            break;
        case 2:
            combine(of, by, static_cast<uint8_t>(number));
            break;
        case 3:
            check_searches(of, number);
            break;
        case 4:
            fuzz_require((bitset_equal(of.set(), by.set()) != 0) == (of.bits == by.bits), "equal");
            break;
        case 5:
            fuzz_require(listed(of.set(), 22 + static_cast<uint16_t>(number) % 64) ==
                             list_of(of.bits),
                         "range list");
            break;
        case 6:
            change_range(of, number, 1, true);
            break;
        default:
            change_range(of, number, 1, false);
            break;
        }
        check_same(of);
    }
    return 0;
}
