#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/settings.h"

int kx_vns_sdp_mac_refresh_timer(const char *arg) {
    kx_setting_words setting;
    uint32_t seconds = 0;
    if (!kx_split_setting(&setting, arg, 1) ||
        !kx_read_setting_number(setting.words[0], UINT32_MAX, &seconds)) {
        return kx_refuse_setting("set VNS mac-move-timer <seconds>");
    }
    const uint32_t status = kx_dpa_set(KXDPA_OP_SET_MAC_MOVE_TIMER, 0, &seconds);
    kx_trace(kx_debug_print_kxdump, KX_DEBUG_DETAIL, "set VNS mac-move-timer %u: %u\n", seconds,
             status);
    return kx_report_setting("set VNS mac-move-timer", status);
}
