#include "cangleaxis.h"

#include <gtest/gtest.h>

#include <cmath>

#include "math/rotationoracle.h"

namespace {

using oracle::QuatActingLike;
using oracle::RotationActingLike;

void ExpectAngleAxis(const cangleaxis& a, float angle, float x, float y, float z,
                     float tolerance = 1e-4f) {
    EXPECT_NEAR(a.angle, angle, tolerance);
    EXPECT_NEAR(a.axis.x, x, tolerance);
    EXPECT_NEAR(a.axis.y, y, tolerance);
    EXPECT_NEAR(a.axis.z, z, tolerance);
}

TEST(AngleAxis, ComesFromAQuaternionWithTheAngleInDegrees) {
    ExpectAngleAxis(AngleAxisFromQuat(cquat()), 0, 0, 0, 0, 0);
    ExpectAngleAxis(AngleAxisFromQuat(MakeQuat(0, 0, 0, -1)), 360, 0, 0, 0, 1e-3f);
    ExpectAngleAxis(AngleAxisFromQuat(MakeQuat(0, 0, 2, 2)), 90, 0, 0, 1);
    float angle = 0;
    cpoint3 axis;
    AngleAxisFromQuat(MakeQuat(0, -1, 0, 0), angle, axis);
    EXPECT_NEAR(angle, 180, 1e-4f);
    EXPECT_NEAR(axis.y, -1, 1e-6f);

    oracle::Random random(31);
    for (int trial = 0; trial < 500; ++trial) {
        const Eigen::Quaternionf e = random.Rotation();
        const cquat q = QuatActingLike(e);
        const cangleaxis a = AngleAxisFromQuat(q);
        EXPECT_GE(a.angle, 0.0f);
        EXPECT_LE(a.angle, 360.0f);
        EXPECT_NEAR(Length(a.axis), 1.0f, 1e-4f);
        // The angle and axis move points as the quaternion does.
        const Eigen::Vector3f p = random.Vector(5.0f);
        const Eigen::Vector3f axisE = oracle::ToEigen(a.axis);
        EXPECT_LE((RotationActingLike(a.angle, axisE) * p - e * p).norm(), 2e-3f);
    }
}

TEST(AngleAxis, ConvertsFromMatricesAndEulerAngles) {
    ExpectAngleAxis(cangleaxis(cmatrix4().FromAngleZ(90)), 90, 0, 0, 1);
    ExpectAngleAxis(cangleaxis(0, 0, 90), 90, 0, 0, 1);
    ExpectAngleAxis(cangleaxis(cpoint3(-60, 0, 0)), 60, -1, 0, 0);
    ExpectAngleAxis(cangleaxis(QuatFromAngleAxis(30, cpoint3(0, 1, 0))), 30, 0, 1, 0);
    // 90 about X, then 90 about Y: qx * qy = (0.5, 0.5, 0.5, 0.5), 120 about the diagonal.
    const float k = 1 / std::sqrt(3.0f);
    ExpectAngleAxis(cangleaxis(90, 90, 0), 120, k, k, k);

    cangleaxis a;
    ExpectAngleAxis(a.FromMatrix(cmatrix4().FromAngleY(45)), 45, 0, 1, 0);
    ExpectAngleAxis(a.FromEuler(cpoint3(0, 0, -20)), 20, 0, 0, -1);
    ExpectAngleAxis(a.FromEuler(20, 0, 0), 20, 1, 0, 0);
    ExpectAngleAxis(a.FromQuat(MakeQuat(0, 0, 0, 3)), 0, 0, 0, 0, 0);
}

TEST(AngleAxis, InvertsAndRecognisesNoRotation) {
    const cangleaxis a = MakeAngleAxis(30, cpoint3(0, 1, 0));
    ExpectAngleAxis(a, 30, 0, 1, 0, 0);
    ExpectAngleAxis(Inverse(a), -30, 0, 1, 0, 0);
    cangleaxis b = a;
    b.Invert();
    ExpectAngleAxis(b, -30, 0, 1, 0, 0);
    ExpectAngleAxis(cangleaxis(), 0, 0, 0, 0, 0);

    EXPECT_TRUE(cangleaxis().IsIdentity());
    EXPECT_TRUE(MakeAngleAxis(360, cpoint3(1, 0, 0)).IsIdentity());
    EXPECT_TRUE(MakeAngleAxis(-720.00001f, cpoint3(1, 0, 0)).IsIdentity());
    EXPECT_TRUE(MakeAngleAxis(45, cpoint3()).IsIdentity());
    EXPECT_FALSE(MakeAngleAxis(45, cpoint3(0, 0, 1)).IsIdentity());
    EXPECT_FALSE(MakeAngleAxis(359.99f, cpoint3(0, 0, 1)).IsIdentity());
}

}  // namespace
