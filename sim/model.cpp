#include "sim/model.h"

#include "host/hex.h"
#include "sim/transfer.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <utility>

namespace {

constexpr uint32_t LOWEST_ADDRESS = 4096;
constexpr uint32_t TRANSFER_LIMIT = 1U << 24; // bytes; no request comes near it

std::string format(const char *text, ...) __attribute__((format(printf, 1, 2)));

std::string format(const char *text, ...) {
    char line[256];
    va_list values;
    va_start(values, text);
    std::vsnprintf(line, sizeof line, text, values);
    va_end(values);
    return line;
}

struct field {
    const char *name;
    uint32_t found, least;
    uint32_t most = least;
};

// About the first one that is wrong, empty for none.
std::string check_fields(std::initializer_list<field> fields) {
    for (const auto &[name, found, least, most] : fields) {
        if (found < least || found > most) {
            const char *bound = least == most ? "" : found < least ? "at least " : "at most ";
            return format("%s is %u, expected %s%u", name, found, bound,
                          found < least ? least : most);
        }
    }
    return "";
}

// The fields that have one right value, whatever the opcode.
std::string check_head(const kxdpa_request &request) {
    return check_fields({{"marker", request.marker, KXDPA_KERNEL_MARKER},
                         {"version", request.version, KXDPA_KERNEL_VERSION},
                         {"reserved", request.reserved[0], 0},
                         {"reserved", request.reserved[1], 0},
                         {"reserved", request.reserved[2], 0},
                         {"length", std::max(request.len1, request.len2), 0, TRANSFER_LIMIT}});
}

std::string check_buffer(const char *name, uint32_t address, bool is_used) {
    if ((address != 0) == is_used) {
        return "";
    }
    return name + std::string(is_used ? " is 0, expected a buffer" : " is set, expected 0");
}

std::string check_form(const kxdpa_request &request, const answer &expected) {
    const uint32_t one = has_flag(request, KXDPA_FLAG_MAX) ? 1 : 0;
    const uint32_t two = has_flag(request, KXDPA_FLAG_TWO) ? one : 0;
    std::string complaint =
        check_fields({{"flags", request.flags, expected.flags},
                      {"len1", request.len1, expected.len1},
                      {"len2", request.len2, expected.len2},
                      {"max1_valid", request.max1_valid, one},
                      {"max2_valid", request.max2_valid, two},
                      {"max1", request.max1, 0, one * UINT32_MAX},
                      {"max2", request.max2, 0, two * UINT32_MAX},
                      {"max1", request.max1, one * expected.capacity, UINT32_MAX}});
    if (complaint.empty()) {
        complaint = check_buffer("buf1", request.buf1, !has_flag(request, KXDPA_FLAG_NODATA));
    }
    return complaint.empty() ? check_buffer("buf2", request.buf2, has_flag(request, KXDPA_FLAG_TWO))
                             : complaint;
}

bool read_input(const kxdpa_request &request, caller_memory &memory, std::vector<uint8_t> &input) {
    if (!has_input(request)) {
        return true;
    }
    input.resize(request.len1);
    if (!input.empty()) {
        return memory.read(request.buf1, input.data(), static_cast<uint32_t>(input.size()));
    }
    // A string: its length is its terminator's, and the caller's text may be shorter than max1.
    for (uint32_t i = 0; request.buf1 != 0 && i < std::min(request.max1, TRANSFER_LIMIT); i++) {
        uint8_t byte = 0;
        if (!memory.read(request.buf1 + i, &byte, 1)) {
            return false;
        }
        if (byte == 0) {
            break;
        }
        input.push_back(byte);
    }
    return true;
}

// Never writes past the length and capacity that the request declares, whatever an override says,
// but for the opcode's bytes after it.
bool write_reply(kxdpa_request &record, caller_memory &memory, const exchange &talk,
                 uint32_t behind, bool forced) {
    const reply_place to = reply_place_of(record);
    const auto full = static_cast<uint32_t>(talk.reply.size());
    const auto count = static_cast<uint32_t>(std::min<uint64_t>(full, uint64_t{to.room} + behind));
    if (to.returned != nullptr) {
        if (talk.returned) {
            *to.returned = *talk.returned;
        } else if (talk.is_told() || full != 0) {
            *to.returned = forced ? full : count;
        }
    }
    return count == 0 || (to.address != 0 && memory.write(to.address, talk.reply.data(), count));
}

// A fixed-size reply is of the size that was asked for.
void fit_reply(exchange &talk) {
    const reply_place to = reply_place_of(talk.request);
    if (to.returned == nullptr && talk.is_told()) {
        talk.reply.resize(to.room);
    }
}

std::string describe_capacities(const kxdpa_request &record) {
    return (record.max1_valid != 0 ? format(" max %u", record.max1) : "") +
           (record.max2_valid != 0 ? format(" max2 %u", record.max2) : "");
}

std::string describe(const kxdpa_request &request, const std::vector<uint8_t> &input) {
    std::string line =
        format("op %u arg 0x%x flags %u", request.opcode, request.arg, request.flags);
    if (request.len1 != 0) {
        line += format(" len %u", request.len1);
    }
    if (request.len2 != 0) {
        line += format(" len2 %u", request.len2);
    }
    line += describe_capacities(request);
    return input.empty() ? line : line + " in " + bytes_to_hex(input);
}

std::string describe_outcome(const kxdpa_request &record, int error) {
    if (error != 0) {
        const char *name = strerrorname_np(error);
        return name == nullptr ? format(" -> error %d", error) : " -> " + std::string(name);
    }
    return format(" -> %u", record.status) + describe_capacities(record);
}

// The place of the first override that holds for the request. All that ask for it count it, whether
// or not they are the first.
std::optional<size_t> find_override(model &driver, const kxdpa_request &request,
                                    const std::vector<uint8_t> &input) {
    std::optional<size_t> first;
    if (driver.overrides.empty()) {
        return first;
    }
    const std::optional<uint32_t> arguments[] = {request.arg, std::nullopt};
    const std::optional<std::vector<uint8_t>> inputs[] = {input, std::nullopt};
    for (const auto &argument : arguments) {
        for (const auto &in : inputs) {
            const auto found = driver.overrides.find({request.opcode, argument, in});
            if (found == driver.overrides.end()) {
                continue;
            }
            override_group &group = found->second;
            group.seen++;
            for (const uint32_t time : {uint32_t{0}, group.seen}) {
                if (const size_t *place = value_in(group.by_time, time)) {
                    first = std::min(*place, first.value_or(*place));
                }
            }
        }
    }
    return first;
}

// Fill the exchange. `rule` replaces what it names and leaves the rest to the host.
void answer_request(host &state, exchange &talk, const answer *known, const override_rule &rule) {
    if (rule.reply || rule.status) {
        talk.status = rule.status.value_or(KXDPA_STATUS_SUCCESS);
        if (rule.reply) {
            talk.reply = *rule.reply;
        } else {
            fit_reply(talk);
        }
    } else if (known == nullptr) {
        talk.status = SIM_STATUS_UNKNOWN_OPCODE;
    } else {
        answer_as_host(state, *known, talk);
    }
    if (rule.length) {
        talk.reply.resize(*rule.length);
    }
}

void complain(const model &driver, const std::string &line) {
    if (driver.complain) {
        driver.complain(line);
    } else {
        std::fprintf(stderr, "kestrel: %s\n", line.c_str());
    }
}

// Answer a well-formed request. Returns the errno that the ioctl fails with, 0 for none.
int answer_in_place(model &driver, kxdpa_request &record, caller_memory &memory,
                    std::vector<uint8_t> &input, const answer *known) {
    if (!read_input(record, memory, input)) {
        return EFAULT;
    }
    const std::optional<size_t> place = find_override(driver, record, input);
    static const auto &none = *new override_rule;
    const override_rule &rule = place ? driver.state.overrides[*place] : none;
    if (place && driver.met) {
        driver.met(*place);
    }
    const bool forced = rule.reply || rule.length;
    if (rule.error != 0 && !forced && !rule.status && !rule.returned) {
        return rule.error;
    }
    if (known != nullptr && driver.asked) {
        driver.asked(*known);
    }
    const kxdpa_request asked = record;
    exchange talk{.request = asked, .input = input, .places = &driver.places};
    answer_request(driver.state, talk, known, rule);
    if (place) {
        talk.returned = rule.returned;
    }
    if (!write_reply(record, memory, talk, known == nullptr ? 0 : known->behind, forced)) {
        record = asked;
        return EFAULT;
    }
    record.status = talk.status;
    return rule.error;
}

int run_request(model &driver, kxdpa_request &record, caller_memory &memory,
                std::vector<uint8_t> &input) {
    const answer *known = find_answer(record);
    // Before anything is taken from the caller: its lengths may be as wrong as the rest. An opcode
    // that nobody answers has no form.
    std::string complaint = check_head(record);
    if (complaint.empty() && known != nullptr) {
        complaint = check_form(record, *known);
    }
    if (complaint.empty()) {
        return answer_in_place(driver, record, memory, input, known);
    }
    complain(driver, format("op %u: %s", record.opcode, complaint.c_str()));
    record.status = SIM_STATUS_MALFORMED;
    return 0;
}

} // namespace

