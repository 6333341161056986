#include "if_index/name_form.h"

#include "if_index/if_index_platform.h"

using namespace if_layout;

static constexpr range_rule NO_RANGE = range_rule::none;
static constexpr range_rule LAST = range_rule::last;
static constexpr range_rule NEXT = range_rule::next; // deliberately not the number of the name
static constexpr platform_rule BASE_128 = platform_rule::module_base_128;
static constexpr platform_rule CONTROL_EOBC = platform_rule::control_eobc;
static constexpr platform_rule PO_ONLY = platform_rule::po_only;
static constexpr platform_rule SAN_PC = platform_rule::san_pc;
static constexpr if_index_field NONE = {};

static constexpr if_index_field from(uint8_t base, if_index_field field) {
    field.base = base;
    return field;
}

// The first row that fits is used. The rows for one platform come before those for any platform.
//
// clang-format off
static constexpr name_form forms[] = {
    {IF_TYPE_PHY_FC,           "fc#/#",       "fc#/#",                      {phy_fc_slot, phy_fc_port}, LAST, phy_fc_sub_intf},
    {IF_TYPE_PHY_ETH,          "GigE#/#",     "GigabitEthernet#/#",         {phy_eth_slot, phy_eth_port}, LAST, phy_eth_sub_intf},
    {IF_TYPE_PORT_CHANNEL,     "San-po#",     "san-port-channel #",         {port_channel_channel_num}, LAST, port_channel_subtype_arg, {port_channel_subtype, IF_PORT_CHANNEL_PLAIN}, SAN_PC},
    {IF_TYPE_PORT_CHANNEL,     "Po#",         "port-channel #",             {port_channel_channel_num}, LAST, port_channel_subtype_arg, {port_channel_subtype, IF_PORT_CHANNEL_PLAIN}},
    {IF_TYPE_PORT_CHANNEL,     "fc#/#",       "fc#/#",                      {port_channel_pair_first, port_channel_pair_second}, LAST, NONE, {port_channel_subtype, IF_PORT_CHANNEL_PAIR}},
    {IF_TYPE_PORT_CHANNEL,     "int San-po#", "internal san-port-channel #", {port_channel_channel_num}, LAST, NONE, {}, SAN_PC},
    {IF_TYPE_PORT_CHANNEL,     "int Po#",     "internal port-channel #",    {port_channel_channel_num}, LAST},
    {IF_TYPE_MGMT_SUP,         "mgmt#",       "mgmt#",                      {mgmt_sup_port}, NO_RANGE, NONE, {mgmt_sup_slot, 0}},
    {IF_TYPE_MGMT_SUP,         "mgmt0/#",     "mgmt0 on slot #",            {mgmt_sup_slot}, NO_RANGE},
    {IF_TYPE_INBAND,           "lc-eth0/#",   "",                           {inband_linecard_num}, NO_RANGE, NONE, {inband_subtype, IF_INBAND_LINECARD}},
    {IF_TYPE_INBAND,           "sup-fc0",     "",                           {}, NO_RANGE},
    {IF_TYPE_EOBC,             "control#",    "control#",                   {eobc_slot}, NEXT, NONE, {}, CONTROL_EOBC},
    {IF_TYPE_EOBC,             "Eobc #",      "Eobc #",                     {from(1, eobc_slot)}, LAST},
    {IF_TYPE_VSAN,             "vsan#",       "vsan#",                      {vsan_vsan}, LAST, NONE, {vsan_slot, IF_VSAN_SLOT}},
    {IF_TYPE_VSAN,             "cpp#/#/#",    "cpp#/#/#",                   {vsan_slot, vsan_port, vsan_vsan}, LAST},
    {IF_TYPE_VLAN,             "Vlan#",       "Vlan#",                      {vlan_vlan}, LAST},
    {IF_TYPE_FCIP,             "fcip#",       "fcip#",                      {fcip_tunnel}, LAST},
    {IF_TYPE_ISCSI,            "iscsi#/#",    "iscsi#/#",                   {iscsi_slot, iscsi_port}, LAST},
    {IF_TYPE_AVANTI,           "svc#/#",      "svc#/#",                     {avanti_slot, avanti_port}, LAST},
    {IF_TYPE_FAPORT,           "faport #/#",  "faport #/#",                 {faport_slot, faport_port}, LAST},
    {IF_TYPE_FV,               "fv#/#/#",     "fv#/#/#",                    {fv_slot, fv_dpp_num, fv_port}, LAST},
    {IF_TYPE_FCMPLS_TNNL,      "fc-tunnel #", "fc-tunnel #",                {fcmpls_tnnl_tunnel}, LAST},
    {IF_TYPE_IVR,              "ivr #:#",     "ivr #:#",                    {ivr_first, ivr_second}, LAST},
    {IF_TYPE_IFC,              "ifc #:#:#",   "ifc #:#:#",                  {ifc_first, ifc_second, ifc_third}, LAST},
    {IF_TYPE_SME,              "sme#/#",      "sme#/#",                     {sme_slot, sme_port}, LAST},
    {IF_TYPE_SDM,              "sdm #:#",     "sdv #:#",                    {sdm_first, sdm_second}, LAST},
    {IF_TYPE_ISAPI,            "isapi#/#/#",  "isapi#/#/#",                 {isapi_slot, isapi_node, isapi_port}, NO_RANGE},
    {IF_TYPE_ETH_INBAND,       "sup-eth#",    "sup-eth#",                   {eth_inband_num}, NO_RANGE},
    {IF_TYPE_ETH_PORT_CHANNEL, "Po#",         "port-channel#",              {eth_port_channel_channel_num}, LAST, eth_port_channel_subtype_arg, {}, SAN_PC},
    {IF_TYPE_ETH_PORT_CHANNEL, "Po#",         "port-channel#",              {eth_port_channel_channel_num}, LAST, eth_port_channel_subtype_arg, {}, PO_ONLY},
    {IF_TYPE_ETH_PORT_CHANNEL, "Epo#",        "ethernet-port-channel#",     {eth_port_channel_channel_num}, LAST, eth_port_channel_subtype_arg},
    {IF_TYPE_NULL,             "Null0",       "Null0",                      {}, NO_RANGE},
    {IF_TYPE_TUNNEL,           "Tunnel#",     "Tunnel#",                    {tunnel_tunnel_num}, LAST},
    {IF_TYPE_SUP_DIAG,         "sup-diag0",   "sup-diag0",                  {}, NO_RANGE},
    {IF_TYPE_PHY_ETHERNET,     "Eth#/#",      "Ethernet#/#",                {phy_ethernet_slot, phy_ethernet_port}, LAST, phy_ethernet_sub_intf},
    {IF_TYPE_LVETH,            "lveth#/#",    "lveth#/#",                   {lveth_slot, lveth_port}, NO_RANGE, lveth_sub_intf},
    {IF_TYPE_VETH,             "Veth#",       "Vethernet#",                 {veth_vport}, NO_RANGE, veth_sub_intf},
    {IF_TYPE_VIF,              "vif#",        "vif#",                       {vif_vifindex}, NEXT},
    {IF_TYPE_VFC,              "vfc#",        "vfc#",                       {vfc_vfc_num}, LAST, NONE, {vfc_vfc_subtype, IF_VFC_NUMBERED}},
    {IF_TYPE_VFC,              "vfc-po#",     "vfc-po#",                    {vfc_port_channel_channel_num}, LAST, NONE, {vfc_vfc_subtype, IF_VFC_PORT_CHANNEL}},
    {IF_TYPE_VFC,              "vfc#/#",      "vfc#/#",                     {vfc_slot_port_slot, vfc_slot_port_port}, LAST, NONE, {vfc_vfc_subtype, IF_VFC_SLOT_PORT}},
    {IF_TYPE_VFC,              "vfc-veth#",   "vfc-veth#",                  {vfc_veth_veth_num}, LAST, NONE, {vfc_vfc_subtype, IF_VFC_VETH}},
    {IF_TYPE_VFC,              "vfc#/#/#",    "vfc#/#/#",                   {vfc_fex_first, vfc_fex_second, vfc_fex_third}, LAST, NONE, {vfc_vfc_subtype, IF_VFC_FEX}},
    {IF_TYPE_SAT,              "Eth#/#/#",    "Ethernet#/#/#",              {sat_sat_num, sat_slot, sat_port}, LAST, sat_sub_intf},
    {IF_TYPE_SAT_FIF,          "fif#/#",      "fif#/#",                     {sat_fif_slot, sat_fif_port}, NO_RANGE, NONE, {sat_fif_internal, 0}},
    {IF_TYPE_SAT_FIF,          "fif_int#/#",  "fif_int#/#",                 {sat_fif_slot, sat_fif_port}, NO_RANGE},
    {IF_TYPE_IOA,              "ioa#/#",      "ioa#/#",                     {ioa_slot, ioa_port}, LAST},
    {IF_TYPE_OVERLAY,          "Overlay#",    "Overlay#",                   {overlay_port}, LAST, NONE, {overlay_port_type, IF_OVERLAY_OVERLAY}},
    {IF_TYPE_OVERLAY,          "tunnel-te#",  "tunnel-te#",                 {overlay_port}, NO_RANGE, NONE, {overlay_port_type, IF_OVERLAY_TE_TUNNEL}},
    {IF_TYPE_OVERLAY,          "mti#",        "mti#",                       {overlay_port}, NO_RANGE, NONE, {overlay_port_type, IF_OVERLAY_MTI}},
    {IF_TYPE_OVERLAY,          "peer-id#",    "peer-id#",                   {overlay_port}, LAST, NONE, {overlay_port_type, IF_OVERLAY_PEER_ID}},
    {IF_TYPE_VL3,              "vl3",         "Virtual Layer-3",            {}, NO_RANGE, NONE, {vl3_subtype, 0}},
    {IF_TYPE_VL3,              "repl#/#/#",   "Replicator#/#/#",            {vl3_slot, vl3_intf_num, vl3_port}, NO_RANGE},
    {IF_TYPE_GPC,              "gpc#:#",      "Gateway Port-Channel#:#",    {gpc_switch_id, gpc_ftag}, NO_RANGE},
    {IF_TYPE_HMX_ETH,          "Eth#/#",      "Ethernet#/#",                {from(128, hmx_eth_slot), hmx_eth_port}, LAST, hmx_eth_sub_intf, {}, BASE_128},
    {IF_TYPE_HMX_ETH,          "Eth#/#",      "Ethernet#/#",                {hmx_eth_slot, hmx_eth_port}, LAST, hmx_eth_sub_intf},
};
// clang-format on

static bool fits_platform(platform_rule rule) {
    switch (rule) {
    case platform_rule::control_eobc:
        return cli_platform_is_control_eobc();
    case platform_rule::module_base_128:
        return cli_platform_is_module_base_128();
    case platform_rule::po_only:
        return cli_platform_is_po_only();
    case platform_rule::san_pc:
        return cli_platform_uses_san_pc();
    default:
        return true;
    }
}

const name_form *find_name_form(uint8_t type, uint32_t if_index) {
    for (const name_form &form : forms) {
        const auto &[field, value] = form.condition;
        if (form.type == type && fits_platform(form.platform) &&
            (field.type == 0 || stored(if_index, field) == value)) {
            return &form;
        }
    }
    return nullptr;
}
