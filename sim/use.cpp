#include "sim/use.h"

#include "host/keys.h"

#include <algorithm>
#include <string_view>

#include <unistd.h>

namespace {

constexpr size_t REPORT_LIMIT = 10; // lines about overrides

void report_overrides(const host &described, std::span<const uint8_t> met,
                      std::vector<std::string> &lines) {
    size_t unused = 0;
    for (size_t place = 0; place < met.size(); place++) {
        if (met[place] == 0 && ++unused <= REPORT_LIMIT) {
            lines.push_back("overrides[" + std::to_string(place) + "]: no request met it (opcode " +
                            std::to_string(described.overrides[place].opcode) + ")");
        }
    }
    if (unused > REPORT_LIMIT) {
        lines.push_back("overrides: " + std::to_string(unused - REPORT_LIMIT) +
                        " more that no request met");
    }
}

} // namespace

void trace_into(model &driver, int descriptor) {
    driver.trace = [descriptor](const std::string &line) {
        // One write a line, so that lines of several processes do not mix.
        const std::string text = line + "\n";
        [[maybe_unused]] const ssize_t written = write(descriptor, text.data(), text.size());
    };
}

size_t marks_of(const host &described) {
    return described.overrides.size() + HOST_KEYS.keys.size();
}

void mark_use_of(model &driver, uint8_t *marks) {
    driver.met = [marks](size_t place) { marks[place] = 1; };
    if (driver.state.capture && driver.state.capture->keys) {
        driver.asked = [marks = marks + driver.state.overrides.size()](const answer &form) {
            for (const key &known : HOST_KEYS.keys) {
                if (form.key != nullptr && known.name == std::string_view(form.key)) {
                    marks[&known - HOST_KEYS.keys.data()] = 1;
                }
            }
        };
    }
}

std::vector<std::string> use_report(const host &described, std::span<const uint8_t> marks,
                                    const std::string &name) {
    std::vector<std::string> lines;
    const size_t overrides = described.overrides.size();
    if (described.capture && described.capture->keys) {
        const std::vector<std::string> &captured = *described.capture->keys;
        std::string wanted, missing; // names of the table alone: the file's may be anything
        for (const std::string &name_in_file : captured) {
            if (std::ranges::count(HOST_KEYS.keys, name_in_file, &key::name) != 0) {
                wanted += " " + name_in_file;
            }
        }
        for (size_t place = 0; place < HOST_KEYS.keys.size(); place++) {
            const char *name_of_key = HOST_KEYS.keys[place].name;
            if (marks[overrides + place] != 0 && std::ranges::count(captured, name_of_key) == 0) {
                missing += std::string(" ") + name_of_key;
            }
        }
        if (!missing.empty()) {
            lines.push_back(name +
                            " was captured without what was asked for, so the output may "
                            "differ from the host's; capture it with: tarncap" +
                            wanted + missing);
        }
    }
    // A capture answers all displays; no run meets all of it.
    if (!described.capture) {
        report_overrides(described, marks.first(overrides), lines);
    }
    for (const auto &[index, table] : described.l2.tables) {
        if (!described.bridge_domains.by_index.contains(index)) {
            lines.push_back("l2.tables: there is no bridge domain " + std::to_string(index));
        }
    }
    return lines;
}
