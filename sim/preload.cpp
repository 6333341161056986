// libkestrelsim.so: gives the process that preloads it a simulated driver device.
#include "host/host_file.h"
#include "sim/builtin_host.h"
#include "sim/interpose.h"
#include "sim/preload_channel.h"
#include "sim/use.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr int EXIT_BAD_HOST = 2;

// Programs that the command starts must not see what was meant for the command. Other preloaded
// libraries stay.
void forget_preload(const std::string &own_entry) {
    const char *preloaded = std::getenv("LD_PRELOAD");
    std::string listed = preloaded == nullptr ? "" : preloaded;
    std::string kept;
    char *rest = listed.data();
    while (const char *next = strtok_r(rest, ": ", &rest)) {
        const std::string_view entry = next;
        if (entry != own_entry && !entry.ends_with(PRELOAD_LIBRARY)) {
            kept += (kept.empty() ? "" : ":") + std::string(entry);
        }
    }
    if (kept.empty()) {
        unsetenv("LD_PRELOAD");
    } else {
        setenv("LD_PRELOAD", kept.c_str(), 1);
    }
}

bool read_description(int descriptor, host &described, std::string &error) {
    std::string text(builtin_host_text());
    return (descriptor == -1 || read_host_file(path_of(descriptor), text, error)) &&
           parse_host(text, "host", described, error);
}

// Mark what the host is used for where tarnlab sees it.
void mark_use(model &driver, int descriptor) {
    if (descriptor == -1) {
        return;
    }
    void *shared =
        mmap(nullptr, marks_of(driver.state), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    if (shared != MAP_FAILED) {
        mark_use_of(driver, static_cast<uint8_t *>(shared));
    }
}

__attribute__((constructor)) void start_simulation() {
    preload_channel channel;
    const char *handed = std::getenv(PRELOAD_VARIABLE);
    if (handed == nullptr || std::sscanf(handed, PRELOAD_FORMAT, &channel.library, &channel.host,
                                         &channel.trace, &channel.met) != 4) {
        channel = {};
    }
    unsetenv(PRELOAD_VARIABLE);
    forget_preload(path_of(channel.library));
    // Lives as long as the process, also while its other destructors run.
    auto *driver = new model;
    host described;
    std::string error;
    if (!read_description(channel.host, described, error)) {
        std::fprintf(stderr, "%s: %s\n", PRELOAD_LIBRARY, error.c_str());
        _exit(EXIT_BAD_HOST);
    }
    driver->take(std::move(described));
    mark_use(*driver, channel.met);
    if (channel.trace != -1) {
        fcntl(channel.trace, F_SETFD, FD_CLOEXEC);
        trace_into(*driver, channel.trace);
    }
    for (const int descriptor : {channel.library, channel.host, channel.met}) {
        if (descriptor != -1) {
            close(descriptor);
        }
    }
    interpose_model(driver);
}

} // namespace
