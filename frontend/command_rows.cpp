#include "frontend/command_rows.h"

#include "frontend/handlers.h"
#include "infra/utils/kxstrings.h"

#include <cstdio>
#include <cstring>

int kx_typed_keywords(const kestrel_cmd_row &row) {
    int count = 0;
    while (count < KESTREL_CMD_KEYWORDS && row.keywords[count] != nullptr &&
           strpbrk(row.keywords[count], "[]<>{}|") == nullptr &&
           strcmp(row.keywords[count], "cookie") != 0) {
        ++count;
    }
    return count;
}

void kx_explain_silence(const kestrel_cmd_row &row, int matched, const char *command) {
    const bool is_display = row.handler == kx_show_empty;
    const int count = kx_typed_keywords(row);
    if (is_display || (kx_is_stub(row.handler) && matched < count)) {
        size_t length = strlen(command);
        while (length > 0 && kx_is_space(command[length - 1])) {
            --length;
        }
        fflush(stdout);
        fprintf(stderr, "tarncmd: no %scommand \"%.*s\"; \"tarncmd help\" lists them\n",
                is_display ? "display " : "", static_cast<int>(length), command);
    } else if (kx_is_stub(row.handler)) {
        char words[256] = ""; // the longest row has 73 characters
        size_t length = 0;
        for (int i = 0; i < count && length < sizeof words; ++i) {
            length += static_cast<size_t>(snprintf(words + length, sizeof words - length, "%s%s",
                                                   i == 0 ? "" : " ", row.keywords[i]));
        }
        fflush(stdout);
        fprintf(stderr, "tarncmd: \"%s\" is not built in this version\n", words);
    }
}
