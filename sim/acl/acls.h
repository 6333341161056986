// The access control lists that the KRT pushed to the host.
#ifndef SIM_ACL_ACLS_H
#define SIM_ACL_ACLS_H

#include "handlers/acl/acl_record.h"
#include "sim/answer.h"

#include <vector>

struct acl_table {
    std::vector<kx_acl_record> acls; // in the order in which they are listed
};

// "acls" of the host file.
extern const family acl_family;

#endif
