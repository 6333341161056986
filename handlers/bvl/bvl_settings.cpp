// "set bvl ...": security-group tags of ports, and the policy between two groups.
#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "handlers/bvl/bvl_record.h"
#include "handlers/settings.h"
#include "infra/utils/kxstrings.h"

#include <cstring>

namespace {

// "<value> ltl <ltl-num>"; the value is at most `most`.
bool read_port_setting(const char *arg, uint32_t most, uint32_t *value, uint32_t *ltl) {
    kx_setting_words setting;
    return kx_split_setting(&setting, arg, 3) &&
           kx_read_setting_number(setting.words[0], most, value) &&
           stris(setting.words[1], "ltl") == 0 &&
           kx_read_setting_number(setting.words[2], UINT32_MAX, ltl);
}

bool read_port_flag(const char *arg, uint8_t *flag, uint32_t *ltl) {
    uint32_t value = 0;
    if (!read_port_setting(arg, 1, &value, ltl)) {
        return false;
    }
    *flag = static_cast<uint8_t>(value);
    return true;
}

// "<sgt_val> dgt <dgt_val> access-list <access-list-name>"
bool read_policy(const char *arg, kx_bvl_policy *policy) {
    kx_setting_words setting;
    uint32_t sgt = 0;
    uint32_t dgt = 0;
    if (!kx_split_setting(&setting, arg, 5) ||
        !kx_read_setting_number(setting.words[0], UINT16_MAX, &sgt) ||
        stris(setting.words[1], "dgt") != 0 ||
        !kx_read_setting_number(setting.words[2], UINT16_MAX, &dgt) ||
        stris(setting.words[3], "access-list") != 0 ||
        strlen(setting.words[4]) >= sizeof policy->access_list) {
        return false;
    }
    policy->sgt = static_cast<uint16_t>(sgt);
    policy->dgt = static_cast<uint16_t>(dgt);
    memcpy(policy->access_list, setting.words[4], strlen(setting.words[4]));
    return true;
}

} // namespace

int kx_bvl_set_sgt(const char *arg) {
    uint32_t value = 0;
    uint32_t ltl = 0;
    if (!read_port_setting(arg, UINT16_MAX, &value, &ltl)) {
        return kx_refuse_setting("set bvl sgt <sgt_val> ltl <ltl-num>");
    }
    const auto sgt = static_cast<uint16_t>(value);
    return kx_report_setting("set bvl sgt", kx_dpa_set(KXDPA_OP_SET_BVL_SGT, ltl, &sgt));
}

int kx_bvl_set_trust(const char *arg) {
    uint8_t flag = 0;
    uint32_t ltl = 0;
    if (!read_port_flag(arg, &flag, &ltl)) {
        return kx_refuse_setting("set bvl trust <0/1> ltl <ltl-num>");
    }
    return kx_report_setting("set bvl trust", kx_dpa_set(KXDPA_OP_SET_BVL_TRUST, ltl, &flag));
}

int kx_bvl_set_enable(const char *arg) {
    uint8_t flag = 0;
    uint32_t ltl = 0;
    if (!read_port_flag(arg, &flag, &ltl)) {
        return kx_refuse_setting("set bvl enable <0/1> ltl <ltl-num>");
    }
    return kx_report_setting("set bvl enable", kx_dpa_set(KXDPA_OP_SET_BVL_ENABLE, ltl, &flag));
}

int kx_bvl_set_enforcement(const char *arg) {
    uint8_t flag = 0;
    uint32_t ltl = 0;
    if (!read_port_flag(arg, &flag, &ltl)) {
        return kx_refuse_setting("set bvl enforcement <0/1> ltl <ltl-num>");
    }
    return kx_report_setting("set bvl enforcement",
                             kx_dpa_set(KXDPA_OP_SET_BVL_ENFORCEMENT, ltl, &flag));
}

int kx_bvl_set_propagate(const char *arg) {
    uint8_t flag = 0;
    uint32_t ltl = 0;
    if (!read_port_flag(arg, &flag, &ltl)) {
        return kx_refuse_setting("set bvl propagate <0/1> ltl <ltl-num>");
    }
    return kx_report_setting("set bvl propagate",
                             kx_dpa_set(KXDPA_OP_SET_BVL_PROPAGATE, ltl, &flag));
}

int kx_bvl_set_pol(const char *arg) {
    kx_bvl_policy policy{};
    if (!read_policy(arg, &policy)) {
        return kx_refuse_setting(
            "set bvl role-based sgt <sgt_val> dgt <dgt_val> access-list <access-list-name>");
    }
    return kx_report_setting("set bvl role-based sgt",
                             kx_dpa_set(KXDPA_OP_SET_BVL_POLICY, 0, &policy));
}
