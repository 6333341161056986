#include "sim/answer.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <type_traits>

namespace {

// As far as a description goes: a caller may have room for more.
template <auto... path> void learn_text(host &state, const exchange &told) {
    learn_value<path...>(state, told);
    if (auto &text = member_at<path...>(state); text && text->size() > KX_CARD_NAME_CAPACITY) {
        text->resize(KX_CARD_NAME_CAPACITY);
    }
}

template <auto... path> void set_value(host &state, exchange &talk) {
    member_at<path...>(state) = talk.input_as<value_at<path...>>();
}

template <auto... path> constexpr answer of_card(kxdpa_opcode opcode) {
    return value<&host::card, path...>(opcode);
}

template <auto member> constexpr answer with_input(kxdpa_opcode opcode) {
    return exchanged<value_at<&host::card, member>>(opcode, answer_value<&host::card, member>,
                                                    learn_value<&host::card, member>);
}

template <auto member> constexpr answer mac(kxdpa_opcode opcode) {
    return get<kx_card_mac>(opcode, answer_value<&host::card, &card_state::macs, member>,
                            learn_value<&host::card, &card_state::macs, member>);
}

template <auto... path> constexpr answer text(kxdpa_opcode opcode, uint32_t capacity) {
    return get_variable(opcode, capacity, answer_value<&host::card, path...>,
                        learn_text<&host::card, path...>);
}

template <auto member> constexpr answer version_text(uint32_t which) {
    return text<&card_state::versions, member>(KXDPA_OP_VERSION_TEXT, KX_VERSION_CAPACITY)
        .for_argument(which);
}

template <auto... path> constexpr answer set_to(kxdpa_opcode opcode) {
    return set<value_at<&host::card, path...>>(opcode, set_value<&host::card, path...>);
}

// The others.

void answer_domain(host &state, exchange &talk) {
    if (state.card.version_mismatch) {
        talk.status = KXDPA_STATUS_VERSION_MISMATCH;
    } else {
        talk.tell(state, state.card.domain);
    }
}

void answer_card_api(host &, exchange &talk) {
    talk.reply_with(uint32_t{1});
}

// The type is assumed to stand after the caller's 48 bytes, whatever the text's length.
void answer_uuid(host &state, exchange &talk) {
    if (!state.card.uuid) {
        return talk.fail(state);
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

void learn_uuid(host &state, const exchange &told) {
    state.card.uuid.reset();
    if (told.is_told()) {
        const auto uuid = told.reply_as<kx_card_uuid>();
        state.card.uuid.emplace(uuid.text, strnlen(uuid.text, sizeof uuid.text));
        state.card.uuid_type =
            told.reply.size() == sizeof uuid ? std::optional(uuid.type) : std::nullopt;
    }
}

// Asked for the index that was told before, 0 when that was refused.
bool is_l3_control(const host &state, const kxdpa_request &request) {
    return request.arg == (state.card.l3_control_index.value_or(0) | KX_L3_CONTROL_CLASS);
}

void answer_l3_control_vlan(host &state, exchange &talk) {
    if (is_l3_control(state, talk.request)) {
        talk.tell(state, state.card.l3_control_vlan);
    } else {
        talk.fail(state);
    }
}

void learn_l3_control_vlan(host &state, const exchange &told) {
    if (is_l3_control(state, told.request)) {
        told.learn(state.card.l3_control_vlan);
    }
}

void set_name(host &state, exchange &talk) {
    state.card.name.emplace(talk.input.begin(), talk.input.end());
}

void set_uuid(host &state, exchange &talk) {
    state.card.uuid.emplace(talk.input.begin(), talk.input.end());
    state.card.uuid_type = talk.request.arg;
}

// The memory accounting: lists that are walked by name.

template <auto list>
using record_of = typename std::remove_reference_t<decltype(memory_state{}.*list)>::value_type;

template <typename records, typename record>
auto find_by_name(records &entries, const record &named) {
    return std::find_if(entries.begin(), entries.end(), [&](const record &entry) {
        return std::strncmp(entry.name, named.name, sizeof named.name) == 0;
    });
}

// The entry after the one that the caller names; the first for an empty name.
template <auto list> void answer_next(host &state, exchange &talk) {
    const auto &entries = state.memory.*list;
    const auto query = talk.input_as<record_of<list>>();
    auto next = entries.begin();
    if (query.name[0] != '\0') {
        next = find_by_name(entries, query);
        next += next == entries.end() ? 0 : 1;
    }
    talk.tell(state, next == entries.end() ? nullptr : &*next);
}

// An entry without a name would start the walk again.
template <auto list> void learn_next(host &state, const exchange &told) {
    auto &entries = state.memory.*list;
    const auto entry = told.reply_as<record_of<list>>();
    if (told.is_told() && entry.name[0] != '\0' && find_by_name(entries, entry) == entries.end()) {
        entries.push_back(entry);
    }
}

template <auto list> constexpr answer walk(kxdpa_opcode opcode) {
    return exchanged<record_of<list>>(opcode, answer_next<list>, learn_next<list>)
        .of_walk(MOST_OTHERS);
}

constexpr answer CARD_ANSWERS[] = {
    get<uint32_t>(KXDPA_OP_CARD_DOMAIN, answer_domain,
                  learn_value<&host::card, &card_state::domain>),
    get<uint32_t>(KXDPA_OP_CARD_API, answer_card_api, learn_nothing).told_alike(always_alike),
    get_variable(KXDPA_OP_CARD_UUID, KX_CARD_UUID_CAPACITY, answer_uuid, learn_uuid)
        .with(&answer::behind, uint32_t{sizeof kx_card_uuid::type}),
    text<&card_state::name>(KXDPA_OP_CARD_NAME, KX_CARD_NAME_CAPACITY),
    // Asked with whatever the request before has left.
    text<&card_state::switch_name>(KXDPA_OP_SWITCH_NAME, 0),
    text<&card_state::switch_alias>(KXDPA_OP_SWITCH_ALIAS, 0),
    text<&card_state::switch_uuid>(KXDPA_OP_SWITCH_UUID, KX_CARD_UUID_CAPACITY),
    of_card<&card_state::slot>(KXDPA_OP_CARD_SLOT),
    of_card<&card_state::tunnel_mode>(KXDPA_OP_TUNNEL_MODE),
    of_card<&card_state::l3_control_index>(KXDPA_OP_L3_CONTROL_INDEX),
    get<uint32_t>(KXDPA_OP_L3_CONTROL_VLAN, answer_l3_control_vlan, learn_l3_control_vlan),
    mac<&card_macs::control>(KXDPA_OP_CARD_MAC).for_argument(KX_CARD_MAC_CONTROL),
    mac<&card_macs::packet>(KXDPA_OP_CARD_MAC).for_argument(KX_CARD_MAC_PACKET),
    mac<&card_macs::span>(KXDPA_OP_CARD_MAC).for_argument(KX_CARD_MAC_SPAN),
    mac<&card_macs::agent>(KXDPA_OP_AGENT_MAC),
    mac<&card_macs::primary_krt>(KXDPA_OP_PRIMARY_KRT_MAC),
    mac<&card_macs::primary_krt_packet>(KXDPA_OP_PRIMARY_KRT_PACKET_MAC),
    mac<&card_macs::primary_krt_management>(KXDPA_OP_PRIMARY_KRT_MANAGEMENT_MAC),
    mac<&card_macs::standby_krt_control>(KXDPA_OP_STANDBY_KRT_CONTROL_MAC),
    mac<&card_macs::secondary_krt>(KXDPA_OP_SECONDARY_KRT_MAC),
    of_card<&card_state::management_ipv6>(KXDPA_OP_MANAGEMENT_IPV6),
    of_card<&card_state::l3_control_ipv4>(KXDPA_OP_L3_CONTROL_IPV4),
    of_card<&card_state::upgrade>(KXDPA_OP_UPGRADE_STATE),
    of_card<&card_state::physical_ports>(KXDPA_OP_MAX_PORTS).for_argument(KX_CARD_PHYSICAL_PORTS),
    of_card<&card_state::virtual_ports>(KXDPA_OP_MAX_PORTS).for_argument(KX_CARD_VIRTUAL_PORTS),
    of_card<&card_state::control_vlan>(KXDPA_OP_CONTROL_VLAN),
    of_card<&card_state::packet_vlan>(KXDPA_OP_PACKET_VLAN),
    of_card<&card_state::control_multicast>(KXDPA_OP_CONTROL_MULTICAST),
    of_card<&card_state::heartbeat>(KXDPA_OP_HEARTBEAT),
    of_card<&card_state::dpa_up>(KXDPA_OP_AGENT_STATUS),
    of_card<&card_state::processors>(KXDPA_OP_PROCESSORS),
    of_card<&card_state::link_up_delay>(KXDPA_OP_LINK_UP_DELAY),
    with_input<&card_state::uufb>(KXDPA_OP_GLOBAL_UUFB),
    of_card<&card_state::load_balancing>(KXDPA_OP_LOAD_BALANCING),
    with_input<&card_state::portset_event>(KXDPA_OP_PORTSET_EVENT),
    with_input<&card_state::bpdu_guard>(KXDPA_OP_GLOBAL_BPDU_GUARD),
    of_card<&card_state::leaf_mode>(KXDPA_OP_LEAF_MODE),
    with_input<&card_state::bpdu_filter>(KXDPA_OP_GLOBAL_BPDU_FILTER),
    of_card<&card_state::datapath_initialized>(KXDPA_OP_DATAPATH_INITIALIZED),
    of_card<&card_state::tag_native_vlan>(KXDPA_OP_TAG_NATIVE_VLAN),
    of_card<&card_state::l3sec>(KXDPA_OP_L3SEC_MODE),

    version_text<&card_versions::hmx>(KX_VERSION_HMX),
    version_text<&card_versions::krt>(KX_VERSION_KRT),
    version_text<&card_versions::system>(KX_VERSION_SYSTEM),
    text<&card_state::versions, &card_versions::opflex_sdk>(KXDPA_OP_OPFLEX_SDK_VERSION,
                                                            KX_SDK_VERSION_CAPACITY),
    of_card<&card_state::versions, &card_versions::update_level>(KXDPA_OP_GET_UPDATE_LEVEL),
    of_card<&card_state::versions, &card_versions::word>(KXDPA_OP_GET_VERSION_WORD),
    get_variable(KXDPA_OP_KRT_UPTIME, sizeof(kx_krt_uptime),
                 answer_value<&host::card, &card_state::krt_uptime>,
                 learn_value<&host::card, &card_state::krt_uptime>),

    set<uint32_t>(KXDPA_OP_SET_MANAGEMENT_IPV4, accept), // nothing reads it back
    set_to<&card_state::management_ipv6>(KXDPA_OP_SET_MANAGEMENT_IPV6),
    set_text(KXDPA_OP_SET_CARD_UUID, KX_CARD_UUID_CAPACITY, set_uuid),
    set_text(KXDPA_OP_SET_CARD_NAME, KX_CARD_NAME_CAPACITY, set_name),
    set_to<&card_state::versions, &card_versions::update_level>(KXDPA_OP_SET_UPDATE_LEVEL),
    set_to<&card_state::versions, &card_versions::word>(KXDPA_OP_SET_VERSION_WORD),

    walk<&memory_state::heaps>(KXDPA_OP_NEXT_HEAP).from_key("heaps"),
    walk<&memory_state::pools>(KXDPA_OP_NEXT_MEMORY_POOL).from_key("memory_pools"),
    value<&host::memory, &memory_state::asserts>(KXDPA_OP_ASSERT_COUNT).from_key("asserts"),
};

} // namespace

constinit const family card_family = CARD_ANSWERS;
