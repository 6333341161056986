#include "dpa/command/dpa_cmd.h"
#include "frontend/handlers.h"
#include "sim/agent/agent_paths.h"
#include "tests/infra/printed_by.h"
#include "tests/text.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <poll.h>
#include <random>
#include <set>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

// Called while the tool sleeps; when empty, the tool really sleeps.
std::function<void()> while_asleep;

// The time that all sleeps asked for.
std::chrono::microseconds slept;

// The most bytes that one write takes, how many of the next writes fail, and whether a write was
// made that would not have waited for room.
size_t write_limit = SIZE_MAX;
int failing_writes = 0;
bool writes_do_not_wait = false;

// The files belong to a user other than the caller.
bool as_another_user = false;

} // namespace

extern "C" int usleep(useconds_t microseconds) {
    slept += std::chrono::microseconds(microseconds);
    if (while_asleep)
        while_asleep();
    else
        poll(nullptr, 0, static_cast<int>(microseconds / 1000));
    return 0;
}

// The tool watches its standard output while it sleeps.
extern "C" int poll(pollfd *watched, nfds_t count, int milliseconds) {
    const auto look = [&](int time) {
        return static_cast<int>(syscall(SYS_poll, watched, count, time));
    };
    if (!while_asleep || count != 1 || watched->fd != STDOUT_FILENO || milliseconds == 0)
        return look(milliseconds);
    const int before = look(0);
    if (before != 0)
        return before;
    slept += std::chrono::milliseconds(milliseconds);
    while_asleep();
    return look(0);
}

extern "C" uid_t geteuid() noexcept {
    return static_cast<uid_t>(syscall(SYS_geteuid32)) + (as_another_user ? 1 : 0);
}

