// The user-space agent of a described host: what it answers on its socket and prints for commands.
#ifndef HOST_AGENT_H
#define HOST_AGENT_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The first answer that fits a request is given; a request that none fits fails.
struct agent_answer {
    uint16_t opcode = 0;
    std::optional<uint32_t> argument; // any when absent
    uint32_t only_time = 0;           // the n-th matching request from 1, 0 for each of them
    uint32_t status = 0;              // of the answer; with any but 0 the buffers come back as sent
    std::vector<uint8_t> reply;       // cut or filled up with zeros to the caller's room
    uint32_t delay = 0;               // milliseconds before the answer
    bool silent = false;              // the request is taken and never answered
    std::optional<uint32_t> close_after; // bytes of the reply message, then the connection closes
};

struct agent_command {
    std::string command;       // the whole line
    std::string output;        // printed as it is
    uint32_t delay = 0;        // milliseconds before the output
    uint32_t split_marker = 0; // bytes of the end marker that are written with the output
    uint32_t pause = 0;        // milliseconds before the rest of the marker, when it is split
    bool silent = false;       // prints nothing, not even the marker
};

struct agent_description {
    std::vector<agent_answer> answers;
    std::vector<agent_command> commands;
};

#endif
