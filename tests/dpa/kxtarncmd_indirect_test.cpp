#include "dpa/command/kxtarncmd_indirect.h"
#include "frontend/hmx_cmd.h"
#include "sim/agent/agent_paths.h"
#include "tests/infra/printed_by.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <poll.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

constexpr uint32_t HEADER = 48;
constexpr uint32_t ANY_ARG = 0x00C0FFEE;
constexpr uint32_t AGENT_STATUS = 77;
constexpr size_t MARGIN = 16; // bytes after a buffer that nobody may write

// The most bytes that the tool sends at once.
size_t send_limit = SIZE_MAX;

} // namespace

extern "C" ssize_t send(int fd, const void *data, size_t size, int flags) {
    if (fd == kx_tarncmd_call_fd)
        size = std::min(size, send_limit);
    return syscall(SYS_sendto, fd, data, size, flags, nullptr, 0);
}

namespace {

std::string le16(uint32_t value) {
    return {static_cast<char>(value), static_cast<char>(value >> 8)};
}

std::string le32(uint32_t value) {
    return le16(value) + le16(value >> 16);
}

uint32_t address(const std::string *buffer) {
    return buffer == nullptr ? 0 : reinterpret_cast<uintptr_t>(buffer->data());
}

std::string pattern(size_t size, unsigned step) {
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; i++)
        bytes[i] = static_cast<char>(1 + i * step % 251);
    return bytes;
}

// No command of the tool sends them yet.
TEST(AgentOpcodes, AreTheAgentsNumbers) {
    EXPECT_EQ((std::vector<int>{
                  KXTARNCMD_OP_MULTICAST_VLAN, KXTARNCMD_OP_VLAN_COUNT, KXTARNCMD_OP_VLAN_LIST,
                  KXTARNCMD_OP_VLAN_INFO, KXTARNCMD_OP_PROFILE_COUNT, KXTARNCMD_OP_PROFILE_LIST,
                  KXTARNCMD_OP_PROFILE_ENTRY, KXTARNCMD_OP_PROFILE_INFO, KXTARNCMD_OP_VLAN_DETAIL,
                  KXTARNCMD_OP_VLAN_DETAIL_2, KXTARNCMD_OP_SECURE_PORT_STATS}),
              (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 13}));
}

// A fault in the exchange must not make both sides wait forever.
void limit_waiting(int fd) {
    const timeval limit = {10, 0};
    EXPECT_EQ(setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit), 0);
    EXPECT_EQ(setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit), 0);
}

// Receive up to `size` bytes, or fewer when the tool closes before.
std::string receive(int fd, size_t size) {
    std::string bytes(size, '\0');
    return bytes.substr(
        0, static_cast<size_t>(std::max<ssize_t>(recv(fd, bytes.data(), size, MSG_WAITALL), 0)));
}

void answer(int fd, const std::string &reply) {
    send(fd, reply.data(), reply.size(), MSG_NOSIGNAL);
}

// A reply in whose head the tool may use nothing but the status.
std::string reply_head() {
    std::string head(HEADER, '\xFF');
    return head.replace(12, 4, le32(AGENT_STATUS));
}

// The tool's connection is one end of a pair; the agent's end is `peer`.
class AgentSocket : public testing::Test {
protected:
    void SetUp() override {
        std::array<int, 2> ends{};
        ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
        for (const int end : ends)
            limit_waiting(end);
        kx_tarncmd_call_fd = ends[0];
        peer = ends[1];
    }
    void TearDown() override {
        kx_debug_print_kxtarncmd_indirect = 0x87;
        send_limit = SIZE_MAX;
        dpa_platform_close();
        if (peer != -1)
            close(peer);
    }
    int peer = -1;
};

enum request_form { ONE, TWO, SIMPLE };

struct Framing {
    const char *what;
    request_form form;
    uint8_t flags;
    uint32_t len1;
    uint32_t max1; // given by reference whatever the flags say
    uint32_t len2;
    uint32_t max2;
    bool buffer_missing; // buffer 1
    uint32_t sent1;      // bytes of buffer 1 in the message
    uint32_t sent2;
};

