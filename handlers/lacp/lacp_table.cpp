#include "frontend/handlers.h"
#include "frontend/output_sink.h"
#include "handlers/lacp/lacp.h"
#include "handlers/paging.h"
#include "handlers/port/shared/port.h"
#include "infra/utils/kxstrings.h"

namespace {

// The two commands print different things, but they walk and page in the same way.
struct lacp_view {
    int (*show_ltl)(uint32_t ltl);
    void (*show_global)(); // nullptr for none
};

constexpr lacp_view PDU_CACHE = {kx_show_lacp_ltl, kx_show_lacp_offload_state};
constexpr lacp_view HOST_DATA = {kx_show_lacp_ltl_hostdata, nullptr};

constexpr uint32_t LTL_BEFORE_FIRST = KX_LACP_FIRST_LTL - 1;

constexpr size_t WORK_SIZE = 240;

// Deliberately "less than" the last LTL that is accepted.
void print_invalid_ltl() {
    kx_print("Invalid LTL, LTL has to be less than %d\n", KX_LACP_LAST_LTL);
}

void show_global(const lacp_view &view) {
    if (view.show_global != nullptr) {
        view.show_global();
    }
}

void show_from_shell(const lacp_view &view, const char *arg) {
    show_global(view);
    if (arg != nullptr) {
        const uint32_t ltl = kx_parse_number(arg);
        if (ltl <= KX_LACP_LAST_LTL) {
            view.show_ltl(ltl);
        } else {
            print_invalid_ltl();
        }
        return;
    }
    for (kx_walk walk{LTL_BEFORE_FIRST}; kx_next_ltl(&walk) && walk.at <= KX_LACP_LAST_LTL;) {
        view.show_ltl(walk.at);
    }
}

// A page is one uplink.
void show_page(const lacp_view &view, uint32_t cookie) {
    kx_walk walk{cookie};
    if (kx_next_ltl(&walk) && walk.at >= KX_LACP_FIRST_LTL && walk.at <= KX_LACP_LAST_LTL) {
        view.show_ltl(walk.at);
        kx_end_page(walk.at);
    } else {
        kx_end_table();
    }
}

void show_to_agent(const lacp_view &view, const char *arg) {
    if (arg == nullptr) {
        show_global(view);
        show_page(view, LTL_BEFORE_FIRST);
        return;
    }
    char work[WORK_SIZE];
    char *words[2];
    const int count = kx_split_words(work, sizeof work, arg, words, 2);
    if (count == 0) {
        kx_print("Invalid arg\n");
    } else if (count == 2) {
        show_page(view, kx_parse_number(words[1])); // "cookie <ltl>"
    } else if (const uint32_t ltl = kx_parse_number(words[0]); ltl <= KX_LACP_LAST_LTL) {
        show_global(view);
        view.show_ltl(ltl);
        kx_end_table();
    } else {
        print_invalid_ltl();
    }
}

int show(const lacp_view &view, const char *arg) {
    if (kx_is_agent_driven()) {
        show_to_agent(view, arg);
    } else {
        show_from_shell(view, arg);
    }
    return 0;
}

} // namespace

int kx_show_lacp(const char *arg) {
    return show(PDU_CACHE, arg);
}

int kx_show_lacp_hostdata(const char *arg) {
    return show(HOST_DATA, arg);
}
