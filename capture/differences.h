// What a description does not answer as the driver has.
#ifndef CAPTURE_DIFFERENCES_H
#define CAPTURE_DIFFERENCES_H

#include "capture/memory.h"
#include "host/host.h"

#include <vector>

// True when the described host answers all remembered questions of the opcode as the driver has.
bool is_answered_alike(const driver_memory &memory, host &described, uint16_t opcode);

// Put every remembered question to the described host. Returns the rules that give the driver's
// answers where the host's differ in a byte that callers look at; where an opcode, or an argument
// of it, is mostly refused alike, that is one rule after its exceptions.
std::vector<override_rule> differences(const driver_memory &memory, host &described);

#endif
