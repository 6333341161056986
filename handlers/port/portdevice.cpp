// "show portdevice": the kind of device that each port is.
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/port/shared/port_walk.h"
#include "infra/utils/field_text.h"

int kx_show_port_device_type(const char *arg) {
    const uint32_t first = kx_get_bare_cookie(arg);
    if (first == KX_LTL_BEFORE_FIRST) {
        kx_print("  LTL              Device Type  Device Name\n");
    }
    kx_print_ports(first, KX_VIEW_HMX, [](uint32_t ltl, const kx_port_record &record) {
        const bool has_device = !kx_is_internal_ltl(ltl) && ltl < KX_LTL_FIRST_PORT_CHANNEL;
        if (!has_device || kx_port_is_empty(record)) {
            return KX_ROW_LEFT_OUT;
        }
        kx_print("%5d %24s  %s\n", static_cast<int>(ltl), kx_field_text(record.device_type).text,
                 kx_field_text(record.hmx_port_name).text);
        return KX_ROW_PRINTED;
    });
    return 0;
}
