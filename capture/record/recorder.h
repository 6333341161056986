// Keeps what this process asks of the driver, and what the driver answers, to the byte.
//
// The program is linked with --wrap=ioctl, so that the request channel's system call comes through
// here, in a dynamic and in a static program alike. Requests that no recording is under way for,
// and calls on other descriptors, pass through untouched.
#ifndef CAPTURE_RECORD_RECORDER_H
#define CAPTURE_RECORD_RECORDER_H

#include "capture/driver_request.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

// What the caller finds afterwards.
struct driver_answer {
    int error = 0; // errno of a failed ioctl, 0 for none
    uint32_t status = 0;
    // The whole span that the driver may write, however much of it was written; none for a request
    // without a reply, and for a failed one that left it alone.
    std::optional<std::vector<uint8_t>> reply;
    // The capacity word, where it is neither the reply's size nor, without a reply, as it was.
    std::optional<uint32_t> returned;
    bool operator==(const driver_answer &) const = default;
};

struct recorded_request {
    // So many times in a row the same of the answers.
    struct run {
        size_t answer;
        uint32_t times;
    };
    driver_request request;
    std::vector<driver_answer> answers; // that differ, in the order of their first time
    std::vector<run> runs;
};

// Start anew: forget what was kept, and keep every request from now on. When `interrupted` is given
// and a request ends with *interrupted set, `leave` is called behind it, outside of any signal
// handler.
void recorder_start(const volatile int *interrupted = nullptr, void (*leave)() = nullptr);

// Keep no more requests. Returns what was kept, in the order of the first time.
std::vector<recorded_request> recorder_stop();

#endif