caller_memory::~caller_memory() = default;

bool own_memory::read(uint32_t address, void *to, uint32_t length) {
    if (address < LOWEST_ADDRESS) {
        return false;
    }
    std::memcpy(to, reinterpret_cast<const void *>(address), length);
    return true;
}

bool own_memory::write(uint32_t address, const void *from, uint32_t length) {
    if (address < LOWEST_ADDRESS) {
        return false;
    }
    std::memcpy(reinterpret_cast<void *>(address), from, length);
    return true;
}

void model::take(host described) {
    state = std::move(described);
    places.clear();
    take_overrides(std::move(state.overrides));
}

void model::take_overrides(std::vector<override_rule> rules) {
    state.overrides = std::move(rules);
    overrides.clear();
    for (size_t place = 0; place < state.overrides.size(); place++) {
        const override_rule &rule = state.overrides[place];
        override_group &group = overrides[{rule.opcode, rule.argument, rule.in}];
        group.by_time.emplace(rule.only_time, place);
    }
}

void answer_as_host(host &state, const answer &form, exchange &talk) {
    if (form.argument != ANY_ARGUMENT && form.argument != talk.request.arg) {
        return talk.fail(state);
    }
    form.reply(state, talk);
    fit_reply(talk);
}

int model_request(model &driver, kxdpa_request &record, caller_memory &memory) {
    std::vector<uint8_t> input;
    const kxdpa_request asked = record;
    const int error = run_request(driver, record, memory, input);
    if (driver.trace) {
        driver.trace(describe(asked, input) + describe_outcome(record, error));
    }
    return error;
}

int model_ioctl(model &driver, unsigned long code, uint32_t address, caller_memory &memory) {
    if (code != 0) {
        complain(driver, format("request code is %lu, expected 0", code));
        return ENOTTY;
    }
    kxdpa_request record{};
    if (!memory.read(address, &record, sizeof record)) {
        return EFAULT;
    }
    const int error = model_request(driver, record, memory);
    return memory.write(address, &record, sizeof record) ? error : EFAULT;
}
