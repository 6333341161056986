// Values of keys: what each type of key is like in the host file.
#ifndef HOST_VALUE_H
#define HOST_VALUE_H

#include "host/json_tree.h"
#include "host/keys.h"

#include <string>

// "0 to 255": the numbers that the key takes.
std::string range_of(const key &row);

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
