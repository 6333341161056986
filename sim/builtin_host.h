// The host that stands in when no file is named.
#ifndef SIM_BUILTIN_HOST_H
#define SIM_BUILTIN_HOST_H

#include <string_view>

std::string_view builtin_host_text();

#endif
