// What the tool's entry point does before and around the command layer.
#include "frontend/hmx_cmd.h"
#include "frontend/kestrel_cmd_list.h"
#include "frontend/run_state.h"
#include "sim/interpose.h"
#include "tests/golden.h"
#include "tests/infra/printed_by.h"

#include <algorithm>
#include <string>
#include <unistd.h>
#include <vector>

int tarncmd_main(int argc, char *argv[]);

namespace {

class Main : public testing::Test {
protected:
    void TearDown() override {
        kx_dpa_api_exit();
        interpose_model(nullptr);
        kx_run_from_shell = false;
    }

    // The output of the tool; `errors` and `exit_value` are the rest.
    std::string run(std::vector<std::string> words) {
        words.insert(words.begin(), "tarncmd");
        testing::internal::CaptureStderr();
        const std::string printed = traced_by([&] {
            exit_value =
                tarncmd_main(static_cast<int>(words.size()), argument_vector(words).data());
        });
        errors = testing::internal::GetCapturedStderr();
        return printed;
    }

    std::string errors;
    int exit_value = 1;
};

TEST_F(Main, NeedsTheDevice) {
    interpose_model(nullptr);
    EXPECT_EQ(run({"show", "port"}), "Error initializing kx_dpa_api_init()\n");
    EXPECT_EQ(exit_value, -1);
    EXPECT_EQ(errors, "tarncmd: /vmfs/devices/char/vmkdriver/kestrel: No such file or directory; "
                      "\"tarnlab tarncmd help\" shows the commands on a simulated host, \"man "
                      "tarncmd\" explains them\n");
}

TEST_F(Main, NamesTheHelpWhereItIsAskedForInTheUsualWords) {
    model driver;
    interpose_model(&driver);
    const std::string line =
        "tarncmd: version " HMX_CMD_VERSION "; \"tarncmd help\" lists the commands\n";
    for (const std::string word : {"--help", "-h", "--version"}) {
        EXPECT_EQ(run({word}), "No match found for " + word + "\n");
        EXPECT_EQ(errors, line);
        EXPECT_EQ(exit_value, 0);
        run({word, "x"});
        EXPECT_EQ(errors, "");
    }
}

TEST_F(Main, RunsNothingOfALineThatDoesNotFit) {
    model driver;
    int requests = 0;
    driver.trace = [&](const std::string &) { requests++; };
    interpose_model(&driver);
    EXPECT_EQ(run({";", std::string(20477, ';')}), ""); // 20479 characters
    EXPECT_EQ(exit_value, 0);
    EXPECT_EQ(requests, 1);
    EXPECT_EQ(run({";;", std::string(20477, ';')}), "");
    EXPECT_EQ(exit_value, -1);
    EXPECT_EQ(requests, 1);
    EXPECT_EQ(errors, "tarncmd: the command line is longer than 20479 characters and nothing of it "
                      "was run: give fewer commands at once\n");
}

// Standard output and standard error go to one place, as in a log.
TEST_F(Main, ExplainsSilenceBehindWhatWasPrinted) {
    model driver;
    interpose_model(&driver);
    for (const std::string silent : {"show prot", "show vxlan threads"}) {
        const std::string log = printed_by([&] {
            const int before = dup(STDERR_FILENO);
            dup2(STDOUT_FILENO, STDERR_FILENO);
            std::vector<std::string> words = {"tarncmd", "show ltl range;" + silent};
            tarncmd_main(2, argument_vector(words).data());
            dup2(before, STDERR_FILENO);
            close(before);
        });
        EXPECT_TRUE(log.starts_with("     LTL Range")) << log;
        EXPECT_NE(log.find("Packet Drop\ntarncmd: "), std::string::npos) << log;
    }
}

TEST_F(Main, PrintsHelpThatDoesNotFitBetweenTwoWarnings) {
    const std::vector<kestrel_cmd_row> rows(kestrel_cmd_list, kestrel_cmd_list + KESTREL_CMD_ROWS);
    const std::string long_text(20480, 'x');
    kestrel_cmd_list[0].help_text = long_text.c_str();
    model driver;
    interpose_model(&driver);
    const std::string warning = "***WARNING*** Help text has been truncated.\n";
    for (const std::vector<std::string> &words : {std::vector<std::string>{}, {"help"}}) {
        EXPECT_EQ(run(words), "Help text length exceeds maxlen. Need to redefine the maxlen\n" +
                                  warning + long_text.substr(1) + warning);
        EXPECT_EQ(exit_value, 0);
    }
    std::copy(rows.begin(), rows.end(), kestrel_cmd_list);
    EXPECT_EQ(run({"help"}), golden_text("help.txt")) << "it fits";
    EXPECT_EQ(errors, "");
    std::copy(rows.begin(), rows.end(), kestrel_cmd_list); // help sorts the table in place
}

} // namespace
