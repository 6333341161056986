#include "host/objects.h"

#include "host/text.h"
#include "host/value.h"

#include <memory>
#include <string_view>
#include <utility>

namespace {

constexpr size_t INDENT = 2;

// A JSON object or list that is being appended to a text, each of its items on a line of its own.
struct json_lines {
    size_t start;  // of the text behind the bracket
    size_t indent; // of the items, in blanks

    bool is_empty(const std::string &json) const {
        return json.size() == start;
    }
};

// The writer goes along the rows as the reader will, and keeps beside the object what the reader
// would have by then. What follows from the keys before is so never written twice. Everything is
// appended to the one text, and what turns out to say nothing is cut off again.
//
// Where a function tells that something is readable, all that is required stands in the text.
struct writing {
    std::string &text;
    std::vector<std::string> &unsaid; // paths of what no key can say
    const write_options &options;
    std::string path{};       // of the object at hand
    bool differences = false; // only what differs, not what is always written

    // Lengthen the path. Returns its length before, to cut it back to.
    size_t enter(std::string_view name) {
        const size_t outside = path.size();
        path += path.empty() ? "" : ".";
        path += name;
        return outside;
    }
    void add_unsaid(std::string_view name) {
        const size_t outside = enter(name);
        unsaid.push_back(path);
        path.resize(outside);
    }

    // `indent` is that of the line with the bracket.
    json_lines open_lines(char bracket, size_t indent) {
        text += bracket;
        return {text.size(), indent + INDENT};
    }
    void begin_line(const json_lines &lines) {
        text += lines.is_empty(text) ? "\n" : ",\n";
        text.append(lines.indent, ' ');
    }
    void close_lines(char bracket, const json_lines &lines) {
        if (!lines.is_empty(text)) {
            text += '\n';
            text.append(lines.indent - INDENT, ' ');
        }
        text += bracket;
    }
    void begin_member(const json_lines &members, std::string_view name) {
        begin_line(members);
        append_quoted(text, name);
        text += ": ";
    }

    bool value(const json_lines &members, const key &row, const void *object, void *so_far);
    void counters(const json_lines &members, const key &row, const void *object, void *so_far);
    bool part(const json_lines &members, const key &row, const void *object, void *so_far);
    void list(const json_lines &members, const key &row, const void *object);
    bool row(const json_lines &members, const key &row, const void *object, void *so_far);
    bool rows(const json_lines &members, const key_table &table, const void *object, void *so_far);
    bool object(const key_table &table, const void *object, void *so_far, size_t indent);
};

bool is_same(const key_access &access, const void *object, const void *other) {
    return access.same != nullptr ? access.same(object, other)
                                  : access.get(object) == access.get(other);
}

bool writing::value(const json_lines &members, const key &row, const void *object, void *so_far) {
    const bool wanted = options.full || (row.always && !differences);
    if (!wanted && is_same(row.access, object, so_far)) {
        return true;
    }
    const key_value said = row.access.get(object);
    if (said.is == key_value::state::out_of_place) {
        return true;
    }
    if (!is_sayable(row, said)) {
        if (said.is == key_value::state::refused && said == row.access.get(so_far)) {
            return true; // a default that is no value
        }
        add_unsaid(row.name);
        return !row.required;
    }
    row.access.set(so_far, said);
    begin_member(members, row.name);
    append_value(text, row, said);
    return true;
}

void writing::counters(const json_lines &members, const key &row, const void *object,
                       void *so_far) {
    for (uint32_t index = 0; index < row.items; index++) {
        const key_value said = row.access.get_at(object, index);
        const bool told = said.is == key_value::state::told;
        if (said != row.access.get_at(so_far, index) || (options.full && told)) {
            begin_member(members, std::to_string(index));
            append_value(text, row, said);
        }
    }
}

bool writing::part(const json_lines &members, const key &row, const void *object, void *so_far) {
    const void *said = row.access.look(object);
    const bool expected = row.access.look(so_far) != nullptr;
    if (said == nullptr) {
        if (expected) {
            begin_member(members, row.name);
            text += "null";
        }
        return true;
    }
    const size_t before = text.size();
    const size_t outside = enter(row.name);
    const bool differences_outside = std::exchange(differences, expected);
    begin_member(members, row.name);
    const json_lines inner = open_lines('{', members.indent);
    const bool readable = rows(inner, *row.table, said, row.access.open(so_far));
    if (inner.is_empty(text) && expected) {
        text.resize(before);
    } else {
        close_lines('}', inner);
    }
    path.resize(outside);
    differences = differences_outside;
    return readable;
}

void writing::list(const json_lines &members, const key &row, const void *object) {
    const size_t before = text.size();
    const size_t outside = enter(row.name);
    const size_t list_path = path.size();
    const bool differences_outside = std::exchange(differences, false);
    begin_member(members, row.name);
    const size_t value_start = text.size();
    const json_lines items = open_lines('[', members.indent);
    size_t place = 0;
    const bool there = row.access.each(object, [&](const void *item) {
        path += '[';
        append_number(path, place);
        path += ']';
        const std::shared_ptr<void> so_far = row.table->make(place++);
        const size_t before_item = text.size();
        begin_line(items);
        if (!this->object(*row.table, item, so_far.get(), items.indent) || place > row.items) {
            text.resize(before_item);
        }
        path.resize(list_path);
    });
    if (!there && row.refusable) {
        text.resize(value_start);
        text += "null";
    } else if (!there || (items.is_empty(text) && !options.full)) {
        text.resize(before);
    } else {
        close_lines(']', items);
    }
    path.resize(outside);
    differences = differences_outside;
    if (place > row.items) {
        add_unsaid(row.name);
    }
}

bool writing::row(const json_lines &members, const key &row, const void *object, void *so_far) {
    switch (row.type) {
    case key_type::included: {
        const void *inner = row.access.look(object);
        return inner == nullptr || rows(members, *row.table, inner, row.access.open(so_far));
    }
    case key_type::counters:
        counters(members, row, object, so_far);
        return true;
    case key_type::object:
        return part(members, row, object, so_far);
    case key_type::list:
        list(members, row, object);
        return true;
    default:
        return value(members, row, object, so_far);
    }
}

bool writing::rows(const json_lines &members, const key_table &table, const void *object,
                   void *so_far) {
    bool readable = true;
    for (const key &row : table.keys) {
        if (!path.empty() || options.keys.empty() || options.keys.contains(row.name)) {
            readable = this->row(members, row, object, so_far) && readable;
        }
    }
    return readable;
}

bool writing::object(const key_table &table, const void *object, void *so_far, size_t indent) {
    const json_lines members = open_lines('{', indent);
    const bool readable = rows(members, table, object, so_far);
    close_lines('}', members);
    return readable;
}

} // namespace

std::string object_text(const key_table &table, const void *object, const write_options &options,
                        std::vector<std::string> &unsaid) {
    std::string text;
    const std::shared_ptr<void> so_far = table.make(0);
    writing{text, unsaid, options}.object(table, object, so_far.get(), 0);
    return text;
}
