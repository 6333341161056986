#include "frontend/command_rows.h"

#include "frontend/handlers.h"
#include "frontend/run_state.h"
#include "infra/utils/kxstrings.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

constexpr size_t LONGEST_ROW = 256; // bytes of its words; the longest has 73 characters

constexpr size_t LONGEST_WORD = 32; // bytes of a keyword, its NUL included

// A row's words as a line.
struct row_words {
    char text[LONGEST_ROW] = "";
    size_t length = 0;
};

void append(row_words *words, const char *word) {
    if (word != nullptr && words->length < sizeof words->text) {
        words->length += static_cast<size_t>(snprintf(words->text + words->length,
                                                      sizeof words->text - words->length, "%s%s",
                                                      words->length == 0 ? "" : " ", word));
    }
}

row_words typed_words(const kestrel_cmd_row &row) {
    row_words words;
    for (int i = 0; i < kx_typed_keywords(row); ++i) {
        append(&words, row.keywords[i]);
    }
    return words;
}

// The row as typed in a shell. Cookies are only for host processes.
row_words usage(const kestrel_cmd_row &row) {
    row_words words;
    for (const char *keyword : row.keywords) {
        if (keyword != nullptr && strcmp(keyword, "cookie") == 0) {
            return words;
        }
        append(&words, keyword);
    }
    append(&words, row.argument_hint);
    return words;
}

bool is_display(const kestrel_cmd_row &row) {
    return strcmp(row.keywords[0], "show") == 0;
}

bool is_change(const kestrel_cmd_row &row) {
    return !is_display(row) && strcmp(row.keywords[0], "dump") != 0;
}

// The second word of the built display that is nearest to `typed`, NULL when none is near. Of two
// that are as near, the one with the same first letter: people get that right.
const char *nearest_display(const char *typed, size_t typed_length) {
    size_t least = typed_length < 6 ? 4 : 6;
    const char *nearest = nullptr;
    for (const kestrel_cmd_row &row : kestrel_cmd_list) {
        if (row.handler == nullptr || kx_is_stub(row.handler) || !is_display(row) ||
            kx_typed_keywords(row) < 2) {
            continue;
        }
        const size_t distance = 2 * kx_typing_errors(typed, typed_length, row.keywords[1]) +
                                (kx_strncasecmp(typed, row.keywords[1], 1) == 0 ? 0 : 1);
        if (distance < least) {
            least = distance;
            nearest = row.keywords[1];
        }
    }
    return nearest;
}

// One line on standard error; what standard output holds back is written first.
__attribute__((format(printf, 1, 2))) void tell(const char *format, ...) {
    fflush(stdout);
    va_list arguments;
    va_start(arguments, format);
    vfprintf(stderr, format, arguments);
    va_end(arguments);
}

void tell_unknown(const char *kind, int length, const char *command) {
    tell("tarncmd: no %scommand \"%.*s\"; \"tarncmd help\" lists them\n", kind, length, command);
}

void tell_unknown_display(int length, const char *command) {
    const char *const typed = kx_find_next_arg(command);
    const size_t typed_length = typed == nullptr ? 0 : strcspn(typed, " ");
    const char *const nearest = typed == nullptr ? nullptr : nearest_display(typed, typed_length);
    if (nearest == nullptr) {
        tell_unknown("display ", length, command);
        return;
    }
    const char *const rest = typed + typed_length;
    tell("tarncmd: no display command \"%.*s\"; did you mean \"show %s%.*s\"? \"tarncmd help\" "
         "lists them\n",
         length, command, nearest, static_cast<int>(command + length - rest), rest);
}

} // namespace

size_t kx_typing_errors(const char *typed, size_t typed_length, const char *keyword) {
    const size_t length = strlen(keyword);
    size_t errors[LONGEST_WORD][LONGEST_WORD];
    if (typed_length >= LONGEST_WORD || length >= LONGEST_WORD) {
        return LONGEST_WORD;
    }
    for (size_t i = 0; i <= typed_length; ++i) {
        for (size_t k = 0; k <= length; ++k) {
            if (i == 0 || k == 0) {
                errors[i][k] = i + k;
                continue;
            }
            const size_t wrong = kx_strncasecmp(typed + i - 1, keyword + k - 1, 1) == 0 ? 0 : 1;
            errors[i][k] = std::min(
                {errors[i - 1][k] + 1, errors[i][k - 1] + 1, errors[i - 1][k - 1] + wrong});
            if (i > 1 && k > 1 && kx_strncasecmp(typed + i - 1, keyword + k - 2, 1) == 0 &&
                kx_strncasecmp(typed + i - 2, keyword + k - 1, 1) == 0) {
                errors[i][k] = std::min(errors[i][k], errors[i - 2][k - 2] + 1);
            }
        }
    }
    return errors[typed_length][length];
}

int kx_typed_keywords(const kestrel_cmd_row &row) {
    int count = 0;
    while (count < KESTREL_CMD_KEYWORDS && row.keywords[count] != nullptr &&
           strpbrk(row.keywords[count], "[]<>{}|") == nullptr &&
           strcmp(row.keywords[count], "cookie") != 0) {
        ++count;
    }
    return count;
}

void kx_explain_run(const kestrel_cmd_row &row, int matched, const char *command) {
    const bool is_whole = matched >= kx_typed_keywords(row);
    auto length = static_cast<int>(strlen(command));
    while (length > 0 && kx_is_space(command[length - 1])) {
        --length;
    }
    if (row.handler == kx_show_empty) {
        tell_unknown_display(length, command);
    } else if (kx_is_stub(row.handler) && !is_whole) {
        tell_unknown("", length, command);
    } else if (kx_is_stub(row.handler)) {
        tell("tarncmd: \"%s\" is not built in this version\n", typed_words(row).text);
    } else if (is_change(row) && !is_whole) {
        tell("tarncmd: ran \"%s\" for \"%.*s\"\n", typed_words(row).text, length, command);
    } else if (is_display(row) && !kx_has_printed) {
        const row_words form = usage(row);
        const bool has_arguments = strcmp(form.text, typed_words(row).text) != 0;
        tell("tarncmd: \"%.*s\" printed nothing%s%s\n", length, command,
             has_arguments ? "; usage: tarncmd " : "", has_arguments ? form.text : "");
    }
}
