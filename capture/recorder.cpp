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

class recorder {
public:
    recorder(const volatile int *interrupted, void (*leave)())
        : interrupted_(interrupted), leave_(leave) {
    }

    int call(kxdpa_request &record) {
        const kxdpa_request asked = record;
        const byte_pool::item *input = nullptr;
        too_large_ |= bytes_.bytes() + kept_bytes_ >= BYTES_LIMIT;
        if (!too_large_ && has_input(asked)) {
            input = bytes_.intern(input_of(asked)); // which the driver may overwrite
        }
        driver_answer told = ask_driver(record);
        told.returned = odd_length(asked, told);
        if (!too_large_) {
            keep({asked.opcode, asked.arg, input}, told);
        }
        if (interrupted_ != nullptr && *interrupted_ != 0) {
            leave_();
        }
        return told.error;
    }

    bool is_too_large() const {
        return too_large_;
    }

    // None for more than a file holds.
    std::vector<override_rule> rules() {
        std::vector<override_rule> rules;
        for (const recorded_question &recorded : recorded_) {
            add_rules(recorded, rules);
            too_large_ |= rules.size() > RULES_LIMIT;
        }
        return too_large_ ? std::vector<override_rule>() : rules;
    }

private:
    void keep(const question &asked, const driver_answer &told) {
        const auto [found, is_new] = places_.try_emplace(asked, recorded_.size());
        if (is_new) {
            recorded_.push_back({asked});
            kept_bytes_ += QUESTION_BYTES;
        }
        const told_answer answer = {told.error, told.status, told.returned,
                                    told.reply ? bytes_.intern(*told.reply) : nullptr};
        const auto [kept, is_other] = answers_.insert(answer);
        recorded_[found->second].told.push_back(&*kept);
        kept_bytes_ += sizeof(void *) + (is_other ? ANSWER_BYTES : 0);
    }

    byte_pool bytes_; // of inputs and replies
    std::set<told_answer> answers_;
    std::vector<recorded_question> recorded_; // in the order of coming
    std::map<question, size_t> places_;
    size_t kept_bytes_ = 0; // beside them, roughly
    bool too_large_ = false;
    const volatile int *interrupted_;
    void (*leave_)();
};

std::unique_ptr<recorder> under_way;

} // namespace

void recorder_start(const volatile int *interrupted, void (*leave)()) {
    under_way = std::make_unique<recorder>(interrupted, leave);
    listen_to_calls([](kxdpa_request &record) { return under_way->call(record); });
}

std::optional<host> recorder_stop(bool *too_large) {
    listen_to_calls(nullptr);
    const std::unique_ptr<recorder> done = std::move(under_way);
    host recorded;
    if (done != nullptr) {
        recorded.overrides = done->rules();
    }
    *too_large = done != nullptr && done->is_too_large();
    if (recorded.overrides.empty()) {
        return std::nullopt;
    }
    const bool told_address = std::any_of(
        recorded.overrides.begin(), recorded.overrides.end(),
        [](const override_rule &rule) { return rule.opcode == KXDPA_OP_SET_MANAGEMENT_IPV4; });
    if (told_address) {
        recorded.management_address = ask_management_address();
    }
    return recorded;
}
