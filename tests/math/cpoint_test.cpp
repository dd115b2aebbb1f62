#include "cpoint.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <limits>

namespace {

template <class V>
void ExpectComponents(const V& v, std::initializer_list<float> expected) {
    int i = 0;
    for (float e : expected) EXPECT_FLOAT_EQ(v[i++], e) << "component " << i - 1;
}

TEST(Vectors, ArithmeticIsComponentWiseIncludingW) {
    const cpoint4 a(1, 2, 3, 4), b(2, 4, 8, 16);
    ExpectComponents(a + b, {3, 6, 11, 20});
    ExpectComponents(a - b, {-1, -2, -5, -12});
    ExpectComponents(a * b, {2, 8, 24, 64});
    ExpectComponents(b / a, {2, 2, 8.0f / 3.0f, 4});
    ExpectComponents(a * 2.0f, {2, 4, 6, 8});
    ExpectComponents(2.0f * a, {2, 4, 6, 8});
    ExpectComponents(a / 2.0f, {0.5f, 1, 1.5f, 2});
    ExpectComponents(a + 1.0f, {2, 3, 4, 5});
    ExpectComponents(a - 1.0f, {0, 1, 2, 3});
    ExpectComponents(-a, {-1, -2, -3, -4});
    ExpectComponents(cpoint3(6, 8, 9) / cpoint3(2, 4, 3), {3, 2, 3});
    ExpectComponents(cpoint2(1, 2) - cpoint2(3, 5), {-2, -3});
    EXPECT_TRUE(cpoint4(1, 2, 3, 4) == a);
    EXPECT_TRUE(cpoint4(1, 2, 3, 4.5f) != a);
    // Inter does not clamp t.
    ExpectComponents(Inter(a, b, 0.25f), {1.25f, 2.5f, 4.25f, 7});
    ExpectComponents(Inter(a, b, -1.0f), {0, 0, -2, -8});
}

TEST(Vectors, DotLengthAndNormalizeIncludeW) {
    EXPECT_FLOAT_EQ(DotProd(cpoint4(1, 2, 3, 4), cpoint4(1, -1, 1, 2)), 10.0f);
    EXPECT_FLOAT_EQ(Length(cpoint4(1, 2, 2, 4)), 5.0f);

    cpoint4 q(0, 0, 3, 4);
    ExpectComponents(q.Normalize(), {0, 0, 0.6f, 0.8f});
    ExpectComponents(Normalize(cpoint3(0, 6, 8)), {0, 0.6f, 0.8f});
    // A zero vector stays zero instead of turning into NaNs.
    ExpectComponents(cpoint3().Normalize(), {0, 0, 0});
}

TEST(Vectors, CrossProductPutsLengthInWAndPlaneConstant) {
    ExpectComponents(CrossProd(cpoint3(1, 2, 3), cpoint3(4, 5, 6)), {-3, 6, -3});
    // The inputs' w take no part; w of the result is |(-3, 6, -3)| = sqrt(54).
    ExpectComponents(CrossProd(cpoint4(1, 2, 3, 99), cpoint4(4, 5, 6, -7)),
                     {-3, 6, -3, 7.3484692f});
    EXPECT_FLOAT_EQ(PlaneD(cpoint3(1, 2, 3), cpoint3(4, -5, 6)), -12.0f);
}

TEST(Vectors, CompareUsesInclusiveAbsoluteEpsilon) {
    const cpoint3 a(1, 2, 3);
    EXPECT_TRUE(Compare(a, cpoint3(1, 2, 2.75f), 0.25f));
    EXPECT_TRUE(Compare(a, cpoint3(1, 2, 2.75f), -0.25f));
    EXPECT_FALSE(Compare(a, cpoint3(1, 2, 2.75f), 0.125f));
    EXPECT_FALSE(Compare(cpoint4(0, 0, 0, 0), cpoint4(0, 0, 0, 1), 0.5f));
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE(Compare(cpoint2(nan, 0), cpoint2(nan, 0), 1.0f));
}

TEST(Vectors, SnapRoundsHalfUpOnEveryComponent) {
    ExpectComponents(SnapVector(cpoint4(-0.5f, 0.5f, -1.5f, 2.5f)), {0, 1, -1, 3});
    ExpectComponents(SnapVector(cpoint3(1.49f, -0.49f, -0.6f)), {1, 0, -1});
    // The largest float below one half stays below it when one half is added.
    ExpectComponents(SnapVector(cpoint2(0.49999997f, -0.50000006f)), {0, -1});

    ExpectComponents(SnapVectorToGrid(cpoint4(7, -7, 7.5f, -7.5f), 5), {5, -5, 10, -5});
    ExpectComponents(SnapVectorToGrid(cpoint3(0.3f, -0.1f, 0.125f), 0.25f), {0.25f, 0, 0.25f});
}

}  // namespace
