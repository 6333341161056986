#include "sim/device/device_file.h"

#include <cerrno>
#include <cstring>

#include <linux/fuse.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

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
    const fuse_in_header *head;
    const void *body;
};

// An error stands alone; the caller may have been killed meanwhile, then nobody waits for it.
void send(int channel, const fuse_request &request, int error, const void *body, size_t length) {
    const size_t sent = error == 0 ? length : 0;
    fuse_out_header head = {static_cast<uint32_t>(sizeof head + sent), -error,
                            request.head->unique};
    const iovec parts[] = {{&head, sizeof head}, {const_cast<void *>(body), sent}};
    [[maybe_unused]] const ssize_t written = writev(channel, parts, sent == 0 ? 1 : 2);
}

void fail(int channel, const fuse_request &request, int error) {
    send(channel, request, error, nullptr, 0);
}

void start(int channel, const fuse_request &request) {
    const auto *asked = static_cast<const fuse_init_in *>(request.body);
    fuse_init_out reply{};
    reply.major = FUSE_KERNEL_VERSION;
    reply.minor = FUSE_KERNEL_MINOR_VERSION;
    reply.max_readahead = asked->max_readahead;
    reply.max_write = LARGEST_WRITE;
    send(channel, request, 0, &reply, sizeof reply);
}

void describe_file(int channel, const fuse_request &request) {
    fuse_attr_out reply{};
    reply.attr_valid = FILE_VALID_SECONDS;
    reply.attr.ino = FUSE_ROOT_ID;
    reply.attr.mode = S_IFREG | 0444;
    reply.attr.nlink = 1;
    send(channel, request, 0, &reply, sizeof reply);
}

void open_file(int channel, const fuse_request &request) {
    fuse_open_out reply{};
    reply.open_flags = FOPEN_DIRECT_IO;
    send(channel, request, 0, &reply, sizeof reply);
}

void answer_ioctl(int channel, const fuse_request &request, model &driver) {
    const auto *asked = static_cast<const fuse_ioctl_in *>(request.body);
    process_memory caller(static_cast<pid_t>(request.head->pid));
    const int error =
        asked->arg > UINT32_MAX
            ? EFAULT
            : model_ioctl(driver, asked->cmd, static_cast<uint32_t>(asked->arg), caller);
    fuse_ioctl_out reply{};
    send(channel, request, error, &reply, sizeof reply);
}

void answer_request(int channel, const fuse_request &request, model &driver) {
    switch (request.head->opcode) {
    case FUSE_INIT:
        start(channel, request);
        break;
    case FUSE_GETATTR:
        describe_file(channel, request);
        break;
    case FUSE_OPEN:
        open_file(channel, request);
        break;
    case FUSE_IOCTL:
        answer_ioctl(channel, request, driver);
        break;
    case FUSE_READ:
    case FUSE_FLUSH:
    case FUSE_RELEASE:
        fail(channel, request, 0);
        break;
    case FUSE_FORGET:
    case FUSE_BATCH_FORGET:
    case FUSE_INTERRUPT: // requests are answered at once, none is left to interrupt
    case FUSE_DESTROY:
        break;
    default:
        fail(channel, request, ENOSYS);
        break;
    }
}

} // namespace

bool serve_device_request(int channel, model &driver) {
    alignas(fuse_in_header) char bytes[REQUEST_ROOM];
    const ssize_t length = read(channel, bytes, sizeof bytes);
    if (length == -1 && errno == ENODEV) {
        return false;
    }
    // ENOENT, EAGAIN and EINTR: the caller has given up before its request was read.
    if (length < static_cast<ssize_t>(sizeof(fuse_in_header))) {
        return true;
    }
    const fuse_request request = {reinterpret_cast<const fuse_in_header *>(bytes),
                                  bytes + sizeof(fuse_in_header)};
    answer_request(channel, request, driver);
    return true;
}
