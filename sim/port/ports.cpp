#include "sim/answer.h"

#include "handlers/port/bridge_domain_record.h"
#include "infra/utils/kxlibbmp.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

// The port and the view that an argument "view << 24 | LTL" names, no port where there is none.
// What the other views say like the HMX's own is not described twice, so who learns looks at it
// first.
std::pair<port *, kx_port_view> named_by(host &state, uint32_t argument) {
    port *found = value_in(state.ports.by_ltl, argument & LAST_LTL);
    const auto view = static_cast<kx_port_view>(argument >> 24);
    return {view < PORT_VIEWS ? found : nullptr, view};
}

// What the view reports, nullptr where it has no record of the port.
const port_view *find_port_view(host &state, uint32_t argument) {
    const auto [found, view] = named_by(state, argument);
    return found != nullptr && view_of(*found, view).known ? &view_of(*found, view) : nullptr;
}

void answer_next_ltl(host &state, exchange &talk) {
    const auto &ports = state.ports.by_ltl;
    const bool from_start = talk.request.arg == KX_LTL_BEFORE_FIRST;
    const auto next = from_start ? ports.begin() : ports.upper_bound(talk.request.arg);
    talk.tell(state, next == ports.end() ? nullptr : &next->first);
}

void learn_next_ltl(host &state, const exchange &told) {
    const auto ltl = told.reply_as<uint32_t>();
    if (told.is_told() && ltl <= LAST_LTL) {
        state.ports.by_ltl.try_emplace(ltl);
    }
}

void answer_port(host &state, exchange &talk) {
    talk.tell(state, member_in<&port_view::record>(find_port_view(state, talk.request.arg)));
}

void learn_port(host &state, const exchange &told) {
    const auto [found, view] = named_by(state, told.request.arg);
    if (found == nullptr) {
        return;
    }
    const auto record = told.reply_as<kx_port_record>();
    const port_view &seen = view_of(*found, view);
    const bool same = !seen.known || std::memcmp(&seen.record, &record, sizeof record) == 0;
    if (seen.known != told.is_told() || !same) {
        port_view &own = own_view(*found, view);
        own.known = told.is_told();
        own.record = own.known ? record : own.record;
    }
}

template <auto member> void answer_member(host &state, exchange &talk) {
    talk.tell(state, member_in<member>(value_in(state.ports.by_ltl, talk.request.arg)));
}

template <auto member> void learn_member(host &state, const exchange &told) {
    if (port *found = value_in(state.ports.by_ltl, told.request.arg)) {
        told.learn(found->*member);
    }
}

void answer_secure_state(host &state, exchange &talk) {
    const port *found = value_in(state.ports.by_ltl, talk.request.arg);
    const uint32_t secure = 1;
    talk.tell(state, found != nullptr && found->secure ? &secure : nullptr);
}

void learn_secure_state(host &state, const exchange &told) {
    if (port *found = value_in(state.ports.by_ltl, told.request.arg)) {
        found->secure = told.is_told();
    }
}

void answer_forwarding(host &state, exchange &talk) {
    const port_view *view = find_port_view(state, talk.request.arg);
    if (view == nullptr) {
        return talk.fail(state);
    }
    auto query = talk.input_as<kx_vlan_forwarding>();
    query.forwarding = view->forwards_on.contains(query.vlan) ? 1 : 0;
    talk.reply_with(query);
}

void learn_forwarding(host &state, const exchange &told) {
    const auto vlan = told.input_as<kx_vlan_forwarding>().vlan;
    const bool forwards = told.is_told() && told.reply_as<kx_vlan_forwarding>().forwarding != 0;
    const auto [found, view] = named_by(state, told.request.arg);
    if (found == nullptr || vlan > KX_LAST_VLAN ||
        view_of(*found, view).forwards_on.contains(vlan) == forwards) {
        return;
    }
    number_set &own = own_view(*found, view).forwards_on;
    if (forwards) {
        own.insert(vlan);
    } else {
        own.erase(vlan);
    }
}

