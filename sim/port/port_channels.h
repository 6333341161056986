#ifndef SIM_PORT_PORT_CHANNELS_H
#define SIM_PORT_PORT_CHANNELS_H

#include "sim/answer.h"

// "port_channel_mode" and "port_channels" of the host file.
extern const family port_channel_family;

#endif
