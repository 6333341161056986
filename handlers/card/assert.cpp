#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "frontend/output_sink.h"

namespace {

constexpr const char *COMMAND = "show assert";

} // namespace

int kx_show_assert(const char *arg) {
    if (arg != nullptr) {
        kx_print("%s: Too many parameters\n", COMMAND);
        kx_print("Usage: %s\n", COMMAND);
        return -1;
    }
    uint32_t count = 0;
    const uint32_t status = kx_dpa_get(KXDPA_OP_ASSERT_COUNT, 0, &count);
    if (status != KXDPA_STATUS_SUCCESS) {
        kx_print("%s: Internal error %d\n", COMMAND, static_cast<int>(status));
        kx_print("Usage: %s\n", COMMAND);
        return -1;
    }
    kx_print("Assert Count: %u\n", count);
    return 0;
}
