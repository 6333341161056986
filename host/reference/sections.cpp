#include "host/keys.h"
#include "host/reference/reference.h"
#include "host/value.h"

#include <algorithm>
#include <iterator>
#include <memory>

namespace {

// How values stand in a host file, whatever their key.
constexpr value_form FORMS[] = {
    {"number", "a number, or a text with one in C notation: `28`, `\"0x1c\"`"},
    {"flag", "`true` or `false`; where a driver said more than 1, that number"},
    {"word", "one of the words; what a driver said and no word stands for is its number"},
    {"words", "a list of such words and numbers, for the bits of a number"},
    {"text", "a text without NUL; a driver's may fill its field, then it has no end there"},
    {"texts", "a list of such texts"},
    {"bytes", "in hexadecimal; `00*512` stands for 512 equal bytes, pieces are set off by commas"},
    {"MAC address", "`\"00:50:56:aa:bb:cc\"`"},
    {"IPv4, IPv6 address", "`\"10.1.2.3\"`, `\"2001:db8::1\"`"},
    {"interface",
     "the name that the tool prints, or the index as a number where the name leads to another one"},
    {"numbers", "a list of numbers, or a text such as `\"1,10-20\"`"},
};

constexpr const char *RULES[] = {
    R"(`null` says that the driver refuses what it is asked. A key that says `or null` can say so; where
leaving a key out is a refusal already, its default says "refused".)",
    R"(A text is UTF-8. A byte of the driver's that is no part of well-formed UTF-8 stands as one of the
characters U+EF80 to U+EFFF, for 0x80 to 0xFF; so do the three bytes of such a character itself.)",
    R"(Written by a program, a host has one form: keys in the order below, defaults left out (`--full` writes
them out, too), lists in the driver's order, two blanks a level, lists of values on one line, one
newline at the end. Equal hosts are equal files. The numbers that people compute with are numbers: a
counter of more than 53 bits is exact in the file, though some readers of JSON round it.)",
};

std::string quoted(const std::string &text) {
    return "`" + text + "`";
}

// In the order of key_type.
constexpr const char *TYPE_NAMES[] = {"number",       "flag",         "word",      "words",
                                      "text",         "texts",        "bytes",     "MAC address",
                                      "IPv4 address", "IPv6 address", "interface", "numbers",
                                      "number",       "object",       "list"};
static_assert(std::size(TYPE_NAMES) == KEY_TYPES - 1); // what is included is no key

// What the key takes.
std::string takes(const key &row) {
    std::string most = row.items < UINT32_MAX ? "at most " + std::to_string(row.items) : "";
    std::string words;
    switch (row.type) {
    case key_type::flag:
        words = "`true`, `false`";
        return row.most == 1 ? words : words + ", or 2 to " + std::to_string(row.most);
    case key_type::word:
    case key_type::words:
        for (const key_word &word : row.words) {
            words += quoted(word.name) + ", ";
        }
        return words + "or " + range_of(row);
    case key_type::text:
        return "at most " + std::to_string(row.most) + " bytes";
    case key_type::interface:
        return "`Veth3`, `Eth4/1`, `Po1`, or " + range_of(row);
    case key_type::numbers:
        return range_of(row) + (most.empty() ? "" : ", ") + most;
    case key_type::number:
    case key_type::counters:
        return range_of(row);
    default:
        return most;
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
    const char *type = TYPE_NAMES[static_cast<size_t>(row.type)];
    key_entry entry{&row, row.name, type, takes(row), default_of(row, fresh)};
    if (row.type == key_type::counters) {
        entry.name = "0 to " + std::to_string(row.items - 1);
    }
    if (row.refusable) {
        entry.takes += entry.takes.empty() ? "or `null`" : ", or `null`";
    }
    return entry;
}

void add_section(std::vector<key_section> &sections, const key_table &table) {
    if (std::any_of(sections.begin(), sections.end(),
                    [&](const key_section &section) { return section.table == &table; })) {
        return;
    }
    key_section section{&table, {}, {}};
    const std::shared_ptr<void> fresh = table.make(0);
    for (const key &row : table.keys) {
        if (row.type == key_type::included) {
            section.included.push_back(row.table);
        } else {
            section.entries.push_back(entry_of(row, fresh.get()));
        }
    }
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

const std::span<const value_form> VALUE_FORMS = FORMS;
const std::span<const char *const> FORM_RULES = RULES;

std::vector<key_section> all_sections() {
    std::vector<key_section> sections;
    add_section(sections, HOST_KEYS);
    return sections;
}
