// Runs a command on a simulated host.
#include "host/host_file.h"
#include "sim/agent/agent_process.h"
#include "sim/builtin_host.h"
#include "sim/device/device_file.h"
#include "sim/host_programs.h"
#include "sim/lab/command_file.h"
#include "sim/lab/lab_options.h"
#include "sim/model.h"
#include "sim/preload_channel.h"
#include "sim/use.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int EXIT_CANNOT_RUN = 126;
constexpr int EXIT_NOT_FOUND = 127;
constexpr int EXIT_SIGNAL_BASE = 128;

// Returns the exit value of what cannot be done.
int complain(const std::string &line) {
    std::fprintf(stderr, "tarnlab: %s\n", line.c_str());
    return EXIT_WRONG_USE;
}

// A run in the making.
struct lab_run {
    lab_options options;
    std::string text; // of the host file
    host described;
    preload_channel channel;         // its trace is used with a device file, too
    std::vector<uint8_t> marks = {}; // of use, see use.h
    int signals = -1;                // where they are read, see HANDLED_SIGNALS
    sigset_t mask_before = {};
};

// The library is installed beside this program, below ../lib.
std::string library_path() {
    char self[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", self, sizeof self);
    std::string path(self, length > 0 ? static_cast<size_t>(length) : 0);
    for (int i = 0; i < 2; i++) {
        path.erase(std::min(path.rfind('/'), path.size()));
    }
    return path + "/lib/" + PRELOAD_LIBRARY;
}

bool read_host(lab_run &run, std::string &error) {
    const std::string &path = run.options.host;
    run.text = builtin_host_text();
    return (path.empty() || read_host_file(path, run.text, error)) &&
           parse_host(run.text, path.empty() ? "built-in host" : path, run.described, error);
}

bool start_trace(lab_run &run, std::string &error) {
    const std::string &path = run.options.trace;
    if (path.empty()) {
        return true;
    }
    run.channel.trace =
        path == "-" ? fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0)
                    : open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0666);
    if (run.channel.trace == -1) {
        error = path + ": cannot be written: " + std::strerror(errno);
    }
    return run.channel.trace != -1;
}

// A file without a name that holds the bytes; -1 when there is no room.
int nameless_file(std::string_view bytes) {
    const int file = memfd_create("tarnlab", MFD_CLOEXEC);
    while (file != -1 && !bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written <= 0) {
            close(file);
            return -1;
        }
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return file;
}

// All that the preloaded library is handed. False with one line in `error`.
bool open_channel(lab_run &run, std::string &error) {
    preload_channel &channel = run.channel;
    const std::string library = library_path();
    channel.library = open(library.c_str(), O_RDONLY | O_CLOEXEC);
    if (channel.library == -1) {
        error = library + ": " + std::strerror(errno);
        return false;
    }
    channel.host = nameless_file(run.text);
    channel.met = nameless_file(std::string(run.marks.size(), '\0'));
    if (channel.host == -1 || channel.met == -1) {
        error = std::string("the host description: ") + std::strerror(errno);
        return false;
    }
    return true;
}

// In the command's process: let the library find what is for it.
void hand_over(const preload_channel &channel) {
    for (const int descriptor : {channel.library, channel.host, channel.trace, channel.met}) {
        if (descriptor != -1) {
            fcntl(descriptor, F_SETFD, 0);
        }
    }
    std::string preload = path_of(channel.library);
    const char *others = std::getenv("LD_PRELOAD");
    if (others != nullptr && *others != '\0') {
        preload += std::string(":") + others;
    }
    setenv("LD_PRELOAD", preload.c_str(), 1);
    char handed[64];
    std::snprintf(handed, sizeof handed, PRELOAD_FORMAT, channel.library, channel.host,
                  channel.trace, channel.met);
    setenv(PRELOAD_VARIABLE, handed, 1);
}

[[noreturn]] void become_command(const lab_options &options) {
    execvp(options.command[0], options.command);
    const int reason = errno;
    std::fprintf(stderr, "tarnlab: %s: %s\n", options.command[0], std::strerror(reason));
    _exit(reason == ENOENT ? EXIT_NOT_FOUND : EXIT_CANNOT_RUN);
}

// What is read from `run.signals`: the command's end, and what asks a program to end, which goes to
// the command. From before anything is made that is to be removed none of them comes by itself.
constexpr int HANDLED_SIGNALS[] = {SIGCHLD, SIGTERM, SIGHUP, SIGPIPE};
// A terminal sends these to the command as well.
constexpr int TERMINAL_SIGNALS[] = {SIGINT, SIGQUIT};

// Block these, but for what is ignored: that stays so, as a hang-up under nohup. Returns what is
// blocked.
sigset_t block(std::span<const int> numbers) {
    sigset_t blocked;
    sigemptyset(&blocked);
    for (const int number : numbers) {
        struct sigaction now {};
        sigaction(number, nullptr, &now);
        if (now.sa_handler != SIG_IGN) {
            sigaddset(&blocked, number);
        }
    }
    sigprocmask(SIG_BLOCK, &blocked, nullptr);
    return blocked;
}

bool hold_back_signals(lab_run &run, std::string &error) {
    sigprocmask(SIG_BLOCK, nullptr, &run.mask_before);
    const sigset_t handled = block(HANDLED_SIGNALS);
    block(TERMINAL_SIGNALS);
    run.signals = signalfd(-1, &handled, SFD_CLOEXEC);
    if (run.signals == -1) {
        error = std::string("signalfd: ") + std::strerror(errno);
    }
    return run.signals != -1;
}

