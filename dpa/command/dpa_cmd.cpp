#include "dpa/command/dpa_cmd.h"

#include "frontend/handlers.h"
#include "frontend/kxcmd.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <iterator>
#include <poll.h>
#include <sys/stat.h>
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

// A busy agent opens its pipe late. The tool waits for it as long as for its output.
constexpr int PIPE_READER_TRIES = 200;
constexpr int PIPE_READER_PAUSE = 100; // milliseconds

constexpr int ONE_SECOND = 1000; // milliseconds

// These signals end the conversation in order. Then they do what they do without it.
constexpr int ENDING_SIGNALS[] = {SIGINT, SIGHUP, SIGTERM};

// The last of these signals that came, 0 for none. A signal handler can reach nothing else.
volatile sig_atomic_t ended_by = 0;

void end_conversation(int signal) {
    ended_by = signal;
}

struct conversation {
    int pipe = -1; // to the agent
    int file = -1; // what the agent prints
    char file_name[OUTPUT_FILE_NAME_SIZE] = "";

    // The reader of standard output has gone away, as when ssh is killed. Only a write would raise
    // a signal, and a conversation that waits writes nothing. So every wait looks for a reader.
    bool reader_is_gone = false;

    // What the process did on a signal before; a host process may have handlers of its own.
    struct sigaction before[std::size(ENDING_SIGNALS)]{};
    struct sigaction on_broken_pipe {};
};

bool is_over(const conversation &talk) {
    return ended_by != 0 || talk.reader_is_gone;
}

// A wait that one of the signals interrupts is not resumed. A signal that is ignored, as a hang-up
// under nohup, stays ignored. SIGPIPE comes only after the file is removed. So an agent that goes
// away in the middle causes a failed write and not the end of the tool. The waits notice a standard
// output without a reader.
void catch_ending_signals(conversation &talk) {
    struct sigaction ignored {};
    ignored.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &ignored, &talk.on_broken_pipe);
    struct sigaction caught {};
    caught.sa_handler = end_conversation;
    for (size_t i = 0; i < std::size(ENDING_SIGNALS); ++i) {
        sigaction(ENDING_SIGNALS[i], nullptr, &talk.before[i]);
        if (talk.before[i].sa_handler != SIG_IGN) {
            sigaction(ENDING_SIGNALS[i], &caught, nullptr);
        }
    }
}

void restore_ending_signals(const conversation &talk) {
    for (size_t i = 0; i < std::size(ENDING_SIGNALS); ++i) {
        sigaction(ENDING_SIGNALS[i], &talk.before[i], nullptr);
    }
    sigaction(SIGPIPE, &talk.on_broken_pipe, nullptr);
}

// poll reports a missing reader of a pipe as POLLERR, of a socket as POLLHUP, and of a file never.
bool tells_of_no_reader(const pollfd &output) {
    return (output.revents & (POLLERR | POLLHUP)) != 0;
}

// Wait, but not on after one of the signals or when nobody reads standard output any more. The
// flush shows an operator the output as it comes, also through a pipe.
void wait_for(conversation &talk, int milliseconds) {
    fflush(stdout);
    pollfd output = {STDOUT_FILENO, 0, 0};
    const int found = poll(&output, 1, milliseconds);
    if (found > 0 && tells_of_no_reader(output)) {
        talk.reader_is_gone = true;
    } else if (found > 0 || (found < 0 && errno != EINTR)) {
        // Standard output is closed, or poll cannot watch it.
        usleep(static_cast<useconds_t>(milliseconds) * 1000);
    }
}

bool is_own_file(const struct stat &file) {
    return S_ISREG(file.st_mode) && file.st_uid == geteuid() && file.st_nlink == 1;
}

// A file that exists is left over from a run with the same process number, and is emptied. But it
// must be a plain file of the caller's without another name. Returns 0, or the errno that says why
// there is no file.
int create_output_file(const char *name) {
    const int created =
        open(name, O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, OUTPUT_FILE_MODE);
    if (created == -1) {
        return errno;
    }
    struct stat found {};
    int error = EEXIST;
    if (fstat(created, &found) == 0 && is_own_file(found)) {
        error = ftruncate(created, 0) == 0 ? 0 : errno;
    }
    close(created);
    return error;
}

