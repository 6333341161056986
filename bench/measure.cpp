// Runs the tool and the bare programs in turn and prints what each costs.
// Usage: measure --captures TARNCAP TARNCMD DRIVER_LIBRARY
//        measure TARNCMD BARE ONE_REQUEST DRIVER_LIBRARY [TIMES]
// On a busy machine the numbers settle when all is measured several TIMES.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

namespace {

struct cost {
    double user = 0;   // milliseconds
    double system = 0; // milliseconds
    double wall = 0;   // milliseconds
    double memory = 0; // peak resident set in KiB
};

struct shape {
    const char *name;
    std::vector<std::string> settings;
    std::vector<std::string> tool_words;
    const char *bare_word;
    int rounds;
};

using command = std::vector<std::string>;

double milliseconds(const timeval &time) {
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

double now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

[[noreturn]] void become(const command &words, const std::vector<std::string> &settings,
                         const std::string &driver, int output) {
    for (const std::string &setting : settings) {
        putenv(strdup(setting.c_str()));
    }
    setenv("LD_PRELOAD", driver.c_str(), 1);
    dup2(output, STDOUT_FILENO);
    // The complaints of a capture about refused requests are not measured.
    dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);
    std::vector<char *> arguments;
    for (const std::string &word : words) {
        arguments.push_back(const_cast<char *>(word.c_str()));
    }
    arguments.push_back(nullptr);
    execv(arguments[0], arguments.data());
    _exit(127);
}

cost run(const command &words, const std::vector<std::string> &settings, const std::string &driver,
         int output) {
    const double start = now();
    const pid_t child = fork();
    if (child == 0) {
        become(words, settings, driver, output);
    }
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        fprintf(stderr, "measure: %s failed\n", words[0].c_str());
        exit(1);
    }
    return {milliseconds(usage.ru_utime), milliseconds(usage.ru_stime), now() - start,
            static_cast<double>(usage.ru_maxrss)};
}

std::string output_of(const command &words, const std::vector<std::string> &settings,
                      const std::string &driver) {
    char path[] = "/tmp/measure-XXXXXX";
    const int file = mkstemp(path);
    unlink(path);
    run(words, settings, driver, file);
    std::string text(static_cast<size_t>(lseek(file, 0, SEEK_END)), '\0');
    if (pread(file, text.data(), text.size(), 0) != static_cast<ssize_t>(text.size())) {
        exit(1);
    }
    close(file);
    return text;
}

// Adds 1/times of the means over the middle half of the rounds, and the greatest peak. The middle
// half leaves out the rounds that other work on the machine disturbed.
void summarize(std::vector<cost> &rounds, int times, cost &summary) {
    std::sort(rounds.begin(), rounds.end(),
              [](const cost &a, const cost &b) { return a.user + a.system < b.user + b.system; });
    const size_t first = rounds.size() / 4;
    const size_t end = rounds.size() - first;
    const double share = 1.0 / static_cast<double>(end - first) / times;
    for (size_t i = first; i < end; ++i) {
        summary.user += rounds[i].user * share;
        summary.system += rounds[i].system * share;
        summary.wall += rounds[i].wall * share;
    }
    for (const cost &one : rounds) {
        summary.memory = std::max(summary.memory, one.memory);
    }
}

// The commands run in turns, so that other work on the machine slows all of them alike. Only the
// rounds of one time are kept, since memory of this program counts in the peak of the programs that
// it starts.
std::vector<cost> measure(const std::vector<command> &commands,
                          const std::vector<std::string> &settings, const std::string &driver,
                          int rounds, int times) {
    const int nowhere = open("/dev/null", O_WRONLY);
    std::vector<cost> summaries(commands.size());
    for (int time = 0; time < times; ++time) {
        std::vector<std::vector<cost>> costs(commands.size());
        for (int round = 0; round < rounds; ++round) {
            for (size_t i = 0; i < commands.size(); ++i) {
                costs[i].push_back(run(commands[i], settings, driver, nowhere));
            }
        }
        for (size_t i = 0; i < commands.size(); ++i) {
            summarize(costs[i], times, summaries[i]);
        }
    }
    close(nowhere);
    return summaries;
}

void print_costs(const char *name, const cost &spent) {
    printf("| %-44s | %8.2f | %8.2f | %8.2f | %8.0f |\n", name, spent.user, spent.system,
           spent.wall, spent.memory);
}

void print_ratio(const char *name, const cost &a, const cost &b) {
    printf("| %-44s | %8.2f | %8s | %8.2f | %8.2f |\n", name, a.user / b.user, "", a.wall / b.wall,
           a.memory / b.memory);
}