// One request over the pair; its message and both buffers are compared byte for byte.
void check_framing(const Framing &row, int peer) {
    SCOPED_TRACE(row.what);
    std::string first = pattern(row.sent1 + MARGIN, 3);
    std::string second = pattern(row.sent2 + MARGIN, 5);
    uint32_t max1 = row.max1;
    uint32_t max2 = row.max2;
    const bool two = row.form == TWO;
    const bool capacity = (row.flags & KXDPA_FLAG_MAX) != 0 && row.form != SIMPLE;
    const bool second_capacity = capacity && two;
    const std::string *buf1 = row.buffer_missing ? nullptr : &first;
    const std::string expected =
        le16(0x1234) + "\x03" + std::string(1, '\0') +
        std::string(1, static_cast<char>(row.flags)) + std::string(3, '\0') + le32(ANY_ARG) +
        le32(KXDPA_STATUS_SUCCESS) + le32(row.len1) + le32(two ? row.len2 : 0) +
        le32(capacity ? row.max1 : 0) + le32(second_capacity ? row.max2 : 0) +
        le32(capacity ? 1 : 0) + le32(second_capacity ? 1 : 0) + le32(address(buf1)) +
        le32(two ? address(&second) : 0) +
        (row.buffer_missing ? std::string(row.sent1, '\0') : first.substr(0, row.sent1)) +
        second.substr(0, row.sent2);
    const std::string reply1 = pattern(row.sent1, 7);
    const std::string reply2 = pattern(row.sent2, 11);

    std::string message;
    std::thread agent([&] {
        message = receive(peer, expected.size());
        answer(peer, reply_head() + reply1 + reply2);
    });
    char *data = row.buffer_missing ? nullptr : first.data();
    uint32_t status = 0;
    if (two)
        status = kx_tarncmd_call_indirect2(0x61234, ANY_ARG, row.flags, data, row.len1, &max1,
                                           second.data(), row.len2, &max2);
    else if (row.form == ONE)
        status = kx_tarncmd_call_indirect1(0x61234, ANY_ARG, row.flags, data, row.len1, &max1);
    else
        status = static_cast<uint32_t>(
            kx_tarncmd_call_indirect_simple(0x1234, ANY_ARG, row.flags, data, row.len1));
    agent.join();

    EXPECT_EQ(status, AGENT_STATUS);
    EXPECT_TRUE(message == expected);
    char extra = 0;
    EXPECT_EQ(recv(peer, &extra, 1, MSG_DONTWAIT), -1) << "more than the message was sent";
    const std::string margin1 = pattern(row.sent1 + MARGIN, 3).substr(row.sent1);
    const std::string margin2 = pattern(row.sent2 + MARGIN, 5).substr(row.sent2);
    if (!row.buffer_missing) {
        EXPECT_TRUE(first == reply1 + margin1);
    }
    EXPECT_TRUE(second == reply2 + margin2);
    EXPECT_EQ(max1, row.max1);
    EXPECT_EQ(max2, row.max2);
}

