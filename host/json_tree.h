// A JSON text as a tree whose values know their line, so that a complaint about a host file can say
// where it is wrong.
#ifndef HOST_JSON_TREE_H
#define HOST_JSON_TREE_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct json_member;

struct json_value {
    enum class kind { null, boolean, number, other_number, text, list, object };

    kind type = kind::null;
    unsigned line = 0; // where the value starts, from 1
    bool boolean = false;
    uint64_t number = 0; // of kind number; a negative or broken number is other_number
    std::string text;    // of kind text, empty for others
    std::vector<json_value> items;
    std::vector<json_member> members;
};

struct json_member {
    std::string key;
    json_value value;
};

// What is wrong with a host description, thrown by the functions that read one.
struct host_error {
    unsigned line;
    std::string reason;
};

// Throws host_error for a malformed text, a key given twice, or nesting deeper than 64.
json_value parse_json(std::string_view text);

#endif
