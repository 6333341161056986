#include "host/value.h"

#include "host/hex.h"
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

bool within(const std::vector<uint32_t> &numbers, size_t at, uint32_t least, uint32_t most) {
    return at < numbers.size() && numbers[at] >= least && numbers[at] <= most;
}

// The index behind the printed name of the three kinds of interface that ports have, 0 for none.
uint32_t interface_index(const std::string &name) {
    if (const auto veth = match(name, "Veth#"); within(veth, 0, 1, 1U << 20)) {
        return 28U << 24 | (veth[0] - 1) << 4;
    }
    if (const auto eth = match(name, "Eth#/#"); within(eth, 0, 3, 515) && within(eth, 1, 1, 256)) {
        return 37U << 24 | (eth[0] - 1) << 14 | (eth[1] - 1) << 6;
    }
    if (const auto channel = match(name, "Po#"); within(channel, 0, 1, 4096)) {
        return 22U << 24 | (channel[0] - 1);
    }
    return 0;
}

// The name of such an interface, empty for an index that has none.
std::string interface_name(uint32_t index) {
    const uint32_t in_type = index & 0xFFFFFF;
    std::string name;
    switch (index >> 24) {
    case 28:
        name = "Veth" + std::to_string((in_type >> 4) + 1);
        break;
    case 37:
        name = "Eth" + std::to_string((in_type >> 14) + 1) + "/" +
               std::to_string((in_type >> 6 & 0xFF) + 1);
        break;
    case 22:
        name = "Po" + std::to_string(in_type + 1);
        break;
    default:
        break;
    }
    return interface_index(name) == index ? name : "";
}

std::string range_expected(const key &row) {
    return "expected a number from " + std::to_string(row.least) + " to " +
           std::to_string(row.most);
}

bool in_range(const key &row, uint64_t number) {
    return number >= row.least && number <= row.most;
}

// A number of the row's range; its words are not looked at.
std::string read_number(const key &row, const json_value &given, uint64_t &number) {
    std::optional<uint64_t> found;
    if (given.type == json_value::kind::number) {
        found = given.number;
    } else if (given.type == json_value::kind::text) {
        found = number_in(given.text);
    }
    if (!found || !in_range(row, *found)) {
        return range_expected(row);
    }
    number = *found;
    return "";
}

std::string read_flag(const key &row, const json_value &given, uint64_t &number) {
    if (given.type == json_value::kind::boolean) {
        number = given.boolean ? 1 : 0;
        return "";
    }
    const bool other = given.type == json_value::kind::number && given.number > 1;
    if (!other || !in_range(row, given.number)) {
        return "expected true or false";
    }
    number = given.number;
    return "";
}

std::string words_expected(const key &row) {
    std::string words;
    for (const key_word &word : row.words) {
        words += std::string(" \"") + word.name + "\",";
    }
    return "expected one of" + words + " or a number";
}

std::string read_word(const key &row, const json_value &given, uint64_t &number) {
    if (given.type == json_value::kind::number) {
        return read_number(row, given, number);
    }
    for (const key_word &word : row.words) {
        if (given.type == json_value::kind::text && given.text == word.name) {
            number = word.number;
            return "";
        }
    }
    // Where people use a number and a word for none, the number may be a text as well.
    if (given.type == json_value::kind::text && read_number(row, given, number).empty()) {
        return "";
    }
    return words_expected(row);
}

std::string read_words(const key &row, const json_value &given, uint64_t &number) {
    if (given.type != json_value::kind::list) {
        return read_number(row, given, number).empty() ? "" : words_expected(row);
    }
    number = 0;
    for (const json_value &item : given.items) {
        uint64_t bits = 0;
        if (std::string expected = read_word(row, item, bits); !expected.empty()) {
            return expected;
        }
        number |= bits;
    }
    return "";
}

