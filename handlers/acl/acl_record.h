// One access control list, as the DPA lists them.
#ifndef HANDLERS_ACL_ACL_RECORD_H
#define HANDLERS_ACL_ACL_RECORD_H

#include <cstddef>
#include <cstdint>

// The tool does not ask for more lists than this.
constexpr uint32_t KX_ACL_LIMIT = 1024;

enum kx_acl_type : uint8_t {
    KX_ACL_IPV4 = 0,
    KX_ACL_IPV6 = 1,
    KX_ACL_MAC = 2,
};

enum kx_acl_statistics_state : uint8_t {
    KX_ACL_STATISTICS_DISABLED = 0,
    KX_ACL_STATISTICS_ENABLED = 1,
};

// The reply of KXDPA_OP_ACL_LIST is an array of these without gaps.
struct __attribute__((packed)) kx_acl_record {
    uint32_t id;
    uint32_t references; // policies that use the list
    uint32_t rules;
    uint8_t type;             // kx_acl_type
    uint8_t statistics_state; // kx_acl_statistics_state
    uint16_t statistics_id;
    uint32_t permitted; // packets
    uint32_t denied;    // packets
    uint32_t unmatched; // packets that matched no rule
    char name[65];      // NUL-terminated unless it fills the field
};

static_assert(sizeof(kx_acl_record) == 93);
static_assert(offsetof(kx_acl_record, id) == 0);
static_assert(offsetof(kx_acl_record, references) == 4);
static_assert(offsetof(kx_acl_record, rules) == 8);
static_assert(offsetof(kx_acl_record, type) == 12);
static_assert(offsetof(kx_acl_record, statistics_state) == 13);
static_assert(offsetof(kx_acl_record, statistics_id) == 14);
static_assert(offsetof(kx_acl_record, permitted) == 16);
static_assert(offsetof(kx_acl_record, denied) == 20);
static_assert(offsetof(kx_acl_record, unmatched) == 24);
static_assert(offsetof(kx_acl_record, name) == 28);

#endif
