#include "sim/host_programs.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

#include <sys/stat.h>

namespace {

constexpr const char *ADDRESS_PROGRAM = "esxcfg-advcfg";

// A word of a shell script.
std::string quoted(const std::string &text) {
    std::string word = "'";
    for (const char byte : text) {
        word += byte == '\'' ? "'\\''" : std::string(1, byte);
    }
    return word + "'";
}

// An empty address is a program without output.
bool write_address_program(const std::string &file, const std::string &address) {
    std::ofstream script(file);
    script << "#!/bin/sh\n"
           << "[ \"$*\" = '-g /Misc/HostIPAddr' ] || exit 1\n";
    if (!address.empty()) {
        script << "echo 'Value of HostIPAddr is' " << quoted(address) << "\n";
    }
    script.close();
    return script.good() && chmod(file.c_str(), 0700) == 0;
}

} // namespace

host_programs::~host_programs() {
    if (folder_.empty()) {
        return;
    }
    setenv("PATH", path_before_.c_str(), 1);
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

bool host_programs::install(const host &described, std::string &error) {
    if (!described.management_address) {
        return true;
    }
    std::string folder = "/tmp/tarnlab-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr) {
        error = folder + ": " + std::strerror(errno);
        return false;
    }
    folder_ = folder;
    const char *path = std::getenv("PATH");
    path_before_ = path == nullptr ? "/usr/bin:/bin" : path;
    setenv("PATH", (folder_ + ":" + path_before_).c_str(), 1);
    if (write_address_program(folder_ + "/" + ADDRESS_PROGRAM, *described.management_address)) {
        return true;
    }
    error = folder_ + ": " + std::strerror(errno);
    return false;
}
