#include "host/writer.h"

#include "host/text.h"
#include "host/value.h"

#include <memory>
#include <string_view>
#include <utility>

namespace {

constexpr size_t INDENT = 2;

// The writer goes along the rows as the reader will, and keeps beside the object what the reader
// would have by then. What follows from the keys before is so never written twice.
struct writing {
    std::vector<std::string> &unsaid; // paths of what no key can say
    std::string path{};               // of the object at hand
    bool differences = false;         // only what differs, not what is always written
    bool lacks_required = false;      // the item at hand cannot be read back

    std::string path_of(std::string_view name) const {
        return path + (path.empty() ? "" : ".") + std::string(name);
    }

    std::string object(const key_table &table, const void *object, void *so_far, size_t indent);
    void rows(std::string &members, const key_table &table, const void *object, void *so_far,
              size_t indent);
    void value(std::string &members, const key &row, const void *object, void *so_far,
               size_t indent);
    void counters(std::string &members, const key &row, const void *object, void *so_far,
                  size_t indent) const;
    void part(std::string &members, const key &row, const void *object, void *so_far,
              size_t indent);
    void list(std::string &members, const key &row, const void *object, size_t indent);
};

void add_member(std::string &members, std::string_view name, const std::string &text,
                size_t indent) {
    if (!members.empty()) {
        members += ",\n";
    }
    members.append(indent, ' ');
    members += json_quoted(name);
    members += ": ";
    members += text;
}

std::string closed(const std::string &members, const char *brackets, size_t indent) {
    std::string text(1, brackets[0]);
    if (!members.empty()) {
        text += "\n" + members + "\n" + std::string(indent, ' ');
    }
    return text + brackets[1];
}

void writing::value(std::string &members, const key &row, const void *object, void *so_far,
                    size_t indent) {
    const key_value said = row.access.get(object);
    if (said.is == key_value::state::out_of_place) {
        return;
    }
    const bool differs = said != row.access.get(so_far);
    if (!differs && (differences || !row.always)) {
        return;
    }
    if (!is_sayable(row, said)) {
        unsaid.push_back(path_of(row.name));
        lacks_required |= row.required;
        return;
    }
    row.access.set(so_far, said);
    add_member(members, row.name, value_text(row, said, indent), indent);
}

void writing::counters(std::string &members, const key &row, const void *object, void *so_far,
                       size_t indent) const {
    for (uint32_t index = 0; index < row.items; index++) {
        const key_value said = row.access.get_at(object, index);
        if (said != row.access.get_at(so_far, index)) {
            add_member(members, std::to_string(index), value_text(row, said, indent), indent);
        }
    }
}

void writing::part(std::string &members, const key &row, const void *object, void *so_far,
                   size_t indent) {
    const void *said = row.access.look(object);
    const bool expected = row.access.look(so_far) != nullptr;
    if (said == nullptr) {
        if (expected) {
            add_member(members, row.name, "null", indent);
        }
        return;
    }
    const std::string outside = std::move(path);
    path = outside + (outside.empty() ? "" : ".") + row.name;
    const bool differences_outside = std::exchange(differences, expected);
    std::string inner;
    rows(inner, *row.table, said, row.access.open(so_far), indent + INDENT);
    path = outside;
    differences = differences_outside;
    if (!inner.empty() || !expected) {
        add_member(members, row.name, closed(inner, "{}", indent), indent);
    }
}

void writing::list(std::string &members, const key &row, const void *object, size_t indent) {
    std::string items;
    size_t place = 0;
    const bool differences_outside = std::exchange(differences, false);
    const std::string outside = std::move(path);
    const std::string list_path = outside + (outside.empty() ? "" : ".") + row.name;
    const bool there = row.access.each(object, [&](const void *item) {
        path = list_path + "[" + std::to_string(place) + "]";
        const std::shared_ptr<void> so_far = row.table->make(place++);
        const size_t deep = indent + INDENT;
        lacks_required = false;
        const std::string text = this->object(*row.table, item, so_far.get(), deep);
        if (!lacks_required && place <= row.items) {
            items += (items.empty() ? "" : ",\n") + std::string(deep, ' ') + text;
        }
    });
    path = outside;
    lacks_required = false;
    differences = differences_outside;
    if (!there) {
        add_member(members, row.name, "null", indent);
    } else if (!items.empty()) {
        add_member(members, row.name, closed(items, "[]", indent), indent);
    }
    if (place > row.items) {
        unsaid.push_back(path_of(row.name));
    }
}

void writing::rows(std::string &members, const key_table &table, const void *object, void *so_far,
                   size_t indent) {
    for (const key &row : table.keys) {
        if (row.prepare != nullptr) {
            row.prepare(so_far);
        }
        switch (row.type) {
        case key_type::included: {
            const void *inner = row.access.look(object);
            if (inner != nullptr) {
                rows(members, *row.table, inner, row.access.open(so_far), indent);
            }
            break;
        }
        case key_type::counters:
            counters(members, row, object, so_far, indent);
            break;
        case key_type::object:
            part(members, row, object, so_far, indent);
            break;
        case key_type::list:
            list(members, row, object, indent);
            break;
        default:
            value(members, row, object, so_far, indent);
            break;
        }
    }
}

std::string writing::object(const key_table &table, const void *object, void *so_far,
                            size_t indent) {
    std::string members;
    rows(members, table, object, so_far, indent + INDENT);
    return closed(members, "{}", indent);
}

} // namespace

std::string object_text(const key_table &table, const void *object,
                        std::vector<std::string> &unsaid) {
    const std::shared_ptr<void> so_far = table.make(0);
    return writing{unsaid}.object(table, object, so_far.get(), 0);
}
