#include "dpa/command/dpa_cmd.h"
#include "frontend/handlers.h"
#include "sim/agent/agent_paths.h"
#include "sim/agent/agent_process.h"
#include "tests/infra/printed_by.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <poll.h>
#include <random>
#include <string>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace {

// What happens while the tool sleeps; the real thing when empty.
std::function<void()> while_asleep;

// The most bytes that one write takes.
size_t write_limit = SIZE_MAX;

} // namespace

extern "C" unsigned sleep(unsigned seconds) {
    if (while_asleep)
        while_asleep();
    else
        poll(nullptr, 0, static_cast<int>(seconds) * 1000);
    return 0;
}

extern "C" ssize_t write(int fd, const void *data, size_t size) {
    return syscall(SYS_write, fd, data, std::min(size, write_limit));
}

namespace {

off_t size_of(int fd) {
    struct stat found {};
    return fstat(fd, &found) == 0 ? found.st_size : -1;
}

// A file that grows by a piece in every sleep, until the pieces are used up.
class GrowingFile : public testing::Test {
protected:
    void SetUp() override {
        char name[] = "/tmp/growing-XXXXXX";
        writer = mkstemp(name);
        reader = open(name, O_RDONLY);
        unlink(name);
    }
    void TearDown() override {
        while_asleep = nullptr;
        close(writer);
        close(reader);
    }

    // What the copy prints; `found` says whether it ended at the marker.
    std::string copy(const std::vector<std::string> &pieces) {
        sleeps = 0;
        off_t shown = 0;
        EXPECT_EQ(ftruncate(writer, 0), 0);
        lseek(writer, 0, SEEK_SET);
        lseek(reader, 0, SEEK_SET);
        while_asleep = [&] {
            EXPECT_EQ(size_of(STDOUT_FILENO), shown) << "not flushed before a sleep";
            if (sleeps < pieces.size()) {
                const std::string &piece = pieces[sleeps];
                EXPECT_EQ(syscall(SYS_write, writer, piece.data(), piece.size()),
                          static_cast<ssize_t>(piece.size()));
                shown += std::count_if(piece.begin(), piece.end(), [](char c) { return c != 0; });
            }
            sleeps++;
        };
        return printed_by([&] { found = kx_read_out_from_fd(reader) != nullptr; });
    }

    int writer = -1;
    int reader = -1;
    size_t sleeps = 0;
    bool found = false;
};

TEST_F(GrowingFile, EndsAtAMarkerCutAnywhere) {
    const std::string marker = "#byeBye#";
    // The text in front decides where the reads fall: at 127 bytes.
    for (const size_t before : {0U, 1U, 6U, 9U, 11U, 120U, 124U, 127U, 250U}) {
        for (size_t cut = 0; cut < marker.size(); cut++) {
            const std::string text(before, '#');
            const std::string rest = marker.substr(cut) + "tail";
            EXPECT_EQ(copy({text + marker.substr(0, cut), rest}), text + marker + "tail")
                << before << " " << cut;
            EXPECT_TRUE(found) << before << " " << cut;
            EXPECT_EQ(sleeps, 2U) << before << " " << cut;
        }
    }
}

// All but its NULs.
TEST_F(GrowingFile, ShowsOutputCutAnywhereWholeAndOnce) {
    std::mt19937 random(4);
    for (int run = 0; run < 20; run++) {
        std::string text;
        for (int i = 0; i < 2000; i++)
            text += "#byeB\n\0%s"[random() % 9];
        text += "#byeBye#";
        std::vector<std::string> pieces;
        for (size_t at = 0; at < text.size();) {
            pieces.push_back(text.substr(at, random() % (run < 10 ? 4 : 400)));
            at += pieces.back().size();
        }
        const std::string copied = copy(pieces);
        std::erase(text, '\0');
        EXPECT_EQ(copied, text);
        EXPECT_TRUE(found);
    }
}

TEST_F(GrowingFile, GivesUpAfterTwentyIdleReads) {
    const std::vector<std::string> idle(19, "");
    std::vector<std::string> in_time = idle;
    in_time[18] = "in time";
    std::vector<std::string> late = idle;
    late.emplace_back("late");
    EXPECT_EQ(copy({}), "");
    EXPECT_EQ(sleeps, 20U);
    EXPECT_EQ(copy(in_time), "in time");
    EXPECT_EQ(sleeps, 19U + 20U);
    EXPECT_EQ(copy(late), "") << "the read behind the last idle one is not shown";
    EXPECT_FALSE(found);
    close(std::exchange(reader, -1));
    EXPECT_EQ(printed_by([&] { kx_read_out_from_fd(reader); }), "");
}

TEST(SendToFd, WritesEverythingInWhateverSteps) {
    const std::string text = "redirect set /somewhere";
    for (const size_t limit : {size_t{1}, size_t{7}, SIZE_MAX}) {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        write_limit = limit;
        const int result = kx_send_to_fd(ends[1], text.data(), static_cast<int>(text.size()));
        write_limit = SIZE_MAX;
        EXPECT_EQ(result, 0);
        EXPECT_EQ(kx_send_to_fd(ends[1], text.data(), 0), 0);
        EXPECT_EQ(kx_send_to_fd(ends[1], text.data(), -5), 0);
        close(ends[1]);
        std::string seen(100, '\0');
        seen.resize(static_cast<size_t>(read(ends[0], seen.data(), seen.size())));
        EXPECT_EQ(seen, text);
        close(ends[0]);
    }
    int result = 0;
    EXPECT_EQ(printed_by([&] { result = kx_send_to_fd(-1, "x", 1); }),
              "Write error 9 - Bad file descriptor\n");
    EXPECT_EQ(result, -1);
}

// The conversation with an agent at its own pipe.
class DpaCommand : public testing::Test {
protected:
    void SetUp() override {
        if (access("/var/log", W_OK) != 0)
            GTEST_SKIP() << "the output file's folder cannot be written";
        std::string error;
        ASSERT_TRUE(paths.claim(error)) << error;
    }
    void TearDown() override {
        while_asleep = nullptr;
        unlink(output.c_str());
    }

