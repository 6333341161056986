#include "handlers/port/shared/port_vlans.h"

#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/output_sink.h"

namespace {

// The number of VLANs that the DPA reserves for itself; outside L3 tunnel mode it is one more.
constexpr int RESERVED_VLANS = 4;

// Buffer of KXDPA_OP_PORT_VLAN_SET. The whole set is the input, and its size is also the capacity.
// So the driver may write twice as much as is read.
struct port_vlan_buffer {
    bmp4096 vlans;
    uint8_t spare[sizeof(bmp4096)];
};

static_assert(sizeof(port_vlan_buffer) == 2 * sizeof(bmp4096));

} // namespace

int32_t kx_get_port_vlans(uint32_t ltl, kx_port_view view, bmp4096 *vlans) {
    port_vlan_buffer buffer{};
    bmp4096_init(&buffer.vlans);
    uint32_t capacity = sizeof buffer.vlans;
    const uint32_t status = kx_dpa_call_indirect1(
        KXDPA_OP_PORT_VLAN_SET, kx_port_argument(view, ltl),
        KXDPA_FLAG_IN | KXDPA_FLAG_OUT | KXDPA_FLAG_MAX, &buffer, sizeof buffer.vlans, &capacity);
    if (status != KXDPA_STATUS_SUCCESS) {
        bmp4096_init(&buffer.vlans);
    }
    *vlans = buffer.vlans;
    return bmp4096_bitcount(vlans);
}

bool kx_port_forwards_on_vlan(uint32_t ltl, kx_port_view view, uint16_t vlan) {
    kx_vlan_forwarding query{};
    query.vlan = vlan;
    return kx_dpa_exchange(KXDPA_OP_VLAN_FORWARDING, kx_port_argument(view, ltl), &query) ==
               KXDPA_STATUS_SUCCESS &&
           query.forwarding != 0;
}

int64_t kx_get_usable_vlan_count() {
    uint32_t vlans = 0;
    if (kx_dpa_get(KXDPA_OP_VLAN_COUNT, 0, &vlans) != KXDPA_STATUS_SUCCESS) {
        vlans = 0;
    }
    uint32_t mode = KX_TUNNEL_MODE_L3;
    const bool one_more = kx_dpa_get(KXDPA_OP_TUNNEL_MODE, 0, &mode) == KXDPA_STATUS_SUCCESS &&
                          mode != KX_TUNNEL_MODE_L3;
    return int64_t{vlans} - RESERVED_VLANS - (one_more ? 1 : 0);
}

void kx_print_vlan_list(const bmp4096 &vlans, int column) {
    char piece[128];
    int done = 0;
    bitset_snprintf(piece, sizeof piece, &vlans, 1, &done);
    kx_print("%s\n", piece);
    while (done == 0) {
        bitset_snprintf(piece, sizeof piece, &vlans, 0, &done);
        kx_print("%*s%s\n", column, "", piece);
    }
}
