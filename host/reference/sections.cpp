#include "host/keys.h"
#include "host/reference/reference.h"
#include "host/value.h"

#include <algorithm>

namespace {

std::string quoted(const std::string &text) {
    return "`" + text + "`";
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
    const key_form &form = form_of(row.type);
    key_entry entry{&row, row.name, form.name, form.takes(row), default_of(row, fresh)};
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
