// Answers that a host file replaces, to show the tool a driver that fails or misbehaves.
#ifndef HOST_OVERRIDE_H
#define HOST_OVERRIDE_H

#include <cstdint>
#include <optional>
#include <vector>

struct override_rule {
    uint16_t opcode = 0;
    std::optional<uint32_t> argument;          // any when absent
    std::optional<std::vector<uint8_t>> in;    // what buffer 1 carries; anything when absent
    uint32_t only_time = 0;                    // the n-th matching request from 1, 0 for each
    uint32_t seen = 0;                         // matching requests so far
    int error = 0;                             // errno of a failing ioctl, 0 for none
    std::optional<uint32_t> status;            // an unsuccessful one also leaves the buffers alone
    std::optional<std::vector<uint8_t>> reply; // written as it is, as far as the buffer goes
    std::optional<uint32_t> length;            // the reply is filled up or cut to this
    std::optional<uint32_t> returned;          // length handed back in the capacity word
};

#endif
