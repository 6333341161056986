#include "host/hex.h"

#include <charconv>
#include <cstddef>

namespace {

constexpr size_t SHORTEST_RUN = 8;

// One piece between commas; false when it is malformed.
bool append_piece(std::vector<uint8_t> &bytes, std::string_view piece) {
    size_t repeat = 1;
    const size_t star = piece.find('*');
    if (star != std::string_view::npos) {
        const char *first = piece.data() + star + 1;
        const char *last = piece.data() + piece.size();
        const auto [end, error] = std::from_chars(first, last, repeat);
        if (error != std::errc{} || end != last || repeat > HEX_LIMIT || star != 2) {
            return false;
        }
        piece = piece.substr(0, star);
    }
    if (piece.empty() || piece.size() % 2 != 0) {
        return false;
    }
    for (size_t at = 0; at < piece.size(); at += 2) {
        uint8_t byte = 0;
        const char *last = piece.data() + at + 2;
        const auto [end, error] = std::from_chars(piece.data() + at, last, byte, 16);
        if (error != std::errc{} || end != last) {
            return false;
        }
        bytes.insert(bytes.end(), repeat, byte);
    }
    return bytes.size() <= HEX_LIMIT;
}

} // namespace

void append_hex_byte(std::string &text, uint8_t byte) {
    constexpr char digits[] = "0123456789abcdef";
    text += digits[byte >> 4];
    text += digits[byte & 15];
}

std::string bytes_to_hex(std::span<const uint8_t> bytes) {
    std::string text;
    bool after_run = false;
    for (size_t at = 0; at < bytes.size();) {
        size_t run = 1;
        while (at + run < bytes.size() && bytes[at + run] == bytes[at]) {
            run++;
        }
        const bool shortened = run >= SHORTEST_RUN;
        if (!text.empty() && (shortened || after_run)) {
            text += ',';
        }
        if (shortened) {
            append_hex_byte(text, bytes[at]);
            text += '*' + std::to_string(run);
        } else {
            for (size_t i = 0; i < run; i++) {
                append_hex_byte(text, bytes[at]);
            }
        }
        after_run = shortened;
        at += run;
    }
    return text;
}

std::optional<std::vector<uint8_t>> bytes_from_hex(std::string_view text) {
    std::vector<uint8_t> bytes;
    while (!text.empty()) {
        const size_t comma = text.find(',');
        if (!append_piece(bytes, text.substr(0, comma))) {
            return std::nullopt;
        }
        if (comma == std::string_view::npos) {
            return bytes;
        }
        text.remove_prefix(comma + 1);
        if (text.empty()) {
            return std::nullopt;
        }
    }
    return bytes;
}
