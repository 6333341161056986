// Arguments for the rows of the command table.
#ifndef TESTS_HOSTILE_ROW_ARGUMENTS_H
#define TESTS_HOSTILE_ROW_ARGUMENTS_H

#include "frontend/kestrel_cmd_list.h"
#include "tests/hostile/hostile_driver.h"

#include <string>
#include <vector>

// The arguments to try with a row: common ones, the words of the row's own documentation, and
// garbage.
std::vector<std::string> arguments_of(const kestrel_cmd_row &row, hostile_random &random);

// Up to 200 printable characters, without the ";" that separates commands.
std::string some_garbage(hostile_random &random);

#endif
