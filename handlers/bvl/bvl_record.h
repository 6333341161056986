#ifndef HANDLERS_BVL_BVL_RECORD_H
#define HANDLERS_BVL_BVL_RECORD_H

#include <cstddef>
#include <cstdint>

// Bytes of an access list's name, its NUL included.
constexpr size_t KX_BVL_LIST_NAME_SIZE = 129;

// Input of KXDPA_OP_SET_BVL_POLICY. Assumed: the two group numbers come first, then the name.
struct __attribute__((packed)) kx_bvl_policy {
    uint16_t sgt;                            // security-group tag of the source
    uint16_t dgt;                            // of the destination
    char access_list[KX_BVL_LIST_NAME_SIZE]; // NUL-terminated
};

static_assert(sizeof(kx_bvl_policy) == 133);
static_assert(offsetof(kx_bvl_policy, sgt) == 0);
static_assert(offsetof(kx_bvl_policy, dgt) == 2);
static_assert(offsetof(kx_bvl_policy, access_list) == 4);

#endif
