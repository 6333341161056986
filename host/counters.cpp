#include "host/access.h"
#include "host/host.h"
#include "host/keys.h"

namespace {

using traffic = keyed<traffic_table>;
using drops = keyed<drop_table>;

template <typename entry> bool is_known(const entry &of) {
    return of.value.has_value();
}

template <typename entry> void set_known(entry &of, bool known) {
    if (!known) {
        of.value.reset();
    } else if (!of.value) {
        of.value.emplace();
    }
}

template <typename entry> constexpr key_access KNOWN = computed<is_known<entry>, set_known<entry>>;

template <auto member> constexpr key_access OF_TRAFFIC = at<&traffic::value, member>;

constexpr key TRAFFIC_ROWS[] = {
    number_key("ltl", at<&traffic::key>, "the port").once().in("LTL"),
    flag_key("known", KNOWN<traffic>, "false for a port whose counters are refused"),
    number_key("received", OF_TRAFFIC<&kx_port_statistics::received_packets>, "received")
        .in("packets"),
    number_key("received_bytes", OF_TRAFFIC<&kx_port_statistics::received_bytes>, "received")
        .in("bytes"),
    number_key("receive_drops", OF_TRAFFIC<&kx_port_statistics::receive_drops>,
               "received and dropped")
        .in("packets"),
    number_key("sent", OF_TRAFFIC<&kx_port_statistics::sent_packets>, "sent").in("packets"),
    number_key("sent_bytes", OF_TRAFFIC<&kx_port_statistics::sent_bytes>, "sent").in("bytes"),
    number_key("transmit_drops", OF_TRAFFIC<&kx_port_statistics::transmit_drops>,
               "dropped instead of sent")
        .in("packets"),
    number_key("transmit_floods", OF_TRAFFIC<&kx_port_statistics::transmit_floods>, "flooded")
        .in("packets"),
};

constexpr key_access STAGE_DROPS = {
    .most = UINT32_MAX,
    .get_at = [](const void *object, uint32_t stage) -> key_value {
        const auto &at_stage = static_cast<const kx_drop_counters *>(object)->stages[stage];
        return at_stage.valid != 0 ? key_value{.number = at_stage.drops}
                                   : key_value{.is = key_value::state::refused};
    },
    .set_at = [](void *object, uint32_t stage, uint64_t number) -> bool {
        auto &at_stage = static_cast<kx_drop_counters *>(object)->stages[stage];
        at_stage.valid = 1;
        at_stage.drops = static_cast<uint32_t>(number);
        return true;
    },
};

constexpr key STAGE_DROP_ROWS[] = {
    counters_key("", STAGE_DROPS, "drops at the stage of that place in `stages`")
        .or_else("unused")
        .in("packets")
        .up_to(KX_STAGES),
};

constexpr key DROP_ROWS[] = {
    number_key("ltl", at<&drops::key>, "the port").once().in("LTL"),
    flag_key("known", KNOWN<drops>, "false for a port whose counters are refused"),
    included_keys(STAGE_DROP_KEYS, part<&drops::value>),
};

constexpr key STAGE_ROWS[] = {
    text_key("name", at<&kx_stage_descriptor::name>,
             "its name, which begins with \"Ingress \" or \"Egress \""),
    number_key("number", at<&kx_stage_descriptor::number>, "its number")
        .or_else("its place in the list"),
    flag_key("present", at<&kx_stage_descriptor::present>, "it exists and is shown"),
};

std::shared_ptr<void> make_stage(size_t place) {
    auto stage = std::make_shared<kx_stage_descriptor>();
    stage->number = static_cast<uint8_t>(place);
    stage->present = 1;
    return stage;
}

} // namespace

constinit const key_table TRAFFIC_KEYS = {"traffic", "The traffic of a port", TRAFFIC_ROWS,
                                          make_object<traffic>};

constinit const key_table DROP_KEYS = {"drops", "The drops of a port", DROP_ROWS,
                                       make_object<drops>};

constinit const key_table STAGE_DROP_KEYS = {"stage_drops", "Drops by stage", STAGE_DROP_ROWS,
                                             make_object<kx_drop_counters>};

constinit const key_table STAGE_KEYS = {"stage", "A stage of the pipeline", STAGE_ROWS, make_stage};
