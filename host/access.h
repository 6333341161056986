// How the rows of the key tables reach their values, made from paths of member pointers.
//
//     at<&port_view::record, &kx_port_record::if_index>
//
// Behind an optional on the way that is empty there is nothing to reach.
#ifndef HOST_ACCESS_H
#define HOST_ACCESS_H

#include "host/keys.h"
#include "host/number_set.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

// An entry of a map on its way into or out of it.
template <typename map> struct keyed {
    typename map::key_type key{};
    typename map::mapped_type value{};
};

template <typename T> inline constexpr bool IS_OPTIONAL = false;
template <typename T> inline constexpr bool IS_OPTIONAL<std::optional<T>> = true;

template <typename T> inline constexpr bool IS_MAP = false;
template <typename K, typename V> inline constexpr bool IS_MAP<std::map<K, V>> = true;

template <typename T, typename item> inline constexpr bool IS_ARRAY_OF = false;
template <typename item, size_t size> inline constexpr bool IS_ARRAY_OF<item[size], item> = true;

template <typename owner, typename field> owner owner_of(field owner::*);
template <typename owner, typename field> owner owner_of(field (*)(const owner &));
template <typename owner, typename field> field field_of(field owner::*);
template <typename owner, typename field> field field_of(field (*)(const owner &));

// The field at the end of the path, nullptr behind an empty optional. An optional at the end is
// itself the field.
template <auto first, auto... rest, typename T> auto *reach(T *object) {
    auto *next = &(object->*first);
    if constexpr (sizeof...(rest) == 0) {
        return next;
    } else if constexpr (IS_OPTIONAL<std::remove_cvref_t<decltype(*next)>>) {
        using found = decltype(reach<rest...>(&**next));
        return *next ? reach<rest...>(&**next) : found(nullptr);
    } else {
        return reach<rest...>(next);
    }
}

template <auto first, auto... rest> const auto *along(const void *object) {
    return reach<first, rest...>(static_cast<const decltype(owner_of(first)) *>(object));
}

template <auto first, auto... rest> auto *along(void *object) {
    return reach<first, rest...>(static_cast<decltype(owner_of(first)) *>(object));
}

template <auto... path>
using end_of = std::remove_reference_t<decltype(*along<path...>(static_cast<void *>(nullptr)))>;

// What is there at the end of the path: in an optional the value, nullptr when it is empty.
template <auto... path> const auto *look_along(const void *object) {
    const auto *field = along<path...>(object);
    if constexpr (IS_OPTIONAL<end_of<path...>>) {
        return field != nullptr && *field ? &**field : nullptr;
    } else {
        return field;
    }
}

// The same, put into an empty optional.
template <auto... path> auto *open_along(void *object) {
    auto *field = along<path...>(object);
    if constexpr (IS_OPTIONAL<end_of<path...>>) {
        return *field ? &**field : &field->emplace();
    } else {
        return field;
    }
}

template <auto... path> void drop_along(void *object) {
    if constexpr (IS_OPTIONAL<end_of<path...>>) {
        if (auto *field = along<path...>(object)) {
            field->reset();
        }
    }
}

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
    if constexpr (IS_ARRAY_OF<T, char>) {
        return strncmp(one, other, sizeof one) == 0;
    } else if constexpr (std::is_array_v<T>) {
        return std::equal(std::begin(one), std::end(one), std::begin(other));
    } else {
        return one == other;
    }
}

// Copy as much as there is room for, and fill the rest with zeros.
template <typename T, typename list> void copy_into(T &field, const list &from) {
    const auto end =
        std::copy_n(from.begin(), std::min(from.size(), std::size(field)), std::begin(field));
    std::fill(end, std::end(field), 0);
}

template <typename T> void assign(T &field, const key_value &value) {
    if constexpr (IS_OPTIONAL<T>) {
        if (value.is == key_value::state::refused) {
            field.reset();
        } else {
            assign(field.emplace(), value);
        }
    } else if constexpr (std::is_integral_v<T>) {
        field = static_cast<T>(value.number);
    } else if constexpr (std::is_same_v<T, number_set>) {
        field = {value.numbers.begin(), value.numbers.end()};
    } else if constexpr (std::is_same_v<T, std::vector<std::string>>) {
        field = value.texts;
    } else if constexpr (IS_ARRAY_OF<T, uint32_t>) {
        copy_into(field, value.numbers);
    } else if constexpr (requires { field.assign(value.bytes.begin(), value.bytes.end()); }) {
        field.assign(value.bytes.begin(), value.bytes.end());
    } else {
        copy_into(field, value.bytes);
    }
}

template <typename T> constexpr uint64_t most_of() {
    if constexpr (IS_OPTIONAL<T>) {
        return most_of<typename T::value_type>();
    } else if constexpr (std::is_integral_v<T>) {
        return static_cast<uint64_t>(std::numeric_limits<T>::max());
    } else if constexpr (IS_ARRAY_OF<T, char>) {
        return std::extent_v<T>;
    } else {
        return std::numeric_limits<uint32_t>::max();
    }
}

