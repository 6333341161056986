// What the driver knows about one opcode: the form of its request, and who answers it.
#ifndef SIM_ANSWER_H
#define SIM_ANSWER_H

#include "dpa/userspace/kxdpa_opcodes.h"
#include "host/host.h"
#include "sim/exchange.h"

#include <cstdint>
#include <span>

class object_reader;

constexpr uint32_t ANY_LENGTH = 0xFFFFFFFF;

// An opcode that is asked in several forms has one answer for each.
struct answer {
    kxdpa_opcode opcode;
    uint8_t flags;         // exactly these kxdpa_flag values
    uint32_t len1 = 0;     // exact, or ANY_LENGTH
    uint32_t len2 = 0;     // likewise
    uint32_t capacity = 0; // least max1 of a variable-length transfer
    void (*reply)(host &, exchange &);
};

// One part of the host: its keys in the host file and the opcodes that ask about it.
struct family {
    void (*parse)(object_reader &file, host &); // takes the family's top-level keys
    std::span<const answer> answers;
};

// All parts, in families.cpp.
std::span<const family *const> all_families();

#endif
