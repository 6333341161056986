// Runs every command of the table with many arguments against a hostile driver and shell.
//
//     hostile_sweep [SEED...]        these seeds; a few fixed ones when none is named
//     hostile_sweep --seconds N      new seeds for that long
//
// It prints its progress and exits with 0. It ends at the first finding, with a line on standard
// error that names the seed and the command.
#include "dpa/userspace/kxdpa_request.h"
#include "frontend/handlers.h"
#include "frontend/hmx_cmd.h"
#include "frontend/kestrel_cmd_list.h"
#include "frontend/run_state.h"
#include "tests/hostile/endless.h"
#include "tests/hostile/hostile_driver.h"
#include "tests/hostile/row_arguments.h"
#include "tests/rows.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr uint64_t FIXED_SEEDS[] = {1, 2, 3, 4, 5, 6, 7, 8};
constexpr unsigned RUN_SECONDS = 30;
constexpr int PAGES = 4;
constexpr size_t COMMAND_LENGTH = 255;

struct tally {
    uint64_t rows = 0;
    uint64_t runs = 0;
    uint64_t replies = 0;
} done;

// What the host's own program prints when the tool asks it.
std::string shell_output;

// The command that runs, for the line about a finding.
char running[COMMAND_LENGTH * 2];

void say_what_is_running() {
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, running, strlen(running));
}

[[noreturn]] void give_up(const char *why) {
    fprintf(stderr, "%s\n", why);
    say_what_is_running();
    _exit(1);
}

void require(bool holds, const char *what) {
    if (!holds)
        give_up(what);
}

void on_alarm(int /*number*/) {
    say_what_is_running();
    static const char late[] = "it does not end\n";
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, late, sizeof late - 1);
    _exit(1);
}

// --- Runs ---

// The text is in memory of exactly its own size without a NUL, so that the sanitizer notices a read
// beyond its end.
void run_text(const std::string &text, int from_agent) {
    const auto exact = std::make_unique<char[]>(text.size());
    memcpy(exact.get(), text.data(), text.size());
    const int length = static_cast<int>(text.size());
    require(hmx_cmd_run(exact.get(), length, from_agent) == length, "the length is not returned");
}

void start_page() {
    hmx_rcli_buffer_ptr = hmx_rcli_buffer;
    hmx_rcli_entry_start_ptr = nullptr;
    hmx_rcli_print_len = 0;
    hmx_rcli_more_output = 0;
}

void run_pages(const std::string &text, int from_agent) {
    std::string page = text;
    hmx_rcli_fromdpa = 1;
    for (int i = 0; i < PAGES; i++) {
        start_page();
        run_text(page, from_agent);
        require(hmx_rcli_buffer_ptr >= hmx_rcli_buffer, "the sink went backwards");
        if (hmx_rcli_more_output == 0)
            break;
        page = text + " cookie " + std::to_string(hmx_rcli_more_output);
    }
    hmx_rcli_fromdpa = 0;
    hmx_rcli_buffer_ptr = nullptr;
}

void set_traces(bool on) {
    for (uint32_t *word :
         {&kx_debug_print_kxdump, &kx_debug_print_hmx_cmds, &kx_debug_print_kxdpa_indirect,
          &kx_debug_print_kxtarncmd_indirect, &kx_debug_print_kxcmd, &kx_debug_print_kxstrings,
          &kx_debug_print_dpa_platform})
        *word = on ? 0xff : 0x87;
}

void run_command(const std::string &text, uint64_t seed) {
    snprintf(running, sizeof running, "seed %llu: %.300s\n", static_cast<unsigned long long>(seed),
             text.c_str());
    alarm(RUN_SECONDS);
    hostile_driver_restart(seed);
    hostile_random choices(~seed);
    shell_output = choices.one_in(2) ? some_garbage(choices) : "10.1.2.3\n";
    set_traces(choices.one_in(8));
    kx_run_broken = false;
    switch (choices.below(3)) {
    case 0:
        run_text(text, 0);
        break;
    case 1:
        run_pages(text, 1);
        break;
    default:
        // Rows that the agent may not run must survive agent-driven mode, too.
        run_pages(text, 0);
        break;
    }
    done.runs++;
    done.replies += the_hostile_driver.requests;
}

void sweep_rows(uint64_t seed) {
    hostile_random random(seed);
    uint64_t rows = 0;
    for (const kestrel_cmd_row &row : kestrel_cmd_list) {
        // The command for the agent uses a pipe, not the driver.
        if (row.kind != KESTREL_CMD_COMMAND || row.handler == kx_dpa_cmd)
            continue;
        rows++;
        const std::string command = command_of(row);
        for (const std::string &argument : arguments_of(row, random)) {
            std::string text = command + (argument.empty() ? "" : " ") + argument;
            text.resize(std::min(text.size(), COMMAND_LENGTH));
            run_command(text, uint64_t{random.next()} << 32 | random.next());
        }
    }
    done.rows = std::max(done.rows, rows);
}

} // namespace

extern "C" {

int ioctl(int /*descriptor*/, unsigned long code, ...) noexcept {
    va_list values;
    va_start(values, code);
    auto *record = va_arg(values, kxdpa_request *);
    va_end(values);
    if (code != 0) {
        errno = ENOTTY;
        return -1;
    }
    if (is_endless()) {
        endless_answer(record);
        return 0;
    }
    return hostile_driver_answer(record);
}

FILE *popen(const char * /*command*/, const char * /*mode*/) {
    // An empty text cannot be opened as a file.
    return shell_output.empty() ? fopen("/dev/null", "r")
                                : fmemopen(shell_output.data(), shell_output.size(), "r");
}

int pclose(FILE *file) {
    return fclose(file);
}
}

extern "C" void __asan_set_death_callback(void (*callback)()) __attribute__((weak));

int main(int argc, char *argv[]) {
    // The commands print to /dev/null; the report goes to the real standard output.
    FILE *report = fdopen(dup(STDOUT_FILENO), "w");
    if (report == nullptr || freopen("/dev/null", "w", stdout) == nullptr)
        return 1;
    signal(SIGALRM, on_alarm);
    if (__asan_set_death_callback != nullptr)
        __asan_set_death_callback(say_what_is_running);
    if (argc == 3 && strcmp(argv[1], "--seconds") == 0) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(atoi(argv[2]));
        for (std::random_device seeds; std::chrono::steady_clock::now() < end;)
            sweep_rows(uint64_t{seeds()} << 32 | seeds());
    } else if (argc > 1) {
        for (int i = 1; i < argc; i++)
            sweep_rows(strtoull(argv[i], nullptr, 0));
    } else {
        require(endless_walks_end(), "a walk does not end where it has to");
        for (const uint64_t seed : FIXED_SEEDS)
            sweep_rows(seed);
    }
    fprintf(report, "hostile driver: %llu rows, %llu runs, %llu replies\n",
            static_cast<unsigned long long>(done.rows), static_cast<unsigned long long>(done.runs),
            static_cast<unsigned long long>(done.replies));
    return 0;
}
