// The proof of a capture: on the captured host every display prints what it prints on the host
// itself, asks the same and gets the same statuses, and the capture of the capture is the same
// file.
//
//     capture_proof FIRST_SEED COUNT [FILE...]
//
// proves it on the host files, on the hosts that the transcripts among the files patch, and on so
// many hosts described at random, and on drivers that no description makes; with a COUNT below 100
// on fewer of these. It prints how many hosts,
// command lines and requests these were, and exits with 0. What does not hold ends it, with a line
// on standard error that names the host and the command.
#include "capture/capture.h"
#include "frontend/hmx_cmd.h"
#include "host/host_file.h"
#include "host/keys.h"
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
#include <map>
#include <random>
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
    const uint32_t debug_word = kx_debug_print_kxdump;
    set_test_driver(driver_of(live.simulated));
    host captured;
    if (const std::string why = capture_host({}, "", captured); !why.empty())
        give_up(name, "the host cannot be captured: " + why);
    if (!captured.capture->whole)
        give_up(name, "not whole: " + captured.capture->cut->front());
    for (const asked_request &asked : requests_so_far()) {
        if (!MAY_BE_ASKED.contains(asked.opcode))
            give_up(name, "the capture asked opcode " + std::to_string(asked.opcode));
        done.asked.insert(asked.opcode);
    }
    if (write_host(live.simulated.state) != before)
        give_up(name, "the capture changed the host");
    if (kx_debug_print_kxdump != debug_word || kx_debug_print_dpa_main != debug_word)
        give_up(name, "the capture changed what the tool traces");
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

// Also on the lines typed besides. Returns how many overrides the capture has.
size_t prove(const std::string &name, const host &original, size_t samples,
             const std::vector<std::string> &typed = {}) {
    std::vector<display_line> lines;
    std::vector<tool_run> expected;
    std::string capture;
    {
        live_host live(name, original);
        capture = capture_of(name, live);
        lines = lines_for(original, parsed(name + ", captured", capture), samples);
        for (const std::string &line : typed)
            lines.push_back({line, {line}});
        expected = run_all(live, lines);
    }
    live_host live(name, parsed(name + ", captured", capture));
    const size_t overrides = live.simulated.state.overrides.size();
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
    return overrides;
}

// For a display of a host that needs no overrides, the keys that it asks for are enough.
void prove_by_keys(const std::string &name, const host &original) {
    live_host live(name, original);
    std::set<std::string> keys;
    live.simulated.asked = [&](const answer &form) {
        if (form.key != nullptr)
            keys.insert(form.key);
    };
    struct shown {
        display_line line;
        tool_run run;
    };
    std::map<std::set<std::string>, std::vector<shown>> by_keys;
    for (const display_line &line : display_lines(original, false, SAMPLES_OF_A_RANDOM_HOST)) {
        keys.clear();
        const tool_run run = run_all(live, {line}).front();
        if (!keys.empty())
            by_keys[keys].push_back({line, run});
    }
    for (const auto &[asked, lines] : by_keys) {
        set_test_driver(driver_of(live.simulated));
        host captured;
        capture_host({.keys = asked}, "", captured);
        write_options options = {.keys = asked};
        options.keys.insert({"capture", "refusal_status"});
        const std::string text = write_host(captured, options);
        live_host part(name, parsed(name + ", captured in part", text));
        for (const auto &[line, expected] : lines) {
            const tool_run seen = run_all(part, {line}).front();
            if (seen != expected) {
                give_up(name, "tarncmd" + joined(line.words) + " on the host:\n" +
                                  described(expected) + "on a part of its capture:\n" +
                                  described(seen) + text);
            }
        }
    }
}

std::string text_of(const std::string &path) {
    std::string text;
    std::string error;
    if (!read_host_file(path, text, error))
        give_up(path, error);
    return text;
}

