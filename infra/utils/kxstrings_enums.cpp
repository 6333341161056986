#include "infra/utils/kxstrings.h"

namespace {

// The text at `index`, or `otherwise` when the index has none.
template <size_t COUNT>
const char *text_of(const char *const (&texts)[COUNT], uint32_t index, const char *otherwise) {
    return index < COUNT ? texts[index] : otherwise;
}

} // namespace

const char *const pvlan_type_string[6] = {"NORMAL", "", "", "PRIMARY", "ISOLATED", "COMMUNITY"};

const char *const rpool_status_to_str[6] = {"INACTIVE", "ACTIVE"};

const char *get_str_cache_type(uint32_t type) {
    static const char *const texts[] = {"INVALID",   "normal",    "permanent",
                                        "immediate", "workspace", "MAX"};
    return text_of(texts, type, "INVALID");
}

const char *get_upgrade_str(uint32_t state) {
    static const char *const texts[] = {"Default", "Started", "Completed", "Aborted"};
    return text_of(texts, state, "Unknown");
}

const char *op_to_str(uint32_t op) {
    static const char *const texts[] = {"op_DEFAULT", "op_OR", "op_AND"};
    return text_of(texts, op & 0xff, "unknown");
}

const char *filter_type_to_str(uint32_t type) {
    static const char *const texts[] = {"ANY",     "ACL",      "COS",       "DSCP",   "Prec",
                                        "Discard", "QOS_GRP",  "QOS_Class", "PktLen", "RTP",
                                        "queuing", "protocol", "protocol"};
    return text_of(texts, type & 0xff, "unknown");
}

const char *set_to_str(uint32_t action) {
    static const char *const texts[] = {"dscp",    "discard", "cos",  "ip_prec",
                                        "qos_grp", "bw",      "q-len"};
    return text_of(texts, action, "default");
}

// Users know these texts as they are, blanks and underscores mixed.
const char *kx_print_protocol(uint32_t protocol) {
    static const char *const texts[] = {"zvx_cntrl", "zvx mgmt", "zvx pkt", "vmw ft",
                                        "vmw iscsi", "vmw mgmt", "vmw_nfs", "vmw vmotion"};
    constexpr uint32_t FIRST = 11;
    return text_of(texts, (protocol & 0xffff) - FIRST, "unknown");
}

const char *kx_print_ip_protocol(uint32_t protocol) {
    switch (protocol & 0xffff) {
    case 6:
        return "TCP";
    case 17:
        return "UDP";
    default:
        return "unknown";
    }
}

const char *kx_storm_status_int_to_string(uint32_t status) {
    return status == 0 ? "Allowed" : "Dropped";
}

const char *get_str_fnf_status(uint32_t status) {
    static const char *const texts[] = {
        "FNF_STATUS_SUCCESS",
        "FNF_STATUS_FAILURE",
        "FNF_STATUS_MEM_FAIL",
        "FNF_STATUS_INV_ARG",
        "FNF_STATUS_INV_TIMER",
        "FNF_STATUS_INV_TIMER_VALUE",
        "FNF_STATUS_INV_REFRESHER",
        "FNF_STATUS_INV_REFRESH_VALUE",
        "FNF_STATUS_ALREADY_EXISTS",
        "FNF_STATUS_DOESNT_EXIST",
        "FNF_STATUS_NOT_REGISTERED",
        "FNF_STATUS_NOT_INITIALISED",
        "FNF_STATUS_COUNLDNT_SEND", // users know it by this spelling
        "FNF_STATUS_IN_USE",
        "FNF_STATUS_MAX_DESTINATIONS",
        "FNF_STATUS_EXPORTER_NOT_ACTIVATED",
        "FNF_STATUS_MAX_EXPORTERS",
        "FNF_STATUS_MAX_MONITORS",
        "FNF_STATUS_WALK_ABORTED",
        "FNF_STATUS_PERMANENT",
        "FNF_STATUS_PERMANENT_FULL",
        "FNF_STATUS_LOCKED",
        "FNF_STATUS_NOT_LOCKED",
        "FNF_STATUS_NOT_HASHED",
        "FNF_STATUS_NO_FREE_FLOWS",
        "FNF_STATUS_BEING_DELETED",
        "FNF_STATUS_DELETED",
        "FNF_STATUS_NO_FLOW_DEF",
        "FNF_STATUS_INV_FLOW_DEF",
        "FNF_STATUS_FIELD_UNSUPPORTED",
        "FNF_STATUS_FIELD_UNAVAILABLE",
        "FNF_STATUS_CANT_START_PROT_STATS",
        "FNF_STATUS_SAMPLER",
        "FNF_STATUS_NO_SAMPLER",
        "FNF_STATUS_SAMPLER_INCOMPLETE_CONFIG",
        "FNF_STATUS_SAMPLER_NOT_UPDATED",
        "FNF_STATUS_FULL",
        "FNF_STATUS_NO_CEF",
        "FNF_STATUS_ASYNC",
        "FNF_STATUS_TOO_LARGE",
        "FNF_STATUS_INV_FEAT_POINT",
    };
    return text_of(texts, status, "Invalid status");
}
