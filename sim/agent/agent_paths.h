// The socket and the pipe at which commands look for the agent. There is one of each on a machine.
#ifndef SIM_AGENT_AGENT_PATHS_H
#define SIM_AGENT_AGENT_PATHS_H

#include <string>

constexpr const char *AGENT_SOCKET_PATH = "/var/tmp/kxtarncmd_api_socket";
constexpr const char *AGENT_PIPE_PATH = "/tmp/dpafifo";

// Holds both paths while it lives, then removes them. What an earlier run left there is replaced.
// Descriptors are closed in programs that the process starts.
class agent_paths {
public:
    agent_paths() = default;
    ~agent_paths();
    agent_paths(const agent_paths &) = delete;
    agent_paths &operator=(const agent_paths &) = delete;

    // Lock, then open. On failure these return false and set `error` to one line "PATH: reason".
    bool claim(std::string &error);

    // Wait for other agents of this kind, up to 20 seconds, or until a blocked signal is pending
    // that asks the process to end.
    bool lock(std::string &error);

    // Put both in place. Refuses what somebody else made or serves.
    bool open(std::string &error);

    // The listening socket and the pipe's reading end, -1 before claim.
    int listener() const {
        return listener_;
    }
    int pipe() const {
        return pipe_;
    }

    // Close both and keep the paths: another process serves them now.
    void close_descriptors();

private:
    int lock_ = -1;
    int listener_ = -1;
    int pipe_ = -1;
    bool owns_socket_ = false;
    bool owns_pipe_ = false;
};

#endif
