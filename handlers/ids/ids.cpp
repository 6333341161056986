#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "handlers/settings.h"

namespace {

// Argument of KXDPA_OP_SCHEDULER_CONTROL: switch the intrusion detection.
constexpr uint32_t SET_IDS = 12;

// Buffer of that request. Assumed: the first word is the switch, and the reply goes into the second
// word.
struct ids_switch {
    uint32_t enabled; // 1 or 0
    uint32_t reserved4;
};

static_assert(sizeof(ids_switch) == 8);
static_assert(offsetof(ids_switch, enabled) == 0);

} // namespace

int kx_set_sched_ids_state(const char *arg) {
    kx_setting_words setting;
    ids_switch ids{};
    if (!kx_split_setting(&setting, arg, 1) ||
        !kx_read_setting_switch(setting.words[0], &ids.enabled)) {
        return kx_refuse_setting("set ids <enable | disable>");
    }
    return kx_report_setting("set ids", kx_dpa_exchange(KXDPA_OP_SCHEDULER_CONTROL, SET_IDS, &ids));
}
