// Who takes the settings of ports and features that commands make.
#ifndef SIM_SETTINGS_SETTINGS_H
#define SIM_SETTINGS_SETTINGS_H

#include "sim/answer.h"

extern const family settings_family;

#endif
