// Typed interface names: the parser never reads past a name, and it builds an index whose own names
// are bounded. The first bytes of the input are the keyword and numbers of the other function.
#include "fuzz/fuzz.h"
#include "if_index/if_index_name.h"
#include "if_index/if_index_parse.h"

namespace {

constexpr uint32_t PRESET = 0xffffffff;
constexpr uint32_t LOOPBACK_BYTE = 0xfe; // a whole top byte, which is no type

void check_built(int built, uint32_t if_index) {
    fuzz_require(built == 0 || built == 1, "verdict");
    fuzz_require(built == 1 || if_index == PRESET, "a failure leaves the index alone");
    if (built == 1 && if_index != PRESET && if_index >> 24 != LOOPBACK_BYTE) {
        char name[64];
        uint8_t type = 0;
        fuzz_require(if_index_get_type(if_index, &type) == 0, "an index that is built has a type");
        fuzz_require(snprintf_if_index(name, sizeof name, if_index) > 0, "and a name");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    fuzz_input input(bytes, size);
    const auto keyword = input.take<uint8_t>();
    if (keyword == 0xff) {
        uint32_t numbers[IF_NAME_MAX_NUMBERS];
        const auto asked = input.take<uint32_t>();
        const int count = input.take<uint8_t>() % (IF_NAME_MAX_NUMBERS + 1);
        for (uint32_t &number : numbers) {
            number = input.take<uint32_t>();
        }
        uint32_t if_index = PRESET;
        check_built(vsh_interface_coordinates_to_ifindex(asked, numbers, count, &if_index),
                    if_index);
        return 0;
    }
    // Another byte puts a keyword in front of the text.
    std::string name =
        keyword < IF_KEYWORD_COUNT ? INTERFACE_TYPE_TABLE_PREFIXinterface_type_names[keyword] : "";
    name += input.take_text().get();
    const auto exact = std::make_unique<char[]>(name.size() + 1);
    memcpy(exact.get(), name.c_str(), name.size() + 1);
    uint32_t if_index = PRESET;
    const int built = vsh_interface_name_to_ifindex(exact.get(), &if_index);
    check_built(built, if_index);
    return 0;
}
