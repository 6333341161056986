// The agent's command interpreter, fed from its pipe.
#ifndef SIM_AGENT_AGENT_SHELL_H
#define SIM_AGENT_AGENT_SHELL_H

#include "host/agent.h"

#include <string>
#include <string_view>
#include <vector>

class agent_shell {
public:
    // `commands` outlive the shell.
    explicit agent_shell(const std::vector<agent_command> &commands);
    ~agent_shell();
    agent_shell(const agent_shell &) = delete;
    agent_shell &operator=(const agent_shell &) = delete;

    // Obey the messages that are whole: each ends with a NUL or a newline.
    void feed(std::string_view bytes);

private:
    void obey(const std::string &message);
    void redirect(const std::string &path);
    void run(const std::string &command);
    void print(std::string_view text) const;

    const std::vector<agent_command> &commands_;
    std::string pending_;
    int output_ = -1; // -1 while output is not redirected: it is lost then
};

#endif
