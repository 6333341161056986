#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "handlers/settings.h"

namespace {

// Argument of KXDPA_OP_SET_QOS_EXPORT.
enum qos_export : uint32_t {
    QOS_EXPORT_STATISTICS = 1,
    QOS_EXPORT_ALL_DISPATCH = 2,
};

bool read_switch(const char *arg, uint32_t *enabled) {
    kx_setting_words setting;
    return kx_split_setting(&setting, arg, 1) && kx_read_setting_switch(setting.words[0], enabled);
}

} // namespace

int kx_set_qos_stat_state(const char *arg) {
    uint32_t enabled = 0;
    if (!read_switch(arg, &enabled)) {
        return kx_refuse_setting("set qos statistics <enable | disable>");
    }
    return kx_report_setting("set qos statistics",
                             kx_dpa_set(KXDPA_OP_SET_QOS_EXPORT, QOS_EXPORT_STATISTICS, &enabled));
}

int kx_set_qos_stat_dispatch_state(const char *arg) {
    uint32_t enabled = 0;
    if (!read_switch(arg, &enabled)) {
        return kx_refuse_setting("set qos all-dispatch <enable | disable>");
    }
    return kx_report_setting("set qos all-dispatch", kx_dpa_set(KXDPA_OP_SET_QOS_EXPORT,
                                                                QOS_EXPORT_ALL_DISPATCH, &enabled));
}
