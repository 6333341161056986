// A request as the overrides of a host file name it.
#ifndef CAPTURE_DRIVER_REQUEST_H
#define CAPTURE_DRIVER_REQUEST_H

#include <cstdint>
#include <optional>
#include <tuple>
#include <vector>

struct driver_request {
    uint16_t opcode = 0;
    uint32_t argument = 0;
    // What buffer 1 carries: its length in bytes, or a text up to its NUL. None without input.
    std::optional<std::vector<uint8_t>> input;

    bool operator<(const driver_request &other) const {
        return std::tie(opcode, argument, input) <
               std::tie(other.opcode, other.argument, other.input);
    }
};

#endif
