// A bare program for comparison: it makes the same requests and prints the same rows as tarncmd,
// and does nothing else. It prints with one plain printf a row ("printf"), or the finished text in
// one write ("write"). Usage: bare printf|write port|l2|stats
#include "dpa/userspace/kxdpa_opcodes.h"
#include "dpa/userspace/kxdpa_request.h"
#include "handlers/port/bridge_domain_record.h"
#include "handlers/port/counter_records.h"
#include "handlers/port/l2_record.h"
#include "handlers/port/port_record.h"
#include "handlers/port/port_security_record.h"
#include "infra/utils/kxlibbmp.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

int device;
bool collect;
char *text;
size_t length;
size_t capacity;

__attribute__((format(printf, 1, 2))) void row(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    if (collect) {
        if (capacity - length < 512) {
            capacity = capacity * 2 + 4096;
            text = static_cast<char *>(realloc(text, capacity));
        }
        length +=
            static_cast<size_t>(vsnprintf(text + length, capacity - length, format, arguments));
    } else {
        vprintf(format, arguments);
    }
    va_end(arguments);
}

uint32_t address(const void *buffer) {
    return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(buffer));
}

uint32_t ask(kxdpa_opcode opcode, uint32_t arg, uint8_t flags, void *buffer, uint32_t size,
             void *buffer2 = nullptr, uint32_t size2 = 0) {
    kxdpa_request request{};
    request.opcode = opcode;
    request.marker = KXDPA_KERNEL_MARKER;
    request.version = KXDPA_KERNEL_VERSION;
    request.flags = flags;
    request.arg = arg;
    request.status = 1;
    request.len1 = size;
    request.buf1 = address(buffer);
    request.len2 = size2;
    request.buf2 = address(buffer2);
    if ((flags & KXDPA_FLAG_MAX) != 0) {
        request.max1 = size;
        request.max1_valid = 1;
    }
    ioctl(device, 0, &request);
    return request.status;
}

template <typename Reply> bool get(kxdpa_opcode opcode, uint32_t arg, Reply *reply) {
    return ask(opcode, arg, KXDPA_FLAG_OUT, reply, sizeof *reply) == 0;
}

void walk_vlans(uint32_t ltl) {
    bmp4096 vlans{};
    vlans.size = 512;
    ask(KXDPA_OP_PORT_VLAN_SET, kx_port_argument(KX_VIEW_HMX, ltl), 7, &vlans, sizeof vlans);
    uint32_t word = 0;
    get(KXDPA_OP_VLAN_COUNT, 0, &word);
    get(KXDPA_OP_TUNNEL_MODE, 0, &word);
    for (uint32_t index = 0; get(KXDPA_OP_NEXT_BD, index, &index);) {
        kx_bd_record bd{};
        get(KXDPA_OP_BD_RECORD, index, &bd);
        kx_vlan_forwarding query{};
        query.vlan = bd.vlan;
        ask(KXDPA_OP_VLAN_FORWARDING, kx_port_argument(KX_VIEW_HMX, ltl), 3, &query, sizeof query);
    }
}

void show_port() {
    uint8_t leaf_mode = 0;
    get(KXDPA_OP_LEAF_MODE, 0, &leaf_mode);
    row("  LTL   KRT Port  Admin Link  State    Cause  PC-LTL  SGID  ORG  svcpath  Type    "
        "Hmx Port\n");
    for (uint32_t ltl = KX_LTL_BEFORE_FIRST; get(KXDPA_OP_NEXT_LTL, ltl, &ltl);) {
        kx_port_record port{};
        get(KXDPA_OP_PORT_RECORD, kx_port_argument(KX_VIEW_HMX, ltl), &port);
        if (port.vlan_mode == KX_VLAN_MODE) {
            walk_vlans(ltl);
        }
        char name[16];
        snprintf(name, sizeof name, "Veth%d", static_cast<int>(port.if_index >> 4 & 0xFFFFF) + 1);
        char group[12];
        snprintf(group, sizeof group, "%u", port.sub_group_b);
        row("%5u   %8s   %4s %4s  %5s%s %8s %6u  %4s  %3u  %7u  %-8s    %8s\n", ltl, name,
            port.admin_state == 1 ? "UP" : "DOWN", port.link_state == 1 ? "UP" : "DOWN",
            port.forwarding != 0 ? "FWD" : "BLK", " ", " - ", port.pc_ltl, group, port.org,
            port.service_path, port.vxlan != 0 ? "VXLAN" : "", port.hmx_port_name);
    }
}

