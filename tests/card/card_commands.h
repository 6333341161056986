// Runs commands on a described host within the test's process.
#ifndef TESTS_CARD_CARD_COMMANDS_H
#define TESTS_CARD_CARD_COMMANDS_H

#include "frontend/hmx_cmd.h"
#include "host/host_file.h"
#include "sim/interpose.h"
#include "tests/infra/printed_by.h"
#include "tests/text.h"

#include <string>
#include <vector>

class CardCommands : public testing::Test {
protected:
    void SetUp() override {
        std::string error;
        ASSERT_TRUE(load_host(TESTS_DIR "/hosts/card.json", driver.state, error)) << error;
        driver.trace = [this](const std::string &line) { requests.push_back(line); };
        driver.complain = [](const std::string &line) { ADD_FAILURE() << line; };
        interpose_model(&driver);
        ASSERT_EQ(kx_dpa_api_init(), 0);
    }

    void TearDown() override {
        kx_dpa_api_exit();
        interpose_model(nullptr);
    }

    // What the command prints, its time stamps masked; `requests` holds what it asked.
    std::string run(const std::string &command) {
        requests.clear();
        const std::string text =
            printed_by([&] { hmx_cmd_run(command.c_str(), static_cast<int>(command.size()), 0); });
        return replace_stamps(text, "STAMP: ");
    }

    model driver;
    std::vector<std::string> requests;
};

#endif
