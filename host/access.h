// How the rows of the key tables reach their values, made from paths of member pointers.
//
//     at<&port_view::record, &kx_port_record::if_index>
//
// A step of a path is a member pointer or a function that takes a reference to one. Behind an
// optional on the way that is empty there is nothing to reach.
#ifndef HOST_ACCESS_H
#define HOST_ACCESS_H

#include "host/key.h"
#include "host/number_set.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

// An entry of a map on its way into or out of it.
template <typename map> struct keyed {
    typename map::key_type key{};
    typename map::mapped_type value{};
};

namespace access_detail {

template <typename T> inline constexpr bool IS_OPTIONAL = false;
template <typename T> inline constexpr bool IS_OPTIONAL<std::optional<T>> = true;

template <typename T> inline constexpr bool IS_MAP = false;
template <typename K, typename V> inline constexpr bool IS_MAP<std::map<K, V>> = true;

template <typename T, typename item> inline constexpr bool IS_ARRAY_OF = false;
template <typename item, size_t size> inline constexpr bool IS_ARRAY_OF<item[size], item> = true;

template <typename owner, typename field> owner owner_of(field owner::*);
template <auto first, auto...> struct path_owner { using type = decltype(owner_of(first)); };
template <auto... path> using owner = typename path_owner<path...>::type;

template <auto step, typename T> auto *take(T *object) {
    if constexpr (std::is_member_object_pointer_v<decltype(step)>) {
        return &(object->*step);
    } else {
        return &step(*object);
    }
}

// The object or field at the end of the path, nullptr behind an empty optional. An optional at the
// end is itself the field.
template <auto first, auto... rest, typename T> auto *reach(T *object) {
    auto *next = take<first>(object);
    if constexpr (sizeof...(rest) == 0) {
        return next;
    } else if constexpr (IS_OPTIONAL<std::remove_cvref_t<decltype(*next)>>) {
        using found = decltype(reach<rest...>(&**next));
        return *next ? reach<rest...>(&**next) : found(nullptr);
    } else {
        return reach<rest...>(next);
    }
}

template <auto... path> const auto *look_along(const void *object) {
    return reach<path...>(static_cast<const owner<path...> *>(object));
}

template <auto... path> auto *open_along(void *object) {
    return reach<path...>(static_cast<owner<path...> *>(object));
}

template <auto... path>
using field_of = std::remove_cvref_t<decltype(*open_along<path...>(nullptr))>;

template <typename T> key_value say(const T &field) {
    key_value value;
    if constexpr (IS_OPTIONAL<T>) {
        if (field) {
            return say(*field);
        }
        value.is = key_value::state::refused;
    } else if constexpr (std::is_integral_v<T>) {
        value.number = static_cast<uint64_t>(field);
    } else if constexpr (std::is_same_v<T, number_set>) {
        value.numbers.assign(field.begin(), field.end());
    } else if constexpr (std::is_same_v<T, std::vector<std::string>>) {
        value.texts = field;
    } else if constexpr (IS_ARRAY_OF<T, uint32_t>) {
        // Numbers that are not used stand as zeros behind the others.
        auto end = std::end(field);
        while (end != std::begin(field) && end[-1] == 0) {
            --end;
        }
        value.numbers.assign(std::begin(field), end);
    } else if constexpr (IS_ARRAY_OF<T, char>) {
        value.bytes.assign(field, std::find(std::begin(field), std::end(field), '\0'));
    } else {
        value.bytes.assign(std::begin(field), std::end(field));
    }
    return value;
}

// True when both say the same.
template <typename T> bool is_same(const T &one, const T &other) {
    if constexpr (IS_OPTIONAL<T>) {
        return one && other ? is_same(*one, *other) : one.has_value() == other.has_value();
    } else if constexpr (IS_ARRAY_OF<T, char>) {
        return std::string_view(one, strnlen(one, sizeof one)) ==
               std::string_view(other, strnlen(other, sizeof other));
    } else if constexpr (std::is_array_v<T>) {
        return std::equal(std::begin(one), std::end(one), std::begin(other));
    } else {
        return one == other;
    }
}

template <typename T> void assign(T &field, const key_value &value) {
    if constexpr (IS_OPTIONAL<T>) {
        if (value.is == key_value::state::refused) {
            field.reset();
        } else {
            assign(field.emplace(), value);
        }
    } else if constexpr (std::is_same_v<T, bool>) {
        field = value.number != 0;
    } else if constexpr (std::is_integral_v<T>) {
        field = static_cast<T>(value.number);
    } else if constexpr (std::is_same_v<T, number_set>) {
        field = {value.numbers.begin(), value.numbers.end()};
    } else if constexpr (std::is_same_v<T, std::vector<std::string>>) {
        field = value.texts;
    } else if constexpr (IS_ARRAY_OF<T, uint32_t>) {
        std::fill(std::begin(field), std::end(field), 0U);
        std::copy_n(value.numbers.begin(), std::min(value.numbers.size(), std::size(field)), field);
    } else if constexpr (std::is_same_v<T, std::string> ||
                         std::is_same_v<T, std::vector<uint8_t>>) {
        field.assign(value.bytes.begin(), value.bytes.end());
    } else {
        std::fill(std::begin(field), std::end(field), 0);
        std::copy_n(value.bytes.begin(), std::min(value.bytes.size(), std::size(field)),
                    std::begin(field));
    }
}

template <typename T> constexpr uint64_t most_of() {
    if constexpr (IS_OPTIONAL<T>) {
        return most_of<typename T::value_type>();
    } else if constexpr (std::is_same_v<T, bool>) {
        return 1;
    } else if constexpr (std::is_integral_v<T>) {
        return static_cast<uint64_t>(std::numeric_limits<T>::max());
    } else if constexpr (IS_ARRAY_OF<T, char>) {
        return std::extent_v<T>;
    } else {
        return std::numeric_limits<uint32_t>::max();
    }
}

template <auto... path> key_value get_at_path(const void *object) {
    const auto *field = look_along<path...>(object);
    if (field == nullptr) {
        return {.is = key_value::state::out_of_place};
    }
    return say(*field);
}

template <auto... path> bool same_at_path(const void *object, const void *other) {
    const auto *field = look_along<path...>(object);
    const auto *other_field = look_along<path...>(other);
    return field == nullptr || (other_field != nullptr && is_same(*field, *other_field));
}

template <auto... path> bool set_at_path(void *object, const key_value &value) {
    auto *field = open_along<path...>(object);
    if (field == nullptr) {
        return false;
    }
    assign(*field, value);
    return true;
}

template <auto... path> const void *look_at_part(const void *object) {
    const auto *part = look_along<path...>(object);
    if constexpr (IS_OPTIONAL<field_of<path...>>) {
        return part != nullptr && *part ? &**part : nullptr;
    } else {
        return part;
    }
}

template <auto... path> void *open_part(void *object) {
    auto *part = open_along<path...>(object);
    if constexpr (IS_OPTIONAL<field_of<path...>>) {
        if (part == nullptr) {
            return nullptr;
        }
        return *part ? &**part : &part->emplace();
    } else {
        return part;
    }
}

template <auto... path> void reset_at_path(void *object) {
    if constexpr (IS_OPTIONAL<field_of<path...>>) {
        if (auto *part = open_along<path...>(object)) {
            part->reset();
        }
    }
}

template <typename T> T inside_of(const T *);
template <typename T> T inside_of(const std::optional<T> *);
// The list at the end of the path, optional or not.
template <auto... path>
using list_of = decltype(inside_of(static_cast<const field_of<path...> *>(nullptr)));

template <auto... path>
bool each_item(const void *object, const std::function<void(const void *)> &visit) {
    const auto *list = static_cast<const list_of<path...> *>(look_at_part<path...>(object));
    if (list == nullptr) {
        return false;
    }
    // An entry of a map is visited in place: it lies in memory as the struct does.
    for (const auto &item : *list) {
        visit(&item);
    }
    return true;
}

template <auto... path> void append_item(void *object, void *item) {
    using container = list_of<path...>;
    auto *list = static_cast<container *>(open_part<path...>(object));
    if constexpr (IS_MAP<container>) {
        static_assert(sizeof(keyed<container>) == sizeof(typename container::value_type));
        auto *entry = static_cast<keyed<container> *>(item);
        list->emplace(std::move(entry->key), std::move(entry->value));
    } else {
        list->push_back(std::move(*static_cast<typename container::value_type *>(item)));
    }
}

template <typename T> key_value get_whole(const void *object) {
    return say(*static_cast<const T *>(object));
}

template <typename T> bool set_whole(void *object, const key_value &value) {
    assign(*static_cast<T *>(object), value);
    return true;
}

template <auto member, auto... path> key_value get_head(const void *object) {
    const auto &record = *look_along<path...>(object);
    if (!record) {
        return {.is = key_value::state::refused};
    }
    return say((*record).*member);
}

template <auto member, auto... path> bool set_head(void *object, const key_value &value) {
    auto &record = *open_along<path...>(object);
    if (value.is == key_value::state::refused) {
        record.reset();
        return true;
    }
    if (!record) {
        record.emplace();
    }
    assign((*record).*member, value);
    return true;
}

template <auto... path> key_value get_presence(const void *object) {
    const auto *part = look_along<path...>(object);
    key_value value;
    value.number = part->has_value() ? 1 : 0;
    return value;
}

template <auto... path> bool set_presence(void *object, const key_value &value) {
    auto *part = open_along<path...>(object);
    if (value.number == 0) {
        part->reset();
    } else if (!*part) {
        part->emplace();
    }
    return true;
}

template <auto bit, auto... path> key_value get_bit(const void *object) {
    key_value value;
    value.number = (*look_along<path...>(object) & bit) != 0 ? 1 : 0;
    return value;
}

template <auto bit, auto... path> bool same_bit(const void *object, const void *other) {
    return ((*look_along<path...>(object) ^ *look_along<path...>(other)) & bit) == 0;
}

template <auto bit, auto... path> bool set_bit(void *object, const key_value &value) {
    auto &flags = *open_along<path...>(object);
    using field = std::remove_reference_t<decltype(flags)>;
    flags = static_cast<field>(value.number != 0 ? flags | bit : flags & ~bit);
    return true;
}

} // namespace access_detail

