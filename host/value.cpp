#include "host/value.h"

#include "host/hex.h"
#include "host/interface.h"
#include "host/text.h"

#include <arpa/inet.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <optional>
#include <string_view>

namespace {

constexpr uint32_t LONGEST_RANGE = 65536;
constexpr size_t MAC_BYTES = 6;

// --- Numbers and words ---

// A whole text as a number in C notation.
std::optional<uint64_t> number_in(const std::string &text) {
    if (text.empty() || text[0] < '0' || text[0] > '9') {
        return std::nullopt;
    }
    char *end = nullptr;
    errno = 0;
    const unsigned long long value = std::strtoull(text.c_str(), &end, 0);
    if (end != text.c_str() + text.size() || errno != 0) {
        return std::nullopt;
    }
    return value;
}

bool in_range(const key &row, uint64_t number) {
    return number >= row.least && number <= row.most;
}

// A number of the row's range; its words are not looked at.
std::string read_one(const key &row, const json_value &given, uint64_t &number) {
    const std::optional<uint64_t> found = given.type == json_value::kind::number
                                              ? std::optional(given.number)
                                              : number_in(given.text);
    if (!found || !in_range(row, *found)) {
        return "expected a number from " + range_of(row);
    }
    number = *found;
    return "";
}

std::string read_number(const key &row, const json_value &given, key_value &value) {
    return read_one(row, given, value.number);
}

void append_told_number(std::string &text, const key &, const key_value &value) {
    append_number(text, value.number);
}

std::string read_flag(const key &row, const json_value &given, key_value &value) {
    if (given.type == json_value::kind::boolean) {
        value.number = given.boolean ? 1 : 0;
        return "";
    }
    const bool other = given.type == json_value::kind::number && given.number > 1;
    if (!other || !in_range(row, given.number)) {
        return "expected true or false";
    }
    value.number = given.number;
    return "";
}

void append_flag(std::string &text, const key &, const key_value &value) {
    if (value.number <= 1) {
        text += value.number == 1 ? "true" : "false";
    } else {
        append_number(text, value.number);
    }
}

std::string words_expected(const key &row) {
    std::string words;
    for (const key_word &word : row.words) {
        words += std::string(" \"") + word.name + "\",";
    }
    return "expected one of" + words + " or a number";
}

std::string read_word(const key &row, const json_value &given, key_value &value) {
    if (given.type == json_value::kind::number) {
        return read_number(row, given, value);
    }
    for (const key_word &word : row.words) {
        if (given.text == word.name) {
            value.number = word.number;
            return "";
        }
    }
    // Where people use a number and a word for none, the number may be a text as well.
    return read_number(row, given, value).empty() ? "" : words_expected(row);
}

std::string read_words(const key &row, const json_value &given, key_value &value) {
    if (given.type != json_value::kind::list) {
        return read_number(row, given, value).empty() ? "" : words_expected(row);
    }
    for (const json_value &item : given.items) {
        key_value bits;
        if (std::string expected = read_word(row, item, bits); !expected.empty()) {
            return expected;
        }
        value.number |= bits.number;
    }
    return "";
}

void append_word(std::string &text, const key &row, const key_value &value) {
    for (const key_word &word : row.words) {
        if (word.number == value.number) {
            append_quoted(text, word.name);
            return;
        }
    }
    append_number(text, value.number);
}

// A list of values stands on one line: append_item(item) appends one of them.
template <typename List, typename Append>
void append_list(std::string &text, const List &list, Append append_item) {
    const char *separator = "";
    text += '[';
    for (const auto &item : list) {
        text += separator;
        append_item(item);
        separator = ", ";
    }
    text += ']';
}

// The words of a number's bits, then the bits without a word as one number.
void append_words(std::string &text, const key &row, const key_value &value) {
    std::vector<std::string> bits;
    uint64_t left = value.number;
    for (const key_word &word : row.words) {
        if ((left & word.number) == word.number) {
            append_quoted(bits.emplace_back(), word.name);
            left &= ~uint64_t{word.number};
        }
    }
    if (left != 0) {
        bits.push_back(std::to_string(left));
    }
    append_list(text, bits, [&](const std::string &bit) { text += bit; });
}

// --- Texts and bytes ---

std::string read_text(const key &row, const json_value &given, key_value &value) {
    if (given.type != json_value::kind::text) {
        return "expected a text";
    }
    value.bytes = bytes_from_utf8(given.text);
    if (value.bytes.size() > row.most) {
        return "expected at most " + std::to_string(row.most) + " bytes";
    }
    return is_sayable(row, value) ? "" : "expected a text without a NUL";
}

std::string read_texts(const key &, const json_value &given, key_value &value) {
    for (const json_value &item : given.items) {
        if (item.type == json_value::kind::text) {
            value.texts.push_back(bytes_from_utf8(item.text));
        }
    }
    const bool right =
        given.type == json_value::kind::list && value.texts.size() == given.items.size();
    return right ? "" : "expected a list of texts";
}

void append_text(std::string &text, const key &, const key_value &value) {
    append_quoted(text, bytes_to_utf8(value.bytes));
}

void append_texts(std::string &text, const key &, const key_value &value) {
    append_list(text, value.texts,
                [&](const std::string &item) { append_quoted(text, bytes_to_utf8(item)); });
}

std::string read_hex(const key &, const json_value &given, key_value &value) {
    const auto parsed =
        given.type == json_value::kind::text ? bytes_from_hex(given.text) : std::nullopt;
    if (!parsed) {
        return "expected bytes in hexadecimal";
    }
    value.bytes.assign(parsed->begin(), parsed->end());
    return "";
}

void append_hex(std::string &text, const key &, const key_value &value) {
    append_quoted(text, bytes_to_hex({reinterpret_cast<const uint8_t *>(value.bytes.data()),
                                      value.bytes.size()}));
}

// --- Addresses and interfaces ---

// Match a whole text against a pattern in which "#" stands for a decimal and "@" for a hexadecimal
// number of 32 bits. Returns the numbers, none when the text does not match.
std::vector<uint32_t> match(std::string_view text, std::string_view pattern) {
    std::vector<uint32_t> numbers;
    const char *at = text.data();
    const char *const end = at + text.size();
    for (const char expected : pattern) {
        if (expected == '#' || expected == '@') {
            uint32_t number = 0;
            const auto [rest, error] = std::from_chars(at, end, number, expected == '#' ? 10 : 16);
            if (error != std::errc{}) {
                return {};
            }
            numbers.push_back(number);
            at = rest;
        } else if (at == end || *at++ != expected) {
            return {};
        }
    }
    return at == end ? numbers : std::vector<uint32_t>();
}

std::string read_mac(const key &, const json_value &given, key_value &value) {
    const std::vector<uint32_t> parts = match(given.text, "@:@:@:@:@:@");
    if (parts.size() != MAC_BYTES || *std::max_element(parts.begin(), parts.end()) > UINT8_MAX) {
        return "expected a MAC address such as \"00:50:56:aa:bb:cc\"";
    }
    value.bytes.assign(parts.begin(), parts.end());
    return "";
}

void append_mac(std::string &text, const key &, const key_value &value) {
    char separator = '"';
    for (const char byte : value.bytes) {
        text += separator;
        append_hex_byte(text, static_cast<uint8_t>(byte));
        separator = ':';
    }
    text += '"';
}

template <int family>
std::string read_address(const json_value &given, void *address, const char *expected) {
    return inet_pton(family, given.text.c_str(), address) == 1 ? "" : expected;
}

std::string read_ipv4(const key &, const json_value &given, key_value &value) {
    uint32_t address = 0;
    std::string wrong = read_address<AF_INET>(given, &address, "expected an IPv4 address");
    value.number = address;
    return wrong;
}

std::string read_ipv6(const key &, const json_value &given, key_value &value) {
    char address[sizeof(in6_addr)] = {};
    std::string wrong = read_address<AF_INET6>(given, address, "expected an IPv6 address");
    value.bytes.assign(address, sizeof address);
    return wrong;
}

void append_address(std::string &text, int family, const void *address) {
    char printed[INET6_ADDRSTRLEN] = "";
    inet_ntop(family, address, printed, sizeof printed);
    append_quoted(text, printed);
}

void append_ipv4(std::string &text, const key &, const key_value &value) {
    const auto address = static_cast<uint32_t>(value.number);
    append_address(text, AF_INET, &address);
}

void append_ipv6(std::string &text, const key &, const key_value &value) {
    append_address(text, AF_INET6, value.bytes.data());
}

std::string read_interface(const key &row, const json_value &given, key_value &value) {
    if (given.type == json_value::kind::text && !number_in(given.text)) {
        value.number = interface_index(given.text);
        return value.number != 0
                   ? ""
                   : "expected an interface such as \"Veth3\", \"Eth4/1\", \"Po1\" or a number";
    }
    return read_number(row, given, value);
}

void append_interface(std::string &text, const key &, const key_value &value) {
    const auto index = static_cast<uint32_t>(value.number);
    const std::string name = shown_interface(index);
    if (!name.empty() && interface_index(name) == index) {
        append_quoted(text, name);
    } else {
        append_number(text, index);
    }
}

// --- Lists ---

// "1,10-20"
std::string read_ranges(const key &row, std::string_view text, std::vector<uint32_t> &numbers) {
    while (!text.empty()) {
        const size_t comma = std::min(text.find(','), text.size());
        const std::string_view piece = text.substr(0, comma);
        text.remove_prefix(std::min(comma + 1, text.size()));
        const std::vector<uint32_t> single = match(piece, "#");
        const std::vector<uint32_t> range = single.empty() ? match(piece, "#-#") : single;
        if (range.empty() || range.front() > range.back() || !in_range(row, range.front()) ||
            !in_range(row, range.back())) {
            return "expected numbers from " + range_of(row) + " such as \"1,10-20\"";
        }
        const uint32_t behind_first = range.back() - range.front();
        if (behind_first > LONGEST_RANGE) {
            return "a range of more than " + std::to_string(LONGEST_RANGE) + " numbers";
        }
        for (uint32_t count = 0; count <= behind_first; count++) {
            numbers.push_back(range.front() + count);
        }
    }
    return "";
}

std::string read_numbers(const key &row, const json_value &given, key_value &value) {
    std::vector<uint32_t> &numbers = value.numbers;
    for (const json_value &item : given.items) {
        uint64_t number = 0;
        if (std::string wrong = read_one(row, item, number); !wrong.empty()) {
            return wrong;
        }
        numbers.push_back(static_cast<uint32_t>(number));
    }
    std::string wrong;
    if (given.type != json_value::kind::list) {
        // What is no list has to be a text of ranges, and any other text is a wrong one.
        const bool is_text = given.type == json_value::kind::text;
        wrong = read_ranges(row, is_text ? std::string_view(given.text) : "-", numbers);
    }
    if (wrong.empty() && row.access.in_order && numbers.size() > row.items) {
        return "expected at most " + std::to_string(row.items) + " numbers";
    }
    if (!row.access.in_order) {
        std::sort(numbers.begin(), numbers.end());
        numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    }
    return wrong;
}

void append_numbers(std::string &text, const key &, const key_value &value) {
    append_list(text, value.numbers, [&](uint32_t number) { append_number(text, number); });
}

// What tells one type of key from the others: read() fills a fresh value and returns what was
// expected, empty when the value is right; append() writes one that is told.
struct value_form {
    std::string (*read)(const key &row, const json_value &given, key_value &value);
    void (*append)(std::string &text, const key &row, const key_value &value);
};

// In the order of key_type. Objects, lists and what is included have no values.
constexpr value_form FORMS[] = {
    {read_number, append_told_number},
    {read_flag, append_flag},
    {read_word, append_word},
    {read_words, append_words},
    {read_text, append_text},
    {read_texts, append_texts},
    {read_hex, append_hex},
    {read_mac, append_mac},
    {read_ipv4, append_ipv4},
    {read_ipv6, append_ipv6},
    {read_interface, append_interface},
    {read_numbers, append_numbers},
    {read_number, append_told_number}, // counters
};
static_assert(std::size(FORMS) == static_cast<size_t>(key_type::object));

const value_form &form_of(const key &row) {
    return FORMS[static_cast<size_t>(row.type)];
}

} // namespace

