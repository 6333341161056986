// tarncap as its users start it, on simulated hosts. It is not built with sanitizers, and neither
// is this test then.
#ifdef TARNCAP_PATH

#include "tests/golden.h"
#include "tests/text.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

const std::string HOSTS = std::string(TESTS_DIR) + "/hosts/";

struct outcome {
    std::string text; // standard output and standard error
    int exit_value;
};

class Tarncap : public testing::Test {
protected:
    void SetUp() override {
        char name[] = "/tmp/tarncap-XXXXXX";
        folder = mkdtemp(name);
    }
    void TearDown() override {
        fs::remove_all(folder);
    }
    // Run in the test's folder.
    outcome run(const std::string &command) const {
        outcome seen{};
        FILE *pipe = popen(("cd " + folder.string() + "; { " + command + "; } 2>&1").c_str(), "re");
        for (int byte = 0; (byte = fgetc(pipe)) != EOF;)
            seen.text += static_cast<char>(byte);
        seen.exit_value = WEXITSTATUS(pclose(pipe));
        return seen;
    }
    outcome capture(const std::string &arguments, const std::string &host = "") const {
        const std::string on = host.empty() ? "" : " --host " + host;
        return run(TARNLAB_PATH + on + " " TARNCAP_PATH " " + arguments);
    }
    std::string described(const std::string &text) const {
        std::ofstream(folder / "host.json") << text;
        return "host.json";
    }
    void expect_no_files() const {
        for (const auto &left : fs::directory_iterator(folder))
            ADD_FAILURE() << left.path();
    }

    fs::path folder;
};

TEST_F(Tarncap, SaysInOneLineWhatIsWrongAndWritesNothing) {
    const struct {
        const char *arguments;
        const char *text;
        int exit_value;
    } rows[] = {
        {"port",
         "no key \"port\" can be captured; did you mean \"ports\"? tarncap --help lists them", 2},
        {"lcap",
         "no key \"lcap\" can be captured; did you mean \"lacp\"? tarncap --help lists them", 2},
        {"agent", "no key \"agent\" can be captured; tarncap --help lists them", 2},
        {"-o ''", "the name of the FILE is empty; see tarncap --help", 2},
        {"--record ''", "the name of the FILE is empty; see tarncap --help", 2},
        {"-o", "-o needs a FILE; see tarncap --help", 2},
        {"--ful", nullptr, 0},
        {"--none", "unknown option --none; see tarncap --help", 2},
        {"--record x", "--record needs a command; see tarncap --help", 2},
        {"-o y --record x show port",
         "--record goes with no other option and no KEY; see tarncap --help", 2},
        {"ports --record x show port", nullptr, 2},
        {"--verbose --record x show port", nullptr, 2},
        {"-o .", ".: cannot be written: Is a directory", 1},
        {"-o none/x", "none/x: cannot be written: No such file or directory", 1},
        {"--record . clear stats", ".: cannot be written: Is a directory", 1},
    };
    for (const auto &[arguments, text, exit_value] : rows) {
        const outcome seen = capture(arguments);
        EXPECT_EQ(seen.exit_value, exit_value) << arguments;
        if (text != nullptr) {
            EXPECT_EQ(seen.text, std::string("tarncap: ") + text + "\n") << arguments;
        }
    }
    EXPECT_EQ(run(TARNCAP_PATH " --help").text, golden_text("tarncap_help.txt"));
    EXPECT_TRUE(run(TARNCAP_PATH " --record x show port")
                    .text.ends_with("tarncap: x: not written: the driver was asked nothing\n"));
    EXPECT_TRUE(capture("stages >/dev/full")
                    .text.starts_with("tarncap: standard output cannot be written: No space left "
                                      "on device\n"));
    // The command has not run.
    const outcome traced = run(TARNLAB_PATH " --trace - " TARNCAP_PATH " --record . clear stats");
    EXPECT_EQ(traced.text.find("op "), std::string::npos) << traced.text;
    expect_no_files();
}

TEST_F(Tarncap, WritesNothingOfADriverThatRefusesEverything) {
    std::string rules = R"({"overrides": [{"opcode": 1, "status": 13})";
    for (int opcode = 2; opcode < 1200; opcode++)
        rules += R"(, {"opcode": )" + std::to_string(opcode) + R"(, "status": 13})";
    const std::string host = described(rules + "]}");
    const outcome seen = capture("-o file", host);
    EXPECT_EQ(seen.exit_value, 1);
    EXPECT_TRUE(seen.text.starts_with(
        "tarncap: nothing is written: the driver refuses everything; see with \"tarncmd show card\" "
        "whether the HMX runs, and ask again\n"))
        << seen.text;
    EXPECT_FALSE(fs::exists(folder / "file"));
    EXPECT_EQ(capture("ports", host).exit_value, 1);
}

