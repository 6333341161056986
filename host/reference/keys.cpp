#include "host/keys.h"
#include "host/reference/reference.h"

namespace {

void add_keys(std::string &paths, const key_table &table, const std::string &around) {
    for (const key &row : table.keys) {
        if (row.type == key_type::included) {
            add_keys(paths, *row.table, around);
            continue;
        }
        if (row.type == key_type::counters) {
            for (uint32_t index = 0; index < row.items; index++) {
                paths += around + std::to_string(index) + "\n";
            }
            continue;
        }
        paths += around + row.name + "\n";
        if (row.table != nullptr) {
            const bool list = row.type == key_type::list;
            add_keys(paths, *row.table, around + row.name + (list ? "[]." : "."));
        }
    }
}

} // namespace

std::string reference_keys() {
    std::string paths;
    add_keys(paths, HOST_KEYS, "");
    return paths;
}
