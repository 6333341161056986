#include "sim/object_reader.h"

#include "host/hex.h"

#include <arpa/inet.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <utility>

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
    if (*end != '\0' || errno != 0) {
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

} // namespace

object_reader::object_reader(const json_value &value, std::string path)
    : object_(value), path_(std::move(path)) {
    if (value.type != json_value::kind::object) {
        throw host_error{value.line, (path_.empty() ? "the host" : path_) + ": expected an object"};
    }
}

const json_value *object_reader::find(std::string_view key) const {
    for (const json_member &member : object_.members) {
        if (member.key == key) {
            return &member.value;
        }
    }
    return nullptr;
}

const json_value *object_reader::take(std::string_view key, json_value::kind type,
                                      const char *expected) {
    taken_.emplace(key);
    const json_value *value = find(key);
    if (value != nullptr && value->type != type) {
        fail(key, std::string("expected ") + expected);
    }
    return value;
}

std::string object_reader::path_of(std::string_view key) const {
    return path_ + (path_.empty() ? "" : ".") + std::string(key);
}

void object_reader::fail(std::string_view key, const std::string &reason) const {
    const json_value *value = find(key);
    throw host_error{value == nullptr ? object_.line : value->line, path_of(key) + ": " + reason};
}

bool object_reader::has(std::string_view key) const {
    return find(key) != nullptr;
}

void object_reader::require(std::string_view key) const {
    if (!has(key)) {
        fail(key, "is missing");
    }
}

void object_reader::finish() const {
    for (const json_member &member : object_.members) {
        if (!taken_.contains(member.key)) {
            fail(member.key, "unknown key");
        }
    }
}

uint64_t object_reader::number_of(std::string_view key, const json_value &value, uint64_t least,
                                  uint64_t most) const {
    std::optional<uint64_t> number;
    if (value.type == json_value::kind::number) {
        number = value.number;
    } else if (value.type == json_value::kind::text) {
        number = number_in(value.text);
    }
    if (!number || *number < least || *number > most) {
        fail(key,
             "expected a number from " + std::to_string(least) + " to " + std::to_string(most));
    }
    return *number;
}

uint64_t object_reader::number_or(std::string_view key, uint64_t otherwise, uint64_t least,
                                  uint64_t most) {
    taken_.emplace(key);
    const json_value *value = find(key);
    return value == nullptr ? otherwise : number_of(key, *value, least, most);
}

bool object_reader::flag_or(std::string_view key, bool otherwise) {
    const json_value *value = take(key, json_value::kind::boolean, "true or false");
    return value == nullptr ? otherwise : value->boolean;
}

uint32_t object_reader::choice_or(std::string_view key, uint32_t otherwise,
                                  std::initializer_list<named_number> names, uint32_t most) {
    taken_.emplace(key);
    const json_value *value = find(key);
    if (value == nullptr) {
        return otherwise;
    }
    if (value->type == json_value::kind::number) {
        return static_cast<uint32_t>(number_of(key, *value, 0, most));
    }
    std::string expected;
    for (const named_number &choice : names) {
        if (value->type == json_value::kind::text && value->text == choice.name) {
            return choice.number;
        }
        expected += std::string(" \"") + choice.name + "\",";
    }
    fail(key, "expected one of" + expected + " or a number");
}

void object_reader::text(std::string_view key, std::string &field, size_t most) {
    const json_value *value = take(key, json_value::kind::text, "a text");
    if (value == nullptr) {
        return;
    }
    if (value->text.size() > most) {
        fail(key, "expected at most " + std::to_string(most) + " bytes");
    }
    field = value->text;
}

void object_reader::copy_text(std::string_view key, char *field, size_t size) {
    if (!has(key)) {
        return;
    }
    std::string copy;
    text(key, copy, size);
    std::memset(field, 0, size);
    std::copy(copy.begin(), copy.end(), field);
}

void object_reader::bytes(std::string_view key, std::vector<uint8_t> &field) {
    const json_value *value = take(key, json_value::kind::text, "bytes in hexadecimal");
    if (value == nullptr) {
        return;
    }
    const std::optional<std::vector<uint8_t>> parsed = bytes_from_hex(value->text);
    if (!parsed) {
        fail(key, "expected bytes in hexadecimal");
    }
    field = *parsed;
}

