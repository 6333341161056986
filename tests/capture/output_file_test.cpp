#include "capture/output_file.h"
#include "tests/text.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

// What the file system lacks, and the signal that comes at the worst moment.
bool links_are_refused = false;
bool renames_are_refused = false;
int signal_at_rename = 0;

} // namespace

extern "C" int linkat(int from_folder, const char *from, int to_folder, const char *to,
                      int flags) noexcept {
    if (links_are_refused) {
        errno = EOPNOTSUPP;
        return -1;
    }
    return static_cast<int>(syscall(SYS_linkat, from_folder, from, to_folder, to, flags));
}

extern "C" int rename(const char *from, const char *to) noexcept {
    if (signal_at_rename != 0)
        raise(signal_at_rename);
    if (renames_are_refused) {
        errno = EIO;
        return -1;
    }
    return static_cast<int>(syscall(SYS_rename, from, to));
}

namespace {

class OutputFile : public testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        char name[] = "/tmp/output-file-XXXXXX";
        folder = mkdtemp(name);
        links_are_refused = GetParam();
    }
    void TearDown() override {
        links_are_refused = renames_are_refused = false;
        fs::remove_all(folder);
    }
    long files() const {
        return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
    }

    fs::path folder;
    std::string error;
};

INSTANTIATE_TEST_SUITE_P(, OutputFile, testing::Bool(),
                         [](const auto &tested) { return tested.param ? "Named" : "Nameless"; });

TEST_P(OutputFile, ReplacesAFileAndKeepsItsModeAndLinks) {
    const fs::path file = folder / "host.json", link = folder / "link";
    const fs::path longest = folder / std::string(NAME_MAX, 'n');
    fs::create_symlink("host.json", link);
    fs::create_directory(folder / "far");
    fs::create_symlink("far/later", folder / "dangling");
    fs::create_symlink(folder / "dangling", folder / "far" / "chain");
    const mode_t mask = umask(027);
    EXPECT_TRUE(check_output_file(file, error)) << error;
    EXPECT_FALSE(fs::exists(file));
    EXPECT_TRUE(write_output_file(file, "first", error)) << error;
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0640));
    umask(mask);
    chmod(file.c_str(), 0604);
    EXPECT_TRUE(check_output_file(link, error)) << error;
    EXPECT_TRUE(write_output_file(link, "second", error)) << error;
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(read_file(file), "second");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0604));
    EXPECT_TRUE(check_output_file(longest, error)) << error;
    EXPECT_TRUE(write_output_file(longest, "third", error)) << error;
    EXPECT_EQ(read_file(longest), "third");
    EXPECT_TRUE(check_output_file(folder / "far" / "chain", error)) << error;
    EXPECT_TRUE(write_output_file(folder / "far" / "chain", "fourth", error)) << error;
    EXPECT_TRUE(fs::is_symlink(folder / "dangling") && fs::is_symlink(folder / "far" / "chain"));
    EXPECT_EQ(read_file(folder / "far" / "later"), "fourth");
    EXPECT_EQ(files(), 5);
    for (const fs::path &refused : {folder / "far", folder / "none" / "file", folder / "loop"}) {
        fs::remove(folder / "loop");
        fs::create_symlink("loop", folder / "loop");
        EXPECT_FALSE(check_output_file(refused, error));
        EXPECT_FALSE(write_output_file(refused, "text", error));
    }
    EXPECT_EQ(error, (folder / "loop").string() + ": cannot be written: " + strerror(ELOOP));
}

TEST_P(OutputFile, LeavesTheOldFileAndNothingElseWhenItFails) {
    const fs::path file = folder / "host.json";
    std::ofstream(file) << "old";
    renames_are_refused = true;
    EXPECT_FALSE(write_output_file(file, "new", error));
    EXPECT_EQ(error, file.string() + ": cannot be written: Input/output error");
    EXPECT_EQ(read_file(file), "old");
    EXPECT_EQ(files(), 1);
}

// The signal ends the process, but only behind the renaming or the removal.
TEST_P(OutputFile, LeavesNothingWhenASignalEndsTheProcess) {
    const fs::path file = folder / "host.json";
    for (const bool refused : {false, true}) {
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
            std::ofstream(file) << "old";
            const pid_t child = fork();
            if (child == 0) {
                std::signal(signal, SIG_DFL); // it may be ignored, as under nohup
                signal_at_rename = signal;
                renames_are_refused = refused;
                write_output_file(file, "new", error);
                _exit(0);
            }
            int status = 0;
            waitpid(child, &status, 0);
            EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << status;
            EXPECT_EQ(read_file(file), refused ? "old" : "new");
            EXPECT_EQ(files(), 1);
        }
    }
}

} // namespace
