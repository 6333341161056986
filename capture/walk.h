// Walks that a broken driver cannot make endless.
#ifndef CAPTURE_WALK_H
#define CAPTURE_WALK_H

#include "capture/inquiry.h"
#include "host/number_set.h"
#include "host/port.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

// More entries no walk of a driver has: of ports, of L2 entries, and of anything else.
constexpr size_t LTL_WALK_LIMIT = 4096;
constexpr size_t L2_WALK_LIMIT = 65536;
constexpr size_t WALK_LIMIT = 16384;

// Call step(&at) from `start` on until it returns false, and collect where it went. A walk that
// comes back to where it was, or that is longer than the limit, is cut there and reported.
template <typename Key, typename Step>
std::vector<Key> collect_walk(inquiry &driver, kxdpa_opcode opcode, Key start, Step step,
                              size_t limit = WALK_LIMIT) {
    std::vector<Key> found;
    std::set<Key> passed; // empty while keys rise: none of them can come back
    for (Key at = start; !driver.is_hopeless(opcode) && step(&at); found.push_back(at)) {
        const bool rises = passed.empty() && (found.empty() || found.back() < at);
        if (!rises && passed.empty()) {
            passed.insert(found.begin(), found.end());
        }
        if ((!rises && !passed.insert(at).second) || found.size() == limit) {
            driver.report_endless_walk(opcode, found.size());
            break;
        }
    }
    return found;
}

// True for an LTL that a port can have; any other one ends the walk with a report.
inline bool is_walked_ltl(inquiry &driver, kxdpa_opcode opcode, uint32_t ltl) {
    if (ltl > LAST_LTL) {
        driver.report("the walk of opcode " + std::to_string(opcode) + " names LTL " +
                      std::to_string(ltl) + ", which is none, and is cut there");
    }
    return ltl <= LAST_LTL;
}

// A described host walks numbers in rising order. Call odd(from, to) for every step of `found`,
// from `start` on, that it would take otherwise; the number is none where the driver's walk ended.
template <typename Odd>
void for_odd_steps(const std::vector<uint32_t> &found, uint32_t start, Odd odd) {
    const number_set sorted(found.begin(), found.end());
    if (std::equal(found.begin(), found.end(), sorted.begin(), sorted.end())) {
        return;
    }
    uint32_t from = start;
    for (size_t i = 0; i <= found.size(); i++) {
        const auto next = i == 0 ? sorted.begin() : sorted.upper_bound(from);
        const auto usual = next == sorted.end() ? std::nullopt : std::optional(*next);
        const auto to = i == found.size() ? std::nullopt : std::optional(found[i]);
        if (usual != to) {
            odd(from, to);
        }
        from = to.value_or(from);
    }
}

// Keep the odd steps of a walk whose argument is where it stands.
inline void keep_odd_steps(inquiry &driver, kxdpa_opcode opcode, const std::vector<uint32_t> &found,
                           uint32_t start) {
    for_odd_steps(found, start, [&](uint32_t from, std::optional<uint32_t> to) {
        if (to) {
            driver.keep_reply(opcode, from, *to);
        } else {
            driver.keep_refusal(opcode, from);
        }
    });
}

#endif
