// The limits of the walks over the driver's tables. The hostile sweep shows that each walk obeys
// them.
#include "handlers/walk.h"

#include "frontend/hmx_cmd.h"
#include "sim/interpose.h"
#include "tests/infra/printed_by.h"

#include <gtest/gtest.h>
#include <string>

TEST(Walk, EndsAfterItsRequestsAndWhereItStands) {
    kx_walk walk{20};
    EXPECT_FALSE(kx_go_to(&walk, 20));
    EXPECT_TRUE(kx_go_to(&walk, 0));
    EXPECT_EQ(walk.at, 0U);
    uint32_t asked = 0;
    while (kx_may_ask(&walk))
        asked++;
    EXPECT_EQ(asked, 1048576U);
    EXPECT_FALSE(kx_may_ask(&walk));
}

TEST(Walk, EndsWithTheWalksOfItsCommand) {
    kx_walked_requests = 0;
    uint32_t asked = 0;
    const auto ask = [&](kx_walk &walk) {
        const bool may = kx_may_ask(&walk);
        asked += may ? 1 : 0;
        return may;
    };
    for (kx_walk outer{0}; ask(outer);) {
        for (kx_walk inner{0}; ask(inner);) {
        }
    }
    EXPECT_EQ(asked, 16777216U);

    // The next command has a new limit.
    model driver;
    int steps = 0;
    driver.trace = [&](const std::string &line) { steps += line.starts_with("op 25 ") ? 1 : 0; };
    interpose_model(&driver);
    kx_dpa_api_init();
    printed_by([] { hmx_cmd_run("show portmac", 12, 0); });
    EXPECT_EQ(steps, 1);
    kx_dpa_api_exit();
    interpose_model(nullptr);
}
