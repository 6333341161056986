// Writes what documents and shells need to know about the command table, so that nobody maintains
// it by hand: command_reference markdown | mdoc | words
#include "frontend/command_rows.h"
#include "frontend/handlers.h"
#include "frontend/kestrel_cmd_list.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using words = std::vector<std::string>;

struct command_row {
    words keywords;
    size_t typed = 0; // how many of the keywords are typed as they stand
    std::string hint;
    std::string help; // with its continuation lines
    bool from_agent = false;
    bool built = false;
};

struct command_section {
    const char *title;
    std::vector<command_row> rows; // sorted by keywords, as the help sorts them
};

std::string joined(const words &of, size_t first = 0, size_t end = SIZE_MAX) {
    std::string text;
    for (size_t i = first; i < std::min(end, of.size()); ++i) {
        text += (text.empty() ? "" : " ") + of[i];
    }
    return text;
}

std::string without_end_blanks(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

command_row read_row(const kestrel_cmd_row &row) {
    command_row read;
    for (const char *keyword : row.keywords) {
        if (keyword == nullptr) {
            break;
        }
        read.keywords.push_back(without_end_blanks(keyword));
    }
    read.typed = static_cast<size_t>(kx_typed_keywords(row));
    read.hint = row.argument_hint == nullptr ? "" : row.argument_hint;
    read.help = without_end_blanks(row.help_text == nullptr ? "" : row.help_text);
    read.from_agent = row.allowed_from_agent != 0;
    read.built = !kx_is_stub(row.handler);
    return read;
}

// The headings between the rows divide the table into the two kinds of commands.
std::vector<command_section> read_table() {
    std::vector<command_section> sections = {{"Display commands", {}}, {"Set commands", {}}};
    size_t section = 0;
    for (const kestrel_cmd_row &row : kestrel_cmd_list) {
        std::vector<command_row> &rows = sections[section].rows;
        if (row.kind == KESTREL_CMD_COMMAND) {
            rows.push_back(read_row(row));
        } else if (row.kind == KESTREL_CMD_CONTINUATION) {
            rows.back().help += std::string(" ") + row.help_text;
        } else if (row.kind == KESTREL_CMD_HEADING && !rows.empty()) {
            section = 1;
        }
    }
    for (command_section &each : sections) {
        std::stable_sort(
            each.rows.begin(), each.rows.end(),
            [](const command_row &a, const command_row &b) { return a.keywords < b.keywords; });
    }
    return sections;
}

size_t count_built(const std::vector<command_row> &rows) {
    return static_cast<size_t>(
        std::count_if(rows.begin(), rows.end(), [](const command_row &row) { return row.built; }));
}

// --- markdown ---

// A bar would end the cell, even in a code span.
std::string cell(std::string text, bool code) {
    for (size_t at = 0; (at = text.find('|', at)) != std::string::npos; at += 2) {
        text.insert(at, 1, '\\');
    }
    return text.empty() ? "" : code ? "`" + text + "`" : text;
}

void write_markdown() {
    const std::vector<command_section> sections = read_table();
    size_t all = 0;
    size_t built = 0;
    for (const command_section &section : sections) {
        all += section.rows.size();
        built += count_built(section.rows);
    }
    std::printf("# Commands\n"
                "\n"
                "Every row of the command table, by its words. Written from the table by\n"
                "`cmake --build --preset release --target docs`; do not edit.\n"
                "\n"
                "A command matches a row by whole words, without regard to case; the row with the\n"
                "most words wins. Words in brackets, words with a bar, `cookie` and what follows\n"
                "stand for arguments, and so does the hint. *Agent* tells whether the row may be\n"
                "run when it comes from the agent side. A row that is not built matches and shows\n"
                "in the help; it asks and prints nothing, and says so on standard error.\n"
                "\n"
                "%zu of %zu rows are built.\n",
                built, all);
    for (const command_section &section : sections) {
        std::printf("\n## %s\n\n| Words | Hint | Help | Agent | Built |\n|---|---|---|---|---|\n",
                    section.title);
        for (const command_row &row : section.rows) {
            std::printf("| %s | %s | %s | %s | %s |\n", cell(joined(row.keywords), true).c_str(),
                        cell(row.hint, true).c_str(), cell(row.help, false).c_str(),
                        row.from_agent ? "yes" : "no", row.built ? "yes" : "no");
        }
    }
}

// --- mdoc ---

// A word that the formatter would read as a macro or an escape.
std::string mdoc_words(const std::string &text) {
    std::string safe;
    for (size_t at = 0; (at = text.find_first_not_of(' ', at)) != std::string::npos;) {
        const size_t end = std::min(text.find(' ', at), text.size());
        const std::string word = text.substr(at, end - at);
        safe += (safe.empty() ? "" : " ");
        // A zero-width space protects delimiters and two-letter words.
        const bool special = word.size() <= 3 || std::strchr(".,:;()[]?!|", word.back()) != nullptr;
        safe += (special ? "\\&" : "") + word;
        at = end;
    }
    return safe;
}

// What a shell may give after the typed keywords. A cookie and its number are for host processes.
std::string shell_arguments(const command_row &row) {
    const auto cookie = std::find(row.keywords.begin(), row.keywords.end(), "cookie");
    std::string arguments =
        joined(row.keywords, row.typed, static_cast<size_t>(cookie - row.keywords.begin()));
    if (cookie == row.keywords.end()) {
        arguments += (arguments.empty() || row.hint.empty() ? "" : " ") + row.hint;
    }
    return arguments;
}

std::string shell_usage(const command_row &row) {
    return joined(row.keywords, 0, row.typed) + " " + shell_arguments(row);
}

using command_rows = std::vector<const command_row *>;

// The typed words of each row, once, as a sentence.
void write_typed(const char *lead, const command_rows &rows) {
    words typed;
    for (const command_row *row : rows) {
        typed.push_back(joined(row->keywords, 0, row->typed));
    }
    typed.erase(std::unique(typed.begin(), typed.end()), typed.end());
    std::printf(".Pp\n%s\n", lead);
    for (const std::string &each : typed) {
        std::printf(".Cm %s%s\n", mdoc_words(each).c_str(), &each == &typed.back() ? " ." : " ,");
    }
}

void write_mdoc() {
    const std::vector<command_section> sections = read_table();
    for (const command_section &section : sections) {
        std::printf(".Ss %s\n.Bl -tag -width 36n -compact\n", section.title);
        std::string before;
        for (const command_row &row : section.rows) {
            const bool repeated = before == joined(row.keywords);
            before = joined(row.keywords);
            if (row.built && !repeated && !row.help.empty()) {
                const std::string arguments = shell_arguments(row);
                std::printf(".It Cm %s%s%s\n%s.\n",
                            mdoc_words(joined(row.keywords, 0, row.typed)).c_str(),
                            arguments.empty() ? "" : " Ar ", mdoc_words(arguments).c_str(),
                            row.help.c_str());
            }
        }
        std::printf(".El\n");
    }

    command_rows doing;
    command_rows unbuilt_doing;
    for (const command_row &row : sections.front().rows) {
        if (row.keywords.front() != "show") {
            (row.built ? doing : unbuilt_doing).push_back(&row);
        }
    }
    std::printf(".Ss Which commands change something\nThe set commands do, at once.\n");
    write_typed("Among the display commands these do more than show something:", doing);
    write_typed("And these would, but are not built in this version:", unbuilt_doing);
}

// --- words ---

// One thing to type: its choices, or only a kind of value; no choices for a value of any kind.
using choices = words;
using sequence = std::vector<choices>;

// Other pieces of the notation show the form of a value: "0-255", "ddd.ddd.ddd.ddd".
bool is_word(std::string_view text) {
    return !text.empty() && std::isalpha(static_cast<unsigned char>(text[0])) != 0 &&
           std::all_of(text.begin(), text.end(), [](unsigned char byte) {
               return std::isalnum(byte) != 0 || byte == '-' || byte == '_';
           });
}

// "*vlan" for "<vlan-id>" and "[vlan]", "*" for a value that no display lists.
std::string value_kind(const std::string &notation) {
    static const std::pair<const char *, const char *> KINDS[] = {
        {"ltl", "*ltl"},         {"vlan", "*vlan"},      {"bd-name", "*bd-name"},
        {"segment", "*segment"}, {"seg-id", "*segment"}, {"hwbd", "*hwbd"},
    };
    for (const auto &[name, kind] : KINDS) {
        if (notation.find(name) != std::string::npos) {
            return kind;
        }
    }
    return "*";
}

// Cut at bars. Among the pieces, "<eid>" is a value, and so is "num".
choices split_choices(const std::string &text) {
    choices found;
    for (size_t at = 0; at <= text.size();) {
        const size_t end = std::min(text.find('|', at), text.size());
        std::string piece = text.substr(at, end - at);
        piece.erase(std::remove(piece.begin(), piece.end(), ' '), piece.end());
        if (is_word(piece) && piece != "num") {
            found.push_back(piece);
        }
        at = end + 1;
    }
    return found;
}

// The table's own notation: "<x>" a value, "[x]" may be left out, "{x|y}", "<x|y>" and "x|y" one of
// them. In "[vlan]" and the like, the one word names a value.
class usage_reader {
public:
    explicit usage_reader(std::string text) : text_(std::move(text)) {
    }

    // All ways to type it.
    std::vector<sequence> read() {
        std::vector<sequence> ways = {{}};
        while ((at_ = text_.find_first_not_of(' ', at_)) != std::string::npos) {
            const bool optional = text_[at_] == '[';
            const std::vector<sequence> next = optional ? read_optional() : read_one();
            std::vector<sequence> longer;
            for (const sequence &way : ways) {
                for (const sequence &rest : next) {
                    longer.push_back(way);
                    longer.back().insert(longer.back().end(), rest.begin(), rest.end());
                }
            }
            ways = longer;
        }
        return ways;
    }

private:
    std::string text_;
    size_t at_ = 0;

    std::string take_until(char end) {
        const size_t stop = std::min(text_.find(end, at_), text_.size());
        std::string taken = text_.substr(at_, stop - at_);
        at_ = stop + (end == ' ' ? 0 : 1);
        return taken;
    }

    std::vector<sequence> read_one() {
        if (text_[at_] == '<' || text_[at_] == '{') {
            const char end = text_[at_++] == '<' ? '>' : '}';
            const std::string inside = take_until(end);
            return {{inside.find('|') == std::string::npos ? choices{value_kind(inside)}
                                                           : split_choices(inside)}};
        }
        return {{split_choices(take_until(' '))}};
    }

    std::vector<sequence> read_optional() {
        ++at_;
        const std::string inside = take_until(']');
        static const words VALUES = {"vlan", "hwbd", "ltl"};
        std::vector<sequence> ways = {{}};
        if (std::find(VALUES.begin(), VALUES.end(), inside) != VALUES.end()) {
            ways.push_back({{value_kind(inside)}});
        } else if (inside.find('|') != std::string::npos) {
            ways.push_back({split_choices(inside)});
            if (inside.find('<') != std::string::npos || inside.starts_with("num")) {
                ways.push_back({{}});
            }
        } else {
            const std::vector<sequence> some = usage_reader(inside).read();
            ways.insert(ways.end(), some.begin(), some.end());
        }
        return ways;
    }
};

std::string line_of(const sequence &way) {
    std::string line;
    std::string before;
    for (const choices &each : way) {
        std::string word = each.empty() ? "*" : "";
        for (const std::string &choice : each) {
            word += (word.empty() ? "" : "|") + choice;
        }
        word = word == "*" && before == "ltl" ? "*ltl" : word;
        line += " " + word;
        before = word;
    }
    return line;
}

// One line for each way to type a command: "+" for a row that is built or "-", words, "a|b" for a
// choice, "*" for a value, "*ltl" for one of a kind.
void write_words() {
    words lines = {"+ help"};
    for (const command_section &section : read_table()) {
        for (const command_row &row : section.rows) {
            for (const sequence &way : usage_reader(shell_usage(row)).read()) {
                lines.push_back((row.built ? "+" : "-") + line_of(way));
            }
        }
    }
    // A line adds nothing when another one begins with it.
    std::sort(lines.begin(), lines.end());
    for (size_t i = 0; i < lines.size(); ++i) {
        if (i + 1 == lines.size() || !(lines[i + 1] + " ").starts_with(lines[i] + " ")) {
            std::puts(lines[i].c_str());
        }
    }
}

} // namespace

int main(int argc, char *argv[]) {
    static const std::map<std::string_view, void (*)()> FORMS = {
        {"markdown", write_markdown}, {"mdoc", write_mdoc}, {"words", write_words}};
    const auto form = FORMS.find(argc == 2 ? argv[1] : "");
    if (form == FORMS.end()) {
        std::fputs("Usage: command_reference markdown | mdoc | words\n", stderr);
        return 2;
    }
    form->second();
    return std::fflush(stdout) == 0 ? 0 : 1;
}
