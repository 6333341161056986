#include "capture/recorder.h"

#include "capture/capture.h"
#include "capture/driver_call.h"
#include "capture/pool.h"
#include "dpa/userspace/kxdpa_opcodes.h"
#include "host/host_file.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <tuple>
#include <vector>

namespace {

// Each byte of an answer takes at least two of the file, but for runs of equal ones.
constexpr size_t BYTES_LIMIT = HOST_FILE_LIMIT * 2;
constexpr size_t QUESTION_BYTES = 96, ANSWER_BYTES = 48; // roughly

// The input and the reply are nullptr where there is none.
struct question {
    uint16_t opcode;
    uint32_t argument;
    const byte_pool::item *input;

    bool operator<(const question &other) const {
        return std::tie(opcode, argument, input) <
               std::tie(other.opcode, other.argument, other.input);
    }
};

struct told_answer {
    int error;
    uint32_t status;
    std::optional<uint32_t> returned;
    const byte_pool::item *reply;

    bool operator<(const told_answer &other) const {
        return std::tie(error, status, returned, reply) <
               std::tie(other.error, other.status, other.returned, other.reply);
    }
};

struct recorded_question {
    question asked;
    std::vector<const told_answer *> told{}; // each time
};

override_rule rule_of(const question &asked, const told_answer &answer) {
    driver_answer told = {
        .error = answer.error, .status = answer.status, .returned = answer.returned};
    if (answer.reply != nullptr) {
        told.reply = bytes_of(*answer.reply);
    }
    std::optional<std::span<const uint8_t>> input;
    if (asked.input != nullptr) {
        input = bytes_of(*asked.input);
    }
    kxdpa_request request{};
    request.opcode = asked.opcode;
    request.arg = asked.argument;
    return rule_for(request, input, told);
}

void add_rules(const recorded_question &recorded, std::vector<override_rule> &rules) {
    std::map<const told_answer *, size_t> times;
    for (const told_answer *answer : recorded.told) {
        times[answer]++;
    }
    // Of answers that came equally often the one that came first.
    const told_answer *const usual = *std::max_element(
        recorded.told.begin(), recorded.told.end(),
        [&](const auto *one, const auto *other) { return times[one] < times[other]; });
    for (size_t time = 0; time < recorded.told.size() && rules.size() <= RULES_LIMIT; time++) {
        if (recorded.told[time] != usual) {
            rules.push_back(rule_of(recorded.asked, *recorded.told[time]));
            rules.back().only_time = static_cast<uint32_t>(time) + 1;
        }
    }
    rules.push_back(rule_of(recorded.asked, *usual));
}

struct recording {
    const volatile int *interrupted = nullptr;
    void (*leave)() = nullptr;
    byte_pool bytes{}; // of inputs and replies
    std::set<told_answer> answers{};
    std::vector<recorded_question> recorded{}; // in the order of coming
    std::map<question, size_t> places{};
    size_t kept_bytes = 0; // beside them, roughly
    bool too_large = false;
};

std::unique_ptr<recording> under_way;

void keep(recording &into, const question &asked, const driver_answer &told) {
    const auto [found, is_new] = into.places.try_emplace(asked, into.recorded.size());
    if (is_new) {
        into.recorded.push_back({asked});
        into.kept_bytes += QUESTION_BYTES;
    }
    const told_answer answer = {told.error, told.status, told.returned,
                                told.reply ? into.bytes.intern(*told.reply) : nullptr};
    const auto [kept, is_other] = into.answers.insert(answer);
    into.recorded[found->second].told.push_back(&*kept);
    into.kept_bytes += sizeof(void *) + (is_other ? ANSWER_BYTES : 0);
    into.too_large = into.bytes.bytes() + into.kept_bytes >= BYTES_LIMIT;
}

int record_call(kxdpa_request &record) {
    recording &into = *under_way;
    const kxdpa_request asked = record;
    const byte_pool::item *input = nullptr;
    if (!into.too_large && has_input(asked)) {
        input = into.bytes.intern(input_of(asked)); // which the driver may overwrite
    }
    driver_answer told = ask_driver(record);
    told.returned = odd_length(asked, told);
    if (!into.too_large) {
        keep(into, {asked.opcode, asked.arg, input}, told);
    }
    if (into.interrupted != nullptr && *into.interrupted != 0) {
        into.leave();
    }
    return told.error;
}

} // namespace

void recorder_start(const volatile int *interrupted, void (*leave)()) {
    under_way = std::make_unique<recording>();
    under_way->interrupted = interrupted;
    under_way->leave = leave;
    listen_to_calls(record_call);
}

std::string recorder_stop(host &recorded) {
    listen_to_calls(nullptr);
    const std::unique_ptr<recording> done = std::move(under_way);
    if (done == nullptr || done->recorded.empty()) {
        return "the driver was asked nothing";
    }
    std::vector<override_rule> &rules = recorded.overrides;
    for (const recorded_question &question : done->recorded) {
        if (done->too_large || rules.size() > RULES_LIMIT) {
            return TOO_LARGE;
        }
        add_rules(question, rules);
    }
    const auto tells_address = [](const override_rule &rule) {
        return rule.opcode == KXDPA_OP_SET_MANAGEMENT_IPV4;
    };
    if (std::any_of(rules.begin(), rules.end(), tells_address)) {
        recorded.management_address = ask_management_address();
    }
    return "";
}