void show_l2_of(uint32_t index) {
    uint32_t limit = 0;
    uint32_t count = 0;
    uint32_t timeout = 0;
    kx_bd_record bd{};
    get(KXDPA_OP_L2_TABLE_LIMIT, index, &limit);
    get(KXDPA_OP_L2_ENTRY_COUNT, index, &count);
    get(KXDPA_OP_L2_AGING_TIME, index, &timeout);
    get(KXDPA_OP_BD_RECORD, index, &bd);
    row("Bridge domain %4d brtmax %d, brtcnt %d, timeout %d\n", static_cast<int>(index),
        static_cast<int>(limit), static_cast<int>(count), static_cast<int>(timeout));
    row("VLAN %d, swbd %d, \"%s\"\n", bd.vlan, static_cast<int>(bd.swbd), bd.name);
    uint8_t key[KX_MAC_SIZE] = {};
    kx_l2_entry entry{};
    bool first = true;
    while (ask(KXDPA_OP_NEXT_L2_ENTRY, index, 11, key, sizeof key, &entry, sizeof entry) == 0) {
        if (first) {
            row("Flags:  P - PVLAN  S - Secure  D - Drop\n");
            row("       Type         MAC Address   LTL   timeout   Flags    PVLAN\n");
            first = false;
        }
        kx_port_security_record security{};
        get(KXDPA_OP_PORT_SECURITY, entry.ltl, &security);
        row("    %7.7s   %02x:%02x:%02x:%02x:%02x:%02x %5d %9d   %10s   %15s\n", "Dynamic",
            entry.mac[0], entry.mac[1], entry.mac[2], entry.mac[3], entry.mac[4], entry.mac[5],
            static_cast<int>(entry.ltl), static_cast<int>(entry.now - entry.seen_time),
            "          ", "");
        memcpy(key, entry.mac, sizeof key);
    }
    row("\n");
}

void show_l2() {
    for (uint32_t index = 0; get(KXDPA_OP_NEXT_BD, index, &index);) {
        show_l2_of(index);
    }
}

void show_stats() {
    row("  LTL  Received        Bytes      Sent        Bytes   Txflood    Rxdrop    Txdrop  "
        "Name\n");
    for (uint32_t ltl = 0; get(KXDPA_OP_NEXT_LTL, ltl, &ltl);) {
        kx_port_statistics counters{};
        get(KXDPA_OP_PORT_STATISTICS, ltl, &counters);
        kx_port_record port{};
        get(KXDPA_OP_PORT_RECORD, kx_port_argument(KX_VIEW_HMX, ltl), &port);
        row("%5d %9llu %12llu %9llu %12llu %9llu %9llu %9llu  %s\n", static_cast<int>(ltl),
            counters.received_packets, counters.received_bytes, counters.sent_packets,
            counters.sent_bytes, counters.transmit_floods, counters.receive_drops,
            counters.transmit_drops, port.hmx_port_name);
    }
    row("\n");
}

} // namespace

int main(int argc, char *argv[]) {
    if (argc != 3) {
        fputs("Usage: bare printf|write port|l2|stats\n", stderr);
        return 2;
    }
    collect = strcmp(argv[1], "write") == 0;
    device = open("/vmfs/devices/char/vmkdriver/kestrel", O_RDONLY);
    uint32_t domain = 0;
    get(KXDPA_OP_CARD_DOMAIN, 0, &domain);
    if (strcmp(argv[2], "port") == 0) {
        show_port();
    } else if (strcmp(argv[2], "l2") == 0) {
        show_l2();
    } else {
        show_stats();
    }
    if (collect && write(STDOUT_FILENO, text, length) != static_cast<ssize_t>(length)) {
        return 1;
    }
    return 0;
}
