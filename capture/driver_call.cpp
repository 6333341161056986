#include "capture/driver_call.h"

#include "dpa/userspace/kxdpa_indirect.h"
#include "sim/answer.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <vector>

namespace {

call_listener *listening = nullptr;

// Of the one reply that goes beyond its capacity.
uint32_t room_behind(const kxdpa_request &request) {
    const answer *form = has_flag(request, KXDPA_FLAG_MAX) ? find_answer(request) : nullptr;
    return form != nullptr && request.max1 == form->capacity ? form->behind : 0;
}

} // namespace

extern "C" int __real_ioctl(int descriptor, unsigned long code, ...) noexcept;

extern "C" int __wrap_ioctl(int descriptor, unsigned long code, ...) noexcept {
    va_list values;
    va_start(values, code);
    void *argument = va_arg(values, void *);
    va_end(values);
    if (listening == nullptr || descriptor != kx_dpa_call_fd) {
        return __real_ioctl(descriptor, code, argument);
    }
    const int error = listening(*static_cast<kxdpa_request *>(argument));
    errno = error == 0 ? errno : error;
    return error == 0 ? 0 : -1;
}

void listen_to_calls(call_listener *listener) {
    listening = listener;
}

driver_answer ask_driver(kxdpa_request &record) {
    static std::vector<uint8_t> before;
    const reply_place to = reply_place_of(record);
    std::span<const uint8_t> reply;
    if (to.address != 0) {
        reply = {bytes_at(to.address), to.room + room_behind(record)};
    }
    before.assign(reply.begin(), reply.end());
    driver_answer answer;
    if (__real_ioctl(kx_dpa_call_fd, 0, &record) == -1) {
        answer.error = errno;
    }
    answer.status = record.status;
    const bool succeeded = answer.error == 0 && record.status == KXDPA_STATUS_SUCCESS;
    if (to.address != 0 && (succeeded || !std::equal(reply.begin(), reply.end(), before.begin()))) {
        answer.reply = reply;
    }
    if (to.returned != nullptr) {
        answer.returned = *to.returned;
    }
    return answer;
}

std::optional<uint32_t> odd_length(const kxdpa_request &asked, const driver_answer &told) {
    kxdpa_request record = asked;
    const reply_place to = reply_place_of(record);
    const bool odd =
        to.returned != nullptr && told.returned != (told.reply ? told.reply->size() : *to.returned);
    return odd ? told.returned : std::nullopt;
}

override_rule rule_for(const kxdpa_request &asked, std::optional<std::span<const uint8_t>> input,
                       const driver_answer &told) {
    override_rule rule;
    rule.opcode = asked.opcode;
    rule.argument = asked.arg;
    if (input) {
        rule.in.emplace(input->begin(), input->end());
    }
    rule.error = told.error;
    if (told.reply) {
        rule.reply.emplace(told.reply->begin(), told.reply->end());
    }
    rule.returned = told.returned;
    // A call that fails and writes nothing leaves the status as the tool has set it, and a reply by
    // itself is a success.
    const bool wrote_nothing = !rule.reply && !rule.returned;
    const bool by_itself = told.error != 0
                               ? wrote_nothing && told.status == KXDPA_STATUS_NO_EXCHANGE
                               : rule.reply && told.status == KXDPA_STATUS_SUCCESS;
    if (!by_itself) {
        rule.status = told.status;
    }
    return rule;
}