TEST_F(AgentSocket, SendsRecordAndBuffersAndTakesThemBack) {
    const Framing rows[] = {
        {"fixed reply", ONE, 1, 16, 99, 0, 0, false, 16, 0},
        {"no data", ONE, 16, 0, 99, 0, 0, true, 0, 0},
        {"input comes back as the agent's echo", ONE, 2, 8, 0, 0, 0, false, 8, 0},
        {"capacity counts", ONE, 7, 4, 8, 0, 0, false, 12, 0},
        {"capacity alone", ONE, 5, 0, 128, 0, 0, false, 128, 0},
        {"missing buffer keeps its region", ONE, 1, 32, 0, 0, 0, true, 32, 0},
        {"4096 bytes", ONE, 3, 4096 - HEADER, 0, 0, 0, false, 4096 - HEADER, 0},
        {"4097 bytes", ONE, 3, 4097 - HEADER, 0, 0, 0, false, 4097 - HEADER, 0},
        {"more than the socket holds", ONE, 3, 1 << 20, 0, 0, 0, false, 1 << 20, 0},
        {"two buffers", TWO, 11, 8, 99, 24, 99, false, 8, 24},
        {"two capacities", TWO, 15, 8, 100, 4, 4000, false, 108, 4004},
        {"two capacities alone", TWO, 15, 0, 100, 0, 4000, false, 100, 4000},
        {"second buffer without its flag", TWO, 3, 8, 0, 24, 0, false, 8, 0},
        {"simple form", SIMPLE, 7, 4, 0, 0, 0, false, 4, 0},
    };
    for (const size_t limit : {size_t{1000}, size_t{7}, SIZE_MAX}) {
        send_limit = limit;
        for (const Framing &row : rows)
            if (row.sent1 < 5000 || limit != 7)
                check_framing(row, peer);
    }
}

// And whatever the length of its head, and in whatever pieces the reply comes; bytes after the
// reply are not read.
TEST_F(AgentSocket, ExchangeOfARecordSucceedsWhateverItsStatus) {
    for (const uint32_t length : {HEADER, HEADER + 16}) {
        kxdpa_request record[2]{};
        std::thread agent([&] {
            EXPECT_EQ(receive(peer, length).size(), length);
            const std::string reply = reply_head() + std::string(length - HEADER + 5, 'x');
            answer(peer, reply.substr(0, 1));
            poll(nullptr, 0, 5);
            answer(peer, reply.substr(1));
        });
        EXPECT_EQ(kx_tarncmd_socket_api(kx_tarncmd_call_fd, record, length), 0);
        agent.join();
        EXPECT_EQ(record[0].status, AGENT_STATUS);
        char rest[100];
        EXPECT_EQ(recv(kx_tarncmd_call_fd, rest, sizeof rest, MSG_DONTWAIT), 5);
    }
}