std::string read_text(const key &row, const json_value &given, std::string &bytes) {
    if (given.type != json_value::kind::text) {
        return "expected a text";
    }
    bytes = bytes_from_utf8(given.text);
    if (bytes.size() > row.most) {
        return "expected at most " + std::to_string(row.most) + " bytes";
    }
    return bytes.find('\0') == std::string::npos ? "" : "expected a text without a NUL";
}

std::string read_hex(const json_value &given, std::string &bytes) {
    const auto parsed =
        given.type == json_value::kind::text ? bytes_from_hex(given.text) : std::nullopt;
    if (!parsed) {
        return "expected bytes in hexadecimal";
    }
    bytes.assign(parsed->begin(), parsed->end());
    return "";
}

std::string read_mac(const json_value &given, std::string &bytes) {
    constexpr size_t MAC_BYTES = 6;
    const std::vector<uint32_t> parts = match(given.text, "@:@:@:@:@:@");
    bytes.clear();
    for (size_t i = 0; i < MAC_BYTES; i++) {
        if (given.type != json_value::kind::text || !within(parts, i, 0, UINT8_MAX)) {
            return "expected a MAC address such as \"00:50:56:aa:bb:cc\"";
        }
        bytes += static_cast<char>(parts[i]);
    }
    return "";
}

std::string read_ipv4(const json_value &given, uint64_t &number) {
    uint32_t address = 0;
    if (given.type != json_value::kind::text ||
        inet_pton(AF_INET, given.text.c_str(), &address) != 1) {
        return "expected an IPv4 address";
    }
    number = address;
    return "";
}

std::string read_ipv6(const json_value &given, std::string &bytes) {
    char address[sizeof(in6_addr)];
    if (given.type != json_value::kind::text ||
        inet_pton(AF_INET6, given.text.c_str(), address) != 1) {
        return "expected an IPv6 address";
    }
    bytes.assign(address, sizeof address);
    return "";
}

std::string read_interface(const key &row, const json_value &given, uint64_t &number) {
    if (given.type == json_value::kind::text) {
        number = interface_index(given.text);
        if (number != 0) {
            return "";
        }
        if (!number_in(given.text)) {
            return "expected an interface such as \"Veth3\", \"Eth4/1\", \"Po1\" or a number";
        }
    }
    return read_number(row, given, number);
}

