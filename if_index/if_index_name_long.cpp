// The long and the internal names of interfaces.
#include <cstdio>

#include "if_index/if_index_name.h"
#include "if_index/if_index_platform.h"

using namespace if_layout;

static int print_port_channel(char *buffer, size_t size, uint32_t if_index) {
    const char *prefix = cli_platform_uses_san_pc() ? "san-port-channel" : "port-channel";
    const int channel = shown(if_index, port_channel_channel_num);
    const int sub_intf = shown(if_index, port_channel_subtype_arg);
    switch (stored(if_index, port_channel_subtype)) {
    case IF_PORT_CHANNEL_PLAIN:
        if (sub_intf == 0) {
            return snprintf(buffer, size, "%s %d", prefix, channel);
        }
        return snprintf(buffer, size, "%s %d.%d", prefix, channel, sub_intf);
    case IF_PORT_CHANNEL_PAIR:
        return snprintf(buffer, size, "fc%d/%d", shown(if_index, port_channel_pair_first),
                        shown(if_index, port_channel_pair_second));
    default:
        return snprintf(buffer, size, "internal %s %d", prefix, channel);
    }
}

static const char *eth_port_channel_prefix() {
    const char *prefix = cli_platform_uses_san_pc() ? "port-channel" : "ethernet-port-channel";
    return cli_platform_probe() || cli_platform_is_po_only() ? "port-channel" : prefix;
}

static int print_ethernet(char *buffer, size_t size, int slot, int port, int sub_intf) {
    if (sub_intf == 0) {
        return snprintf(buffer, size, "Ethernet%d/%d", slot, port);
    }
    return snprintf(buffer, size, "Ethernet%d/%d.%d", slot, port, sub_intf);
}

int snprintf_if_index_native(char *buffer, size_t size, uint32_t if_index) {
    uint8_t type = 0;
    if (if_index_get_type(if_index, &type) != IF_INDEX_OK) {
        return snprintf_if_index_short_native(buffer, size, if_index);
    }

    int sub_intf = 0;
    switch (type) {
    case IF_TYPE_PHY_ETH:
        sub_intf = shown(if_index, phy_eth_sub_intf);
        if (sub_intf == 0) {
            return snprintf(buffer, size, "GigabitEthernet%d/%d", shown(if_index, phy_eth_slot),
                            shown(if_index, phy_eth_port));
        }
        return snprintf(buffer, size, "GigabitEthernet%d/%d.%d", shown(if_index, phy_eth_slot),
                        shown(if_index, phy_eth_port), sub_intf);
    case IF_TYPE_PORT_CHANNEL:
        return print_port_channel(buffer, size, if_index);
    case IF_TYPE_MGMT_SUP:
        if (stored(if_index, mgmt_sup_slot) != 0) {
            return snprintf(buffer, size, "mgmt0 on slot %d", shown(if_index, mgmt_sup_slot));
        }
        return snprintf(buffer, size, "mgmt%d", shown(if_index, mgmt_sup_port));
    case IF_TYPE_INBAND: // no long form
        return snprintf(buffer, size, "0x%08x", if_index);
    case IF_TYPE_SDM: // deliberately not the word of the short name
        return snprintf(buffer, size, "sdv %d:%d", shown(if_index, sdm_first),
                        shown(if_index, sdm_second));
    case IF_TYPE_ETH_PORT_CHANNEL:
        sub_intf = shown(if_index, eth_port_channel_subtype_arg);
        if (sub_intf == 0) {
            return snprintf(buffer, size, "%s%d", eth_port_channel_prefix(),
                            shown(if_index, eth_port_channel_channel_num));
        }
        return snprintf(buffer, size, "%s%d.%d", eth_port_channel_prefix(),
                        shown(if_index, eth_port_channel_channel_num), sub_intf);
    case IF_TYPE_PHY_ETHERNET:
        return print_ethernet(buffer, size, shown(if_index, phy_ethernet_slot),
                              shown(if_index, phy_ethernet_port),
                              shown(if_index, phy_ethernet_sub_intf));
    case IF_TYPE_VETH:
        sub_intf = shown(if_index, veth_sub_intf);
        if (sub_intf == 0) {
            return snprintf(buffer, size, "Vethernet%d", shown(if_index, veth_vport));
        }
        return snprintf(buffer, size, "Vethernet%d.%d", shown(if_index, veth_vport), sub_intf);
    case IF_TYPE_SAT:
        return snprintf(buffer, size, "Ethernet%d/%d/%d", shown(if_index, sat_sat_num),
                        shown(if_index, sat_slot), shown(if_index, sat_port));
    case IF_TYPE_VL3:
        if (stored(if_index, vl3_subtype) != 0) {
            return snprintf(buffer, size, "Replicator%d/%d/%d", shown(if_index, vl3_slot),
                            shown(if_index, vl3_intf_num), shown(if_index, vl3_port));
        }
        return snprintf(buffer, size, "Virtual Layer-3");
    case IF_TYPE_GPC:
        return snprintf(buffer, size, "Gateway Port-Channel%d:%d", shown(if_index, gpc_switch_id),
                        shown(if_index, gpc_ftag));
    case IF_TYPE_HMX_ETH: {
        const int module_base = cli_platform_is_module_base_128() ? 128 : 1;
        return print_ethernet(buffer, size, (int)stored(if_index, hmx_eth_slot) + module_base,
                              shown(if_index, hmx_eth_port), shown(if_index, hmx_eth_sub_intf));
    }
    case IF_TYPE_LOOPBACK: // never reached: a loopback's type reads as invalid above
        return snprintf(buffer, size, "loopback%d", (int)(if_index & 0xFFFF));
    default: // the other types are called the same, long or short
        return snprintf_if_index_short_native(buffer, size, if_index);
    }
}

