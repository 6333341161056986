#include "frontend/kxcmd.h"

#include "frontend/command_rows.h"
#include "frontend/output_sink.h"
#include "frontend/run_state.h"
#include "infra/utils/kxstrings.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>

namespace {

constexpr int COMMAND_SIZE = 256; // bytes of one command, its NUL included

constexpr const char *SET_SECTION_HEADING = "--- Set commands - be careful! ---";

constexpr int KEYWORD_COLUMN_SIZE = 79;  // bytes of the keyword column, its NUL included
constexpr int KEYWORD_COLUMN_WIDTH = 31; // wider columns push the help text to the next line

bool is_command_character(char c) {
    return c >= ' ' && c <= '~' && c != ';';
}

const char *text_or_empty(const char *text) {
    return text == nullptr ? "" : text;
}

// The deepest row that matches, and one less than the number of keywords that match.
struct match {
    int row;
    int depth;
};

constexpr int WORDS = KESTREL_CMD_KEYWORDS + 1;

bool is_match(const char *word, const char *keyword) {
    return word != nullptr && keyword != nullptr && stris(word, keyword) == 0;
}

match find_deepest(const kestrel_cmd_row *table, const char *const words[WORDS]) {
    match best{-1, -1};
    for (int row = 0; table[row].kind != KESTREL_CMD_END; ++row) {
        const char *const *keywords = table[row].keywords;
        // For most rows one comparison is enough: of the first keyword that would make the row
        // deeper than the best one.
        const int deeper = best.depth + 1;
        if (table[row].handler == nullptr || deeper == KESTREL_CMD_KEYWORDS ||
            !is_match(words[deeper], keywords[deeper])) {
            continue;
        }
        for (int k = 0; k < KESTREL_CMD_KEYWORDS && is_match(words[k], keywords[k]); ++k) {
            if (k > best.depth) {
                best = {row, k};
            }
        }
    }
    return best;
}

// The first region ends at the first heading after a command, unless that heading opens the set
// section itself.
int first_region_end(const kestrel_cmd_row *table) {
    int row = 0;
    while (table[row].kind != KESTREL_CMD_END && table[row].kind != KESTREL_CMD_COMMAND) {
        ++row;
    }
    const size_t heading_length = strlen(SET_SECTION_HEADING);
    for (; table[row].kind != KESTREL_CMD_END; ++row) {
        if (table[row].kind == KESTREL_CMD_HEADING &&
            strncmp(text_or_empty(table[row].help_text), SET_SECTION_HEADING, heading_length) !=
                0) {
            break;
        }
    }
    return row;
}

int table_end(const kestrel_cmd_row *table) {
    int row = 0;
    while (table[row].kind != KESTREL_CMD_END) {
        ++row;
    }
    return row;
}

// An exchange sort of the commands in [begin, end); every other row keeps its place.
void sort_region(kestrel_cmd_row *table, int begin, int end) {
    for (int i = begin; i < end; ++i) {
        if (table[i].kind != KESTREL_CMD_COMMAND) {
            continue;
        }
        for (int j = i + 1; j < end; ++j) {
            if (table[j].kind == KESTREL_CMD_COMMAND) {
                kxcmd_compare_and_swap(&table[i], &table[j]);
            }
        }
    }
}

// Keywords and argument hint, each followed by a blank, cut at the column's size.
int format_keyword_column(char (&column)[KEYWORD_COLUMN_SIZE], const kestrel_cmd_row &row) {
    int length = 0;
    column[0] = '\0';
    const auto append = [&](const char *text) {
        length +=
            snprintf(column + length, sizeof column - static_cast<size_t>(length), "%s ", text);
        return length < KEYWORD_COLUMN_SIZE;
    };
    for (const char *keyword : row.keywords) {
        if (keyword == nullptr || !append(keyword)) {
            break;
        }
    }
    if (length < KEYWORD_COLUMN_SIZE && row.argument_hint != nullptr) {
        append(row.argument_hint);
    }
    return length;
}

int snprintf_command_row(char *position, size_t room, const kestrel_cmd_row &row) {
    char column[KEYWORD_COLUMN_SIZE];
    const char *help = text_or_empty(row.help_text);
    if (format_keyword_column(column, row) <= KEYWORD_COLUMN_WIDTH) {
        return snprintf(position, room, "%-32s %s\n", column, help);
    }
    const int length = snprintf(position, room, "%s\n", column);
    const size_t used = std::min(static_cast<size_t>(length), room);
    return length + snprintf(position + used, room - used, "%-32s %s\n", "", help);
}

int snprintf_help_row(char *position, size_t room, const kestrel_cmd_row &row) {
    switch (row.kind) {
    case KESTREL_CMD_HEADING:
        return snprintf(position, room, "%s\n", text_or_empty(row.help_text));
    case KESTREL_CMD_CALLBACK:
        return row.help_callback == nullptr ? 0
                                            : row.help_callback(position, static_cast<int>(room));
    default:
        return snprintf_command_row(position, room, row);
    }
}

} // namespace

