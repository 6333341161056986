#include "capture/differences.h"

#include "sim/model.h"
#include "sim/transfer.h"

#include <algorithm>
#include <map>
#include <optional>

namespace {

// The same bytes, or the same with zeros after them.
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

// The status whose one rule, after those for all other questions, takes fewer rules than one for
// each of `different` does; none when no status does. `refusals` are counts of questions by status.
std::optional<uint32_t> best_refused_alike(const std::map<uint32_t, uint32_t> &refusals,
                                           size_t questions, size_t different) {
    const auto most =
        std::max_element(refusals.begin(), refusals.end(), [](const auto &one, const auto &other) {
            return one.second < other.second;
        });
    if (most == refusals.end()) {
        return std::nullopt;
    }
    const size_t rules = questions - most->second + 1;
    const bool is_shorter = rules < different || (rules == 1 && different == 1);
    return is_shorter ? std::optional(most->first) : std::nullopt;
}

// The rules for the questions of a row that are still to be answered: one for each, or one for the
// argument after those for all its other questions.
void add_rules(const remembered_row &row, const std::vector<remembered_step> &open,
               std::vector<override_rule> &rules) {
    std::map<uint32_t, uint32_t> refusals;
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
        rules.push_back(
            {.opcode = row.request.opcode, .argument = row.request.arg, .status = alike});
    }
}

size_t count_different(const driver_memory &memory, comparison &compared, uint16_t opcode) {
    size_t different = 0;
    memory.each_row(
        [&](const remembered_row &row) {
            for (const remembered_step &step : row.steps) {
                different += compared.is_alike(row, step) ? 0 : 1;
            }
        },
        opcode);
    return different;
}

} // namespace

bool is_answered_alike(const driver_memory &memory, host &described, uint16_t opcode) {
    comparison compared(described);
    return count_different(memory, compared, opcode) == 0;
}

std::vector<override_rule> differences(const driver_memory &memory, host &described) {
    comparison compared(described);
    std::vector<override_rule> rules;
    for (const auto &[opcode, tally] : memory.tallies()) {
        const size_t different = count_different(memory, compared, opcode);
        if (different == 0) {
            continue;
        }
        const std::optional<uint32_t> alike =
            best_refused_alike(tally.refusals, tally.questions, different);
        memory.each_row(
            [&](const remembered_row &row) {
                std::vector<remembered_step> open;
                for (const remembered_step &step : row.steps) {
                    if (alike ? row.refusal(step) != alike : !compared.is_alike(row, step)) {
                        open.push_back(step);
                    }
                }
                // A step that is handed back as it came is asked for in the driver's own bytes.
                if (row.form.steps_by_reply != 0 && !open.empty()) {
                    open.assign(row.steps.begin(), row.steps.end());
                }
                if (rules.size() <= RULES_LIMIT) {
                    add_rules(row, open, rules);
                }
            },
            opcode);
        if (alike) {
            rules.push_back({.opcode = opcode, .status = alike});
        }
    }
    return rules;
}
