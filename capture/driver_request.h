// A request as the overrides of a host file name it.
#ifndef CAPTURE_DRIVER_REQUEST_H
#define CAPTURE_DRIVER_REQUEST_H

#include <compare>
#include <cstdint>
#include <optional>
#include <vector>

struct driver_request {
    uint16_t opcode = 0;
    uint32_t argument = 0;
    // What buffer 1 carries: its length in bytes, or a text up to its NUL. None without input.
    std::optional<std::vector<uint8_t>> input;
    auto operator<=>(const driver_request &) const = default;
};

#endif
