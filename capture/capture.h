// A capture: the host behind this machine's driver, as a description from which every display
// prints what it prints here.
#ifndef CAPTURE_CAPTURE_H
#define CAPTURE_CAPTURE_H

#include "host/host_file.h"

#include <chrono>
#include <optional>
#include <set>
#include <string>
#include <vector>

struct capture_request {
    std::set<std::string> keys{};  // top-level keys of the host file; all when empty
    bool (*is_wanted)() = nullptr; // asked now and then; false ends the capture
    bool shows_progress = false;   // on standard error
    std::chrono::seconds time_limit{600};
};

constexpr const char *TOO_LARGE = "the host file would be larger than tarnlab takes (64 MiB)";
static_assert(HOST_FILE_LIMIT == size_t{64} << 20);

// The top-level keys of the host file that a capture can fill.
std::set<std::string> captured_keys();

// Ask for what these keys are about, and for what no key can say when all are asked for or
// "overrides" is. The description may hold more than was asked for. `version` is the program's.
// Returns why there is no capture, a line for standard error, and nothing when there is one, whole
// or not, which the description says.
std::string capture_host(const capture_request &asked, const std::string &version, host &described);

// The lines about it for standard error: what was cut, and how much was refused, by opcode when
// that is asked for.
std::vector<std::string> report_of(const capture_note &capture, bool by_opcode);

// The host's own management address, which no driver tells: what its program says, asked as the
// tool asks it; none on a host without the program.
std::optional<std::string> ask_management_address();

#endif