// A value.
template <auto... path>
constexpr key_access at = {
    .get = [](const void *object) -> key_value {
        const auto *field = along<path...>(object);
        return field == nullptr ? key_value{.is = key_value::state::out_of_place} : say(*field);
    },
    .set = [](void *object, const key_value &value) -> bool {
        auto *field = along<path...>(object);
        if (field != nullptr) {
            assign(*field, value);
        }
        return field != nullptr;
    },
    .same = [](const void *object, const void *other) -> bool {
        const auto *field = along<path...>(object);
        const auto *other_field = along<path...>(other);
        return field == nullptr || (other_field != nullptr && is_same(*field, *other_field));
    },
    .most = most_of<end_of<path...>>(),
    .can_lack = IS_OPTIONAL<end_of<path...>>,
    .in_order = std::is_array_v<end_of<path...>>,
};

// The first member of an optional record that the driver tells as a whole or not at all: refusing
// the member refuses the record.
template <auto member, auto... path>
constexpr key_access head_of = {
    .get = [](const void *object) -> key_value {
        const auto *record = look_along<path...>(object);
        return record == nullptr ? key_value{.is = key_value::state::refused}
                                 : say(record->*member);
    },
    .set = [](void *object, const key_value &value) -> bool {
        if (value.is == key_value::state::refused) {
            drop_along<path...>(object);
        } else {
            assign(open_along<path...>(object)->*member, value);
        }
        return true;
    },
    .most = at<member>.most,
    .can_lack = true,
};

// A value that get(object) computes, and set(object, value) puts back.
template <auto get, auto set>
constexpr key_access computed = {
    .get = [](const void *object) -> key_value {
        using owner = decltype(owner_of(+get));
        return say(get(*static_cast<const owner *>(object)));
    },
    .set = [](void *object, const key_value &value) -> bool {
        using owner = decltype(owner_of(+get));
        decltype(field_of(+get)) field{};
        assign(field, value);
        set(*static_cast<owner *>(object), field);
        return true;
    },
    .same = [](const void *object, const void *other) -> bool {
        using owner = decltype(owner_of(+get));
        return get(*static_cast<const owner *>(object)) == get(*static_cast<const owner *>(other));
    },
    .most = most_of<decltype(field_of(+get))>(),
    .can_lack = IS_OPTIONAL<decltype(field_of(+get))>,
};

// An object in the object.
template <auto... path>
constexpr key_access part = {
    .can_lack = IS_OPTIONAL<end_of<path...>>,
    .look = [](const void *object) -> const void * { return look_along<path...>(object); },
    .open = [](void *object) -> void * { return open_along<path...>(object); },
    .drop = drop_along<path...>,
};

// The items of a vector, of an optional one, or of a map, whose items are `keyed`.
template <auto... path>
constexpr key_access items_of = {
    .most = std::numeric_limits<uint32_t>::max(),
    .can_lack = IS_OPTIONAL<end_of<path...>>,
    .drop = drop_along<path...>,
    .each = [](const void *object, const std::function<void(const void *)> &visit) -> bool {
        const auto *list = look_along<path...>(object);
        if (list == nullptr) {
            return false;
        }
        // An entry of a map is visited in place: it lies in memory as the struct does.
        for (const auto &item : *list) {
            visit(&item);
        }
        return true;
    },
    .append = [](void *object, void *item) -> void {
        auto *list = open_along<path...>(object);
        using container = std::remove_pointer_t<decltype(list)>;
        if constexpr (IS_MAP<container>) {
            static_assert(sizeof(keyed<container>) == sizeof(typename container::value_type));
            auto *entry = static_cast<keyed<container> *>(item);
            list->emplace(std::move(entry->key), std::move(entry->value));
        } else {
            list->push_back(std::move(*static_cast<typename container::value_type *>(item)));
        }
    },
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
inline constexpr auto *text_key = plain_key<key_type::text>;
inline constexpr auto *texts_key = plain_key<key_type::texts>;
inline constexpr auto *hex_key = plain_key<key_type::hex>;
inline constexpr auto *mac_key = plain_key<key_type::mac>;
inline constexpr auto *ipv4_key = plain_key<key_type::ipv4>;
inline constexpr auto *ipv6_key = plain_key<key_type::ipv6>;
inline constexpr auto *interface_key = plain_key<key_type::interface>;
inline constexpr auto *numbers_key = plain_key<key_type::numbers>;
inline constexpr auto *counters_key = plain_key<key_type::counters>;

constexpr key word_key(const char *name, const key_access &access, std::span<const key_word> words,
                       const char *meaning) {
    return plain_key<key_type::word>(name, access, meaning).with(&key::words, words);
}

constexpr key words_key(const char *name, const key_access &access, std::span<const key_word> words,
                        const char *meaning) {
    return word_key(name, access, words, meaning).with(&key::type, key_type::words);
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
