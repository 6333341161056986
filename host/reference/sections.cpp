#include "host/keys.h"
#include "host/reference/reference.h"
#include "host/value.h"

#include <algorithm>

namespace {

std::string quoted(const std::string &text) {
    return "`" + text + "`";
}

std::string range_of(const key &row) {
    return std::to_string(row.least) + " to " + std::to_string(row.most);
}

std::string words_of(const key &row) {
    std::string words;
    for (const key_word &word : row.words) {
        words += quoted(word.name) + ", ";
    }
    return words;
}

std::string most_of_list(const key &row) {
    return row.items < UINT32_MAX ? "at most " + std::to_string(row.items) : "";
}

const char *type_of(const key &row) {
    switch (row.type) {
    case key_type::number:
    case key_type::counters:
        return "number";
    case key_type::flag:
        return "flag";
    case key_type::word:
        return "word";
    case key_type::words:
        return "words";
    case key_type::text:
        return "text";
    case key_type::hex:
        return "bytes";
    case key_type::mac:
        return "MAC address";
    case key_type::ipv4:
        return "IPv4 address";
    case key_type::ipv6:
        return "IPv6 address";
    case key_type::interface:
        return "interface";
    case key_type::numbers:
        return "numbers";
    case key_type::object:
        return "object";
    default:
        return "list";
    }
}

std::string values_of(const key &row) {
    switch (row.type) {
    case key_type::number:
    case key_type::counters:
        return range_of(row);
    case key_type::flag:
        return row.most > 1 ? "`true`, `false`, or 2 to " + std::to_string(row.most)
                            : "`true`, `false`";
    case key_type::word:
    case key_type::words:
        return words_of(row) + "or " + range_of(row);
    case key_type::text:
        return "at most " + std::to_string(row.most) + " bytes";
    case key_type::numbers: {
        const std::string most = most_of_list(row);
        return range_of(row) + (most.empty() ? "" : ", " + most);
    }
    case key_type::interface:
        return "`Veth3`, `Eth4/1`, `Po1`, or " + range_of(row);
    case key_type::object:
        return "";
    case key_type::list:
        return most_of_list(row);
    default:
        return "";
    }
}

// What a file without the key stands for; `fresh` is an object of which nothing is said.
std::string default_of(const key &row, const void *fresh) {
    if (row.required) {
        return row.unique ? "required, unique" : "required";
    }
    if (row.otherwise != nullptr) {
        return row.otherwise;
    }
    if (row.type == key_type::object) {
        return "";
    }
    if (row.type == key_type::list) {
        return "empty";
    }
    const key_value value = row.access.get(fresh);
    const std::string text = value_text(row, value);
    return text == "[]" || text == "\"\"" ? "empty" : quoted(text);
}

key_entry entry_of(const key &row, const void *fresh) {
    key_entry entry{&row, row.name, type_of(row), values_of(row), default_of(row, fresh)};
    if (row.type == key_type::counters) {
        entry.name = "0 to " + std::to_string(row.items - 1);
    }
    if (row.refusable) {
        entry.takes += entry.takes.empty() ? "or `null`" : ", or `null`";
    }
    return entry;
}

void add_rows(key_section &section, const key_table &table, const void *fresh) {
    for (const key &row : table.keys) {
        if (row.type != key_type::included) {
            section.entries.push_back(entry_of(row, fresh));
        } else if (*row.table->name == '\0') {
            add_rows(section, *row.table, row.access.look(fresh));
        } else {
            section.included.push_back(row.table);
        }
    }
}

void add_section(std::vector<key_section> &sections, const key_table &table) {
    if (std::any_of(sections.begin(), sections.end(),
                    [&](const key_section &section) { return section.table == &table; })) {
        return;
    }
    key_section section{&table, {}, {}};
    const std::shared_ptr<void> fresh = table.make(0);
    add_rows(section, table, fresh.get());
    sections.push_back(section);
    for (const key_table *included : section.included) {
        add_section(sections, *included);
    }
    for (const key_entry &entry : section.entries) {
        if (entry.row->table != nullptr) {
            add_section(sections, *entry.row->table);
        }
    }
}

} // namespace

std::vector<key_section> all_sections() {
    std::vector<key_section> sections;
    add_section(sections, HOST_KEYS);
    return sections;
}
