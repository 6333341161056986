// "show port-drops": drop counters by stage, as a table over the ports or as a list for one of
// them.
#include "handlers/port/port_drops.h"

#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/paging.h"
#include "handlers/port/shared/port.h"
#include "infra/utils/field_text.h"
#include "infra/utils/kxstrings.h"

#include <cstdio>
#include <cstring>

namespace {

// A column is 15 wide and followed by a blank; it is begun only when there is room for both.
constexpr size_t CELL_LENGTH = 16;

constexpr uint32_t CLEAR_DROPS = 11; // selector of KXDPA_OP_SCHEDULER_CONTROL

// One direction of the pipeline.
struct direction {
    uint32_t first_stage;
    uint32_t end_stage;      // one past the last
    const char *name_prefix; // left out of the column titles
};

constexpr direction INGRESS = {0, KX_INGRESS_STAGES, "Ingress "};
constexpr direction EGRESS = {KX_INGRESS_STAGES, KX_STAGES, "Egress "};

struct drops_text {
    char text[KX_DROPS_TEXT_SIZE];
};

// The number of characters that snprintf really wrote into `room` bytes.
size_t written(int result, size_t room) {
    const auto length = static_cast<size_t>(result < 0 ? 0 : result);
    return length < room ? length : room - 1;
}

void format_drops(char *text, size_t size, const kx_drop_counters &counters,
                  const direction &shown) {
    size_t length = 0;
    text[0] = '\0';
    for (uint32_t i = shown.first_stage; i < shown.end_stage; ++i) {
        const kx_stage_drops &stage = counters.stages[i];
        if (stage.valid == 0) {
            continue;
        }
        const size_t room = size - length;
        if (room < CELL_LENGTH) {
            break;
        }
        length += written(snprintf(text + length, room, "%15u ", stage.drops), room);
    }
}

bool get_stage(uint32_t index, kx_stage_descriptor *stage) {
    *stage = {};
    return kx_dpa_get(KXDPA_OP_STAGE_DESCRIPTOR, index, stage) == KXDPA_STATUS_SUCCESS;
}

// Clear a drop counter record and ask for it.
bool get_drops(kxdpa_opcode opcode, uint32_t arg, kx_drop_counters *counters) {
    *counters = {};
    return kx_dpa_get(opcode, arg, counters) == KXDPA_STATUS_SUCCESS;
}

// The stages' names come from the DPA, so the titles are built at run time.
drops_text column_titles(const direction &shown) {
    drops_text titles{};
    size_t length = 0;
    kx_stage_descriptor stage;
    for (uint32_t i = shown.first_stage; i < shown.end_stage && get_stage(i, &stage); ++i) {
        if (stage.present == 0) {
            continue;
        }
        const size_t room = sizeof titles.text - length;
        if (room < CELL_LENGTH) {
            continue;
        }
        const auto name = kx_field_text(stage.name);
        const size_t prefix =
            kx_begins_with(name.text, shown.name_prefix) ? strlen(shown.name_prefix) : 0;
        length += written(snprintf(titles.text + length, room, "%15s ", name.text + prefix), room);
    }
    return titles;
}

void print_table_row(uint32_t ltl, const char *name, const kx_drop_counters &counters,
                     const direction &shown) {
    drops_text cells;
    format_drops(cells.text, sizeof cells.text, counters, shown);
    kx_print("%5u   %8s  %s\n", ltl, name, cells.text);
}

void print_labelled_row(const char *label, kxdpa_opcode opcode, const direction &shown) {
    kx_drop_counters counters;
    if (!get_drops(opcode, 0, &counters)) {
        return;
    }
    drops_text cells;
    format_drops(cells.text, sizeof cells.text, counters, shown);
    kx_print("        %8s  %s\n", label, cells.text);
}

// Print the internal LTLs from `*ltl` on. True when the page ends with one of them. Deliberate: an
// LTL whose counters cannot be read is asked for again until they can. After as many requests as
// any walk may make, the internal rows end and the ports follow.
bool print_internal_rows(uint32_t *ltl, const direction &shown) {
    for (uint32_t requests = 0; kx_is_internal_ltl(*ltl);) {
        if (!kx_may_ask(&requests)) {
            *ltl = KX_LTL_FIRST_EXTERNAL;
            break;
        }
        kx_drop_counters counters;
        if (!get_drops(KXDPA_OP_DROP_COUNTERS, *ltl, &counters)) {
            continue;
        }
        print_table_row(*ltl, "Internal", counters, shown);
        ++*ltl;
        if (kx_is_agent_driven()) {
            return true;
        }
    }
    return false;
}

// Print the ports after `ltl`. True when the page ends with one of them; `*ltl` is then its LTL.
bool print_port_rows(uint32_t *ltl, bool internal, const direction &shown) {
    for (kx_walk walk{*ltl}; kx_next_ltl(&walk);) {
        *ltl = walk.at;
        kx_port_record port;
        if (!kx_get_port(*ltl, KX_VIEW_HMX, &port) || kx_port_is_hidden(*ltl, port) ||
            (kx_is_internal_ltl(*ltl) && !internal)) {
            continue;
        }
        kx_drop_counters counters;
        if (!get_drops(KXDPA_OP_DROP_COUNTERS, *ltl, &counters)) {
            continue;
        }
        print_table_row(*ltl, kx_get_port_name(*ltl, port).text, counters, shown);
        if (kx_is_agent_driven()) {
            return true;
        }
    }
    return false;
}

// The table of one direction, or its next page. True when the table is complete.
bool print_drops_table(const char *arg, const direction &shown) {
    const bool internal = kx_begins_with(arg, "internal");
    uint32_t ltl = kx_get_first_ltl(arg);
    const drops_text titles = column_titles(shown);
    if (ltl == KX_LTL_BEFORE_FIRST) {
        kx_print("  LTL   KRT Port  %s\n", titles.text);
        if (internal) {
            ltl = 0;
        }
    }
    // The cookie of an internal row is the LTL to go on with; that of any other row is the LTL just
    // printed. After the internal rows the walk starts after LTL 18, not at it. Both are the
    // contract.
    if ((internal && print_internal_rows(&ltl, shown)) || print_port_rows(&ltl, internal, shown)) {
        kx_end_page(ltl);
        return false;
    }
    kx_end_table();
    return true;
}

// The list of one LTL over the stages of `shown`, or until the DPA has no further stage.
int print_drops_of_ltl(const char *arg, uint32_t first_stage, uint32_t end_stage) {
    const int32_t argument = kx_get_ltl_from_args(arg);
    if (arg == nullptr || argument == 0) {
        kx_print("Invalid arg\n");
        return -1;
    }
    const auto ltl = static_cast<uint32_t>(argument);
    kx_port_record port;
    if (kx_get_port(ltl, KX_VIEW_HMX, &port) && port.if_index != 0) {
        kx_print("Sched stage drop counter for ltl:%d, ifName:%s\n", argument,
                 kx_get_port_name(ltl, port).text);
    }
    kx_drop_counters counters;
    if (!get_drops(KXDPA_OP_DROP_COUNTERS, ltl, &counters)) {
        return 0;
    }
    kx_print("Stage                        Drops\n");
    kx_stage_descriptor stage;
    for (uint32_t i = first_stage; i < end_stage && get_stage(i, &stage); ++i) {
        // The record counts KX_STAGES stages; a stage beyond them has no counter to show.
        if (stage.present != 0 && i < KX_STAGES) {
            kx_print("%2d %18s  %12llu\n", stage.number, kx_field_text(stage.name).text,
                     static_cast<unsigned long long>(counters.stages[i].drops));
        }
    }
    return 0;
}

// A stage's number has 8 bits. The walk ends there, even when a driver always answers one more
// stage.
constexpr uint32_t STAGES_LIMIT = 256;

} // namespace

