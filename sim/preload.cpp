// libkestrelsim.so: gives the process that preloads it a simulated driver device.
#include "host/host_file.h"
#include "sim/builtin_host.h"
#include "sim/interpose.h"
#include "sim/preload_channel.h"
#include "sim/trace.h"
#include "sim/use.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
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
        if (entry.empty() || entry == own_entry || entry.ends_with(PRELOAD_LIBRARY)) {
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

std::string host_text(int descriptor) {
    if (descriptor == -1) {
        return std::string(builtin_host_text());
    }
    std::string text;
    char piece[65536];
    ssize_t got = 0;
    while ((got = pread(descriptor, piece, sizeof piece, static_cast<off_t>(text.size()))) > 0) {
        text.append(piece, static_cast<size_t>(got));
    }
    return text;
}

void close_if_open(int descriptor) {
    if (descriptor != -1) {
        close(descriptor);
    }
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
    const preload_channel channel = preload_from_text(std::getenv(PRELOAD_VARIABLE));
    unsetenv(PRELOAD_VARIABLE);
    forget_preload(preload_entry(channel));
    // Lives as long as the process, also while its other destructors run.
    auto *driver = new model;
    host described;
    std::string error;
    if (!parse_host(host_text(channel.host), "host", described, error)) {
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
        close_if_open(descriptor);
    }
    interpose_model(driver);
}

} // namespace
