#undef _TIME_BITS
#undef _FILE_OFFSET_BITS

#include "tests/hostile/hostile_agent.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr const char *COMMAND_PIPE = "/tmp/dpafifo";
constexpr const char *OUTPUT_FILE_PREFIX = "/var/log/dpaout";

hostile_agent agent;
int pipe_reader = -1; // the agent's end of the command pipe

// Where a file of the tool's really lies.
std::string place_of(const char *path) {
    const size_t prefix = strlen(OUTPUT_FILE_PREFIX);
    const bool output = strncmp(path, OUTPUT_FILE_PREFIX, prefix) == 0;
    return output ? std::string("/tmp/hostile-dpaout") + (path + prefix) : path;
}

std::string output_file() {
    return place_of(OUTPUT_FILE_PREFIX) + "." + std::to_string(getpid());
}

void print_output() {
    char heard[4096];
    FILE *file = nullptr;
    if (pipe_reader != -1 && read(pipe_reader, heard, sizeof heard) > 0) {
        file = fopen(output_file().c_str(), "a");
    }
    if (file != nullptr) {
        fputs(agent.output.c_str(), file);
        fclose(file);
    }
}

int open_pipe() {
    int ends[2];
    if (!agent.reads_pipe || pipe2(ends, O_NONBLOCK) == -1) {
        errno = ENXIO;
        return -1;
    }
    pipe_reader = ends[0];
    return ends[1];
}

int any_open(const char *path, int flags, va_list values) {
    if (strcmp(path, COMMAND_PIPE) == 0) {
        return open_pipe();
    }
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(values, mode_t) : 0;
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, place_of(path).c_str(), flags, mode));
}

} // namespace

void hostile_agent_restart(hostile_agent next) {
    if (pipe_reader != -1) {
        close(std::exchange(pipe_reader, -1));
    }
    unlink(output_file().c_str());
    agent = std::move(next);
}

extern "C" {

int open(const char *path, int flags, ...) {
    va_list values;
    va_start(values, flags);
    const int opened = any_open(path, flags, values);
    va_end(values);
    return opened;
}

int open64(const char *path, int flags, ...) {
    va_list values;
    va_start(values, flags);
    const int opened = any_open(path, flags | O_LARGEFILE, values);
    va_end(values);
    return opened;
}

int unlink(const char *path) noexcept {
    return static_cast<int>(syscall(SYS_unlink, place_of(path).c_str()));
}

// The tool sleeps with an eye on its standard output. The C library declares poll as one that only
// writes there.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
int poll(pollfd *watched, nfds_t count, int milliseconds) {
    if (count != 1 || watched->fd != STDOUT_FILENO || gettid() != getpid()) {
        return static_cast<int>(syscall(SYS_poll, watched, count, milliseconds));
    }
    watched->revents = 0;
    print_output();
    return 0;
}
#pragma GCC diagnostic pop

FILE *popen(const char * /*command*/, const char * /*mode*/) {
    std::string &output = agent.shell_output;
    // An empty text cannot be opened as a file.
    return output.empty() ? fopen("/dev/null", "r") : fmemopen(output.data(), output.size(), "r");
}

int pclose(FILE *file) {
    return fclose(file);
}
}
