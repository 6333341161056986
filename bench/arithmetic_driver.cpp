// A preloaded driver that computes its answers, so that a measurement sees the tool and not the
// simulated host. The environment sets the host: BENCH_PORTS, BENCH_DOMAINS, BENCH_MACS (entries in
// each bridge domain) and BENCH_VLAN_MODE.
#include "dpa/userspace/kxdpa_opcodes.h"
#include "dpa/userspace/kxdpa_request.h"
#include "handlers/port/bridge_domain_record.h"
#include "handlers/port/counter_records.h"
#include "handlers/port/l2_record.h"
#include "handlers/port/port_record.h"
#include "infra/utils/kxlibbmp.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr const char *DEVICE_PATH = "/vmfs/devices/char/vmkdriver/kestrel";
constexpr uint32_t FIRST_LTL = 50;
constexpr uint32_t LAST_KEY_BYTES = 4; // of a MAC address that count the entries
constexpr uint32_t NOT_FOUND = 61;     // status of what is not there, and of a walk's end

int device = -1;
uint32_t ports;
uint32_t domains;
uint32_t macs;
bool vlan_mode;

uint32_t setting(const char *name) {
    const char *text = getenv(name);
    return text == nullptr ? 0 : static_cast<uint32_t>(strtoul(text, nullptr, 10));
}

__attribute__((constructor)) void read_settings() {
    ports = setting("BENCH_PORTS");
    domains = setting("BENCH_DOMAINS");
    macs = setting("BENCH_MACS");
    vlan_mode = setting("BENCH_VLAN_MODE") != 0;
    unsetenv("LD_PRELOAD");
}

template <typename Record> Record *buffer(uint32_t address) {
    return reinterpret_cast<Record *>(static_cast<uintptr_t>(address));
}

uint32_t next_of(uint32_t current, uint32_t first, uint32_t count, uint32_t *next) {
    *next = current < first || current == KX_LTL_BEFORE_FIRST ? first : current + 1;
    return *next < first + count ? KXDPA_STATUS_SUCCESS : NOT_FOUND;
}

void fill_port(uint32_t ltl, kx_port_record *port) {
    *port = {};
    port->if_index = 28U << 24 | ltl << 4;
    port->vlan_mode = vlan_mode ? KX_VLAN_MODE : 0;
    port->port_mode = KX_PORT_MODE_SUB_GROUP_B;
    port->link_state = KX_PORT_UP;
    port->admin_state = KX_PORT_UP;
    port->forwarding = 1;
    snprintf(port->hmx_port_name, sizeof port->hmx_port_name, "vm-%u.eth0", ltl);
}

void fill_bd(uint32_t index, kx_bd_record *bd) {
    *bd = {};
    bd->index = index;
    bd->vlan = static_cast<uint16_t>(index);
    bd->vdc = KX_BD_LOOKUP_VDC;
    bd->swbd = index;
    bd->native_encap = 1;
    snprintf(bd->name, sizeof bd->name, "domain-%u", index);
}

// All numbers of a bridge domain are its index.
uint32_t find_bd(kx_bd_record *asked) {
    uint32_t index = asked->vlan != 0 ? asked->vlan : asked->swbd;
    if (asked->name[0] != '\0') {
        index = static_cast<uint32_t>(strtoul(asked->name + strlen("domain-"), nullptr, 10));
    }
    if (index == 0 || index > domains) {
        return NOT_FOUND;
    }
    fill_bd(index, asked);
    return KXDPA_STATUS_SUCCESS;
}

uint32_t next_l2_entry(const uint8_t *key, kx_l2_entry *entry) {
    uint32_t number = 0;
    memcpy(&number, key + 2, LAST_KEY_BYTES);
    number = __builtin_bswap32(number) + 1;
    if (number > macs) {
        return NOT_FOUND;
    }
    *entry = {};
    entry->ltl = FIRST_LTL + number % 1000;
    entry->seen_time = 1000;
    entry->now = 1000 + number;
    number = __builtin_bswap32(number);
    memcpy(entry->mac + 2, &number, LAST_KEY_BYTES);
    return KXDPA_STATUS_SUCCESS;
}

void fill_vlans(bmp4096 *vlans) {
    memset(vlans->bits, 0, sizeof vlans->bits);
    for (uint32_t vlan = 1; vlan <= domains; ++vlan) {
        vlans->bits[vlan / 8] = static_cast<uint8_t>(vlans->bits[vlan / 8] | 0x80 >> vlan % 8);
    }
}

