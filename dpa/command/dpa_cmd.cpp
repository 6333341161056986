#include "dpa/command/dpa_cmd.h"

#include "frontend/handlers.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

constexpr const char *OUTPUT_FILE_PREFIX = "/var/log/dpaout";
constexpr size_t OUTPUT_FILE_NAME_SIZE = 70;
constexpr mode_t OUTPUT_FILE_MODE = 0700;

constexpr const char *COMMAND_PIPE = "/tmp/dpafifo";
constexpr const char *REDIRECT_SET = "redirect set";
constexpr char REDIRECT_RESET[] = "redirect reset ";
constexpr size_t PIPE_MESSAGE_SIZE = 128;

constexpr char END_MARKER[] = "#byeBye#";
constexpr size_t END_MARKER_LENGTH = sizeof END_MARKER - 1;

constexpr size_t READ_SIZE = 127;
constexpr int IDLE_READS_LIMIT = 20;

// Between two commands the agent may be about to open its pipe again.
constexpr int PIPE_READER_TRIES = 30;
constexpr int PIPE_READER_PAUSE = 100; // milliseconds

// An operator sees the output as it comes, also behind a pipe.
void sleep_a_second() {
    fflush(stdout);
    sleep(1);
}

// Create the file and open it for reading. Returns the descriptor, or -1 after a line.
int open_output_file(const char *name) {
    const int created = creat(name, OUTPUT_FILE_MODE);
    if (created == -1) {
        printf("Couldn't create %s %d - %s\n", name, errno, strerror(errno));
        return -1;
    }
    close(created);
    const int file = open(name, O_RDONLY);
    if (file == -1) {
        printf(" Error opening %s exiting %s\n", name, strerror(errno));
    }
    return file;
}

// A plain open would wait for a reader forever, so that a missing agent could not be told. Returns
// the descriptor, whose writes wait as usual, or -1 after a line.
int open_command_pipe() {
    int pipe = open(COMMAND_PIPE, O_WRONLY | O_NONBLOCK);
    for (int tries = 1; pipe == -1 && errno == ENXIO && tries < PIPE_READER_TRIES; ++tries) {
        fflush(stdout);
        poll(nullptr, 0, PIPE_READER_PAUSE);
        pipe = open(COMMAND_PIPE, O_WRONLY | O_NONBLOCK);
    }
    if (pipe == -1) {
        printf(" Error opening fifo (%d), exiting\n", errno);
        return -1;
    }
    fcntl(pipe, F_SETFL, fcntl(pipe, F_GETFL) & ~O_NONBLOCK);
    return pipe;
}

bool redirect_to(int pipe, const char *file_name) {
    char message[PIPE_MESSAGE_SIZE];
    snprintf(message, sizeof message, "%s %s", REDIRECT_SET, file_name);
    return kx_send_to_fd(pipe, message, static_cast<int>(strlen(message)) + 1) == 0;
}

void send_command(int pipe, const char *command) {
    char message[PIPE_MESSAGE_SIZE];
    snprintf(message, sizeof message, "%s", command);
    if (message[0] == '\0') {
        printf("No command");
        return;
    }
    const size_t length = std::min(strlen(message), sizeof message - 2);
    message[length] = '\n';
    if (kx_send_to_fd(pipe, message, static_cast<int>(length) + 1) == 0) {
        sleep_a_second();
    } else {
        printf("write failed");
    }
}

// The conversation with the agent. Whatever fails, the agent is asked to stop redirecting.
void run_in_agent(int pipe, int file, const char *file_name, const char *command) {
    if (redirect_to(pipe, file_name)) {
        sleep_a_second();
        printf("=>dpa command is: %s\n", command);
        send_command(pipe, command);
    } else {
        printf("write failed");
    }
    if (kx_send_to_fd(pipe, REDIRECT_RESET, sizeof REDIRECT_RESET) == 0) {
        kx_read_out_from_fd(file);
        printf("\n");
    } else {
        printf("write failed");
    }
}

// The output is text; a NUL in it, such as one behind the marker, is not shown and hides nothing.
void print_without_nuls(const char *text, size_t length) {
    while (length > 0) {
        const size_t piece = strnlen(text, length);
        fwrite(text, 1, piece, stdout);
        const size_t passed = std::min(piece + 1, length);
        text += passed;
        length -= passed;
    }
}

} // namespace

int kx_send_to_fd(int fd, const void *data, int length) {
    const char *rest = static_cast<const char *>(data);
    while (length > 0) {
        const ssize_t written = write(fd, rest, static_cast<size_t>(length));
        if (written < 0) {
            printf("Write error %d - %s\n", errno, strerror(errno));
            return -1;
        }
        rest += written;
        length -= static_cast<int>(written);
    }
    return 0;
}

const char *kx_read_out_from_fd(int fd) {
    // What was read last, behind as much of the text before it as can begin a marker.
    char window[END_MARKER_LENGTH - 1 + READ_SIZE];
    size_t carried = 0;
    int idle_reads = 0;
    while (ferror(stdout) == 0) {
        const ssize_t got = read(fd, window + carried, READ_SIZE);
        if (got < 0 || idle_reads == IDLE_READS_LIMIT) {
            break;
        }
        if (got == 0) {
            ++idle_reads;
            sleep_a_second();
            continue;
        }
        idle_reads = 0;
        print_without_nuls(window + carried, static_cast<size_t>(got));
        const size_t length = carried + static_cast<size_t>(got);
        if (memmem(window, length, END_MARKER, END_MARKER_LENGTH) != nullptr) {
            return END_MARKER;
        }
        carried = std::min(length, END_MARKER_LENGTH - 1);
        memmove(window, window + length - carried, carried);
    }
    return nullptr;
}

int kx_dpa_cmd(const char *arg) {
    if (arg == nullptr) {
        printf("Missing dpa command\n");
        return -1;
    }
    char file_name[OUTPUT_FILE_NAME_SIZE];
    snprintf(file_name, sizeof file_name, "%s.%u", OUTPUT_FILE_PREFIX,
             static_cast<unsigned>(getpid()));
    const int file = open_output_file(file_name);
    if (file == -1) {
        return -1;
    }
    const int pipe = open_command_pipe();
    if (pipe == -1) {
        // Deliberate: without an agent the created file stays, and so does its descriptor.
        return -1;
    }
    // An agent that goes away in the middle is a failed write, not the end of the tool. A standard
    // output that went away still is: it always has a last line to write behind the restored
    // signal.
    const auto on_broken_pipe = signal(SIGPIPE, SIG_IGN);
    run_in_agent(pipe, file, file_name, arg);
    close(pipe);
    close(file);
    unlink(file_name);
    signal(SIGPIPE, on_broken_pipe);
    return 0;
}
