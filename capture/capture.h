// A capture: which parts of a host there are, and asking for them.
#ifndef CAPTURE_CAPTURE_H
#define CAPTURE_CAPTURE_H

#include "capture/host_capture.h"

#include <set>
#include <string>

// True for a top-level key of the host file that a capture can fill.
bool can_be_captured(const std::string &key);

// Ask for the parts under the given top-level keys, all of them when there are none. Overrides are
// among them only when all are asked for or the key is given; the answers are compared for them
// then. The driver must have been opened.
void capture_host(host_capture &host, const std::set<std::string> &keys);

#endif
