#include "corerandom.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>

namespace {

// The result of `rand(a, b)` for the first draw after srand(seed).
template <class T>
T Draw(unsigned int seed, T a, T b) {
    std::srand(seed);
    return rand(a, b);
}

TEST(Random, IntegerFormGivesTheLowerBoundForEveryDrawButTheLargest) {
    unsigned int top = 0, bottom = 0;
    for (unsigned int seed = 1; seed < 20000000 && !(top && bottom); ++seed) {
        const double t = Draw(seed, 0.0, 1.0);
        if (seed <= 2000) {
            EXPECT_EQ(Draw(seed, 0, 10), t == 1.0 ? 10 : 0) << "seed " << seed;
            EXPECT_EQ(Draw(seed, -3.0f, 7.0f), static_cast<float>(Draw(seed, -3.0, 7.0)));
        }
        top = t == 1.0 && !top ? seed : top;
        bottom = t == 0.0 && !bottom ? seed : bottom;
    }
    ASSERT_TRUE(top && bottom);
    EXPECT_EQ(Draw(top, -4, 6), 6);
    EXPECT_EQ(Draw(top, INT_MIN, INT_MAX), INT_MAX) << "a span wider than int still gives b";
    EXPECT_EQ(Draw(bottom, INT_MAX, INT_MIN), INT_MAX);
    EXPECT_EQ(Draw(top, 2.0f, 4.0f), 4.0f) << "the floating forms cover the closed range";
    EXPECT_EQ(Draw(bottom, 2.0, 4.0), 2.0);
}

}  // namespace
