#include "capture/lines.h"

#include "frontend/hmx_cmd.h"
#include "frontend/run_state.h"
#include "handlers/lacp/lacp_record.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <iterator>
#include <sstream>
#include <utility>
#include <vector>

namespace {

// What an operator types after the words of a line.
enum class typed { nothing, vlan, swbd, segment, name, ltl, uplink };

struct line {
    const char *words;
    const char *keys;
    typed argument = typed::nothing;
    // Prints a part of the rows, and is run where a row that it leaves out ends the table.
    const char *part = nullptr;
};

// A display that prints fewer rows of the same is not run again ("show dvport" is a part of "show
// dvport internal"). The HMX's own view of a port comes first: the others are described by what
// differs. A walk comes before the lookups of what it names: nothing is learnt of an unknown thing.
constexpr line LINES[] = {
    {"show port internal", "ports", typed::nothing, "show port"},
    {"show port vlans internal", "ports", typed::nothing, "show port vlans"},
    {"show trunk priv", "ports"},
    {"show port system", "ports"},
    {"show port vlans system", "ports"},
    {"show port krt", "ports"},
    {"show port vlans krt", "ports"},
    {"show trunk krt", "ports"},
    {"show port security internal", "ports private_vlans"},
    {"show port-old krt", "private_vlans"},
    {"show port segments", "ports"},
    {"show dvport internal", "ports"},
    {"show portdevice", "ports"},
    {"show portmac", "ports"},
    {"show pc", "port_channel_mode port_channels lacp"},
    {"show card", "card"},
    {"show version", "card"},
    {"show krt uptime", "card"},
    {"show heap", "heaps"},
    {"show mempool", "memory_pools"},
    {"show assert", "asserts"},
    {"show bd", "bridge_domains"},
    {"show vlan", "vlans"},
    {"show dr", "bridge_domains"},
    {"show segment", "bridge_domains"},
    {"show vlan", "bridge_domains", typed::vlan},
    {"show dr", "bridge_domains", typed::swbd},
    {"show segment", "bridge_domains", typed::segment},
    {"show bd bd-name", "bridge_domains", typed::name},
    {"show l2 all", "l2"},
    {"show l2-slotwise", "l2"},
    {"show l2-num-entries", "l2"},
    {"show l2", "l2", typed::vlan},
    {"show l2 segment", "l2", typed::segment},
    {"show l2 bd-name", "l2", typed::name},
    {"show get-mac bd-name", "l2", typed::name},
    {"show acl", "acls"},
    {"show lacp", "lacp"},
    {"show lacp hostdata", "lacp"},
    {"show lacp", "lacp", typed::uplink},
    {"show lacp hostdata", "lacp", typed::uplink},
    {"show stats", "traffic"},
    {"show port-drops ingress internal", "stages drops"},
    {"show port-drops egress internal", "stages drops multicast_drops flood_drops"},
    {"show port-drops ltl", "stages drops drops_of_ports_alone", typed::ltl},
};

std::set<std::string> keys_of(const line &of) {
    std::istringstream words(of.keys);
    return {std::istream_iterator<std::string>(words), {}};
}

// --- What can be typed ---

// A word, which may fill the field, up to what would end it on a command line.
std::string name_of(const kx_bd_record &record) {
    const char *end = std::find_if(std::begin(record.name), std::end(record.name), [](char byte) {
        const auto character = static_cast<unsigned char>(byte);
        return character == ';' || std::isprint(character) == 0 || std::isspace(character) != 0;
    });
    return {record.name, end};
}

// A virtual port could have this LTL or one of the next.
constexpr uint32_t LIKELY_STRANGER = 900;

// Every LTL that anything names.
std::vector<uint32_t> seen_ltls(const host &learnt) {
    std::vector<uint32_t> ltls;
    for (uint32_t ltl = 0; ltl < KX_LTL_FIRST_EXTERNAL; ltl++) {
        ltls.push_back(ltl);
    }
    for (const auto &[ltl, port] : learnt.ports.by_ltl) {
        ltls.push_back(ltl);
    }
    for (const auto &[index, bd] : learnt.bridge_domains.by_index) {
        if (bd.members) {
            ltls.insert(ltls.end(), bd.members->begin(), bd.members->end());
        }
    }
    for (const auto &[ltl, channel] : learnt.port_channels.by_ltl) {
        for (uint32_t i = 0; i < channel.record.member_count; i++) {
            ltls.push_back(channel.record.members[i].ltl);
        }
    }
    for (const auto &[index, table] : learnt.l2.tables) {
        for (const kx_l2_entry &entry : table.entries) {
            ltls.push_back(entry.ltl);
        }
    }
    std::sort(ltls.begin(), ltls.end());
    ltls.erase(std::unique(ltls.begin(), ltls.end()), ltls.end());
    return ltls;
}

std::set<std::string> values_of(typed argument, const host &learnt) {
    if (argument == typed::nothing) {
        return {""};
    }
    std::set<std::string> values;
    const auto add = [&](uint32_t number) { values.insert(std::to_string(number)); };
    if (argument == typed::ltl) {
        for (const uint32_t ltl : seen_ltls(learnt)) {
            add(ltl);
        }
        add(stranger_to(learnt));
    } else if (argument == typed::uplink) {
        for (uint32_t ltl = 0; ltl <= KX_LACP_LAST_LTL; ltl++) {
            add(ltl);
        }
    } else if (argument == typed::vlan || argument == typed::swbd) {
        for (const uint32_t vlan : learnt.bridge_domains.vlans.value_or(number_set())) {
            add(vlan);
        }
    }
    for (const auto &[index, bd] : learnt.bridge_domains.by_index) {
        if (argument == typed::vlan || argument == typed::swbd) {
            add(bd.record.vlan);
        }
        if (argument == typed::swbd) {
            add(bd.record.swbd);
        }
        if (argument == typed::segment) {
            add(bd.record.segment_id);
        }
        if (argument == typed::name) {
            values.insert(name_of(bd.record));
        }
    }
    values.erase("");
    return values;
}

// --- Running ---

uint32_t *const DEBUG_WORDS[] = {
    &kx_debug_print_kxdump,         &kx_debug_print_hmx_cmds,
    &kx_debug_print_kxdpa_indirect, &kx_debug_print_kxtarncmd_indirect,
    &kx_debug_print_kxcmd,          &kx_debug_print_kxstrings,
    &kx_debug_print_dpa_platform,   &kx_debug_print_dpa_main,
};

bool is_silent = false;

// What the tool traces, for one's own words and back.
void swap_debug_words(uint32_t (&words)[std::size(DEBUG_WORDS)]) {
    for (size_t i = 0; i < std::size(DEBUG_WORDS); i++) {
        std::swap(*DEBUG_WORDS[i], words[i]);
    }
}

void run(const std::string &text, driver_memory &memory) {
    kx_run_broken = false;
    memory.begin(text);
    hmx_cmd_run(text.data(), static_cast<int>(text.size()), 0);
}

} // namespace

