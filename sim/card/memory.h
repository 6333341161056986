// Who answers about the DPA's memory and its asserts.
#ifndef SIM_CARD_MEMORY_H
#define SIM_CARD_MEMORY_H

#include "sim/answer.h"

extern const family memory_family;

#endif
