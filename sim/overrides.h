// Answers that a host file replaces, to show the tool a driver that fails or misbehaves.
#ifndef SIM_OVERRIDES_H
#define SIM_OVERRIDES_H

#include "sim/exchange.h"

#include <cstdint>
#include <optional>
#include <vector>

class object_reader;

struct override_rule {
    uint16_t opcode = 0;
    std::optional<uint32_t> argument; // any when absent
    uint32_t only_time = 0;           // the n-th matching request from 1, 0 for each of them
    uint32_t seen = 0;                // matching requests so far
    int error = 0;                    // errno of a failing ioctl, 0 for none
    std::optional<uint32_t> status;   // an unsuccessful one also leaves the buffers alone
    std::optional<std::vector<uint8_t>> reply; // written as it is, as far as the buffer goes
    std::optional<uint32_t> length;            // the reply is filled up or cut to this
    std::optional<uint32_t> returned;          // length handed back in the capacity word
};

// "overrides" of the host file.
void parse_overrides(object_reader &file, std::vector<override_rule> &overrides);

// The first rule that holds for the request, nullptr for none; counts the request in all that
// match.
const override_rule *find_override(std::vector<override_rule> &overrides,
                                   const kxdpa_request &request);

#endif
