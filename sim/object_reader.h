// Takes the keys of one JSON object into plain fields, for the parsers of the host file.
//
// A key that is absent leaves its field as it was. A value of the wrong type or out of range, and a
// key that nobody asked for, throw host_error with the line and the path of the key.
#ifndef SIM_OBJECT_READER_H
#define SIM_OBJECT_READER_H

#include "host/json_tree.h"

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

// A word of the host file and the number that stands for it in a record.
struct named_number {
    const char *name;
    uint32_t number;
};

class object_reader {
public:
    // `path` names the object in complaints, "" for the whole file.
    object_reader(const json_value &value, std::string path);

    bool has(std::string_view key) const;
    void require(std::string_view key) const;

    // A number, or a text with one in C notation ("0x1c").
    template <std::unsigned_integral T>
    void number(std::string_view key, T &field, uint64_t least = 0,
                uint64_t most = std::numeric_limits<T>::max()) {
        field = static_cast<T>(number_or(key, field, least, most));
    }

    // true is 1, false is 0.
    template <std::integral T> void flag(std::string_view key, T &field) {
        field = static_cast<T>(flag_or(key, field != 0));
    }

    // One of the given words, or a plain number.
    template <std::unsigned_integral T>
    void choice(std::string_view key, T &field, std::initializer_list<named_number> names) {
        field = static_cast<T>(choice_or(key, field, names, std::numeric_limits<T>::max()));
    }

    // A text field of a record: a text that fills it has no terminator, a longer one is refused.
    template <size_t size> void text(std::string_view key, char (&field)[size]) {
        copy_text(key, field, size);
    }
    void text(std::string_view key, std::string &field, size_t most);

    // Bytes in hexadecimal, see bytes_from_hex in hex.h.
    void bytes(std::string_view key, std::vector<uint8_t> &field);
    // "00:50:56:aa:bb:cc"
    void mac(std::string_view key, std::array<uint8_t, 6> &field);
    // "10.1.2.3", stored in network byte order.
    void ipv4(std::string_view key, uint32_t &field);
    // "2001:db8::1"
    void ipv6(std::string_view key, std::array<uint8_t, 16> &field);
    // An interface index: "Veth3", "Eth4/1", "Po1" as ports print, or the number itself.
    void interface(std::string_view key, uint32_t &field);
    // A text such as "1,10-20", or a list of numbers.
    void numbers(std::string_view key, std::set<uint32_t> &field, uint32_t least, uint32_t most);

    // A nested object, or each object of a list; keys that `read` leaves over are complained about.
    void object(std::string_view key, const std::function<void(object_reader &)> &read);
    void each(std::string_view key, const std::function<void(object_reader &)> &read);

    // The same for values that the driver may refuse to tell.
    template <std::unsigned_integral T>
    void number(std::string_view key, std::optional<T> &field, uint64_t least = 0,
                uint64_t most = std::numeric_limits<T>::max()) {
        number(key, field.emplace(field.value_or(0)), least, most);
    }
    template <std::integral T> void flag(std::string_view key, std::optional<T> &field) {
        flag(key, field.emplace(field.value_or(0)));
    }
    template <std::unsigned_integral T>
    void choice(std::string_view key, std::optional<T> &field,
                std::initializer_list<named_number> names) {
        choice(key, field.emplace(field.value_or(0)), names);
    }

    [[noreturn]] void fail(std::string_view key, const std::string &reason) const;
    void finish() const;

private:
    const json_value *find(std::string_view key) const;
    const json_value *take(std::string_view key, json_value::kind type, const char *expected);
    std::string path_of(std::string_view key) const;
    uint64_t number_or(std::string_view key, uint64_t otherwise, uint64_t least, uint64_t most);
    uint64_t number_of(std::string_view key, const json_value &value, uint64_t least,
                       uint64_t most) const;
    bool flag_or(std::string_view key, bool otherwise);
    uint32_t choice_or(std::string_view key, uint32_t otherwise,
                       std::initializer_list<named_number> names, uint32_t most);
    void copy_text(std::string_view key, char *field, size_t size);

    const json_value &object_;
    std::string path_;
    std::set<std::string, std::less<>> taken_;
};

#endif
