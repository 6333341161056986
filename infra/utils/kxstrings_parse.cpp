#include "infra/utils/kxstrings.h"

#include "frontend/output_sink.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// A shorter text is no IPv4 or MAC address.
constexpr size_t SHORTEST_ADDRESS = 5;

// A MAC address as text, and the working copy, which has room for what follows the address.
constexpr size_t MAC_TEXT_LENGTH = 17;
constexpr size_t MAC_COPY_SIZE = 21;

constexpr size_t IPV6_SIZE = 16;
constexpr size_t IPV6_GROUP_DIGITS = 4;

constexpr size_t SCAN_BUFFER_SIZE = 240;
constexpr int SCAN_MAX_WORDS = SCAN_BUFFER_SIZE / 2;

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

bool is_hex_digit(char c) {
    return isxdigit(static_cast<unsigned char>(c)) != 0;
}

bool ends_argument(char c) {
    return c == '\0' || kx_is_space(c);
}

unsigned hex_value(char c) {
    return static_cast<unsigned>(is_digit(c) ? c - '0' : (c | 0x20) - 'a' + 10);
}

const char *skip_space(const char *text) {
    while (kx_is_space(*text)) {
        ++text;
    }
    return text;
}

// Read four decimal fields joined by ".", each at most 255. Returns the first character after
// them, or NULL.
const char *read_dotted(uint8_t bytes[4], const char *text, bool leading_zeros) {
    for (int field = 0; field < 4; ++field) {
        if (field > 0 && *text++ != '.') {
            return nullptr;
        }
        if (!is_digit(*text) || (!leading_zeros && *text == '0' && is_digit(text[1]))) {
            return nullptr;
        }
        unsigned value = 0;
        for (; is_digit(*text); ++text) {
            value = value * 10 + hex_value(*text);
            if (value > UINT8_MAX) {
                return nullptr;
            }
        }
        bytes[field] = static_cast<uint8_t>(value);
    }
    return text;
}

// Copy a MAC text into the working copy, and add the missing digit of its first byte. Returns -1
// when a word continues after the end of the longest form.
int kx_get_adjusted_mac_string(char copy[MAC_COPY_SIZE], const char *text) {
    if (is_hex_digit(text[0]) && text[1] == ':') {
        snprintf(copy, MAC_COPY_SIZE, "0%.19s", text);
        kx_trace(kx_debug_print_kxstrings, KX_DEBUG_DETAIL, "Adjusted MAC String from %s to %s\n",
                 text, copy);
    } else {
        snprintf(copy, MAC_COPY_SIZE, "%.20s", text);
        kx_trace(kx_debug_print_kxstrings, KX_DEBUG_TRACE,
                 "No adjustment in MAC String needed %s\n", copy);
    }
    // Deliberately at the same place for the shorter dotted form. There, a second word must be
    // short.
    if (strlen(copy) > MAC_TEXT_LENGTH && !kx_is_space(copy[MAC_TEXT_LENGTH])) {
        kx_trace(kx_debug_print_kxstrings, KX_DEBUG_COMPLAINT,
                 "%s: Mac[%s] parsed has extra characters\n", __func__, text);
        return -1;
    }
    return 0;
}

// Read six bytes of two hexadecimal digits, with one of two separators between groups of
// `group_bytes` bytes.
int read_mac_groups(uint8_t mac[6], const char *text, size_t group_bytes, char separator,
                    char other_separator) {
    uint8_t bytes[6];
    for (size_t i = 0; i < sizeof bytes; ++i) {
        if (i > 0 && i % group_bytes == 0) {
            if (*text != separator && *text != other_separator) {
                return -1;
            }
            ++text;
        }
        if (!is_hex_digit(text[0]) || !is_hex_digit(text[1])) {
            return -1;
        }
        bytes[i] = static_cast<uint8_t>(hex_value(text[0]) << 4 | hex_value(text[1]));
        text += 2;
    }
    if (!ends_argument(*text)) {
        return -1;
    }
    memcpy(mac, bytes, sizeof bytes);
    return 0;
}

// A word that is read as 0 must be a 0: "08" and "0x" are typing errors.
bool is_number(const char *word) {
    char *end = nullptr;
    const bool is_zero = strtoul(word, &end, 0) == 0;
    return is_digit(word[word[0] == '+' ? 1 : 0]) && (!is_zero || *end == '\0');
}

struct scanned_ltl {
    int32_t ltl;
    bool typed; // it is the number of a word
};

