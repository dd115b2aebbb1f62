#include "ik.h"

#include "scene/aimednodes.h"

using IK = AnimClockTest;

// A two-bone arm along X (shoulder at the origin, elbow at (2, 0, 0), hand at (4, 0, 0)) reaches
// for each target; out of reach it stretches toward it. With only the elbow free (a depth of
// one, or a locked shoulder) the hand points from the elbow at the target.
TEST_F(IK, ReachesWhatItCanKeepingTheBoneLengths) {
    EXPECT_EQ(IK_ComputeCCD(0, cpoint3(), nullptr, 0, 0.0f), 0);
    const cpoint3 pointing(2 - std::sqrt(2.0f), std::sqrt(2.0f), 0);
    const struct {
        cpoint3 target, hand;
        int depth, locked;
    } rows[] = {{cpoint3(-1, 1.5f, 2), cpoint3(-1, 1.5f, 2), 2, 0},
                {cpoint3(0, 8, 0), cpoint3(0, 4, 0), 2, 0},
                {cpoint3(0, 2, 0), pointing, 1, 0},
                {cpoint3(0, 2, 0), pointing, 2, 1}};
    for (const auto& row : rows) {
        cnode shoulder("Shoulder"), elbow("Elbow"), hand("Hand");
        elbow.SetPosition(0, cpoint3(2, 0, 0));
        hand.SetPosition(0, cpoint3(4, 0, 0));
        shoulder.Attach(&elbow, 1);
        elbow.Attach(&hand, 1);
        hand.SetIKRecurseNum(row.depth);
        shoulder.LockIK(row.locked);
        const bool reachable = Distance(row.target, row.hand) < 1e-3f;
        EXPECT_EQ(IK_ComputeCCD(0, row.target, &hand, 0, 1e-3f), reachable ? 1 : 0);
        const cpoint3 at = elbow.GetPosition(0), end = hand.GetPosition(0);
        EXPECT_TRUE(Near3(end, row.hand, reachable ? 1e-3f : 0.02f)) << row.depth << row.locked;
        EXPECT_NEAR(Distance(at, cpoint3()) + Distance(end, at), 4.0f, 1e-4f);
    }
}

// One free joint at the origin holding a hand at (2, 0, 0), aimed at (0, 2, 0), a quarter turn
// away. Damping turns it at most the damping width per pass, for the given passes or else the
// node's own count; joint limits hold it at 45 degrees however far the target lies.
TEST_F(IK, DampingAndJointLimitsHoldTheTurnBack) {
    const struct {
        int damping, limits, iterations, ownIterations;
        float degrees;
    } rows[] = {{1, 0, 1, 5, 10.0f}, {1, 0, 3, 5, 30.0f}, {1, 0, 0, 2, 20.0f}, {0, 1, 0, 5, 45.0f}};
    for (const auto& row : rows) {
        cnode elbow("Elbow"), hand("Hand");
        hand.SetPosition(0, cpoint3(2, 0, 0));
        elbow.Attach(&hand, 1);
        hand.SetIKRecurseNum(1);
        hand.SetIKNumIterations(row.ownIterations);
        elbow.EnableIKDamping(row.damping);
        elbow.SetIKDampWidth(10.0f);
        elbow.EnableIKDOF(row.limits);
        elbow.SetIKMinRot(cpoint3(0, 0, -45));
        elbow.SetIKMaxRot(cpoint3(0, 0, 45));
        EXPECT_EQ(IK_ComputeCCD(0, cpoint3(0, 2, 0), &hand, row.iterations, 1e-3f), 0);
        const double turned = row.degrees * std::acos(-1.0) / 180.0;
        EXPECT_TRUE(Near3(hand.GetPosition(0),
                          cpoint3(static_cast<float>(2 * std::cos(turned)),
                                  static_cast<float>(2 * std::sin(turned)), 0),
                          1e-4f))
            << row.degrees;
    }
}
