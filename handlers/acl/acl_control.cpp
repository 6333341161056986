// The commands that make the DPA dump or clear ACL state. They print nothing: a dump goes to the
// DPA's own log, and a refused request is ignored.
#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "infra/utils/kxstrings.h"

namespace {

// Ask for an operation on one entry; the argument is its number.
int command_entry(kxdpa_opcode opcode, const char *arg) {
    if (arg == nullptr) {
        return -1;
    }
    kx_dpa_command(opcode, kx_parse_number(arg));
    return 0;
}

} // namespace

int kx_show_acl_policy(const char *arg) {
    if (arg == nullptr) {
        return -1;
    }
    const uint32_t acl_id = kx_parse_number(arg);
    kx_dpa_set(KXDPA_OP_DUMP_ACL_POLICY, 0, &acl_id);
    return 0;
}

int kx_acl_show_pacl_entry(const char *arg) {
    return command_entry(KXDPA_OP_DUMP_PACL_ENTRY, arg);
}

int kx_acl_clean_pacl_table(const char *arg) {
    return command_entry(KXDPA_OP_CLEAN_PACL_TABLE, arg);
}

int kx_clear_acl_dbgstats(const char * /*arg*/) {
    kx_dpa_command(KXDPA_OP_CLEAR_ACL_STATISTICS, 0);
    return 0;
}

int kx_flush_aclflows(const char * /*arg*/) {
    kx_dpa_command(KXDPA_OP_FLUSH_ACL_FLOWS, 0);
    return 0;
}

int kx_clear_aclflow_dbgstats(const char * /*arg*/) {
    kx_dpa_command(KXDPA_OP_CLEAR_ACL_FLOW_STATISTICS, 0);
    kx_dpa_command(KXDPA_OP_CLEAR_ACL_FLOW_STATISTICS_2, 0);
    return 0;
}
