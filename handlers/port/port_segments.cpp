// "show port segments": the ports that are in an overlay segment.
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/port/shared/port_walk.h"
#include "infra/utils/field_text.h"

namespace {

constexpr const char *ACCESS_MODE = "A"; // the only mode a port in a segment has

} // namespace

int kx_port_seg_table_dump(const char *arg) {
    const uint32_t first = kx_get_bare_cookie(arg);
    const bool continued = kx_is_agent_driven() && arg != nullptr;
    if (continued && (first == 0 || first == KX_LTL_BEFORE_FIRST)) {
        kx_print("Invalid ltl\n");
        return -1;
    }
    if (!continued) {
        kx_print("                          Native  Seg\n");
        kx_print("  LTL   KRT Port  Mode    SegID   State   Hmx Port\n");
    }
    kx_print_ports(first, KX_VIEW_HMX, [](uint32_t ltl, const kx_port_record &record) {
        if (kx_port_is_hidden(ltl, record) || kx_is_internal_ltl(ltl) || record.segment_id == 0) {
            return KX_ROW_LEFT_OUT;
        }
        kx_print("%5u   %8s  %2s   %8u   %3s     %s\n", ltl, kx_get_port_name(ltl, record).text,
                 ACCESS_MODE, record.segment_id, record.forwarding != 0 ? "FWD" : "BLK",
                 kx_field_text(record.hmx_port_name).text);
        return KX_ROW_PRINTED;
    });
    return 0;
}
