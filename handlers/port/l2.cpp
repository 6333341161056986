// "show l2": the L2 table, one bridge domain at a time.
#include "handlers/port/l2.h"

#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/leaf_mode.h"
#include "handlers/paging.h"
#include "handlers/port/port_security_record.h"
#include "handlers/port/shared/bridge_domain.h"
#include "infra/utils/field_text.h"
#include "infra/utils/kxstrings.h"

#include <arpa/inet.h>
#include <cstdio>
#include <cstring>

namespace {

// Bridge domains of one page of "show l2 all".
constexpr int BDS_OF_A_PAGE = 2;

constexpr size_t REMOTE_IP_SIZE = 20;

// The letters of the flags column are padded to this width; the PVLAN follows them.
constexpr size_t FLAGS_WIDTH = 10;

struct l2_limits {
    int32_t table_limit = -1; // entries
    int32_t entry_count = -1;
    int32_t aging_time = -1; // in the DPA's own unit
};

bool get_limits(uint32_t index, l2_limits *limits) {
    return kx_dpa_get(KXDPA_OP_L2_TABLE_LIMIT, index, &limits->table_limit) ==
               KXDPA_STATUS_SUCCESS &&
           kx_dpa_get(KXDPA_OP_L2_ENTRY_COUNT, index, &limits->entry_count) ==
               KXDPA_STATUS_SUCCESS &&
           kx_dpa_get(KXDPA_OP_L2_AGING_TIME, index, &limits->aging_time) == KXDPA_STATUS_SUCCESS;
}

// A walk over a table's entries, by MAC address.
struct entry_walk {
    uint8_t at[KX_MAC_SIZE] = {}; // all zero to start
    uint32_t requests = 0;
};

// Step to the table's next entry. False at the end of the walk.
bool next_entry(uint32_t index, entry_walk *walk, kx_l2_entry *entry) {
    *entry = {};
    entry_walk asked = *walk; // the driver's to write to
    if (!kx_may_ask(&walk->requests) ||
        kx_dpa_call_indirect2(KXDPA_OP_NEXT_L2_ENTRY, index,
                              KXDPA_FLAG_OUT | KXDPA_FLAG_IN | KXDPA_FLAG_TWO, asked.at,
                              sizeof asked.at, nullptr, entry, sizeof *entry,
                              nullptr) != KXDPA_STATUS_SUCCESS ||
        memcmp(walk->at, entry->mac, sizeof walk->at) == 0) {
        return false;
    }
    memcpy(walk->at, entry->mac, sizeof walk->at);
    return true;
}

bool is_segment(const kx_bd_record &bd) {
    return bd.kind == KX_BD_KIND_SEGMENT;
}

// Deliberate: here only the value 1 says that a segment is carried natively.
bool has_remote_endpoints(const kx_bd_record &bd) {
    return is_segment(bd) && bd.native_encap != 1;
}

// `learning` holds the port's kx_secure_learning flags.
bool secure_entry_ages(uint32_t ltl, uint8_t learning) {
    uint32_t state = 0; // only that the port has one counts
    return kx_dpa_get(KXDPA_OP_SECURE_PORT_STATE, ltl, &state) == KXDPA_STATUS_SUCCESS &&
           (learning & KX_SECURE_NEVER_AGES) == 0 &&
           (learning & (KX_SECURE_AGES_ABSOLUTE | KX_SECURE_AGES_INACTIVITY)) != 0;
}

void print_heading(uint32_t index, const kx_bd_record &bd, const l2_limits &limits) {
    kx_print("Bridge domain %4d brtmax %d, brtcnt %d, timeout %d\n", index, limits.table_limit,
             limits.entry_count, limits.aging_time);
    if (is_segment(bd)) {
        kx_print("Segment ID %d, swbd %d, \"%s\"\n", bd.segment_id, bd.swbd,
                 kx_field_text(bd.name).text);
    } else {
        kx_print("VLAN %d, swbd %d, \"%s\"\n", bd.vlan, bd.swbd, kx_field_text(bd.name).text);
    }
}

void print_header(const kx_bd_record &bd, bool leaf_mode) {
    kx_print_l2_flags_legend();
    if (has_remote_endpoints(bd)) {
        kx_print("       Type         MAC Address   LTL   timeout   Flags    PVLAN    Remote IP    "
                 "DSN    Slot\n");
    } else if (leaf_mode) {
        kx_print("       Type         MAC Address   LTL   timeout   Flags    PVLAN              "
                 "Encapid\n");
    } else {
        kx_print("       Type         MAC Address   LTL   timeout   Flags    PVLAN\n");
    }
}

void print_row(const kx_bd_record &bd, const kx_l2_entry &entry, int32_t aging_time,
               bool leaf_mode) {
    char mac[KX_MAC_TEXT_SIZE];
    snprintf_mac_address(mac, sizeof mac, entry.mac);
    const uint32_t age = kx_get_mac_age(entry.ltl, entry.flags, entry.seen_time, entry.now,
                                        static_cast<uint32_t>(aging_time));
    char remote_ip[REMOTE_IP_SIZE] = "";
    if (has_remote_endpoints(bd)) {
        ipv4_to_a(ntohl(entry.remote_ip), remote_ip, sizeof remote_ip);
    }
    kx_print("    %7.7s   %s %5d %9d   %10s   %15s", kx_l2_type(entry.flags), mac, entry.ltl, age,
             kx_l2_flags(entry).text, remote_ip);
    // Deliberate: the rows of a natively carried segment have a DSN, but the header has none.
    if (is_segment(bd)) {
        kx_print("   %3d ", entry.dsn);
    }
    if ((entry.flags & KX_L2_SOFTWARE) != 0) {
        kx_print("   %3d ", entry.slot);
        kx_print("\n");
    } else if ((entry.flags & KX_L2_STATIC) != 0 && leaf_mode) {
        kx_print("0x%x\n", entry.encap);
    } else {
        kx_print("\n");
    }
}

void print_entries(uint32_t index, const kx_bd_record &bd, int32_t aging_time) {
    bool header_due = true;
    bool leaf_mode = false; // one answer for header and rows
    kx_l2_entry entry;
    for (entry_walk walk; next_entry(index, &walk, &entry);) {
        if (header_due) {
            leaf_mode = kx_hmx_is_leaf_mode();
            print_header(bd, leaf_mode);
            header_due = false;
        }
        print_row(bd, entry, aging_time, leaf_mode);
    }
}

// Deliberate: the dump uses 16 bits of the index. All indexes of a DPA fit into 16 bits.
void dump_bd(uint32_t index) {
    kx_l2_table_dump(static_cast<uint16_t>(index), KX_BD_BY_INDEX);
}

int dump_page(uint32_t index) {
    if (!kx_check_bd_index(index)) {
        return 0;
    }
    kx_walk walk{index};
    for (int dumped = 0; kx_next_bd(&walk);) {
        dump_bd(walk.at);
        if (++dumped == BDS_OF_A_PAGE) {
            kx_end_page(walk.at);
            return 0;
        }
    }
    kx_end_table();
    return 0;
}

} // namespace

