#include "ik.h"

#include <gtest/gtest.h>

#include <cmath>

#include "animclock.h"
#include "cnode.h"
#include "scene/aimednodes.h"

namespace {

constexpr double kDegrees = 57.29577951308232;

class IK : public AnimClockTest {};

// A two-bone arm along X: shoulder at the origin, elbow at (2, 0, 0), hand at (4, 0, 0).
struct Arm {
    cnode shoulder{"Shoulder"}, elbow{"Elbow"}, hand{"Hand"};
    Arm() {
        elbow.SetPosition(0, cpoint3(2, 0, 0));
        hand.SetPosition(0, cpoint3(4, 0, 0));
        shoulder.Attach(&elbow, 1);
        elbow.Attach(&hand, 1);
    }
    cpoint3 At(const cnode& node, int time = 0) const { return node.GetPosition(time); }
    // The angle in degrees between the upper and the lower bone.
    double Bend() const {
        const cpoint3 upper = Normalize(At(elbow) - At(shoulder));
        const cpoint3 lower = Normalize(At(hand) - At(elbow));
        return std::acos(std::fmin(1.0, DotProd(upper, lower))) * kDegrees;
    }
    int Reach(const cpoint3& target, int iterations = 0, int time = 0) {
        return IK_ComputeCCD(time, target, &hand, iterations, 1e-3f);
    }
};

TEST_F(IK, ReachesReachableTargetsKeepingTheBoneLengths) {
    for (const cpoint3& target : {cpoint3(2, 2, 0), cpoint3(-1, 1.5f, 2), cpoint3(0, 0, 3.9f)}) {
        Arm arm;
        EXPECT_EQ(arm.Reach(target), 1);
        EXPECT_LE(Distance(arm.At(arm.hand), target), 1e-3f);
        EXPECT_NEAR(Distance(arm.At(arm.elbow), arm.At(arm.shoulder)), 2.0f, 1e-4f);
        EXPECT_NEAR(Distance(arm.At(arm.hand), arm.At(arm.elbow)), 2.0f, 1e-4f);
        EXPECT_TRUE(Near3(arm.At(arm.shoulder), cpoint3(), 0));
    }
    Arm arm;
    EXPECT_EQ(IK_ComputeCCD(0, cpoint3(4, 0, 0), &arm.hand, 0, 0.0f), 1);
    EXPECT_EQ(IK_ComputeCCD(0, cpoint3(), nullptr, 0, 0.0f), 0);
    // Out of reach the chain stretches toward the target.
    EXPECT_EQ(arm.Reach(cpoint3(0, 8, 0)), 0);
    EXPECT_TRUE(Near3(arm.At(arm.hand), cpoint3(0, 4, 0), 0.02f));
    EXPECT_TRUE(Near3(arm.At(arm.elbow), cpoint3(0, 2, 0), 0.02f));
}

TEST_F(IK, StopsTheChainAtLockedJointsAndTheRecursionDepth) {
    // Out of the elbow's reach alone: the hand points from the elbow at the target.
    const float half = std::sqrt(2.0f);
    Arm locked, shallow, stiff;
    locked.shoulder.LockIK(1);
    EXPECT_EQ(locked.Reach(cpoint3(2, 2, 0)), 1);
    EXPECT_TRUE(locked.shoulder.GetRotation(0).IsIdentity());
    EXPECT_EQ(locked.Reach(cpoint3(0, 2, 0)), 0);
    EXPECT_TRUE(Near3(locked.At(locked.hand), cpoint3(2 - half, half, 0), 1e-3f));
    EXPECT_TRUE(Near3(locked.At(locked.elbow), cpoint3(2, 0, 0), 0));
    shallow.hand.SetIKRecurseNum(1);
    EXPECT_EQ(shallow.Reach(cpoint3(0, 2, 0)), 0);
    EXPECT_TRUE(Near3(shallow.At(shallow.hand), cpoint3(2 - half, half, 0), 1e-3f));
    stiff.elbow.LockIK(1);
    EXPECT_EQ(stiff.Reach(cpoint3(0, 2, 0)), 0);
    EXPECT_TRUE(Near3(stiff.At(stiff.hand), cpoint3(4, 0, 0), 0));
}

TEST_F(IK, KeepsJointAnglesWithinTheirLimits) {
    Arm arm, easy;
    for (Arm* a : {&arm, &easy}) {
        a->elbow.EnableIKDOF(1);
        a->elbow.SetIKMinRot(cpoint3(0, 0, -60));
        a->elbow.SetIKMaxRot(cpoint3(0, 0, 60));
    }
    // Reaching (2, 2, 0) takes a bend of 90 degrees.
    EXPECT_EQ(arm.Reach(cpoint3(2, 2, 0)), 0);
    EXPECT_LE(arm.Bend(), 60.01);
    // A target 3.5 away takes a bend of acos((3.5^2 - 8) / 8) = 57.9 degrees: within the limits.
    EXPECT_EQ(easy.Reach(cpoint3(0, 3.5f, 0)), 1);
    EXPECT_NEAR(easy.Bend(), std::acos((3.5 * 3.5 - 8.0) / 8.0) * kDegrees, 0.1);
}

TEST_F(IK, DampingCapsTheTurnOfEachStep) {
    // One joint: the elbow turns the hand a quarter circle to (2, 2, 0).
    const auto turned = [](const Arm& arm) {
        const cpoint3 dir = Normalize(arm.At(arm.hand) - arm.At(arm.elbow));
        return std::acos(std::fmin(1.0, dir.x)) * kDegrees;
    };
    Arm free, damped;
    free.hand.SetIKRecurseNum(1);
    EXPECT_EQ(free.Reach(cpoint3(2, 2, 0), 1), 1);
    damped.hand.SetIKRecurseNum(1);
    damped.elbow.EnableIKDamping(1);
    EXPECT_EQ(damped.Reach(cpoint3(2, 2, 0), 5), 0);
    EXPECT_NEAR(turned(damped), 50.0, 0.01);
    damped.hand.SetIKNumIterations(2);  // used when no iteration count is given
    EXPECT_EQ(damped.Reach(cpoint3(2, 2, 0)), 0);
    EXPECT_NEAR(turned(damped), 70.0, 0.01);
    EXPECT_EQ(damped.Reach(cpoint3(2, 2, 0), 10), 1);
}

TEST_F(IK, WritesRotationsThroughTheKeyRules) {
    Arm animated, later;
    SetAnimTime(40);
    SetAnimOn(1);
    EXPECT_EQ(animated.Reach(cpoint3(2, 2, 0), 0, 40), 1);
    EXPECT_TRUE(animated.elbow.HasKey(40) && animated.shoulder.HasKey(40));
    EXPECT_TRUE(Near3(animated.At(animated.hand, 0), cpoint3(4, 0, 0), 0));

    SetAnimOn(0);
    SetAnimTime(0);
    EXPECT_EQ(later.Reach(cpoint3(2, 2, 0), 0, 80), 1);
    EXPECT_TRUE(later.elbow.HasKey(80));
    EXPECT_TRUE(Near3(later.At(later.hand, 0), cpoint3(4, 0, 0), 0));
    EXPECT_LE(Distance(later.At(later.hand, 80), cpoint3(2, 2, 0)), 1e-3f);
}

}  // namespace
