#include "host/text.h"

#include "host/hex.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace {

constexpr uint32_t FIRST_STAND_IN = 0xEF80;
constexpr uint32_t LAST_STAND_IN = 0xEFFF;
constexpr uint32_t BYTE_BASE = FIRST_STAND_IN - 0x80;

struct character {
    size_t length = 0; // bytes, 0 for none that is well-formed
    uint32_t code = 0;
};

// The character at the start of the text, which is not empty.
character first_character(std::string_view text) {
    const auto lead = static_cast<uint8_t>(text[0]);
    if (lead < 0x80) {
        return {1, lead};
    }
    // The least code of each length: a smaller one has a shorter form and is not well-formed.
    constexpr uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto length = static_cast<size_t>(std::countl_one(lead));
    if (length < 2 || length >= std::size(least) || text.size() < length) {
        return {};
    }
    uint32_t code = lead & (0x7FU >> length);
    for (const char next : text.substr(1, length - 1)) {
        if ((next & 0xC0) != 0x80) {
            return {};
        }
        code = code << 6 | (next & 0x3F);
    }
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    return code < least[length] || surrogate || code > 0x10FFFF ? character{}
                                                                : character{length, code};
}

// Visit the characters with their bytes, a byte that begins none by itself.
template <typename Visit> void each_character(std::string_view text, Visit visit) {
    while (!text.empty()) {
        const character first = first_character(text);
        const size_t taken = std::max<size_t>(first.length, 1);
        visit(first, text.substr(0, taken));
        text.remove_prefix(taken);
    }
}

bool is_stand_in(uint32_t code) {
    return code >= FIRST_STAND_IN && code <= LAST_STAND_IN;
}

void append_stand_in(std::string &text, uint8_t byte) {
    const uint32_t code = BYTE_BASE + byte;
    text += static_cast<char>(0xE0 | code >> 12);
    text += static_cast<char>(0x80 | (code >> 6 & 0x3F));
    text += static_cast<char>(0x80 | (code & 0x3F));
}

} // namespace

std::string bytes_to_utf8(std::string_view bytes) {
    std::string text;
    each_character(bytes, [&](const character &read, std::string_view piece) {
        if (read.length != 0 && !is_stand_in(read.code)) {
            text += piece;
            return;
        }
        for (const char byte : piece) {
            append_stand_in(text, static_cast<uint8_t>(byte));
        }
    });
    return text;
}

std::string bytes_from_utf8(std::string_view text) {
    std::string bytes;
    each_character(text, [&](const character &read, std::string_view piece) {
        if (is_stand_in(read.code)) {
            bytes += static_cast<char>(read.code - BYTE_BASE);
        } else {
            bytes += piece;
        }
    });
    return bytes;
}

void append_quoted(std::string &json, std::string_view utf8) {
    json += '"';
    for (const char character : utf8) {
        const auto byte = static_cast<uint8_t>(character);
        if (byte >= 0x20 && byte != 0x7F && byte != '"' && byte != '\\') {
            json += character;
            continue;
        }
        const size_t short_form = std::string_view("\b\f\n\r\t\"\\").find(character);
        json += '\\';
        if (short_form != std::string_view::npos) {
            json += "bfnrt\"\\"[short_form];
        } else {
            json += "u00";
            append_hex_byte(json, byte);
        }
    }
    json += '"';
}
