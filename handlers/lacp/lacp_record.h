// The LACP state of the uplinks (IEEE 802.1AX), as the DPA keeps it.
#ifndef HANDLERS_LACP_LACP_RECORD_H
#define HANDLERS_LACP_LACP_RECORD_H

#include <cstddef>
#include <cstdint>

// The uplinks that can run LACP.
constexpr uint32_t KX_LACP_FIRST_LTL = 18;
constexpr uint32_t KX_LACP_LAST_LTL = 49;

constexpr uint32_t KX_LACP_OFFLOAD_ENABLED = 1; // anything else is disabled

constexpr uint32_t KX_LACP_NO_HOST_DATA = 8; // of channel_index

enum kx_lacp_channel_mode : uint32_t {
    KX_LACP_ACTIVE = 1,
    KX_LACP_PASSIVE = 2,
};

// Reply of KXDPA_OP_LACP_CARRIERS.
struct kx_lacp_carriers {
    uint32_t physical_ltls[8]; // entries that are no LACP uplink are unused
    uint32_t port_channel_ltl;
};

static_assert(sizeof(kx_lacp_carriers) == 36);
static_assert(offsetof(kx_lacp_carriers, physical_ltls) == 0);
static_assert(offsetof(kx_lacp_carriers, port_channel_ltl) == 32);

// One side of a LACP PDU.
struct kx_lacp_partner {
    uint32_t system_priority;
    uint8_t system_mac[6];
    uint8_t reserved10[2];
    uint32_t key;
    uint32_t port_priority;
    uint32_t port_number;
    uint32_t state; // LACP state bits in the low byte
};

static_assert(sizeof(kx_lacp_partner) == 28);
static_assert(offsetof(kx_lacp_partner, system_priority) == 0);
static_assert(offsetof(kx_lacp_partner, system_mac) == 4);
static_assert(offsetof(kx_lacp_partner, key) == 12);
static_assert(offsetof(kx_lacp_partner, port_priority) == 16);
static_assert(offsetof(kx_lacp_partner, port_number) == 20);
static_assert(offsetof(kx_lacp_partner, state) == 24);

// Reply of KXDPA_OP_LACP_PDU_CACHE: the last PDUs with the KRT and with the upstream switch.
struct kx_lacp_pdu_cache {
    kx_lacp_partner krt_actor;
    kx_lacp_partner krt_partner;
    kx_lacp_partner upstream_actor;
    kx_lacp_partner upstream_partner;
};

static_assert(sizeof(kx_lacp_pdu_cache) == 112);
static_assert(offsetof(kx_lacp_pdu_cache, krt_actor) == 0);
static_assert(offsetof(kx_lacp_pdu_cache, krt_partner) == 28);
static_assert(offsetof(kx_lacp_pdu_cache, upstream_actor) == 56);
static_assert(offsetof(kx_lacp_pdu_cache, upstream_partner) == 84);

// Reply of KXDPA_OP_LACP_HOST_DATA.
struct kx_lacp_host_data {
    uint32_t channel_index; // KX_LACP_NO_HOST_DATA when the LTL has none
    uint32_t channel_mode;  // kx_lacp_channel_mode
    uint32_t port_priority;
};

static_assert(sizeof(kx_lacp_host_data) == 12);
static_assert(offsetof(kx_lacp_host_data, channel_index) == 0);
static_assert(offsetof(kx_lacp_host_data, channel_mode) == 4);
static_assert(offsetof(kx_lacp_host_data, port_priority) == 8);

#endif
