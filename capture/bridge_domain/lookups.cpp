// Displays that are given a VLAN, a name or a segment look its bridge domain up. The described host
// finds the first one that fits; where the driver finds another one, its answer is kept.
#include "capture/bridge_domain/groups.h"
#include "capture/host_capture.h"
#include "infra/utils/kxstrings.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <set>
#include <string>

namespace {

constexpr uint32_t NOT_FOUND = 0; // of a bridge-domain index

// Displays ask for VLANs below this, for software numbers up to the last VLAN, and for segments up
// to the last one.
constexpr uint32_t VLAN_LIMIT = 4095;
constexpr uint32_t LAST_SEGMENT = 0x1000000;

// The first bridge domain by what it can be looked up by.
struct first_fits {
    number_set vlans; // that bridge domains have, in whatever device context
    std::map<uint32_t, uint32_t> by_vlan;
    std::map<uint32_t, uint32_t> by_swbd;
    std::map<uint32_t, uint32_t> by_segment;
    std::map<std::string, uint32_t> by_name;
};

// What operators may ask for: what they see of the bridge domains, and the VLANs that exist.
struct typed_keys {
    number_set vlans;
    number_set swbds;
    number_set segments;
    std::set<std::string> names;
};

std::string name_of(const kx_bd_record &record) {
    return {record.name, strnlen(record.name, sizeof record.name)};
}

first_fits find_first_fits(const bridge_domain_table &table) {
    first_fits first;
    for (const auto &[index, bd] : table.by_index) {
        if (!bd.known) {
            continue;
        }
        const kx_bd_record &record = bd.record;
        if (record.kind == 0) {
            first.vlans.insert(record.vlan);
        }
        if (record.kind == 0 && record.vdc == KX_BD_LOOKUP_VDC) {
            first.by_vlan.emplace(record.vlan, index);
        }
        if (record.kind == KX_BD_KIND_SEGMENT) {
            first.by_segment.emplace(record.segment_id, index);
        }
        first.by_swbd.emplace(record.swbd, index);
        first.by_name.emplace(name_of(record), index);
    }
    return first;
}

typed_keys collect_typed_keys(host_capture &host) {
    typed_keys typed;
    typed.vlans = host.captured.bridge_domains.vlans.value_or(number_set());
    typed.swbds = typed.vlans;
    for (const walked_bridge_domain &bd : walked_bridge_domains(host)) {
        if (!bd.known) {
            continue;
        }
        typed.vlans.insert(bd.record.vlan);
        typed.swbds.insert(bd.record.swbd);
        typed.swbds.insert(bd.record.vlan);
        typed.segments.insert(bd.record.segment_id);
        // A word, which may fill the field.
        char name[sizeof bd.record.name + 1];
        strncpy_until_space(name, sizeof name, name_of(bd.record).c_str());
        typed.names.insert(name);
    }
    return typed;
}

template <typename Key> uint32_t find(const std::map<Key, uint32_t> &first, const Key &key) {
    const auto found = first.find(key);
    return found == first.end() ? NOT_FOUND : found->second;
}

// Returns what the driver finds.
template <kxdpa_opcode opcode>
uint32_t check(inquiry &driver, const kx_bd_record &asked, uint32_t expected) {
    kx_bd_record told = asked;
    const auto meaning = expected == NOT_FOUND ? if_refused::WALK_END : if_refused::KEPT;
    if (!driver.exchange<opcode>(0, &told, meaning)) {
        return NOT_FOUND;
    }
    if (expected == NOT_FOUND || told.index != expected) {
        driver.keep_reply(opcode, 0, asked, told);
    }
    return told.index;
}

// Behind a VLAN that is found, displays walk its groups.
void check_vlan(inquiry &driver, uint32_t vlan, const first_fits &first) {
    const uint32_t expected = find(first.by_vlan, vlan);
    kx_bd_record asked{};
    asked.vlan = static_cast<uint16_t>(vlan);
    asked.vdc = KX_BD_LOOKUP_VDC;
    const uint32_t found = check<KXDPA_OP_BD_BY_VLAN>(driver, asked, expected);
    if (found != NOT_FOUND && vlan != 0 && !first.vlans.contains(vlan)) {
        keep_groups(driver, vlan);
    }
    check<KXDPA_OP_BD_BY_VLAN_L2>(driver, asked, expected);
}

} // namespace

void check_lookups(host_capture &host) {
    inquiry &driver = host.driver;
    const first_fits first = find_first_fits(host.captured.bridge_domains);
    const typed_keys typed = collect_typed_keys(host);
    for (const uint32_t vlan : typed.vlans) {
        if (vlan < VLAN_LIMIT) {
            check_vlan(driver, vlan, first);
        }
    }
    for (const uint32_t swbd : typed.swbds) {
        kx_bd_record asked{};
        asked.swbd = swbd;
        if (swbd != 0 && swbd <= KX_LAST_VLAN) {
            check<KXDPA_OP_BD_BY_SWBD>(driver, asked, find(first.by_swbd, swbd));
        }
    }
    for (const uint32_t segment : typed.segments) {
        kx_bd_record asked{};
        asked.segment_id = segment;
        if (segment != 0 && segment <= LAST_SEGMENT) {
            check<KXDPA_OP_BD_BY_SEGMENT>(driver, asked, find(first.by_segment, segment));
        }
    }
    for (const std::string &name : typed.names) {
        kx_bd_record asked{};
        std::copy(name.begin(), name.end(), asked.name);
        if (!name.empty()) {
            check<KXDPA_OP_BD_BY_NAME>(driver, asked, find(first.by_name, name));
        }
    }
}
