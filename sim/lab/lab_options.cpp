#include "sim/lab/lab_options.h"

#include <getopt.h>
#include <unistd.h>

const char *const LAB_HELP =
    "Usage: tarnlab [--device] [--host FILE] [--trace FILE] COMMAND [ARGS...]\n"
    "       tarnlab --print-host [--full] [--host FILE]\n"
    "       tarnlab --check FILE | --version | --help\n"
    "\n"
    "Runs COMMAND, a 32-bit program, on a simulated host: its kestrel driver device is answered\n"
    "from a description of the host, no driver is needed. Where the description has an agent, that\n"
    "runs beside the command, at its own socket and pipe.\n"
    "\n"
    "  --device      serve the device as a real file, which only COMMAND and what it starts see,\n"
    "                instead of preloading a library; needs root and /dev/fuse, and takes static\n"
    "                programs and 64-bit ones that start the 32-bit one\n"
    "  --host FILE   describe the host by FILE (JSON); the built-in host without it\n"
    "  --trace FILE  write one line for every request to the driver into FILE, - for standard\n"
    "                error\n"
    "  --check FILE  print all that is wrong with the host description FILE, and run nothing\n"
    "  --print-host  print the host description, and run nothing\n"
    "  --full        print what is left out there, too: keys with their defaults\n"
    "  --version     print the version\n"
    "  --help        print this text\n"
    "\n"
    "The exit value is the command's, or 128 and the number of the signal that ended it. It is 2\n"
    "when the arguments, the command or the host description are wrong, the agent's paths are taken\n"
    "or the device file cannot be had, 127 when COMMAND is not found.\n";

bool read_options(int argc, char **argv, lab_options &options, std::string &error) {
    static const option known[] = {{"device", no_argument, nullptr, 'd'},
                                   {"host", required_argument, nullptr, 'h'},
                                   {"trace", required_argument, nullptr, 't'},
                                   {"check", required_argument, nullptr, 'c'},
                                   {"print-host", no_argument, nullptr, 'p'},
                                   {"full", no_argument, nullptr, 'f'},
                                   {"version", no_argument, nullptr, 'v'},
                                   {"help", no_argument, nullptr, 'H'},
                                   {nullptr, 0, nullptr, 0}};
    const auto refuse = [&](const std::string &reason) {
        error = reason + "; see tarnlab --help";
        return false;
    };
    opterr = 0;
    int letter = 0;
    // The options end at the first word that is none: the rest is the command's.
    while ((letter = getopt_long(argc, argv, "+:", known, nullptr)) != -1) {
        switch (letter) {
        case 'd':
            options.device = true;
            break;
        case 'h':
            options.host = optarg;
            break;
        case 't':
            options.trace = optarg;
            break;
        case 'c':
            options.what = lab_options::task::check;
            options.host = optarg;
            return true;
        case 'p':
            options.what = lab_options::task::print_host;
            break;
        case 'f':
            options.full = true;
            break;
        case 'v':
            options.what = lab_options::task::version;
            return true;
        case 'H':
            options.what = lab_options::task::help;
            return true;
        case ':':
            return refuse(std::string(argv[optind - 1]) + " needs a FILE");
        default:
            return refuse("no such option: " + std::string(argv[optind - 1]));
        }
    }
    options.command = argv + optind;
    const bool prints = options.what == lab_options::task::print_host;
    if (prints && *options.command == nullptr && options.trace.empty() && !options.device) {
        return true;
    }
    if (prints || options.full) {
        return refuse("--print-host goes with --full and --host only, --full with --print-host");
    }
    return *options.command != nullptr || refuse("no command given");
}
