#include "host/json_tree.h"
#include "host/keys.h"
#include "host/reference/reference.h"
#include "host/value.h"

#include <nlohmann/json.hpp>

namespace {

using json = nlohmann::ordered_json;

constexpr const char *NUMBER_TEXT = "^(0|[1-9][0-9]*|0[0-7]+|0[xX][0-9A-Fa-f]+)$";
constexpr const char *RANGES_TEXT = "^([0-9]+(-[0-9]+)?(,[0-9]+(-[0-9]+)?)*)?$";
constexpr const char *HEX_TEXT = "^(PIECE(,PIECE)*)?$";
constexpr const char *HEX_PIECE = "(([0-9A-Fa-f]{2})+|[0-9A-Fa-f]{2}\\*[0-9]+)";
constexpr const char *MAC_TEXT = "^[0-9A-Fa-f]{1,2}(:[0-9A-Fa-f]{1,2}){5}$";
constexpr const char *IPV4_TEXT = "^[0-9]{1,3}(\\.[0-9]{1,3}){3}$";
constexpr const char *IPV6_TEXT = "^[0-9A-Fa-f:.]+$";
constexpr const char *INTERFACE_TEXT = "^(Veth[0-9]+|Eth[0-9]+/[0-9]+|Po[0-9]+)$";

std::string hex_text() {
    std::string pattern = HEX_TEXT;
    const std::string name = "PIECE";
    for (size_t at = 0; (at = pattern.find(name)) != std::string::npos;) {
        pattern.replace(at, name.size(), HEX_PIECE);
    }
    return pattern;
}

json ranged_number(uint64_t least, uint64_t most) {
    return {{"type", {"integer", "string"}},
            {"minimum", least},
            {"maximum", most},
            {"pattern", NUMBER_TEXT}};
}

// The ranges that fields as a whole have stand once.
constexpr uint64_t FIELD_RANGES[] = {UINT8_MAX, UINT16_MAX, UINT32_MAX, UINT64_MAX};

std::string field_range_name(uint64_t most) {
    return "up_to_" + std::to_string(most);
}

json reference_to(const std::string &name) {
    return {{"$ref", "#/$defs/" + name}};
}

json number(const key &row) {
    for (const uint64_t most : FIELD_RANGES) {
        if (row.least == 0 && row.most == most) {
            return reference_to(field_range_name(most));
        }
    }
    return ranged_number(row.least, row.most);
}

json text_like(const char *pattern) {
    return {{"type", "string"}, {"pattern", pattern}};
}

json one_of(std::initializer_list<json> choices) {
    json all = json::array();
    for (const json &choice : choices) {
        all.push_back(choice);
    }
    return {{"oneOf", all}};
}

json word(const key &row) {
    json words = json::array();
    for (const key_word &known : row.words) {
        words.push_back(known.name);
    }
    return one_of({{{"enum", words}}, number(row)});
}

json array_of(const json &items, uint64_t most) {
    json array = {{"type", "array"}, {"items", items}};
    if (most < UINT32_MAX) {
        array["maxItems"] = most;
    }
    return array;
}

json flag(const key &row) {
    json plain = {{"type", "boolean"}};
    if (row.most == 1) {
        return plain;
    }
    return one_of({plain, {{"type", "integer"}, {"minimum", 2}, {"maximum", row.most}}});
}

json value_schema(const key &row) {
    switch (row.type) {
    case key_type::flag:
        return flag(row);
    case key_type::word:
        return word(row);
    case key_type::words:
        return one_of({array_of(word(row), UINT32_MAX), number(row)});
    case key_type::text:
        return {{"type", "string"}, {"maxLength", row.most}};
    case key_type::hex:
        return text_like(hex_text().c_str());
    case key_type::mac:
        return text_like(MAC_TEXT);
    case key_type::ipv4:
        return text_like(IPV4_TEXT);
    case key_type::ipv6:
        return text_like(IPV6_TEXT);
    case key_type::interface:
        return one_of({text_like(INTERFACE_TEXT), number(row)});
    case key_type::numbers:
        return one_of({array_of(number(row), row.items), text_like(RANGES_TEXT)});
    case key_type::object:
        return reference_to(row.table->name);
    case key_type::list:
        return array_of(reference_to(row.table->name), row.items);
    default:
        return number(row);
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
            schema = one_of({schema, null});
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
            schema["patternProperties"][counter_names(row)] = number(row);
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
    for (const uint64_t most : FIELD_RANGES) {
        schema["$defs"][field_range_name(most)] = ranged_number(0, most);
    }
    return schema.dump(2) + "\n";
}
