#include "host/host_file.h"
#include "host/reference/reference.h"

#include <algorithm>
#include <cctype>

namespace {

constexpr const char *INTRODUCTION = R"(# The host file

<!-- Made from the tables in host/ by the build target docs. -->

A host file describes a host: its ports, bridge domains, counters and whatever else its driver can be
asked for. It is what a capture of a host writes, what scripts read, and what the
[simulated host](simulated-host.md) answers from. [host.schema.json](host.schema.json) is its JSON
Schema.

It is a JSON object of at most LIMIT MiB. Every key may be left out, but for those that are required.
An unknown key and a value that is not taken are refused with `FILE:LINE: key path: reason`.

| Type | In the file |
|---|---|
)";

// As the anchor of a heading.
std::string anchor_of(const std::string &title) {
    std::string anchor;
    for (const char character : title) {
        if (std::isalnum(static_cast<unsigned char>(character)) != 0) {
            anchor += static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
        } else if (character == ' ' || character == '-') {
            anchor += '-';
        }
    }
    return anchor;
}

std::string link_to(const key_table &table) {
    std::string text = table.title;
    // But for "LACP".
    if (std::isupper(static_cast<unsigned char>(text[1])) == 0) {
        text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
    }
    return "[" + text + "](#" + anchor_of(table.title) + ")";
}

std::string type_text(const key_entry &entry) {
    const key &row = *entry.row;
    if (row.type == key_type::list) {
        return "list of objects: " + link_to(*row.table);
    }
    if (row.type == key_type::object) {
        return "object: " + link_to(*row.table);
    }
    return entry.type;
}

std::string name_text(const key_entry &entry) {
    if (entry.row->type != key_type::counters) {
        return "`" + entry.name + "`";
    }
    return "`0` to `" + std::to_string(entry.row->items - 1) + "`";
}

std::string section_text(const key_section &section) {
    std::string text = std::string("\n## ") + section.table->title + "\n\n";
    for (const key_table *included : section.included) {
        text += "Besides these, it has the keys of " + link_to(*included) + ".\n\n";
    }
    text += "| Key | Type | Takes | Unit | Default | Meaning |\n|---|---|---|---|---|---|\n";
    for (const key_entry &entry : section.entries) {
        text += "| " + name_text(entry) + " | " + type_text(entry) + " | " + entry.takes + " | " +
                entry.row->unit + " | " + entry.otherwise + " | " + entry.row->meaning + " |\n";
    }
    return text;
}

} // namespace

std::string reference_markdown() {
    std::string text = INTRODUCTION;
    const std::string limit = "LIMIT";
    text.replace(text.find(limit), limit.size(), std::to_string(HOST_FILE_LIMIT >> 20));
    for (const value_form &form : VALUE_FORMS) {
        text += std::string("| ") + form.type + " | " + form.text + " |\n";
    }
    for (const char *rule : FORM_RULES) {
        text += std::string("\n") + rule + "\n";
    }
    for (const key_section &section : all_sections()) {
        text += section_text(section);
    }
    return text;
}
