#include "handlers/port/shared/port_walk.h"

#include "infra/utils/kxstrings.h"

kx_port_selection kx_select_ports(const char *arg) {
    if (kx_begins_with(arg, "internal")) {
        return {KX_VIEW_HMX, true};
    }
    if (kx_begins_with(arg, "system")) {
        return {KX_VIEW_SYSTEM, true};
    }
    if (kx_begins_with(arg, "krt")) {
        return {KX_VIEW_KRT, true};
    }
    return {KX_VIEW_HMX, false};
}

kx_port_selection kx_select_ports_old(const char *arg) {
    if (kx_begins_with(arg, "priv")) {
        return {KX_VIEW_HMX, true};
    }
    if (kx_begins_with(arg, "krt")) {
        return {KX_VIEW_KRT, true};
    }
    return {KX_VIEW_HMX, false};
}

uint32_t kx_get_bare_cookie(const char *arg) {
    return kx_is_agent_driven() && arg != nullptr ? kx_parse_number(arg) : KX_LTL_BEFORE_FIRST;
}
