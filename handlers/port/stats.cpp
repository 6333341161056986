// "show stats" and "clear stats": traffic counters of the ports.
#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/paging.h"
#include "handlers/port/counter_records.h"
#include "handlers/port/shared/port.h"
#include "infra/utils/field_text.h"
#include "infra/utils/kxstrings.h"

namespace {

constexpr int LTLS_PER_PAGE = 2;

constexpr uint32_t CLEARABLE_LTLS = 1048;

bool has_no_traffic(const kx_port_statistics &counters) {
    return counters.received_packets == 0 && counters.received_bytes == 0 &&
           counters.receive_drops == 0 && counters.sent_packets == 0 && counters.sent_bytes == 0 &&
           counters.transmit_drops == 0 && counters.transmit_floods == 0;
}

// Deliberate: counters are printed signed.
long long counter(uint64_t value) {
    return static_cast<long long>(value);
}

void print_row(uint32_t ltl, const kx_port_statistics &counters) {
    kx_port_record port;
    const bool known = kx_get_port(ltl, KX_VIEW_HMX, &port);
    kx_print("%5d %9lld %12lld %9lld %12lld %9lld %9lld %9lld  %s\n", static_cast<int>(ltl),
             counter(counters.received_packets), counter(counters.received_bytes),
             counter(counters.sent_packets), counter(counters.sent_bytes),
             counter(counters.transmit_floods), counter(counters.receive_drops),
             counter(counters.transmit_drops), known ? kx_field_text(port.hmx_port_name).text : "");
}

} // namespace

int kx_porttable_print_stats(const char *arg) {
    const bool continued = kx_is_agent_driven() && arg != nullptr;
    kx_walk walk{continued ? kx_parse_number(arg) : 0};
    if (!continued) {
        kx_print("  LTL  Received        Bytes      Sent        Bytes   Txflood    Rxdrop    "
                 "Txdrop  Name\n");
    }
    int counted = 0;
    while (kx_next_ltl(&walk)) {
        kx_port_statistics counters{};
        const bool answered =
            kx_dpa_get(KXDPA_OP_PORT_STATISTICS, walk.at, &counters) == KXDPA_STATUS_SUCCESS;
        if (answered && has_no_traffic(counters)) {
            continue;
        }
        if (answered) {
            print_row(walk.at, counters);
        }
        // An LTL whose counters cannot be read has no row, but it counts as the entry of a page.
        ++counted;
        if (kx_is_agent_driven() && counted == LTLS_PER_PAGE) {
            kx_end_page(walk.at);
            return 0;
        }
    }
    kx_end_table();
    kx_print("\n");
    return 0;
}

int kx_porttable_clear_stats(const char *arg) {
    if (arg == nullptr) {
        if (kx_dpa_command(KXDPA_OP_CLEAR_ALL_PORT_STATISTICS, 0) != KXDPA_STATUS_SUCCESS) {
            kx_trace(kx_debug_print_kxdump, KX_DEBUG_FAILURE, "%s:Couldnt clear stats on ltl %d\n",
                     __func__, -1);
        }
        return 0;
    }
    uint32_t ltl = 0;
    if (!kx_get_typed_ltl(arg, &ltl) || ltl >= CLEARABLE_LTLS) {
        kx_print("Invalid ltl\n");
        return 0;
    }
    const uint32_t nothing = 0;
    kx_dpa_set(KXDPA_OP_CLEAR_PORT_STATISTICS, ltl, &nothing);
    return 0;
}
