// Who answers about the card.
#ifndef SIM_CARD_CARD_H
#define SIM_CARD_CARD_H

#include "sim/answer.h"

extern const family card_family;

#endif
