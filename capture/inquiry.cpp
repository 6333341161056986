#include "capture/inquiry.h"

#include "host/host.h"

#include <algorithm>
#include <cstdio>
#include <map>

namespace {

constexpr size_t OPCODES = 2048; // more than the driver has

constexpr auto BEFORE_PROGRESS = std::chrono::seconds(1);
constexpr auto BETWEEN_PROGRESS = std::chrono::milliseconds(100);

bool is_written(byte_span reply, byte_span before) {
    return before.empty()
               ? std::any_of(reply.begin(), reply.end(), [](uint8_t byte) { return byte != 0; })
               : !std::equal(reply.begin(), reply.end(), before.begin(), before.end());
}

} // namespace

inquiry::inquiry(bool shows_progress, bool (*is_wanted)())
    : tallies_(OPCODES), shows_progress_(shows_progress), is_wanted_(is_wanted),
      next_progress_(std::chrono::steady_clock::now() + BEFORE_PROGRESS) {
}

bool inquiry::refused(const driver_request &request, uint32_t status, if_refused meaning,
                      byte_span before, byte_span reply, std::optional<uint32_t> returned) {
    tally &of_opcode = tallies_[request.opcode];
    of_opcode.refused++;
    of_opcode.missed += meaning == if_refused::WALK_END ? 0 : 1;
    const bool written = is_written(reply, before);
    if (written || returned) {
        keep(request, status, written ? std::optional(reply) : std::nullopt, returned);
    } else if (status != HOST_STATUS_NOT_FOUND || meaning == if_refused::KEPT) {
        keep(request, status, std::nullopt);
    }
    return false;
}

void inquiry::keep(const driver_request &request, uint32_t status, std::optional<byte_span> reply,
                   std::optional<uint32_t> returned) {
    if (kept_.size() == KEPT_LIMIT || !kept_requests_.insert(request).second) {
        return;
    }
    override_rule rule;
    rule.opcode = request.opcode;
    rule.argument = request.argument;
    rule.in = request.input;
    if (status != KXDPA_STATUS_SUCCESS) {
        rule.status = status;
    }
    if (reply) {
        rule.reply.emplace(reply->begin(), reply->end());
    }
    rule.returned = returned;
    kept_.push_back(std::move(rule));
    tallies_[request.opcode].kept++;
}

void inquiry::report_endless_walk(kxdpa_opcode opcode, size_t entries) {
    tallies_[opcode].endless++;
    report("the walk of opcode " + std::to_string(opcode) + " does not end and is cut after " +
           std::to_string(entries) + " entries" +
           (is_hopeless(opcode) ? "; no other one is begun" : ""));
}

std::vector<override_rule> inquiry::overrides() const {
    // Where an opcode was always refused alike, one rule says so for all its requests.
    std::map<uint16_t, const override_rule *> alike; // the first of each opcode, nullptr for others
    for (const override_rule &rule : kept_) {
        const tally &of_opcode = tallies_[rule.opcode];
        const bool may_be = of_opcode.answered == 0 && of_opcode.kept == of_opcode.refused &&
                            !rule.reply && !rule.returned;
        const override_rule *&first = alike.try_emplace(rule.opcode, &rule).first->second;
        if (!may_be || (first != nullptr && first->status != rule.status)) {
            first = nullptr;
        }
    }
    std::vector<override_rule> rules;
    for (const override_rule &rule : kept_) {
        const override_rule *first = alike[rule.opcode];
        if (first == nullptr) {
            rules.push_back(rule);
        } else if (first == &rule) {
            override_rule &all = rules.emplace_back();
            all.opcode = rule.opcode;
            all.status = rule.status;
        }
    }
    return rules;
}

std::vector<std::string> inquiry::reports() const {
    std::vector<std::string> lines = reports_;
    if (requests_ == REQUESTS_LIMIT) {
        lines.push_back("no end after " + std::to_string(REQUESTS_LIMIT) +
                        " requests; what was not asked by then is left out");
    }
    if (kept_.size() == KEPT_LIMIT) {
        lines.push_back("more than " + std::to_string(KEPT_LIMIT) +
                        " answers are not what the keys say; the rest of them is left out");
    }
    uint64_t sum = 0;
    std::string by_opcode;
    for (size_t opcode = 0; opcode < tallies_.size(); opcode++) {
        const uint32_t missed = tallies_[opcode].missed;
        if (missed != 0) {
            sum += missed;
            by_opcode += (by_opcode.empty() ? "" : ", ") + std::to_string(missed) + " of opcode " +
                         std::to_string(opcode);
        }
    }
    if (sum != 0) {
        lines.push_back("the driver refused " + std::to_string(sum) +
                        " requests, which are left out: " + by_opcode);
    }
    return lines;
}

void inquiry::look_around() {
    given_up_ = is_wanted_ != nullptr && !is_wanted_();
    if (shows_progress_) {
        show_progress();
    }
}

void inquiry::show_progress() {
    const auto now = std::chrono::steady_clock::now();
    if (now < next_progress_) {
        return;
    }
    next_progress_ = now + BETWEEN_PROGRESS;
    // Blanks cover what is left of the line before; not every terminal knows a sequence for that.
    const auto width = static_cast<int>(progress_.size());
    progress_ =
        std::string("tarncap: ") + asking_about_ + ", " + std::to_string(requests_) + " requests";
    std::fprintf(stderr, "\r%-*s", width, progress_.c_str());
    std::fflush(stderr);
}

void inquiry::end_progress() {
    if (!progress_.empty()) {
        std::fprintf(stderr, "\r%*s\r", static_cast<int>(progress_.size()), "");
    }
    shows_progress_ = false;
}