// A value.
template <auto... path>
constexpr key_access at = {
    .get = access_detail::get_at_path<path...>,
    .set = access_detail::set_at_path<path...>,
    .same = access_detail::same_at_path<path...>,
    .most = access_detail::most_of<access_detail::field_of<path...>>(),
    .can_lack = access_detail::IS_OPTIONAL<access_detail::field_of<path...>>,
    .in_order = std::is_array_v<access_detail::field_of<path...>>,
};

// The whole object.
template <typename T>
constexpr key_access whole = {
    .get = access_detail::get_whole<T>,
    .set = access_detail::set_whole<T>,
    .most = access_detail::most_of<T>(),
};

// The first member of an optional record that the driver tells as a whole or not at all: refusing
// the member refuses the record.
template <auto member, auto... path>
constexpr key_access head_of = {
    .get = access_detail::get_head<member, path...>,
    .set = access_detail::set_head<member, path...>,
    .most = at<member>.most,
    .can_lack = true,
};

// Whether the optional at the end of the path holds something.
template <auto... path>
constexpr key_access presence_of = {
    .get = access_detail::get_presence<path...>,
    .set = access_detail::set_presence<path...>,
    .most = 1,
};

// Some bits of a number.
template <auto bit, auto... path>
constexpr key_access bit_of = {
    .get = access_detail::get_bit<bit, path...>,
    .set = access_detail::set_bit<bit, path...>,
    .same = access_detail::same_bit<bit, path...>,
    .most = 1,
};

