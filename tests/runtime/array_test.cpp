#include "corearray.h"

#include <gtest/gtest.h>

#include <cstring>

#include "support/testsupport.h"

namespace {

TEST(RawArray, AllocatesWholeBlocksAndReportsFailedConditionsFromLine18) {
    auto* block = static_cast<unsigned char*>(array_new(4096));
    ASSERT_NE(block, nullptr);
    std::memset(block, 0xAB, 4096);  // ASan checks the bounds
    array_delete(block);
    array_delete(nullptr);

    AssertRecorder recorder;
    array_assert(5);
    EXPECT_EQ(recorder.Count(), 0);
    array_assert(0);
    ASSERT_EQ(recorder.Texts().size(), 1u);
    EXPECT_NE(recorder.Texts()[0].find("File: Core/array, Line: 18\nExpression: condition\n"),
              std::string::npos)
        << recorder.Texts()[0];
}

}  // namespace
