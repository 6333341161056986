#include "frontend/run_state.h"

#include "frontend/hmx_cmd.h"
#include "frontend/kxcmd.h"

bool kx_run_from_shell = false;
bool kx_has_printed = false;
bool kx_has_unbuilt_groups = false;
bool kx_run_broken = false;

int kx_give_up() {
    if (hmx_rcli_fromdpa != 0) {
        return -1;
    }
    kx_run_broken = true;
    return KXCMD_STOP;
}
