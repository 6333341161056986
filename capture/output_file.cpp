#include "capture/output_file.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Where the bytes go first, and where they belong.
struct destination {
    std::string target;
    std::string beside; // empty when the target is written as it is
    int file = -1;
};

bool fail(const std::string &path, std::string &error) {
    error = path + ": cannot be written: " + std::strerror(errno);
    return false;
}

mode_t mode_of_new_file() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

bool open_beside(destination &to, mode_t mode) {
    to.beside = to.target + ".XXXXXX";
    to.file = mkostemp(to.beside.data(), O_CLOEXEC);
    return to.file != -1 && fchmod(to.file, mode) == 0;
}

bool open_destination(const std::string &path, destination &to) {
    to.target = path;
    struct stat present {};
    if (stat(path.c_str(), &present) != 0) {
        return errno == ENOENT && open_beside(to, mode_of_new_file());
    }
    if (!S_ISREG(present.st_mode)) {
        to.file = open(path.c_str(), O_WRONLY | O_CLOEXEC);
        return to.file != -1;
    }
    char resolved[PATH_MAX];
    if (realpath(path.c_str(), resolved) != nullptr) {
        to.target = resolved;
    }
    return open_beside(to, present.st_mode & 07777);
}

bool write_all(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(file, text.data(), text.size());
        if (written == -1 && errno != EINTR) {
            return false;
        }
        text.remove_prefix(written == -1 ? 0 : static_cast<size_t>(written));
    }
    return true;
}

void give_up(const destination &to) {
    const int reason = errno;
    if (to.file != -1) {
        close(to.file);
    }
    if (!to.beside.empty()) {
        unlink(to.beside.c_str());
    }
    errno = reason;
}

} // namespace

bool check_output_file(const std::string &path, std::string &error) {
    struct stat present {};
    if (stat(path.c_str(), &present) == 0 && !S_ISREG(present.st_mode)) {
        // Opening a pipe would wait for its reader, and closing it would end him.
        return access(path.c_str(), W_OK) == 0 || fail(path, error);
    }
    destination to;
    const bool opened = open_destination(path, to);
    give_up(to);
    return opened || fail(path, error);
}

bool write_output_file(const std::string &path, std::string_view text, std::string &error) {
    destination to;
    if (!open_destination(path, to) || !write_all(to.file, text)) {
        give_up(to);
        return fail(path, error);
    }
    const bool closed = close(to.file) == 0;
    to.file = -1;
    if (!closed || (!to.beside.empty() && std::rename(to.beside.c_str(), to.target.c_str()) != 0)) {
        give_up(to);
        return fail(path, error);
    }
    return true;
}
