// Settings of ports and features that commands make.
#ifndef SIM_SETTINGS_SETTINGS_H
#define SIM_SETTINGS_SETTINGS_H

#include "sim/answer.h"

// Takes no keys: a port's mode belongs to the port, and nothing shows the other settings.
extern const family settings_family;

#endif
