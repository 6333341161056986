#include "capture/capture.h"

#include "capture/differences.h"
#include "capture/lines.h"
#include "capture/memory.h"
#include "dpa/command/management_ip.h"
#include "dpa/userspace/kxdpa_indirect.h"
#include "handlers/card/card_record.h"
#include "sim/answer.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <map>
#include <optional>

namespace {

constexpr const char *OVERRIDES = "overrides";
constexpr const char *MANAGEMENT_ADDRESS = "management_address";

std::string now_in_utc() {
    const time_t now = std::time(nullptr);
    tm parts{};
    char text[] = "YYYY-MM-DDThh:mm:ssZ.....";
    const size_t length =
        std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", gmtime_r(&now, &parts));
    return {text, length};
}

// "show card" asks for these with the room that the text before has left, which may cut them.
constexpr struct {
    kxdpa_opcode opcode;
    std::optional<std::string> card_state::*text;
} CUT_TEXTS[] = {{KXDPA_OP_SWITCH_NAME, &card_state::switch_name},
                 {KXDPA_OP_SWITCH_ALIAS, &card_state::switch_alias},
                 {KXDPA_OP_SWITCH_UUID, &card_state::switch_uuid}};

// The whole text is described where the driver cuts it as a described host does.
void ask_whole_texts(const driver_memory &memory, host &described) {
    const card_state shown = described.card;
    for (const auto &[opcode, text] : CUT_TEXTS) {
        char whole[KX_CARD_NAME_CAPACITY] = {};
        uint32_t capacity = sizeof whole;
        kx_dpa_get_variable(opcode, 0, whole, &capacity);
    }
    for (const auto &[opcode, text] : CUT_TEXTS) {
        if (!is_answered_alike(memory, described, opcode)) {
            described.card.*text = shown.*text;
        }
    }
}

using opcode_tallies = std::map<uint16_t, opcode_tally>;

bool is_always_refused(const opcode_tallies &tallies, kxdpa_opcode opcode) {
    const auto found = tallies.find(opcode);
    return found != tallies.end() && found->second.told == 0;
}

// The status that most opcodes refuse most with. An opcode that refuses all its many questions with
// another one takes a single rule.
uint32_t usual_refusal(const opcode_tallies &tallies) {
    const auto less = [](const auto &one, const auto &other) { return one.second < other.second; };
    std::map<uint32_t, uint32_t> opcodes = {{HOST_STATUS_NOT_FOUND, 0}};
    for (const auto &[opcode, tally] : tallies) {
        const auto &counts = tally.refusals;
        if (!counts.empty()) {
            opcodes[std::max_element(counts.begin(), counts.end(), less)->first]++;
        }
    }
    const auto most = std::max_element(opcodes.begin(), opcodes.end(), less);
    return most->second > opcodes[HOST_STATUS_NOT_FOUND] ? most->first : HOST_STATUS_NOT_FOUND;
}

std::vector<refused_opcode> refused_of(const opcode_tallies &tallies) {
    std::vector<refused_opcode> refused;
    for (const auto &[opcode, tally] : tallies) {
        if (!tally.walks && tally.told != tally.questions) {
            refused.push_back({opcode, tally.questions - tally.told});
        }
    }
    return refused;
}

// What is refused throughout is told as that, and not thing by thing.
void settle(const opcode_tallies &tallies, host &described) {
    described.refusal_status = usual_refusal(tallies);
    if (is_always_refused(tallies, KXDPA_OP_PORT_STATISTICS)) {
        described.counters.traffic.clear();
    }
    if (is_always_refused(tallies, KXDPA_OP_DROP_COUNTERS)) {
        described.counters.drops.clear();
    }
    settle_drops(described, stranger_to(described));
    settle_l2(described);
}

template <typename T> std::optional<std::vector<T>> unless_empty(std::vector<T> list) {
    return list.empty() ? std::nullopt : std::optional(std::move(list));
}

} // namespace

std::set<std::string> captured_keys() {
    std::set<std::string> keys = displayed_keys();
    keys.insert({OVERRIDES, MANAGEMENT_ADDRESS});
    return keys;
}

std::string capture_host(const capture_request &asked, const std::string &version,
                         host &described) {
    const auto is_asked = [&](const char *key) {
        return asked.keys.empty() || asked.keys.contains(key);
    };
    capture_note &note = described.capture.emplace();
    note.version = version;
    note.time = now_in_utc();
    note.keys = unless_empty(std::vector<std::string>(asked.keys.begin(), asked.keys.end()));
    driver_memory memory(described, asked);
    if (kx_dpa_api_init() != 0) {
        return "Error initializing kx_dpa_api_init()";
    }
    uint32_t domain = 0;
    if (kx_dpa_get(KXDPA_OP_CARD_DOMAIN, 0, &domain) == KXDPA_STATUS_VERSION_MISMATCH) {
        kx_dpa_api_exit();
        return "Cannot execute tarncmd: tarncmd utility version does not match the running HMX "
               "version.";
    }
    run_displays(asked.keys, described, memory);
    if (is_asked("card")) {
        ask_whole_texts(memory, described);
    }
    kx_dpa_api_exit();
    const opcode_tallies tallies = memory.tallies();
    if (std::all_of(tallies.begin(), tallies.end(),
                    [](const auto &tally) { return tally.second.told == 0; })) {
        return "tarncap: nothing is written: the driver refuses everything; see with "
               "\"tarncmd show card\" whether the HMX runs, and ask again";
    }
    memory.learn_refusals();
    settle(tallies, described);
    if (is_asked(OVERRIDES)) {
        described.overrides = differences(memory, described);
    }
    if (is_asked(MANAGEMENT_ADDRESS)) {
        described.management_address = ask_management_address();
    }
    note.cut = unless_empty(memory.cut());
    note.whole = !note.cut;
    note.refused = unless_empty(refused_of(tallies));
    return "";
}

std::vector<std::string> report_of(const capture_note &capture, bool by_opcode) {
    std::vector<std::string> lines;
    for (const std::string &why : capture.cut.value_or(std::vector<std::string>())) {
        lines.push_back("not whole: " + why);
    }
    uint64_t sum = 0;
    std::string opcodes;
    for (const auto &[opcode, count] : capture.refused.value_or(std::vector<refused_opcode>())) {
        sum += count;
        opcodes += (opcodes.empty() ? ": " : ", ") + std::to_string(count) + " of opcode " +
                   std::to_string(opcode);
    }
    if (sum != 0) {
        lines.push_back(std::to_string(sum) +
                        (sum == 1 ? " thing asked about does" : " things asked about do") +
                        " not exist, which is usual" + (by_opcode ? opcodes : ""));
    }
    return lines;
}

std::optional<std::string> ask_management_address() {
    // Without the program the shell would complain. What the shell prints is known even where
    // nobody may wait for it, its exit value is not.
    FILE *const path = popen("command -v esxcfg-advcfg 2>/dev/null", "r");
    const bool has_program = path != nullptr && std::fgetc(path) != EOF;
    if (path != nullptr) {
        pclose(path);
    }
    if (!has_program) {
        return std::nullopt;
    }
    char address[KX_MANAGEMENT_IP_SIZE];
    kx_dpa_platform_read_management_ip(address);
    return address;
}
