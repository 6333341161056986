// The host file: a described host as text, in the operator's words.
#ifndef HOST_HOST_FILE_H
#define HOST_HOST_FILE_H

#include "host/host.h"

#include <string>
#include <string_view>

// Read a host description. On failure returns false and sets `error` to one line "NAME:LINE:
// reason"; line 0 says that the file could not be read at all.
bool parse_host(std::string_view text, const std::string &name, host &into, std::string &error);
bool load_host(const std::string &path, host &into, std::string &error);

#endif
