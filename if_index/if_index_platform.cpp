#include "if_index/if_index_platform.h"

uint32_t g_cli_platform = 0;

void cli_set_platform(int first_flag, int second_flag) {
    if (first_flag != 0) {
        g_cli_platform = CLI_PLATFORM_FIRST_FLAG;
    } else {
        g_cli_platform = second_flag != 0 ? CLI_PLATFORM_SECOND_FLAG : CLI_PLATFORM_DEFAULT;
    }
}

bool cli_platform_probe() {
    g_cli_platform = CLI_PLATFORM_PROBED;
    return false;
}

bool cli_platform_is_module_base_128() {
    cli_platform_probe();
    return g_cli_platform == CLI_PLATFORM_SECOND_FLAG;
}

bool cli_platform_is_control_eobc() {
    cli_platform_probe();
    return g_cli_platform == CLI_PLATFORM_PROBED;
}

bool cli_platform_uses_san_pc() {
    cli_platform_probe();
    return g_cli_platform == CLI_PLATFORM_SECOND_FLAG || g_cli_platform == CLI_PLATFORM_PROBED;
}

bool cli_platform_is_po_only() {
    return false;
}