uint32_t answer(kxdpa_request *request) {
    auto *const word = buffer<uint32_t>(request->buf1);
    switch (request->opcode) {
    case KXDPA_OP_CARD_DOMAIN:
        *word = 1;
        return KXDPA_STATUS_SUCCESS;
    case KXDPA_OP_LEAF_MODE:
        *buffer<uint8_t>(request->buf1) = 0;
        return KXDPA_STATUS_SUCCESS;
    case KXDPA_OP_NEXT_LTL:
        return next_of(request->arg, FIRST_LTL, ports, word);
    case KXDPA_OP_PORT_RECORD:
        fill_port(request->arg & 0xFFFFFF, buffer<kx_port_record>(request->buf1));
        return KXDPA_STATUS_SUCCESS;
    case KXDPA_OP_PORT_STATISTICS: {
        auto *const counters = buffer<kx_port_statistics>(request->buf1);
        *counters = {};
        counters->received_packets = request->arg;
        counters->sent_bytes = uint64_t{request->arg} << 20;
        return KXDPA_STATUS_SUCCESS;
    }
    case KXDPA_OP_PORT_VLAN_SET:
        fill_vlans(buffer<bmp4096>(request->buf1));
        return KXDPA_STATUS_SUCCESS;
    case KXDPA_OP_VLAN_COUNT:
        *word = domains + 4;
        return KXDPA_STATUS_SUCCESS;
    case KXDPA_OP_TUNNEL_MODE:
        *word = 3;
        return KXDPA_STATUS_SUCCESS;
    case KXDPA_OP_NEXT_BD:
        return next_of(request->arg, 1, domains, word);
    case KXDPA_OP_BD_RECORD:
        fill_bd(request->arg, buffer<kx_bd_record>(request->buf1));
        return KXDPA_STATUS_SUCCESS;
    case KXDPA_OP_VLAN_FORWARDING:
        buffer<kx_vlan_forwarding>(request->buf1)->forwarding = 1;
        return KXDPA_STATUS_SUCCESS;
    case KXDPA_OP_L2_TABLE_LIMIT:
    case KXDPA_OP_L2_ENTRY_COUNT:
    case KXDPA_OP_L2_AGING_TIME:
        *word = macs;
        return KXDPA_STATUS_SUCCESS;
    case KXDPA_OP_NEXT_L2_ENTRY:
        return next_l2_entry(buffer<uint8_t>(request->buf1), buffer<kx_l2_entry>(request->buf2));
    case KXDPA_OP_PORT_SECURITY:
        memset(buffer<uint8_t>(request->buf1), 0, request->len1);
        return KXDPA_STATUS_SUCCESS;
    case KXDPA_OP_BD_COUNT:
        *word = domains;
        return KXDPA_STATUS_SUCCESS;
    case KXDPA_OP_BD_BY_VLAN:
    case KXDPA_OP_BD_BY_VLAN_L2:
    case KXDPA_OP_BD_BY_SWBD:
    case KXDPA_OP_BD_BY_NAME:
        return find_bd(buffer<kx_bd_record>(request->buf1));
    case KXDPA_OP_BD_NEXT_PORT:
        return next_of(*word, FIRST_LTL, ports, word);
    case KXDPA_OP_BD_PORT_COUNT:
        *word = ports;
        return KXDPA_STATUS_SUCCESS;
    case KXDPA_OP_NEXT_VLAN_GROUP: // none
    case KXDPA_OP_ACL_COUNT:
        *word = 0;
        return KXDPA_STATUS_SUCCESS;
    case KXDPA_OP_PORT_PVLAN: // the request comes back unchanged: no private VLAN
        return KXDPA_STATUS_SUCCESS;
    case KXDPA_OP_PORT_MAC:
        memset(buffer<uint8_t>(request->buf1), 2, KX_MAC_SIZE);
        return KXDPA_STATUS_SUCCESS;
    case KXDPA_OP_DROP_COUNTERS:
    case KXDPA_OP_GET_MAC_TABLE:
        memset(buffer<uint8_t>(request->buf1), 0, request->len1);
        return KXDPA_STATUS_SUCCESS;
    default:
        return NOT_FOUND;
    }
}

} // namespace

extern "C" {

int open64(const char *file, int oflag, ...) {
    if (strcmp(file, DEVICE_PATH) == 0) {
        device = dup(STDIN_FILENO);
        return device;
    }
    // Nothing that is measured creates a file.
    return static_cast<int>(syscall(SYS_open, file, oflag | O_LARGEFILE));
}

int ioctl(int fd, unsigned long request, ...) {
    va_list arguments;
    va_start(arguments, request);
    auto *const record = va_arg(arguments, kxdpa_request *);
    va_end(arguments);
    if (fd != device || request != 0) {
        errno = ENOTTY;
        return -1;
    }
    record->status = answer(record);
    return 0;
}
}
