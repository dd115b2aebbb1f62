#include "animclock.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

std::vector<int> Clock() {
    return {GetAnimTime(), GetAnimStart(), GetAnimEnd(), GetAnimTPF(), IsAnimOn()};
}

TEST(AnimClock, ClampsTimeRangeAndTicksPerFrameAndResetsAllButTheMode) {
    ResetAnim();
    SetAnimOn(0);
    SetAnimTime(150);
    EXPECT_EQ(GetAnimTime(), 100);
    SetAnimTime(-5);
    SetAnimTPF(0);
    SetAnimEnd(-10);
    EXPECT_EQ(Clock(), (std::vector<int>{0, 0, 0, 1, 0}));
    SetAnimEnd(100);
    SetAnimStart(200);
    EXPECT_EQ(GetAnimStart(), 100);
    SetAnimStart(-7);
    EXPECT_EQ(GetAnimStart(), 0);
    SetAnimTime(80);
    SetAnimEnd(50);
    SetAnimStart(90);
    // Intended: the ends clamp against each other but the current time is not re-clamped.
    EXPECT_EQ(Clock(), (std::vector<int>{80, 50, 50, 1, 0}));

    SetAnimOn(1);
    ResetAnim();
    EXPECT_EQ(Clock(), (std::vector<int>{0, 0, 100, 40, 1}));
    SetAnimOn(0);
}

}  // namespace