void prove_captured(const std::string &name, const host &described, size_t samples) {
    if (!can_be_captured(described)) {
        done.left_out++;
        return;
    }
    if (prove(name, described, samples) == 0 && described.overrides.empty())
        prove_by_keys(name, described);
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

// --- Drivers that answer otherwise than a described host by itself ---

// The built-in host with something changed; its capture has no more overrides than these.
const struct {
    const char *patch;
    std::vector<std::string> lines;
    size_t overrides;
} ODD_DRIVERS[] = {
    {R"({"drops_of_ports_alone": true})",
     {"show port-drops ingress ltl 900", "show port-drops egress ltl 4000",
      "show port-drops ltl 7"},
     0},
    // Steps from ports that are there alone.
    {R"({"overrides": [{"opcode": 25, "argument": 0, "status": 61}, {"opcode": 25, "argument": 17, "status": 61},
        {"opcode": 25, "argument": 18, "status": 61}]})",
     {},
     3},
    // VLAN 4095 in the list, which lookups find.
    {R"({"vlans": "1,10,4095", "overrides": [{"opcode": 621, "reply": "02000000"}]})",
     {"show vlan 4095", "show l2 4095"},
     64},
    // An internal LTL with a record that no walk comes to, and one with drops.
    {R"({"overrides": [{"opcode": 44, "argument": "0x2000005", "reply": "05000000,2000001c,00*1140"},
        {"opcode": 511, "argument": 9, "reply": "01,00*7,22,00*7,01,00*500"}]})",
     {"show port-drops ltl 5", "show port-drops ltl 9"},
     2},
    // Lookups find a bridge domain that no walk names, with addresses of its own.
    {R"({"overrides": [{"opcode": 621, "reply": "4d000000"}, {"opcode": 689, "reply": "4d000000"},
        {"opcode": 630, "reply": "4d000000"}, {"opcode": 629, "reply": "4d000000"},
        {"opcode": 15, "argument": 77, "in": "00*6", "reply": "00*16,0200,00*4,01,00*21"},
        {"opcode": 15, "argument": 77, "status": 61},
        {"opcode": 48, "argument": 77, "reply": "4d,00*3,4d,00*40,6f6464,00*200"}]})",
     {"show l2 10", "show l2 bd-name web", "show get-mac bd-name web", "show segment 5001"},
     60},
    // The slots name an LTL that no table does, whose addresses age.
    {R"({"overrides": [{"opcode": 573, "argument": 3, "in": "00*52", "reply":
        "04000000,02000000,84030000,00000000,01000000,09000000,020000000099,0800,00*20"},
        {"opcode": 222, "argument": 900, "reply": "00*80,04000000"},
        {"opcode": 287, "argument": 900, "reply": "01000000"}]})",
     {},
     12},
    // Refuses with a status of its own throughout.
    {R"({"refusal_status": 22})", {}, 0},
    {R"({"refusal_status": 5, "overrides": [{"opcode": 68, "status": 9}, {"opcode": 122, "argument": 20, "status": 9}]})",
     {},
     2},
};

// Of the opcodes only every so many.
void prove_odd_drivers(size_t every) {
    const std::string plain(builtin_host_text());
    for (const auto &[patch, lines, most] : ODD_DRIVERS) {
        const size_t overrides =
            prove(patch, parsed(patch, patch_host(plain, patch)), SAMPLES_OF_A_FILE, lines);
        if (overrides > most)
            give_up(patch, std::to_string(overrides) + " overrides");
    }
    // What a display presets stays where a driver succeeds without data.
    size_t turn = 0;
    for (const uint16_t opcode : MAY_BE_ASKED) {
        if (turn++ % every != 0)
            continue;
        for (const char *answer :
             {"\"reply\": \"\"", "\"status\": 9", "\"reply\": \"01020304,81*60\""}) {
            const std::string patch =
                "{\"overrides\": [{\"opcode\": " + std::to_string(opcode) + ", " + answer + "}]}";
            prove(patch, parsed(patch, patch_host(plain, patch)), SAMPLES_OF_A_RANDOM_HOST);
        }
    }
}

// A driver that answers some requests with anything.
override_rule random_rule(std::mt19937 &random, const std::vector<uint16_t> &opcodes) {
    const auto below = [&](uint32_t limit) { return random() % limit; };
    override_rule rule;
    rule.opcode = opcodes[below(static_cast<uint32_t>(opcodes.size()))];
    if (below(3) != 0)
        rule.argument = below(4) << (below(2) * 24) | below(60);
    if (below(3) == 0) {
        rule.status = below(100);
    } else {
        rule.reply.emplace(below(4) == 0 ? below(1200) : below(64));
        for (uint8_t &byte : *rule.reply)
            byte = static_cast<uint8_t>(below(3) == 0 ? random() : below(3));
    }
    if (below(6) == 0)
        rule.returned = below(100);
    return rule;
}

