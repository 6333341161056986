// Answers that a host file replaces, to show the tool a driver that fails or misbehaves.
#ifndef SIM_OVERRIDES_H
#define SIM_OVERRIDES_H

#include "dpa/userspace/kxdpa_request.h"
#include "host/override.h"

#include <vector>

class object_reader;

// "overrides" of the host file.
void parse_overrides(object_reader &file, std::vector<override_rule> &overrides);

// The first rule that holds for the request, nullptr for none; counts the request in all that
// match.
const override_rule *find_override(std::vector<override_rule> &overrides,
                                   const kxdpa_request &request);

#endif