// An object in the object.
template <auto... path>
constexpr key_access part = {
    .can_lack = access_detail::IS_OPTIONAL<access_detail::field_of<path...>>,
    .look = access_detail::look_at_part<path...>,
    .open = access_detail::open_part<path...>,
    .drop = access_detail::reset_at_path<path...>,
};

// The items of a vector, of an optional one, or of a map, whose items are `keyed`.
template <auto... path>
constexpr key_access items_of = {
    .most = std::numeric_limits<uint32_t>::max(),
    .can_lack = access_detail::IS_OPTIONAL<access_detail::field_of<path...>>,
    .drop = access_detail::reset_at_path<path...>,
    .each = access_detail::each_item<path...>,
    .append = access_detail::append_item<path...>,
};

// A new object for a table. What a map's entry may lack is there.
template <typename T> std::shared_ptr<void> make_object(size_t /*place*/) {
    auto made = std::make_shared<T>();
    if constexpr (requires { made->value.has_value(); }) {
        made->value.emplace();
    }
    return made;
}

// The rows: number_key("name", at<...>, "its meaning"), and what is special about it behind that.

template <key_type type>
constexpr key plain_key(const char *name, const key_access &access, const char *meaning) {
    return {.name = name,
            .type = type,
            .meaning = meaning,
            .access = access,
            .most = access.most,
            .refusable = access.can_lack};
}

inline constexpr auto *number_key = plain_key<key_type::number>;
inline constexpr auto *flag_key = plain_key<key_type::flag>;
inline constexpr auto *texts_key = plain_key<key_type::texts>;
inline constexpr auto *hex_key = plain_key<key_type::hex>;
inline constexpr auto *mac_key = plain_key<key_type::mac>;
inline constexpr auto *ipv4_key = plain_key<key_type::ipv4>;
inline constexpr auto *ipv6_key = plain_key<key_type::ipv6>;
inline constexpr auto *interface_key = plain_key<key_type::interface>;
inline constexpr auto *numbers_key = plain_key<key_type::numbers>;
inline constexpr auto *counters_key = plain_key<key_type::counters>;

// `most` bytes; 0 for as many as the field takes.
constexpr key text_key(const char *name, const key_access &access, uint64_t most,
                       const char *meaning) {
    const key made = plain_key<key_type::text>(name, access, meaning);
    return most == 0 ? made : made.to(most);
}

constexpr key word_key(const char *name, const key_access &access, std::span<const key_word> words,
                       const char *meaning, key_type type = key_type::word) {
    return plain_key<key_type::word>(name, access, meaning)
        .with(&key::type, type)
        .with(&key::words, words);
}

constexpr key words_key(const char *name, const key_access &access, std::span<const key_word> words,
                        const char *meaning) {
    return word_key(name, access, words, meaning, key_type::words);
}

template <key_type type>
constexpr key key_with_table(const char *name, const key_access &access, const key_table &table,
                             const char *meaning) {
    return plain_key<type>(name, access, meaning).with(&key::table, &table);
}

inline constexpr auto *object_key = key_with_table<key_type::object>;
inline constexpr auto *list_key = key_with_table<key_type::list>;

constexpr key included_keys(const key_table &table, const key_access &access) {
    return key_with_table<key_type::included>("", access, table, "").or_else(nullptr);
}

#endif