extern "C" ssize_t write(int fd, const void *data, size_t size) {
    writes_do_not_wait |= (fcntl(fd, F_GETFL) & O_NONBLOCK) != 0;
    if (failing_writes > 0) {
        failing_writes--;
        errno = EIO;
        return -1;
    }
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

    // The text that the copy prints; `found` says whether the copy ended at the marker.
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
    // The length of the text before decides where a read ends: at 127 bytes.
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

// The copy ends with the read that holds the marker's end.
TEST_F(GrowingFile, ShowsNothingOfTheReadBehindTheMarkers) {
    const std::string shown = std::string(119, 'x') + "#byeBye#";
    EXPECT_EQ(copy({shown + "T"}), shown);
}

// The text without its NULs.
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
    EXPECT_EQ(copy(late), "") << "the read after the last idle one is not shown";
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

std::set<int> open_descriptors() {
    std::set<int> open;
    for (int descriptor = 0; descriptor < 256; descriptor++)
        if (fcntl(descriptor, F_GETFD) != -1)
            open.insert(descriptor);
    return open;
}

std::string output_of(pid_t process) {
    return "/var/log/dpaout." + std::to_string(process);
}

// A conversation with an agent, at a pipe of its own.
class DpaCommand : public testing::Test {
protected:
    void SetUp() override {
        if (access("/var/log", W_OK) != 0)
            GTEST_SKIP() << NO_OUTPUT_FOLDER;
        std::string error;
        ASSERT_TRUE(paths.claim(error)) << error;
    }
    void TearDown() override {
        while_asleep = nullptr;
        unlink(output.c_str());
    }

    std::string run(const char *command, const std::function<void()> &asleep) {
        slept = {};
        while_asleep = asleep;
        return printed_by([&] {
            open_before = open_descriptors();
            result = kx_dpa_cmd(command);
            left_open = open_descriptors().size() - open_before.size();
        });
    }

    std::string take_from_pipe() {
        std::string bytes(4096, '\0');
        const ssize_t got = read(paths.pipe(), bytes.data(), bytes.size());
        bytes.resize(static_cast<size_t>(std::max<ssize_t>(got, 0)));
        return bytes;
    }

    // All bytes that a process sends in a conversation; `command` is the middle of them.
    static std::string messages(const std::string &command, pid_t process = getpid()) {
        return "redirect set " + output_of(process) + std::string(1, '\0') + command +
               std::string("redirect reset \0", 16);
    }

    bool output_exists() const {
        return access(output.c_str(), F_OK) == 0;
    }

    const std::string output = output_of(getpid());
    agent_paths paths;
    int result = 0;
    std::set<int> open_before;
    size_t left_open = 0;
};

TEST_F(DpaCommand, SendsExactlyTheseMessages) {
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
    writes_do_not_wait = false;
    const auto look = [&] {
        struct stat found {};
        EXPECT_EQ(stat(output.c_str(), &found), 0);
        EXPECT_EQ(found.st_mode & 07777, 0700U);
        std::set<int> opened = open_descriptors();
        std::erase_if(opened, [&](int descriptor) { return open_before.contains(descriptor); });
        std::set<int> flags;
        for (const int descriptor : opened) {
            EXPECT_EQ(fcntl(descriptor, F_GETFD), FD_CLOEXEC);
            flags.insert(fcntl(descriptor, F_GETFL) & (O_ACCMODE | O_NOFOLLOW));
        }
        EXPECT_EQ(flags, (std::set<int>{O_RDONLY | O_NOFOLLOW, O_WRONLY | O_NOFOLLOW}));
    };
    for (const auto &row : rows) {
        EXPECT_EQ(run(row.command.c_str(), look), row.printed);
        EXPECT_EQ(take_from_pipe(), messages(row.sent));
        EXPECT_EQ(result, 0);
        EXPECT_EQ(slept, std::chrono::seconds(row.sent.empty() ? 21 : 22));
        EXPECT_EQ(left_open, 0U);
        EXPECT_FALSE(output_exists());
    }
    EXPECT_FALSE(writes_do_not_wait);
}

TEST_F(DpaCommand, ARedirectionThatFailsSendsNoCommand) {
    failing_writes = 1;
    EXPECT_EQ(run("x", [] {}), "Write error 5 - Input/output error\nwrite failed\n");
    EXPECT_EQ(take_from_pipe(), std::string("redirect reset \0", 16));
    EXPECT_EQ(result, 0);
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
    EXPECT_EQ(slept, std::chrono::seconds(20));
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
}

TEST_F(DpaCommand, WaitsForAnAgentThatOpensItsPipeLate) {
    paths.close_descriptors();
    int reader = -1;
    EXPECT_EQ(run("x",
                  [&] {
                      if (reader == -1 && slept >= std::chrono::milliseconds(19'900))
                          reader = open(AGENT_PIPE_PATH, O_RDONLY | O_NONBLOCK);
                  }),
              "=>dpa command is: x\n\n");
    std::string sent(100, '\0');
    sent.resize(static_cast<size_t>(read(reader, sent.data(), sent.size())));
    EXPECT_EQ(sent, messages("x\n"));
    close(reader);
}

// What is in place of the pipe or the output file, and who would lose it.
TEST_F(DpaCommand, WritesToNobodyElsesFile) {
    const std::string no_pipe = " Error opening fifo (";
    const std::string no_file = "Couldn't create " + output + " ";
    const struct {
        std::string path;
        int (*put)(const char *, const char *);
        std::string printed;
    } rows[] = {
        {AGENT_PIPE_PATH, symlink, no_pipe + "40), exiting\n"},
        {AGENT_PIPE_PATH, link, no_pipe + "1), exiting\n"},
        {output, symlink, no_file + "40 - Too many levels of symbolic links\n"},
        {output, link, no_file + "17 - File exists\n"},
    };
    for (const auto &row : rows) {
        const std::string target = row.path + ".not-to-be-lost"; // on the same file system
        std::ofstream(target) << "kept";
        unlink(row.path.c_str());
        ASSERT_EQ(row.put(target.c_str(), row.path.c_str()), 0);
        EXPECT_EQ(run("x", [] {}), row.printed);
        EXPECT_EQ(result, -1);
        EXPECT_EQ(left_open, row.path == output ? 0U : 1U) << "the output file's descriptor stays";
        EXPECT_EQ(read_file(target), "kept");
        unlink(target.c_str());
    }
    unlink(output.c_str());
    ASSERT_EQ(mkfifo(output.c_str(), 0700), 0);
    EXPECT_EQ(run("x", [] {}), no_file + "6 - No such device or address\n");
    const int reader = open(output.c_str(), O_RDONLY | O_NONBLOCK);
    EXPECT_EQ(run("x", [] {}), no_file + "17 - File exists\n");
    close(reader);
    unlink(output.c_str());
    std::ofstream(output) << "kept";
    as_another_user = true;
    EXPECT_EQ(run("x", [] {}), no_file + "17 - File exists\n");
    as_another_user = false;
    EXPECT_EQ(read_file(output), "kept");
    // The tool uses the caller's own files: one left over from an earlier run, and one made for a
    // try.
    unlink(output.c_str());
    std::ofstream(output) << "left behind";
    unlink(AGENT_PIPE_PATH);
    std::ofstream(AGENT_PIPE_PATH) << "to try with";
    EXPECT_EQ(run("x", [] {}), "=>dpa command is: x\n\n");
    EXPECT_EQ(result, 0);
}

// A socket fails like a FIFO without a reader, but no reader will come.
TEST_F(DpaCommand, DoesNotWaitForTheReaderOfASocket) {
    unlink(AGENT_PIPE_PATH);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    strcpy(address.sun_path, AGENT_PIPE_PATH);
    const int server = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(server, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    EXPECT_EQ(run("x", [] {}), " Error opening fifo (6), exiting\n");
    EXPECT_EQ(slept, std::chrono::milliseconds(0));
    close(server);
    unlink(AGENT_PIPE_PATH);
}

// The host's own dispositions, with all their flags and masks.
int host_signals;

void count_signal(int /*signal*/, siginfo_t * /*info*/, void * /*context*/) {
    host_signals++;
}

class DpaCommandSignals : public DpaCommand {
protected:
    void SetUp() override {
        DpaCommand::SetUp();
        host_signals = 0;
        for (size_t i = 0; i < std::size(SIGNALS); i++) {
            struct sigaction host {};
            host.sa_sigaction = count_signal;
            host.sa_flags = SA_SIGINFO | SA_RESTART;
            sigaddset(&host.sa_mask, SIGUSR1);
            sigaction(SIGNALS[i], &host, &before[i]);
        }
    }
    void TearDown() override {
        for (size_t i = 0; i < std::size(SIGNALS); i++)
            sigaction(SIGNALS[i], &before[i], nullptr);
        DpaCommand::TearDown();
    }
    static void expect_host_dispositions() {
        for (const int signal : SIGNALS) {
            struct sigaction now {};
            sigaction(signal, nullptr, &now);
            EXPECT_EQ(now.sa_sigaction, count_signal) << signal;
            EXPECT_EQ(now.sa_flags & (SA_SIGINFO | SA_RESTART), SA_SIGINFO | SA_RESTART) << signal;
            EXPECT_EQ(sigismember(&now.sa_mask, SIGUSR1), 1) << signal;
        }
    }

    static constexpr int SIGNALS[] = {SIGPIPE, SIGINT, SIGHUP, SIGTERM};
    struct sigaction before[std::size(SIGNALS)]{};
};

TEST_F(DpaCommandSignals, GiveTheHostItsDispositionsBackWhole) {
    run("x", [] {});
    EXPECT_EQ(result, 0);
    expect_host_dispositions();
    EXPECT_EQ(host_signals, 0);
}

TEST_F(DpaCommandSignals, EndTheConversationInOrder) {
    const std::string shown = "=>dpa command is: x\n";
    const struct {
        int signal;
        int at_sleep; // from 1
        std::string sent;
        std::string printed;
    } rows[] = {
        {SIGINT, 1, messages(""), ""},
        {SIGHUP, 2, messages("x\n"), shown},
        {SIGTERM, 3, messages("x\n"), shown},
    };
    for (const auto &row : rows) {
        host_signals = 0;
        int sleeps = 0;
        const auto asleep = [&] {
            if (++sleeps == row.at_sleep)
                raise(row.signal);
        };
        EXPECT_EQ(run("x", asleep), row.printed + (row.at_sleep == 3 ? "\n" : ""));
        EXPECT_EQ(sleeps, row.at_sleep);
        EXPECT_EQ(take_from_pipe(), row.sent);
        EXPECT_FALSE(output_exists());
        EXPECT_EQ(result, -2) << "the commands after it do not run";
        EXPECT_EQ(host_signals, 1) << "the host has outlived it";
        expect_host_dispositions();
    }
}

struct child_end {
    pid_t process;
    int status;
    bool ended_by(int signal) const {
        return WIFSIGNALED(status) && WTERMSIG(status) == signal;
    }
};

// Run in a child, which exits with what `run` returns.
child_end in_child(const std::function<int()> &run) {
    fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        alarm(10);
        _exit(run());
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_NE(unlink(output_of(child).c_str()), 0) << "the output file was left behind";
    return {child, status};
}

const std::string SHOWN = "/tmp/shown-by-children-of-" + std::to_string(getpid());

// Run the command in a child and send it `signal` in a given sleep, counted from 1.
child_end run_in_child(int signal, void (*disposition)(int), int at_sleep = 1) {
    return in_child([&] {
        std::signal(signal, disposition);
        int sleeps = 0;
        while_asleep = [&] {
            if (++sleeps == at_sleep)
                raise(signal);
        };
        return freopen(SHOWN.c_str(), "w", stdout) == nullptr ? 1 : kx_dpa_cmd("x");
    });
}

TEST_F(DpaCommand, SignalsEndTheToolUnlessTheyAreIgnored) {
    for (const int signal : {SIGINT, SIGHUP, SIGTERM}) {
        const child_end ended = run_in_child(signal, SIG_DFL);
        EXPECT_TRUE(ended.ended_by(signal)) << signal;
        EXPECT_EQ(take_from_pipe(), messages("", ended.process));
        const child_end ignored = run_in_child(signal, SIG_IGN);
        EXPECT_EQ(ignored.status, 0);
        EXPECT_EQ(take_from_pipe(), messages("x\n", ignored.process));
    }
    EXPECT_TRUE(run_in_child(SIGTERM, SIG_DFL, 3).ended_by(SIGTERM));
    EXPECT_EQ(read_file(SHOWN), "=>dpa command is: x\n\n");
    // Also while it waits for a reader.
    paths.close_descriptors();
    const child_end waiting = run_in_child(SIGINT, SIG_DFL);
    EXPECT_TRUE(waiting.ended_by(SIGINT));
    unlink(SHOWN.c_str());
}

// Opens the two ends of an output, the reader's end first.
void open_pipe(int (&ends)[2]) {
    ASSERT_EQ(pipe(ends), 0);
}
void open_socket(int (&ends)[2]) {
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
}
void open_file(int (&ends)[2]) {
    ends[0] = open("/dev/null", O_RDONLY);
    ends[1] = open("/tmp", O_TMPFILE | O_WRONLY, 0600);
}
constexpr int GONE_BEFORE = 0;
constexpr int STAYS = 1000;
constexpr int ALL_SLEEPS = 22; // two after the messages, and the idle ones
constexpr int STOPPED = 100;

// Run the command in a child whose reader goes away in a given sleep, counted from 1. The child
// exits with the number of its sleeps, plus STOPPED when the commands after it do not run.
child_end run_until_unread(void (*open_output)(int (&)[2]), int gone_at, void (*on_broken)(int)) {
    return in_child([&] {
        std::signal(SIGPIPE, on_broken);
        int ends[2];
        open_output(ends);
        fcntl(STDOUT_FILENO, F_SETFD, FD_CLOEXEC);
        dup2(ends[1], STDOUT_FILENO);
        close(ends[1]);
        if (gone_at == GONE_BEFORE)
            close(ends[0]);
        printf("the rows of the command before");
        int sleeps = 0;
        while_asleep = [&] {
            if (++sleeps != gone_at)
                return;
            // Unread bytes would tell the tool, too, that the reader is gone.
            char unread[4096];
            EXPECT_GE(read(ends[0], unread, sizeof unread), 0);
            close(ends[0]);
        };
        const int result = kx_dpa_cmd("x");
        return sleeps + (result == -2 ? STOPPED : 0);
    });
}

TEST_F(DpaCommand, EndsInOrderWhenNobodyReadsItsOutput) {
    const struct {
        void (*open_output)(int (&)[2]);
        int gone_at;
        std::string command;
        int sleeps;
    } rows[] = {
        {open_pipe, GONE_BEFORE, "", 0},
        {open_pipe, 1, "", 1},
        {open_pipe, 2, "x\n", 2},
        {open_pipe, 9, "x\n", 9},
        {open_socket, 1, "", 1},
        {open_socket, 9, "x\n", 9},
        {open_pipe, STAYS, "x\n", ALL_SLEEPS},
        {open_socket, STAYS, "x\n", ALL_SLEEPS},
        {open_file, 1, "x\n", ALL_SLEEPS},
    };
    for (const auto &row : rows) {
        const auto number = &row - rows;
        const bool gone = row.sleeps == row.gone_at;
        child_end seen = run_until_unread(row.open_output, row.gone_at, SIG_DFL);
        if (gone)
            EXPECT_TRUE(seen.ended_by(SIGPIPE)) << number << ": " << seen.status;
        else
            EXPECT_EQ(seen.status, W_EXITCODE(row.sleeps, 0)) << number;
        EXPECT_EQ(take_from_pipe(), messages(row.command, seen.process)) << number;
        seen = run_until_unread(row.open_output, row.gone_at, SIG_IGN);
        EXPECT_EQ(seen.status, W_EXITCODE(row.sleeps + (gone ? STOPPED : 0), 0)) << number;
        EXPECT_EQ(take_from_pipe(), messages(row.command, seen.process)) << number;
    }
    // Also while the tool copies output that comes without a pause.
    const child_end flooded = in_child([] {
        std::signal(SIGPIPE, SIG_IGN);
        int ends[2];
        open_pipe(ends);
        if (fork() == 0) {
            close(ends[1]);
            char text[4096];
            ssize_t got = 0;
            while ((got = read(ends[0], text, sizeof text)) > 0 &&
                   memchr(text, '~', static_cast<size_t>(got)) == nullptr) {
            }
            _exit(0);
        }
        dup2(ends[1], STDOUT_FILENO);
        close(ends[1]);
        close(ends[0]);
        while_asleep = [] { std::ofstream(output_of(getpid())) << std::string(1 << 20, '~'); };
        if (kx_dpa_cmd("x") != -2)
            return 0;
        dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
        while_asleep = [] {};
        return kx_dpa_cmd("x") == 0 ? STOPPED : 1; // the next one has a reader again
    });
    EXPECT_EQ(flooded.status, W_EXITCODE(STOPPED, 0));
    // And while it waits for the agent.
    paths.close_descriptors();
    for (const int gone_at : {GONE_BEFORE, 1, 9})
        EXPECT_TRUE(run_until_unread(open_pipe, gone_at, SIG_DFL).ended_by(SIGPIPE)) << gone_at;
}

// A closed output has no reader to lose.
TEST_F(DpaCommand, RunsToItsEndWithoutAnOutput) {
    const child_end ended = in_child([] {
        while_asleep = [] { close(STDOUT_FILENO); };
        return kx_dpa_cmd("x") == 0 && slept >= std::chrono::seconds(2) ? 0 : 1;
    });
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(take_from_pipe(), messages("x\n", ended.process));
}

// The tool waits for an agent that does not read its pipe, but not after the reader of the output
// has gone.
TEST_F(DpaCommand, WaitsForRoomInThePipe) {
    const std::string filling(4096, 'f');
    const auto fill = [&] {
        while (syscall(SYS_write, paths.pipe(), filling.data(), filling.size()) > 0) {
        }
    };
    fill();
    EXPECT_TRUE(run_until_unread(open_pipe, GONE_BEFORE, SIG_DFL).ended_by(SIGPIPE));
    fill();
    const child_end ended = in_child([] {
        std::signal(SIGTERM, SIG_DFL);
        dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
        const pid_t tool = getpid();
        if (fork() == 0) {
            poll(nullptr, 0, 50);
            kill(tool, SIGTERM);
            _exit(0);
        }
        return kx_dpa_cmd("x");
    });
    EXPECT_TRUE(ended.ended_by(SIGTERM));
    const pid_t agent = fork();
    if (agent == 0) {
        usleep(20'000);
        while (take_from_pipe()[0] == 'f') {
        }
        _exit(0);
    }
    EXPECT_EQ(run_until_unread(open_pipe, STAYS, SIG_DFL).status, W_EXITCODE(ALL_SLEEPS, 0));
    waitpid(agent, nullptr, 0);
}

} // namespace
