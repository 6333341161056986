// "show ltl range": the ranges of the LTL numbers. The DPA is not asked.
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/paging.h"

namespace {

struct ltl_range {
    const char *range; // empty where the DPA alone knows the bounds
    const char *description;
};

constexpr ltl_range LTL_RANGES[] = {
    {"0-17", "Internal Use"},      {"18-49", "Physical NICs"},          {"50-1039", "Virtual NICs"},
    {"1040-1047", "Port Channel"}, {"", "VLAN broadcast and flooding"}, {"", "Multicast Groups"},
    {"", "Packet Drop"},
};

} // namespace

int kx_show_ltl_range(const char * /*arg*/) {
    kx_print("     LTL Range   Description \n");
    for (const ltl_range &row : LTL_RANGES) {
        kx_print("  %16s   %s\n", row.range, row.description);
    }
    kx_end_table();
    return 0;
}
