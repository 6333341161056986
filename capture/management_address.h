// The host's own management address, which no driver tells.
#ifndef CAPTURE_MANAGEMENT_ADDRESS_H
#define CAPTURE_MANAGEMENT_ADDRESS_H

#include <optional>
#include <string>

// What the host's program tells, asked as the tool asks it; none on a host without the program.
std::optional<std::string> ask_management_address();

#endif
