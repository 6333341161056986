// The command lines that a host is looked at with: every built display row of the command table,
// with what its documentation lets an operator type.
#ifndef TESTS_CAPTURE_DISPLAY_ROWS_H
#define TESTS_CAPTURE_DISPLAY_ROWS_H

#include "host/host.h"

#include <cstddef>
#include <set>
#include <string>
#include <vector>

struct display_line {
    std::string row; // the row's keywords
    std::vector<std::string> words;
};

// At most `samples` numbers or names for each argument, from the host's own and, with strangers,
// some that it does not have, and all alternatives that a row names.
std::vector<display_line> display_lines(const host &described, bool with_strangers, size_t samples);

#endif
