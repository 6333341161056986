// Runs a command on a simulated host.
#include "host/host_file.h"
#include "sim/agent/agent_process.h"
#include "sim/builtin_host.h"
#include "sim/device/device_file.h"
#include "sim/host_programs.h"
#include "sim/model.h"
#include "sim/preload_variables.h"
#include "sim/trace_file.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <getopt.h>
#include <poll.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int EXIT_USAGE = 2;
constexpr int EXIT_CANNOT_RUN = 126;
constexpr int EXIT_NOT_FOUND = 127;
constexpr int EXIT_SIGNAL_BASE = 128;

constexpr const char *HELP =
    "Usage: tarnlab [--device] [--host FILE] [--trace FILE] COMMAND [ARGS...]\n"
    "\n"
    "Runs COMMAND, a 32-bit program, on a simulated host: its kestrel driver device is answered\n"
    "from a description of the host, no driver is needed. Where the description has an agent, that\n"
    "runs beside the command, at its own socket and pipe.\n"
    "\n"
    "  --device      serve the device as a real file, which only COMMAND and what it starts see,\n"
    "                instead of preloading a library; needs root and /dev/fuse\n"
    "  --host FILE   describe the host by FILE (JSON); the built-in host without it\n"
    "  --trace FILE  write one line for every request to the driver into FILE\n"
    "  --help        print this text\n"
    "\n"
    "The exit value is the command's, or 128 and the number of the signal that ended it. It is 2\n"
    "when the arguments or the host description are wrong, the agent's paths are taken or the device\n"
    "file cannot be had, 127 when COMMAND is not found.\n";

struct lab_options {
    bool device = false; // a real file instead of a preloaded library
    std::string host;    // empty for the built-in one
    std::string trace;   // empty for none
    char **command = nullptr;
};

// Returns false when the program is to end with `exit_value`.
bool read_options(int argc, char **argv, lab_options &options, int &exit_value) {
    static const option known[] = {{"device", no_argument, nullptr, 'd'},
                                   {"host", required_argument, nullptr, 'h'},
                                   {"trace", required_argument, nullptr, 't'},
                                   {"help", no_argument, nullptr, 'H'},
                                   {nullptr, 0, nullptr, 0}};
    int letter = 0;
    // The options end at the first word that is none: the rest is the command's.
    while ((letter = getopt_long(argc, argv, "+", known, nullptr)) != -1) {
        if (letter == 'd') {
            options.device = true;
        } else if (letter == 'h') {
            options.host = optarg;
        } else if (letter == 't') {
            options.trace = optarg;
        } else if (letter == 'H') {
            std::fputs(HELP, stdout);
            exit_value = 0;
            return false;
        } else {
            exit_value = EXIT_USAGE;
            return false;
        }
    }
    options.command = argv + optind;
    if (*options.command == nullptr) {
        std::fputs("tarnlab: no command given; see tarnlab --help\n", stderr);
        exit_value = EXIT_USAGE;
        return false;
    }
    return true;
}

