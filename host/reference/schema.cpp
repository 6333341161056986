#include "host/json_tree.h"
#include "host/keys.h"
#include "host/reference/reference.h"
#include "host/value.h"

#include <nlohmann/json.hpp>

namespace {

using json = nlohmann::ordered_json;

bool has_default_value(const key &row) {
    return !row.required && row.otherwise == nullptr && row.type != key_type::object &&
           row.type != key_type::list;
}

json key_schema(const key &row, const void *fresh) {
    json schema = json::parse(form_of(row.type).schema(row));
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
            schema["patternProperties"][counter_names(row)] =
                json::parse(form_of(row.type).schema(row));
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
    for (const uint64_t most :
         {uint64_t{UINT8_MAX}, uint64_t{UINT16_MAX}, uint64_t{UINT32_MAX}, UINT64_MAX}) {
        schema["$defs"]["up_to_" + std::to_string(most)] =
            json::parse(ranged_number_schema(0, most));
    }
    return schema.dump(2) + "\n";
}
