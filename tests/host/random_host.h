// Hosts drawn over the key tables: every key with values of its range or its words, the extremes
// more often than the rest.
#ifndef TESTS_HOST_RANDOM_HOST_H
#define TESTS_HOST_RANDOM_HOST_H

#include "host/host.h"

#include <cstdint>
#include <set>
#include <string>

// The same host for the same seed. `without` names top-level keys about which nothing is said. All
// of it can be said in a host file, and its walks end.
host random_host(uint32_t seed, const std::set<std::string> &without = {});

#endif
