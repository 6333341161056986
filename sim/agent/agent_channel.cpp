#include "sim/agent/agent_channel.h"

#include "dpa/userspace/kxdpa_request.h"
#include "sim/exchange.h"
#include "sim/transfer.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr uint64_t MESSAGE_LIMIT = uint64_t{1} << 24;

// Where the buffers lie in a message.
struct regions {
    uint64_t first;  // bytes of buffer 1
    uint64_t second; // bytes of buffer 2
    uint64_t total;  // bytes of the message
};

regions regions_of(const kxdpa_request &request) {
    regions of{};
    of.first = uint64_t{request.len1} + uint64_t{request.max1} * (request.max1_valid & 1);
    if (has_flag(request, KXDPA_FLAG_TWO)) {
        of.second = uint64_t{request.len2} + uint64_t{request.max2} * (request.max2_valid & 1);
    }
    of.total = sizeof request + of.first + of.second;
    return of;
}

// Names the first field that is wrong, nullptr for none.
const char *wrong_field(const kxdpa_request &request) {
    const uint32_t one = has_flag(request, KXDPA_FLAG_MAX) ? 1 : 0;
    const uint32_t two = has_flag(request, KXDPA_FLAG_TWO) ? one : 0;
    const struct {
        const char *name;
        bool is_wrong;
    } fields[] = {{"marker", request.marker != KXDPA_SOCKET_MARKER},
                  {"version", request.version != KXDPA_SOCKET_VERSION},
                  {"reserved", std::ranges::any_of(request.reserved, std::identity())},
                  {"max1_valid", request.max1_valid != one},
                  {"max2_valid", request.max2_valid != two}};
    for (const auto &[name, is_wrong] : fields) {
        if (is_wrong) {
            return name;
        }
    }
    return nullptr;
}

const agent_answer *find_answer(agent_answers &answers, const kxdpa_request &request) {
    const agent_answer *found = nullptr;
    for (size_t i = 0; i < answers.described.size(); i++) {
        const agent_answer &answer = answers.described[i];
        if (answer.opcode != request.opcode ||
            (answer.argument && *answer.argument != request.arg)) {
            continue;
        }
        answers.seen[i]++;
        if (found == nullptr && (answer.only_time == 0 || answer.only_time == answers.seen[i])) {
            found = &answer;
        }
    }
    return found;
}

void set_status(std::vector<uint8_t> &message, uint32_t status) {
    std::memcpy(message.data() + offsetof(kxdpa_request, status), &status, sizeof status);
}

// The answer goes where the flags say; everything else is the request's own bytes.
void fill_reply(std::vector<uint8_t> &message, const kxdpa_request &request,
                const agent_answer &answer) {
    const regions of = regions_of(request);
    set_status(message, answer.status);
    if (answer.status != KXDPA_STATUS_SUCCESS || !has_flag(request, KXDPA_FLAG_OUT)) {
        return;
    }
    const bool two = has_flag(request, KXDPA_FLAG_TWO);
    const auto room = static_cast<size_t>(two ? of.second : of.first);
    uint8_t *to = message.data() + sizeof request + (two ? static_cast<size_t>(of.first) : 0);
    const size_t count = std::min(room, answer.reply.size());
    std::copy_n(answer.reply.begin(), count, to);
    std::fill(to + count, to + room, uint8_t{0});
}

bool send_all(int descriptor, const std::vector<uint8_t> &message, size_t count) {
    for (size_t sent = 0; sent < count;) {
        const ssize_t took = send(descriptor, message.data() + sent, count - sent, MSG_NOSIGNAL);
        if (took < 1) {
            return false;
        }
        sent += static_cast<size_t>(took);
    }
    return true;
}

} // namespace

agent_channel::agent_channel(int descriptor, agent_answers &answers)
    : descriptor_(descriptor), answers_(answers) {
}

agent_channel::~agent_channel() {
    close(descriptor_);
}

bool agent_channel::serve() {
    uint8_t piece[65536];
    const ssize_t got = read(descriptor_, piece, sizeof piece);
    if (got < 1) {
        return false;
    }
    received_.insert(received_.end(), piece, piece + got);
    while (received_.size() >= sizeof(kxdpa_request)) {
        kxdpa_request request{};
        std::memcpy(&request, received_.data(), sizeof request);
        const uint64_t total = regions_of(request).total;
        if (total > MESSAGE_LIMIT) {
            std::fprintf(stderr, "agent: op %u: a message of %llu bytes\n", request.opcode, total);
            return false;
        }
        if (received_.size() < total) {
            break;
        }
        const auto end = received_.begin() + static_cast<ptrdiff_t>(total);
        std::vector<uint8_t> message(received_.begin(), end);
        received_.erase(received_.begin(), end);
        if (!answer_message(std::move(message))) {
            return false;
        }
    }
    return true;
}

bool agent_channel::answer_message(std::vector<uint8_t> message) {
    kxdpa_request request{};
    std::memcpy(&request, message.data(), sizeof request);
    const char *wrong = wrong_field(request);
    if (wrong != nullptr) {
        std::fprintf(stderr, "agent: op %u: %s is wrong\n", request.opcode, wrong);
        set_status(message, SIM_STATUS_MALFORMED);
        return send_all(descriptor_, message, message.size());
    }
    const agent_answer *answer = find_answer(answers_, request);
    if (answer == nullptr) {
        set_status(message, SIM_STATUS_UNKNOWN_OPCODE);
        return send_all(descriptor_, message, message.size());
    }
    poll(nullptr, 0, static_cast<int>(answer->delay));
    if (answer->silent) {
        return true;
    }
    fill_reply(message, request, *answer);
    const size_t count = std::min<size_t>(answer->close_after.value_or(UINT32_MAX), message.size());
    return send_all(descriptor_, message, count) && !answer->close_after;
}
