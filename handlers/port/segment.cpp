// "show segment": the bridge domains that are overlay segments.
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/paging.h"
#include "handlers/port/bd.h"
#include "infra/utils/kxstrings.h"

namespace {

// Deliberate: one more than the largest 24-bit segment ID is accepted, too.
constexpr uint32_t LAST_SEGMENT_ID = 0x1000000;

bool print_listed_segment(uint32_t index) {
    kx_bd_record bd;
    if (!kx_get_bd(index, &bd) || bd.kind != KX_BD_KIND_SEGMENT) {
        return false;
    }
    kx_bd_vlan_dump(index, KX_BD_BY_INDEX);
    return true;
}

int print_given_segment(uint32_t segment) {
    if (segment == 0 || segment > LAST_SEGMENT_ID) {
        kx_print("Segment id %u is out of range \n", segment);
        return -1;
    }
    const uint32_t index = kx_find_bd_by_segment(segment);
    if (index != 0) {
        kx_bd_vlan_dump(index, KX_BD_BY_INDEX);
    }
    return 0;
}

} // namespace

int kx_segment_table_dump(const char *arg) {
    if (kx_is_agent_driven()) {
        return kx_segment_fromdpa_table_dump(arg);
    }
    if (arg != nullptr) {
        return print_given_segment(kx_parse_number(arg));
    }
    kx_print_bd_count();
    kx_print_bd_list(print_listed_segment);
    return 0;
}

int kx_segment_fromdpa_table_dump(const char *arg) {
    kx_list_page page;
    if (kx_read_list_page(arg, &page) != 0) {
        return -1;
    }
    if (page.is_key) {
        kx_end_table();
        return print_given_segment(page.number);
    }
    return kx_print_bd_page(page, print_listed_segment);
}
