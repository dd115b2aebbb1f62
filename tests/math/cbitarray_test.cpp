#include "cbitarray.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "support/testsupport.h"

namespace {

using Ints = std::vector<int>;

Ints Elements(const cbitarray& a, int count) {
    return Ints(a.GetData(), a.GetData() + count);
}

TEST(BitArray, SetsResetsAndCountsIgnoringIndicesOutOfRange) {
    cbitarray a(6);
    a.SetAll(9);
    a.Set(0);
    a.Set(2, 7);
    a.Set(3, -1);
    a.Reset(4);
    for (int i : {-1, 6}) a.Reset(i), a.Set(i), a.Set(i, 5);
    EXPECT_EQ(Elements(a, 6), (Ints{1, 9, 7, -1, 0, 9}));
    EXPECT_EQ((Ints{a.NumBitsSet(), a.NumZeroBits()}), (Ints{5, 1}));
}

// Growing keeps the elements (seen through the copy); shrinking with clear zeroes them.
TEST(BitArray, SetSizeKeepsClearsOrFreesAndCopiesFollowTheSource) {
    cbitarray a(4), b(7);
    for (int i = 0; i < 4; ++i) a.Set(i, i + 1);
    a.SetSize(10, 0);
    b = a;
    a.SetSize(2, 0);
    const Ints shrunk = Elements(a, 2);
    a.SetSize(3, 1);
    EXPECT_EQ(std::tuple(b.GetSize(), Elements(b, 4), shrunk, Elements(a, 3)),
              std::tuple(10, Ints{1, 2, 3, 4}, Ints{1, 2}, Ints{0, 0, 0}));
    a.SetSize(-5, 1);
    EXPECT_TRUE(a.GetData() == nullptr && a.GetSize() == 0);
}

TEST(BitArray, ReadOutOfRangeIsReportedFromCbitarrayAndReadsZero) {
    AssertRecorder recorder;
    cbitarray a(2);
    a.SetAll(5);
    EXPECT_EQ(a[1] + a[2] + a[-1], 5);
    ASSERT_EQ(recorder.Count(), 2);
    EXPECT_NE(recorder.Texts()[1].find("File: Core/cbitarray, Line: "), std::string::npos);
    EXPECT_NE(recorder.Texts()[1].find("\nExpression: i>=0 && i<size\n"), std::string::npos);
}

}  // namespace
