#include "host/objects.h"

#include "host/value.h"

#include <memory>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace {

constexpr const char *REFUSED = "belongs to what is refused";

// One object of the file on its way into one of the host.
struct reading {
    std::vector<host_error> &wrong;
    const json_value &given;
    const std::string &path;
    std::unordered_map<std::string_view, const json_value *> left{}; // keys that no row has taken

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

    void complain(const json_value &at, std::string_view name, const std::string &reason) {
        wrong.push_back({at.line, path_of(name) + ": " + reason});
    }

    // Hand what is read to set(), which returns false when it has no place.
    template <typename Set>
    void take_value(const key &row, const json_value &value, std::string_view name, Set set) {
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

    static void read(const json_value &given, const key_table &table, void *object,
                     const std::string &path, std::vector<host_error> &wrong) {
        if (given.type != json_value::kind::object) {
            wrong.push_back(
                {given.line, (path.empty() ? "the host" : path) + ": expected an object"});
            return;
        }
        reading keys{wrong, given, path};
        keys.left.reserve(given.members.size());
        for (const json_member &member : given.members) {
            keys.left.emplace(member.key, &member.value);
        }
        for (const key &row : table.keys) {
            keys.take_row(row, object);
        }
        for (const json_member &member : given.members) {
            if (keys.left.contains(member.key)) {
                keys.complain(member.value, member.key, "unknown key");
            }
        }
    }

    void take_items(const key &row, const json_value &value, void *object) {
        std::unordered_set<std::string> seen; // the unique keys of the items
        seen.reserve(value.items.size());
        for (size_t place = 0; place < value.items.size(); place++) {
            const json_value &item = value.items[place];
            const std::string item_name = row.name + ("[" + std::to_string(place) + "]");
            const std::shared_ptr<void> made = row.table->make(place);
            const size_t wrong_before = wrong.size();
            read(item, *row.table, made.get(), path_of(item_name), wrong);
            if (wrong.size() != wrong_before) {
                continue;
            }
            std::string unique;
            std::string_view last;
            for (const key &inner : row.table->keys) {
                if (inner.unique) {
                    unique += value_text(inner, inner.access.get(made.get())) + ",";
                    last = inner.name;
                }
            }
            if (!unique.empty() && !seen.insert(unique).second) {
                for (const json_member &member : item.members) {
                    if (member.key == last) {
                        complain(member.value, item_name + "." + member.key, "is used twice");
                    }
                }
            }
            row.access.append(object, made.get());
        }
    }

    // An object or a list of objects.
    void take_child(const key &row, const json_value &value, void *object) {
        const bool is_list = row.type == key_type::list;
        if (value.type == json_value::kind::null && row.refusable) {
            row.access.drop(object);
        } else if (value.type != (is_list ? json_value::kind::list : json_value::kind::object)) {
            complain(value, row.name, is_list ? "expected a list" : "expected an object");
        } else if (!is_list) {
            read(value, *row.table, row.access.open(object), path_of(row.name), wrong);
        } else if (value.items.size() > row.items) {
            complain(value, row.name, "expected at most " + std::to_string(row.items));
        } else {
            take_items(row, value, object);
        }
    }

    void take_row(const key &row, void *object) {
        if (row.type == key_type::included) {
            // Of a part that is not there, nothing can be said.
            void *inside = row.access.look(object) == nullptr ? nullptr : row.access.open(object);
            for (const key &included : row.table->keys) {
                take_row(included, inside);
            }
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
        } else if (row.table != nullptr) {
            take_child(row, *value, object);
        } else {
            take_value(row, *value, row.name,
                       [&](const key_value &read) { return row.access.set(object, read); });
        }
    }
};

} // namespace

void read_object(const json_value &given, const key_table &table, void *object,
                 std::vector<host_error> &wrong) {
    reading::read(given, table, object, "", wrong);
}
