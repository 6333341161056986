#include "sim/agent/agent_process.h"

#include "sim/agent/agent_channel.h"
#include "sim/agent/agent_shell.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <list>
#include <string_view>
#include <utility>
#include <vector>

#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

void feed_from(int pipe, agent_shell &shell) {
    char piece[4096];
    const ssize_t got = read(pipe, piece, sizeof piece);
    if (got > 0) {
        shell.feed(std::string_view(piece, static_cast<size_t>(got)));
    }
}

// One thing after the other, as the agent itself does: a slow command keeps requests waiting.
[[noreturn]] void serve(const agent_paths &paths, agent_description description) {
    std::list<agent_channel> channels;
    agent_answers answers{std::move(description.answers)};
    agent_shell shell(description.commands);
    for (;;) {
        std::vector<pollfd> waiting = {{paths.listener(), POLLIN, 0}, {paths.pipe(), POLLIN, 0}};
        for (const agent_channel &channel : channels) {
            waiting.push_back({channel.descriptor(), POLLIN, 0});
        }
        if (poll(waiting.data(), waiting.size(), -1) == -1) {
            continue;
        }
        auto ready = waiting.begin() + 2;
        std::erase_if(channels, [&](agent_channel &channel) {
            return (ready++)->revents != 0 && !channel.serve();
        });
        if (waiting[1].revents != 0) {
            feed_from(paths.pipe(), shell);
        }
        if (waiting[0].revents == 0) {
            continue;
        }
        const int client = accept4(paths.listener(), nullptr, nullptr, SOCK_CLOEXEC);
        if (client != -1) {
            channels.emplace_back(client, answers);
        }
    }
}

[[noreturn]] void become_agent(pid_t parent, const agent_paths &paths,
                               const agent_description &description) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
        _exit(0);
    }
    // An interrupt from the terminal is the command's.
    std::signal(SIGINT, SIG_IGN);
    std::signal(SIGQUIT, SIG_IGN);
    serve(paths, description);
}

} // namespace

agent_process::~agent_process() {
    if (process_ == -1) {
        return;
    }
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
}

bool agent_process::start(const agent_description &description, std::string &error) {
    if (!paths_.claim(error)) {
        return false;
    }
    const pid_t parent = getpid();
    process_ = fork();
    if (process_ == 0) {
        become_agent(parent, paths_, description);
    }
    if (process_ == -1) {
        error = std::string("agent: fork: ") + std::strerror(errno);
    }
    paths_.close_descriptors();
    return process_ != -1;
}
