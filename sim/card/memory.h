#ifndef SIM_CARD_MEMORY_H
#define SIM_CARD_MEMORY_H

#include "sim/answer.h"

// "heaps", "memory_pools" and "asserts" of the host file.
extern const family memory_family;

#endif
