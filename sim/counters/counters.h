#ifndef SIM_COUNTERS_COUNTERS_H
#define SIM_COUNTERS_COUNTERS_H

#include "sim/answer.h"

// "traffic", "drops", "multicast_drops", "flood_drops" and "stages" of the host file.
extern const family counter_family;

#endif
