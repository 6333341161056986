// Runs of tarncmd in this process, on any driver.
//
// Linked into a program, this module takes over ioctl and the opening of the device: whatever asks
// the driver, the tool, a recording or a capture, asks the function below.
#ifndef TESTS_CAPTURE_TOOL_RUN_H
#define TESTS_CAPTURE_TOOL_RUN_H

#include "dpa/userspace/kxdpa_request.h"
#include "sim/model.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// Answers one request in place and returns 0, or the errno that the ioctl fails with.
using test_driver = std::function<int(kxdpa_request &)>;

struct asked_request {
    uint16_t opcode;
    uint32_t argument;
    uint32_t status; // as the caller reads it, 1 for a failed ioctl that left the word alone
    bool operator==(const asked_request &) const = default;
};

// Let the driver answer from now on, and forget the requests so far.
void set_test_driver(test_driver driver);

// The simulated host as a driver. `simulated` stays the caller's.
test_driver driver_of(model &simulated);

// The requests since the driver was set, the first million of them.
const std::vector<asked_request> &requests_so_far();

// The exit value of a run that would not end: it is cut off after 50,000 requests.
constexpr int ENDLESS = 1000;

struct tool_run {
    std::string text; // standard output, without time stamps
    int exit_value = 0;
    std::vector<asked_request> requests;
    bool operator==(const tool_run &) const = default;
};

// One command line of the tool, which ends when the tool does or has asked too much.
tool_run run_tool(const std::vector<std::string> &words, test_driver driver);

#endif
