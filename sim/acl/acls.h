#ifndef SIM_ACL_ACLS_H
#define SIM_ACL_ACLS_H

#include "sim/answer.h"

// "acls" of the host file.
extern const family acl_family;

#endif
