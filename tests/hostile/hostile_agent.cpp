#undef _TIME_BITS
#undef _FILE_OFFSET_BITS

#include "tests/hostile/hostile_agent.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

hostile_agent the_hostile_agent;

namespace {

constexpr const char *COMMAND_PIPE = "/tmp/dpafifo";
constexpr const char *OUTPUT_FILE_PREFIX = "/var/log/dpaout";
constexpr const char *MEMORY_FILE = "agents-output";

int pipe_reader = -1;          // the agent's end of the command pipe
int output_file = -1;          // where the agent prints
int socket_peer = -1;          // the agent's end of the connection
std::vector<int> read_by_tool; // descriptors of output files, some of which it leaves open
size_t next_piece = 0;
std::string heard;

void close_and_forget(int &descriptor) {
    if (descriptor != -1) {
        close(descriptor);
    }
    descriptor = -1;
}

// The numbers of those that the tool has closed may mean other files by now.
void close_what_the_tool_left() {
    for (const int descriptor : read_by_tool) {
        char name[32];
        char target[64] = {};
        snprintf(name, sizeof name, "/proc/self/fd/%d", descriptor);
        if (readlink(name, target, sizeof target - 1) > 0 &&
            strstr(target, MEMORY_FILE) != nullptr) {
            close(descriptor);
        }
    }
    read_by_tool.clear();
}

void listen_to_pipe() {
    char bytes[4096];
    for (ssize_t got = 0; pipe_reader != -1; heard.append(bytes, static_cast<size_t>(got))) {
        got = read(pipe_reader, bytes, sizeof bytes);
        if (got <= 0) {
            break;
        }
    }
    if (the_hostile_agent.leaves_pipe && !heard.empty()) {
        close_and_forget(pipe_reader);
    }
}

void print_piece() {
    if (output_file == -1 || next_piece == the_hostile_agent.pieces.size()) {
        return;
    }
    if (the_hostile_agent.truncates_file && ftruncate(output_file, 0) == 0) {
        lseek(output_file, 0, SEEK_SET);
    }
    const std::string &piece = the_hostile_agent.pieces[next_piece++];
    if (write(output_file, piece.data(), piece.size()) == -1) {
        perror("hostile agent");
    }
}

int open_pipe() {
    int ends[2];
    if (!the_hostile_agent.reads_pipe || pipe2(ends, O_NONBLOCK) == -1) {
        errno = ENXIO;
        return -1;
    }
    close_and_forget(pipe_reader);
    pipe_reader = ends[0];
    return ends[1];
}

// The file lives in memory alone. The tool reads one descriptor and the agent writes another.
int open_output_file() {
    if (output_file == -1) {
        errno = ENOENT;
        return -1;
    }
    char name[32];
    snprintf(name, sizeof name, "/proc/self/fd/%d", output_file);
    const auto reading = static_cast<int>(syscall(SYS_openat, AT_FDCWD, name, O_RDONLY, 0));
    read_by_tool.push_back(reading);
    if (the_hostile_agent.replaces_file) {
        close_and_forget(output_file);
        output_file = memfd_create(MEMORY_FILE, 0);
    }
    return reading;
}

int any_open(const char *path, int flags, mode_t mode) {
    if (strcmp(path, COMMAND_PIPE) == 0) {
        return open_pipe();
    }
    if (strncmp(path, OUTPUT_FILE_PREFIX, strlen(OUTPUT_FILE_PREFIX)) == 0) {
        return open_output_file();
    }
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

mode_t mode_of(int flags, va_list values) {
    return (flags & O_CREAT) != 0 ? va_arg(values, mode_t) : 0;
}

int create_output_file() {
    close_and_forget(output_file);
    output_file = memfd_create(MEMORY_FILE, 0);
    return dup(output_file);
}

} // namespace

void hostile_agent_restart(hostile_agent next) {
    close_and_forget(pipe_reader);
    close_and_forget(output_file);
    close_and_forget(socket_peer);
    close_what_the_tool_left();
    the_hostile_agent = std::move(next);
    next_piece = 0;
    heard.clear();
}

std::string hostile_agent_heard() {
    listen_to_pipe();
    return heard;
}

extern "C" {

int open(const char *path, int flags, ...) {
    va_list values;
    va_start(values, flags);
    const mode_t mode = mode_of(flags, values);
    va_end(values);
    return any_open(path, flags, mode);
}

int open64(const char *path, int flags, ...) {
    va_list values;
    va_start(values, flags);
    const mode_t mode = mode_of(flags, values);
    va_end(values);
    return any_open(path, flags | O_LARGEFILE, mode);
}

int creat(const char * /*path*/, mode_t /*mode*/) {
    return create_output_file();
}

int creat64(const char * /*path*/, mode_t /*mode*/) {
    return create_output_file();
}

unsigned sleep(unsigned seconds) {
    // The tool has one thread; a fuzzer's own threads really sleep.
    if (gettid() != getpid()) {
        const timespec pause = {static_cast<time_t>(seconds), 0};
        return nanosleep(&pause, nullptr) == 0 ? 0 : seconds;
    }
    listen_to_pipe();
    print_piece();
    return 0;
}

int poll(pollfd * /*watched*/, nfds_t /*count*/, int /*timeout*/) {
    return 0;
}

FILE *popen(const char * /*command*/, const char * /*mode*/) {
    std::string &output = the_hostile_agent.shell_output;
    // An empty text cannot be opened as a file.
    return output.empty() ? fopen("/dev/null", "r") : fmemopen(output.data(), output.size(), "r");
}

int pclose(FILE *file) {
    return fclose(file);
}

int connect(int descriptor, const sockaddr * /*address*/, socklen_t /*length*/) {
    int ends[2];
    if (!the_hostile_agent.accepts || socketpair(AF_UNIX, SOCK_STREAM, 0, ends) == -1) {
        errno = ECONNREFUSED;
        return -1;
    }
    dup2(ends[0], descriptor);
    close(ends[0]);
    close_and_forget(socket_peer);
    socket_peer = ends[1];
    const std::string &reply = the_hostile_agent.reply;
    if (write(socket_peer, reply.data(), reply.size()) == -1) {
        perror("hostile agent");
    }
    shutdown(socket_peer, the_hostile_agent.closes_all ? SHUT_RDWR : SHUT_WR);
    return 0;
}
}