// One that came before there was a command was meant for it, too; from now on it gets them by
// itself.
void leave_terminal_to(pid_t command) {
    sigset_t waiting;
    sigpending(&waiting);
    for (const int number : TERMINAL_SIGNALS) {
        if (sigismember(&waiting, number) == 1) {
            kill(command, number);
        }
        std::signal(number, SIG_IGN);
    }
}

// Returns the process, or -1 after a complaint. Without a library nothing is preloaded.
pid_t start_command(const lab_run &run) {
    const pid_t child = fork();
    if (child == 0) {
        if (run.channel.library != -1) {
            hand_over(run.channel);
        }
        sigprocmask(SIG_SETMASK, &run.mask_before, nullptr);
        become_command(run.options);
    }
    if (child == -1) {
        std::perror("tarnlab: fork");
        return -1;
    }
    leave_terminal_to(child);
    return child;
}

// Wait for the command's end, and answer the requests of the device file meanwhile, -1 for none.
// Whoever ends this program means the command, whose end is then ours.
int serve_command(pid_t command, int signals, int device, model &driver) {
    pollfd watched[] = {{device, POLLIN, 0}, {signals, POLLIN, 0}};
    int status = 0;
    while (waitpid(command, &status, WNOHANG) != command) {
        if (poll(watched, 2, -1) == -1) {
            continue;
        }
        signalfd_siginfo arrived{};
        if (watched[1].revents != 0 && read(signals, &arrived, sizeof arrived) > 0 &&
            arrived.ssi_signo != SIGCHLD) {
            kill(command, static_cast<int>(arrived.ssi_signo));
        }
        if (watched[0].revents != 0 && !serve_device_request(device, driver)) {
            watched[0].fd = -1;
        }
    }
    return WIFSIGNALED(status) ? EXIT_SIGNAL_BASE + WTERMSIG(status) : WEXITSTATUS(status);
}

// The driver's device as a file, -1 with one line in `error`.
int open_device(lab_run &run, model &driver, std::string &error) {
    driver.take(run.described);
    mark_use_of(driver, run.marks.data());
    if (run.channel.trace != -1) {
        trace_into(driver, run.channel.trace);
    }
    return mount_device_file(error);
}

// The command with everything that its host has besides the driver. Returns the exit value, or -1
// with one line in `error`.
int run_on_host(lab_run &run, std::string &error) {
    model driver;
    const int device = run.options.device ? open_device(run, driver, error) : -1;
    const bool ready = run.options.device ? device != -1 : open_channel(run, error);
    agent_process agent;
    host_programs programs;
    if (!ready || (run.described.agent && !agent.start(*run.described.agent, error)) ||
        !programs.install(run.described, error)) {
        return -1;
    }
    const pid_t command = start_command(run);
    if (command == -1) {
        return EXIT_CANNOT_RUN;
    }
    const int exit_value = serve_command(command, run.signals, device, driver);
    // On a device file they were set here.
    [[maybe_unused]] const ssize_t got =
        pread(run.channel.met, run.marks.data(), run.marks.size(), 0);
    return exit_value;
}

int run(lab_run &run) {
    std::string error;
    if (!read_host(run, error) || !start_trace(run, error)) {
        return complain(error);
    }
    if (!run.options.device) {
        error = why_not_preloaded(run.options.command[0]);
    }
    run.marks.resize(marks_of(run.described));
    const bool ready = error.empty() && hold_back_signals(run, error);
    const int exit_value = ready ? run_on_host(run, error) : -1;
    if (ready) {
        // One that ended the wait for the agent's paths ends this program here.
        sigprocmask(SIG_SETMASK, &run.mask_before, nullptr);
    }
    if (exit_value == -1) {
        return complain(error);
    }
    for (const std::string &line : use_report(run.described, run.marks, run.options.host)) {
        complain(line);
    }
    return exit_value;
}

int check(const std::string &path) {
    std::string text;
    std::string error;
    if (!read_host_file(path, text, error)) {
        return complain(error);
    }
    const std::vector<std::string> wrong = check_host(text, path);
    for (const std::string &line : wrong) {
        std::fprintf(stderr, "%s\n", line.c_str());
    }
    return wrong.empty() ? EXIT_SUCCESS : EXIT_WRONG_USE;
}

int print(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() &&
        std::fflush(stdout) == 0) {
        return EXIT_SUCCESS;
    }
    complain(std::string("standard output: ") + std::strerror(errno));
    return EXIT_FAILURE;
}

int print_host(lab_run &planned) {
    std::string error;
    if (!read_host(planned, error)) {
        return complain(error);
    }
    return print(planned.options.full ? write_host(planned.described, {.full = true})
                                      : planned.text);
}

// Files that are opened here must not take the place of closed standard streams, whose texts would
// go there. The command finds them closed.
void fill_standard_streams() {
    int file = STDIN_FILENO;
    while (file != -1 && file <= STDERR_FILENO) {
        file = open("/dev/null", O_RDWR | O_CLOEXEC);
    }
    if (file != -1) {
        close(file);
    }
}

} // namespace

int main(int argc, char **argv) {
    // Whoever started this program may have left it ignored, and then no child can be waited for.
    std::signal(SIGCHLD, SIG_DFL);
    fill_standard_streams();
    lab_run planned;
    std::string error;
    if (!read_options(argc, argv, planned.options, error)) {
        return complain(error);
    }
    switch (planned.options.what) {
    case lab_options::task::check:
        return check(planned.options.host);
    case lab_options::task::print_host:
        return print_host(planned);
    case lab_options::task::version:
        return print("tarnlab " TARN_VERSION "\n");
    case lab_options::task::help:
        return print(LAB_HELP);
    default:
        return run(planned);
    }
}
