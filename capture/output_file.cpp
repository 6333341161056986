#include "capture/output_file.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

struct destination {
    fs::path target;
    bool replaced = true; // false for what is written as it is
    mode_t mode = 0;      // of what replaces it
};

// While a file has a name that is not to stay, no signal ends the process.
class held_back_signals {
public:
    held_back_signals() {
        sigset_t all;
        sigfillset(&all);
        sigprocmask(SIG_BLOCK, &all, &before_);
    }
    ~held_back_signals() {
        sigprocmask(SIG_SETMASK, &before_, nullptr);
    }
    held_back_signals(const held_back_signals &) = delete;
    held_back_signals &operator=(const held_back_signals &) = delete;

private:
    sigset_t before_{};
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

// What a symbolic link names, which need not be there.
fs::path end_of_links(fs::path path) {
    constexpr int MOST_LINKS = 40; // as the kernel follows
    std::error_code none;
    for (int i = 0; i < MOST_LINKS && fs::is_symlink(path, none); i++) {
        path = path.parent_path() / fs::read_symlink(path, none);
    }
    return path;
}

bool find_destination(const std::string &path, destination &to) {
    to.target = path;
    to.mode = mode_of_new_file();
    struct stat present {};
    if (stat(path.c_str(), &present) == 0) {
        to.replaced = S_ISREG(present.st_mode);
        to.mode = present.st_mode & 07777;
    } else if (errno != ENOENT) {
        return false;
    }
    if (S_ISDIR(present.st_mode)) {
        errno = EISDIR;
        return false;
    }
    if (to.replaced) {
        to.target = end_of_links(path);
    }
    return true;
}

// A name in the target's folder. The target's own may already be as long as a name can be.
std::string name_beside(const destination &to, const std::string &ending) {
    return to.target.parent_path() / (".tarncap-" + ending);
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

// Close a file. Returns true when `done` tells that all went well before, and this, too; errno says
// what did not.
bool close_after(bool done, int file) {
    const int reason = errno;
    const bool closed = close(file) == 0;
    errno = done ? errno : reason;
    return done && closed;
}

bool write_as_it_is(const destination &to, std::string_view text) {
    const int file = open(to.target.c_str(), O_WRONLY | O_CLOEXEC);
    return file != -1 && close_after(write_all(file, text), file);
}

// A file without a name is gone when its process is. -1 where the file system has none.
int open_nameless(const destination &to) {
    return open((to.target.parent_path() / ".").c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
}

bool give_name(int file, const std::string &name) {
    const std::string nameless = "/proc/self/fd/" + std::to_string(file);
    return linkat(AT_FDCWD, nameless.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

// By a file without a name until it is whole, or by one with a name: every file system has that
// way, but a process that is killed leaves the file behind.
bool replace(const destination &to, std::string_view text, bool nameless) {
    const held_back_signals until_renamed;
    std::string beside = name_beside(to, nameless ? std::to_string(getpid()) : "XXXXXX");
    const int file = nameless ? open_nameless(to) : mkostemp(beside.data(), O_CLOEXEC);
    if (file == -1) {
        return false;
    }
    bool is_named = !nameless;
    const bool written = write_all(file, text) && fchmod(file, to.mode) == 0 &&
                         (is_named || (is_named = give_name(file, beside)));
    if (close_after(written, file) && std::rename(beside.c_str(), to.target.c_str()) == 0) {
        return true;
    }
    const int reason = errno;
    if (is_named) {
        unlink(beside.c_str());
    }
    errno = reason;
    return false;
}

bool can_be_replaced(const destination &to) {
    const held_back_signals until_removed;
    std::string beside = name_beside(to, "XXXXXX");
    int file = open_nameless(to);
    if (file == -1 && (file = mkostemp(beside.data(), O_CLOEXEC)) != -1) {
        unlink(beside.c_str());
    }
    return file != -1 && close(file) == 0;
}

} // namespace

bool check_output_file(const std::string &path, std::string &error) {
    destination to;
    // Opening a pipe would wait for its reader, and closing it would end him.
    const bool writable = find_destination(path, to) &&
                          (to.replaced ? can_be_replaced(to) : access(path.c_str(), W_OK) == 0);
    return writable || fail(path, error);
}

bool write_output_file(const std::string &path, std::string_view text, std::string &error) {
    destination to;
    const bool written = find_destination(path, to) &&
                         (to.replaced ? replace(to, text, true) || replace(to, text, false)
                                      : write_as_it_is(to, text));
    return written || fail(path, error);
}
