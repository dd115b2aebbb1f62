#include "cpoint.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

// The components of each vector, one after the other, each within 4 ULPs of `expected`.
template <class V>
void ExpectComponents(std::initializer_list<V> vectors, const std::vector<float>& expected) {
    std::vector<float> got;
    for (const V& v : vectors)
        for (size_t i = 0; i < sizeof(V) / sizeof(float); ++i) got.push_back(v[int(i)]);
    ASSERT_EQ(got.size(), expected.size());
    for (size_t i = 0; i < got.size(); ++i) EXPECT_FLOAT_EQ(got[i], expected[i]) << "at " << i;
}

TEST(Vectors, ProductsNormalizeAndInterIncludeWWhereStated) {
    const cpoint4 a(1, 2, 3, 4), b(2, 4, 8, 16);
    // Inter does not clamp t; a zero vector stays zero instead of turning into NaNs.
    ExpectComponents({b / a, Inter(a, b, -1.0f), cpoint4(0, 0, 3, 4).Normalize()},
                     {2, 2, 8.0f / 3.0f, 4, 0, 0, -2, -8, 0, 0, 0.6f, 0.8f});
    ExpectComponents({cpoint3(6, 8, 9) / cpoint3(2, 4, 3), cpoint3().Normalize()},
                     {3, 2, 3, 0, 0, 0});
    EXPECT_FLOAT_EQ(DotProd(a, cpoint4(1, -1, 1, 2)), 10.0f);
    // The inputs' w take no part; w of the result is |(-3, 6, -3)| = sqrt(54).
    ExpectComponents({CrossProd(cpoint4(1, 2, 3, 99), cpoint4(4, 5, 6, -7))},
                     {-3, 6, -3, std::sqrt(54.0f)});
    EXPECT_FLOAT_EQ(PlaneD(cpoint3(1, 2, 3), cpoint3(4, -5, 6)), -12.0f);
}

TEST(Vectors, CompareUsesInclusiveAbsoluteEpsilon) {
    const cpoint3 a(1, 2, 3), b(1, 2, 2.75f);
    EXPECT_TRUE(Compare(a, b, 0.25f) && Compare(a, b, -0.25f));
    EXPECT_FALSE(Compare(a, b, 0.125f));
    EXPECT_FALSE(Compare(cpoint4(0, 0, 0, 0), cpoint4(0, 0, 0, 1), 0.5f));
}

TEST(Vectors, SnapRoundsHalfUpOnEveryComponent) {
    // The largest float below one half stays below it when one half is added.
    ExpectComponents({SnapVector(cpoint4(-0.5f, 0.5f, -1.5f, 2.5f)),
                      SnapVector(cpoint4(1.49f, -0.6f, 0.49999997f, -0.50000006f)),
                      SnapVectorToGrid(cpoint4(7, -7, 7.5f, -7.5f), 5)},
                     {0, 1, -1, 3, 1, -1, 0, -1, 5, -5, 10, -5});
}

}  // namespace