// The library is installed beside this program, in ../lib.
std::string library_path() {
    char self[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", self, sizeof self);
    std::string path(self, length > 0 ? static_cast<size_t>(length) : 0);
    for (int i = 0; i < 2; i++) {
        path.erase(std::min(path.rfind('/'), path.size()));
    }
    return path + "/lib/" + PRELOAD_LIBRARY;
}

bool read_host(const lab_options &options, host &described) {
    std::string error;
    const bool read = options.host.empty()
                          ? parse_host(builtin_host_text(), "built-in host", described, error)
                          : load_host(options.host, described, error);
    if (!read) {
        std::fprintf(stderr, "tarnlab: %s\n", error.c_str());
    }
    return read;
}

bool start_trace(const lab_options &options) {
    if (options.trace.empty()) {
        return true;
    }
    const int file = open(options.trace.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (file != -1) {
        close(file);
        return true;
    }
    std::fprintf(stderr, "tarnlab: %s: cannot be written: %s\n", options.trace.c_str(),
                 std::strerror(errno));
    return false;
}

void set_variables(const lab_options &options) {
    std::string preload = library_path();
    const char *others = std::getenv("LD_PRELOAD");
    if (others != nullptr && *others != '\0') {
        preload += std::string(":") + others;
    }
    setenv("LD_PRELOAD", preload.c_str(), 1);
    if (options.host.empty()) {
        unsetenv(HOST_VARIABLE);
    } else {
        setenv(HOST_VARIABLE, options.host.c_str(), 1);
    }
    if (options.trace.empty()) {
        unsetenv(TRACE_VARIABLE);
    } else {
        setenv(TRACE_VARIABLE, options.trace.c_str(), 1);
    }
}

[[noreturn]] void become_command(const lab_options &options) {
    execvp(options.command[0], options.command);
    const int reason = errno;
    std::fprintf(stderr, "tarnlab: %s: %s\n", options.command[0], std::strerror(reason));
    _exit(reason == ENOENT ? EXIT_NOT_FOUND : EXIT_CANNOT_RUN);
}

int exit_value_of(int status) {
    return WIFSIGNALED(status) ? EXIT_SIGNAL_BASE + WTERMSIG(status) : WEXITSTATUS(status);
}

// Whoever ends this program means the command; what stands around the command is still removed.
volatile pid_t running_command = -1;

void pass_on(int signal) {
    if (running_command > 0) {
        kill(running_command, signal);
    }
}

int run_command(const lab_options &options) {
    const pid_t child = fork();
    if (child == 0) {
        set_variables(options);
        become_command(options);
    }
    if (child == -1) {
        std::perror("tarnlab: fork");
        return EXIT_CANNOT_RUN;
    }
    running_command = child;
    std::signal(SIGTERM, pass_on);
    std::signal(SIGHUP, pass_on);
    // An interrupt from the terminal is the command's to handle.
    std::signal(SIGINT, SIG_IGN);
    std::signal(SIGQUIT, SIG_IGN);
    int status = 0;
    while (waitpid(child, &status, 0) == -1 && errno == EINTR) {
    }
    return exit_value_of(status);
}

// Answer the device file's requests until the command ends. Signals that ask this program to end
// are the command's to follow, its end is then ours.
int serve_command(int channel, int signals, model &driver, pid_t command) {
    pollfd watched[] = {{channel, POLLIN, 0}, {signals, POLLIN, 0}};
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
        if (watched[0].revents != 0 && !serve_device_request(channel, driver)) {
            watched[0].fd = -1;
        }
    }
    return exit_value_of(status);
}

int run_on_device(const lab_options &options, const host &described, int channel) {
    model driver;
    driver.state = described;
    if (!options.trace.empty()) {
        trace_into(driver, options.trace);
    }
    sigset_t handled;
    sigset_t before;
    sigemptyset(&handled);
    for (const int number : {SIGCHLD, SIGTERM, SIGHUP}) {
        sigaddset(&handled, number);
    }
    sigprocmask(SIG_BLOCK, &handled, &before);
    const int signals = signalfd(-1, &handled, SFD_CLOEXEC);
    const pid_t child = signals == -1 ? -1 : fork();
    if (child == 0) {
        sigprocmask(SIG_SETMASK, &before, nullptr);
        become_command(options);
    }
    if (child == -1) {
        std::perror("tarnlab: fork");
        return EXIT_CANNOT_RUN;
    }
    // An interrupt from the terminal reaches the command by itself.
    std::signal(SIGINT, SIG_IGN);
    std::signal(SIGQUIT, SIG_IGN);
    return serve_command(channel, signals, driver, child);
}

// The command with everything that its host has besides the driver.
int run_on_host(const lab_options &options, const host &described) {
    std::string error;
    const int channel = options.device ? mount_device_file(error) : -1;
    agent_process agent;
    host_programs programs;
    if ((!options.device || channel != -1) &&
        (!described.agent || agent.start(*described.agent, error)) &&
        programs.install(described, error)) {
        return options.device ? run_on_device(options, described, channel) : run_command(options);
    }
    std::fprintf(stderr, "tarnlab: %s\n", error.c_str());
    return EXIT_USAGE;
}

} // namespace

int main(int argc, char **argv) {
    // Whoever started this program may have left it ignored, and then no child can be waited for.
    std::signal(SIGCHLD, SIG_DFL);
    lab_options options;
    int exit_value = 0;
    if (!read_options(argc, argv, options, exit_value)) {
        return exit_value;
    }
    host described;
    if (!read_host(options, described) || !start_trace(options)) {
        return EXIT_USAGE;
    }
    return run_on_host(options, described);
}
