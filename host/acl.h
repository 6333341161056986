// The access control lists that the KRT pushed to the host.
#ifndef HOST_ACL_H
#define HOST_ACL_H

#include "handlers/acl/acl_record.h"

#include <cstdint>
#include <optional>
#include <vector>

struct access_list {
    uint32_t id = 0;
    uint32_t references = 0; // policies that use the list
    uint32_t rules = 0;
    uint8_t type = KX_ACL_IPV4;                      // kx_acl_type
    uint8_t statistics = KX_ACL_STATISTICS_DISABLED; // kx_acl_statistics_state
    uint16_t statistics_id = 0;
    uint32_t permitted = 0, denied = 0, unmatched = 0; // packets
    char name[sizeof kx_acl_record::name] = {};        // NUL-terminated unless it fills the field
};

struct acl_table {
    std::optional<std::vector<access_list>> acls{std::in_place}; // in the order of the list
};

#endif