// Deliberately, the result is also the flag that lets the next word count. "ltl 12 extra" gives 0:
// a word that is not a number makes the result 0, and no later word is read.
scanned_ltl scan_ltl(const char *text) {
    char work[SCAN_BUFFER_SIZE];
    char *words[SCAN_MAX_WORDS];
    const int count = kx_split_words(work, sizeof work, text, words, SCAN_MAX_WORDS);
    scanned_ltl found = {-1, false};
    for (int i = 0; i < count; ++i) {
        if (found.ltl != 0) {
            found = {static_cast<int32_t>(kx_parse_number(words[i])), is_number(words[i])};
        }
        if (kx_begins_with(words[i], "ltl")) {
            found = {1, false};
        }
    }
    return found;
}

} // namespace

uint32_t kx_parse_number(const char *text) {
    static_assert(sizeof(unsigned long) == sizeof(uint32_t));
    return text == nullptr ? 0 : strtoul(text, nullptr, 0);
}

int kx_parse_ip_address(uint32_t *address, const char *text) {
    if (text == nullptr) {
        return -1;
    }
    text = skip_space(text);
    if (strlen(text) < SHORTEST_ADDRESS) {
        return -1;
    }
    uint8_t bytes[4];
    const char *const end = read_dotted(bytes, text, true);
    if (end == nullptr || !ends_argument(*end)) {
        return -1;
    }
    memcpy(address, bytes, sizeof bytes);
    return 0;
}

int kx_parse_ipv6_address(uint8_t address[16], const char *text) {
    if (text == nullptr || (text[0] == ':' && text[1] != ':')) {
        return -1;
    }
    if (text[0] == ':') {
        ++text;
    }
    uint8_t bytes[IPV6_SIZE];
    size_t filled = 0;
    bool has_gap = false;
    size_t gap = 0; // bytes before the "::"
    while (*text != '\0') {
        if (*text == ':') { // the second one of "::"
            if (has_gap) {
                return -1;
            }
            has_gap = true;
            gap = filled;
            ++text;
            continue;
        }
        unsigned group = 0;
        size_t digits = 0;
        for (; digits < IPV6_GROUP_DIGITS && is_hex_digit(text[digits]); ++digits) {
            group = group << 4 | hex_value(text[digits]);
        }
        if (text[digits] == '.' && filled + 4 <= IPV6_SIZE) {
            text = read_dotted(bytes + filled, text, false);
            if (text == nullptr || *text != '\0') {
                return -1;
            }
            filled += 4;
            break;
        }
        if (digits == 0 || filled + 2 > IPV6_SIZE) {
            return -1;
        }
        bytes[filled++] = static_cast<uint8_t>(group >> 8);
        bytes[filled++] = static_cast<uint8_t>(group);
        text += digits;
        if (text[0] == ':' && text[1] != '\0') {
            ++text;
        } else if (text[0] != '\0') {
            return -1;
        }
    }
    // A gap stands for at least one group.
    if (has_gap == (filled == IPV6_SIZE)) {
        return -1;
    }
    const size_t before = has_gap ? gap : filled;
    const size_t behind = filled - before;
    memset(address, 0, IPV6_SIZE);
    memcpy(address, bytes, before);
    memcpy(address + IPV6_SIZE - behind, bytes + before, behind);
    return 0;
}

int kx_parse_mac_address(uint8_t mac[6], const char *text) {
    if (text == nullptr) {
        return -1;
    }
    text = skip_space(text);
    if (strlen(text) < SHORTEST_ADDRESS) {
        return -1;
    }
    char copy[MAC_COPY_SIZE];
    if (kx_get_adjusted_mac_string(copy, text) != 0) {
        return -1;
    }
    if (copy[2] == ':' || copy[2] == '-') {
        return read_mac_groups(mac, copy, 1, ':', '-');
    }
    if (copy[4] == '.' || copy[4] == '-') {
        return read_mac_groups(mac, copy, 2, '.', '-');
    }
    kx_trace(kx_debug_print_kxstrings, KX_DEBUG_COMPLAINT, "Couldn't parse MAC address %s\n", text);
    return -1;
}

int32_t kx_get_ltl_from_args(const char *text) {
    return scan_ltl(text).ltl;
}

bool kx_get_typed_ltl(const char *text, uint32_t *ltl) {
    const scanned_ltl found = scan_ltl(text);
    *ltl = static_cast<uint32_t>(found.ltl);
    return found.typed;
}

int32_t kx_get_ltl_cookie_frm_args(const char *text) {
    char work[SCAN_BUFFER_SIZE];
    char *words[SCAN_MAX_WORDS];
    const int count = kx_split_words(work, sizeof work, text, words, SCAN_MAX_WORDS);
    int32_t cookie = -1;
    bool behind_keyword = false;
    for (int i = 0; i < count; ++i) {
        if (behind_keyword) {
            cookie = static_cast<int32_t>(kx_parse_number(words[i]));
        }
        if (strncmp(words[i], "cookie", strlen("cookie")) == 0) {
            behind_keyword = true;
        }
    }
    return cookie;
}