void prove_random_driver(uint32_t seed) {
    std::mt19937 random(seed);
    host described = random_host(seed, {"capture", "agent", "overrides"});
    const std::vector<uint16_t> opcodes(MAY_BE_ASKED.begin(), MAY_BE_ASKED.end());
    for (uint32_t count = 1 + random() % 12; count > 0; count--)
        described.overrides.push_back(random_rule(random, opcodes));
    prove_captured("random driver " + std::to_string(seed), described, SAMPLES_OF_A_RANDOM_HOST);
}

// Trunks with many VLANs each, whose private VLANs the driver refuses but for some of them.
void prove_refused_alike(uint32_t ports, uint32_t vlans) {
    std::string text = R"({"overrides": [{"opcode": 165, "argument": 20, "status": 7}, )"
                       R"({"opcode": 165, "status": 5}], "bridge_domains": [)";
    for (uint32_t vlan = 1; vlan <= vlans; vlan++) {
        const std::string number = std::to_string(vlan);
        text += (vlan == 1 ? "{\"index\": " : ", {\"index\": ") + number + ", \"vlan\": " + number +
                ", \"swbd\": " + number + ", \"name\": \"v" + number + "\"}";
    }
    text += R"(], "ports": [)";
    std::string addresses;
    for (uint32_t i = 0; i < ports; i++) {
        const std::string separator = i == 0 ? "" : ", ";
        const std::string ltl = std::to_string(KX_LTL_FIRST_EXTERNAL + i);
        const std::string range = "\"1-" + std::to_string(vlans) + "\"";
        text += separator + "{\"ltl\": " + ltl + ", \"vlan_mode\": true, \"vlans\": " + range +
                ", \"forwards_on\": " + range + "}";
        char mac[32];
        std::snprintf(mac, sizeof mac, "02:00:00:00:%02x:%02x", (i + 1) >> 8, (i + 1) & 0xFF);
        addresses += separator + "{\"mac\": \"" + mac + "\", \"ltl\": " + ltl + "}";
    }
    text += R"(], "l2": {"tables": [{"bridge_domain": 1, "entries": [)" + addresses + "]}]}}";
    const std::string name = std::to_string(ports) + " ports x " + std::to_string(vlans) + " VLANs";
    const size_t overrides = prove(name, parsed(name, text), 2);
    if (overrides != 2)
        give_up(name, std::to_string(overrides) + " overrides");
}

} // namespace

int main(int argc, char *argv[]) {
    if (argc < 3) {
        std::fputs("Usage: capture_proof FIRST_SEED COUNT [FILE...]\n", stderr);
        return 2;
    }
    prove_by_keys("built-in host", parsed("built-in host", std::string(builtin_host_text())));
    prove("built-in host", parsed("built-in host", std::string(builtin_host_text())),
          SAMPLES_OF_A_FILE);
    for (const std::string &name : captured_keys()) {
        if (std::none_of(HOST_KEYS.keys.begin(), HOST_KEYS.keys.end(),
                         [&](const key &known) { return known.name == name; }))
            give_up(name, "is no key of the host file");
    }
    const auto first_seed = static_cast<uint32_t>(std::strtoul(argv[1], nullptr, 0));
    const auto count = static_cast<uint32_t>(std::strtoul(argv[2], nullptr, 0));
    constexpr uint32_t OF_A_WHOLE_PROOF = 100;
    const bool whole = count >= OF_A_WHOLE_PROOF;
    prove_odd_drivers(whole ? 1 : 10);
    prove_refused_alike(whole ? 506 : 50, 64);
    prove_refused_alike(9, whole ? 3641 : 200);
    for (int i = 3; i < argc; i++) {
        const std::filesystem::path path = argv[i];
        if (path.extension() == ".txt")
            prove_transcript(path);
        else
            prove_captured(path, parsed(path, text_of(path)), SAMPLES_OF_A_FILE);
    }
    for (uint32_t seed = first_seed; seed < first_seed + count; seed++) {
        prove_captured("random host " + std::to_string(seed),
                       random_host(seed, {"capture", "agent", "overrides"}),
                       SAMPLES_OF_A_RANDOM_HOST);
        prove_random_driver(seed);
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
