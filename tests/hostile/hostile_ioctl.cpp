// The system call that reaches the hostile driver in a program that knows no other.
#include "dpa/userspace/kxdpa_request.h"
#include "tests/hostile/hostile_driver.h"

#include <cerrno>
#include <cstdarg>

extern "C" int ioctl(int /*descriptor*/, unsigned long code, ...) noexcept {
    va_list values;
    va_start(values, code);
    auto *record = va_arg(values, kxdpa_request *);
    va_end(values);
    if (code != 0) {
        errno = ENOTTY;
        return -1;
    }
    return hostile_driver_answer(record);
}
