#include "sim/device/device_file.h"
#include "sim/interpose.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr const char *TOP_FOLDER = "/vmfs";

// An entry of the root folder that the assembled root shows again.
struct root_entry {
    std::string name;
    mode_t mode;
    int tree;           // its mount tree, detached; -1 for a symbolic link
    std::string target; // of a symbolic link
};

bool exists(const char *path) {
    struct stat status {};
    return stat(path, &status) == 0;
}

bool look_at_entry(const std::string &name, root_entry &entry) {
    const std::string path = "/" + name;
    struct stat status {};
    if (lstat(path.c_str(), &status) == -1) {
        return false;
    }
    entry = {name, status.st_mode, -1, ""};
    if (S_ISLNK(status.st_mode)) {
        char target[PATH_MAX];
        const ssize_t length = readlink(path.c_str(), target, sizeof target);
        entry.target.assign(target, length > 0 ? static_cast<size_t>(length) : 0);
        return length > 0;
    }
    entry.tree =
        open_tree(AT_FDCWD, path.c_str(),
                  OPEN_TREE_CLONE | OPEN_TREE_CLOEXEC | static_cast<unsigned>(AT_RECURSIVE));
    return entry.tree != -1;
}

bool look_at_root(std::vector<root_entry> &entries) {
    DIR *root = opendir("/");
    if (root == nullptr) {
        return false;
    }
    while (const dirent *listed = readdir(root)) {
        const std::string name = listed->d_name;
        root_entry entry{};
        if (name != "." && name != ".." && look_at_entry(name, entry)) {
            entries.push_back(entry);
        }
    }
    closedir(root);
    return true;
}

bool show_entry(const std::string &stage, const root_entry &entry) {
    const std::string path = stage + "/" + entry.name;
    if (S_ISLNK(entry.mode)) {
        return symlink(entry.target.c_str(), path.c_str()) == 0;
    }
    const bool made = S_ISDIR(entry.mode) ? mkdir(path.c_str(), 0755) == 0
                                          : mknod(path.c_str(), S_IFREG | 0644, 0) == 0;
    return made && move_mount(entry.tree, "", AT_FDCWD, path.c_str(), MOVE_MOUNT_F_EMPTY_PATH) == 0;
}

// Go on in a root of our own that shows all that the real one holds and takes new folders, so that
// the real one stays as it is. Any folder serves to build it on: all of them are taken along before
// it is hidden.
bool assemble_root() {
    char current[PATH_MAX];
    std::vector<root_entry> entries;
    if (getcwd(current, sizeof current) == nullptr || !look_at_root(entries)) {
        return false;
    }
    std::string stage;
    for (const root_entry &entry : entries) {
        if (S_ISDIR(entry.mode)) {
            stage = "/" + entry.name;
        }
    }
    if (mount("tarnlab", stage.c_str(), "tmpfs", 0, "mode=0755") == -1) {
        return false;
    }
    for (const root_entry &entry : entries) {
        if (!show_entry(stage, entry)) {
            return false;
        }
        close(entry.tree);
    }
    return chroot(stage.c_str()) == 0 && chdir(current) == 0;
}

// Everything above the device file, and an empty file for the mount to cover.
bool make_device_path() {
    const std::string path = DRIVER_DEVICE_PATH;
    if (exists(path.c_str())) {
        return true;
    }
    if (exists(TOP_FOLDER) && mount("tarnlab", TOP_FOLDER, "tmpfs", 0, "mode=0755") == -1) {
        return false;
    }
    if (!exists(TOP_FOLDER) && !assemble_root()) {
        return false;
    }
    for (size_t end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1)) {
        if (mkdir(path.substr(0, end).c_str(), 0755) == -1 && errno != EEXIST) {
            return false;
        }
    }
    return mknod(path.c_str(), S_IFREG | 0444, 0) == 0;
}

bool mount_channel(int channel) {
    const std::string options =
        "fd=" + std::to_string(channel) + ",rootmode=100444,user_id=0,group_id=0,allow_other";
    return mount("tarnlab", DRIVER_DEVICE_PATH, "fuse", MS_NOSUID | MS_NODEV, options.c_str()) == 0;
}

} // namespace

int mount_device_file(std::string &error) {
    // A request that is there may be gone before it is read: with its caller.
    const int channel = open("/dev/fuse", O_RDWR | O_CLOEXEC | O_NONBLOCK);
    const char *failed = nullptr;
    if (channel == -1) {
        failed = "/dev/fuse";
    } else if (unshare(CLONE_NEWNS) == -1 ||
               mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == -1) {
        failed = "a mount namespace";
    } else if (!make_device_path() || !mount_channel(channel)) {
        failed = DRIVER_DEVICE_PATH;
    }
    if (failed == nullptr) {
        return channel;
    }
    error = std::string("a device file needs root and /dev/fuse: ") + failed + ": " +
            std::strerror(errno);
    if (channel != -1) {
        close(channel);
    }
    return -1;
}
