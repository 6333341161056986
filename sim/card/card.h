#ifndef SIM_CARD_CARD_H
#define SIM_CARD_CARD_H

#include "sim/answer.h"

// "card" of the host file.
extern const family card_family;

#endif