bool forward_alike(const exchange &one, const exchange &other) {
    return (one.reply_as<kx_vlan_forwarding>().forwarding != 0) ==
           (other.reply_as<kx_vlan_forwarding>().forwarding != 0);
}

void answer_vlan_set(host &state, exchange &talk) {
    const port_view *view = find_port_view(state, talk.request.arg);
    if (view == nullptr || !view->vlans) {
        return talk.fail(state);
    }
    bmp4096 set{};
    set.size = sizeof set.bits;
    for (const uint32_t vlan : *view->vlans) {
        set.bits[vlan / 8] = static_cast<uint8_t>(set.bits[vlan / 8] | 0x80U >> vlan % 8);
    }
    talk.reply_with(set);
}

void learn_vlan_set(host &state, const exchange &told) {
    std::optional<number_set> vlans;
    if (told.is_told()) {
        const auto set = told.reply_as<bmp4096>();
        vlans.emplace();
        for (uint32_t vlan = 0; vlan < sizeof set.bits * 8; vlan++) {
            if (set.bits[vlan / 8] == 0) {
                vlan |= 7;
            } else if ((set.bits[vlan / 8] & 0x80U >> vlan % 8) != 0) {
                vlans->insert(vlan);
            }
        }
    }
    const auto [found, view] = named_by(state, told.request.arg);
    if (found != nullptr && view_of(*found, view).vlans != vlans) {
        own_view(*found, view).vlans = vlans;
    }
}

// A port without a role on the VLAN answers that it has none.
void answer_private_vlan(host &state, exchange &talk) {
    if (find_port_view(state, talk.request.arg) == nullptr) {
        return talk.fail(state);
    }
    const auto asked = talk.input_as<kx_port_pvlan>();
    const auto *found = value_in(state.private_vlans, {talk.request.arg & LAST_LTL, asked.vlan});
    talk.reply_with(found == nullptr ? asked : *found);
}

// The views share one description: what the first of them says.
void learn_private_vlan(host &state, const exchange &told) {
    const auto asked = told.input_as<kx_port_pvlan>();
    const auto pvlan = told.reply_as<kx_port_pvlan>();
    if (told.is_told() && std::memcmp(&asked, &pvlan, sizeof pvlan) != 0 &&
        std::max({asked.vlan, pvlan.primary, pvlan.secondary}) <= KX_LAST_VLAN) {
        state.private_vlans.try_emplace({told.request.arg & LAST_LTL, asked.vlan}, pvlan);
    }
}

constexpr answer PORT_ANSWERS[] = {
    get<uint32_t>(KXDPA_OP_NEXT_LTL, answer_next_ltl, learn_next_ltl).of_walk(MOST_PORTS),
    get<kx_port_record>(KXDPA_OP_PORT_RECORD, answer_port, learn_port),
    get_variable(KXDPA_OP_PORT_MAC, sizeof(mac_address), answer_member<&port::mac>,
                 learn_member<&port::mac>),
    get<kx_port_security_record>(KXDPA_OP_PORT_SECURITY, answer_member<&port::security>,
                                 learn_member<&port::security>),
    get<uint32_t>(KXDPA_OP_SECURE_PORT_STATE, answer_secure_state, learn_secure_state)
        .told_alike(always_alike),
    exchanged<kx_vlan_forwarding>(KXDPA_OP_VLAN_FORWARDING, answer_forwarding, learn_forwarding)
        .told_alike(forward_alike),
    {KXDPA_OP_PORT_VLAN_SET, KXDPA_FLAG_OUT | KXDPA_FLAG_IN | KXDPA_FLAG_MAX, sizeof(bmp4096), 0,
     sizeof(bmp4096), answer_vlan_set, learn_vlan_set},
    exchanged<kx_port_pvlan>(KXDPA_OP_PORT_PVLAN, answer_private_vlan, learn_private_vlan)
        .from_key("private_vlans"),
};

} // namespace

constinit const family port_family = PORT_ANSWERS;
