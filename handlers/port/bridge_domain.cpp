#include "handlers/port/bridge_domain.h"

#include "dpa/userspace/kxdpa_indirect.h"

bool kx_next_bd(uint32_t *index) {
    return kx_dpa_get(KXDPA_OP_NEXT_BD, *index, index) == KXDPA_STATUS_SUCCESS;
}

bool kx_get_bd(uint32_t index, kx_bd_record *record) {
    *record = {};
    return kx_dpa_get(KXDPA_OP_BD_RECORD, index, record) == KXDPA_STATUS_SUCCESS;
}

bool kx_bd_is_vxlan_segment(const kx_bd_record &record) {
    return record.kind == KX_BD_KIND_SEGMENT && record.native_encap == 0;
}
