// What a captured host file says of the capture itself. It takes no part in comparisons of hosts.
#ifndef HOST_CAPTURE_NOTE_H
#define HOST_CAPTURE_NOTE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

struct refused_opcode {
    uint16_t opcode = 0;
    uint32_t count = 0; // questions that were refused, ends of walks aside
};

struct capture_note {
    std::string version;                                // of the program
    std::string time;                                   // of its start, "2026-11-22T06:20:00Z"
    std::optional<std::vector<std::string>> keys;       // that were asked for; all when absent
    bool whole = true;                                  // nothing was cut
    std::optional<std::vector<std::string>> cut;        // what was, in a line each
    std::optional<std::vector<refused_opcode>> refused; // absent when nothing was
};

#endif