extern "C" FILE *__real_popen(const char *command, const char *mode);

// A program of the host that a display asks is not asked again for nothing.
extern "C" FILE *__wrap_popen(const char *command, const char *mode) {
    if (!is_silent) {
        return __real_popen(command, mode);
    }
    errno = ENOENT;
    return nullptr;
}

std::set<std::string> displayed_keys() {
    std::set<std::string> keys;
    for (const line &known : LINES) {
        keys.merge(keys_of(known));
    }
    return keys;
}

uint32_t stranger_to(const host &learnt) {
    const std::vector<uint32_t> seen = seen_ltls(learnt);
    uint32_t stranger = LIKELY_STRANGER;
    while (std::binary_search(seen.begin(), seen.end(), stranger)) {
        stranger++;
    }
    return stranger;
}

void run_displays(const std::set<std::string> &keys, const host &learnt, driver_memory &memory) {
    // Displays print from the start to the end as from a shell, and nothing of it is formatted: the
    // sink is a buffer that is full.
    uint32_t debug_words[std::size(DEBUG_WORDS)] = {};
    swap_debug_words(debug_words);
    hmx_rcli_buffer_ptr = hmx_rcli_buffer + HMX_RCLI_BUFFER_SIZE;
    is_silent = true;
    for (const line &asked : LINES) {
        const std::set<std::string> about = keys_of(asked);
        const bool is_asked =
            keys.empty() || std::any_of(about.begin(), about.end(),
                                        [&](const std::string &key) { return keys.contains(key); });
        if (!is_asked) {
            continue;
        }
        for (const std::string &value : values_of(asked.argument, learnt)) {
            run(asked.words + (value.empty() ? "" : " " + value), memory);
            if (kx_run_broken && asked.part != nullptr) {
                run(asked.part, memory);
            }
        }
    }
    swap_debug_words(debug_words);
    hmx_rcli_buffer_ptr = nullptr;
    kx_run_broken = false;
    is_silent = false;
}
