#include "host/reader.h"

#include "host/value.h"

#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace {

constexpr const char *REFUSED = "belongs to what is refused";

struct reading {
    std::vector<host_error> &wrong;

    void complain(unsigned line, const std::string &path, const std::string &reason) const {
        wrong.push_back({line, path + ": " + reason});
    }
    void read(const json_value &given, const key_table &table, void *object,
              const std::string &path) const;
};

// One object of the file on its way into one of the host.
struct object_reading {
    const reading &file;
    const json_value &given;
    const std::string &path;
    std::unordered_map<std::string_view, const json_value *> left; // keys that no row has taken

    object_reading(const reading &in, const json_value &value, const std::string &at)
        : file(in), given(value), path(at) {
        for (const json_member &member : given.members) {
            left.emplace(member.key, &member.value);
        }
    }

    const json_value *take(std::string_view name) {
        const auto found = left.find(name);
        if (found == left.end()) {
            return nullptr;
        }
        const json_value *value = found->second;
        left.erase(found);
        return value;
    }

    std::string path_of(std::string_view name) const {
        return path + (path.empty() ? "" : ".") + std::string(name);
    }

    void complain(const json_value &at, std::string_view name, const std::string &reason) const {
        file.complain(at.line, path_of(name), reason);
    }

    // Hand what is read to set(), which returns false when it has no place.
    template <typename Set>
    void take_value(const key &row, const json_value &value, std::string_view name, Set set) const {
        key_value read;
        std::string reason = read_value(row, value, read);
        if (reason.empty() && !set(read)) {
            reason = REFUSED;
        }
        if (!reason.empty()) {
            complain(value, name, reason);
        }
    }

    void take_counters(const key &row, void *object) {
        for (uint32_t index = 0; index < row.items; index++) {
            const std::string name = std::to_string(index);
            if (const json_value *value = take(name)) {
                take_value(row, *value, name, [&](const key_value &read) {
                    return object != nullptr && row.access.set_at(object, index, read.number);
                });
            }
        }
    }

    void take_object(const key &row, const json_value &value, void *object) const {
        if (value.type == json_value::kind::null && row.refusable) {
            row.access.drop(object);
        } else if (value.type != json_value::kind::object) {
            complain(value, row.name, "expected an object");
        } else {
            file.read(value, *row.table, row.access.open(object), path_of(row.name));
        }
    }

    void take_list(const key &row, const json_value &value, void *object) const;
    void take_row(const key &row, void *object);
    void take_table(const key_table &table, void *object);
};

// Tells the items of a list apart by their unique keys.
struct unique_keys {
    const key *last = nullptr; // nullptr for a table without such keys
    const key_table &table;
    std::unordered_set<std::string> seen;

    explicit unique_keys(const key_table &of) : table(of) {
        for (const key &row : table.keys) {
            last = row.unique ? &row : last;
        }
    }

    bool insert(const void *item) {
        std::string all;
        for (const key &row : table.keys) {
            if (row.unique) {
                all += value_text(row, row.access.get(item)) + ",";
            }
        }
        return seen.insert(all).second;
    }
};

void object_reading::take_list(const key &row, const json_value &value, void *object) const {
    if (value.type == json_value::kind::null && row.refusable) {
        row.access.drop(object);
        return;
    }
    if (value.type != json_value::kind::list) {
        complain(value, row.name, "expected a list");
        return;
    }
    if (value.items.size() > row.items) {
        complain(value, row.name, "expected at most " + std::to_string(row.items));
        return;
    }
    unique_keys keys(*row.table);
    for (size_t place = 0; place < value.items.size(); place++) {
        const json_value &given_item = value.items[place];
        const std::string item_path = path_of(row.name) + "[" + std::to_string(place) + "]";
        const std::shared_ptr<void> item = row.table->make(place);
        const size_t wrong_before = file.wrong.size();
        file.read(given_item, *row.table, item.get(), item_path);
        if (file.wrong.size() != wrong_before) {
            continue;
        }
        if (keys.last != nullptr && !keys.insert(item.get())) {
            for (const json_member &member : given_item.members) {
                if (member.key == keys.last->name) {
                    file.complain(member.value.line, item_path + "." + member.key, "is used twice");
                }
            }
        }
        row.access.append(object, item.get());
    }
}

void object_reading::take_row(const key &row, void *object) {
    if (row.type == key_type::included) {
        // Of a part that is not there, nothing can be said.
        void *inside = row.access.look(object) == nullptr ? nullptr : row.access.open(object);
        take_table(*row.table, inside);
        return;
    }
    if (row.type == key_type::counters) {
        take_counters(row, object);
        return;
    }
    const json_value *value = take(row.name);
    if (value == nullptr) {
        if (row.required) {
            complain(given, row.name, "is missing");
        }
    } else if (object == nullptr) {
        complain(*value, row.name, REFUSED);
    } else if (row.type == key_type::object) {
        take_object(row, *value, object);
    } else if (row.type == key_type::list) {
        take_list(row, *value, object);
    } else {
        take_value(row, *value, row.name,
                   [&](const key_value &read) { return row.access.set(object, read); });
    }
}

void object_reading::take_table(const key_table &table, void *object) {
    for (const key &row : table.keys) {
        take_row(row, object);
    }
}

void reading::read(const json_value &given, const key_table &table, void *object,
                   const std::string &path) const {
    if (given.type != json_value::kind::object) {
        complain(given.line, path.empty() ? "the host" : path, "expected an object");
        return;
    }
    object_reading keys(*this, given, path);
    keys.take_table(table, object);
    for (const json_member &member : given.members) {
        if (keys.left.contains(member.key)) {
            keys.complain(member.value, member.key, "unknown key");
        }
    }
}

} // namespace

void read_object(const json_value &given, const key_table &table, void *object,
                 std::vector<host_error> &wrong) {
    reading{wrong}.read(given, table, object, "");
}
