#include "sim/bridge_domain/bridge_domains.h"

#include "sim/host.h"
#include "sim/object_reader.h"

namespace {

constexpr uint32_t LAST_VLAN = 4095;
constexpr uint16_t DEFAULT_VDC = 1;

kx_bd_record parse_record(object_reader &keys) {
    kx_bd_record record{};
    record.vdc = DEFAULT_VDC;
    record.native_encap = 1;
    keys.require("index");
    keys.number("index", record.index, 1);
    keys.number("vlan", record.vlan, 0, LAST_VLAN);
    keys.number("vdc", record.vdc);
    keys.number("designated_receiver", record.dr_ltl);
    keys.flag("multiple_uplinks", record.multi_uplinks);
    keys.number("segment", record.segment_id);
    record.kind = keys.has("segment") ? KX_BD_KIND_SEGMENT : 0;
    keys.ipv4("group", record.segment_group);
    keys.flag("native", record.native_encap);
    keys.flag("proxy", record.vff_mode);
    record.swbd = record.vlan;
    keys.number("swbd", record.swbd);
    keys.choice("segment_mode", record.segment_mode,
                {{"multicast", KX_SEGMENT_MULTICAST}, {"unicast", KX_SEGMENT_UNICAST}});
    keys.number("segment_features", record.segment_features);
    keys.text("name", record.name);
    keys.number("vtep_dsn", record.vtep_dsn);
    keys.number("mac_dsn", record.mac_dsn);
    keys.number("bgp_vtep_dsn", record.bgp_vtep_dsn);
    return record;
}

void parse_bridge_domains(object_reader &file, host &into) {
    bridge_domain_table &table = into.bridge_domains;
    file.numbers("vlans", table.vlans, 1, LAST_VLAN);
    file.each("bridge_domains", [&](object_reader &keys) {
        const kx_bd_record record = parse_record(keys);
        if (!table.by_index.emplace(record.index, bridge_domain{record}).second) {
            keys.fail("index", "is used twice");
        }
    });
}

void answer_count(host &state, exchange &talk) {
    talk.reply_with(static_cast<uint32_t>(state.bridge_domains.by_index.size()));
}

void answer_next_index(host &state, exchange &talk) {
    const auto next = state.bridge_domains.by_index.upper_bound(talk.request.arg);
    if (next == state.bridge_domains.by_index.end())
        talk.fail();
    else
        talk.reply_with(next->first);
}

void answer_record(host &state, exchange &talk) {
    const auto found = state.bridge_domains.by_index.find(talk.request.arg);
    if (found == state.bridge_domains.by_index.end())
        talk.fail();
    else
        talk.reply_with(found->second.record);
}

void answer_vlan_count(host &state, exchange &talk) {
    talk.reply_with(static_cast<uint32_t>(state.bridge_domains.vlans.size()));
}

void answer_next_vlan(host &state, exchange &talk) {
    const auto next = state.bridge_domains.vlans.upper_bound(talk.request.arg);
    if (next == state.bridge_domains.vlans.end())
        talk.fail();
    else
        talk.reply_with(*next);
}

constexpr answer ANSWERS[] = {
    {.opcode = KXDPA_OP_BD_COUNT, .flags = KXDPA_FLAG_OUT, .len1 = 4, .reply = answer_count},
    {.opcode = KXDPA_OP_NEXT_BD, .flags = KXDPA_FLAG_OUT, .len1 = 4, .reply = answer_next_index},
    {.opcode = KXDPA_OP_BD_RECORD,
     .flags = KXDPA_FLAG_OUT,
     .len1 = sizeof(kx_bd_record),
     .reply = answer_record},
    {.opcode = KXDPA_OP_VLAN_COUNT, .flags = KXDPA_FLAG_OUT, .len1 = 4, .reply = answer_vlan_count},
    {.opcode = KXDPA_OP_NEXT_VLAN, .flags = KXDPA_FLAG_OUT, .len1 = 4, .reply = answer_next_vlan},
};

} // namespace

constinit const family bridge_domain_family = {parse_bridge_domains, ANSWERS};
