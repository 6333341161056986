#include "tests/rows.h"

#include <cstring>

bool is_documentation(const char *keyword) {
    return strpbrk(keyword, "[]<>|") != nullptr || strcmp(keyword, "cookie") == 0;
}

std::string all_keywords(const kestrel_cmd_row &row, const char *separator) {
    std::string text;
    for (const char *keyword : row.keywords) {
        if (keyword == nullptr)
            break;
        text += (text.empty() ? "" : separator) + std::string(keyword);
    }
    return text;
}

std::string command_of(const kestrel_cmd_row &row) {
    kestrel_cmd_row typed = row;
    for (const char *&keyword : typed.keywords)
        if (keyword != nullptr && is_documentation(keyword))
            keyword = nullptr;
    return all_keywords(typed);
}
