#ifndef HANDLERS_ISCSI_ISCSI_RECORD_H
#define HANDLERS_ISCSI_ISCSI_RECORD_H

#include <cstddef>
#include <cstdint>

// Input of KXDPA_OP_SET_ISCSI_PINNING. Assumed: the two LTLs come first, the rest is reserved.
struct __attribute__((packed)) kx_iscsi_pinning {
    uint16_t vmk_ltl;   // of the vmkernel NIC
    uint16_t vmnic_ltl; // of the physical NIC that it is pinned to
    uint8_t reserved4[3];
};

static_assert(sizeof(kx_iscsi_pinning) == 7);
static_assert(offsetof(kx_iscsi_pinning, vmk_ltl) == 0);
static_assert(offsetof(kx_iscsi_pinning, vmnic_ltl) == 2);

#endif
