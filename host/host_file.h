// The host file: a described host as text, in the operator's words. docs/host-file.md has its keys.
#ifndef HOST_HOST_FILE_H
#define HOST_HOST_FILE_H

#include "host/host.h"
#include "host/objects.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// A larger file is refused.
constexpr size_t HOST_FILE_LIMIT = size_t{64} << 20; // bytes

// Read a host description into a host of which nothing is said. On failure returns false and sets
// `error` to one line, "NAME:LINE: key path: reason" of what is wrong first.
bool parse_host(std::string_view text, const std::string &name, host &into, std::string &error);

// All that is wrong with a host description, one such line each; empty when nothing is.
std::vector<std::string> check_host(std::string_view text, const std::string &name);

// Read a file. Returns false for one that cannot be read or is too large, and sets `error` to one
// line, "PATH: reason".
bool read_host_file(const std::string &path, std::string &text, std::string &error);

// Both: read the file and the description in it.
bool load_host(const std::string &path, host &into, std::string &error);

// The host's one description, with a newline at its end: keys in the order of the tables, defaults
// left out unless all is wanted. parse_host takes it back, but for values that no key can say:
// these are left out too, and their paths are added to `unsaid` when there is one.
std::string write_host(const host &described, const write_options &options = {},
                       std::vector<std::string> *unsaid = nullptr);

#endif
