#include "capture/capture.h"

#include "dpa/command/management_ip.h"

#include <cstdlib>
#include <string_view>

#include <unistd.h>

namespace {

constexpr const char *ADDRESS_PROGRAM = "/esxcfg-advcfg";

// Without the program the shell would complain.
bool has_address_program() {
    const char *path = std::getenv("PATH");
    std::string_view folders = path == nullptr ? "" : path;
    while (!folders.empty()) {
        const size_t end = folders.find(':');
        const std::string program = std::string(folders.substr(0, end)) + ADDRESS_PROGRAM;
        if (access(program.c_str(), X_OK) == 0) {
            return true;
        }
        folders.remove_prefix(end == std::string_view::npos ? folders.size() : end + 1);
    }
    return false;
}

} // namespace

std::optional<std::string> ask_management_address() {
    if (!has_address_program()) {
        return std::nullopt;
    }
    char address[KX_MANAGEMENT_IP_SIZE];
    kx_dpa_platform_read_management_ip(address);
    return address;
}
