#include "sim/device/device_file.h"

#include "sim/interpose.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <string_view>

#include <dirent.h>
#include <fcntl.h>
#include <linux/fuse.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

// --- Where the file is ---

constexpr const char *TOP_FOLDER = "/vmfs";
constexpr const char *STAGE = "/dev"; // any folder of the root serves to build another root on

// A folder or file with all that is mounted below it, detached; -1 for what cannot be had.
int tree_of(const std::string &path) {
    const auto recursive = static_cast<unsigned>(AT_RECURSIVE);
    return open_tree(AT_FDCWD, path.c_str(), OPEN_TREE_CLONE | OPEN_TREE_CLOEXEC | recursive);
}

bool show_link(const std::string &path) {
    char target[PATH_MAX] = {};
    return readlink(path.c_str(), target, sizeof target - 1) < 1 ||
           symlink(target, (STAGE + path).c_str()) == 0;
}

// Show an entry of the root folder on the stage, too; `hidden` is what the stage hides. What cannot
// be had is left out.
bool show_entry(const std::string &path, int hidden) {
    struct stat status {};
    if (lstat(path.c_str(), &status) == -1) {
        return true;
    }
    if (S_ISLNK(status.st_mode)) {
        return show_link(path);
    }
    const int tree = path == STAGE ? hidden : tree_of(path);
    if (tree == -1) {
        return true;
    }
    const std::string to = STAGE + path;
    const bool made = S_ISDIR(status.st_mode) ? mkdir(to.c_str(), 0755) == 0
                                              : mknod(to.c_str(), S_IFREG | 0644, 0) == 0;
    const bool shown =
        made && move_mount(tree, "", AT_FDCWD, to.c_str(), MOVE_MOUNT_F_EMPTY_PATH) == 0;
    close(tree);
    return shown;
}

// Go on in a root of our own that shows all that the real one holds and takes new folders, so that
// the real one stays as it is.
bool assemble_root() {
    char current[PATH_MAX];
    const int hidden = tree_of(STAGE);
    DIR *root = opendir("/");
    bool shown = root != nullptr && getcwd(current, sizeof current) != nullptr &&
                 mount("tarnlab", STAGE, "tmpfs", 0, "mode=0755") == 0;
    while (const dirent *listed = shown ? readdir(root) : nullptr) {
        const std::string_view name = listed->d_name;
        shown = name == "." || name == ".." || show_entry("/" + std::string(name), hidden);
    }
    if (root != nullptr) {
        closedir(root);
    }
    return shown && chroot(STAGE) == 0 && chdir(current) == 0;
}

