#ifndef HANDLERS_CARD_PORT_MODE_RECORD_H
#define HANDLERS_CARD_PORT_MODE_RECORD_H

#include "handlers/port/bridge_domain_record.h" // KX_LAST_VLAN

#include <cstddef>
#include <cstdint>

constexpr uint32_t KX_PORT_ACCESS = 0; // of kx_port_mode_request::mode
constexpr uint32_t KX_PORT_TRUNK = 1;

constexpr uint32_t KX_NO_NATIVE_VLAN = 4096;

// Input of KXDPA_OP_SET_PORT_MODE.
struct kx_port_mode_request {
    uint32_t mode;        // KX_PORT_ACCESS or KX_PORT_TRUNK
    uint32_t native_vlan; // 1 to KX_LAST_VLAN, or KX_NO_NATIVE_VLAN on a trunk
};

static_assert(sizeof(kx_port_mode_request) == 8);
static_assert(offsetof(kx_port_mode_request, mode) == 0);
static_assert(offsetof(kx_port_mode_request, native_vlan) == 4);

#endif
