// Environment variables between tarnlab and the preloaded library, which removes them.
#ifndef SIM_PRELOAD_VARIABLES_H
#define SIM_PRELOAD_VARIABLES_H

constexpr const char *PRELOAD_LIBRARY = "tarnlab/libkestrelsim.so";
constexpr const char *HOST_VARIABLE = "KESTRELSIM_HOST"; // path of the host file; built-in if unset
constexpr const char *TRACE_VARIABLE = "KESTRELSIM_TRACE"; // file that request lines are added to

#endif
