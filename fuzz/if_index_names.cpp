// Every form of names with arbitrary indexes and buffer sizes: a name stays within its buffer and
// ends with a NUL, and a cut name is the beginning of the whole one.
#include "fuzz/fuzz.h"
#include "if_index/if_index_name.h"

namespace {

using form = int (*)(char *buffer, size_t size, uint32_t if_index);
constexpr form FORMS[] = {snprintf_if_index_short,      snprintf_if_index_short_native,
                          snprintf_if_index_from_if_db, snprintf_if_index,
                          snprintf_if_index_native,     snprintf_if_index_internal};

using range_form = int (*)(char *buffer, size_t size, const if_index_range *range);
constexpr range_form RANGE_FORMS[] = {snprintf_if_index_range_short, snprintf_if_index_range};

void check_form(form name, size_t size, uint32_t if_index) {
    char whole[256];
    const int needed = name(whole, sizeof whole, if_index);
    fuzz_require(needed >= 0 && static_cast<size_t>(needed) == strlen(whole), "length of a name");
    const auto exact = std::make_unique<char[]>(size);
    fuzz_require(name(exact.get(), size, if_index) == needed, "length of a cut name");
    if (size > 0) {
        const std::string expected = std::string(whole).substr(0, size - 1);
        fuzz_require(expected == exact.get(), "a cut name begins the whole one");
    }
}

void check_range(range_form name, size_t size, const if_index_range &range) {
    const size_t storage = if_index_range_storage(size);
    const auto exact = std::make_unique<char[]>(storage);
    fuzz_require(name(exact.get(), size, &range) >= 0, "length of a range");
    fuzz_require(size == 0 || memchr(exact.get(), 0, storage) != nullptr, "a range's name ends");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    fuzz_input input(bytes, size);
    while (!input.empty()) {
        const auto first = input.take<uint32_t>();
        const size_t room = input.take<uint8_t>() % 48;
        const auto second = input.take<uint32_t>();
        for (const form name : FORMS) {
            check_form(name, room, first);
        }
        // Two unrelated indexes are hardly ever of one type.
        const uint32_t other = (room & 1) != 0 ? second : first ^ (second & 0xfff);
        for (const range_form name : RANGE_FORMS) {
            check_range(name, room, {first, other});
        }
    }
    return 0;
}
