// Who answers about access control lists.
#ifndef SIM_ACL_ACLS_H
#define SIM_ACL_ACLS_H

#include "sim/answer.h"

extern const family acl_family;

#endif
