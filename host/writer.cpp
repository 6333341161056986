#include "host/objects.h"

#include "host/text.h"
#include "host/value.h"

#include <memory>
#include <string_view>
#include <utility>

namespace {

constexpr size_t INDENT = 2;

bool is_same(const key_access &access, const void *object, const void *other) {
    return access.same != nullptr ? access.same(object, other)
                                  : access.get(object) == access.get(other);
}

// Where the writer is.
struct writing_place {
    size_t start = 0;         // of the text behind the bracket of the object or list at hand
    size_t indent = 0;        // of its items, each on a line of its own, in blanks
    size_t path = 0;          // length of its path
    bool differences = false; // only what differs is written, not what always is
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
    std::string path{};
    writing_place at{};

    bool is_empty() const {
        return text.size() == at.start;
    }

    void add_to_path(std::string_view name) {
        path += path.empty() ? "" : ".";
        path += name;
    }
    void add_unsaid(std::string_view name) {
        add_to_path(name);
        unsaid.push_back(path);
        path.resize(at.path);
    }

    // Go into an object or a list whose path is at its end. Returns the place to come back to.
    writing_place open(char bracket, bool differences) {
        text += bracket;
        return std::exchange(at, {text.size(), at.indent + INDENT, path.size(), differences});
    }
    void close(char bracket, const writing_place &outside) {
        if (!is_empty()) {
            text += '\n';
            text.append(outside.indent, ' ');
        }
        text += bracket;
        leave(outside);
    }
    void leave(const writing_place &outside) {
        at = outside;
        path.resize(at.path);
    }
    void begin_line() {
        text += is_empty() ? "\n" : ",\n";
        text.append(at.indent, ' ');
    }
    void begin_member(std::string_view name) {
        begin_line();
        append_quoted(text, name);
        text += ": ";
    }

    bool write_value(const key &row, const void *object, void *so_far) {
        const bool wanted = options.full || (row.always && !at.differences);
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
        begin_member(row.name);
        append_value(text, row, said);
        return true;
    }

    void write_counters(const key &row, const void *object, const void *so_far) {
        for (uint32_t index = 0; index < row.items; index++) {
            const key_value said = row.access.get_at(object, index);
            const bool told = said.is == key_value::state::told;
            if (said != row.access.get_at(so_far, index) || (options.full && told)) {
                begin_member(std::to_string(index));
                append_value(text, row, said);
            }
        }
    }

    bool write_part(const key &row, const void *object, void *so_far) {
        const void *said = row.access.look(object);
        const bool expected = row.access.look(so_far) != nullptr;
        if (said == nullptr) {
            if (expected) {
                begin_member(row.name);
                text += "null";
            }
            return true;
        }
        const size_t before = text.size();
        begin_member(row.name);
        add_to_path(row.name);
        const writing_place outside = open('{', expected);
        const bool readable = write_rows(*row.table, said, row.access.open(so_far));
        if (is_empty() && expected) {
            text.resize(before);
            leave(outside);
        } else {
            close('}', outside);
        }
        return readable;
    }

    void write_list(const key &row, const void *object) {
        const size_t before = text.size();
        begin_member(row.name);
        add_to_path(row.name);
        const size_t value_start = text.size();
        const writing_place outside = open('[', false);
        size_t place = 0;
        const bool there = row.access.each(object, [&](const void *item) {
            const std::shared_ptr<void> so_far = row.table->make(place);
            const size_t before_item = text.size();
            begin_line();
            path += '[';
            append_number(path, place++);
            path += ']';
            if (!write_object(*row.table, item, so_far.get()) || place > row.items) {
                text.resize(before_item);
            }
        });
        if (!there && row.refusable) {
            text.resize(value_start);
            text += "null";
            leave(outside);
        } else if (!there || (is_empty() && !options.full)) {
            text.resize(before);
            leave(outside);
        } else {
            close(']', outside);
        }
        if (place > row.items) {
            add_unsaid(row.name);
        }
    }

    bool write_row(const key &row, const void *object, void *so_far) {
        switch (row.type) {
        case key_type::included: {
            const void *inner = row.access.look(object);
            return inner == nullptr || write_rows(*row.table, inner, row.access.open(so_far));
        }
        case key_type::counters:
            write_counters(row, object, so_far);
            return true;
        case key_type::object:
            return write_part(row, object, so_far);
        case key_type::list:
            write_list(row, object);
            return true;
        default:
            return write_value(row, object, so_far);
        }
    }

    bool write_rows(const key_table &table, const void *object, void *so_far) {
        bool readable = true;
        for (const key &row : table.keys) {
            if (!path.empty() || options.keys.empty() || options.keys.contains(row.name)) {
                readable = write_row(row, object, so_far) && readable;
            }
        }
        return readable;
    }

    bool write_object(const key_table &table, const void *object, void *so_far) {
        const writing_place outside = open('{', at.differences);
        const bool readable = write_rows(table, object, so_far);
        close('}', outside);
        return readable;
    }
};

} // namespace

std::string object_text(const key_table &table, const void *object, const write_options &options,
                        std::vector<std::string> &unsaid) {
    std::string text;
    const std::shared_ptr<void> so_far = table.make(0);
    writing{text, unsaid, options}.write_object(table, object, so_far.get());
    return text;
}
