// The names of interface ranges.
#include <cstdio>

#include "if_index/if_index_name.h"

using namespace if_layout;

static int sub_intf_or_port(uint32_t if_index, if_index_field sub_intf, if_index_field port) {
    return stored(if_index, sub_intf) != 0 ? shown(if_index, sub_intf) : shown(if_index, port);
}

static int last_port_channel_number(uint32_t if_index) {
    switch (stored(if_index, port_channel_subtype)) {
    case IF_PORT_CHANNEL_PLAIN:
        return sub_intf_or_port(if_index, port_channel_subtype_arg, port_channel_channel_num);
    case IF_PORT_CHANNEL_PAIR:
        return shown(if_index, port_channel_pair_second);
    default:
        return shown(if_index, port_channel_channel_num);
    }
}

// The number in which a range that ends with the index ends, or -1 for types without range form.
static int last_number(uint32_t if_index) {
    switch (if_index_type_bits(if_index)) {
    case IF_TYPE_PHY_FC:
        return sub_intf_or_port(if_index, phy_fc_sub_intf, phy_fc_port);
    case IF_TYPE_PHY_ETH:
        return sub_intf_or_port(if_index, phy_eth_sub_intf, phy_eth_port);
    case IF_TYPE_PHY_ETHERNET:
        return sub_intf_or_port(if_index, phy_ethernet_sub_intf, phy_ethernet_port);
    case IF_TYPE_SAT:
        return sub_intf_or_port(if_index, sat_sub_intf, sat_port);
    case IF_TYPE_HMX_ETH:
        return sub_intf_or_port(if_index, hmx_eth_sub_intf, hmx_eth_port);
    case IF_TYPE_PORT_CHANNEL:
        return last_port_channel_number(if_index);
    case IF_TYPE_ETH_PORT_CHANNEL:
        return sub_intf_or_port(if_index, eth_port_channel_subtype_arg,
                                eth_port_channel_channel_num);
    case IF_TYPE_EOBC:
        return shown(if_index, eobc_slot) + 1;
    case IF_TYPE_VSAN:
        return shown(if_index, vsan_vsan);
    case IF_TYPE_VLAN:
        return shown(if_index, vlan_vlan);
    case IF_TYPE_FCIP:
        return shown(if_index, fcip_tunnel);
    case IF_TYPE_FCMPLS_TNNL:
        return shown(if_index, fcmpls_tnnl_tunnel);
    case IF_TYPE_ISCSI:
        return shown(if_index, iscsi_port);
    case IF_TYPE_AVANTI:
        return shown(if_index, avanti_port);
    case IF_TYPE_FAPORT:
        return shown(if_index, faport_port);
    case IF_TYPE_SME:
        return shown(if_index, sme_port);
    case IF_TYPE_IOA:
        return shown(if_index, ioa_port);
    case IF_TYPE_FV:
        return shown(if_index, fv_port);
    case IF_TYPE_IVR:
        return shown(if_index, ivr_second);
    case IF_TYPE_SDM:
        return shown(if_index, sdm_second);
    case IF_TYPE_IFC:
        return shown(if_index, ifc_third);
    case IF_TYPE_TUNNEL:
        return shown(if_index, tunnel_tunnel_num);
    case IF_TYPE_OVERLAY: {
        const uint32_t kind = stored(if_index, overlay_port_type);
        const bool has_range = kind == IF_OVERLAY_OVERLAY || kind == IF_OVERLAY_PEER_ID;
        return has_range ? shown(if_index, overlay_port) : -1;
    }
    case IF_TYPE_VIF: // deliberately one more than the name shows
        return shown(if_index, vif_vifindex) + 1;
    case IF_TYPE_VFC: // deliberately the same bits for every sub-type
        return shown(if_index, vfc_vfc_num);
    case IF_TYPE_LOOPBACK: // never reached: a loopback has no valid type
        return (int)(if_index & 0xFFFF);
    default:
        return -1;
    }
}

using name_printer = int (*)(char *buffer, size_t size, uint32_t if_index);

static int print_range(char *buffer, size_t size, const if_index_range *range,
                       name_printer print_name) {
    uint8_t first_type = 0;
    uint8_t last_type = 0;
    if (range == nullptr || if_index_get_type(range->first, &first_type) != IF_INDEX_OK ||
        if_index_get_type(range->last, &last_type) != IF_INDEX_OK || first_type != last_type) {
        return 0;
    }

    const int length = print_name(buffer, size, range->first);
    if ((size_t)length >= size) {
        if (size > 0) {
            buffer[0] = '\0';
        }
        return 0;
    }
    if (range->first == range->last) {
        return length;
    }
    const int number = last_number(range->last);
    if (number < 0) {
        return 2 * length; // deliberate: the first name is counted twice
    }

    // Deliberate: the end is bounded by the whole size and not by what the first name left of it,
    // for which the caller has storage.
    char *end = buffer + length;
    int appended = 0;
    if (first_type == IF_TYPE_PHY_FC && stored(range->last, phy_fc_sub_intf) != 0) {
        // Deliberate: this form repeats the first name. The copy is there because the text it
        // repeats is in the buffer that it is written to.
        char first_name[IF_INDEX_NAME_SIZE];
        snprintf(first_name, sizeof first_name, "%s", buffer);
        appended = snprintf(end, size, "%s-%d", first_name, number);
    } else {
        appended = snprintf(end, size, "-%d", number);
    }
    if ((size_t)appended >= size) {
        *end = '\0';
        return 0;
    }
    return length + appended;
}

int snprintf_if_index_range_short(char *buffer, size_t size, const if_index_range *range) {
    return print_range(buffer, size, range, snprintf_if_index_short);
}

int snprintf_if_index_range(char *buffer, size_t size, const if_index_range *range) {
    return print_range(buffer, size, range, snprintf_if_index);
}
