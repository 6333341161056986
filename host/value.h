// Values of keys: what each type of key is like in the host file and in the documents.
#ifndef HOST_VALUE_H
#define HOST_VALUE_H

#include "host/json_tree.h"
#include "host/key.h"

#include <string>

// All that tells one type of key from the others. Objects, lists and what is included have no
// values: `read` and `append` are null for them.
struct key_form {
    const char *name;                      // in documents
    std::string (*takes)(const key &row);  // in documents; words and numbers in backquotes
    std::string (*schema)(const key &row); // JSON Schema of a value, as JSON
    // Returns what was expected, empty when the value is right. `value` is fresh.
    std::string (*read)(const key &row, const json_value &given, key_value &value);
    bool (*is_sayable)(const key &row, const key_value &value); // of a value that is told
    void (*append)(std::string &text, const key &row, const key_value &value); // likewise
};

const key_form &form_of(key_type type);

// The schema of a number. Those of the ranges that fields as a whole have stand once in the
// document, as "up_to_255" and so on.
std::string ranged_number_schema(uint64_t least, uint64_t most);

// Read the value of a key that is neither an object nor a list. Returns what was expected, empty
// when the value is right.
std::string read_value(const key &row, const json_value &given, key_value &value);

// True for a value that the key takes.
bool is_sayable(const key &row, const key_value &value);

void append_number(std::string &text, uint64_t number);

// Append the value in its one form, which read_value takes back, without a line's end.
void append_value(std::string &text, const key &row, const key_value &value);

// The same alone.
std::string value_text(const key &row, const key_value &value);

#endif
