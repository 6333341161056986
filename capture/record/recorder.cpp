#include "capture/record/recorder.h"

#include "dpa/userspace/kxdpa_indirect.h"
#include "handlers/card/card_record.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <map>

namespace {

struct recording {
    std::map<driver_request, size_t> places; // in `requests`
    std::vector<recorded_request> requests;
    const volatile int *interrupted = nullptr;
    void (*leave)() = nullptr;
};

recording *under_way = nullptr;

const uint8_t *bytes_at(uint32_t address) {
    return reinterpret_cast<const uint8_t *>(static_cast<uintptr_t>(address));
}

bool has(const kxdpa_request &request, kxdpa_flag flag) {
    return (request.flags & flag) != 0;
}

std::optional<std::vector<uint8_t>> input_of(const kxdpa_request &request) {
    if (!has(request, KXDPA_FLAG_IN) && !has(request, KXDPA_FLAG_TWO)) {
        return std::nullopt;
    }
    const uint8_t *bytes = bytes_at(request.buf1);
    if (bytes == nullptr) {
        return std::vector<uint8_t>();
    }
    const size_t length = request.len1 != 0
                              ? request.len1
                              : strnlen(reinterpret_cast<const char *>(bytes), request.max1);
    return std::vector<uint8_t>(bytes, bytes + length);
}

// Where the driver may write, which the caller reads when the request is done.
struct span {
    const uint8_t *bytes = nullptr;
    uint32_t size = 0;
    std::vector<uint8_t> copy() const {
        return std::vector<uint8_t>(bytes, bytes + size);
    }
};

span reply_span(const kxdpa_request &request) {
    const bool two = has(request, KXDPA_FLAG_TWO);
    const uint32_t address = two ? request.buf2 : request.buf1;
    if (!has(request, KXDPA_FLAG_OUT) || address == 0) {
        return {};
    }
    const uint32_t length = two ? request.len2 : request.len1;
    if (!has(request, KXDPA_FLAG_MAX)) {
        return {bytes_at(address), length};
    }
    // The capacity comes on top of the length.
    const uint32_t capacity = length + (two ? request.max2 : request.max1);
    // The one reply that goes beyond the capacity: the UUID's type stands behind it.
    const bool uuid = request.opcode == KXDPA_OP_CARD_UUID && capacity == KX_CARD_UUID_CAPACITY;
    return {bytes_at(address), uuid ? static_cast<uint32_t>(sizeof(kx_card_uuid)) : capacity};
}

driver_answer answer_of(const kxdpa_request &record, const kxdpa_request &asked, int error,
                        const span &reply, const std::vector<uint8_t> &before) {
    driver_answer answer{error, record.status, {}, {}};
    const bool succeeded = error == 0 && record.status == KXDPA_STATUS_SUCCESS;
    const std::vector<uint8_t> after = reply.copy();
    if (reply.bytes != nullptr && (succeeded || after != before)) {
        answer.reply = after;
    }
    if (has(asked, KXDPA_FLAG_MAX)) {
        const bool two = has(asked, KXDPA_FLAG_TWO);
        const uint32_t returned = two ? record.max2 : record.max1;
        const size_t by_itself =
            answer.reply ? answer.reply->size() : (two ? asked.max2 : asked.max1);
        if (returned != by_itself) {
            answer.returned = returned;
        }
    }
    return answer;
}

void keep(recording &into, driver_request request, driver_answer answer) {
    const auto [place, is_new] = into.places.emplace(std::move(request), into.requests.size());
    if (is_new) {
        into.requests.push_back({place->first, {}, {}});
    }
    recorded_request &kept = into.requests[place->second];
    const auto known = std::find(kept.answers.begin(), kept.answers.end(), answer);
    const auto index = static_cast<size_t>(known - kept.answers.begin());
    if (known == kept.answers.end()) {
        kept.answers.push_back(std::move(answer));
    }
    if (!kept.runs.empty() && kept.runs.back().answer == index) {
        kept.runs.back().times++;
    } else {
        kept.runs.push_back({index, 1});
    }
}

} // namespace

extern "C" int __real_ioctl(int descriptor, unsigned long code, ...) noexcept;

extern "C" int __wrap_ioctl(int descriptor, unsigned long code, ...) noexcept {
    va_list values;
    va_start(values, code);
    void *argument = va_arg(values, void *);
    va_end(values);
    if (under_way == nullptr || descriptor != kx_dpa_call_fd) {
        return __real_ioctl(descriptor, code, argument);
    }
    recording &into = *under_way;
    auto *const record = static_cast<kxdpa_request *>(argument);
    const kxdpa_request asked = *record;
    driver_request request{asked.opcode, asked.arg, input_of(asked)};
    const span reply = reply_span(asked);
    const std::vector<uint8_t> before = reply.copy();
    const int result = __real_ioctl(descriptor, code, argument);
    const int reason = errno;
    keep(into, std::move(request),
         answer_of(*record, asked, result == -1 ? reason : 0, reply, before));
    if (into.interrupted != nullptr && *into.interrupted != 0) {
        into.leave();
    }
    errno = reason;
    return result;
}

void recorder_start(const volatile int *interrupted, void (*leave)()) {
    recorder_stop();
    under_way = new recording;
    under_way->interrupted = interrupted;
    under_way->leave = leave;
}

std::vector<recorded_request> recorder_stop() {
    std::vector<recorded_request> kept;
    if (under_way != nullptr) {
        kept = std::move(under_way->requests);
        delete under_way;
        under_way = nullptr;
    }
    return kept;
}