void object_reader::mac(std::string_view key, std::array<uint8_t, 6> &field) {
    const json_value *value = take(key, json_value::kind::text, "a MAC address");
    if (value == nullptr) {
        return;
    }
    const std::vector<uint32_t> bytes = match(value->text, "@:@:@:@:@:@");
    for (size_t i = 0; i < field.size(); i++) {
        if (!within(bytes, i, 0, UINT8_MAX)) {
            fail(key, "expected a MAC address such as \"00:50:56:aa:bb:cc\"");
        }
        field[i] = static_cast<uint8_t>(bytes[i]);
    }
}

void object_reader::ipv4(std::string_view key, uint32_t &field) {
    const json_value *value = take(key, json_value::kind::text, "an IPv4 address");
    if (value != nullptr && inet_pton(AF_INET, value->text.c_str(), &field) != 1) {
        fail(key, "expected an IPv4 address");
    }
}

void object_reader::ipv6(std::string_view key, std::array<uint8_t, 16> &field) {
    const json_value *value = take(key, json_value::kind::text, "an IPv6 address");
    if (value != nullptr && inet_pton(AF_INET6, value->text.c_str(), field.data()) != 1) {
        fail(key, "expected an IPv6 address");
    }
}

void object_reader::interface(std::string_view key, uint32_t &field) {
    taken_.emplace(key);
    const json_value *value = find(key);
    if (value == nullptr) {
        return;
    }
    const uint32_t named = interface_index(value->text);
    if (named == 0 && value->type == json_value::kind::text && !number_in(value->text)) {
        fail(key, "expected an interface such as \"Veth3\", \"Eth4/1\", \"Po1\" or a number");
    }
    field = named != 0 ? named : static_cast<uint32_t>(number_of(key, *value, 0, UINT32_MAX));
}

void object_reader::numbers(std::string_view key, std::set<uint32_t> &field, uint32_t least,
                            uint32_t most) {
    taken_.emplace(key);
    const json_value *value = find(key);
    if (value == nullptr) {
        return;
    }
    field.clear();
    if (value->type == json_value::kind::list) {
        for (const json_value &item : value->items) {
            field.insert(static_cast<uint32_t>(number_of(key, item, least, most)));
        }
        return;
    }
    const std::string expected = "expected numbers from " + std::to_string(least) + " to " +
                                 std::to_string(most) + " such as \"1,10-20\"";
    if (value->type != json_value::kind::text) {
        fail(key, expected);
    }
    std::string rest = value->text;
    while (!rest.empty()) {
        const size_t comma = std::min(rest.find(','), rest.size());
        const std::string piece = rest.substr(0, comma);
        rest.erase(0, comma + 1);
        const std::vector<uint32_t> single = match(piece, "#");
        const std::vector<uint32_t> range = single.empty() ? match(piece, "#-#") : single;
        if (range.empty()) {
            fail(key, expected);
        }
        const uint32_t first = range.front();
        const uint32_t last = range.back();
        if (first < least || last > most || first > last) {
            fail(key, expected);
        }
        if (last - first > LONGEST_RANGE) {
            fail(key, "a range of more than " + std::to_string(LONGEST_RANGE) + " numbers");
        }
        for (uint32_t count = 0; count <= last - first; count++) {
            field.insert(first + count);
        }
    }
}

void object_reader::object(std::string_view key, const std::function<void(object_reader &)> &read) {
    const json_value *value = take(key, json_value::kind::object, "an object");
    if (value == nullptr) {
        return;
    }
    object_reader reader(*value, path_of(key));
    read(reader);
    reader.finish();
}

void object_reader::each(std::string_view key, const std::function<void(object_reader &)> &read) {
    const json_value *value = take(key, json_value::kind::list, "a list");
    if (value == nullptr) {
        return;
    }
    for (size_t i = 0; i < value->items.size(); i++) {
        object_reader reader(value->items[i], path_of(key) + "[" + std::to_string(i) + "]");
        read(reader);
        reader.finish();
    }
}