TEST_F(AgentSocket, TracesSayWhatFailed) {
    const std::string place = "dpa/command/kxtarncmd_indirect.cpp";
    const std::string sending =
        "kx_tarncmd_socket_api: Sending (52) bytes across\n"
        "kx_tarncmd_socket_api: Sent (0) bytes, not (52), sending (52) more\n";
    const std::string refused = sending + "kx_tarncmd_socket_api: EOF writing more data -1\n";
    const std::string sent =
        sending + "kx_tarncmd_socket_api: Sent (50) bytes, not (52), sending (2) more\n";
    const std::string silence = sent + "kx_tarncmd_socket_api: EOF reading bytes back 0\n";
    uint32_t word = 0;
    uint32_t huge = UINT32_MAX;
    const auto one = [&](uint8_t flags, uint32_t length, uint32_t *max) {
        return kx_tarncmd_call_indirect1(22, 0, flags, &word, length, max);
    };
    const auto two = [&](uint8_t flags, uint32_t *first, uint32_t *second) {
        return kx_tarncmd_call_indirect2(22, 0, flags, &word, 4, first, &word, 4, second);
    };
    const auto simple = [&] {
        return static_cast<uint32_t>(kx_tarncmd_call_indirect_simple(22, 0, 1, &word, 4));
    };
    const auto no_record = [] {
        return static_cast<uint32_t>(kx_tarncmd_socket_api(3, nullptr, HEADER));
    };
    enum agent_end { LISTENS, CLOSES_ITS_SIDE, GONE, LEAVES_THE_REQUEST };
    const struct {
        const char *what;
        agent_end agent;
        uint32_t debug_word;
        std::function<uint32_t()> call;
        uint32_t status;
        std::string trace;
    } rows[] = {
        {"one buffer without capacity", LISTENS, 0x97, [&] { return one(5, 4, nullptr); }, 2,
         place + "/321: Failed, opcode 22\n"},
        {"the line is off by default", LISTENS, 0x87, [&] { return one(5, 4, nullptr); }, 2, ""},
        {"two buffers without the first capacity", LISTENS, 0x97,
         [&] { return two(15, nullptr, &huge); }, 2, place + "/368: Failed, opcode 22\n"},
        {"two buffers without the second", LISTENS, 0x97, [&] { return two(15, &huge, nullptr); },
         2, place + "/382: Failed, opcode 22\n"},
        {"a size that wraps is never allocated", LISTENS, 0x87, [&] { return one(5, 5, &huge); }, 1,
         "kx_tarncmd_socket_api: Failed allocating return buffer\n"},
        {"one buffer to nobody", GONE, 0x97, [&] { return one(1, 4, nullptr); }, 1,
         refused + place + "/339: Failed: -1, opcode 22\ndi status 1\n"},
        {"one buffer without an answer", CLOSES_ITS_SIDE, 0x97, [&] { return one(1, 4, nullptr); },
         1, silence + place + "/339: Failed: -1, opcode 22\ndi status 1\n"},
        {"the same, silently", CLOSES_ITS_SIDE, 0x87, [&] { return one(1, 4, nullptr); }, 1, ""},
        {"one buffer that is never read", LEAVES_THE_REQUEST, 0x97,
         [&] { return one(1, 4, nullptr); }, 1,
         sent + "kx_tarncmd_socket_api: EOF reading bytes back -1\n" + place +
             "/339: Failed: -1, opcode 22\ndi status 1\n"},
        {"two buffers to nobody", GONE, 0x97, [&] { return two(3, nullptr, nullptr); }, 1,
         refused + place + "/395: Failed, opcode 22\ndi status 1\n"},
        {"the same, silently", GONE, 0x87, [&] { return two(3, nullptr, nullptr); }, 1, ""},
        {"simple to nobody", GONE, 0x87, simple, 1, place + "/294: Failed\n"},
        {"the same, silently", GONE, 0x86, simple, 1, ""},
        {"the same under its bit alone", GONE, 1, simple, 1, place + "/294: Failed\n"},
        {"no record", LISTENS, 0x97, no_record, UINT32_MAX,
         "kx_tarncmd_socket_api: Invalid args passed \n"},
        {"the same, silently", LISTENS, 0x87, no_record, UINT32_MAX, ""},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        TearDown();
        SetUp();
        kx_debug_print_kxtarncmd_indirect = row.debug_word;
        send_limit = 50;
        if (row.agent == GONE)
            close(std::exchange(peer, -1));
        else if (row.agent == CLOSES_ITS_SIDE)
            shutdown(peer, SHUT_WR);
        std::thread agent([&] {
            if (row.agent != LEAVES_THE_REQUEST)
                return;
            int arrived = 0;
            for (int tries = 0; tries < 5000 && arrived < 52; tries++) {
                poll(nullptr, 0, 1);
                ioctl(peer, FIONREAD, &arrived);
            }
            close(std::exchange(peer, -1));
        });
        const int connection = kx_tarncmd_call_fd;
        uint32_t status = 0;
        EXPECT_EQ(traced_by([&] { status = row.call(); }), row.trace);
        agent.join();
        EXPECT_EQ(status, row.status);
        EXPECT_EQ(kx_tarncmd_call_fd, row.agent == LISTENS ? connection : -1);
        EXPECT_EQ(fcntl(connection, F_GETFD) == -1, row.agent != LISTENS) << "left open";
    }
}

TEST_F(AgentSocket, CloseEndsTheConnection) {
    EXPECT_EQ(dpa_platform_close(), 0);
    EXPECT_EQ(kx_tarncmd_call_fd, -1);
    char byte = 0;
    EXPECT_EQ(recv(peer, &byte, 1, 0), 0) << "the agent reads the end";
    EXPECT_EQ(dpa_platform_close(), 0);
}

