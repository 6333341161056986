#include "capture/host_capture.h"
#include "handlers/card/card_record.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

namespace {

// Room for every text of the card, and what the UUID has behind it.
constexpr size_t TEXT_ROOM = 300;

constexpr uint32_t UNTOLD = 0xA5A5A5A5; // stands where the UUID's type goes before it is asked for

struct told_text {
    bool told = false;
    std::array<char, TEXT_ROOM> bytes{};
    uint32_t returned = 0; // the capacity word afterwards
    std::string text() const {
        return {bytes.data(), strnlen(bytes.data(), bytes.size())};
    }
};

template <kxdpa_opcode opcode>
told_text ask_text(inquiry &driver, uint32_t argument, uint32_t capacity) {
    told_text reply;
    reply.returned = capacity;
    reply.told = driver.get_variable<opcode>(argument, reply.bytes.data(), reply.bytes.size(),
                                             &reply.returned);
    return reply;
}

// What a described host with this text tells at the capacity.
told_text described_text(const std::string &text, uint32_t capacity) {
    told_text reply;
    reply.told = true;
    reply.returned = std::min(static_cast<uint32_t>(text.size()) + 1, capacity);
    std::copy_n(text.begin(), std::min<size_t>(text.size(), capacity), reply.bytes.begin());
    return reply;
}

bool is_alike(const told_text &a, const told_text &b) {
    return a.bytes == b.bytes && a.returned == b.returned;
}

// "show card" asks for each text with the capacity that the request before has left, which may cut
// it. Where the driver cuts it as a described host does, the whole text is described. `*capacity`
// is what the display asks with and, behind it, what it goes on with.
template <kxdpa_opcode opcode>
void ask_card_text(inquiry &driver, std::optional<std::string> *into, uint32_t *capacity) {
    const uint32_t asked = std::min<uint32_t>(*capacity, TEXT_ROOM);
    const told_text shown = ask_text<opcode>(driver, 0, asked);
    *capacity = shown.returned;
    into->reset();
    if (!shown.told) {
        return;
    }
    if (asked < KX_CARD_NAME_CAPACITY) {
        const told_text whole = ask_text<opcode>(driver, 0, KX_CARD_NAME_CAPACITY);
        if (whole.told && is_alike(shown, described_text(whole.text(), asked))) {
            *into = whole.text();
            return;
        }
    }
    // A display may have room for a longer text than can be described.
    *into = shown.text().substr(0, KX_CARD_NAME_CAPACITY);
    if (!is_alike(shown, described_text(**into, asked))) {
        driver.keep({opcode, 0, {}}, KXDPA_STATUS_SUCCESS,
                    byte_span(reinterpret_cast<const uint8_t *>(shown.bytes.data()), asked),
                    shown.returned);
    }
}

// The driver puts the type behind the text's capacity, if it does.
void ask_uuid(inquiry &driver, card_state &card) {
    kx_card_uuid uuid;
    uuid.type = UNTOLD;
    uint32_t returned = sizeof uuid.text;
    if (!driver.get_variable<KXDPA_OP_CARD_UUID>(0, &uuid, sizeof uuid.text, &returned)) {
        card.uuid.reset();
        return;
    }
    const std::string text(uuid.text, strnlen(uuid.text, sizeof uuid.text));
    card.uuid = text;
    card.uuid_type = uuid.type == UNTOLD ? std::nullopt : std::optional(uuid.type);
    if (returned != std::min(text.size() + 1, sizeof uuid.text)) {
        const byte_span reply = bytes_of(uuid);
        driver.keep({KXDPA_OP_CARD_UUID, 0, {}}, KXDPA_STATUS_SUCCESS,
                    card.uuid_type ? reply : reply.first(sizeof uuid.text), returned);
    }
}

void ask_names(inquiry &driver, card_state &card) {
    ask_uuid(driver, card);
    uint32_t capacity = KX_CARD_NAME_CAPACITY;
    ask_card_text<KXDPA_OP_CARD_NAME>(driver, &card.name, &capacity);
    ask_card_text<KXDPA_OP_SWITCH_NAME>(driver, &card.switch_name, &capacity);
    ask_card_text<KXDPA_OP_SWITCH_ALIAS>(driver, &card.switch_alias, &capacity);
    capacity = KX_CARD_UUID_CAPACITY;
    ask_card_text<KXDPA_OP_SWITCH_UUID>(driver, &card.switch_uuid, &capacity);
}

template <kxdpa_opcode opcode>
void ask_plain_text(inquiry &driver, uint32_t argument, uint32_t capacity,
                    std::optional<std::string> *into) {
    const told_text reply = ask_text<opcode>(driver, argument, capacity);
    *into = reply.told ? std::optional(reply.text()) : std::nullopt;
}

template <kxdpa_opcode opcode>
void ask_mac(inquiry &driver, uint32_t argument, std::optional<mac_address> *into) {
    kx_card_mac told;
    if (driver.get<opcode>(argument, &told)) {
        into->emplace();
        std::copy_n(told.mac, (*into)->size(), (*into)->begin());
    } else {
        into->reset();
    }
}

// For the requests whose buffer is sent as well.
template <kxdpa_opcode opcode, typename Number>
void ask_with_input(inquiry &driver, std::optional<Number> *into) {
    Number told = 0;
    *into = driver.exchange<opcode>(0, &told) ? std::optional(told) : std::nullopt;
}

// Displays ask for the layer-3 control words in that mode only.
void ask_tunnel_mode(inquiry &driver, card_state &card) {
    driver.get<KXDPA_OP_TUNNEL_MODE>(0, &card.tunnel_mode);
    if (card.tunnel_mode == KX_TUNNEL_MODE_L3) {
        driver.get<KXDPA_OP_L3_CONTROL_INDEX>(0, &card.l3_control_index);
        driver.get<KXDPA_OP_L3_CONTROL_VLAN>(
            card.l3_control_index.value_or(0) | KX_L3_CONTROL_CLASS, &card.l3_control_vlan);
    }
}

void ask_macs(inquiry &driver, card_macs &macs) {
    ask_mac<KXDPA_OP_CARD_MAC>(driver, KX_CARD_MAC_CONTROL, &macs.control);
    ask_mac<KXDPA_OP_CARD_MAC>(driver, KX_CARD_MAC_PACKET, &macs.packet);
    ask_mac<KXDPA_OP_CARD_MAC>(driver, KX_CARD_MAC_SPAN, &macs.span);
    ask_mac<KXDPA_OP_AGENT_MAC>(driver, 0, &macs.agent);
    ask_mac<KXDPA_OP_PRIMARY_KRT_MAC>(driver, 0, &macs.primary_krt);
    ask_mac<KXDPA_OP_PRIMARY_KRT_PACKET_MAC>(driver, 0, &macs.primary_krt_packet);
    ask_mac<KXDPA_OP_PRIMARY_KRT_MANAGEMENT_MAC>(driver, 0, &macs.primary_krt_management);
    ask_mac<KXDPA_OP_STANDBY_KRT_CONTROL_MAC>(driver, 0, &macs.standby_krt_control);
    ask_mac<KXDPA_OP_SECONDARY_KRT_MAC>(driver, 0, &macs.secondary_krt);
}

void ask_numbers(inquiry &driver, card_state &card) {
    driver.get<KXDPA_OP_CARD_DOMAIN>(0, &card.domain);
    driver.get<KXDPA_OP_CARD_SLOT>(0, &card.slot);
    driver.get<KXDPA_OP_MANAGEMENT_IPV6>(0, &card.management_ipv6);
    driver.get<KXDPA_OP_L3_CONTROL_IPV4>(0, &card.l3_control_ipv4);
    driver.get<KXDPA_OP_UPGRADE_STATE>(0, &card.upgrade);
    driver.get<KXDPA_OP_MAX_PORTS>(KX_CARD_PHYSICAL_PORTS, &card.physical_ports);
    driver.get<KXDPA_OP_MAX_PORTS>(KX_CARD_VIRTUAL_PORTS, &card.virtual_ports);
    driver.get<KXDPA_OP_CONTROL_VLAN>(0, &card.control_vlan);
    driver.get<KXDPA_OP_PACKET_VLAN>(0, &card.packet_vlan);
    driver.get<KXDPA_OP_CONTROL_MULTICAST>(0, &card.control_multicast);
    driver.get<KXDPA_OP_HEARTBEAT>(0, &card.heartbeat);
    driver.get<KXDPA_OP_AGENT_STATUS>(0, &card.dpa_up);
    driver.get<KXDPA_OP_PROCESSORS>(0, &card.processors);
    driver.get<KXDPA_OP_LINK_UP_DELAY>(0, &card.link_up_delay);
    driver.get<KXDPA_OP_LOAD_BALANCING>(0, &card.load_balancing);
    driver.get<KXDPA_OP_DATAPATH_INITIALIZED>(0, &card.datapath_initialized);
    driver.get<KXDPA_OP_TAG_NATIVE_VLAN>(0, &card.tag_native_vlan);
    driver.get<KXDPA_OP_L3SEC_MODE>(0, &card.l3sec);
    ask_with_input<KXDPA_OP_GLOBAL_UUFB>(driver, &card.uufb);
    ask_with_input<KXDPA_OP_PORTSET_EVENT>(driver, &card.portset_event);
    ask_with_input<KXDPA_OP_GLOBAL_BPDU_GUARD>(driver, &card.bpdu_guard);
}

// Displays ask a leaf for other things than any other card.
void ask_by_leaf_mode(inquiry &driver, card_state &card) {
    driver.get<KXDPA_OP_LEAF_MODE>(0, &card.leaf_mode);
    if (card.leaf_mode.value_or(0) != 0) {
        ask_with_input<KXDPA_OP_GLOBAL_BPDU_FILTER>(driver, &card.bpdu_filter);
        ask_plain_text<KXDPA_OP_OPFLEX_SDK_VERSION>(driver, 0, KX_SDK_VERSION_CAPACITY,
                                                    &card.versions.opflex_sdk);
    } else {
        ask_plain_text<KXDPA_OP_VERSION_TEXT>(driver, KX_VERSION_KRT, KX_VERSION_CAPACITY,
                                              &card.versions.krt);
    }
}

void ask_versions(inquiry &driver, card_versions &versions) {
    ask_plain_text<KXDPA_OP_VERSION_TEXT>(driver, KX_VERSION_HMX, KX_VERSION_CAPACITY,
                                          &versions.hmx);
    ask_plain_text<KXDPA_OP_VERSION_TEXT>(driver, KX_VERSION_SYSTEM, KX_VERSION_CAPACITY,
                                          &versions.system);
    driver.get<KXDPA_OP_GET_UPDATE_LEVEL>(0, &versions.update_level);
    driver.get<KXDPA_OP_GET_VERSION_WORD>(0, &versions.word);
}

void ask_uptime(inquiry &driver, card_state &card) {
    kx_krt_uptime uptime;
    uint32_t capacity = sizeof uptime;
    card.krt_uptime.reset();
    if (driver.get_variable<KXDPA_OP_KRT_UPTIME>(0, &uptime, sizeof uptime, &capacity)) {
        card.krt_uptime = uptime.seconds;
    }
}

} // namespace

void capture_card(host_capture &host) {
    inquiry &driver = host.driver;
    driver.begin("the card");
    uint32_t answer = 0;
    driver.get<KXDPA_OP_CARD_API>(0, &answer, if_refused::KEPT);
    card_state &card = host.captured.card;
    ask_names(driver, card);
    ask_tunnel_mode(driver, card);
    ask_macs(driver, card.macs);
    ask_numbers(driver, card);
    ask_by_leaf_mode(driver, card);
    ask_versions(driver, card.versions);
    ask_uptime(driver, card);
}
