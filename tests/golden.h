// The tables of tests/golden: one row a line, the columns between tabs.
#ifndef TESTS_GOLDEN_H
#define TESTS_GOLDEN_H

#include <cstdint>
#include <string>
#include <vector>

// The rows of a table, without the comment lines, which begin with "#". "\x0a" stands for the byte
// with that number. An empty table fails the test.
std::vector<std::vector<std::string>> golden(const char *name);

// A whole file of tests/golden, as it stands.
std::string golden_text(const char *name);

// The number of a column, as C writes it; a negative one wraps.
uint32_t number(const std::string &text);

#endif
