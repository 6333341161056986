#include "capture/recorder.h"

#include "capture/capture.h"
#include "capture/driver_call.h"
#include "capture/pool.h"
#include "capture/rule.h"
#include "dpa/userspace/kxdpa_opcodes.h"
#include "host/host_file.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <vector>

namespace {

// Each byte of an answer takes at least two of the file, but for runs of equal ones.
constexpr size_t BYTES_LIMIT = HOST_FILE_LIMIT * 2;
constexpr size_t RULES_LIMIT = HOST_FILE_LIMIT / 32; // they take more bytes than that each

// A question: opcode, argument and input, in bytes of the pool.
struct question_head {
    uint32_t opcode;
    uint32_t argument;
    uint32_t has_input;
};

struct answer_head {
    int error;
    uint32_t status;
    uint32_t has_reply;
    uint32_t has_returned;
    uint32_t returned;
};

// So many times in a row the same answer.
struct run {
    const byte_pool::item *answer;
    uint32_t times;
};

struct recorded_question {
    const byte_pool::item *asked;
    std::vector<run> runs;
};

template <typename Head>
std::vector<uint8_t> with_head(const Head &head, std::span<const uint8_t> bytes) {
    const auto *start = reinterpret_cast<const uint8_t *>(&head);
    std::vector<uint8_t> all(start, start + sizeof head);
    all.insert(all.end(), bytes.begin(), bytes.end());
    return all;
}

class recorder : public call_listener {
public:
    recorder(const volatile int *interrupted, void (*leave)())
        : interrupted_(interrupted), leave_(leave) {
    }

    int call(kxdpa_request &record) override {
        const kxdpa_request asked = record;
        const std::vector<uint8_t> question = with_head(
            question_head{asked.opcode, asked.arg, has_input(asked) ? 1U : 0U}, input_of(asked));
        driver_answer told = ask_driver(record);
        told.returned = odd_length(asked, told);
        if (questions_.bytes() + answers_.bytes() + run_bytes_ < BYTES_LIMIT) {
            keep(question, told);
        } else {
            too_large_ = true;
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
    void keep(std::span<const uint8_t> question, const driver_answer &told) {
        const byte_pool::item *asked = questions_.intern(question);
        if (asked->second == recorded_.size()) {
            recorded_.push_back({asked, {}});
        }
        const byte_pool::item *answer = answers_.intern(
            with_head(answer_head{told.error, told.status, told.reply ? 1U : 0U,
                                  told.returned ? 1U : 0U, told.returned.value_or(0)},
                      told.reply.value_or(std::span<const uint8_t>())));
        std::vector<run> &so_far = recorded_[asked->second].runs;
        if (!so_far.empty() && so_far.back().answer == answer) {
            so_far.back().times++;
        } else {
            so_far.push_back({answer, 1});
            run_bytes_ += sizeof(run);
        }
    }

    static void add_rules(const recorded_question &recorded, std::vector<override_rule> &rules) {
        std::map<const byte_pool::item *, uint64_t> times;
        for (const auto &[answer, count] : recorded.runs) {
            times[answer] += count;
        }
        // Of answers that came equally often the one that came first.
        const byte_pool::item *usual = recorded.runs.front().answer;
        for (const auto &[answer, count] : recorded.runs) {
            usual = times[answer] > times[usual] ? answer : usual;
        }
        uint32_t time = 0;
        for (const auto &[answer, count] : recorded.runs) {
            for (uint32_t i = 0; i < count && answer != usual && rules.size() <= RULES_LIMIT; i++) {
                rules.push_back(rule_of(*recorded.asked, *answer));
                rules.back().only_time = time + i + 1;
            }
            time += count;
        }
        rules.push_back(rule_of(*recorded.asked, *usual));
    }

    static override_rule rule_of(const byte_pool::item &question, const byte_pool::item &answer) {
        question_head asked{};
        std::memcpy(&asked, question.first.data(), sizeof asked);
        answer_head head{};
        std::memcpy(&head, answer.first.data(), sizeof head);
        driver_answer told = {.error = head.error, .status = head.status};
        if (head.has_reply != 0) {
            told.reply = bytes_of(answer).subspan(sizeof head);
        }
        if (head.has_returned != 0) {
            told.returned = head.returned;
        }
        kxdpa_request request{};
        request.opcode = static_cast<uint16_t>(asked.opcode);
        request.arg = asked.argument;
        const auto input = bytes_of(question).subspan(sizeof asked);
        return rule_for(request, asked.has_input != 0 ? std::optional(input) : std::nullopt, told);
    }

    byte_pool questions_, answers_;
    std::vector<recorded_question> recorded_; // by number
    size_t run_bytes_ = 0;
    bool too_large_ = false;
    const volatile int *interrupted_;
    void (*leave_)();
};

std::unique_ptr<recorder> under_way;

} // namespace

void recorder_start(const volatile int *interrupted, void (*leave)()) {
    under_way = std::make_unique<recorder>(interrupted, leave);
    listen_to_calls(under_way.get());
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
