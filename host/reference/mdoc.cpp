#include "host/reference/reference.h"

#include <cctype>
#include <sstream>

namespace {

// A line of text that holds no requests and no escapes of its own.
std::string plain(const std::string &text) {
    std::string safe;
    for (const char character : text) {
        if (character == '\\') {
            safe += "\\e";
        } else if (character != '`') {
            safe += character;
        }
    }
    return safe.starts_with('.') || safe.starts_with('\'') ? "\\&" + safe : safe;
}

// Over lines of at most 78 columns, a sentence on lines of its own.
std::string wrapped(const std::string &text) {
    constexpr size_t WIDTH = 78;
    std::string lines;
    std::string line;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        const bool is_full = line.size() + 1 + word.size() > WIDTH;
        if (!line.empty() && (is_full || line.ends_with('.'))) {
            lines += plain(line) + "\n";
            line.clear();
        }
        line += (line.empty() ? "" : " ") + word;
    }
    return lines + plain(line) + "\n";
}

// A title as an argument, where "An" would be a request.
std::string title_of(const key_table &table) {
    const std::string title = table.title;
    return title.starts_with("An ") ? "\\&" + title : title;
}

std::string sentence(const std::string &text) {
    std::string whole = text;
    if (!whole.empty()) {
        whole[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(whole[0])));
    }
    return wrapped(whole + ".");
}

// What stands behind a key: its type and unit, what it takes, and its default.
std::string terms(const key_entry &entry) {
    std::string text = entry.type;
    const std::string unit = entry.row->unit;
    text += unit.empty() ? "" : " (" + unit + ")";
    text += entry.takes.empty() ? "" : ": " + entry.takes;
    if (!entry.otherwise.empty()) {
        text += (entry.row->required ? "; " : "; default: ") + entry.otherwise;
    }
    return wrapped(text);
}

std::string section_page(const key_section &section) {
    std::string text = ".Ss " + title_of(*section.table) + "\n";
    for (const key_table *included : section.included) {
        text +=
            std::string("Besides these, it has the keys under\n.Sx ") + included->title + " .\n";
    }
    text += ".Bl -tag -width Ds\n";
    for (const key_entry &entry : section.entries) {
        text +=
            ".It Cm " + entry.name + "\n" + sentence(entry.row->meaning) + ".br\n" + terms(entry);
        if (entry.row->table != nullptr) {
            text += ".br\nSee\n.Sx " + title_of(*entry.row->table) + " .\n";
        }
    }
    return text + ".El\n";
}

} // namespace

std::string reference_mdoc() {
    std::string text = ".Bl -tag -width Ds\n";
    for (const value_form &form : VALUE_FORMS) {
        text += std::string(".It ") + form.type + "\n" + wrapped(form.text);
    }
    text += ".El\n";
    for (const char *rule : FORM_RULES) {
        text += ".Pp\n" + wrapped(rule);
    }
    text += ".Sh KEYS\n";
    for (const key_section &section : all_sections()) {
        text += section_page(section);
    }
    return text;
}
