#include "dpa/command/kxtarncmd_indirect.h"
#include "sim/agent/agent_process.h"
#include "tests/host/described.h"

#include <array>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

bool exists(const char *path) {
    return access(path, F_OK) == 0;
}

TEST(AgentProcess, AnswersAsDescribed) {
    const host lab = described(R"({"agent": {"answers": [
        {"opcode": 2, "argument": 9, "status": 5},
        {"opcode": 2, "time": 2, "delay": 50, "reply": "aabb"},
        {"opcode": 2, "reply": "0102030405060708090a"},
        {"opcode": 3, "time": 2, "close_after": 50},
        {"opcode": 3, "reply": "07"}]}})");
    std::string error;
    {
        agent_process agent;
        ASSERT_TRUE(agent.start(*lab.agent, error)) << error;
        const struct {
            int opcode;
            uint32_t arg;
            uint32_t status;
            const char *reply;
            bool connected; // afterwards
        } rows[] = {
            {2, 0, 0, "\1\2\3\4\5\6\7\10", true}, {2, 0, 0, "\xAA\xBB\0\0\0\0\0\0", true},
            {2, 9, 5, "########", true},          {8, 0, 38, "########", true},
            {3, 0, 0, "\7\0\0\0\0\0\0\0", true},  {3, 0, 1, "########", false},
            {3, 0, 0, "\7\0\0\0\0\0\0\0", true},
        };
        int connection = -1;
        const auto start = std::chrono::steady_clock::now();
        for (const auto &row : rows) {
            std::array<char, 8> data;
            data.fill('#');
            EXPECT_EQ(kx_tarncmd_call_indirect1(row.opcode, row.arg, KXDPA_FLAG_OUT, data.data(), 8,
                                                nullptr),
                      row.status);
            EXPECT_EQ(memcmp(data.data(), row.reply, data.size()), 0) << row.opcode;
            EXPECT_EQ(kx_tarncmd_call_fd != -1, row.connected);
            EXPECT_TRUE(connection == -1 || !row.connected || connection == kx_tarncmd_call_fd);
            connection = kx_tarncmd_call_fd;
        }
        EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(50));
        dpa_platform_close();
    }
    EXPECT_FALSE(exists(AGENT_SOCKET_PATH));
    EXPECT_FALSE(exists(AGENT_PIPE_PATH));
}

TEST(AgentProcess, SaysWhichMessageIsWrong) {
    const struct {
        const char *complaint;
        std::function<void(kxdpa_request &)> spoil;
        uint32_t status;
    } rows[] = {
        {"", [](auto &) {}, 38},
        {"agent: op 7: marker is wrong\n", [](auto &r) { r.marker = KXDPA_KERNEL_MARKER; }, 22},
        {"agent: op 7: version is wrong\n", [](auto &r) { r.version++; }, 22},
        {"agent: op 7: reserved is wrong\n", [](auto &r) { r.reserved[2] = 1; }, 22},
        {"agent: op 7: max1_valid is wrong\n", [](auto &r) { r.flags = KXDPA_FLAG_MAX; }, 22},
        {"agent: op 7: max2_valid is wrong\n", [](auto &r) { r.max2_valid = 1; }, 22},
        {"agent: op 7: a message of 4294967343 bytes\n", [](auto &r) { r.len1 = 0xFFFFFFFF; }, 0},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.complaint);
        testing::internal::CaptureStderr();
        kxdpa_request record{};
        record.opcode = 7;
        record.marker = KXDPA_SOCKET_MARKER;
        record.version = KXDPA_SOCKET_VERSION;
        row.spoil(record);
        uint32_t status = 0;
        {
            std::string error;
            agent_process agent;
            ASSERT_TRUE(agent.start({}, error)) << error;
            const int asking = socket(AF_UNIX, SOCK_STREAM, 0);
            sockaddr_un address{};
            address.sun_family = AF_UNIX;
            strcpy(address.sun_path, AGENT_SOCKET_PATH);
            ASSERT_EQ(connect(asking, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
            ASSERT_EQ(send(asking, &record, sizeof record, 0), ssize_t{sizeof record});
            kxdpa_request answered{};
            if (recv(asking, &answered, sizeof answered, MSG_WAITALL) == sizeof answered)
                status = answered.status;
            close(asking);
        }
        EXPECT_EQ(testing::internal::GetCapturedStderr(), row.complaint);
        EXPECT_EQ(status, row.status);
    }
}

TEST(AgentPaths, RefuseWhatSomebodyElseServes) {
    agent_paths turn;
    std::string error;
    ASSERT_TRUE(turn.lock(error)) << error;
    const auto refusal = [] {
        agent_paths paths;
        std::string reason;
        return paths.open(reason) ? "" : reason;
    };
    const std::string in_use = ": belongs to somebody else";

    ASSERT_EQ(mkdir(AGENT_SOCKET_PATH, 0700), 0);
    EXPECT_EQ(refusal(), AGENT_SOCKET_PATH + in_use);
    rmdir(AGENT_SOCKET_PATH);

    const int other = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    strcpy(address.sun_path, AGENT_SOCKET_PATH);
    ASSERT_EQ(bind(other, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
    ASSERT_EQ(listen(other, 1), 0);
    EXPECT_EQ(refusal(), AGENT_SOCKET_PATH + in_use);
    close(other);

    ASSERT_EQ(mkfifo(AGENT_PIPE_PATH, 0600), 0);
    const int reader = open(AGENT_PIPE_PATH, O_RDONLY | O_NONBLOCK);
    EXPECT_EQ(refusal(), AGENT_PIPE_PATH + in_use);
    close(reader);

    // What is left now is what a dead run leaves behind.
    EXPECT_EQ(refusal(), "");
    EXPECT_FALSE(exists(AGENT_SOCKET_PATH));
    EXPECT_FALSE(exists(AGENT_PIPE_PATH));
}

} // namespace
