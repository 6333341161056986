// What is told of the requests of a run: a line for each of them, and what of the host description
// they have used.
#ifndef SIM_USE_H
#define SIM_USE_H

#include "sim/model.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

// Write a line to the descriptor for every request from now on. What cannot be written is lost.
void trace_into(model &driver, int descriptor);

// The number of marks of use, a byte each: the overrides, and after them the top-level keys of the
// host file, which are marked where the description is a capture of some.
size_t marks_of(const host &described);

// From now on requests mark what they use in `marks`, which outlive the model.
void mark_use_of(model &driver, uint8_t *marks);

// A line for each thing that is worth telling about the use of the host in the file `name`: a
// capture of some keys that was asked for others, and what was described for nothing.
std::vector<std::string> use_report(const host &described, std::span<const uint8_t> marks,
                                    const std::string &name);

#endif
