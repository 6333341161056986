#include "sim/acl/acls.h"

#include "sim/host.h"
#include "sim/object_reader.h"

#include <algorithm>

namespace {

// The record is packed, so its fields are read into locals first.
template <typename T> T number(object_reader &keys, const char *key) {
    T value = 0;
    keys.number(key, value);
    return value;
}

kx_acl_record parse_acl(object_reader &keys) {
    kx_acl_record acl{};
    keys.require("id");
    acl.id = number<uint32_t>(keys, "id");
    acl.references = number<uint32_t>(keys, "references");
    acl.rules = number<uint32_t>(keys, "rules");
    keys.choice("type", acl.type,
                {{"ipv4", KX_ACL_IPV4}, {"ipv6", KX_ACL_IPV6}, {"mac", KX_ACL_MAC}});
    keys.choice("statistics", acl.statistics_state,
                {{"enabled", KX_ACL_STATISTICS_ENABLED}, {"disabled", KX_ACL_STATISTICS_DISABLED}});
    acl.statistics_id = number<uint16_t>(keys, "statistics_id");
    acl.permitted = number<uint32_t>(keys, "permitted");
    acl.denied = number<uint32_t>(keys, "denied");
    acl.unmatched = number<uint32_t>(keys, "unmatched");
    keys.text("name", acl.name);
    return acl;
}

void parse_acls(object_reader &file, host &into) {
    file.each("acls", [&](object_reader &keys) { into.acls.acls.push_back(parse_acl(keys)); });
}

void answer_count(host &state, exchange &talk) {
    talk.reply_with(static_cast<uint32_t>(state.acls.acls.size()));
}

void answer_list(host &state, exchange &talk) {
    for (const kx_acl_record &acl : state.acls.acls) {
        const auto *bytes = reinterpret_cast<const uint8_t *>(&acl);
        talk.reply.insert(talk.reply.end(), bytes, bytes + sizeof acl);
    }
}

void answer_dump_policy(host &state, exchange &talk) {
    const auto id = talk.input_as<uint32_t>();
    const auto &acls = state.acls.acls;
    if (std::none_of(acls.begin(), acls.end(),
                     [&](const kx_acl_record &acl) { return acl.id == id; })) {
        talk.fail();
    }
}

// What the operation changes or writes is not visible through the driver.
void accept(host & /*state*/, exchange & /*talk*/) {
}

constexpr answer command(kxdpa_opcode opcode) {
    return {.opcode = opcode, .flags = KXDPA_FLAG_NODATA, .reply = accept};
}

constexpr answer ANSWERS[] = {
    {.opcode = KXDPA_OP_ACL_COUNT, .flags = KXDPA_FLAG_OUT, .len1 = 4, .reply = answer_count},
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

constinit const family acl_family = {parse_acls, ANSWERS};
