#ifndef SIM_AGENT_AGENT_H
#define SIM_AGENT_AGENT_H

#include "sim/answer.h"

// "agent" and "management_address" of the host file.
extern const family agent_family;

#endif
