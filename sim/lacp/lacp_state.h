// Who answers about LACP.
#ifndef SIM_LACP_LACP_STATE_H
#define SIM_LACP_LACP_STATE_H

#include "sim/answer.h"

extern const family lacp_family;

#endif
