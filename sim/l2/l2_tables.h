// Who answers about L2 and get-mac tables.
#ifndef SIM_L2_L2_TABLES_H
#define SIM_L2_L2_TABLES_H

#include "sim/answer.h"

extern const family l2_family;

#endif
