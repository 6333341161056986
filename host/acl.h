// The access control lists that the KRT pushed to the host.
#ifndef HOST_ACL_H
#define HOST_ACL_H

#include "handlers/acl/acl_record.h"

#include <cstdint>
#include <optional>
#include <vector>

// The record stands without gaps in the driver's list, here it is aligned.
struct access_list {
    alignas(uint32_t) kx_acl_record record{};
};

struct acl_table {
    std::optional<std::vector<access_list>> acls{std::in_place}; // in the order of the list
};

#endif
