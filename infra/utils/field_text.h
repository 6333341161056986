// Text fields of fixed size, as driver records hold them.
#ifndef INFRA_UTILS_FIELD_TEXT_H
#define INFRA_UTILS_FIELD_TEXT_H

#include <cstddef>
#include <cstring>

template <size_t SIZE> struct kx_text { char text[SIZE + 1]; };

// The text of a field of SIZE bytes, up to its NUL or the whole field when it has none.
template <size_t SIZE> kx_text<SIZE> kx_field_text(const char (&field)[SIZE]) {
    kx_text<SIZE> copy;
    const size_t length = strnlen(field, SIZE);
    memcpy(copy.text, field, length);
    copy.text[length] = '\0';
    return copy;
}

#endif
