// Who answers about traffic, drops and stages.
#ifndef SIM_COUNTERS_COUNTERS_H
#define SIM_COUNTERS_COUNTERS_H

#include "sim/answer.h"

extern const family counter_family;

#endif