std::string range_of(const key &row) {
    return std::to_string(row.least) + " to " + std::to_string(row.most);
}

std::string read_value(const key &row, const json_value &given, key_value &value) {
    value = {};
    if (given.type == json_value::kind::null && row.refusable) {
        value.is = key_value::state::refused;
        return "";
    }
    return form_of(row).read(row, given, value);
}

bool is_sayable(const key &row, const key_value &value) {
    if (value.is != key_value::state::told) {
        return value.is == key_value::state::refused && row.refusable;
    }
    switch (row.type) {
    case key_type::text:
        return value.bytes.size() <= row.most && value.bytes.find('\0') == std::string::npos;
    case key_type::hex:
        return value.bytes.size() <= HEX_LIMIT;
    case key_type::numbers:
        return std::all_of(value.numbers.begin(), value.numbers.end(),
                           [&](uint32_t number) { return in_range(row, number); });
    default:
        return in_range(row, value.number); // 0 where the type has none
    }
}

void append_number(std::string &text, uint64_t number) {
    char digits[std::numeric_limits<uint64_t>::digits10 + 1];
    // Divisions of 64 bits are calls on the machines that this runs on.
    const auto [end, error] =
        number <= UINT32_MAX
            ? std::to_chars(digits, std::end(digits), static_cast<uint32_t>(number))
            : std::to_chars(digits, std::end(digits), number);
    text.append(digits, end);
}

void append_value(std::string &text, const key &row, const key_value &value) {
    if (value.is == key_value::state::told) {
        form_of(row).append(text, row, value);
    } else {
        text += "null";
    }
}

std::string value_text(const key &row, const key_value &value) {
    std::string text;
    append_value(text, row, value);
    return text;
}
