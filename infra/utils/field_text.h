// Fixed-size text fields of driver records.
#ifndef INFRA_UTILS_FIELD_TEXT_H
#define INFRA_UTILS_FIELD_TEXT_H

#include <cstddef>

template <size_t SIZE> struct kx_text { char text[SIZE + 1]; };

// The text of a field of SIZE bytes, up to its NUL or the whole field when it has none.
template <size_t SIZE> kx_text<SIZE> kx_field_text(const char (&field)[SIZE]) {
    kx_text<SIZE> copy;
    // Names are short: two calls of the C library would take longer than the loop.
    size_t length = 0;
    for (; length < SIZE && field[length] != '\0'; ++length) {
        copy.text[length] = field[length];
    }
    copy.text[length] = '\0';
    return copy;
}

#endif
