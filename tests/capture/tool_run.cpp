#undef _FILE_OFFSET_BITS

#include "tests/capture/tool_run.h"

#include "dpa/userspace/kxdpa_indirect.h"
#include "frontend/run_state.h"
#include "tests/text.h"

#include <cerrno>
#include <csetjmp>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

int tarncmd_main(int argc, char *argv[]);

namespace {

constexpr const char *DEVICE_PATH = "/vmfs/devices/char/vmkdriver/kestrel";

constexpr size_t REQUESTS_LIMIT = 50000; // of a run
constexpr size_t REQUESTS_KEPT = 1000000;

test_driver answering;
std::vector<asked_request> asked;
jmp_buf *out_of_run = nullptr; // while the tool runs

// Standard output goes to a file in memory while the tool runs. What the host's shell says of a
// program that it does not have goes nowhere.
class output_catcher {
public:
    output_catcher() {
        fflush(stdout);
        output_before_ = dup(STDOUT_FILENO);
        complaints_before_ = dup(STDERR_FILENO);
        file_ = memfd_create("output", 0);
        dup2(file_, STDOUT_FILENO);
        const int nowhere = open64("/dev/null", O_WRONLY);
        dup2(nowhere, STDERR_FILENO);
        close(nowhere);
    }
    ~output_catcher() {
        close(file_);
    }
    output_catcher(const output_catcher &) = delete;
    output_catcher &operator=(const output_catcher &) = delete;

    std::string take() const {
        fflush(stdout);
        dup2(output_before_, STDOUT_FILENO);
        dup2(complaints_before_, STDERR_FILENO);
        close(output_before_);
        close(complaints_before_);
        std::string text(static_cast<size_t>(lseek(file_, 0, SEEK_END)), '\0');
        const bool read =
            pread(file_, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size());
        return read ? text : "the output cannot be read back";
    }

private:
    int output_before_;
    int complaints_before_;
    int file_;
};

} // namespace

void set_test_driver(test_driver driver) {
    answering = std::move(driver);
    asked.clear();
}

test_driver driver_of(model &simulated) {
    return [&simulated](kxdpa_request &record) {
        own_memory memory;
        return model_request(simulated, record, memory);
    };
}

const std::vector<asked_request> &requests_so_far() {
    return asked;
}

tool_run run_tool(const std::vector<std::string> &words, test_driver driver) {
    set_test_driver(std::move(driver));
    std::vector<std::string> kept = words;
    kept.insert(kept.begin(), "tarncmd");
    std::vector<char *> arguments = argument_vector(kept);
    const output_catcher output;
    kx_run_broken = false;
    jmp_buf here;
    out_of_run = &here;
    // The tool has nothing that a jump out of it would leave behind but memory.
    volatile int value = ENDLESS;
    if (setjmp(here) == 0)
        value = tarncmd_main(static_cast<int>(kept.size()), arguments.data());
    out_of_run = nullptr;
    kx_run_from_shell = false; // what a capture runs is not typed
    kx_dpa_api_exit();
    return {replace_stamps(output.take(), "STAMP: "), value, asked};
}

extern "C" {

int open64(const char *path, int flags, ...) {
    va_list values;
    va_start(values, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(values, mode_t) : 0;
    va_end(values);
    const char *opened = strcmp(path, DEVICE_PATH) == 0 ? "/dev/null" : path;
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, opened, flags | O_LARGEFILE, mode));
}

int ioctl(int descriptor, unsigned long code, ...) noexcept {
    va_list values;
    va_start(values, code);
    void *argument = va_arg(values, void *);
    va_end(values);
    if (descriptor != kx_dpa_call_fd || code != 0)
        return static_cast<int>(syscall(SYS_ioctl, descriptor, code, argument));
    auto &record = *static_cast<kxdpa_request *>(argument);
    const int error = answering(record);
    if (asked.size() == REQUESTS_LIMIT && out_of_run != nullptr)
        longjmp(*out_of_run, 1);
    if (asked.size() < REQUESTS_KEPT)
        asked.push_back({record.opcode, record.arg, record.status});
    errno = error;
    return error == 0 ? 0 : -1;
}
}