int snprintf_if_index(char *buffer, size_t size, uint32_t if_index) {
    const int length = snprintf_if_index_from_if_db(buffer, size, if_index);
    return length != 0 ? length : snprintf_if_index_native(buffer, size, if_index);
}

int sprintf_if_index(char *buffer, uint32_t if_index) {
    return snprintf_if_index(buffer, IF_INDEX_NAME_SIZE, if_index);
}

// The inband sub-type's queue, or null for one without.
static const char *inband_queue(uint32_t if_index) {
    static const char *const queues[] = {"(high)", "(low)", "(drop)", "(L)", "(LC)", "(R)"};
    const uint32_t subtype = stored(if_index, inband_subtype);
    return subtype < sizeof queues / sizeof queues[0] ? queues[subtype] : nullptr;
}

int snprintf_if_index_internal(char *buffer, size_t size, uint32_t if_index) {
    uint8_t type = 0;
    if (if_index_get_type(if_index, &type) != IF_INDEX_OK) {
        return snprintf_if_index_short(buffer, size, if_index);
    }
    const uint32_t port_channel_form = stored(if_index, port_channel_subtype);
    const char *queue = inband_queue(if_index);
    if (type == IF_TYPE_PORT_CHANNEL && port_channel_form > IF_PORT_CHANNEL_PAIR) {
        return snprintf(buffer, size, "ipc %d/%d/%d", (int)port_channel_form,
                        shown(if_index, port_channel_channel_num),
                        shown(if_index, port_channel_subtype_arg));
    }
    if (type == IF_TYPE_IFC) {
        return snprintf(buffer, size, "xgfc %d/%d/%d", shown(if_index, ifc_first),
                        shown(if_index, ifc_second), shown(if_index, ifc_third));
    }
    if (type == IF_TYPE_INBAND && stored(if_index, inband_subtype) == IF_INBAND_LINECARD) {
        return snprintf(buffer, size, "lc-eth(%d) %s", shown(if_index, inband_linecard_num), queue);
    }
    if (type == IF_TYPE_INBAND && queue != nullptr) {
        return snprintf(buffer, size, "sup-fc%s %s", "0", queue);
    }
    return snprintf_if_index_short(buffer, size, if_index);
}

int sprintf_if_index_internal(char *buffer, uint32_t if_index) {
    return snprintf_if_index_internal(buffer, IF_INDEX_NAME_SIZE, if_index);
}
