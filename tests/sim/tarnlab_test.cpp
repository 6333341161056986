// tarnlab as its users start it, around a small program that shows what it sees. It is not built
// with sanitizers, and neither is this test then.
#ifdef TARNLAB_PATH

#include "sim/interpose.h"
#include "tests/golden.h"
#include "tests/text.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

const std::string LAB = TARNLAB_PATH;
const std::string PROBE = " " LAB_PROBE_PATH " ";
const std::string SCRATCH = std::string(testing::TempDir()) + "tarnlab-" + std::to_string(getpid());

struct outcome {
    std::string text; // standard output and standard error
    int exit_value;
};

outcome run(const std::string &command) {
    outcome seen;
    FILE *pipe = popen((command + " 2>&1").c_str(), "re");
    for (int byte = 0; (byte = fgetc(pipe)) != EOF;)
        seen.text += static_cast<char>(byte);
    seen.exit_value = WEXITSTATUS(pclose(pipe));
    return seen;
}

TEST(Tarnlab, ExitValueIsTheCommands) {
    EXPECT_EQ(run(LAB + PROBE + "exit 0").exit_value, 0);
    EXPECT_EQ(run(LAB + PROBE + "exit 41").exit_value, 41);
    EXPECT_EQ(run(LAB + PROBE + "signal 15").exit_value, 143);
    EXPECT_EQ(run(LAB + " /nonexistent/command").exit_value, 127);
    EXPECT_EQ(run(LAB + " /etc/passwd").exit_value, 126);
}

// A file of the bytes that may be run.
std::string program_of(const std::string &name, const std::string &bytes) {
    const std::string path = SCRATCH + name;
    std::ofstream(path) << bytes;
    chmod(path.c_str(), 0755);
    return path;
}

TEST(Tarnlab, SaysInOneLineWhatIsWrong) {
    const std::string wide = ": is a 64-bit program, which the device cannot be preloaded into; "
                             "give the 32-bit program itself, or --device\n";
    const std::string prints = "--print-host goes with --full and --host only, --full with "
                               "--print-host; see tarnlab --help\n";
    const std::string script = program_of(".sh", "#! /bin/sh -e\nexit 0\n");
    const std::string plain = program_of(".plain", "exit 0\n");
    // An ELF header without a loader behind it.
    const std::string fixed = program_of(".static", std::string("\x7F"
                                                                "ELF\1\1\1",
                                                                7) +
                                                        std::string(93, '\0'));
    const std::string wrong = program_of(".json", "{\"card\": {\"slot\": -1,\n\"x\": 1}}\n");
    const struct {
        std::string arguments;
        std::string text;
        int exit_value;
    } rows[] = {
        {"", "tarnlab: no command given; see tarnlab --help\n", 2},
        {"--hots x", "tarnlab: no such option: --hots; see tarnlab --help\n", 2},
        {"--device --host", "tarnlab: --host needs a FILE; see tarnlab --help\n", 2},
        {"--print-host x", "tarnlab: " + prints, 2},
        {"--print-host --trace x", "tarnlab: " + prints, 2},
        {"--full" + PROBE + "exit 0", "tarnlab: " + prints, 2},
        {"sh -c true", "tarnlab: sh" + wide, 2},
        {script, "tarnlab: " + script + ": its interpreter /bin/sh" + wide, 2},
        {plain, "tarnlab: " + plain + ": its interpreter /bin/sh" + wide, 2},
        {fixed,
         "tarnlab: " + fixed +
             ": is a static program, which nothing can be preloaded into; use --device\n",
         2},
        {"--check /dev/zero", "tarnlab: /dev/zero: is larger than 64 MiB\n", 2},
        {"--host /tmp" + PROBE + "exit 0", "tarnlab: /tmp: cannot be read: Is a directory\n", 2},
        {"--host /none" + PROBE + "exit 0",
         "tarnlab: /none: cannot be read: No such file or directory\n", 2},
        {"--host " + wrong + PROBE + "exit 0",
         "tarnlab: " + wrong + ":1: card.slot: expected a number from 0 to 4294967295\n", 2},
        {"--trace /none/trace" + PROBE + "exit 0",
         "tarnlab: /none/trace: cannot be written: No such file or directory\n", 2},
        {"--check " + wrong,
         wrong + ":1: card.slot: expected a number from 0 to 4294967295\n" + wrong +
             ":2: card.x: unknown key\n",
         2},
        {"--check " TESTS_DIR "/hosts/card.json", "", 0},
        {"--version", "tarnlab " TARN_VERSION "\n", 0},
        {"--print-host", read_file(TESTS_DIR "/../sim/builtin_host.json"), 0},
        {"--help", golden_text("tarnlab_help.txt"), 0},
        {"--print-host >/dev/full", "tarnlab: standard output: No space left on device\n", 1},
    };
    for (const auto &row : rows) {
        const outcome seen = run("(" + LAB + " " + row.arguments + ")");
        EXPECT_EQ(seen.text, row.text);
        EXPECT_EQ(seen.exit_value, row.exit_value) << row.arguments;
    }
    for (const std::string &path : {script, plain, fixed, wrong})
        unlink(path.c_str());
}

