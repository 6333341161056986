// libkestrelsim.so: gives the process that preloads it a simulated driver device.
#include "host/host_file.h"
#include "sim/builtin_host.h"
#include "sim/interpose.h"
#include "sim/preload_variables.h"
#include "sim/trace_file.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include <unistd.h>

namespace {

constexpr int EXIT_BAD_HOST = 2;

// Programs that the command starts must not see what was meant for the command. Other preloaded
// libraries stay.
void forget_preload() {
    const char *listed = std::getenv("LD_PRELOAD");
    if (listed == nullptr) {
        return;
    }
    std::string kept;
    std::string_view rest = listed;
    while (!rest.empty()) {
        const size_t end = rest.find_first_of(": ");
        const std::string_view entry = rest.substr(0, end);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        if (entry.empty() || entry.ends_with(PRELOAD_LIBRARY)) {
            continue;
        }
        kept += (kept.empty() ? "" : ":") + std::string(entry);
    }
    if (kept.empty()) {
        unsetenv("LD_PRELOAD");
    } else {
        setenv("LD_PRELOAD", kept.c_str(), 1);
    }
}

std::string take_variable(const char *name) {
    const char *value = std::getenv(name);
    std::string copy = value == nullptr ? "" : value;
    unsetenv(name);
    return copy;
}

__attribute__((constructor)) void start_simulation() {
    const std::string host_path = take_variable(HOST_VARIABLE);
    const std::string trace_path = take_variable(TRACE_VARIABLE);
    forget_preload();
    // Lives as long as the process, also while its other destructors run.
    auto *driver = new model;
    std::string error;
    const bool loaded = host_path.empty()
                            ? parse_host(builtin_host_text(), "built-in host", driver->state, error)
                            : load_host(host_path, driver->state, error);
    if (!loaded) {
        std::fprintf(stderr, "%s: %s\n", PRELOAD_LIBRARY, error.c_str());
        _exit(EXIT_BAD_HOST);
    }
    if (!trace_path.empty()) {
        trace_into(*driver, trace_path);
    }
    interpose_model(driver);
}

} // namespace
