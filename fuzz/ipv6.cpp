// The IPv6 parser gives what the C library's conversion gives, without exceptions.
#include "fuzz/fuzz.h"
#include "infra/utils/kxstrings.h"

#include <arpa/inet.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    const std::unique_ptr<char[]> text = fuzz_input(bytes, size).take_text();
    uint8_t address[16];
    uint8_t expected[16];
    memset(address, 0xee, sizeof address);
    memset(expected, 0xee, sizeof expected);
    const bool valid = inet_pton(AF_INET6, text.get(), expected) == 1;
    if (!valid) {
        memset(expected, 0xee, sizeof expected);
    }
    fuzz_require(kx_parse_ipv6_address(address, text.get()) == (valid ? 0 : -1), "same verdict");
    fuzz_require(memcmp(address, expected, sizeof address) == 0, "same address");
    return 0;
}
