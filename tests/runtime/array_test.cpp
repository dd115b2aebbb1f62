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
    array_assert(0);
    ASSERT_EQ(recorder.Count(), 1);
    EXPECT_NE(recorder.Texts()[0].find("File: Core/array, Line: 18\nExpression: condition\n"),
              std::string::npos);
}

}  // namespace
