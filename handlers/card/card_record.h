// The card's own records: what "show card", "show version" and "show krt uptime" ask for.
#ifndef HANDLERS_CARD_CARD_RECORD_H
#define HANDLERS_CARD_CARD_RECORD_H

#include <cstddef>
#include <cstdint>

// Reply of KXDPA_OP_PROCESSORS.
struct kx_card_processors {
    uint16_t processors;
    uint16_t cores;
    uint16_t sockets;
    uint8_t reserved6[2];
    uint64_t kernel_memory; // in the DPA's own unit
};

static_assert(sizeof(kx_card_processors) == 16);
static_assert(offsetof(kx_card_processors, processors) == 0);
static_assert(offsetof(kx_card_processors, cores) == 2);
static_assert(offsetof(kx_card_processors, sockets) == 4);
static_assert(offsetof(kx_card_processors, kernel_memory) == 8);

// Capacities in bytes that the card's strings are asked with.
constexpr uint32_t KX_CARD_UUID_CAPACITY = 48;
constexpr uint32_t KX_CARD_NAME_CAPACITY = 256;
constexpr uint32_t KX_VERSION_CAPACITY = 128;
constexpr uint32_t KX_SDK_VERSION_CAPACITY = 32;

// Reply of KXDPA_OP_CARD_UUID. Assumed: the driver puts the type after the string's capacity.
struct kx_card_uuid {
    char text[KX_CARD_UUID_CAPACITY]; // NUL-terminated unless it fills the field
    uint32_t type;                    // what kind of UUID it is, see KX_CARD_UUID_VMWARE
};

static_assert(sizeof(kx_card_uuid) == 52);
static_assert(offsetof(kx_card_uuid, text) == 0);
static_assert(offsetof(kx_card_uuid, type) == 48);

// Argument of KXDPA_OP_SET_CARD_UUID: the hypervisor's UUID of the host.
constexpr uint32_t KX_CARD_UUID_VMWARE = 2;

// Reply of the requests for a MAC address.
struct kx_card_mac {
    uint8_t mac[6]; // in transmission order
    uint8_t reserved6[2];
};

static_assert(sizeof(kx_card_mac) == 8);
static_assert(offsetof(kx_card_mac, mac) == 0);

// Argument of KXDPA_OP_CARD_MAC.
enum kx_card_mac_of : uint32_t {
    KX_CARD_MAC_CONTROL = 1,
    KX_CARD_MAC_PACKET = 2,
    KX_CARD_MAC_SPAN = 3,
};

// Argument of KXDPA_OP_MAX_PORTS.
enum kx_card_ports : uint32_t {
    KX_CARD_PHYSICAL_PORTS = 1,
    KX_CARD_VIRTUAL_PORTS = 2,
};

// Argument of KXDPA_OP_VERSION_TEXT.
enum kx_version_of : uint32_t {
    KX_VERSION_HMX = 0,
    KX_VERSION_KRT = 1,
    KX_VERSION_SYSTEM = 2,
};

// Argument of KXDPA_OP_L3_CONTROL_VLAN: the class of the L3 control index, above the index.
constexpr uint32_t KX_L3_CONTROL_CLASS = 0x2000000;

// What a port channel picks the member by, as KXDPA_OP_LOAD_BALANCING tells it.
constexpr const char *KX_LOAD_BALANCING[] = {
    "Unknown",
    "destination-mac",
    "source-mac",
    "source-dest-mac",
    "destination-ip-vlan",
    "source-ip-vlan",
    "source-dest-ip-vlan",
    "destination-port",
    "source-port",
    "source-dest-port",
    "dest-ip-port",
    "source-ip-port",
    "source-dest-ip-port",
    "dest-ip-port-vlan",
    "source-ip-port-vlan",
    "source-dest-ip-port-vlan",
    "destination-ip",
    "source-ip",
    "source-dest-ip",
    "vlan-only",
    "source-virtual-port-id",
};

// Reply of KXDPA_OP_KRT_UPTIME.
struct kx_krt_uptime {
    uint32_t seconds;
    uint8_t reserved4[12];
};

static_assert(sizeof(kx_krt_uptime) == 16);
static_assert(offsetof(kx_krt_uptime, seconds) == 0);

#endif
