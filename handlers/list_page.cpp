#include "handlers/list_page.h"

#include "frontend/output_sink.h"
#include "infra/utils/kxstrings.h"

int kx_read_list_page(const char *arg, kx_list_page *page) {
    if (arg == nullptr) {
        *page = {false, 0};
        return 0;
    }
    const char *const second = kx_find_next_arg(arg);
    if (second != nullptr) {
        *page = {false, kx_parse_number(second)};
        return 0;
    }
    if (stris(arg, "cookie") == 0) {
        kx_print("Error : no cookie param received \n");
        return -1;
    }
    *page = {true, kx_parse_number(arg)};
    return 0;
}
