#include "sim/answer.h"

#include <algorithm>

namespace {

void answer_list_count(host &state, exchange &talk) {
    if (state.acls.acls) {
        talk.reply_with(static_cast<uint32_t>(state.acls.acls->size()));
    } else {
        talk.fail(state);
    }
}

void learn_list_count(host &state, const exchange &told) {
    if (!told.is_told()) {
        state.acls.acls.reset();
    }
}

void answer_list(host &state, exchange &talk) {
    if (!state.acls.acls) {
        return talk.fail(state);
    }
    for (const access_list &acl : *state.acls.acls) {
        const auto *bytes = reinterpret_cast<const uint8_t *>(&acl.record);
        talk.reply.insert(talk.reply.end(), bytes, bytes + sizeof acl.record);
    }
}

void learn_list(host &state, const exchange &told) {
    if (!told.is_told()) {
        return;
    }
    const size_t length = std::min<size_t>(told.returned.value_or(UINT32_MAX), told.reply.size());
    auto &acls = state.acls.acls.emplace(length / sizeof(kx_acl_record));
    for (size_t i = 0; i < acls.size(); i++) {
        std::memcpy(&acls[i].record, told.reply.data() + i * sizeof(kx_acl_record),
                    sizeof(kx_acl_record));
    }
}

void answer_dump_policy(host &state, exchange &talk) {
    const auto id = talk.input_as<uint32_t>();
    const auto &acls = state.acls.acls;
    if (!acls || std::none_of(acls->begin(), acls->end(),
                              [&](const access_list &acl) { return acl.record.id == id; })) {
        talk.fail(state);
    }
}

// What the operations change or write is not visible through the driver.
constexpr answer ACL_ANSWERS[] = {
    get<uint32_t>(KXDPA_OP_ACL_COUNT, answer_list_count, learn_list_count),
    get_variable(KXDPA_OP_ACL_LIST, sizeof(kx_acl_record), answer_list, learn_list),
    set<uint32_t>(KXDPA_OP_DUMP_ACL_POLICY, answer_dump_policy),
    command(KXDPA_OP_CLEAN_PACL_TABLE, accept),
    command(KXDPA_OP_DUMP_PACL_ENTRY, accept),
    command(KXDPA_OP_FLUSH_ACL_FLOWS, accept),
    command(KXDPA_OP_CLEAR_ACL_FLOW_STATISTICS, accept),
    command(KXDPA_OP_CLEAR_ACL_FLOW_STATISTICS_2, accept),
    command(KXDPA_OP_CLEAR_ACL_STATISTICS, accept),
};

} // namespace

constinit const family acl_family = ACL_ANSWERS;
