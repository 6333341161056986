// The agent and the host's shell as a hostile run finds them: at the command pipe, and behind
// popen.
//
// Linked into a program, this module takes over popen, pclose, open, unlink and poll. The tool's
// output files lie in /tmp, and nothing waits: the agent acts while the tool believes that it
// sleeps.
#ifndef TESTS_HOSTILE_HOSTILE_AGENT_H
#define TESTS_HOSTILE_HOSTILE_AGENT_H

#include <string>

struct hostile_agent {
    bool reads_pipe = false;  // false: nobody has the pipe open
    std::string output;       // what it prints when it is asked for anything
    std::string shell_output; // what the host's shell prints
};

// Set the agent up anew and remove what the one before left behind.
void hostile_agent_restart(hostile_agent next);

#endif
