#include "infra/utils/kxassert.h"
#include "infra/utils/kxstrings.h"

#include <cstring>

namespace {

bool ends_word(char c) {
    return c == '\0' || c == ';' || kx_is_space(c);
}

// Keywords are ASCII, whatever locale a host process has set. One run compares some thousand
// letters with them first of all, so this must be fast.
char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace

bool kx_is_space(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool kx_begins_with(const char *text, const char *beginning) {
    return text != nullptr && strncmp(text, beginning, strlen(beginning)) == 0;
}

const char *kx_find_next_arg(const char *word) {
    if (word == nullptr) {
        return nullptr;
    }
    while (*word != '\0' && !kx_is_space(*word)) {
        ++word;
    }
    while (kx_is_space(*word)) {
        ++word;
    }
    return *word == '\0' ? nullptr : word;
}

int stris(const char *word, const char *keyword) {
    if (!kx_assert(word != nullptr && keyword != nullptr, __func__,
                   "str != NULL && cmpstr != NULL")) {
        return 1;
    }
    for (; *keyword != '\0'; ++keyword, ++word) {
        // A keyword may contain a blank; a typed word ends there.
        if (lower(*word) != lower(*keyword) || ends_word(*word)) {
            return 1;
        }
    }
    return ends_word(*word) ? 0 : 1;
}

int kx_strncasecmp(const char *a, const char *b, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        if (lower(a[i]) != lower(b[i])) {
            return 1;
        }
    }
    return 0;
}

// The copy stops at the NUL of the source. To copy on past it would give the same text, but from
// bytes that are not the source's.
int strncpy_until_space(char *destination, size_t size, const char *source) {
    if (size == 0) {
        return 0;
    }
    size_t length = 0;
    while (length < size - 1 && source[length] != '\0' && !kx_is_space(source[length])) {
        destination[length] = source[length];
        ++length;
    }
    destination[length] = '\0';
    return 0;
}

int kx_split_words(char *work, size_t size, const char *text, char *words[], int max_words) {
    if (text == nullptr || size == 0) {
        return 0;
    }
    const size_t length = strnlen(text, size - 1);
    memcpy(work, text, length);
    work[length] = '\0';

    int count = 0;
    char *rest = nullptr;
    char *word = strtok_r(work, " ", &rest);
    while (word != nullptr && count < max_words) {
        words[count++] = word;
        word = strtok_r(nullptr, " ", &rest);
    }
    return count;
}
