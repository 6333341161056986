// How far the walks over the driver's tables go at most; that each of them counts is seen by the
// hostile sweep.
#include "handlers/walk.h"

#include <gtest/gtest.h>

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
