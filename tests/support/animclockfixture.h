// A test fixture for tests that move or read the animation clock.
#ifndef ORVANE_TESTS_SUPPORT_ANIMCLOCKFIXTURE_H
#define ORVANE_TESTS_SUPPORT_ANIMCLOCKFIXTURE_H

#include <gtest/gtest.h>

#include "animclock.h"

// The clock at time 0 of a 0..1000 range with animation mode off, before and after each test,
// so that no test sees another's clock.
class AnimClockTest : public ::testing::Test {
protected:
    void SetUp() override { Reset(); }
    void TearDown() override { Reset(); }
    static void Reset() {
        ResetAnim();
        SetAnimEnd(1000);
        SetAnimOn(0);
    }
};

#endif