const char *kx_l2_type(uint8_t flags) {
    if ((flags & KX_L2_SOFTWARE) != 0) {
        return "SwInstall";
    }
    return (flags & KX_L2_STATIC) != 0 ? "Static" : "Dynamic";
}

kx_l2_flags_text kx_l2_flags(const kx_l2_entry &entry) {
    kx_l2_flags_text column;
    memset(column.text, ' ', FLAGS_WIDTH);
    column.text[FLAGS_WIDTH] = '\0';
    char *letter = column.text;
    if ((entry.flags & KX_L2_PVLAN) != 0) {
        *letter++ = 'P';
        snprintf(column.text + FLAGS_WIDTH, sizeof column.text - FLAGS_WIDTH, "%4d",
                 static_cast<int32_t>(entry.pvlan));
    }
    if ((entry.flags & KX_L2_SECURE) != 0) {
        *letter++ = 'S';
    }
    if ((entry.flags & KX_L2_DROP) != 0) {
        *letter = 'D';
    }
    return column;
}

void kx_print_l2_flags_legend() {
    kx_print("Flags:  P - PVLAN  S - Secure  D - Drop\n");
}

uint32_t kx_get_mac_age(uint32_t ltl, uint8_t flags, uint32_t seen_time, uint32_t now,
                        uint32_t /*aging_time*/) {
    if ((flags & KX_L2_STATIC) != 0) {
        return 0;
    }
    kx_port_security_record port{};
    if (kx_dpa_get(KXDPA_OP_PORT_SECURITY, ltl, &port) != KXDPA_STATUS_SUCCESS) {
        port.learning = 0;
    }
    if ((flags & KX_L2_SECURE) != 0 && !secure_entry_ages(ltl, port.learning)) {
        return 0;
    }
    return now - seen_time;
}

