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

TEST(BitArray, ConstructsZeroedOrEmpty) {
    ExpectElements(cbitarray(5), {0, 0, 0, 0, 0});
    EXPECT_EQ(cbitarray(5).NumZeroBits(), 5);
    ExpectElements(cfloatarray(3), {0.0f, 0.0f, 0.0f});
    EXPECT_EQ(cbitarray().GetSize(), 0);
    EXPECT_EQ(cbitarray(0).GetData(), nullptr);
    EXPECT_EQ(cfloatarray(-3).GetSize(), 0);
}

TEST(BitArray, SetResetAndCountIgnoringIndicesOutOfRange) {
    AssertRecorder recorder;
    cbitarray a(6);
    a.Set(0);
    a.Set(2, 7);
    a.Set(3, -1);
    ExpectElements(a, {1, 0, 7, -1, 0, 0});
    EXPECT_EQ(a.NumBitsSet(), 3);
    EXPECT_EQ(a.NumZeroBits(), 3);
    a.Reset(2);
    EXPECT_EQ(a.NumBitsSet(), 2);

    a.SetAll();
    a.Reset(-1);
    a.Reset(6);
    ExpectElements(a, {1, 1, 1, 1, 1, 1});
    a.ResetAll();
    a.Set(-1);
    a.Set(6);
    a.Set(6, 9);
    EXPECT_EQ(a.NumBitsSet(), 0);
    a.SetAll(9);
    ExpectElements(a, {9, 9, 9, 9, 9, 9});
    EXPECT_EQ(recorder.Count(), 0);

    cfloatarray f(5);
    f.Set(1);
    f.Set(2, 0.25f);
    f.Set(3, std::numeric_limits<float>::quiet_NaN());
    f.Set(0, -0.0f);  // equal to 0
    EXPECT_EQ(f.NumValsSet(), 3);
    EXPECT_EQ(f.NumZeroVals(), 2);
    f.SetAll();
    ExpectElements(f, {1.0f, 1.0f, 1.0f, 1.0f, 1.0f});
    f.SetAll(0.5f);
    f.Reset(4);
    ExpectElements(f, {0.5f, 0.5f, 0.5f, 0.5f, 0.0f});
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
    a.SetSize(0, 0);
    EXPECT_EQ(a.GetSize(), 0);
    EXPECT_EQ(a.GetData(), nullptr);
    a.SetSize(2, 1);
    a.SetSize(-5, 1);
    EXPECT_EQ(a.GetSize(), 0);

    cfloatarray f(2);
    f.Set(0, 0.5f);
    f.Set(1, 2.5f);
    f.SetSize(3, 0);
    f.Set(2, 4.0f);
    ExpectElements(f, {0.5f, 2.5f, 4.0f});
}

TEST(BitArray, CopiesAreIndependentAndSizedLikeTheSource) {
    cbitarray a(3);
    a.Set(0, 5);
    a.Set(2, 6);
    cbitarray b(a);
    b.Set(1);
    ExpectElements(a, {5, 0, 6});
    ExpectElements(b, {5, 1, 6});

    cbitarray c(7);
    c = a;
    ExpectElements(c, {5, 0, 6});
    cbitarray d(1);
    Copy(d, b);
    ExpectElements(d, {5, 1, 6});
    Copy(d, cbitarray());
    EXPECT_EQ(d.GetSize(), 0);
    const cbitarray& self = c;
    c = self;
    ExpectElements(c, {5, 0, 6});

    cbitarray moved(std::move(b));
    ExpectElements(moved, {5, 1, 6});
    EXPECT_EQ(b.GetSize(), 0);
    c = std::move(moved);
    ExpectElements(c, {5, 1, 6});

    cfloatarray f(2), g;
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
    cfloatarray f;
    EXPECT_EQ(f[0], 0.0f);
    ASSERT_EQ(recorder.Count(), 3);
    for (const std::string& text : recorder.Texts()) {
        EXPECT_NE(text.find("File: Core/cbitarray, Line: "), std::string::npos) << text;
        EXPECT_NE(text.find("\nExpression: i>=0 && i<size\n"), std::string::npos) << text;
    }
}

}  // namespace
