// Who answers about VLANs and bridge domains.
#ifndef SIM_BRIDGE_DOMAIN_BRIDGE_DOMAINS_H
#define SIM_BRIDGE_DOMAIN_BRIDGE_DOMAINS_H

#include "sim/answer.h"

extern const family bridge_domain_family;

#endif
