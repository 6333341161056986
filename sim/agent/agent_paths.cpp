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

int open_socket() {
    return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

// bind or connect.
template <typename Call> bool name_socket(Call call, int socket, std::string_view name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    name.copy(address.sun_path, sizeof address.sun_path - 1);
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
    return call(socket, reinterpret_cast<const sockaddr *>(&address), length) == 0;
}

void close_one(int &descriptor) {
    if (descriptor != -1) {
        close(descriptor);
    }
    descriptor = -1;
}

bool socket_is_served() {
    int client = open_socket();
    const bool served = name_socket(connect, client, AGENT_SOCKET_PATH);
    close_one(client);
    return served;
}

bool pipe_is_served() {
    int writer = open(AGENT_PIPE_PATH, O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    const bool served = writer != -1;
    close_one(writer);
    return served;
}

bool refuse(const char *path, const char *reason, std::string &error) {
    error = std::string(path) + ": " + reason;
    return false;
}

// Removes what a dead run left at the path; nothing there is fine too.
bool clear(const char *path, mode_t kind, bool (*is_served)(), std::string &error) {
    struct stat found {};
    if (lstat(path, &found) != 0) {
        return true;
    }
    if ((found.st_mode & S_IFMT) != kind || found.st_uid != geteuid() || is_served()) {
        return refuse(path, IN_USE, error);
    }
    return unlink(path) == 0 || refuse(path, std::strerror(errno), error);
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

bool agent_paths::lock(std::string &error) {
    lock_ = open_socket();
    for (int tries = 0; tries < LOCK_TRIES && !is_to_end(); tries++) {
        if (name_socket(bind, lock_, LOCK_NAME)) {
            return true;
        }
        poll(nullptr, 0, LOCK_PAUSE);
    }
    return refuse(AGENT_SOCKET_PATH, IN_USE, error);
}

bool agent_paths::open(std::string &error) {
    if (!clear(AGENT_SOCKET_PATH, S_IFSOCK, socket_is_served, error)) {
        return false;
    }
    listener_ = open_socket();
    owns_socket_ = name_socket(bind, listener_, AGENT_SOCKET_PATH);
    if (!owns_socket_ || listen(listener_, BACKLOG) == -1) {
        return refuse(AGENT_SOCKET_PATH, std::strerror(errno), error);
    }
    if (!clear(AGENT_PIPE_PATH, S_IFIFO, pipe_is_served, error)) {
        return false;
    }
    owns_pipe_ = mkfifo(AGENT_PIPE_PATH, 0600) == 0;
    // Open for writing as well, so that the pipe has no end between two commands.
    if (owns_pipe_) {
        pipe_ = ::open(AGENT_PIPE_PATH, O_RDWR | O_NONBLOCK | O_CLOEXEC);
    }
    return pipe_ != -1 || refuse(AGENT_PIPE_PATH, std::strerror(errno), error);
}
