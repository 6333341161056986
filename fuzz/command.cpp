// Command texts: splitting, matching and every handler, on a driver that answers hardly anything.
#include "dpa/userspace/kxdpa_request.h"
#include "frontend/handlers.h"
#include "frontend/hmx_cmd.h"
#include "frontend/kestrel_cmd_list.h"
#include "frontend/run_state.h"
#include "fuzz/fuzz.h"
#include "tests/rows.h"

#include <cstdarg>

namespace {

constexpr uint32_t NO_ENTRY = 61;
constexpr uint32_t PATIENCE = 32; // requests that are all answered alike

uint32_t requests = 0;
bool answers = false; // with the buffer unchanged, instead of "no entry"

std::string typed_row(uint32_t row) {
    return command_of(kestrel_cmd_list[row % KESTREL_CMD_ROWS]) + " ";
}

int no_conversation(const char * /*arg*/) {
    return 0;
}

// The handler that talks to the agent would wait for it.
bool leave_the_agent_out() {
    for (kestrel_cmd_row &row : kestrel_cmd_list) {
        if (row.handler == kx_dpa_cmd) {
            row.handler = no_conversation;
        }
    }
    return true;
}

} // namespace

extern "C" int ioctl(int /*descriptor*/, unsigned long code, ...) noexcept {
    va_list values;
    va_start(values, code);
    auto *record = va_arg(values, kxdpa_request *);
    va_end(values);
    // A failure ends a walk; but one command repeats a request until it succeeds.
    const bool late = ++requests > PATIENCE;
    record->status = (late ? requests % 4 == 0 : answers) ? 0 : NO_ENTRY;
    return 0;
}

extern "C" FILE *popen(const char * /*command*/, const char * /*mode*/) {
    static char address[] = "10.1.2.3\n";
    return fmemopen(address, strlen(address), "r");
}

extern "C" int pclose(FILE *file) {
    return fclose(file);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    [[maybe_unused]] static const bool without_agent = leave_the_agent_out();
    fuzz_input input(bytes, size);
    const auto choice = input.take<uint8_t>();
    // Most inputs name a row by its number: that reaches more handlers than spelling does.
    const std::string command = (choice & 16) != 0 ? "" : typed_row(input.take<uint8_t>());
    size_t rest_length = 0;
    const std::unique_ptr<char[]> rest = input.take_rest(&rest_length);
    const size_t length = command.size() + rest_length;
    const auto text = std::make_unique<char[]>(length);
    memcpy(text.get(), command.data(), command.size());
    memcpy(text.get() + command.size(), rest.get(), rest_length);

    hmx_rcli_fromdpa = choice & 1;
    hmx_rcli_buffer_ptr = (choice & 1) != 0 ? hmx_rcli_buffer : nullptr;
    hmx_rcli_more_output = 0;
    kx_run_broken = false;
    requests = 0;
    answers = (choice & 8) != 0;
    const int said = static_cast<int>(length);
    fuzz_require(hmx_cmd_run(text.get(), said, choice & 2) == said, "the length is returned");
    return 0;
}
