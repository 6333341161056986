#include "capture/differences.h"

#include "capture/rule.h"
#include "host/host_file.h"
#include "sim/model.h"
#include "sim/transfer.h"

#include <algorithm>
#include <map>
#include <optional>

namespace {

// More rules make a file that is too large for anybody, whatever they say.
constexpr size_t RULES_LIMIT = HOST_FILE_LIMIT / 32;

// The bytes that zeros stand behind.
bool is_same(std::span<const uint8_t> told, std::span<const uint8_t> answered) {
    return told.size() <= answered.size() &&
           std::equal(told.begin(), told.end(), answered.begin()) &&
           std::all_of(answered.begin() + static_cast<ptrdiff_t>(told.size()), answered.end(),
                       [](uint8_t byte) { return byte == 0; });
}

class comparison {
public:
    explicit comparison(host &described) : described_(described) {
    }

    bool is_alike(const remembered_row &row, const remembered_step &step) {
        const kept_answer &told = step.told();
        ours_.request = row.request;
        ours_.input = step.input();
        ours_.reply.clear();
        ours_.status = KXDPA_STATUS_SUCCESS;
        ours_.returned.reset();
        ours_.places = &places_;
        answer_as_host(described_, row.form, ours_);
        const reply_place to = reply_place_of(ours_.request);
        const size_t count = std::min<size_t>(ours_.reply.size(), to.room + row.form.behind);
        if (ours_.status != told.status) {
            return false;
        }
        if (to.returned != nullptr) {
            const size_t unchanged = ours_.is_told() ? count : *to.returned;
            if (told.returned != ours_.returned.value_or(static_cast<uint32_t>(unchanged))) {
                return false;
            }
        }
        if (told.replied == 0 || !ours_.is_told()) {
            return told.replied == 0 && count == 0;
        }
        if (is_same(step.reply(), std::span(ours_.reply).first(count))) {
            return true;
        }
        theirs_.reply.assign(step.reply().begin(), step.reply().end());
        return row.form.alike != nullptr && row.form.alike(theirs_, ours_);
    }

private:
    host &described_;
    walk_places places_;
    exchange ours_, theirs_;
};

override_rule rule_of(const remembered_row &row, const remembered_step &step) {
    const kept_answer &told = step.told();
    kxdpa_request asked = row.request;
    const reply_place to = reply_place_of(asked);
    driver_answer answer = {.status = told.status};
    std::vector<uint8_t> reply(step.reply().begin(), step.reply().end());
    if (told.replied != 0) {
        reply.resize(std::max<size_t>(reply.size(), to.room));
    }
    // One that succeeds and leaves the buffers alone replies with no bytes.
    if (told.replied != 0 || told.status == KXDPA_STATUS_SUCCESS) {
        answer.reply = reply;
    }
    answer.returned = told.returned;
    answer.returned = odd_length(asked, answer);
    return rule_for(asked, has_input(asked) ? std::optional(step.input()) : std::nullopt, answer);
}

// The status whose one rule, behind those for all other questions, takes fewer rules than one for
// each of `different` does; none when no status does. `refusals` are counts of questions by status.
template <typename Counts>
std::optional<uint32_t> best_refused_alike(const Counts &refusals, size_t questions,
                                           size_t different) {
    const auto most =
        std::max_element(refusals.begin(), refusals.end(), [](const auto &one, const auto &other) {
            return one.second < other.second;
        });
    if (most == refusals.end()) {
        return std::nullopt;
    }
    const size_t rules = questions - static_cast<size_t>(most->second) + 1;
    const bool is_shorter = rules < different || (rules == 1 && different == 1);
    return is_shorter ? std::optional(most->first) : std::nullopt;
}

struct opcode_tally {
    size_t questions = 0;
    size_t different = 0;
    std::optional<uint32_t> refused_alike{}; // the status of the rule for all of them
};

using tallies = std::map<uint16_t, opcode_tally>;

tallies tally_differences(const driver_memory &memory, comparison &compared) {
    tallies by_opcode;
    memory.each_row([&](const remembered_row &row) {
        opcode_tally &tally = by_opcode[row.request.opcode];
        tally.questions += row.steps.size();
        for (const remembered_step &step : row.steps) {
            tally.different += compared.is_alike(row, step) ? 0 : 1;
        }
    });
    for (auto &[opcode, tally] : by_opcode) {
        tally.refused_alike =
            best_refused_alike(memory.refusals(opcode), tally.questions, tally.different);
    }
    return by_opcode;
}

// The rules for the questions of a row that are still to be answered: one for each, or one for the
// argument behind those for all its other questions.
void add_rules(const remembered_row &row, const std::vector<remembered_step> &open,
               std::vector<override_rule> &rules) {
    std::map<uint32_t, size_t> refusals;
    for (const remembered_step &step : open) {
        if (const auto status = row.refusal(step)) {
            refusals[*status]++;
        }
    }
    std::optional<uint32_t> alike;
    if (has_input(row.request) && open.size() > 1) {
        alike = best_refused_alike(refusals, row.steps.size(), open.size());
    }
    for (const remembered_step &step : alike ? row.steps : std::span(open)) {
        if (!alike || row.refusal(step) != alike) {
            rules.push_back(rule_of(row, step));
        }
    }
    if (alike) {
        override_rule &all = rules.emplace_back();
        all.opcode = row.request.opcode;
        all.argument = row.request.arg;
        all.status = alike;
    }
}

} // namespace

bool is_answered_alike(const driver_memory &memory, host &described, uint16_t opcode) {
    comparison compared(described);
    bool alike = true;
    memory.each_row(
        [&](const remembered_row &row) {
            for (const remembered_step &step : row.steps) {
                alike = alike && compared.is_alike(row, step);
            }
        },
        opcode);
    return alike;
}

std::vector<override_rule> differences(const driver_memory &memory, host &described) {
    comparison compared(described);
    tallies by_opcode = tally_differences(memory, compared);
    std::vector<override_rule> rules;
    const auto end_opcode = [&](uint16_t opcode) {
        if (const auto status = by_opcode[opcode].refused_alike) {
            override_rule &all = rules.emplace_back();
            all.opcode = opcode;
            all.status = status;
        }
    };
    std::optional<uint16_t> at;
    memory.each_row([&](const remembered_row &row) {
        if (at && *at != row.request.opcode) {
            end_opcode(*at);
        }
        at = row.request.opcode;
        const opcode_tally &tally = by_opcode[row.request.opcode];
        if (tally.different == 0 || rules.size() > RULES_LIMIT) {
            return;
        }
        std::vector<remembered_step> open;
        for (const remembered_step &step : row.steps) {
            const bool is_answered = tally.refused_alike ? row.refusal(step) == tally.refused_alike
                                                         : compared.is_alike(row, step);
            if (!is_answered) {
                open.push_back(step);
            }
        }
        // A step that is handed back as it came is asked for in the driver's own bytes.
        if (row.form.steps_by_reply != 0 && !open.empty()) {
            open.assign(row.steps.begin(), row.steps.end());
        }
        add_rules(row, open, rules);
    });
    if (at) {
        end_opcode(*at);
    }
    return rules;
}
