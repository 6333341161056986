#include "frontend/hmx_cmd.h"

#include "frontend/kxcmd.h"
#include "frontend/output_sink.h"

int hmx_cmd_init() {
    return 0;
}

void hmx_cmd_exit() {
}

int hmx_cmd_run(const char *text, int length, int from_agent) {
    kx_trace(kx_debug_print_hmx_cmds, KX_DEBUG_TRACE, "hmx_cmd_run(buffer %p, length %d)\n",
             static_cast<const void *>(text), length);
    kx_trace(kx_debug_print_hmx_cmds, KX_DEBUG_TRACE, "buff:%.*s\n", length < 0 ? 0 : length, text);
    kxcmd_parse_multiple(kestrel_cmd_list, text, length, from_agent);
    return length;
}

int hmx_cmd_help(char *buffer, unsigned int size) {
    kx_trace(kx_debug_print_hmx_cmds, KX_DEBUG_TRACE, "hmx_cmd_help(buffer %p, length %d)\n",
             static_cast<void *>(buffer), static_cast<int>(size));
    return kxcmd_snprintf_help(kestrel_cmd_list, buffer, static_cast<int>(size));
}
