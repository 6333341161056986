// What the driver knows about one opcode: the form of its request, and who answers it.
#ifndef SIM_ANSWER_H
#define SIM_ANSWER_H

#include "dpa/userspace/kxdpa_opcodes.h"
#include "host/host.h"
#include "sim/exchange.h"

#include <cstdint>
#include <span>

constexpr uint32_t ANY_LENGTH = 0xFFFFFFFF;

// An opcode that is asked in several forms has one answer for each.
struct answer {
    kxdpa_opcode opcode;
    uint8_t flags;         // exactly these kxdpa_flag values
    uint32_t len1 = 0;     // exact, or ANY_LENGTH
    uint32_t len2 = 0;     // likewise
    uint32_t capacity = 0; // least max1 of a variable-length transfer
    void (*reply)(host &, exchange &);
    // Bytes that the driver writes behind the capacity that it was given. That any driver does is
    // an assumption about a single opcode, the card's UUID.
    uint32_t behind = 0;
};

// The opcodes that ask about one part of the host.
struct family {
    std::span<const answer> answers;
};

// All parts, in families.cpp.
std::span<const family *const> all_families();

#endif
