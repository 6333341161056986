#include "sim/agent/agent_paths.h"

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <string_view>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

// An abstract name leaves no file, and goes away with its last holder.
constexpr std::string_view LOCK_NAME("\0tarnlab-agent", 14);
constexpr int LOCK_TRIES = 2000;
constexpr int LOCK_PAUSE = 10; // milliseconds
constexpr int BACKLOG = 8;

constexpr const char *IN_USE = "belongs to somebody else";

socklen_t fill_address(sockaddr_un &address, std::string_view name) {
    address = {};
    address.sun_family = AF_UNIX;
    name.copy(address.sun_path, sizeof address.sun_path - 1);
    return static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
}

int open_socket() {
    return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

bool bind_to(int socket, std::string_view name) {
    sockaddr_un address{};
    const socklen_t length = fill_address(address, name);
    return bind(socket, reinterpret_cast<const sockaddr *>(&address), length) == 0;
}

bool socket_is_served() {
    const int client = open_socket();
    sockaddr_un address{};
    const socklen_t length = fill_address(address, AGENT_SOCKET_PATH);
    const bool served = connect(client, reinterpret_cast<const sockaddr *>(&address), length) == 0;
    close(client);
    return served;
}

bool pipe_is_served() {
    const int writer = ::open(AGENT_PIPE_PATH, O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    if (writer != -1) {
        close(writer);
    }
    return writer != -1;
}

std::string failure(const char *path) {
    return std::string(path) + ": " + std::strerror(errno);
}

// Removes what a dead run left at the path; nothing there is fine too.
bool clear(const char *path, mode_t kind, bool (*is_served)(), std::string &error) {
    struct stat found {};
    if (lstat(path, &found) != 0) {
        return true;
    }
    if ((found.st_mode & S_IFMT) != kind || found.st_uid != geteuid() || is_served()) {
        error = std::string(path) + ": " + IN_USE;
        return false;
    }
    if (unlink(path) == 0) {
        return true;
    }
    error = failure(path);
    return false;
}

// A signal that would end the process waits until there is nothing left to remove.
bool is_to_end() {
    sigset_t waiting;
    sigpending(&waiting);
    for (const int number : {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGPIPE}) {
        if (sigismember(&waiting, number) == 1) {
            return true;
        }
    }
    return false;
}

void close_one(int &descriptor) {
    if (descriptor != -1) {
        close(descriptor);
    }
    descriptor = -1;
}

} // namespace

agent_paths::~agent_paths() {
    if (owns_socket_) {
        unlink(AGENT_SOCKET_PATH);
    }
    if (owns_pipe_) {
        unlink(AGENT_PIPE_PATH);
    }
    close_descriptors();
    close_one(lock_);
}

void agent_paths::close_descriptors() {
    close_one(listener_);
    close_one(pipe_);
}

bool agent_paths::claim(std::string &error) {
    return lock(error) && open(error);
}

bool agent_paths::open(std::string &error) {
    return open_listener(error) && open_pipe(error);
}

bool agent_paths::lock(std::string &error) {
    lock_ = open_socket();
    for (int tries = 0; tries < LOCK_TRIES && !is_to_end(); tries++) {
        if (bind_to(lock_, LOCK_NAME)) {
            return true;
        }
        poll(nullptr, 0, LOCK_PAUSE);
    }
    error = std::string(AGENT_SOCKET_PATH) + ": " + IN_USE;
    return false;
}

bool agent_paths::open_listener(std::string &error) {
    if (!clear(AGENT_SOCKET_PATH, S_IFSOCK, socket_is_served, error)) {
        return false;
    }
    listener_ = open_socket();
    owns_socket_ = bind_to(listener_, AGENT_SOCKET_PATH);
    if (owns_socket_ && listen(listener_, BACKLOG) == 0) {
        return true;
    }
    error = failure(AGENT_SOCKET_PATH);
    return false;
}

bool agent_paths::open_pipe(std::string &error) {
    if (!clear(AGENT_PIPE_PATH, S_IFIFO, pipe_is_served, error)) {
        return false;
    }
    owns_pipe_ = mkfifo(AGENT_PIPE_PATH, 0600) == 0;
    // Open for writing as well, so that the pipe has no end between two commands.
    if (owns_pipe_) {
        pipe_ = ::open(AGENT_PIPE_PATH, O_RDWR | O_NONBLOCK | O_CLOEXEC);
    }
    if (pipe_ != -1) {
        return true;
    }
    error = failure(AGENT_PIPE_PATH);
    return false;
}