// A capture, beside the two displays that make most of the same requests.
void measure_captures(const std::string &tarncap, const std::string &tarncmd,
                      const std::string &driver) {
    const struct {
        const char *name;
        std::vector<std::string> settings;
    } hosts[] = {
        {"1,000 ports, 64 BDs, 20,000 MACs",
         {"BENCH_PORTS=1000", "BENCH_DOMAINS=64", "BENCH_MACS=313", "BENCH_VLAN_MODE=1"}},
        {"2,000 ports, 64 BDs, 40,000 MACs",
         {"BENCH_PORTS=2000", "BENCH_DOMAINS=64", "BENCH_MACS=626", "BENCH_VLAN_MODE=1"}},
    };
    for (const auto &host : hosts) {
        const std::vector<cost> costs =
            measure({{tarncap}, {tarncmd, "show port; show l2 all"}}, host.settings, driver, 20, 1);
        print_costs((std::string(host.name) + ": tarncap").c_str(), costs[0]);
        print_costs("show port; show l2 all", costs[1]);
        print_ratio("tarncap/(show port; show l2 all)", costs[0], costs[1]);
    }
}

} // namespace

int main(int argc, char *argv[]) {
    if (argc == 5 && strcmp(argv[1], "--captures") == 0) {
        measure_captures(argv[2], argv[3], argv[4]);
        return 0;
    }
    const int times = argc == 6 ? atoi(argv[5]) : 1;
    if (argc < 5 || argc > 6 || times < 1) {
        fputs("Usage: measure --captures TARNCAP TARNCMD DRIVER_LIBRARY\n"
              "       measure TARNCMD BARE ONE_REQUEST DRIVER_LIBRARY [TIMES]\n",
              stderr);
        return 2;
    }
    const std::string tool = argv[1];
    const std::string bare = argv[2];
    const std::string driver = argv[4];
    const shape shapes[] = {
        {"show port, 1,000 ports", {"BENCH_PORTS=1000"}, {"show", "port"}, "port", 300},
        {"show port, 10,000 ports", {"BENCH_PORTS=10000"}, {"show", "port"}, "port", 60},
        {"show port, 1,000 VLAN-mode ports, 64 BDs",
         {"BENCH_PORTS=1000", "BENCH_DOMAINS=64", "BENCH_VLAN_MODE=1"},
         {"show", "port"},
         "port",
         60},
        {"show l2 all, 20,000 MACs in 64 BDs",
         {"BENCH_DOMAINS=64", "BENCH_MACS=313"},
         {"show", "l2", "all"},
         "l2",
         60},
        {"show stats, 1,000 ports", {"BENCH_PORTS=1000"}, {"show", "stats"}, "stats", 300},
        {"show stats, 10,000 ports", {"BENCH_PORTS=10000"}, {"show", "stats"}, "stats", 60},
    };
    printf("| %-44s | %8s | %8s | %8s | %8s |\n", "", "user ms", "sys ms", "wall ms", "peak KiB");
    printf("|---|---|---|---|---|\n");
    for (const shape &measured : shapes) {
        command tarncmd = {tool};
        tarncmd.insert(tarncmd.end(), measured.tool_words.begin(), measured.tool_words.end());
        const command printing = {bare, "printf", measured.bare_word};
        const command writing = {bare, "write", measured.bare_word};
        const std::string expected = output_of(tarncmd, measured.settings, driver);
        if (expected != output_of(printing, measured.settings, driver) ||
            expected != output_of(writing, measured.settings, driver)) {
            fprintf(stderr, "measure: %s: the programs print different rows\n", measured.name);
            return 1;
        }
        const std::vector<cost> costs = measure({tarncmd, printing, writing}, measured.settings,
                                                driver, measured.rounds, times);
        print_costs((std::string(measured.name) + ": (a)").c_str(), costs[0]);
        print_costs("(b) bare, printf a row", costs[1]);
        print_costs("(c) bare, one write", costs[2]);
        print_ratio("(a)/(b)", costs[0], costs[1]);
        print_ratio("(a)/(c)", costs[0], costs[2]);
    }
    const std::vector<cost> costs =
        measure({{tool, "show", "version"}, {argv[3]}}, {}, driver, 300, times);
    print_costs("show version: (a)", costs[0]);
    print_costs("(b) one request in C", costs[1]);
    print_ratio("(a)/(b)", costs[0], costs[1]);
    return 0;
}
