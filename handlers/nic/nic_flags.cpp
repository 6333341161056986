// The flags of a physical NIC that are set by its vmnic name: iSCSI hardware capability, and Mirra.
#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/settings.h"
#include "infra/utils/kxstrings.h"

#include <cstring>

namespace {

// Capacity with which a NIC's name is sent, in bytes. Assumed to be that of the name in the port
// record; the name and its NUL fit.
constexpr uint32_t NIC_NAME_CAPACITY = 64;

// "vmnic" and its number. The row "set iscsi nic" also matches every unknown set command, and a
// typing error must not become a setting.
bool is_nic_name(const char *word) {
    constexpr const char *PREFIX = "vmnic";
    if (!kx_begins_with(word, PREFIX)) {
        return false;
    }
    const char *const number = word + strlen(PREFIX);
    const size_t digits = strspn(number, "0123456789");
    return digits != 0 && number[digits] == '\0' && strlen(word) < NIC_NAME_CAPACITY;
}

bool read_nic(kx_setting_words *setting, const char *arg) {
    return kx_split_setting(setting, arg, 1) && is_nic_name(setting->words[0]);
}

uint32_t send_nic(kxdpa_opcode opcode, const char *nic) {
    return kx_dpa_set_text(opcode, 0, nic, NIC_NAME_CAPACITY);
}

} // namespace

int kx_set_iscsi_nics(const char *arg) {
    kx_setting_words setting;
    if (!read_nic(&setting, arg)) {
        return kx_refuse_setting("set iscsi nic <vmnicN>");
    }
    const uint32_t status = send_nic(KXDPA_OP_SET_ISCSI_NIC, setting.words[0]);
    kx_trace(kx_debug_print_kxdump, KX_DEBUG_DETAIL, "set iscsi nic %s: %u\n", setting.words[0],
             status);
    return kx_report_setting("set iscsi nic", status);
}

int kx_clear_iscsi_nics(const char *arg) {
    kx_setting_words setting;
    if (!read_nic(&setting, arg)) {
        return kx_refuse_setting("clear iscsi nic <vmnicN>");
    }
    const uint32_t status = send_nic(KXDPA_OP_CLEAR_ISCSI_NIC, setting.words[0]);
    kx_trace(kx_debug_print_kxdump, KX_DEBUG_DETAIL, "clear iscsi nic %s: %u\n", setting.words[0],
             status);
    return kx_report_setting("clear iscsi nic", status);
}

int kestrel_cmd_set_mirra_enic(const char *arg) {
    kx_setting_words setting;
    if (!read_nic(&setting, arg)) {
        return kx_refuse_setting("set mirra-enic <vmnicN>");
    }
    return kx_report_setting("set mirra-enic", send_nic(KXDPA_OP_SET_MIRRA_NIC, setting.words[0]));
}

int kestrel_cmd_clear_mirra_enic(const char *arg) {
    kx_setting_words setting;
    if (!read_nic(&setting, arg)) {
        return kx_refuse_setting("clear mirra-enic <vmnicN>");
    }
    return kx_report_setting("clear mirra-enic",
                             send_nic(KXDPA_OP_CLEAR_MIRRA_NIC, setting.words[0]));
}
