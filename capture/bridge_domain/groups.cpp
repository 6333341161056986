#include "capture/bridge_domain/groups.h"

#include "capture/walk.h"

namespace {

constexpr uint32_t BEFORE_FIRST = 0; // and behind the last one

template <typename Step>
std::vector<uint32_t> walk_groups(inquiry &driver, uint32_t vlan, if_refused meaning, Step step) {
    return collect_walk(driver, KXDPA_OP_NEXT_VLAN_GROUP, BEFORE_FIRST, [&](uint32_t *group) {
        const uint32_t from = *group;
        if (!driver.exchange<KXDPA_OP_NEXT_VLAN_GROUP>(vlan, group, meaning)) {
            return false;
        }
        step(from, *group);
        return *group != BEFORE_FIRST;
    });
}

} // namespace

std::vector<uint32_t> ask_groups(inquiry &driver, uint32_t vlan) {
    return walk_groups(driver, vlan, if_refused::KEPT, [](uint32_t, uint32_t) {});
}

void keep_groups(inquiry &driver, uint32_t vlan) {
    walk_groups(driver, vlan, if_refused::WALK_END, [&](uint32_t from, uint32_t to) {
        driver.keep_reply(KXDPA_OP_NEXT_VLAN_GROUP, vlan, from, to);
    });
}
