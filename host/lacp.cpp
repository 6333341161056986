#include "host/access.h"
#include "host/host.h"
#include "host/keys.h"

#include <iterator>

namespace {

using uplink = keyed<decltype(lacp_state::uplinks)>;

constexpr key_word STATES[] = {{"initialized", 0}, {"undefined", 1}, {"channeling", 2},
                               {"individual", 3},  {"failed", 4},    {"suspended", 5},
                               {"hot-standby", 6}};

constexpr key_word NO_CHANNEL[] = {{"none", KX_LACP_NO_HOST_DATA}};

constexpr key_word CHANNEL_MODES[] = {{"active", KX_LACP_ACTIVE}, {"passive", KX_LACP_PASSIVE}};

constexpr size_t CARRIERS = std::size(kx_lacp_carriers{}.physical_ltls);

constexpr key CARRIER_ROWS[] = {
    numbers_key("physical", at<&kx_lacp_carriers::physical_ltls>,
                "the physical ports, in the driver's order")
        .in("LTL")
        .up_to(CARRIERS),
    number_key("port_channel", at<&kx_lacp_carriers::port_channel_ltl>, "the port channel")
        .in("LTL"),
};

constexpr key_table CARRIER_KEYS = {"lacp_carriers", "The carriers of LACP", CARRIER_ROWS,
                                    make_object<kx_lacp_carriers>};

constexpr key PARTNER_ROWS[] = {
    number_key("system_priority", at<&kx_lacp_partner::system_priority>, "the system's priority"),
    mac_key("system_mac", at<&kx_lacp_partner::system_mac>, "the system's MAC address"),
    number_key("key", at<&kx_lacp_partner::key>, "the port's key"),
    number_key("port_priority", at<&kx_lacp_partner::port_priority>, "the port's priority"),
    number_key("port_number", at<&kx_lacp_partner::port_number>, "the port's number"),
    number_key("state", at<&kx_lacp_partner::state>, "LACP state bits, in the low byte"),
};

constexpr key_table PARTNER_KEYS = {"lacp_partner", "One side of a LACP PDU", PARTNER_ROWS,
                                    make_object<kx_lacp_partner>};

constexpr key PDU_ROWS[] = {
    object_key("krt_actor", part<&kx_lacp_pdu_cache::krt_actor>, PARTNER_KEYS,
               "the host as the KRT knows it"),
    object_key("krt_partner", part<&kx_lacp_pdu_cache::krt_partner>, PARTNER_KEYS,
               "the upstream switch as the KRT knows it"),
    object_key("upstream_actor", part<&kx_lacp_pdu_cache::upstream_actor>, PARTNER_KEYS,
               "the upstream switch"),
    object_key("upstream_partner", part<&kx_lacp_pdu_cache::upstream_partner>, PARTNER_KEYS,
               "the host as the upstream switch knows it"),
};

constexpr key_table PDU_KEYS = {"lacp_pdus", "The last LACP PDUs of an uplink", PDU_ROWS,
                                make_object<kx_lacp_pdu_cache>};

constexpr key HOST_DATA_ROWS[] = {
    word_key("channel", at<&kx_lacp_host_data::channel_index>, NO_CHANNEL, "index of its channel"),
    word_key("mode", at<&kx_lacp_host_data::channel_mode>, CHANNEL_MODES, "the channel's mode"),
    number_key("port_priority", at<&kx_lacp_host_data::port_priority>, "the port's priority"),
};

std::shared_ptr<void> make_host_data(size_t /*place*/) {
    return std::make_shared<kx_lacp_host_data>(kx_lacp_host_data{
        .channel_index = KX_LACP_NO_HOST_DATA, .channel_mode = 0, .port_priority = 0});
}

constexpr key_table HOST_DATA_KEYS = {"lacp_host_data", "The LACP host data of an uplink",
                                      HOST_DATA_ROWS, make_host_data};

constexpr key_access OPTIONAL_DATA = part<&uplink::value, &lacp_uplink::host_data>;

constexpr key_access HOST_DATA = {
    .can_lack = true,
    .look = OPTIONAL_DATA.look,
    .open = [](void *object) -> void * {
        auto &data = static_cast<uplink *>(object)->value.host_data;
        if (!data) {
            data.emplace().channel_index = KX_LACP_NO_HOST_DATA;
        }
        return &*data;
    },
    .drop = OPTIONAL_DATA.drop,
};

constexpr key UPLINK_ROWS[] = {
    number_key("ltl", at<&uplink::key>, "the port").once().in("LTL"),
    flag_key("bit", at<&uplink::value, &lacp_uplink::bit>, "it takes part in LACP"),
    word_key("state", at<&uplink::value, &lacp_uplink::port_state>, STATES,
             "its state, where the host runs LACP"),
    flag_key("upgrade_notify", at<&uplink::value, &lacp_uplink::upgrade_notify>,
             "the KRT is told of an upgrade"),
    object_key("pdus", part<&uplink::value, &lacp_uplink::pdus>, PDU_KEYS, "its last PDUs")
        .or_else("refused"),
    object_key("host_data", HOST_DATA, HOST_DATA_KEYS, "what the host runs LACP with")
        .or_else("refused"),
};

constexpr key_table UPLINK_KEYS = {"lacp_uplink", "LACP on an uplink", UPLINK_ROWS,
                                   make_object<uplink>};

constexpr key LACP_ROWS[] = {
    flag_key("offload", at<&lacp_state::offload>, "the host runs LACP itself"),
    object_key("carriers", part<&lacp_state::carriers>, CARRIER_KEYS, "what LACP runs on")
        .or_else("refused"),
    list_key("uplinks", items_of<&lacp_state::uplinks>, UPLINK_KEYS,
             "the uplinks; LACP requests for other ports are refused"),
};

} // namespace

constinit const key_table LACP_KEYS = {"lacp", "LACP", LACP_ROWS, make_object<lacp_state>};
