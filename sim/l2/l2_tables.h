#ifndef SIM_L2_L2_TABLES_H
#define SIM_L2_L2_TABLES_H

#include "sim/answer.h"

// "l2" of the host file.
extern const family l2_family;

#endif
