// Who answers about port channels.
#ifndef SIM_PORT_PORT_CHANNELS_H
#define SIM_PORT_PORT_CHANNELS_H

#include "sim/answer.h"

extern const family port_channel_family;

#endif
