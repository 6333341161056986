#include "sim/overrides.h"

#include "sim/object_reader.h"

#include <cerrno>
#include <string_view>

namespace {

template <typename number>
void optional_number(object_reader &rule, std::string_view key, std::optional<number> &field) {
    number value = 0;
    rule.number(key, value);
    if (rule.has(key)) {
        field = value;
    }
}

override_rule parse_rule(object_reader &rule) {
    override_rule parsed;
    rule.require("opcode");
    rule.number("opcode", parsed.opcode);
    optional_number(rule, "argument", parsed.argument);
    rule.number("time", parsed.only_time, 1);
    optional_number(rule, "status", parsed.status);
    optional_number(rule, "length", parsed.length);
    optional_number(rule, "returned", parsed.returned);
    if (parsed.length > uint32_t{1} << 20) {
        rule.fail("length", "expected at most 1048576");
    }
    if (rule.has("reply")) {
        rule.bytes("reply", parsed.reply.emplace());
    }
    uint32_t error = 0;
    rule.choice("error", error,
                {{"EPERM", EPERM},
                 {"EINTR", EINTR},
                 {"EIO", EIO},
                 {"ENXIO", ENXIO},
                 {"EBADF", EBADF},
                 {"EAGAIN", EAGAIN},
                 {"ENOMEM", ENOMEM},
                 {"EACCES", EACCES},
                 {"EFAULT", EFAULT},
                 {"EBUSY", EBUSY},
                 {"ENODEV", ENODEV},
                 {"EINVAL", EINVAL},
                 {"ENOTTY", ENOTTY},
                 {"ENOSYS", ENOSYS}});
    parsed.error = static_cast<int>(error);
    return parsed;
}

} // namespace

void parse_overrides(object_reader &file, std::vector<override_rule> &overrides) {
    file.each("overrides", [&](object_reader &rule) { overrides.push_back(parse_rule(rule)); });
}

const override_rule *find_override(std::vector<override_rule> &overrides,
                                   const kxdpa_request &request) {
    const override_rule *found = nullptr;
    for (override_rule &rule : overrides) {
        if (rule.opcode != request.opcode) {
            continue;
        }
        if (rule.argument && *rule.argument != request.arg) {
            continue;
        }
        rule.seen++;
        if (found == nullptr && (rule.only_time == 0 || rule.only_time == rule.seen)) {
            found = &rule;
        }
    }
    return found;
}
