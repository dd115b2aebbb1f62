#include "ccolor.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <initializer_list>
#include <limits>

namespace {

void ExpectRgba(const ccolor& c, std::initializer_list<float> expected) {
    int i = 0;
    for (float e : expected) EXPECT_NEAR(c[i++], e, 1e-6f) << "component " << i - 1;
}

TEST(Colour, BuildsFromFloatsAndFromIntegersOver255) {
    ExpectRgba(ccolor(), {1, 1, 1, 1});
    ExpectRgba(ccolor(0.1f, 0.2f, 0.3f), {0.1f, 0.2f, 0.3f, 1});
    const float rgb[3] = {0.25f, 0.5f, 0.75f};
    ExpectRgba(ccolor(rgb), {0.25f, 0.5f, 0.75f, 1});
    ExpectRgba(ccolor(255, 128, 0), {1, 0.5019608f, 0, 1});
    ExpectRgba(ccolor(51, 102, 204, 0), {0.2f, 0.4f, 0.8f, 0});
    const int irgb[3] = {0, 255, 51};
    ExpectRgba(ccolor(irgb), {0, 1, 0.2f, 1});

    ccolor c(0.0f, 0.0f, 0.0f, 0.0f);
    c.Set(255, 0, 51);  // the three-int form makes the colour opaque again
    ExpectRgba(c, {1, 0, 0.2f, 1});
}

TEST(Colour, IntegerComponentsTruncateWithoutClamping) {
    const ccolor c(0.999f, 0.5f, 2.0f, -0.5f);
    EXPECT_EQ(c.Redi(), 254);
    EXPECT_EQ(c.Greeni(), 127);
    EXPECT_EQ(c.Bluei(), 510);
    EXPECT_EQ(c.Alphai(), -127);  // toward zero, not toward minus infinity
    // Beyond the int range there is no integer value; the result is fixed rather than undefined.
    EXPECT_EQ(ccolor(1e10f, std::numeric_limits<float>::quiet_NaN(), 0.0f).Redi(), INT_MIN);
    EXPECT_EQ(ccolor(0.0f, std::numeric_limits<float>::quiet_NaN(), 0.0f).Greeni(), INT_MIN);
}

TEST(Colour, ArithmeticEqualityAndClampCoverAllFourComponents) {
    const ccolor c(0.1f, 0.2f, 0.3f, 0.4f);
    EXPECT_TRUE(c == ccolor(0.1f, 0.2f, 0.3f, 0.4f));
    EXPECT_TRUE(c != ccolor(0.1f, 0.2f, 0.3f, 0.5f));
    EXPECT_FALSE(c == ccolor(0.1f, 0.2f, std::nextafter(0.3f, 1.0f), 0.4f));
    ExpectRgba(c * ccolor(2.0f, 0.0f, 1.0f, 0.5f), {0.2f, 0, 0.3f, 0.2f});
    ExpectRgba(c * 2, {0.2f, 0.4f, 0.6f, 0.8f});  // an int is a plain number
    ccolor d = c + 1;
    ExpectRgba(d, {1.1f, 1.2f, 1.3f, 1.4f});
    d.Set(-0.5f, 0.5f, 1.5f, 2.0f);
    d.Clamp();
    ExpectRgba(d, {0, 0.5f, 1, 1});

    // The float pointer exposes r, g, b, a in that order.
    EXPECT_EQ(static_cast<const float*>(c)[3], 0.4f);
}

}  // namespace
