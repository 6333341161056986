// Runs every command of the table with many arguments against a hostile driver and agent.
//
//     hostile_sweep [SEED...]        these seeds; a few fixed ones when none is named
//     hostile_sweep --seconds N      fresh seeds for that long
//
// It prints what it did and exits with 0. A finding ends it, with a line on standard error that
// names the seed and the command.
#include "frontend/hmx_cmd.h"
#include "frontend/kestrel_cmd_list.h"
#include "frontend/run_state.h"
#include "tests/hostile/hostile_agent.h"
#include "tests/hostile/hostile_driver.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr uint64_t FIXED_SEEDS[] = {1, 2, 3, 4, 5, 6, 7, 8};
constexpr unsigned RUN_SECONDS = 30;
constexpr int PAGES = 4;
constexpr int RANDOM_SHAPES = 6;
constexpr size_t COMMAND_LENGTH = 255;

struct tally {
    uint64_t rows = 0;
    uint64_t runs = 0;
    uint64_t replies = 0;
} done;

// What is running, for the line that goes with a finding.
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
    if (!holds) {
        give_up(what);
    }
}

void on_alarm(int /*number*/) {
    say_what_is_running();
    static const char late[] = "it does not end\n";
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, late, sizeof late - 1);
    _exit(1);
}

// --- Arguments ---

const std::vector<std::string> &common_arguments() {
    static const std::vector<std::string> arguments = {
        "",
        "20",
        "0x14",
        "4095",
        "4294967295",
        "99999999999999999999",
        "-1",
        "cookie",
        "cookie 0",
        "cookie 20",
        "cookie 4294967295 x",
        "all",
        "ltl",
        "ltl 20",
        "vlan 10 ltl 20",
        "internal",
        "detail 10",
        "10.1.2.3",
        "300.1.2.3",
        "00:11:22:33:44:55",
        "fe80::1",
        "on",
        "1 20",
        "5 ltl 20",
        "trunk native-vlan 5 ltl 20",
        "a b c d e f g h i j k l m n o p q r s t u v w x y z",
        "%s%n%x %d",
        "\\\"'`$(x)&|<>*?[]{}~#!",
        std::string(120, 'w'),
        std::string(200, '9'),
        std::string(60, ' ') + "20",
    };
    return arguments;
}

bool is_plain(const char *keyword) {
    return strpbrk(keyword, "[]<>|") == nullptr && strcmp(keyword, "cookie") != 0;
}

void add_words(const char *documentation, std::vector<std::string> &words) {
    const std::string text = documentation == nullptr ? "" : documentation;
    for (size_t at = 0; (at = text.find_first_not_of("[]<>| ,{}", at)) != std::string::npos;) {
        const size_t end = std::min(text.find_first_of("[]<>| ,{}", at), text.size());
        words.push_back(text.substr(at, end - at));
        at = end;
    }
}

std::string some_words(const std::vector<std::string> &words, hostile_random &random) {
    std::string text;
    for (uint32_t count = 1 + random.below(6); count > 0; count--) {
        const bool number = words.empty() || random.one_in(3);
        text += number ? std::to_string(random.next() >> random.below(32))
                       : words[random.below(static_cast<uint32_t>(words.size()))];
        text += ' ';
    }
    return text;
}

std::string some_number(hostile_random &random) {
    static const char *const numbers[] = {"0", "1", "5", "20", "0x14", "4095", "4294967295"};
    return random.one_in(4) ? std::to_string(random.next() >> random.below(32))
                            : numbers[random.below(std::size(numbers))];
}

// One word of the documentation as an operator would type it: a number for a placeholder, one of
// several alternatives. Now and then it is left out.
std::string fill_in(const std::string &word, hostile_random &random) {
    std::vector<std::string> alternatives;
    add_words(word.c_str(), alternatives);
    if (alternatives.empty() || random.one_in(8)) {
        return "";
    }
    const std::string &chosen =
        alternatives[random.below(static_cast<uint32_t>(alternatives.size()))];
    const size_t at = word.find(chosen);
    const bool placeholder = at != 0 && word[at - 1] == '<';
    return (placeholder && !random.one_in(8) ? some_number(random) : chosen) + " ";
}

std::string filled_in(const kestrel_cmd_row &row, hostile_random &random) {
    std::string documentation;
    for (const char *keyword : row.keywords) {
        if (keyword != nullptr && (!documentation.empty() || !is_plain(keyword))) {
            documentation += std::string(keyword) + " ";
        }
    }
    documentation += row.argument_hint == nullptr ? "" : row.argument_hint;
    std::string text;
    for (size_t at = 0; (at = documentation.find_first_not_of(' ', at)) != std::string::npos;) {
        const size_t end = std::min(documentation.find(' ', at), documentation.size());
        text += fill_in(documentation.substr(at, end - at), random);
        at = end;
    }
    return text;
}

