// tarnlab as its users start it, around a small program that shows what it sees. It is not built
// with sanitizers, and neither is this test then.
#ifdef TARNLAB_PATH

#include "sim/interpose.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

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
    EXPECT_EQ(run(LAB).exit_value, 2);
    EXPECT_EQ(run(LAB + " --hots x" + PROBE + "exit 0").exit_value, 2);
    EXPECT_EQ(run(LAB + " --help").exit_value, 0);
}

TEST(Tarnlab, BadHostFileIsOneLineAndTheCommandDoesNotRun) {
    const std::string path = SCRATCH + ".json";
    outcome seen = run(LAB + " --host " + path + PROBE + "exit 0");
    EXPECT_EQ(seen.text, "tarnlab: " + path + ": cannot be read: No such file or directory\n");
    EXPECT_EQ(seen.exit_value, 2);
    std::ofstream(path) << "{\n \"card\": {\"domian\": 1}}";
    seen = run(LAB + " --host " + path + PROBE + "exit 0");
    EXPECT_EQ(seen.text, "tarnlab: " + path + ":2: card.domian: unknown key\n");
    EXPECT_EQ(seen.exit_value, 2);
    unlink(path.c_str());
}

TEST(Tarnlab, TraceFileThatCannotBeWrittenIsOneLine) {
    const outcome seen = run(LAB + " --trace /nonexistent/trace" + PROBE + "exit 0");
    EXPECT_EQ(seen.text,
              "tarnlab: /nonexistent/trace: cannot be written: No such file or directory\n");
    EXPECT_EQ(seen.exit_value, 2);
}

TEST(Tarnlab, ItsVariablesDoNotReachProgramsThatTheCommandStarts) {
    const std::string options = " --host " + SCRATCH + ".json --trace " + SCRATCH + ".trace";
    std::ofstream(SCRATCH + ".json") << "{}";
    const outcome seen = run("MARK=kept LD_PRELOAD= " + LAB + options + PROBE + "environment");
    EXPECT_NE(seen.text.find("MARK=kept\n"), std::string::npos);
    for (const char *variable : {"LD_PRELOAD", "KESTRELSIM", "cannot be preloaded"}) {
        EXPECT_EQ(seen.text.find(variable), std::string::npos) << seen.text;
    }
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
    std::ifstream trace(path);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(trace), {}),
              "op 63 arg 0x0 flags 1 len 4 -> 0\n");
    unlink(path.c_str());
}

TEST(Tarnlab, TheAgentRunsBesideTheCommand) {
    if (access("/var/log", W_OK) != 0)
        GTEST_SKIP() << "the output file's folder cannot be written";
    const outcome seen = run(LAB + " " + TARNCMD_PATH + " dpa show version");
    EXPECT_EQ(seen.text, "=>dpa command is: show version\n"
                         "DPA version 2.3.1, built for ESX 6.0\n"
                         "Uptime: 41 days, 3 hours\n"
                         "#byeBye#\n");
    EXPECT_EQ(seen.exit_value, 0);
}

} // namespace

#endif
