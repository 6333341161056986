#include "host/json_tree.h"

#include "host/text.h"

#include <cstddef>
#include <iterator>
#include <string_view>
#include <unordered_set>
#include <utility>

#include <nlohmann/json.hpp>

namespace {

constexpr size_t DEPTH_LIMIT = 64;

// Walks the text and counts the lines that the lexer has taken so far.
struct counting_iterator {
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char *;
    using reference = const char &;

    const char *at;
    unsigned *newlines;
    bool *after_newline;

    reference operator*() const {
        return *at;
    }
    counting_iterator &operator++() {
        *after_newline = *at == '\n';
        *newlines += *after_newline ? 1 : 0;
        ++at;
        return *this;
    }
    bool operator==(const counting_iterator &other) const {
        return at == other.at;
    }
};

// The parser's own words, without its place in the text: a token may stand in them with what was
// read before it.
std::string parser_reason(std::string_view what) {
    constexpr size_t LONGEST = 200;
    for (const std::string_view end : {"] ", "parse error at ", ": "}) {
        const size_t found = what.find(end);
        if (found != std::string_view::npos) {
            what.remove_prefix(found + end.size());
        }
    }
    return bytes_to_utf8(what.substr(0, LONGEST));
}

struct tree_builder {
    unsigned newlines = 0;
    bool after_newline = false;
    json_value root;
    std::vector<json_value *> open;
    std::vector<std::unordered_set<std::string>> keys; // of each value in `open`

    // A number ends with the character behind it, which may already be the line's end.
    unsigned line() const {
        return newlines + 1;
    }
    unsigned number_line() const {
        return newlines + (after_newline ? 0 : 1);
    }

    json_value &add(json_value::kind type, unsigned at_line) {
        json_value *place = &root;
        if (!open.empty()) {
            json_value &parent = *open.back();
            place = parent.type == json_value::kind::list ? &parent.items.emplace_back()
                                                          : &parent.members.back().value;
        }
        place->type = type;
        place->line = at_line;
        return *place;
    }

    bool enter(json_value::kind type) {
        if (open.size() == DEPTH_LIMIT) {
            throw host_error{line(), "nested too deeply"};
        }
        open.push_back(&add(type, line()));
        keys.emplace_back();
        return true;
    }
    bool leave() {
        open.pop_back();
        keys.pop_back();
        return true;
    }

    // The events that nlohmann's parser sends.
    bool null() {
        add(json_value::kind::null, line());
        return true;
    }
    bool boolean(bool value) {
        add(json_value::kind::boolean, line()).boolean = value;
        return true;
    }
    bool number_integer(int64_t) {
        add(json_value::kind::other_number, number_line());
        return true;
    }
    bool number_unsigned(uint64_t value) {
        add(json_value::kind::number, number_line()).number = value;
        return true;
    }
    bool number_float(double, const std::string &) {
        add(json_value::kind::other_number, number_line());
        return true;
    }
    bool string(std::string &value) {
        add(json_value::kind::text, line()).text = std::move(value);
        return true;
    }
    bool binary(std::vector<uint8_t> &) {
        return false;
    }
    bool start_object(size_t) {
        return enter(json_value::kind::object);
    }
    bool end_object() {
        return leave();
    }
    bool start_array(size_t) {
        return enter(json_value::kind::list);
    }
    bool end_array() {
        return leave();
    }
    bool key(std::string &name) {
        if (!keys.back().insert(name).second) {
            throw host_error{line(), "\"" + name + "\" is given twice"};
        }
        open.back()->members.push_back({std::move(name), {}});
        return true;
    }
    bool parse_error(size_t, const std::string &, const nlohmann::json::exception &failed) {
        throw host_error{number_line(), "not JSON: " + parser_reason(failed.what())};
    }
};

} // namespace

json_value parse_json(std::string_view text) {
    tree_builder builder;
    const counting_iterator first{text.data(), &builder.newlines, &builder.after_newline};
    const counting_iterator last{text.data() + text.size(), nullptr, nullptr};
    nlohmann::json::sax_parse(first, last, &builder);
    return std::move(builder.root);
}
