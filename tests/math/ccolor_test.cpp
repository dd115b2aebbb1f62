#include "ccolor.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <vector>

namespace {

// The components r, g, b, a of each colour, one colour after the other, each within 1e-6.
void ExpectRgba(std::initializer_list<ccolor> colours, const std::vector<float>& expected) {
    std::vector<float> got;
    for (const ccolor& c : colours) got.insert(got.end(), {c[0], c[1], c[2], c[3]});
    ASSERT_EQ(got.size(), expected.size());
    for (size_t i = 0; i < got.size(); ++i) EXPECT_NEAR(got[i], expected[i], 1e-6f) << "at " << i;
}

TEST(Colour, IntegersAreOver255AndComeBackTruncatedWithoutClamping) {
    ccolor set(0.0f, 0.0f, 0.0f, 0.0f);
    set.Set(255, 0, 51);  // the three-int form makes the colour opaque again
    ExpectRgba({ccolor(), ccolor(255, 128, 0), ccolor(51, 102, 204, 0), set},
               {1, 1, 1, 1, 1, 0.5019608f, 0, 1, 0.2f, 0.4f, 0.8f, 0, 1, 0, 0.2f, 1});
    const ccolor c(0.999f, 0.5f, 2.0f, -0.5f);
    EXPECT_EQ((std::vector<int>{c.Redi(), c.Greeni(), c.Bluei(), c.Alphai()}),
              (std::vector<int>{254, 127, 510, -127}));
    // Beyond the int range there is no integer value; the result is fixed rather than undefined.
    EXPECT_EQ(ccolor(1e10f, std::numeric_limits<float>::quiet_NaN(), 0.0f).Redi(), INT_MIN);
}

TEST(Colour, ArithmeticEqualityAndClampCoverAllFourComponents) {
    const ccolor c(0.1f, 0.2f, 0.3f, 0.4f);
    EXPECT_TRUE(c == ccolor(0.1f, 0.2f, 0.3f, 0.4f) && c != ccolor(0.1f, 0.2f, 0.3f, 0.5f));
    EXPECT_FALSE(c == ccolor(0.1f, 0.2f, std::nextafter(0.3f, 1.0f), 0.4f));
    ccolor clamped(-0.5f, 0.5f, 1.5f, 2.0f);
    clamped.Clamp();
    // An int is a plain number.
    ExpectRgba(
        {c * ccolor(2.0f, 0.0f, 1.0f, 0.5f), c * 2, c + 1, clamped},
        {0.2f, 0, 0.3f, 0.2f, 0.2f, 0.4f, 0.6f, 0.8f, 1.1f, 1.2f, 1.3f, 1.4f, 0, 0.5f, 1, 1});
}

}  // namespace
