#include "sim/acl/acls.h"
#include "sim/answer.h"
#include "sim/bridge_domain/bridge_domains.h"
#include "sim/card/card.h"
#include "sim/card/memory.h"
#include "sim/counters/counters.h"
#include "sim/l2/l2_tables.h"
#include "sim/lacp/lacp_state.h"
#include "sim/port/port_channels.h"
#include "sim/port/ports.h"
#include "sim/port/private_vlans.h"
#include "sim/settings/settings.h"

namespace {

// A new part of the host is one line here and one in host.h.
// clang-format off
constexpr const family *FAMILIES[] = {
    &card_family,
    &memory_family,
    &bridge_domain_family,
    &port_family,
    &private_vlan_family,
    &port_channel_family,
    &l2_family,
    &counter_family,
    &acl_family,
    &lacp_family,
    &settings_family,
};
// clang-format on

} // namespace

std::span<const family *const> all_families() {
    return FAMILIES;
}
