// Prints what the key tables of the host file say.
#include "host/reference/reference.h"

#include <cstdio>
#include <string_view>

namespace {

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
