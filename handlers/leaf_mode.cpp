#include "handlers/leaf_mode.h"

#include "dpa/userspace/kxdpa_indirect.h"

bool kx_hmx_is_leaf_mode() {
    uint8_t leaf_mode = 0;
    return kx_dpa_get(KXDPA_OP_LEAF_MODE, 0, &leaf_mode) == KXDPA_STATUS_SUCCESS && leaf_mode != 0;
}
