#include "sim/host_programs.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include <fcntl.h>
#include <glob.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr const char *ADDRESS_PROGRAM = "esxcfg-advcfg";
constexpr const char *FOLDERS = "/tmp";
constexpr const char *NEW_FOLDER = "/tmp/tarnlab-XXXXXX"; // the last six differ
constexpr const char *LEFT_FOLDERS = "/tmp/tarnlab-??????";
constexpr int FOLDER_TRIES = 10;

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

// Remove the folder if it is this user's and nobody holds its lock, which ends with its holder,
// however that ends. Anything in it that was not put there by this program keeps it.
void remove_if_left(const char *path) {
    const int folder = open(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    struct stat found {};
    if (folder != -1 && fstat(folder, &found) == 0 && found.st_uid == geteuid() &&
        flock(folder, LOCK_EX | LOCK_NB) == 0) {
        unlinkat(folder, ADDRESS_PROGRAM, 0);
        rmdir(path);
    }
    if (folder != -1) {
        close(folder);
    }
}

void remove_what_was_left() {
    glob_t found{};
    glob(LEFT_FOLDERS, GLOB_NOSORT, nullptr, &found);
    for (size_t i = 0; i < found.gl_pathc; i++) {
        remove_if_left(found.gl_pathv[i]);
    }
    globfree(&found);
}

} // namespace

host_programs::~host_programs() {
    if (folder_.empty()) {
        return;
    }
    setenv("PATH", path_before_.c_str(), 1);
    unlinkat(lock_, ADDRESS_PROGRAM, 0);
    rmdir(folder_.c_str());
    close(lock_);
}

// Another process may take the new folder for one that was left until it is locked.
bool host_programs::make_folder() {
    for (int tries = 0; tries < FOLDER_TRIES; tries++) {
        std::string folder = NEW_FOLDER;
        if (mkdtemp(folder.data()) == nullptr) {
            return false;
        }
        lock_ = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        struct stat made {};
        if (lock_ != -1 && flock(lock_, LOCK_EX | LOCK_NB) == 0 && fstat(lock_, &made) == 0 &&
            made.st_nlink != 0) {
            folder_ = folder;
            return true;
        }
        if (lock_ != -1) {
            close(lock_);
        }
    }
    errno = EAGAIN;
    return false;
}

bool host_programs::install(const host &described, std::string &error) {
    if (!described.management_address) {
        return true;
    }
    remove_what_was_left();
    if (!make_folder()) {
        error = std::string(FOLDERS) + ": " + std::strerror(errno);
        return false;
    }
    const char *path = std::getenv("PATH");
    path_before_ = path == nullptr ? "/usr/bin:/bin" : path;
    setenv("PATH", (folder_ + ":" + path_before_).c_str(), 1);
    if (write_address_program(folder_ + "/" + ADDRESS_PROGRAM, *described.management_address)) {
        return true;
    }
    error = folder_ + ": " + std::strerror(errno);
    return false;
}
