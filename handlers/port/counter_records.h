// Traffic and drop counters of a port, as the driver fills them.
#ifndef HANDLERS_PORT_COUNTER_RECORDS_H
#define HANDLERS_PORT_COUNTER_RECORDS_H

#include <cstddef>
#include <cstdint>

// Reply of KXDPA_OP_PORT_STATISTICS.
struct kx_port_statistics {
    uint64_t received_packets;
    uint8_t reserved8[40];
    uint64_t received_bytes;
    uint8_t reserved56[32];
    uint64_t receive_drops;
    uint8_t reserved96[24];
    uint64_t sent_packets;
    uint8_t reserved128[32];
    uint64_t sent_bytes;
    uint8_t reserved168[24];
    uint64_t transmit_drops;
    uint64_t transmit_floods;
    uint8_t reserved208[192];
};

static_assert(sizeof(kx_port_statistics) == 400);
static_assert(offsetof(kx_port_statistics, received_packets) == 0);
static_assert(offsetof(kx_port_statistics, received_bytes) == 48);
static_assert(offsetof(kx_port_statistics, receive_drops) == 88);
static_assert(offsetof(kx_port_statistics, sent_packets) == 120);
static_assert(offsetof(kx_port_statistics, sent_bytes) == 160);
static_assert(offsetof(kx_port_statistics, transmit_drops) == 192);
static_assert(offsetof(kx_port_statistics, transmit_floods) == 200);

// Drops are counted per stage of the pipeline: the ingress stages first, then the egress stages.
constexpr uint32_t KX_INGRESS_STAGES = 24;
constexpr uint32_t KX_STAGES = 41;

// Reply of KXDPA_OP_STAGE_DESCRIPTOR.
struct kx_stage_descriptor {
    uint8_t number;
    uint8_t present; // non-zero: the stage exists and is shown
    uint8_t reserved2[70];
    char name[32]; // NUL-terminated unless it fills the field; "Ingress ..." or "Egress ..."
};

static_assert(sizeof(kx_stage_descriptor) == 104);
static_assert(offsetof(kx_stage_descriptor, number) == 0);
static_assert(offsetof(kx_stage_descriptor, present) == 1);
static_assert(offsetof(kx_stage_descriptor, name) == 72);

struct kx_stage_drops {
    uint8_t valid; // non-zero: the entry is used
    uint8_t reserved1[3];
    uint32_t drops;
};

// Reply of KXDPA_OP_DROP_COUNTERS. Assumed: KXDPA_OP_MULTICAST_DROPS and KXDPA_OP_FLOOD_DROPS reply
// with the same record.
struct kx_drop_counters {
    uint8_t head[4];
    kx_stage_drops stages[KX_STAGES];
};

static_assert(sizeof(kx_drop_counters) == 332);
static_assert(offsetof(kx_drop_counters, stages) == 4);
static_assert(sizeof(kx_stage_drops) == 8);
static_assert(offsetof(kx_stage_drops, valid) == 0);
static_assert(offsetof(kx_stage_drops, drops) == 4);

#endif
