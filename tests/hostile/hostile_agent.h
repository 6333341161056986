// An agent that answers whatever it is told to: the peer of the socket channel and of the command
// pipe, and the host's shell behind popen.
//
// Linked into a program, this module takes over popen, pclose, connect, creat, open, poll and sleep
// for the agent's paths. Nothing waits: the agent acts while the tool believes that it sleeps.
#ifndef TESTS_HOSTILE_HOSTILE_AGENT_H
#define TESTS_HOSTILE_HOSTILE_AGENT_H

#include <string>
#include <vector>

struct hostile_agent {
    // What a connection to the socket yields before the agent closes it for writing.
    std::string reply;
    bool accepts = false;    // false refuses the connection
    bool closes_all = false; // closes for reading too, so that writes fail
    // The agent's output, one piece for each second that the tool sleeps.
    std::vector<std::string> pieces;
    bool reads_pipe = false;     // false: nobody has the pipe open
    bool leaves_pipe = false;    // closes it behind the first message
    bool replaces_file = false;  // removes the output file and goes on in another one
    bool truncates_file = false; // empties the file before every piece
    // What the host's shell prints.
    std::string shell_output;
};

extern hostile_agent the_hostile_agent;

// Set the agent up anew and close what the one before had open.
void hostile_agent_restart(hostile_agent next);

// What the tool has written into the pipe so far.
std::string hostile_agent_heard();

#endif
