#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/acl/acl_record.h"
#include "infra/utils/field_text.h"

#include <cstdlib>

namespace {

const char *type_text(uint8_t type) {
    switch (type) {
    case KX_ACL_IPV4:
        return "IPv4";
    case KX_ACL_IPV6:
        return "IPv6";
    case KX_ACL_MAC:
        return "MAC";
    default:
        return "";
    }
}

const char *statistics_text(uint8_t state) {
    switch (state) {
    case KX_ACL_STATISTICS_ENABLED:
        return "Enb";
    case KX_ACL_STATISTICS_DISABLED:
        return "Dis";
    default:
        return "";
    }
}

void print_acl(const kx_acl_record &acl) {
    kx_print("%4d %5d %6s %3d %6d   %s (%s: %u/%u/%u)\n", acl.id, acl.references,
             type_text(acl.type), acl.rules, acl.statistics_id, kx_field_text(acl.name).text,
             statistics_text(acl.statistics_state), acl.permitted, acl.denied, acl.unmatched);
}

// A list is ignored when its length is not the one that the count announced.
void print_acls(kx_acl_record *acls, uint32_t count) {
    const uint32_t size = count * static_cast<uint32_t>(sizeof *acls);
    uint32_t returned = size;
    if (kx_dpa_get_variable(KXDPA_OP_ACL_LIST, 0, acls, &returned) != KXDPA_STATUS_SUCCESS ||
        returned != size) {
        return;
    }
    for (uint32_t i = 0; i < count; ++i) {
        print_acl(acls[i]);
    }
}

} // namespace

int kx_show_acl(const char * /*arg*/) {
    kx_print("AclId RefCnt Type Rules StatId AclName (Stats: Permit/Deny/NoMatch)\n");
    kx_print("----- ------ ---- ----- ------ ------------------------------------\n");
    uint32_t count = 0;
    if (kx_dpa_get(KXDPA_OP_ACL_COUNT, 0, &count) != KXDPA_STATUS_SUCCESS || count == 0 ||
        count > KX_ACL_LIMIT) {
        return 0;
    }
    auto *acls = static_cast<kx_acl_record *>(calloc(count, sizeof(kx_acl_record)));
    if (acls != nullptr) {
        print_acls(acls, count);
    }
    free(acls);
    return 0;
}
