#include "capture/record/recording.h"

#include "capture/management_address.h"
#include "dpa/userspace/kxdpa_opcodes.h"
#include "dpa/userspace/kxdpa_request.h"

#include <algorithm>

namespace {

override_rule rule_for(const driver_request &request, const driver_answer &answer) {
    override_rule rule;
    rule.opcode = request.opcode;
    rule.argument = request.argument;
    rule.in = request.input;
    rule.error = answer.error;
    rule.reply = answer.reply;
    rule.returned = answer.returned;
    // An ioctl that fails and writes nothing leaves the status as the tool has set it, and a reply
    // by itself is a success.
    const bool wrote_nothing = !answer.reply && !answer.returned;
    const bool by_itself = answer.error != 0
                               ? wrote_nothing && answer.status == KXDPA_STATUS_NO_EXCHANGE
                               : answer.reply && answer.status == KXDPA_STATUS_SUCCESS;
    if (!by_itself) {
        rule.status = answer.status;
    }
    return rule;
}

size_t most_frequent(const recorded_request &recorded) {
    std::vector<uint64_t> times(recorded.answers.size());
    for (const auto &[answer, count] : recorded.runs) {
        times[answer] += count;
    }
    return static_cast<size_t>(std::max_element(times.begin(), times.end()) - times.begin());
}

void add_rules(const recorded_request &recorded, std::vector<override_rule> &rules) {
    const size_t usual = most_frequent(recorded);
    uint32_t time = 0;
    for (const auto &[answer, count] : recorded.runs) {
        for (uint32_t i = 0; i < count && answer != usual; i++) {
            override_rule &rule =
                rules.emplace_back(rule_for(recorded.request, recorded.answers[answer]));
            rule.only_time = time + i + 1;
        }
        time += count;
    }
    rules.push_back(rule_for(recorded.request, recorded.answers[usual]));
}

} // namespace

std::vector<override_rule> recording_overrides(const std::vector<recorded_request> &requests) {
    std::vector<override_rule> rules;
    for (const recorded_request &recorded : requests) {
        add_rules(recorded, rules);
    }
    return rules;
}

host recorded_host(const std::vector<recorded_request> &requests) {
    host recorded;
    recorded.overrides = recording_overrides(requests);
    const bool asked_host =
        std::any_of(requests.begin(), requests.end(), [](const recorded_request &asked) {
            return asked.request.opcode == KXDPA_OP_SET_MANAGEMENT_IPV4;
        });
    if (asked_host) {
        recorded.management_address = ask_management_address();
    }
    return recorded;
}
