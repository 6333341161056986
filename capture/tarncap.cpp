// tarncap: this host, or one command on it, as a host file.
#include "capture/capture.h"
#include "capture/output_file.h"
#include "capture/recorder.h"
#include "frontend/command_rows.h"
#include "host/host_file.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <new>
#include <set>
#include <string>

#include <getopt.h>
#include <malloc.h>
#include <poll.h>
#include <unistd.h>

int tarncmd_main(int argc, char *argv[]);

namespace {

constexpr int EXIT_CANNOT = 1;
constexpr int EXIT_USAGE = 2;
constexpr int EXIT_NOT_WHOLE = 3;

constexpr const char *HELP =
    "Usage: tarncap [-o FILE] [--full] [--verbose] [KEY...]\n"
    "       tarncap --record FILE COMMAND [WORDS...]\n"
    "\n"
    "Asks the driver of this host what the display commands of tarncmd ask it, changes nothing, and\n"
    "writes the host as a host file (JSON), from which tarnlab runs tarncmd anywhere.\n"
    "\n"
    "  KEY                       only these keys of the host file, and only the requests for them\n"
    "  -o FILE, --output FILE    write FILE, whole or not at all, instead of standard output\n"
    "  --full                    write what is left out otherwise, too: keys with their defaults\n"
    "  --verbose                 tell by opcode on standard error what was refused\n"
    "  --record FILE             run one tarncmd command line, whatever it does, and keep every\n"
    "                            request with its exact answer in FILE\n"
    "  --version                 print the version\n"
    "  --help                    print this text\n"
    "\n"
    "What the driver refuses is left out and counted on standard error. The exit value is 0, or 1\n"
    "when the driver cannot be asked or the output not be written, 2 when the arguments are wrong,\n"
    "and 3 when the capture is not whole, which the file says, too. With --record it is that of the\n"
    "command.\n"
    "\n"
    "The KEYs:\n";

struct options {
    std::string output; // empty for standard output
    std::string record; // empty for a capture
    std::set<std::string> keys;
    bool full = false;        // defaults are written, too
    bool verbose = false;     // refusals are told by opcode
    char **command = nullptr; // of a recording
};

bool complain(const std::string &line) {
    std::fprintf(stderr, "tarncap: %s\n", line.c_str());
    return false;
}

void print_help() {
    std::fputs(HELP, stdout);
    constexpr size_t WIDTH = 96;
    std::string line = " ";
    for (const std::string &key : captured_keys()) {
        if (line.size() + 1 + key.size() > WIDTH) {
            std::puts(line.c_str());
            line = " ";
        }
        line += " " + key;
    }
    std::puts(line.c_str());
}

bool complain_of_key(const std::string &typed) {
    size_t least = 3; // so many errors make another word
    std::string meant;
    for (const std::string &key : captured_keys()) {
        const size_t errors = kx_typing_errors(typed.data(), typed.size(), key.c_str());
        if (errors < std::min(least, key.size())) {
            least = errors;
            meant = key;
        }
    }
    const std::string hint = meant.empty() ? "" : "; did you mean \"" + meant + "\"?";
    return complain("no key \"" + typed + "\" can be captured" + hint + (hint.empty() ? ";" : "") +
                    " tarncap --help lists them");
}

// One argument that is no option: a key, or the first word of the command to record.
bool read_word(char **word, options &into) {
    if (!into.record.empty()) {
        into.command = word;
        return true;
    }
    into.keys.insert(*word);
    return captured_keys().contains(*word) || complain_of_key(*word);
}

// Returns false when the program is to end with `exit_value`.
bool read_options(int argc, char **argv, options &into, int &exit_value) {
    static const option known[] = {{"output", required_argument, nullptr, 'o'},
                                   {"record", required_argument, nullptr, 'r'},
                                   {"full", no_argument, nullptr, 'f'},
                                   {"verbose", no_argument, nullptr, 'V'},
                                   {"version", no_argument, nullptr, 'v'},
                                   {"help", no_argument, nullptr, 'h'},
                                   {nullptr, 0, nullptr, 0}};
    exit_value = EXIT_USAGE;
    opterr = 0;
    int letter = 0;
    // Words come in their order among the options: the command to record ends the options.
    while (into.command == nullptr &&
           (letter = getopt_long(argc, argv, "-:o:", known, nullptr)) != -1) {
        switch (letter) {
        case 1:
            if (!read_word(argv + optind - 1, into)) {
                return false;
            }
            break;
        case 'o':
        case 'r':
            if (*optarg == '\0') {
                return complain("the name of the FILE is empty; see tarncap --help");
            }
            (letter == 'o' ? into.output : into.record) = optarg;
            break;
        case 'f':
            into.full = true;
            break;
        case 'V':
            into.verbose = true;
            break;
        case 'v':
            std::puts("tarncap " TARN_VERSION);
            exit_value = 0;
            return false;
        case 'h':
            print_help();
            exit_value = 0;
            return false;
        case ':':
            return complain(std::string(argv[optind - 1]) + " needs a FILE; see tarncap --help");
        default:
            return complain(std::string("unknown option ") + argv[optind - 1] +
                            "; see tarncap --help");
        }
    }
    for (; into.command == nullptr && optind < argc; optind++) { // after "--"
        if (!read_word(argv + optind, into)) {
            return false;
        }
    }
    return true;
}

bool check_options(const options &given) {
    if (given.record.empty()) {
        return true;
    }
    if (given.command == nullptr) {
        return complain("--record needs a command; see tarncap --help");
    }
    if (!given.output.empty() || !given.keys.empty() || given.full || given.verbose) {
        return complain("--record goes with no other option and no KEY; see tarncap --help");
    }
    return true;
}

// --- A recording ---

volatile int interrupted = 0; // the number of the signal
std::string recording_file;

void note_interrupt(int number) {
    interrupted = number;
}

// Returns false after a complaint.
bool save_recording() {
    host recorded;
    std::string why = recorder_stop(recorded);
    const std::string text = why.empty() ? write_host(recorded) : "";
    if (text.size() > HOST_FILE_LIMIT) {
        why = TOO_LARGE;
    }
    if (!why.empty()) {
        return complain(recording_file + ": not written: " + why);
    }
    std::string error;
    return write_output_file(recording_file, text, error) || complain(error);
}

// Who interrupts a command that does not end wants the recording all the more.
void save_and_leave() {
    save_recording();
    std::signal(interrupted, SIG_DFL);
    raise(interrupted);
}

int record(const options &given, int count) {
    std::string error;
    if (!check_output_file(given.record, error)) {
        complain(error);
        return EXIT_CANNOT;
    }
    recording_file = given.record;
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        // Not to be restarted: a request that hangs is interrupted as well.
        struct sigaction noting {};
        struct sigaction before {};
        noting.sa_handler = note_interrupt;
        sigaction(number, nullptr, &before);
        if (before.sa_handler != SIG_IGN) {
            sigaction(number, &noting, nullptr);
        }
    }
    recorder_start(&interrupted, save_and_leave);
    // The word before the command stands where the tool's own name would.
    const int value = tarncmd_main(count + 1, given.command - 1);
    std::fflush(stdout);
    if (interrupted != 0) {
        save_and_leave();
    }
    return save_recording() ? value : EXIT_CANNOT;
}

