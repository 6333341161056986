// tarnlab's command line.
#ifndef SIM_LAB_LAB_OPTIONS_H
#define SIM_LAB_LAB_OPTIONS_H

#include <string>

constexpr int EXIT_WRONG_USE = 2; // of the arguments, the host file or the machine

struct lab_options {
    enum class task { run, check, print_host, version, help };
    task what = task::run;
    bool device = false; // a real file instead of a preloaded library
    bool full = false;   // print defaults, too
    std::string host;    // to run, to print or to check; empty for the built-in one
    std::string trace;   // "-" for standard error, empty for none
    char **command = nullptr;
};

// Returns false, and one line in `error`, for arguments that make no sense.
bool read_options(int argc, char **argv, lab_options &options, std::string &error);

extern const char *const LAB_HELP;

#endif
