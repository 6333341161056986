// The symbols defined here are the plain and the 64-bit ones, so none may be renamed to the other.
#undef _FILE_OFFSET_BITS

#include "sim/interpose.h"

#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <set>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

model *answering = nullptr;

std::set<int> &device_descriptors() {
    // Never destroyed: close is still called while the process ends.
    static auto *const descriptors = new std::set<int>;
    return *descriptors;
}

// The C library's function that a definition below hides.
template <typename function> function *next(function *, const char *name) {
    return reinterpret_cast<function *>(dlsym(RTLD_NEXT, name));
}

bool is_device(const char *path) {
    return answering != nullptr && path != nullptr && std::strcmp(path, DRIVER_DEVICE_PATH) == 0;
}

// A descriptor of the process's own, so that numbers never collide; nothing is read through it.
int open_device(int flags) {
    const int descriptor = next(&open, "open")("/dev/null", flags & (O_ACCMODE | O_CLOEXEC));
    if (descriptor != -1) {
        device_descriptors().insert(descriptor);
    }
    return descriptor;
}

int device_ioctl(unsigned long code, void *argument) {
    own_memory memory;
    const int error = model_ioctl(*answering, code, reinterpret_cast<uintptr_t>(argument), memory);
    errno = error == 0 ? errno : error;
    return error == 0 ? 0 : -1;
}

// The third argument exists only when a file may be created.
mode_t mode_of(int flags, va_list values) {
    const bool creates = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return creates ? va_arg(values, mode_t) : 0;
}

} // namespace

void interpose_model(model *driver) {
    answering = driver;
}

// Parameters are named for what they are here, not as the C library's headers do.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
#define EXPORTED extern "C" __attribute__((visibility("default")))

EXPORTED int open(const char *path, int flags, ...) {
    va_list values;
    va_start(values, flags);
    const mode_t mode = mode_of(flags, values);
    va_end(values);
    return is_device(path) ? open_device(flags) : next(&open, "open")(path, flags, mode);
}

EXPORTED int open64(const char *path, int flags, ...) {
    va_list values;
    va_start(values, flags);
    const mode_t mode = mode_of(flags, values);
    va_end(values);
    return is_device(path) ? open_device(flags) : next(&open64, "open64")(path, flags, mode);
}

EXPORTED int openat(int directory, const char *path, int flags, ...) {
    va_list values;
    va_start(values, flags);
    const mode_t mode = mode_of(flags, values);
    va_end(values);
    return is_device(path) ? open_device(flags)
                           : next(&openat, "openat")(directory, path, flags, mode);
}

EXPORTED int openat64(int directory, const char *path, int flags, ...) {
    va_list values;
    va_start(values, flags);
    const mode_t mode = mode_of(flags, values);
    va_end(values);
    return is_device(path) ? open_device(flags)
                           : next(&openat64, "openat64")(directory, path, flags, mode);
}

EXPORTED int ioctl(int descriptor, unsigned long code, ...) noexcept {
    va_list values;
    va_start(values, code);
    void *argument = va_arg(values, void *);
    va_end(values);
    if (answering != nullptr && device_descriptors().contains(descriptor)) {
        return device_ioctl(code, argument);
    }
    return next(&ioctl, "ioctl")(descriptor, code, argument);
}

EXPORTED int close(int descriptor) {
    device_descriptors().erase(descriptor);
    return next(&close, "close")(descriptor);
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
