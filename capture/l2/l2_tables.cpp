#include "capture/host_capture.h"
#include "capture/l2/slots.h"
#include "capture/walk.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

void ask_entries(host_capture &host, uint32_t index, std::vector<l2_entry> &into) {
    inquiry &driver = host.driver;
    const auto step = [&](mac_address *mac) {
        kx_l2_entry entry;
        if (!driver.get_by_key<KXDPA_OP_NEXT_L2_ENTRY>(index, mac, &entry, if_refused::WALK_END)) {
            return false;
        }
        *mac = std::to_array(entry.mac);
        into.push_back(described_l2_entry(entry));
        return true;
    };
    const auto macs =
        collect_walk(driver, KXDPA_OP_NEXT_L2_ENTRY, mac_address{}, step, L2_WALK_LIMIT);
    into.resize(macs.size()); // without the one that came back
    check_number<KXDPA_OP_L2_ENTRY_COUNT>(host, index, static_cast<uint32_t>(into.size()));
}

// An announced address of another bridge domain than the one that was asked about, or a longer list
// than displays show, cannot be described.
void ask_announced(inquiry &driver, uint32_t index,
                   std::optional<std::vector<announced_mac>> &into) {
    kx_get_mac_info info;
    if (!driver.get<KXDPA_OP_GET_MAC_TABLE>(index, &info)) {
        into.reset();
        return;
    }
    bool fits = info.count <= KX_GET_MAC_ENTRIES;
    for (uint32_t i = 0; i < std::min(info.count, KX_GET_MAC_ENTRIES); i++) {
        const kx_get_mac_entry &told = info.entries[i];
        into->push_back({std::to_array(told.mac), told.sent, told.last_sent});
        fits &= told.bd_index == index;
    }
    if (!fits) {
        driver.keep_reply(KXDPA_OP_GET_MAC_TABLE, index, info);
    }
}

// How old an entry is depends on its port, which the walk of the ports may not name.
void check_ports(host_capture &host) {
    inquiry &driver = host.driver;
    const std::vector<uint32_t> &walked = walked_ltls(host);
    const number_set known(walked.begin(), walked.end());
    std::vector<uint32_t> others; // one for each entry
    for (const auto &[index, table] : host.captured.l2.tables) {
        for (const l2_entry &entry : table.entries) {
            if ((entry.flags & KX_L2_STATIC) == 0 && !known.contains(entry.ltl)) {
                others.push_back(entry.ltl);
            }
        }
    }
    for (const uint32_t ltl : number_set(others.begin(), others.end())) {
        kx_port_security_record security;
        if (driver.get<KXDPA_OP_PORT_SECURITY>(ltl, &security)) {
            driver.keep_reply(KXDPA_OP_PORT_SECURITY, ltl, security);
        }
        uint32_t state = 0;
        if (driver.get<KXDPA_OP_SECURE_PORT_STATE>(ltl, &state)) {
            driver.keep_reply(KXDPA_OP_SECURE_PORT_STATE, ltl, state);
        }
    }
}

// A described host has such a table for every bridge domain of which nothing is said.
bool is_default(const l2_table &table) {
    const l2_table other;
    return table.limit == other.limit && table.aging_time == other.aging_time &&
           table.entries.empty() && table.announced && table.announced->empty();
}

} // namespace

void capture_l2(host_capture &host) {
    inquiry &driver = host.driver;
    l2_state &into = host.captured.l2;
    for (const walked_bridge_domain &bd : walked_bridge_domains(host)) {
        driver.begin("L2 tables");
        l2_table table;
        driver.get<KXDPA_OP_L2_TABLE_LIMIT>(bd.index, &table.limit);
        driver.get<KXDPA_OP_L2_AGING_TIME>(bd.index, &table.aging_time);
        ask_entries(host, bd.index, table.entries);
        ask_announced(driver, bd.index, table.announced);
        if (!is_default(table)) {
            into.tables.emplace(bd.index, std::move(table));
        }
    }
    driver.get<KXDPA_OP_L2_ENTRY_TOTALS>(0, &into.totals);
    driver.get<KXDPA_OP_L2_AGING_STATISTICS>(0, &into.aging);
    ask_slot_count(host);
    if (host.exact) {
        check_slots(host);
        check_ports(host);
    }
}
