#include "sim/card/card.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <type_traits>

namespace {

void answer_domain(host &state, exchange &talk) {
    if (state.card.version_mismatch) {
        talk.fail(KXDPA_STATUS_VERSION_MISMATCH);
    } else {
        talk.tell(state.card.domain);
    }
}

void answer_card_api(host &, exchange &talk) {
    talk.reply_with(uint32_t{1});
}

// The type is assumed to stand behind the caller's 48 bytes, whatever the text's length.
void answer_uuid(host &state, exchange &talk) {
    if (!state.card.uuid) {
        return talk.fail();
    }
    kx_card_uuid uuid{};
    const std::string &text = *state.card.uuid;
    std::memcpy(uuid.text, text.data(), std::min(text.size(), sizeof uuid.text));
    uuid.type = state.card.uuid_type.value_or(0);
    talk.reply_with(uuid);
    if (!state.card.uuid_type) {
        talk.reply.resize(sizeof uuid.text);
    }
    talk.returned = static_cast<uint32_t>(std::min(text.size() + 1, sizeof uuid.text));
}

void answer_card_mac(host &state, exchange &talk) {
    const card_macs &macs = state.card.macs;
    switch (talk.request.arg) {
    case KX_CARD_MAC_CONTROL:
        return talk.tell(macs.control);
    case KX_CARD_MAC_PACKET:
        return talk.tell(macs.packet);
    case KX_CARD_MAC_SPAN:
        return talk.tell(macs.span);
    default:
        return talk.fail();
    }
}

void answer_max_ports(host &state, exchange &talk) {
    switch (talk.request.arg) {
    case KX_CARD_PHYSICAL_PORTS:
        return talk.tell(state.card.physical_ports);
    case KX_CARD_VIRTUAL_PORTS:
        return talk.tell(state.card.virtual_ports);
    default:
        return talk.fail();
    }
}

// Asked for the index that was told before, 0 when that was refused.
void answer_l3_control_vlan(host &state, exchange &talk) {
    if (talk.request.arg == (state.card.l3_control_index.value_or(0) | KX_L3_CONTROL_CLASS)) {
        talk.tell(state.card.l3_control_vlan);
    } else {
        talk.fail();
    }
}

void answer_version(host &state, exchange &talk) {
    const card_versions &versions = state.card.versions;
    switch (talk.request.arg) {
    case KX_VERSION_HMX:
        return talk.tell(versions.hmx);
    case KX_VERSION_KRT:
        return talk.tell(versions.krt);
    case KX_VERSION_SYSTEM:
        return talk.tell(versions.system);
    default:
        return talk.fail();
    }
}

void answer_uptime(host &state, exchange &talk) {
    if (state.card.krt_uptime) {
        talk.reply_with(kx_krt_uptime{*state.card.krt_uptime, {}});
    } else {
        talk.fail();
    }
}

void set_name(host &state, exchange &talk) {
    state.card.name.emplace(talk.input.begin(), talk.input.end());
}

void set_uuid(host &state, exchange &talk) {
    state.card.uuid.emplace(talk.input.begin(), talk.input.end());
    state.card.uuid_type = talk.request.arg;
}

// Nothing reads it back.
void set_management_ipv4(host &, exchange &) {
}

// Most requests read or write one member.

template <auto member>
using value_of = typename std::remove_reference_t<decltype(card_state{}.*member)>::value_type;

template <auto member> void reply_member(host &state, exchange &talk) {
    talk.tell(state.card.*member);
}

template <auto member> void reply_mac(host &state, exchange &talk) {
    talk.tell(state.card.macs.*member);
}

template <auto member> void set_member(host &state, exchange &talk) {
    state.card.*member = talk.input_as<value_of<member>>();
}

template <auto member> constexpr uint32_t SIZE_OF = sizeof(value_of<member>);

template <auto member> void reply_version(host &state, exchange &talk) {
    talk.tell(state.card.versions.*member);
}

template <auto member> void set_version(host &state, exchange &talk) {
    auto &field = state.card.versions.*member;
    field = talk.input_as<typename std::remove_reference_t<decltype(field)>::value_type>();
}

void answer_sdk_version(host &state, exchange &talk) {
    talk.tell(state.card.versions.opflex_sdk);
}

template <auto member> constexpr answer get(kxdpa_opcode opcode) {
    return {opcode, KXDPA_FLAG_OUT, SIZE_OF<member>, 0, 0, reply_member<member>};
}

template <auto member> constexpr answer get_with_input(kxdpa_opcode opcode) {
    return {opcode, KXDPA_FLAG_IN | KXDPA_FLAG_OUT, SIZE_OF<member>, 0, 0, reply_member<member>};
}

template <auto member> constexpr answer get_mac(kxdpa_opcode opcode) {
    return {opcode, KXDPA_FLAG_OUT, sizeof(kx_card_mac), 0, 0, reply_mac<member>};
}

template <auto member> constexpr answer set(kxdpa_opcode opcode) {
    return {opcode, KXDPA_FLAG_IN, SIZE_OF<member>, 0, 0, set_member<member>};
}

constexpr answer get_text(kxdpa_opcode opcode, uint32_t capacity,
                          void (*reply)(host &, exchange &)) {
    return {opcode, KXDPA_FLAG_OUT | KXDPA_FLAG_MAX, 0, 0, capacity, reply};
}

constexpr answer set_text(kxdpa_opcode opcode, uint32_t capacity,
                          void (*reply)(host &, exchange &)) {
    return {opcode, KXDPA_FLAG_IN | KXDPA_FLAG_MAX, 0, 0, capacity, reply};
}

constexpr answer fixed(kxdpa_opcode opcode, uint8_t flags, uint32_t length,
                       void (*reply)(host &, exchange &)) {
    return {opcode, flags, length, 0, 0, reply};
}

constexpr answer CARD_ANSWERS[] = {
    fixed(KXDPA_OP_CARD_DOMAIN, KXDPA_FLAG_OUT, 4, answer_domain),
    fixed(KXDPA_OP_CARD_API, KXDPA_FLAG_OUT, 4, answer_card_api),
    {.opcode = KXDPA_OP_CARD_UUID,
     .flags = KXDPA_FLAG_OUT | KXDPA_FLAG_MAX,
     .capacity = KX_CARD_UUID_CAPACITY,
     .reply = answer_uuid,
     .behind = sizeof kx_card_uuid::type},
    get_text(KXDPA_OP_CARD_NAME, KX_CARD_NAME_CAPACITY, reply_member<&card_state::name>),
    // Asked with whatever the request before has left.
    get_text(KXDPA_OP_SWITCH_NAME, 0, reply_member<&card_state::switch_name>),
    get_text(KXDPA_OP_SWITCH_ALIAS, 0, reply_member<&card_state::switch_alias>),
    get_text(KXDPA_OP_SWITCH_UUID, KX_CARD_UUID_CAPACITY, reply_member<&card_state::switch_uuid>),
    get<&card_state::slot>(KXDPA_OP_CARD_SLOT),
    get<&card_state::tunnel_mode>(KXDPA_OP_TUNNEL_MODE),
    get<&card_state::l3_control_index>(KXDPA_OP_L3_CONTROL_INDEX),
    fixed(KXDPA_OP_L3_CONTROL_VLAN, KXDPA_FLAG_OUT, 4, answer_l3_control_vlan),
    fixed(KXDPA_OP_CARD_MAC, KXDPA_FLAG_OUT, sizeof(kx_card_mac), answer_card_mac),
    get_mac<&card_macs::agent>(KXDPA_OP_AGENT_MAC),
    get_mac<&card_macs::primary_krt>(KXDPA_OP_PRIMARY_KRT_MAC),
    get_mac<&card_macs::primary_krt_packet>(KXDPA_OP_PRIMARY_KRT_PACKET_MAC),
    get_mac<&card_macs::primary_krt_management>(KXDPA_OP_PRIMARY_KRT_MANAGEMENT_MAC),
    get_mac<&card_macs::standby_krt_control>(KXDPA_OP_STANDBY_KRT_CONTROL_MAC),
    get_mac<&card_macs::secondary_krt>(KXDPA_OP_SECONDARY_KRT_MAC),
    get<&card_state::management_ipv6>(KXDPA_OP_MANAGEMENT_IPV6),
    get<&card_state::l3_control_ipv4>(KXDPA_OP_L3_CONTROL_IPV4),
    get<&card_state::upgrade>(KXDPA_OP_UPGRADE_STATE),
    fixed(KXDPA_OP_MAX_PORTS, KXDPA_FLAG_OUT, 4, answer_max_ports),
    get<&card_state::control_vlan>(KXDPA_OP_CONTROL_VLAN),
    get<&card_state::packet_vlan>(KXDPA_OP_PACKET_VLAN),
    get<&card_state::control_multicast>(KXDPA_OP_CONTROL_MULTICAST),
    get<&card_state::heartbeat>(KXDPA_OP_HEARTBEAT),
    get<&card_state::dpa_up>(KXDPA_OP_AGENT_STATUS),
    get<&card_state::processors>(KXDPA_OP_PROCESSORS),
    get<&card_state::link_up_delay>(KXDPA_OP_LINK_UP_DELAY),
    get_with_input<&card_state::uufb>(KXDPA_OP_GLOBAL_UUFB),
    get<&card_state::load_balancing>(KXDPA_OP_LOAD_BALANCING),
    get_with_input<&card_state::portset_event>(KXDPA_OP_PORTSET_EVENT),
    get_with_input<&card_state::bpdu_guard>(KXDPA_OP_GLOBAL_BPDU_GUARD),
    get<&card_state::leaf_mode>(KXDPA_OP_LEAF_MODE),
    get_with_input<&card_state::bpdu_filter>(KXDPA_OP_GLOBAL_BPDU_FILTER),
    get<&card_state::datapath_initialized>(KXDPA_OP_DATAPATH_INITIALIZED),
    get<&card_state::tag_native_vlan>(KXDPA_OP_TAG_NATIVE_VLAN),
    get<&card_state::l3sec>(KXDPA_OP_L3SEC_MODE),

    get_text(KXDPA_OP_VERSION_TEXT, KX_VERSION_CAPACITY, answer_version),
    get_text(KXDPA_OP_OPFLEX_SDK_VERSION, KX_SDK_VERSION_CAPACITY, answer_sdk_version),
    fixed(KXDPA_OP_GET_UPDATE_LEVEL, KXDPA_FLAG_OUT, 1,
          reply_version<&card_versions::update_level>),
    fixed(KXDPA_OP_GET_VERSION_WORD, KXDPA_FLAG_OUT, 8, reply_version<&card_versions::word>),
    get_text(KXDPA_OP_KRT_UPTIME, sizeof(kx_krt_uptime), answer_uptime),

    fixed(KXDPA_OP_SET_MANAGEMENT_IPV4, KXDPA_FLAG_IN, 4, set_management_ipv4),
    set<&card_state::management_ipv6>(KXDPA_OP_SET_MANAGEMENT_IPV6),
    set_text(KXDPA_OP_SET_CARD_UUID, KX_CARD_UUID_CAPACITY, set_uuid),
    set_text(KXDPA_OP_SET_CARD_NAME, KX_CARD_NAME_CAPACITY, set_name),
    fixed(KXDPA_OP_SET_UPDATE_LEVEL, KXDPA_FLAG_IN, 1, set_version<&card_versions::update_level>),
    fixed(KXDPA_OP_SET_VERSION_WORD, KXDPA_FLAG_IN, 8, set_version<&card_versions::word>),
};

} // namespace

constinit const family card_family = {CARD_ANSWERS};