// --- A capture ---

// Whether somebody reads standard output: a pipe says by POLLERR that nobody does, a socket by
// POLLHUP.
bool is_read() {
    pollfd output = {STDOUT_FILENO, 0, 0};
    return poll(&output, 1, 0) != 1 || (output.revents & (POLLERR | POLLHUP)) == 0;
}

bool write_output(const std::string &path, const std::string &text) {
    std::string error;
    if (!path.empty()) {
        return write_output_file(path, text, error) || complain(error);
    }
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() &&
        std::fflush(stdout) == 0) {
        return true;
    }
    return complain(std::string("standard output cannot be written: ") + std::strerror(errno));
}

int capture(const options &given) {
    std::string error;
    if (!given.output.empty() && !check_output_file(given.output, error)) {
        complain(error);
        return EXIT_CANNOT;
    }
    host described;
    const capture_request asked = {.keys = given.keys,
                                   .is_wanted = given.output.empty() ? is_read : nullptr,
                                   .shows_progress = isatty(STDERR_FILENO) != 0};
    if (const std::string why = capture_host(asked, TARN_VERSION, described); !why.empty()) {
        std::fprintf(stderr, "%s\n", why.c_str());
        return EXIT_CANNOT;
    }
    write_options options = {.full = given.full, .keys = given.keys};
    if (!options.keys.empty()) {
        options.keys.insert({"capture", "refusal_status"});
    }
    malloc_trim(0); // all the answers are given back; the text is nearly as large
    const std::string text = write_host(described, options);
    bool written = text.size() <= HOST_FILE_LIMIT;
    if (written) {
        written = write_output(given.output, text);
    } else {
        complain(std::string("not written: ") + TOO_LARGE + "; ask for some keys of it");
    }
    for (const std::string &line : report_of(*described.capture, given.verbose)) {
        complain(line);
    }
    return !written ? EXIT_CANNOT : described.capture->whole ? 0 : EXIT_NOT_WHOLE;
}

} // namespace

int main(int argc, char *argv[]) {
    // A driver that makes more of a host than there is memory for.
    std::set_new_handler([] {
        complain("out of memory");
        _exit(EXIT_CANNOT);
    });
    options given;
    int exit_value = 0;
    if (!read_options(argc, argv, given, exit_value)) {
        return exit_value;
    }
    if (!check_options(given)) {
        return EXIT_USAGE;
    }
    return given.record.empty() ? capture(given)
                                : record(given, static_cast<int>(argv + argc - given.command));
}
