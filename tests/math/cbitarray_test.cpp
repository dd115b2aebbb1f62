#include "cbitarray.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <limits>
#include <string>
#include <utility>

#include "support/testsupport.h"

namespace {

template <class A, class T>
void ExpectElements(const A& a, std::initializer_list<T> expected) {
    ASSERT_EQ(a.GetSize(), static_cast<int>(expected.size()));
    int i = 0;
    for (T e : expected) EXPECT_EQ(a[i++], e) << "element " << i - 1;
}

TEST(BitArray, SetsResetsAndCountsIgnoringIndicesOutOfRange) {
    AssertRecorder recorder;
    cbitarray a(6);
    EXPECT_EQ(a.NumZeroBits(), 6);
    a.SetAll(9);
    a.Set(0);
    a.Set(2, 7);
    a.Set(3, -1);
    a.Reset(4);
    for (int i : {-1, 6}) a.Reset(i), a.Set(i), a.Set(i, 5);
    ExpectElements(a, {1, 9, 7, -1, 0, 9});
    EXPECT_EQ(a.NumBitsSet(), 5);
    a.ResetAll();
    EXPECT_EQ(a.NumZeroBits(), 6);
    EXPECT_EQ(recorder.Count(), 0);

    cfloatarray f(4);
    EXPECT_EQ(f.NumZeroVals(), 4);
    f.SetAll();
    f.Set(1, std::numeric_limits<float>::quiet_NaN());
    f.Set(2, -0.0f);  // equal to 0
    f.Reset(3);
    EXPECT_EQ(f[0], 1.0f);
    EXPECT_EQ(f.NumValsSet(), 2);
    EXPECT_EQ(f.NumZeroVals(), 2);
}

TEST(BitArray, SetSizeKeepsClearsOrFrees) {
    cbitarray a(4);
    for (int i = 0; i < 4; ++i) a.Set(i, i + 1);
    a.SetSize(10, 0);
    EXPECT_EQ(a.GetSize(), 10);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(a[i], i + 1);  // 4..9 are not read: unspecified
    a.SetSize(2, 0);
    ExpectElements(a, {1, 2});
    a.SetSize(3, 1);
    ExpectElements(a, {0, 0, 0});
    a.SetSize(-5, 1);
    EXPECT_EQ(a.GetData(), nullptr);
    EXPECT_EQ(a.GetSize(), 0);
    EXPECT_EQ(cfloatarray(0).GetData(), nullptr);
}

TEST(BitArray, CopiesAreIndependentAndSizedLikeTheSource) {
    cbitarray a(3);
    a.Set(0, 5);
    cbitarray b(a), c(7);
    b.Set(1);
    c = b;
    ExpectElements(a, {5, 0, 0});
    ExpectElements(c, {5, 1, 0});
    cbitarray moved(std::move(c));
    EXPECT_EQ(c.GetSize(), 0);
    a = std::move(moved);
    ExpectElements(a, {5, 1, 0});
    Copy(a, cbitarray());
    EXPECT_EQ(a.GetSize(), 0);

    cfloatarray f(2), g(1);
    f.Set(1, 0.75f);
    Copy(g, f);
    ExpectElements(g, {0.0f, 0.75f});
}

TEST(BitArray, ReadOutOfRangeIsReportedFromCbitarrayAndReadsZero) {
    AssertRecorder recorder;
    cbitarray a(2);
    a.SetAll(5);
    EXPECT_EQ(a[1], 5);
    EXPECT_EQ(recorder.Count(), 0);
    EXPECT_EQ(a[2], 0);
    EXPECT_EQ(a[-1], 0);
    EXPECT_EQ(cfloatarray()[0], 0.0f);
    ASSERT_EQ(recorder.Count(), 3);
    for (const std::string& text : recorder.Texts()) {
        EXPECT_NE(text.find("File: Core/cbitarray, Line: "), std::string::npos) << text;
        EXPECT_NE(text.find("\nExpression: i>=0 && i<size\n"), std::string::npos) << text;
    }
}

}  // namespace
