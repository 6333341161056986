#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "handlers/iscsi/iscsi_record.h"
#include "handlers/settings.h"

int kx_set_iscsi_pinning(const char *arg) {
    kx_setting_words setting;
    uint32_t vmk_ltl = 0;
    uint32_t vmnic_ltl = 0;
    if (!kx_split_setting(&setting, arg, 2) ||
        !kx_read_setting_number(setting.words[0], UINT16_MAX, &vmk_ltl) ||
        !kx_read_setting_number(setting.words[1], UINT16_MAX, &vmnic_ltl)) {
        return kx_refuse_setting("set iscsi pinning <vmk-ltl> <vmnic-ltl>");
    }
    // The answer does not matter: a manual pinning overrides any state.
    uint32_t state = 0;
    kx_dpa_get(KXDPA_OP_ISCSI_PINNING_STATE, 0, &state);
    const kx_iscsi_pinning pinning = {
        .vmk_ltl = static_cast<uint16_t>(vmk_ltl),
        .vmnic_ltl = static_cast<uint16_t>(vmnic_ltl),
        .reserved4 = {},
    };
    return kx_report_setting("set iscsi pinning",
                             kx_dpa_set(KXDPA_OP_SET_ISCSI_PINNING, 0, &pinning));
}