void kxcmd_parse_multiple(kestrel_cmd_row *table, const char *text, int length, int from_agent) {
    int position = 0;
    int result = 0;
    while (position < length && result != KXCMD_STOP) {
        if (kx_is_space(text[position]) || !is_command_character(text[position])) {
            ++position;
            continue;
        }
        char command[COMMAND_SIZE];
        int count = 0;
        while (position < length && is_command_character(text[position])) {
            command[count++] = text[position++];
            if (count == COMMAND_SIZE) {
                kx_trace(kx_debug_print_kxcmd, KX_DEBUG_COMPLAINT,
                         "Max command length reached; discarding\n");
                return;
            }
        }
        command[count] = '\0';
        result = kxcmd_parse_single(table, command, count, from_agent);
        ++position;
    }
}

int kxcmd_parse_single(kestrel_cmd_row *table, const char *command, int /*length*/,
                       int from_agent) {
    const char *words[WORDS] = {command};
    for (int i = 1; i < WORDS; ++i) {
        words[i] = kx_find_next_arg(words[i - 1]);
    }
    const match best = find_deepest(table, words);
    if (best.row < 0) {
        kx_trace(kx_debug_print_kxcmd, KX_DEBUG_TRACE, "No match found for %s\n", command);
        kx_print_stamped("No match found for %s\n", command);
        return -1;
    }
    const kestrel_cmd_row &row = table[best.row];
    const char *arg = words[best.depth + 1];
    auto *const handler_address = reinterpret_cast<void *>(row.handler);
    kx_trace(kx_debug_print_kxcmd, KX_DEBUG_TRACE,
             "Match found for %s: index %d depth %d, %s %s %s %s\n", command, best.row, best.depth,
             text_or_empty(row.keywords[0]), text_or_empty(row.keywords[1]),
             text_or_empty(row.keywords[2]), text_or_empty(row.keywords[3]));
    kx_trace(kx_debug_print_kxcmd, KX_DEBUG_TRACE, "Calling %p(%s)\n", handler_address,
             arg == nullptr ? "NULL" : arg);
    if (from_agent != 0 && row.allowed_from_agent == 0) {
        kx_trace(kx_debug_print_kxcmd, KX_DEBUG_TRACE, "Cmd not permitted from DPA %p\n",
                 handler_address);
        kx_print_stamped("Cmd not permitted from DPA %p\n", handler_address);
        return -1;
    }
    kx_has_printed = false;
    kx_walked_requests = 0;
    const int result = row.handler(arg);
    if (kx_run_from_shell) {
        kx_explain_run(row, best.depth + 1, command);
    }
    return result;
}

int kxcmd_snprintf_help(kestrel_cmd_row *table, char *buffer, int size) {
    const int limit = first_region_end(table);
    sort_region(table, 0, limit);
    sort_region(table, limit, table_end(table));

    int length = 0;
    for (int row = 0; table[row].kind != KESTREL_CMD_END; ++row) {
        const int room = std::max(size - length, 0);
        length += snprintf_help_row(buffer + length, static_cast<size_t>(room), table[row]);
        if (length >= size) {
            kx_trace(kx_debug_print_kxcmd, KX_DEBUG_COMPLAINT,
                     "Help text length exceeds maxlen. Need to redefine the maxlen\n");
            return size;
        }
    }
    return length;
}

void kxcmd_compare_and_swap(kestrel_cmd_row *a, kestrel_cmd_row *b) {
    for (int k = 0; k < KESTREL_CMD_KEYWORDS; ++k) {
        if (a->keywords[k] == nullptr) {
            return;
        }
        const int order = b->keywords[k] == nullptr ? 1 : strcmp(a->keywords[k], b->keywords[k]);
        if (order > 0) {
            std::swap(*a, *b);
        }
        if (order != 0) {
            return;
        }
    }
}

int kxcmd_validate_data(const char *text, int max_length) {
    if (text[0] == '\0') {
        return 0;
    }
    for (int count = 0; count < max_length; ++count) {
        const auto byte = static_cast<unsigned char>(text[count]);
        if (byte == '\0') {
            return count;
        }
        if (isprint(byte) == 0 && isspace(byte) == 0) {
            kx_trace(kx_debug_print_kxcmd, KX_DEBUG_COMPLAINT, "kxcmd invalid character %02x\n",
                     byte);
        }
    }
    kx_trace(kx_debug_print_kxcmd, KX_DEBUG_COMPLAINT, "Data length > %d\n", max_length);
    return -1;
}
