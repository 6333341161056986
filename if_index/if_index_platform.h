// The platform selector: which of a few display variants the interface names take.
//
// Every question below first runs the probe, which fixes the selector. So the answers are the same
// on every platform, whatever cli_set_platform stored. That is deliberate.
#ifndef IF_INDEX_IF_INDEX_PLATFORM_H
#define IF_INDEX_IF_INDEX_PLATFORM_H

#include <cstdint>

// The selector: 0 before any call, then one of the values below.
extern uint32_t g_cli_platform;

enum : uint32_t {
    CLI_PLATFORM_DEFAULT = 1,
    CLI_PLATFORM_FIRST_FLAG = 2,
    CLI_PLATFORM_SECOND_FLAG = 3,
    CLI_PLATFORM_PROBED = 4,
};

// Store the selector: by the first flag if it is non-zero, else by the second, else the default.
void cli_set_platform(int first_flag, int second_flag);

// Set the selector to CLI_PLATFORM_PROBED. Always returns false.
bool cli_platform_probe();

// Whether host switch modules count from 128 (false, because of the probe).
bool cli_platform_is_module_base_128();

// Whether the control network is named "control" (true, because of the probe).
bool cli_platform_is_control_eobc();

// Whether Fibre Channel port-channels have a SAN name of their own (true, because of the probe).
bool cli_platform_uses_san_pc();

// Whether "Po" is the only port-channel prefix. Always false; does not run the probe.
bool cli_platform_is_po_only();

#endif
