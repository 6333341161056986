// A recording as the overrides of a host file.
#ifndef CAPTURE_RECORD_RECORDING_H
#define CAPTURE_RECORD_RECORDING_H

#include "capture/record/recorder.h"
#include "host/host.h"

#include <vector>

// The rules that give the same answers to the same requests in the same order. A request that got
// one answer throughout has one rule. Otherwise the answer that came most often is the rule for all
// times behind the rules for the other times.
std::vector<override_rule> recording_overrides(const std::vector<recorded_request> &requests);

// A host of which nothing but that is said, and what its own program tells of its management
// address if the command told it to the driver.
host recorded_host(const std::vector<recorded_request> &requests);

#endif
