// A process that is the agent of a described host, at the agent's own paths.
#ifndef SIM_AGENT_AGENT_PROCESS_H
#define SIM_AGENT_AGENT_PROCESS_H

#include "host/agent.h"
#include "sim/agent/agent_paths.h"

#include <string>

#include <sys/types.h>

class agent_process {
public:
    agent_process() = default;
    // Stops the process and removes its paths. A process whose parent dies ends too.
    ~agent_process();
    agent_process(const agent_process &) = delete;
    agent_process &operator=(const agent_process &) = delete;

    // The agent can be reached when this returns true. Otherwise `error` is one line.
    bool start(const agent_description &description, std::string &error);

private:
    agent_paths paths_;
    pid_t process_ = -1;
};

#endif
