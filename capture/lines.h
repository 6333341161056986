// The command lines that a capture runs: every display of the tool, by the keys of the host file
// that it is about.
#ifndef CAPTURE_LINES_H
#define CAPTURE_LINES_H

#include "capture/memory.h"
#include "host/host.h"

#include <set>
#include <string>

// The top-level keys of the host file that the displays are about.
std::set<std::string> displayed_keys();

// An LTL that nothing names, which is asked about as well: as the driver answers for that, it
// answers for others.
uint32_t stranger_to(const host &learnt);

// Run the lines of these keys, of all when there are none, in this process, with an output that
// keeps nothing. The tables come first, then what can be typed of that which `learnt` holds by
// then.
void run_displays(const std::set<std::string> &keys, const host &learnt, driver_memory &memory);

#endif
