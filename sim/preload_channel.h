// What tarnlab hands to the preloaded library: descriptors, by an environment variable that the
// library removes.
#ifndef SIM_PRELOAD_CHANNEL_H
#define SIM_PRELOAD_CHANNEL_H

#include <cstdio>
#include <string>

constexpr const char *PRELOAD_LIBRARY = "tarnlab/libkestrelsim.so"; // in lib, beside bin
constexpr const char *PRELOAD_VARIABLE = "KESTRELSIM";

// Each open in the command's process, -1 for none.
struct preload_channel {
    int library = -1; // the library itself, preloaded through this descriptor
    int host = -1;    // the text of the host file; the built-in host without it
    int trace = -1;   // request lines are written here
    int met = -1;     // a byte for each override, set when a request is answered by it
};

// The library's entry in the list of preloaded ones, which knows no quoting: a path that goes
// through the descriptor has no blanks and colons, wherever the library is installed.
inline std::string preload_entry(const preload_channel &channel) {
    return "/proc/self/fd/" + std::to_string(channel.library);
}

inline std::string preload_text(const preload_channel &channel) {
    return std::to_string(channel.library) + " " + std::to_string(channel.host) + " " +
           std::to_string(channel.trace) + " " + std::to_string(channel.met);
}

inline preload_channel preload_from_text(const char *text) {
    preload_channel channel;
    if (text != nullptr && std::sscanf(text, "%d %d %d %d", &channel.library, &channel.host,
                                       &channel.trace, &channel.met) == 4) {
        return channel;
    }
    return {};
}

#endif
