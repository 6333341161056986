// Answers that a host file replaces, to show the tool a driver that fails or misbehaves.
#ifndef HOST_OVERRIDE_H
#define HOST_OVERRIDE_H

#include <cstdint>
#include <optional>
#include <vector>

struct override_rule {
    uint16_t opcode = 0;
    std::optional<uint32_t> argument{};          // any when absent
    std::optional<std::vector<uint8_t>> in{};    // the input as the trace shows it; any when absent
    uint32_t only_time = 0;                      // the n-th matching request from 1, 0 for each
    int error = 0;                               // errno of a failing ioctl, 0 for none
    std::optional<uint32_t> status{};            // without a reply the buffers are left alone
    std::optional<std::vector<uint8_t>> reply{}; // written as it is, as far as the buffer goes
    std::optional<uint32_t> length{};            // the reply is filled up or cut to this
    std::optional<uint32_t> returned{};          // length handed back in the capacity word
};

#endif
