// Keeps what this process asks of the driver, and what the driver answers, to the byte and in
// order.
#ifndef CAPTURE_RECORDER_H
#define CAPTURE_RECORDER_H

#include "host/host.h"

#include <string>

// Start anew: forget what was kept, and keep every request from now on. When `interrupted` is given
// and a request ends with *interrupted set, `leave` is called after it, outside of any signal
// handler.
void recorder_start(const volatile int *interrupted = nullptr, void (*leave)() = nullptr);

// Keep no more requests. Of the host nothing is said but these answers, and what its own program
// tells of its management address if the command told it to the driver. Each request has the rule
// that gives its answer; where the same one got different answers, that which came most often is
// the rule for all times after the rules for the other times. Returns why there is no recording,
// nothing when there is one.
std::string recorder_stop(host &recorded);

#endif
