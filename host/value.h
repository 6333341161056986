// Values of keys as the host file writes them.
#ifndef HOST_VALUE_H
#define HOST_VALUE_H

#include "host/json_tree.h"
#include "host/key.h"

#include <string>

// Read the value of a key that is neither an object nor a list. Returns what was expected, empty
// when the value is right.
std::string read_value(const key &row, const json_value &given, key_value &value);

// True for a value that the key takes.
bool is_sayable(const key &row, const key_value &value);

void append_number(std::string &text, uint64_t number);

// Append the value in its one form, which read_value takes back. A list goes over several lines,
// the last one `indent` blanks deep.
void append_value(std::string &text, const key &row, const key_value &value, size_t indent);

// The same alone.
std::string value_text(const key &row, const key_value &value);

#endif
