#include "corerandom.h"

#include <gtest/gtest.h>

#include <ctime>
#include <set>

namespace {

// Finds a seed whose first draw makes rand(0.0, 1.0) give exactly `target` (0 or 1), i.e. the
// smallest or the largest draw.
unsigned int SeedForExtremeDraw(double target) {
    for (unsigned int seed = 1; seed < 20000000; ++seed) {
        std::srand(seed);
        if (rand(0.0, 1.0) == target) return seed;
    }
    return 0;
}

TEST(Random, IntegerFormGivesTheLowerBoundForEveryDrawButTheLargest) {
    for (unsigned int seed = 1; seed <= 2000; ++seed) {
        std::srand(seed);
        const double t = rand(0.0, 1.0);
        std::srand(seed);
        EXPECT_EQ(rand(0, 10), t == 1.0 ? 10 : 0) << "seed " << seed;
    }

    const unsigned int top = SeedForExtremeDraw(1.0);
    ASSERT_NE(top, 0u);
    std::srand(top);
    EXPECT_EQ(rand(0, 10), 10) << "the largest draw gives the upper bound";
    std::srand(top);
    EXPECT_EQ(rand(-4, 6), 6);
}

TEST(Random, FloatingFormsCoverTheClosedRange) {
    const unsigned int bottom = SeedForExtremeDraw(0.0);
    const unsigned int top = SeedForExtremeDraw(1.0);
    ASSERT_NE(bottom, 0u);
    ASSERT_NE(top, 0u);
    std::srand(bottom);
    EXPECT_EQ(rand(2.0f, 4.0f), 2.0f);
    std::srand(top);
    EXPECT_EQ(rand(2.0f, 4.0f), 4.0f);
    std::srand(top);
    EXPECT_EQ(rand(-1.5, 3.0), 3.0);

    std::srand(12345);
    double sum = 0.0;
    std::set<double> distinct;
    for (int i = 0; i < 20000; ++i) {
        const double v = rand(10.0, 20.0);
        ASSERT_GE(v, 10.0);
        ASSERT_LE(v, 20.0);
        sum += v;
        distinct.insert(v);
    }
    EXPECT_NEAR(sum / 20000.0, 15.0, 0.1) << "draws spread evenly over the range";
    EXPECT_GT(distinct.size(), 10000u);
    EXPECT_LE(distinct.size(), 32768u) << "draws have 15 bits";
}

TEST(Random, FloatAndDoubleFormsAgreeOnTheSameDraw) {
    for (unsigned int seed = 1; seed < 200; ++seed) {
        std::srand(seed);
        const double d = rand(-3.0, 7.0);
        std::srand(seed);
        const float f = rand(-3.0f, 7.0f);
        EXPECT_EQ(f, static_cast<float>(d));
    }
}

TEST(Random, SeedsWithTheCalendarTimeInSeconds) {
    for (int attempt = 0; attempt < 5; ++attempt) {
        const std::time_t before = std::time(nullptr);
        seedrandtime();
        const double drawn = rand(0.0, 1.0);
        if (std::time(nullptr) != before) continue;  // the second changed meanwhile: retry
        std::srand(static_cast<unsigned int>(before));
        EXPECT_EQ(rand(0.0, 1.0), drawn);
        return;
    }
    FAIL() << "the clock kept changing its second";
}

}  // namespace