// "1,10-20"
std::string read_ranges(const key &row, std::string_view text, std::vector<uint32_t> &numbers) {
    std::string expected = "expected numbers from " + std::to_string(row.least) + " to " +
                           std::to_string(row.most) + " such as \"1,10-20\"";
    while (!text.empty()) {
        const size_t comma = std::min(text.find(','), text.size());
        const std::string_view piece = text.substr(0, comma);
        text.remove_prefix(std::min(comma + 1, text.size()));
        const std::vector<uint32_t> single = match(piece, "#");
        const std::vector<uint32_t> range = single.empty() ? match(piece, "#-#") : single;
        if (range.empty() || range.front() > range.back() || !in_range(row, range.front()) ||
            !in_range(row, range.back())) {
            return expected;
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

std::string read_numbers(const key &row, const json_value &given, std::vector<uint32_t> &numbers) {
    std::string wrong;
    if (given.type == json_value::kind::list) {
        for (const json_value &item : given.items) {
            uint64_t number = 0;
            if (wrong = read_number(row, item, number); !wrong.empty()) {
                return wrong;
            }
            numbers.push_back(static_cast<uint32_t>(number));
        }
    } else if (given.type == json_value::kind::text) {
        wrong = read_ranges(row, given.text, numbers);
    } else {
        wrong = "expected numbers from " + std::to_string(row.least) + " to " +
                std::to_string(row.most) + " such as \"1,10-20\"";
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

void append_word(std::string &text, const key &row, uint64_t number) {
    for (const key_word &word : row.words) {
        if (word.number == number) {
            append_quoted(text, word.name);
            return;
        }
    }
    append_number(text, number);
}

// The words of a number's bits, then the bits without a word as one number.
void append_words(std::string &text, const key &row, uint64_t number, size_t indent) {
    const json_lines lines = open_lines(text, '[', indent);
    for (const key_word &word : row.words) {
        if ((number & word.number) == word.number) {
            begin_line(text, lines);
            append_quoted(text, word.name);
            number &= ~uint64_t{word.number};
        }
    }
    if (number != 0) {
        begin_line(text, lines);
        append_number(text, number);
    }
    close_lines(text, ']', lines);
}

void append_numbers(std::string &text, const std::vector<uint32_t> &numbers, size_t indent) {
    const json_lines lines = open_lines(text, '[', indent);
    for (const uint32_t number : numbers) {
        begin_line(text, lines);
        append_number(text, number);
    }
    close_lines(text, ']', lines);
}

void append_mac(std::string &text, const std::string &bytes) {
    constexpr char digits[] = "0123456789abcdef";
    const char *separator = "";
    text += '"';
    for (const char byte : bytes) {
        text += separator;
        text += digits[static_cast<uint8_t>(byte) >> 4];
        text += digits[byte & 15];
        separator = ":";
    }
    text += '"';
}

void append_address(std::string &text, int family, const void *address) {
    char printed[INET6_ADDRSTRLEN] = "";
    inet_ntop(family, address, printed, sizeof printed);
    append_quoted(text, printed);
}

std::string hex_text(const std::string &bytes) {
    return bytes_to_hex({reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size()});
}

} // namespace

std::string read_value(const key &row, const json_value &given, key_value &value) {
    value = {};
    if (given.type == json_value::kind::null && row.refusable) {
        value.is = key_value::state::refused;
        return "";
    }
    switch (row.type) {
    case key_type::number:
    case key_type::counters:
        return read_number(row, given, value.number);
    case key_type::flag:
        return read_flag(row, given, value.number);
    case key_type::word:
        return read_word(row, given, value.number);
    case key_type::words:
        return read_words(row, given, value.number);
    case key_type::text:
        return read_text(row, given, value.bytes);
    case key_type::hex:
        return read_hex(given, value.bytes);
    case key_type::mac:
        return read_mac(given, value.bytes);
    case key_type::ipv4:
        return read_ipv4(given, value.number);
    case key_type::ipv6:
        return read_ipv6(given, value.bytes);
    case key_type::interface:
        return read_interface(row, given, value.number);
    case key_type::numbers:
        return read_numbers(row, given, value.numbers);
    default:
        return "is no value";
    }
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
    case key_type::mac:
    case key_type::ipv6:
        return true;
    case key_type::numbers:
        return std::all_of(value.numbers.begin(), value.numbers.end(),
                           [&](uint32_t number) { return in_range(row, number); });
    default:
        return in_range(row, value.number);
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

void append_value(std::string &text, const key &row, const key_value &value, size_t indent) {
    if (value.is != key_value::state::told) {
        text += "null";
        return;
    }
    switch (row.type) {
    case key_type::flag:
        if (value.number <= 1) {
            text += value.number == 1 ? "true" : "false";
            return;
        }
        break;
    case key_type::word:
        return append_word(text, row, value.number);
    case key_type::words:
        return append_words(text, row, value.number, indent);
    case key_type::text:
        return append_quoted(text, bytes_to_utf8(value.bytes));
    case key_type::hex:
        return append_quoted(text, hex_text(value.bytes));
    case key_type::mac:
        return append_mac(text, value.bytes);
    case key_type::ipv4: {
        const auto address = static_cast<uint32_t>(value.number);
        return append_address(text, AF_INET, &address);
    }
    case key_type::ipv6:
        return append_address(text, AF_INET6, value.bytes.data());
    case key_type::interface: {
        const std::string name = interface_name(static_cast<uint32_t>(value.number));
        if (!name.empty()) {
            return append_quoted(text, name);
        }
        break;
    }
    case key_type::numbers:
        return append_numbers(text, value.numbers, indent);
    default:
        break;
    }
    append_number(text, value.number);
}

std::string value_text(const key &row, const key_value &value) {
    std::string text;
    append_value(text, row, value, 0);
    return text;
}
