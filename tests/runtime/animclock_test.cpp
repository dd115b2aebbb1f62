#include "animclock.h"

#include <gtest/gtest.h>

#include "coreinterface.h"

namespace {

class AnimClockTest : public ::testing::Test {
protected:
    void TearDown() override {
        ResetAnim();
        SetAnimOn(0);
    }
};

TEST_F(AnimClockTest, TimeRangeAndTicksPerFrameAreClamped) {
    ResetAnim();
    SetAnimTime(150);
    EXPECT_EQ(GetAnimTime(), 100);
    SetAnimTime(-5);
    EXPECT_EQ(GetAnimTime(), 0);
    for (int tpf : {0, -3}) {
        SetAnimTPF(tpf);
        EXPECT_EQ(GetAnimTPF(), 1) << tpf;
    }

    // The range ends clamp against each other but leave the time.
    SetAnimEnd(-10);
    EXPECT_EQ(GetAnimEnd(), 0);
    SetAnimEnd(100);
    SetAnimStart(200);
    EXPECT_EQ(GetAnimStart(), 100);
    SetAnimStart(-7);
    EXPECT_EQ(GetAnimStart(), 0);
    SetAnimTime(80);
    SetAnimEnd(50);
    EXPECT_EQ(GetAnimEnd(), 50);
    EXPECT_EQ(GetAnimTime(), 80) << "the current time is not re-clamped";
    SetAnimStart(90);
    EXPECT_EQ(GetAnimStart(), 50);
    EXPECT_EQ(GetAnimTime(), 80);
}

TEST_F(AnimClockTest, ResetRestoresEverythingButTheAnimationMode) {
    SetAnimOn(1);
    SetAnimEnd(500);
    SetAnimStart(10);
    SetAnimTime(300);
    SetAnimTPF(12);
    ResetAnim();
    EXPECT_EQ(GetAnimTime(), 0);
    EXPECT_EQ(GetAnimStart(), 0);
    EXPECT_EQ(GetAnimEnd(), 100);
    EXPECT_EQ(GetAnimTPF(), 40);
    EXPECT_EQ(IsAnimOn(), 1);
    SetAnimOn(7);
    EXPECT_EQ(IsAnimOn(), 7) << "the mode is stored as given";
}

}  // namespace