void kx_l2_table_dump(uint16_t number, int selector) {
    uint32_t index = number;
    if (selector == KX_BD_BY_VLAN) {
        index = kx_find_bd_by_vlan(KXDPA_OP_BD_BY_VLAN_L2, number);
        if (index == 0) {
            kx_print("Can't find BD for VLAN %d\n", number);
            return;
        }
    }
    l2_limits limits;
    kx_bd_record bd;
    if (!get_limits(index, &limits) || !kx_get_bd(index, &bd)) {
        return;
    }
    print_heading(index, bd, limits);
    kx_trace(kx_debug_print_kxdump, KX_DEBUG_TRACE, "kx_l2_table_dump\n");
    print_entries(index, bd, limits.aging_time);
    kx_print("\n");
}

int kx_l2_table_dump_all(const char *arg) {
    if (kx_is_agent_driven()) {
        return dump_page(kx_parse_number(arg));
    }
    for (kx_walk walk{0}; kx_next_bd(&walk);) {
        dump_bd(walk.at);
    }
    return 0;
}

int kx_l2_table_dump_vlan(const char *arg) {
    if (arg == nullptr) {
        return -1;
    }
    const uint32_t vlan = kx_parse_number(arg);
    if (kx_check_vlan(vlan)) {
        kx_l2_table_dump(static_cast<uint16_t>(vlan), KX_BD_BY_VLAN);
    }
    return 0;
}

int kx_l2_table_dump_bdname(const char *arg) {
    kx_named_bd bd;
    if (kx_find_named_bd(arg, &bd) != 0) {
        return -1;
    }
    if (bd.index != 0) {
        dump_bd(bd.index);
    }
    return 0;
}

int kx_l2_table_dump_segid(const char *arg) {
    if (arg == nullptr) {
        kx_print("Syntax: tarncmd show l2 segment <seg-id>\n");
        return 0;
    }
    const uint32_t segment = kx_parse_number(arg);
    if (segment == 0) {
        kx_print("Invalid Segment ID\n");
        return 0;
    }
    const uint32_t index = kx_find_bd_by_segment(segment);
    if (index != 0) {
        dump_bd(index);
    } else {
        kx_print("No BD found for Segment ID %d\n", segment);
    }
    return 0;
}

int kx_l2_table_num_entries_dump(const char * /*arg*/) {
    kx_l2_totals totals{};
    if (kx_dpa_get(KXDPA_OP_L2_ENTRY_TOTALS, 0, &totals) == KXDPA_STATUS_SUCCESS) {
        kx_print("VNIC Entries %u Total FT Entries %llu\n", totals.vnic_entries,
                 totals.flow_entries);
    }
    kx_l2_aging_statistics aging{};
    if (kx_dpa_get(KXDPA_OP_L2_AGING_STATISTICS, 0, &aging) == KXDPA_STATUS_SUCCESS) {
        kx_print("Aged entries %u\n", aging.aged);
        kx_print("Rejected entries %u\n", aging.rejected);
    }
    return 0;
}