    std::string run(const char *command, const std::function<void()> &asleep) {
        while_asleep = asleep;
        return printed_by([&] { result = kx_dpa_cmd(command); });
    }

    std::string take_from_pipe() {
        std::string bytes(4096, '\0');
        const ssize_t got = read(paths.pipe(), bytes.data(), bytes.size());
        bytes.resize(static_cast<size_t>(std::max<ssize_t>(got, 0)));
        return bytes;
    }

    bool output_exists() const {
        return access(output.c_str(), F_OK) == 0;
    }

    const std::string output = "/var/log/dpaout." + std::to_string(getpid());
    agent_paths paths;
    int result = 0;
};

TEST_F(DpaCommand, SendsExactlyTheseMessages) {
    const std::string set = "redirect set " + output + std::string(1, '\0');
    const std::string reset("redirect reset \0", 16);
    const struct {
        std::string command;
        std::string sent;
        std::string printed;
    } rows[] = {
        {"show version", "show version\n", "=>dpa command is: show version\n\n"},
        {std::string(126, 'a'), std::string(126, 'a') + "\n",
         "=>dpa command is: " + std::string(126, 'a') + "\n\n"},
        {std::string(127, 'b'), std::string(126, 'b') + "\n",
         "=>dpa command is: " + std::string(127, 'b') + "\n\n"},
        {std::string(250, 'c'), std::string(126, 'c') + "\n",
         "=>dpa command is: " + std::string(250, 'c') + "\n\n"},
        {"", "", "=>dpa command is: \nNo command\n"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(run(row.command.c_str(), [] {}), row.printed);
        EXPECT_EQ(take_from_pipe(), set + row.sent + reset);
        EXPECT_EQ(result, 0);
        EXPECT_FALSE(output_exists());
    }
}

TEST_F(DpaCommand, FailuresBeforeTheConversationEndTheCommand) {
    EXPECT_EQ(run(nullptr, [] {}), "Missing dpa command\n");
    EXPECT_EQ(result, -1);
    EXPECT_FALSE(output_exists());

    ASSERT_EQ(mkdir(output.c_str(), 0700), 0);
    EXPECT_EQ(run("x", [] {}), "Couldn't create " + output + " 21 - Is a directory\n");
    EXPECT_EQ(result, -1);
    rmdir(output.c_str());

    paths.close_descriptors();
    EXPECT_EQ(run("x", [] {}), " Error opening fifo (6), exiting\n") << "nobody reads the pipe";
    EXPECT_EQ(result, -1);
    EXPECT_TRUE(output_exists());

    unlink(AGENT_PIPE_PATH);
    EXPECT_EQ(run("x", [] {}), " Error opening fifo (2), exiting\n");
    EXPECT_EQ(result, -1);
}

TEST_F(DpaCommand, AnAgentThatGoesAwayIsTwoFailedWrites) {
    EXPECT_EQ(run("x", [&] { paths.close_descriptors(); }),
              "=>dpa command is: x\n"
              "Write error 32 - Broken pipe\nwrite failed"
              "Write error 32 - Broken pipe\nwrite failed");
    EXPECT_EQ(result, 0);
    EXPECT_FALSE(output_exists());
    EXPECT_EQ(std::signal(SIGPIPE, SIG_DFL), SIG_DFL);
}

TEST(DpaCommandAgent, ShowsOutputWhereverTheMarkerIsSplit) {
    if (access("/var/log", W_OK) != 0)
        GTEST_SKIP() << "the output file's folder cannot be written";
    agent_description description;
    for (uint32_t split = 0; split < 8; split++) {
        agent_command command;
        command.command = "show " + std::to_string(split);
        command.output = "row one\nrow #two\n";
        command.split_marker = split;
        command.pause = 60;
        description.commands.push_back(command);
    }
    agent_process agent;
    std::string error;
    ASSERT_TRUE(agent.start(description, error)) << error;
    while_asleep = [] { poll(nullptr, 0, 20); };
    for (const agent_command &known : description.commands) {
        EXPECT_EQ(printed_by([&] { EXPECT_EQ(kx_dpa_cmd(known.command.c_str()), 0); }),
                  "=>dpa command is: " + known.command + "\nrow one\nrow #two\n#byeBye#\n");
    }
    EXPECT_EQ(printed_by([&] { kx_dpa_cmd("reboot"); }),
              "=>dpa command is: reboot\nUnknown command: reboot\n#byeBye#\n");
    while_asleep = nullptr;
}

} // namespace
