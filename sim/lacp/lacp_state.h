#ifndef SIM_LACP_LACP_STATE_H
#define SIM_LACP_LACP_STATE_H

#include "sim/answer.h"

// "lacp" of the host file.
extern const family lacp_family;

#endif