TEST_F(AgentSocket, ExitClosesAndForgetsNothing) {
    const int connection = kx_tarncmd_call_fd;
    EXPECT_EQ(kx_tarncmd_api_exit(), 0);
    EXPECT_EQ(kx_tarncmd_call_fd, connection);
    char byte = 0;
    EXPECT_EQ(recv(peer, &byte, 1, 0), 0);
    kx_tarncmd_call_fd = -1;
}

// The agent's own path, served by the test.
class AgentSocketPath : public testing::Test {
protected:
    void SetUp() override {
        std::string error;
        ASSERT_TRUE(paths.claim(error)) << error;
        limit_waiting(paths.listener());
    }
    void TearDown() override {
        dpa_platform_close();
    }
    agent_paths paths;
};

TEST_F(AgentSocketPath, HasOneConnectionThatNoProgramInherits) {
    const int connection = dpa_platform_open();
    EXPECT_EQ(dpa_platform_open(), connection) << "the number of the first one is free again";
    EXPECT_EQ(fcntl(connection, F_GETFD), FD_CLOEXEC);
}

TEST_F(AgentSocketPath, ConnectsAnewAfterAReplyThatEndsEarly) {
    constexpr size_t total = HEADER + 12;
    std::thread agent([&] {
        const std::string reply = reply_head() + std::string(12, 'r');
        // The last connection answers two requests.
        for (size_t length = 0; length <= total; length++) {
            const int client = accept(paths.listener(), nullptr, nullptr);
            limit_waiting(client);
            for (int requests = length == total ? 2 : 1; requests > 0; requests--) {
                receive(client, total);
                answer(client, reply.substr(0, length));
            }
            close(client);
        }
    });
    std::string data;
    const auto ask = [&] {
        uint32_t capacity = 8;
        data.assign(12, 's');
        return kx_tarncmd_call_indirect1(3, 0, 7, data.data(), 4, &capacity);
    };
    for (size_t length = 0; length < total; length++) {
        EXPECT_EQ(ask(), 1U) << length;
        EXPECT_EQ(data, std::string(12, 's')) << length;
        EXPECT_EQ(kx_tarncmd_call_fd, -1) << length;
    }
    for (int requests = 0; requests < 2; requests++) {
        EXPECT_EQ(ask(), AGENT_STATUS);
        EXPECT_EQ(data, std::string(12, 'r'));
    }
    agent.join();
}

TEST_F(AgentSocketPath, WithoutAnAgentTheConnectLineSaysWhy) {
    ASSERT_EQ(unlink(AGENT_SOCKET_PATH), 0);
    std::ofstream(AGENT_SOCKET_PATH).close(); // no socket
    uint32_t word = 0;
    uint32_t status = 0;
    EXPECT_EQ(traced_by([&] { status = kx_tarncmd_call_indirect1(2, 0, 1, &word, 4, nullptr); }),
              "dpa_platform_open: Failed connect local socket err: 111 - Connection refused\n");
    unlink(AGENT_SOCKET_PATH);
    EXPECT_EQ(status, 1U);
    EXPECT_EQ(kx_tarncmd_call_fd, -1);
    EXPECT_EQ(kx_tarncmd_api_exit(), -1);
}

TEST(AgentSocketDescriptor, IsMissedInOneLine) {
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    uint32_t word = 0;
    uint32_t status = 0;
    int opened = 0;
    const std::string traced = traced_by([&] {
        const int next = dup(STDOUT_FILENO);
        close(next);
        const rlimit none_left = {static_cast<rlim_t>(next), before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none_left);
        status = kx_tarncmd_call_indirect1(2, 0, 1, &word, 4, nullptr);
        opened = dpa_platform_open();
        setrlimit(RLIMIT_NOFILE, &before);
    });
    EXPECT_EQ(traced, "dpa_platform_open: Error opening local socket\n"
                      "dpa_platform_open: Error opening local socket\n");
    EXPECT_EQ(opened, -1);
    EXPECT_EQ(status, 1U);
}

} // namespace
