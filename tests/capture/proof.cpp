// The proof of a capture: on the captured host every display prints what it prints on the host
// itself, asks the same and gets the same statuses, and the capture of the capture is the same
// file.
//
//     capture_proof FIRST_SEED COUNT [FILE...]
//
// proves it on the host files, on the hosts that the transcripts among the files patch, and on so
// many hosts described at random. It prints how many hosts,
// command lines and requests these were, and exits with 0. What does not hold ends it, with a line
// on standard error that names the host and the command.
#include "capture/capture.h"
#include "host/host_file.h"
#include "sim/builtin_host.h"
#include "sim/host_programs.h"
#include "tests/capture/display_rows.h"
#include "tests/capture/tool_run.h"
#include "tests/host/random_host.h"
#include "tests/text.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

// All that a capture may ask. It stands here once more, as numbers, so that nothing gets onto the
// list by mistake.
const std::set<uint16_t> MAY_BE_ASKED = {
    2,   8,   9,   10,  11,  13,  15,   25,   42,   44,   45,   48,  49,  50,  52,  54,
    61,  63,  68,  75,  96,  122, 151,  153,  165,  171,  175,  177, 179, 193, 222, 256,
    275, 284, 286, 287, 298, 299, 306,  307,  382,  390,  391,  394, 399, 401, 407, 453,
    484, 511, 512, 513, 531, 536, 545,  547,  548,  549,  550,  573, 574, 592, 595, 598,
    617, 618, 619, 621, 623, 627, 628,  629,  630,  640,  689,  709, 728, 730, 811, 823,
    878, 880, 886, 931, 948, 987, 1012, 1026, 1033, 1084, 1126, 1128};

constexpr size_t SAMPLES_OF_A_FILE = 40;
constexpr size_t SAMPLES_OF_A_RANDOM_HOST = 4;

struct tally {
    uint64_t hosts = 0;
    std::set<std::string> rows;
    uint64_t lines = 0;
    uint64_t requests = 0;
    uint64_t left_out = 0;    // hosts that cannot be captured
    std::set<uint16_t> asked; // by captures
} done;

[[noreturn]] void give_up(const std::string &host, const std::string &what) {
    std::fprintf(stderr, "%s: %s\n", host.c_str(), what.c_str());
    _exit(1);
}

host parsed(const std::string &name, const std::string &text) {
    host described;
    std::string error;
    if (!parse_host(text, name, described, error))
        give_up(name, error + "\n" + text);
    return described;
}

// A host that can be asked, with its programs, as long as this lives.
struct live_host {
    model simulated;
    host_programs programs;
    live_host(const std::string &name, host described) : simulated(std::move(described)) {
        simulated.complain = [name](const std::string &line) { give_up(name, line); };
        std::string error;
        if (!programs.install(simulated.state, error))
            give_up(name, error);
    }
};

// Left out, and told in docs/capture.md: a driver that refuses this tool's version, answers that
// differ from time to time, and how the driver answers what is sent to it.
bool can_be_captured(const host &described) {
    const bool refuses_version =
        described.card.version_mismatch ||
        (!described.card.domain && described.refusal_status == KXDPA_STATUS_VERSION_MISMATCH);
    return !refuses_version && std::none_of(described.overrides.begin(), described.overrides.end(),
                                            [](const override_rule &rule) {
                                                return rule.only_time != 0 ||
                                                       !MAY_BE_ASKED.contains(rule.opcode);
                                            });
}

std::string capture_of(const std::string &name, live_host &live) {
    const std::string before = write_host(live.simulated.state);
    set_test_driver(driver_of(live.simulated));
    host captured;
    if (capture_host({}, "", captured) != capture_outcome::DONE)
        give_up(name, "the host cannot be captured");
    if (!captured.capture->whole)
        give_up(name, "not whole: " + captured.capture->cut->front());
    for (const asked_request &asked : requests_so_far()) {
        if (!MAY_BE_ASKED.contains(asked.opcode))
            give_up(name, "the capture asked opcode " + std::to_string(asked.opcode));
        done.asked.insert(asked.opcode);
    }
    if (write_host(live.simulated.state) != before)
        give_up(name, "the capture changed the host");
    captured.capture.reset();
    return write_host(captured);
}

std::string joined(const std::vector<std::string> &words) {
    std::string text;
    for (const std::string &word : words)
        text += " " + word;
    return text;
}

std::string described(const tool_run &run) {
    std::string text = run.text + "exit " + std::to_string(run.exit_value) + "\n";
    for (const asked_request &asked : run.requests) {
        text += "op " + std::to_string(asked.opcode) + " arg " + std::to_string(asked.argument) +
                " -> " + std::to_string(asked.status) + "\n";
    }
    return text;
}

