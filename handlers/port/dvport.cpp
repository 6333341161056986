// "show dvport": the distributed virtual port of each port.
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/port/shared/port_walk.h"
#include "infra/utils/field_text.h"
#include "infra/utils/kxstrings.h"

int kx_port_dvport_info_table_dump(const char *arg) {
    const kx_port_selection shown = {KX_VIEW_HMX, kx_begins_with(arg, "internal")};
    const uint32_t first = kx_get_first_ltl(arg);
    if (first == KX_LTL_BEFORE_FIRST) {
        kx_print("  LTL  KRT Port  DVPortID       DVPortGroup  Hmx Port\n");
    }
    kx_print_ports(first, shown.view, [&](uint32_t ltl, const kx_port_record &record) {
        if (!kx_is_shown(shown, ltl, record)) {
            return KX_ROW_LEFT_OUT;
        }
        kx_print("%5u  %8s  %8u  %16s  %s\n", ltl, kx_get_port_name(ltl, record).text,
                 record.dvport_id, kx_field_text(record.dvport_group).text,
                 kx_field_text(record.hmx_port_name).text);
        return KX_ROW_PRINTED;
    });
    return 0;
}
