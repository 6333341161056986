// The argument parsers, each against another reading of the same rule. The first byte chooses the
// parser.
#include "frontend/hmx_cmd.h"
#include "fuzz/fuzz.h"
#include "infra/utils/kxstrings.h"

#include <cctype>
#include <string_view>
#include <vector>

#include <arpa/inet.h>

namespace {

constexpr size_t SCANNED = 239; // characters that the scanners look at

bool is_space(char byte) {
    return isspace(static_cast<unsigned char>(byte)) != 0;
}

std::string_view without_leading_space(std::string_view text) {
    while (!text.empty() && is_space(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

std::string_view first_word(std::string_view text) {
    const auto *end = std::find_if(text.begin(), text.end(), is_space);
    return text.substr(0, static_cast<size_t>(end - text.begin()));
}

uint32_t number_of(const std::string &text) {
    const char *start = text.c_str();
    char *end = nullptr;
    const std::string_view body = without_leading_space(text);
    const bool negative = body.starts_with('-');
    const size_t sign = negative || body.starts_with('+') ? 1 : 0;
    // The sign is taken off, so 64 bits hold every magnitude that matters. A second sign is an
    // error.
    start = text.c_str() + (text.size() - body.size()) + sign;
    if (isdigit(static_cast<unsigned char>(*start)) == 0) {
        return 0;
    }
    const unsigned long long magnitude = strtoull(start, &end, 0);
    if (magnitude > UINT32_MAX) {
        return UINT32_MAX;
    }
    return negative ? 0U - static_cast<uint32_t>(magnitude) : static_cast<uint32_t>(magnitude);
}

void check_number(const char *text) {
    fuzz_require(kx_parse_number(text) == number_of(text), "number");
}

// The C library accepts no leading zeros, so they are taken off the fields.
void check_ip(const char *text) {
    const std::string_view word = first_word(without_leading_space(text));
    std::string plain;
    for (size_t i = 0; i < word.size(); i++) {
        const bool starts_field = i == 0 || word[i - 1] == '.';
        const bool digit_follows =
            i + 1 < word.size() && isdigit(static_cast<unsigned char>(word[i + 1])) != 0;
        const bool dropped_before = !plain.empty() ? plain.back() == '.' : true;
        if (word[i] == '0' && digit_follows && (starts_field || dropped_before)) {
            continue;
        }
        plain += word[i];
    }
    in_addr expected{0x01020304};
    const bool valid = inet_pton(AF_INET, plain.c_str(), &expected) == 1;
    uint32_t address = 0x01020304;
    fuzz_require(kx_parse_ip_address(&address, text) == (valid ? 0 : -1), "IPv4 verdict");
    fuzz_require(address == (valid ? expected.s_addr : 0x01020304), "IPv4 address");
}

void check_mac(const char *text) {
    uint8_t mac[6];
    memset(mac, 0xee, sizeof mac);
    if (kx_parse_mac_address(mac, text) != 0) {
        for (const uint8_t byte : mac) {
            fuzz_require(byte == 0xee, "a failure leaves the address alone");
        }
        return;
    }
    // All digits of the text, in order, are the address.
    std::string digits;
    for (const char byte : first_word(without_leading_space(text))) {
        if (isxdigit(static_cast<unsigned char>(byte)) != 0) {
            digits += static_cast<char>(tolower(byte));
        }
    }
    char shown[32];
    snprintf(shown, sizeof shown, "%02x%02x%02x%02x%02x%02x", mac[0], mac[1], mac[2], mac[3],
             mac[4], mac[5]);
    digits.insert(0, digits.size() == 11 ? 1 : 0, '0');
    fuzz_require(digits == shown, "MAC address");
}

std::vector<std::string> scanned_words(const std::string &text) {
    std::vector<std::string> words;
    std::string word;
    for (const char byte : text.substr(0, SCANNED) + " ") {
        if (byte != ' ') {
            word += byte;
        } else if (!word.empty()) {
            words.push_back(word);
            word.clear();
        }
    }
    return words;
}

void check_scanners(const char *text) {
    int32_t ltl = -1;
    int32_t cookie = -1;
    bool cookie_follows = false;
    for (const std::string &word : scanned_words(text)) {
        ltl = ltl != 0 ? static_cast<int32_t>(number_of(word)) : ltl;
        ltl = word.starts_with("ltl") ? 1 : ltl;
        cookie = cookie_follows ? static_cast<int32_t>(number_of(word)) : cookie;
        cookie_follows = cookie_follows || word.starts_with("cookie");
    }
    fuzz_require(kx_get_ltl_from_args(text) == ltl, "LTL");
    fuzz_require(kx_get_ltl_cookie_frm_args(text) == cookie, "cookie");
}

void check_words(const char *text, uint8_t room) {
    const size_t size = room + 1U;
    const auto work = std::make_unique<char[]>(size);
    const auto copy = std::make_unique<char[]>(size);
    char *words[4];
    const int count = kx_split_words(work.get(), size, text, words, 4);
    for (int i = 0; i < count; i++) {
        fuzz_require(words[i] >= work.get() && words[i] < work.get() + size, "word in its buffer");
        fuzz_require(strchr(words[i], ' ') == nullptr, "word without a blank");
    }
    strncpy_until_space(copy.get(), size, text);
    fuzz_require(copy.get() == first_word(text).substr(0, room), "first word");
    for (const char *word = text; word != nullptr; word = kx_find_next_arg(word)) {
        stris(word, "cookie");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    fuzz_input input(bytes, size);
    const auto choice = input.take<uint8_t>();
    const std::unique_ptr<char[]> text = input.take_text();
    kx_debug_print_kxstrings = (choice & 0x80) != 0 ? 0xff : 0x87;
    switch (choice & 7) {
    case 0:
        check_number(text.get());
        break;
    case 1:
        check_ip(text.get());
        break;
    case 2:
        check_mac(text.get());
        break;
    case 3:
        check_scanners(text.get());
        break;
    default:
        check_words(text.get(), static_cast<uint8_t>(choice & 0x7f));
        break;
    }
    return 0;
}