TEST_F(Tarncap, TellsWhatItIsAndWhatWasCut) {
    // The bridge domains go in a circle.
    const std::string host =
        described(R"({"bridge_domains": [{"index": 2}, {"index": 4}, {"index": 6}],
        "overrides": [{"opcode": 619, "argument": 6, "reply": "02000000"}]})");
    const outcome seen = capture("bridge_domains -o file", host);
    EXPECT_EQ(seen.exit_value, 3) << seen.text;
    const std::string cut =
        "the walk of opcode 619 comes back to where it was and is cut after 3 entries";
    EXPECT_NE(seen.text.find("tarncap: not whole: " + cut), std::string::npos) << seen.text;
    const std::string text = read_file(folder / "file");
    EXPECT_NE(text.find(R"("keys": ["bridge_domains"])"), std::string::npos) << text;
    EXPECT_NE(text.find(R"("whole": false,)"), std::string::npos) << text;
    EXPECT_NE(text.find(R"("cut": [")" + cut), std::string::npos) << text;
    EXPECT_NE(text.find(R"("version": ")" TARN_VERSION R"(",)"), std::string::npos) << text;
    // Of this minute, give or take one.
    const outcome now = run("date -u +%s; date -u +%s -d $(grep -o '20[^\"]*Z' file)");
    long long asked = 0, told = 0;
    ASSERT_EQ(std::sscanf(now.text.c_str(), "%lld %lld", &asked, &told), 2) << now.text;
    EXPECT_LE(asked - told, 60);
    EXPECT_GE(asked - told, 0);
}

// Every port has a private VLAN on every VLAN.
TEST_F(Tarncap, WritesNothingThatTheLabRefuses) {
    std::string ports, domains;
    for (int ltl = 50; ltl < 210; ltl++)
        ports += std::string(ltl == 50 ? "" : ", ") + R"({"ltl": )" + std::to_string(ltl) + "}";
    for (int vlan = 1; vlan <= 4000; vlan++) {
        const std::string number = std::to_string(vlan);
        domains += std::string(vlan == 1 ? "" : ", ") + R"({"index": )" + number + R"(, "vlan": )" +
                   number + "}";
    }
    const std::string host =
        described(R"({"ports": [)" + ports + R"(], "bridge_domains": [)" + domains +
                  R"(], "overrides": [{"opcode": 165, "reply": "0100020003000400"}]})");
    const outcome seen = capture("private_vlans -o file", host);
    EXPECT_EQ(seen.text, "tarncap: not written: the host file would be larger than tarnlab takes "
                         "(64 MiB); ask for some keys of it\n");
    EXPECT_EQ(seen.exit_value, 1);
    EXPECT_FALSE(fs::exists(folder / "file"));
}

TEST_F(Tarncap, CountsWhatDoesNotExist) {
    EXPECT_EQ(capture("ports -o file", HOSTS + "ports.json").text,
              "tarncap: 17 things asked about do not exist, which is usual\n");
    EXPECT_EQ(capture("asserts -o file", described(R"({"asserts": null})")).text,
              "tarncap: 1 thing asked about does not exist, which is usual\n");
    EXPECT_EQ(capture("--verbose ports -o file", HOSTS + "ports.json").text,
              "tarncap: 17 things asked about do not exist, which is usual: 17 of opcode 68\n");
    EXPECT_NE(read_file(folder / "file").find(R"("refused": [
      {
        "opcode": 68,
        "count": 17
      }
    ])"),
              std::string::npos);
}

TEST_F(Tarncap, WritesDefaultsWhenTheyAreWanted) {
    const std::string mode = R"("mode": "none")";
    const std::string host = described(R"({"ports": [{"ltl": 20}]})");
    EXPECT_EQ(capture("ports", host).text.find(mode), std::string::npos);
    EXPECT_NE(capture("--full ports", host).text.find(mode), std::string::npos);
    const std::string print = TARNLAB_PATH " --print-host --host ";
    EXPECT_EQ(run(print + host).text, read_file(folder / host));
    EXPECT_NE(run(print + host + " --full").text.find(mode), std::string::npos);
    EXPECT_EQ(run(print + host + " true").exit_value, 2);
    EXPECT_EQ(run(TARNLAB_PATH " --full true").exit_value, 2);
}

// What tarnlab says of a capture.
TEST_F(Tarncap, IsKnownToTheLab) {
    const std::string show = " " TARNCMD_PATH " show port >shown";
    const std::string host = described(R"({"ports": [{"ltl": 20, "vlans": [1], "vlan_mode": true}],
        "overrides": [{"opcode": 68, "status": 9}, {"opcode": 391, "status": 8}]})");
    capture("-o whole", host);
    capture("ports -o part", host);
    EXPECT_EQ(run(TARNLAB_PATH " --host whole" + show).text, "");
    EXPECT_EQ(run(TARNLAB_PATH " --host part" + show).text,
              "tarnlab: part was captured without what was asked for, so the output may differ "
              "from the host's; capture it with: tarncap ports card vlans "
              "bridge_domains\n");
    const outcome by_hand = run(TARNLAB_PATH " --host " + host + show);
    EXPECT_NE(by_hand.text.find("overrides[0]: no request met it (opcode 68)"), std::string::npos);
}

} // namespace

#endif