TEST(Tarnlab, ReportsWhatTheHostFileSaysForNothing) {
    const std::string rules = R"({"overrides": [
        {"opcode": 9}, {"opcode": 63, "status": 0, "reply": "01000000"}, {"opcode": 2, "time": 2},
        {"opcode": 1, "in": "01"}, {"opcode": 1}, {"opcode": 1}, {"opcode": 1}, {"opcode": 1},
        {"opcode": 1}, {"opcode": 1}, {"opcode": 1}, {"opcode": 1}, {"opcode": 1}],
        "bridge_domains": [{"index": 1}],
        "l2": {"tables": [{"bridge_domain": 1}, {"bridge_domain": 9}]}})";
    std::string expected = "tarnlab: overrides[0]: no request met it (opcode 9)\n"
                           "tarnlab: overrides[2]: no request met it (opcode 2)\n";
    for (int place = 3; place < 11; place++)
        expected +=
            "tarnlab: overrides[" + std::to_string(place) + "]: no request met it (opcode 1)\n";
    expected += "tarnlab: overrides: 2 more that no request met\n"
                "tarnlab: l2.tables: there is no bridge domain 9\n";
    // Read from a pipe, which can be read once only.
    const outcome seen = run("echo '" + rules + "' | " + LAB + " --trace - --host /dev/stdin " +
                             TARNCMD_PATH + " clear printk counts");
    EXPECT_EQ(seen.text, "op 63 arg 0x0 flags 1 len 4 -> 0\n"
                         "op 1035 arg 0x0 flags 16 -> 0\n" +
                             expected);
    EXPECT_EQ(seen.exit_value, 0);
}

TEST(Tarnlab, RunsFromAFolderOfAnyName) {
    const fs::path build = fs::path(TARNLAB_PATH).parent_path().parent_path();
    const fs::path folder = build / ("a b:c $LIB'" + std::to_string(getpid()));
    for (const char *part : {"bin/tarnlab", "lib/tarnlab/libkestrelsim.so"}) {
        fs::create_directories((folder / part).parent_path());
        fs::create_hard_link(build / part, folder / part);
    }
    setenv("LAB_THERE", (folder / "bin/tarnlab").c_str(), 1);
    EXPECT_EQ(run("\"$LAB_THERE\"" + PROBE + "open " + DRIVER_DEVICE_PATH).text, "opened\n");
    unsetenv("LAB_THERE");
    fs::remove_all(folder);
}

// What a killed run has left is removed; what is in use, or somebody else's, stays.
TEST(Tarnlab, RemovesWhatAKilledRunHasLeft) {
    const fs::path left = "/tmp/tarnlab-kiLLed", used = "/tmp/tarnlab-uSed00",
                   full = "/tmp/tarnlab-fuLL00", other = "/tmp/tarnlab-longer-name";
    for (const fs::path &folder : {left, used, full, other})
        fs::create_directory(folder);
    std::ofstream(left / "esxcfg-advcfg") << "exit 0\n";
    std::ofstream(full / "notes") << "kept\n";
    const int lock = open(used.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(flock(lock, LOCK_EX), 0);
    const std::string host = program_of(".json", R"({"management_address": "10.1.1.1"})");
    EXPECT_EQ(run(LAB + " --host " + host + PROBE + "exit 0").exit_value, 0);
    EXPECT_FALSE(fs::exists(left));
    EXPECT_TRUE(fs::exists(used));
    EXPECT_TRUE(fs::exists(full / "notes"));
    EXPECT_TRUE(fs::exists(other));
    close(lock);
    for (const fs::path &folder : {used, full, other})
        fs::remove_all(folder);
    unlink(host.c_str());
}

TEST(Tarnlab, ItsVariablesDoNotReachProgramsThatTheCommandStarts) {
    const std::string options = " --host " + SCRATCH + ".json --trace " + SCRATCH + ".trace";
    std::ofstream(SCRATCH + ".json") << "{}";
    const outcome seen = run("MARK=kept LD_PRELOAD= " + LAB + options + PROBE + "environment");
    EXPECT_NE(seen.text.find("MARK=kept\n"), std::string::npos);
    for (const char *variable : {"LD_PRELOAD", "KESTRELSIM", "cannot be preloaded"})
        EXPECT_EQ(seen.text.find(variable), std::string::npos) << seen.text;
    unlink((SCRATCH + ".json").c_str());
    unlink((SCRATCH + ".trace").c_str());
}

TEST(Tarnlab, OnlyTheDeviceIsSimulated) {
    EXPECT_EQ(run(LAB + PROBE + "open " + DRIVER_DEVICE_PATH).text, "opened\n");
    EXPECT_EQ(run(LAB + PROBE + "open /etc/passwd").text, "opened\n");
    EXPECT_EQ(run(LAB + PROBE + "open /vmfs/devices/char/vmkdriver/kestre").text,
              "No such file or directory\n");
    EXPECT_EQ(run(PROBE + "open " + DRIVER_DEVICE_PATH).text, "No such file or directory\n");
}

TEST(Tarnlab, TraceHoldsTheRequestsOfOneRun) {
    const std::string path = SCRATCH + ".trace";
    for (int i = 0; i < 2; i++)
        run(LAB + " --trace " + path + " " + TARNCMD_PATH + " show bogus");
    EXPECT_EQ(read_file(path), "op 63 arg 0x0 flags 1 len 4 -> 0\n");
    unlink(path.c_str());
}

TEST(Tarnlab, TheAgentRunsBesideTheCommand) {
    if (access("/var/log", W_OK) != 0)
        GTEST_SKIP() << NO_OUTPUT_FOLDER;
    const outcome seen = run(LAB + " " + TARNCMD_PATH + " dpa show version");
    EXPECT_EQ(seen.text, "=>dpa command is: show version\n"
                         "DPA version 2.3.1, built for ESX 6.0\n"
                         "Uptime: 41 days, 3 hours\n"
                         "#byeBye#\n");
    EXPECT_EQ(seen.exit_value, 0);
}

} // namespace

#endif