std::string some_garbage(hostile_random &random) {
    std::string text(random.below(200), ' ');
    for (char &byte : text) {
        byte = static_cast<char>(' ' + random.below('~' - ' ' + 1));
    }
    std::replace(text.begin(), text.end(), ';', ':');
    return text;
}

// The arguments to try behind a row's keywords: the common ones, the words that the row's own
// documentation names, and garbage.
std::vector<std::string> arguments_of(const kestrel_cmd_row &row, hostile_random &random) {
    std::vector<std::string> arguments = common_arguments();
    std::vector<std::string> words;
    for (const char *keyword : row.keywords) {
        if (keyword != nullptr && !is_plain(keyword)) {
            add_words(keyword, words);
        }
    }
    add_words(row.argument_hint, words);
    for (const std::string &word : words) {
        arguments.push_back(word);
        arguments.push_back(word + " 20");
    }
    for (const char *word : {"ltl", "vlan", "cookie", "on", "off"}) {
        words.emplace_back(word);
    }
    for (int i = 0; i < RANDOM_SHAPES; i++) {
        arguments.push_back(some_words(words, random));
        arguments.push_back(filled_in(row, random));
    }
    arguments.push_back(some_garbage(random));
    return arguments;
}

std::string command_of(const kestrel_cmd_row &row) {
    std::string command;
    for (const char *keyword : row.keywords) {
        if (keyword == nullptr || !is_plain(keyword)) {
            break;
        }
        command += std::string(command.empty() ? "" : " ") + keyword;
    }
    return command;
}

// --- Runs ---

// The text stands in memory of its own size and has no terminator, so that a read behind its end
// shows.
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
        if (hmx_rcli_more_output == 0) {
            break;
        }
        page = text + " cookie " + std::to_string(hmx_rcli_more_output);
    }
    hmx_rcli_fromdpa = 0;
    hmx_rcli_buffer_ptr = nullptr;
}

void set_traces(bool on) {
    for (uint32_t *word :
         {&kx_debug_print_kxdump, &kx_debug_print_hmx_cmds, &kx_debug_print_kxdpa_indirect,
          &kx_debug_print_kxtarncmd_indirect, &kx_debug_print_kxcmd, &kx_debug_print_kxstrings,
          &kx_debug_print_dpa_platform}) {
        *word = on ? 0xff : 0x87;
    }
}

void run_command(const std::string &text, uint64_t seed) {
    snprintf(running, sizeof running, "seed %llu: %.300s\n", static_cast<unsigned long long>(seed),
             text.c_str());
    alarm(RUN_SECONDS);
    hostile_driver_restart(seed);
    hostile_random choices(~seed);
    hostile_agent agent;
    agent.reads_pipe = choices.one_in(2);
    agent.output = some_garbage(choices) + "#byeBye#";
    agent.shell_output = choices.one_in(2) ? some_garbage(choices) : "10.1.2.3\n";
    hostile_agent_restart(agent);
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
        // Rows that are closed to the agent still must stand its mode.
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
        if (row.kind != KESTREL_CMD_COMMAND) {
            continue;
        }
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

uint64_t fresh_seed() {
    uint64_t seed = 0;
    FILE *file = fopen("/dev/urandom", "r");
    if (file == nullptr || fread(&seed, sizeof seed, 1, file) != 1) {
        give_up("no random numbers");
    }
    fclose(file);
    return seed;
}

} // namespace

extern "C" void __asan_set_death_callback(void (*callback)()) __attribute__((weak));

int main(int argc, char *argv[]) {
    // The commands print to nowhere; the report goes to the standard output that there was.
    FILE *report = fdopen(dup(STDOUT_FILENO), "w");
    if (report == nullptr || freopen("/dev/null", "w", stdout) == nullptr) {
        return 1;
    }
    signal(SIGALRM, on_alarm);
    if (__asan_set_death_callback != nullptr) {
        __asan_set_death_callback(say_what_is_running);
    }
    if (argc == 3 && strcmp(argv[1], "--seconds") == 0) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(atoi(argv[2]));
        while (std::chrono::steady_clock::now() < end) {
            sweep_rows(fresh_seed());
        }
    } else if (argc > 1) {
        for (int i = 1; i < argc; i++) {
            sweep_rows(strtoull(argv[i], nullptr, 0));
        }
    } else {
        for (const uint64_t seed : FIXED_SEEDS) {
            sweep_rows(seed);
        }
    }
    hostile_agent_restart({});
    fprintf(report, "hostile driver: %llu rows, %llu runs, %llu replies\n",
            static_cast<unsigned long long>(done.rows), static_cast<unsigned long long>(done.runs),
            static_cast<unsigned long long>(done.replies));
    return 0;
}