// Create the file and open it for reading. Returns false after a line.
bool open_output_file(conversation &talk) {
    snprintf(talk.file_name, sizeof talk.file_name, "%s.%u", OUTPUT_FILE_PREFIX,
             static_cast<unsigned>(getpid()));
    const int error = create_output_file(talk.file_name);
    if (error != 0) {
        printf("Couldn't create %s %d - %s\n", talk.file_name, error, strerror(error));
        return false;
    }
    talk.file = open(talk.file_name, O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (talk.file == -1) {
        printf(" Error opening %s exiting %s\n", talk.file_name, strerror(errno));
    }
    return talk.file != -1;
}

// A plain open would wait for a reader forever, and a missing agent could not be reported.
int try_command_pipe() {
    return open(COMMAND_PIPE, O_WRONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
}

// Everybody may write to the folder of the pipe. If there is no FIFO but something else, it must at
// least be a file that nobody else can lose.
bool is_pipe_or_own_file(int pipe) {
    struct stat found {};
    return fstat(pipe, &found) == 0 && (S_ISFIFO(found.st_mode) || is_own_file(found));
}

// A FIFO without a reader; a socket, which fails in the same way, never has one.
bool lacks_a_reader(int pipe) {
    struct stat found {};
    return pipe == -1 && errno == ENXIO && lstat(COMMAND_PIPE, &found) == 0 &&
           S_ISFIFO(found.st_mode);
}

// Open the pipe; its writes wait as usual. Returns false after a line. Returns false without a line
// when the conversation was over before a reader came.
bool open_command_pipe(conversation &talk) {
    int pipe = try_command_pipe();
    for (int tries = 0; lacks_a_reader(pipe) && tries < PIPE_READER_TRIES; ++tries) {
        wait_for(talk, PIPE_READER_PAUSE);
        if (is_over(talk)) {
            return false;
        }
        pipe = try_command_pipe();
    }
    if (pipe != -1 && !is_pipe_or_own_file(pipe)) {
        close(pipe);
        pipe = -1;
        errno = EPERM;
    }
    if (pipe == -1) {
        printf(" Error opening fifo (%d), exiting\n", errno);
        return false;
    }
    fcntl(pipe, F_SETFL, fcntl(pipe, F_GETFL) & ~O_NONBLOCK);
    talk.pipe = pipe;
    return true;
}

// The pipe is full while the agent does not read it. The tool waits for the agent, but a process
// whose conversation is over must be able to end: from then on writes do not wait.
void wait_for_room(conversation &talk) {
    pollfd watched[] = {{talk.pipe, POLLOUT, 0}, {STDOUT_FILENO, 0, 0}};
    int ready = 0;
    while (ready == 0 && !is_over(talk)) {
        ready = poll(watched, std::size(watched), ONE_SECOND);
        if (ready == -1 && errno == EINTR) {
            ready = 0;
        }
    }
    if (ready > 0 && tells_of_no_reader(watched[1])) {
        talk.reader_is_gone = true;
    }
    if (is_over(talk)) {
        fcntl(talk.pipe, F_SETFL, fcntl(talk.pipe, F_GETFL) | O_NONBLOCK);
    }
}

bool send_to_agent(conversation &talk, const char *message, size_t length) {
    wait_for_room(talk);
    return kx_send_to_fd(talk.pipe, message, static_cast<int>(length)) == 0;
}

bool redirect_to_file(conversation &talk) {
    char message[PIPE_MESSAGE_SIZE];
    snprintf(message, sizeof message, "%s %s", REDIRECT_SET, talk.file_name);
    return send_to_agent(talk, message, strlen(message) + 1);
}

void send_command(conversation &talk, const char *command) {
    char message[PIPE_MESSAGE_SIZE];
    snprintf(message, sizeof message, "%s", command);
    if (message[0] == '\0') {
        printf("No command");
        return;
    }
    const size_t length = std::min(strlen(message), sizeof message - 2);
    message[length] = '\n';
    if (send_to_agent(talk, message, length + 1)) {
        wait_for(talk, ONE_SECOND);
    } else {
        printf("write failed");
    }
}

// The output is text; a NUL in it, such as one after the marker, is not shown and hides nothing.
void print_without_nuls(const char *text, size_t length) {
    while (length > 0) {
        const size_t piece = strnlen(text, length);
        fwrite(text, 1, piece, stdout);
        const size_t passed = std::min(piece + 1, length);
        text += passed;
        length -= passed;
    }
}

// See kx_read_out_from_fd.
const char *show_output(conversation &talk) {
    // The text that was read last, after as much of the text before it as can begin a marker.
    char window[END_MARKER_LENGTH - 1 + READ_SIZE];
    size_t carried = 0;
    int idle_reads = 0;
    while (!is_over(talk)) {
        if (ferror(stdout) != 0) {
            wait_for(talk, 0); // to see whether the reader has gone away
            break;
        }
        const ssize_t got = read(talk.file, window + carried, READ_SIZE);
        if (got < 0 || idle_reads == IDLE_READS_LIMIT) {
            break;
        }
        if (got == 0) {
            ++idle_reads;
            wait_for(talk, ONE_SECOND);
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

// Whatever fails or ends the conversation, the agent is asked to stop redirecting.
void run_in_agent(conversation &talk, const char *command) {
    if (redirect_to_file(talk)) {
        wait_for(talk, ONE_SECOND);
        if (!is_over(talk)) {
            printf("=>dpa command is: %s\n", command);
            send_command(talk, command);
        }
    } else {
        printf("write failed");
    }
    if (!send_to_agent(talk, REDIRECT_RESET, sizeof REDIRECT_RESET)) {
        printf("write failed");
    } else if (!is_over(talk)) {
        show_output(talk);
        printf("\n");
    }
}

// All of the command between catching the signals and giving them back.
int run_command(conversation &talk, const char *command) {
    if (!open_output_file(talk)) {
        return -1;
    }
    const bool opened = open_command_pipe(talk);
    if (!opened && !is_over(talk)) {
        // Deliberate: without an agent the created file stays, and so does its descriptor.
        return -1;
    }
    if (opened) {
        run_in_agent(talk, command);
        close(talk.pipe);
    }
    close(talk.file);
    unlink(talk.file_name);
    return 0;
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
    conversation talk;
    talk.file = fd;
    return show_output(talk);
}

int kx_dpa_cmd(const char *arg) {
    if (arg == nullptr) {
        printf("Missing dpa command\n");
        return -1;
    }
    conversation talk;
    catch_ending_signals(talk);
    const int result = run_command(talk, arg);
    restore_ending_signals(talk);
    if (!is_over(talk)) {
        return result;
    }
    const int signal = ended_by != 0 ? ended_by : SIGPIPE;
    ended_by = 0;
    fflush(stdout);
    raise(signal);
    // The signal did not end this host process, but it ends the commands after this one.
    return KXCMD_STOP;
}
