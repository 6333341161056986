#include "host/keys.h"
#include "host/reference/reference.h"
#include "host/value.h"

#include <algorithm>
#include <iterator>

#include <nlohmann/json.hpp>

namespace {

using json = nlohmann::ordered_json;

constexpr const char *NUMBER_TEXT = "^(0|[1-9][0-9]*|0[0-7]+|0[xX][0-9A-Fa-f]+)$";

// The ranges that fields as a whole have stand once in the document, as "up_to_255" and so on.
constexpr uint64_t WHOLE_FIELDS[] = {UINT8_MAX, UINT16_MAX, UINT32_MAX, UINT64_MAX};

json definition(const std::string &name) {
    return {{"$ref", "#/$defs/" + name}};
}

json text_of_pattern(const char *pattern) {
    return {{"type", "string"}, {"pattern", pattern}};
}

json one_of(const json &one, const json &other) {
    return {{"oneOf", json::array({one, other})}};
}

json list_of(const key &row, const json &items) {
    json schema = {{"type", "array"}, {"items", items}};
    if (row.items < UINT32_MAX) {
        schema["maxItems"] = row.items;
    }
    return schema;
}

std::string up_to(uint64_t most) {
    return "up_to_" + std::to_string(most);
}

json range(uint64_t least, uint64_t most) {
    return {{"type", {"integer", "string"}},
            {"minimum", least},
            {"maximum", most},
            {"pattern", NUMBER_TEXT}};
}

json number_schema(const key &row) {
    const bool whole_field = row.least == 0 && std::count(std::begin(WHOLE_FIELDS),
                                                          std::end(WHOLE_FIELDS), row.most) != 0;
    return whole_field ? definition(up_to(row.most)) : range(row.least, row.most);
}

json flag_schema(const key &row) {
    const json plain = {{"type", "boolean"}};
    const json other = {{"type", "integer"}, {"minimum", 2}, {"maximum", row.most}};
    return row.most == 1 ? plain : one_of(plain, other);
}

json word_schema(const key &row) {
    json words;
    for (const key_word &word : row.words) {
        words.push_back(word.name);
    }
    return one_of({{"enum", words}}, number_schema(row));
}

json value_schema(const key &row) {
    switch (row.type) {
    case key_type::flag:
        return flag_schema(row);
    case key_type::word:
        return word_schema(row);
    case key_type::words:
        return one_of(list_of(row, word_schema(row)), number_schema(row));
    case key_type::text:
        return {{"type", "string"}, {"maxLength", row.most}};
    case key_type::texts:
        return list_of(row, {{"type", "string"}});
    case key_type::hex:
        return text_of_pattern("^((([0-9A-Fa-f]{2})+|[0-9A-Fa-f]{2}\\*[0-9]+)"
                               "(,(([0-9A-Fa-f]{2})+|[0-9A-Fa-f]{2}\\*[0-9]+))*)?$");
    case key_type::mac:
        return text_of_pattern("^[0-9A-Fa-f]{1,2}(:[0-9A-Fa-f]{1,2}){5}$");
    case key_type::ipv4:
        return text_of_pattern("^[0-9]{1,3}(\\.[0-9]{1,3}){3}$");
    case key_type::ipv6:
        return text_of_pattern("^[0-9A-Fa-f:.]+$");
    case key_type::interface:
        return one_of(text_of_pattern("^[A-Za-z]"), number_schema(row));
    case key_type::numbers:
        return one_of(list_of(row, number_schema(row)),
                      text_of_pattern("^([0-9]+(-[0-9]+)?(,[0-9]+(-[0-9]+)?)*)?$"));
    case key_type::object:
        return definition(row.table->name);
    case key_type::list:
        return list_of(row, definition(row.table->name));
    default:
        return number_schema(row);
    }
}

bool has_default_value(const key &row) {
    return !row.required && row.otherwise == nullptr && row.type != key_type::object &&
           row.type != key_type::list;
}

json key_schema(const key &row, const void *fresh) {
    json schema = value_schema(row);
    if (row.refusable) {
        const json null = {{"type", "null"}};
        if (schema.contains("oneOf")) {
            schema["oneOf"].push_back(null);
        } else {
            schema = {{"oneOf", {schema, null}}};
        }
    }
    schema["description"] = row.meaning;
    if (has_default_value(row)) {
        schema["default"] = json::parse(value_text(row, row.access.get(fresh)));
    }
    return schema;
}

std::string counter_names(const key &row) {
    std::string names;
    for (uint32_t index = 0; index < row.items; index++) {
        names += (index == 0 ? "" : "|") + std::to_string(index);
    }
    return "^(" + names + ")$";
}

void add_rows(json &schema, const key_table &table, const void *fresh) {
    for (const key &row : table.keys) {
        if (row.type == key_type::included) {
            add_rows(schema, *row.table, row.access.look(fresh));
        } else if (row.type == key_type::counters) {
            schema["patternProperties"][counter_names(row)] = number_schema(row);
        } else {
            schema["properties"][row.name] = key_schema(row, fresh);
        }
        if (row.required) {
            schema["required"].push_back(row.name);
        }
    }
}

json table_schema(const key_table &table) {
    json schema = {{"title", table.title}, {"type", "object"}};
    add_rows(schema, table, table.make(0).get());
    schema["additionalProperties"] = false;
    return schema;
}

} // namespace

std::string reference_schema() {
    json schema = {{"$schema", "https://json-schema.org/draft/2020-12/schema"}};
    schema.update(table_schema(HOST_KEYS));
    for (const key_section &section : all_sections()) {
        if (section.table != &HOST_KEYS) {
            schema["$defs"][section.table->name] = table_schema(*section.table);
        }
    }
    for (const uint64_t most : WHOLE_FIELDS) {
        schema["$defs"][up_to(most)] = range(0, most);
    }
    return schema.dump(2) + "\n";
}
