#ifndef SIM_BRIDGE_DOMAIN_BRIDGE_DOMAINS_H
#define SIM_BRIDGE_DOMAIN_BRIDGE_DOMAINS_H

#include "sim/answer.h"

// "vlans" and "bridge_domains" of the host file.
extern const family bridge_domain_family;

#endif
