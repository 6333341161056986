// What tarnlab hands to the preloaded library: descriptors, by an environment variable that the
// library removes.
#ifndef SIM_PRELOAD_CHANNEL_H
#define SIM_PRELOAD_CHANNEL_H

#include <string>

constexpr const char *PRELOAD_LIBRARY = "tarnlab/libkestrelsim.so"; // in lib, beside bin
constexpr const char *PRELOAD_VARIABLE = "KESTRELSIM";

// Each open in the command's process, -1 for none.
struct preload_channel {
    int library = -1; // the library itself, preloaded through this descriptor
    int host = -1;    // the text of the host file; the built-in host without it
    int trace = -1;   // request lines are written here
    int met = -1;     // marks of what the run uses, see use.h
};

// The descriptors in their order, as the variable has them.
constexpr char PRELOAD_FORMAT[] = "%d %d %d %d";

// A path to what is open. The list of preloaded libraries knows no quoting: a path that goes
// through the descriptor has no blanks and colons, wherever the library is installed.
inline std::string path_of(int descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

#endif