void kx_port_ingress_drops_to_str(char *text, size_t size, const kx_drop_counters *counters) {
    format_drops(text, size, *counters, INGRESS);
}

void kx_port_egress_drops_to_str(char *text, size_t size, const kx_drop_counters *counters) {
    format_drops(text, size, *counters, EGRESS);
}

uint32_t kx_port_drops_clear() {
    uint32_t nothing[2] = {};
    return kx_dpa_exchange(KXDPA_OP_SCHEDULER_CONTROL, CLEAR_DROPS, &nothing);
}

int kx_port_drops_in_table_dump(const char *arg) {
    print_drops_table(arg, INGRESS);
    return 0;
}

int kx_port_drops_out_table_dump(const char *arg) {
    if (print_drops_table(arg, EGRESS)) {
        print_labelled_row("Mcast", KXDPA_OP_MULTICAST_DROPS, EGRESS);
        print_labelled_row("Flood", KXDPA_OP_FLOOD_DROPS, EGRESS);
    }
    return 0;
}

int kx_port_drops_in_table_ltl_dump(const char *arg) {
    return print_drops_of_ltl(arg, INGRESS.first_stage, INGRESS.end_stage);
}

int kx_port_drops_out_table_ltl_dump(const char *arg) {
    return print_drops_of_ltl(arg, EGRESS.first_stage, EGRESS.end_stage);
}

int kx_port_drops_table_ltl_dump(const char *arg) {
    return print_drops_of_ltl(arg, 0, STAGES_LIMIT);
}
