// Prints what the key tables of the host file say.
#include "host/keys.h"
#include "host/reference/reference.h"

#include <cstdio>
#include <string_view>

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

// One path a line, such as "ports[].link".
std::string reference_keys() {
    std::string paths;
    add_keys(paths, HOST_KEYS, "");
    return paths;
}

struct document {
    std::string_view option;
    std::string (*text)();
};

constexpr document DOCUMENTS[] = {
    {"--markdown", reference_markdown},
    {"--schema", reference_schema},
    {"--mdoc", reference_mdoc},
    {"--keys", reference_keys},
};

} // namespace

int main(int argc, char **argv) {
    for (const document &known : DOCUMENTS) {
        if (argc == 2 && known.option == argv[1]) {
            const std::string text = known.text();
            return std::fputs(text.c_str(), stdout) == EOF || std::fflush(stdout) != 0 ? 1 : 0;
        }
    }
    std::fputs("usage: host_reference --markdown | --schema | --mdoc | --keys\n", stderr);
    return 2;
}
