#include "tests/capture/display_rows.h"

#include "frontend/handlers.h"
#include "tests/rows.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

bool is_display(const kestrel_cmd_row &row) {
    return row.kind == KESTREL_CMD_COMMAND && strcmp(row.keywords[0], "show") == 0 &&
           !kx_is_stub(row.handler);
}

std::string documentation_of(const kestrel_cmd_row &row) {
    return " " + all_keywords(row) + " " + (row.argument_hint == nullptr ? "" : row.argument_hint);
}

using arguments = std::set<std::string>;

void add_number(arguments &into, uint32_t number) {
    into.insert(std::to_string(number));
}

// Some of the values, the first and the last among them.
arguments some_of(const arguments &all, size_t samples) {
    if (all.size() <= samples)
        return all;
    arguments some;
    for (size_t i = 0; i < samples; i++) {
        some.insert(
            *std::next(all.begin(), static_cast<ptrdiff_t>(i * (all.size() - 1) / (samples - 1))));
    }
    return some;
}

// What an operator of the host would type.
struct vocabulary {
    arguments vlans, swbds, indexes, segments, names, ltls, uplinks;
};

// Numbers and names that a host need not have. Drop counters of an LTL that no walk names and that
// is not internal are out of reach, so there must be none.
vocabulary strangers_to(const host &described) {
    vocabulary words;
    words.vlans = {"0", "4094", "4095"};
    words.swbds = {"0", "4095", "4096"};
    words.indexes = {"0", "9299", "9300"};
    words.segments = {"0", "1", "16777216"};
    words.names = {"nonesuch"};
    words.uplinks = {"0", "49", "50"};
    for (const uint32_t ltl : {0U, 5U, 17U, 18U, 777U, 4000000000U})
        if (ltl < KX_LTL_FIRST_EXTERNAL || !described.counters.drops.contains(ltl))
            add_number(words.ltls, ltl);
    return words;
}

vocabulary vocabulary_of(const host &described, bool with_strangers) {
    vocabulary words = with_strangers ? strangers_to(described) : vocabulary();
    for (const auto &[index, bd] : described.bridge_domains.by_index) {
        add_number(words.indexes, index);
        add_number(words.vlans, bd.record.vlan);
        add_number(words.swbds, bd.record.vlan);
        add_number(words.swbds, bd.record.swbd);
        add_number(words.segments, bd.record.segment_id);
        words.names.emplace(bd.record.name, strnlen(bd.record.name, sizeof bd.record.name));
    }
    for (const uint32_t vlan : described.bridge_domains.vlans.value_or(number_set())) {
        add_number(words.vlans, vlan);
        add_number(words.swbds, vlan);
    }
    for (const auto &[ltl, port] : described.ports.by_ltl)
        add_number(words.ltls, ltl);
    for (const auto &[ltl, uplink] : described.lacp.uplinks)
        add_number(words.uplinks, ltl);
    return words;
}

// The values that the documentation asks for, by the first of these words that it has.
arguments asked_values(const std::string &documentation, const vocabulary &words) {
    const std::pair<const char *, const arguments *> rows[] = {
        {"lacp", &words.uplinks},    {"bd-name", &words.names}, {"segment-id", &words.segments},
        {"seg-id", &words.segments}, {"hwbd", &words.indexes},  {"show dr", &words.swbds},
        {"vlan]", &words.vlans},     {"<vlan>", &words.vlans},  {"ingress ltl", &words.ltls},
        {"egress ltl", &words.ltls}, {"drops ltl", &words.ltls}};
    for (const auto &[word, values] : rows)
        if (documentation.find(word) != std::string::npos)
            return *values;
    return {};
}

// "[internal|system|krt]" names what may stand there, "[vlan]" that a number may.
arguments alternatives(const kestrel_cmd_row &row) {
    arguments words;
    for (const char *keyword : row.keywords) {
        const std::string text = keyword == nullptr ? "" : keyword;
        for (size_t at = 1; text.starts_with('[') && at < text.size();) {
            const size_t end = std::min(text.find_first_of("|]", at), text.size());
            words.insert(text.substr(at, end - at));
            at = end + 1;
        }
    }
    for (const char *placeholder : {"vlan", "hwbd", "ltl", "<segment-id>"})
        words.erase(placeholder);
    return words;
}

} // namespace

std::vector<display_line> display_lines(const host &described, bool with_strangers,
                                        size_t samples) {
    const vocabulary words = vocabulary_of(described, with_strangers);
    std::vector<display_line> lines;
    std::set<std::string> seen;
    for (const kestrel_cmd_row &row : kestrel_cmd_list) {
        if (!is_display(row) || !seen.insert(documentation_of(row)).second)
            continue;
        const std::string command = command_of(row);
        arguments values = some_of(asked_values(documentation_of(row), words), samples);
        values.merge(alternatives(row));
        values.insert("");
        for (const std::string &value : values) {
            lines.push_back({command, {command}});
            if (!value.empty())
                lines.back().words.push_back(value);
        }
    }
    return lines;
}
