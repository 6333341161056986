#include "sim/acl/acls.h"

#include <algorithm>
#include <iterator>

namespace {

void answer_list_count(host &state, exchange &talk) {
    if (state.acls.acls) {
        talk.reply_with(static_cast<uint32_t>(state.acls.acls->size()));
    } else {
        talk.fail();
    }
}

kx_acl_record wire_record(const access_list &acl) {
    kx_acl_record wire{};
    wire.id = acl.id;
    wire.references = acl.references;
    wire.rules = acl.rules;
    wire.type = acl.type;
    wire.statistics_state = acl.statistics;
    wire.statistics_id = acl.statistics_id;
    wire.permitted = acl.permitted;
    wire.denied = acl.denied;
    wire.unmatched = acl.unmatched;
    std::copy(std::begin(acl.name), std::end(acl.name), wire.name);
    return wire;
}

void answer_list(host &state, exchange &talk) {
    if (!state.acls.acls) {
        talk.fail();
        return;
    }
    for (const access_list &acl : *state.acls.acls) {
        const kx_acl_record wire = wire_record(acl);
        const auto *bytes = reinterpret_cast<const uint8_t *>(&wire);
        talk.reply.insert(talk.reply.end(), bytes, bytes + sizeof wire);
    }
}

void answer_dump_policy(host &state, exchange &talk) {
    const auto id = talk.input_as<uint32_t>();
    const auto &acls = state.acls.acls;
    if (!acls || std::none_of(acls->begin(), acls->end(),
                              [&](const access_list &acl) { return acl.id == id; })) {
        talk.fail();
    }
}

// What the operation changes or writes is not visible through the driver.
void accept_list(host & /*state*/, exchange & /*talk*/) {
}

constexpr answer command(kxdpa_opcode opcode) {
    return {.opcode = opcode, .flags = KXDPA_FLAG_NODATA, .reply = accept_list};
}

constexpr answer ACL_ANSWERS[] = {
    {.opcode = KXDPA_OP_ACL_COUNT, .flags = KXDPA_FLAG_OUT, .len1 = 4, .reply = answer_list_count},
    {.opcode = KXDPA_OP_ACL_LIST,
     .flags = KXDPA_FLAG_OUT | KXDPA_FLAG_MAX,
     .capacity = sizeof(kx_acl_record),
     .reply = answer_list},
    {.opcode = KXDPA_OP_DUMP_ACL_POLICY,
     .flags = KXDPA_FLAG_IN,
     .len1 = 4,
     .reply = answer_dump_policy},
    command(KXDPA_OP_CLEAN_PACL_TABLE),
    command(KXDPA_OP_DUMP_PACL_ENTRY),
    command(KXDPA_OP_FLUSH_ACL_FLOWS),
    command(KXDPA_OP_CLEAR_ACL_FLOW_STATISTICS),
    command(KXDPA_OP_CLEAR_ACL_FLOW_STATISTICS_2),
    command(KXDPA_OP_CLEAR_ACL_STATISTICS),
};

} // namespace

constinit const family acl_family = {ACL_ANSWERS};
