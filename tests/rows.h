// The rows of the command table, read from their keywords.
#ifndef TESTS_ROWS_H
#define TESTS_ROWS_H

#include "frontend/kestrel_cmd_list.h"

#include <string>

// True for a keyword that describes the arguments and is not typed.
bool is_documentation(const char *keyword);

// The keywords as they stand, so that exactly this row matches.
std::string all_keywords(const kestrel_cmd_row &row, const char *separator = " ");

// The keywords that an operator types: up to the first one that only documents.
std::string command_of(const kestrel_cmd_row &row);

#endif