std::vector<tool_run> run_all(live_host &live, const std::vector<display_line> &lines) {
    std::vector<tool_run> runs;
    const card_state card = live.simulated.state.card;
    for (const display_line &line : lines) {
        runs.push_back(run_tool(line.words, driver_of(live.simulated)));
        live.simulated.state.card = card; // "show version" writes a word of it back
        // Nobody sends what these two set in order to learn how a driver refuses it.
        for (asked_request &asked : runs.back().requests)
            if (asked.opcode == KXDPA_OP_SET_MANAGEMENT_IPV4 ||
                asked.opcode == KXDPA_OP_SET_VERSION_WORD)
                asked.status = 0;
    }
    return runs;
}

// The operator of a host whose driver says otherwise than its description types what he sees. What
// such a driver answers for anything else is out of reach.
std::vector<display_line> lines_for(const host &original, const host &captured, size_t samples) {
    const bool as_described = original.overrides.empty();
    return display_lines(as_described ? original : captured, as_described, samples);
}

void prove(const std::string &name, const host &original, size_t samples) {
    std::vector<display_line> lines;
    std::vector<tool_run> expected;
    std::string capture;
    {
        live_host live(name, original);
        capture = capture_of(name, live);
        lines = lines_for(original, parsed(name + ", captured", capture), samples);
        expected = run_all(live, lines);
    }
    live_host live(name, parsed(name + ", captured", capture));
    const std::vector<tool_run> seen = run_all(live, lines);
    for (size_t i = 0; i < lines.size(); i++) {
        if (expected[i] != seen[i]) {
            give_up(name, "tarncmd" + joined(lines[i].words) + " on the host:\n" +
                              described(expected[i]) + "on its capture:\n" + described(seen[i]) +
                              capture);
        }
        done.rows.insert(lines[i].row);
        done.requests += seen[i].requests.size();
    }
    const std::string again = capture_of(name, live);
    if (again != capture)
        give_up(name, "the capture:\n" + capture + "the capture of the capture:\n" + again);
    done.hosts++;
    done.lines += lines.size();
}

std::string text_of(const std::string &path) {
    std::string text;
    std::string error;
    if (!read_host_file(path, text, error))
        give_up(path, error);
    return text;
}

void prove_captured(const std::string &name, const host &described, size_t samples) {
    if (can_be_captured(described))
        prove(name, described, samples);
    else
        done.left_out++;
}

// The transcripts patch host files, many of them with a driver that misbehaves.
void prove_transcript(const std::filesystem::path &path) {
    const std::filesystem::path hosts = path.parent_path().parent_path() / "hosts";
    std::ifstream lines(path);
    std::string of_file(builtin_host_text());
    std::string of_case = of_file;
    bool in_cases = false;
    std::set<std::string> proven;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("case ")) {
            in_cases = true;
            of_case = of_file;
        } else if (line.starts_with("host ")) {
            (in_cases ? of_case : of_file) = text_of(hosts / line.substr(5));
        } else if (line.starts_with("patch ") && proven.insert(line).second) {
            const std::string patch =
                line.ends_with(".json") ? text_of(hosts / line.substr(6)) : line.substr(6);
            const std::string name = path.filename().string() + ": " + line;
            prove_captured(name, parsed(name, patch_host(of_case, patch)), SAMPLES_OF_A_FILE);
        }
    }
}

} // namespace

int main(int argc, char *argv[]) {
    if (argc < 3) {
        std::fputs("Usage: capture_proof FIRST_SEED COUNT [FILE...]\n", stderr);
        return 2;
    }
    prove("built-in host", parsed("built-in host", std::string(builtin_host_text())),
          SAMPLES_OF_A_FILE);
    for (int i = 3; i < argc; i++) {
        const std::filesystem::path path = argv[i];
        if (path.extension() == ".txt")
            prove_transcript(path);
        else
            prove_captured(path, parsed(path, text_of(path)), SAMPLES_OF_A_FILE);
    }
    const auto first_seed = static_cast<uint32_t>(std::strtoul(argv[1], nullptr, 0));
    const auto count = static_cast<uint32_t>(std::strtoul(argv[2], nullptr, 0));
    for (uint32_t seed = first_seed; seed < first_seed + count; seed++) {
        prove_captured("random host " + std::to_string(seed),
                       random_host(seed, {"capture", "agent", "overrides"}),
                       SAMPLES_OF_A_RANDOM_HOST);
    }
    if (done.asked != MAY_BE_ASKED)
        give_up("all hosts", "no capture asked some of what may be asked");
    std::printf(
        "capture: %llu hosts (%llu that change or refuse the version left out), %zu rows in "
        "%llu command lines, %llu requests\n",
        static_cast<unsigned long long>(done.hosts), static_cast<unsigned long long>(done.left_out),
        done.rows.size(), static_cast<unsigned long long>(done.lines),
        static_cast<unsigned long long>(done.requests));
    return 0;
}