// Everything above the device file, and an empty file for the mount to cover.
bool make_device_path() {
    const std::string path = DRIVER_DEVICE_PATH;
    if (access(path.c_str(), F_OK) == 0) {
        return true;
    }
    const bool covered = access(TOP_FOLDER, F_OK) == 0
                             ? mount("tarnlab", TOP_FOLDER, "tmpfs", 0, "mode=0755") == 0
                             : assemble_root();
    if (!covered) {
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

// --- Its requests ---

constexpr size_t REQUEST_ROOM = FUSE_MIN_READ_BUFFER; // bytes; the kernel refuses to fill less
constexpr uint32_t LARGEST_WRITE = 4096;              // bytes; of no use here but asked for
constexpr uint64_t FILE_VALID_SECONDS = 3600;

// The memory of the process that waits in its ioctl meanwhile.
class process_memory : public caller_memory {
public:
    explicit process_memory(pid_t process) : process_(process) {
    }

    bool read(uint32_t address, void *to, uint32_t length) override {
        const iovec here = {to, length};
        const iovec there = {reinterpret_cast<void *>(address), length};
        return process_vm_readv(process_, &here, 1, &there, 1, 0) == static_cast<ssize_t>(length);
    }

    bool write(uint32_t address, const void *from, uint32_t length) override {
        const iovec here = {const_cast<void *>(from), length};
        const iovec there = {reinterpret_cast<void *>(address), length};
        return process_vm_writev(process_, &here, 1, &there, 1, 0) == static_cast<ssize_t>(length);
    }

private:
    pid_t process_;
};

struct fuse_request {
    int channel;
    const fuse_in_header *head;
    const void *body;
};

// An error stands alone; the caller may have been killed meanwhile, then nobody waits for it.
void send(const fuse_request &request, int error, void *body = nullptr, size_t length = 0) {
    const size_t sent = error == 0 ? length : 0;
    fuse_out_header head = {static_cast<uint32_t>(sizeof head + sent), -error,
                            request.head->unique};
    const iovec parts[] = {{&head, sizeof head}, {body, sent}};
    [[maybe_unused]] const ssize_t written = writev(request.channel, parts, sent == 0 ? 1 : 2);
}

void start(const fuse_request &request) {
    const auto *asked = static_cast<const fuse_init_in *>(request.body);
    fuse_init_out reply{};
    reply.major = FUSE_KERNEL_VERSION;
    reply.minor = FUSE_KERNEL_MINOR_VERSION;
    reply.max_readahead = asked->max_readahead;
    reply.max_write = LARGEST_WRITE;
    send(request, 0, &reply, sizeof reply);
}

void describe_file(const fuse_request &request) {
    fuse_attr_out reply{};
    reply.attr_valid = FILE_VALID_SECONDS;
    reply.attr.ino = FUSE_ROOT_ID;
    reply.attr.mode = S_IFREG | 0444;
    reply.attr.nlink = 1;
    send(request, 0, &reply, sizeof reply);
}

void open_file(const fuse_request &request) {
    fuse_open_out reply{};
    reply.open_flags = FOPEN_DIRECT_IO;
    send(request, 0, &reply, sizeof reply);
}

void answer_ioctl(const fuse_request &request, model &driver) {
    const auto *asked = static_cast<const fuse_ioctl_in *>(request.body);
    process_memory caller(static_cast<pid_t>(request.head->pid));
    const int error =
        asked->arg > UINT32_MAX
            ? EFAULT
            : model_ioctl(driver, asked->cmd, static_cast<uint32_t>(asked->arg), caller);
    fuse_ioctl_out reply{};
    send(request, error, &reply, sizeof reply);
}

void answer_request(const fuse_request &request, model &driver) {
    switch (request.head->opcode) {
    case FUSE_INIT:
        return start(request);
    case FUSE_GETATTR:
        return describe_file(request);
    case FUSE_OPEN:
        return open_file(request);
    case FUSE_IOCTL:
        return answer_ioctl(request, driver);
    case FUSE_READ:
    case FUSE_FLUSH:
    case FUSE_RELEASE:
        return send(request, 0);
    case FUSE_FORGET:
    case FUSE_BATCH_FORGET:
    case FUSE_INTERRUPT: // requests are answered at once, none is left to interrupt
    case FUSE_DESTROY:
        return;
    default:
        return send(request, ENOSYS);
    }
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
    } else {
        return channel;
    }
    error = std::string("a device file needs root and /dev/fuse: ") + failed + ": " +
            std::strerror(errno);
    if (channel != -1) {
        close(channel);
    }
    return -1;
}

bool serve_device_request(int channel, model &driver) {
    alignas(fuse_in_header) char bytes[REQUEST_ROOM];
    const ssize_t length = read(channel, bytes, sizeof bytes);
    if (length == -1 && errno == ENODEV) {
        return false;
    }
    // ENOENT, EAGAIN and EINTR: the caller has given up before its request was read.
    if (length >= static_cast<ssize_t>(sizeof(fuse_in_header))) {
        answer_request({channel, reinterpret_cast<const fuse_in_header *>(bytes),
                        bytes + sizeof(fuse_in_header)},
                       driver);
    }
    return true;
}
