// What the fuzz targets share. Each target is one function over the bytes that libFuzzer makes up;
// it aborts when a check fails.
#ifndef FUZZ_FUZZ_H
#define FUZZ_FUZZ_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

// The commands and parsers print to standard output; libFuzzer itself writes to standard error.
extern "C" __attribute__((used)) inline int LLVMFuzzerInitialize(int * /*argc*/,
                                                                 char *** /*argv*/) {
    return freopen("/dev/null", "w", stdout) == nullptr ? 1 : 0;
}

inline void fuzz_require(bool holds, const char *what) {
    if (!holds) {
        fprintf(stderr, "does not hold: %s\n", what);
        abort();
    }
}

// Takes the input apart from the front; after its end all values are zero.
class fuzz_input {
public:
    fuzz_input(const uint8_t *bytes, size_t size) : bytes_(bytes), size_(size) {
    }

    template <typename number> number take() {
        number value = 0;
        const size_t count = std::min(sizeof value, size_);
        memcpy(&value, bytes_, count);
        skip(count);
        return value;
    }

    bool empty() const {
        return size_ == 0;
    }

    // The rest of the input, up to a NUL. The text is in memory of exactly its own size.
    std::unique_ptr<char[]> take_text() {
        const auto *end = static_cast<const uint8_t *>(memchr(bytes_, 0, size_));
        const size_t length = end == nullptr ? size_ : static_cast<size_t>(end - bytes_);
        auto text = std::make_unique<char[]>(length + 1);
        memcpy(text.get(), bytes_, length);
        skip(size_);
        return text;
    }

    // The rest of the input with every byte, in memory of exactly its own size, without a NUL.
    std::unique_ptr<char[]> take_rest(size_t *size) {
        *size = size_;
        auto rest = std::make_unique<char[]>(size_);
        memcpy(rest.get(), bytes_, size_);
        skip(size_);
        return rest;
    }

private:
    void skip(size_t count) {
        bytes_ += count;
        size_ -= count;
    }

    const uint8_t *bytes_;
    size_t size_;
};

#endif
