#include "cangleaxis.h"

#include <gtest/gtest.h>

#include <cmath>

#include "math/rotationoracle.h"

namespace {

void ExpectAngleAxis(const cangleaxis& a, float angle, float x, float y, float z,
                     float tolerance = 1e-4f) {
    EXPECT_NEAR(a.angle, angle, tolerance);
    oracle::ExpectNear(a.axis, Eigen::Vector3f(x, y, z), tolerance);
}

TEST(AngleAxis, ComesFromAQuaternionWithTheAngleInDegrees) {
    ExpectAngleAxis(AngleAxisFromQuat(cquat()), 0, 0, 0, 0, 0);
    ExpectAngleAxis(AngleAxisFromQuat(MakeQuat(0, 0, 0, -1)), 360, 0, 0, 0, 1e-3f);
    ExpectAngleAxis(AngleAxisFromQuat(MakeQuat(0, 0, 2, 2)), 90, 0, 0, 1);
    ExpectAngleAxis(AngleAxisFromQuat(MakeQuat(0, -1, 0, 0)), 180, 0, -1, 0);

    for (oracle::Random random(31); random.Trial();) {
        const Eigen::Quaternionf e = random.Rotation();
        const cangleaxis a = AngleAxisFromQuat(oracle::QuatActingLike(e));
        EXPECT_TRUE(a.angle >= 0.0f && a.angle <= 360.0f) << a.angle;
        EXPECT_NEAR(Length(a.axis), 1.0f, 1e-4f);
        // The angle and axis move points as the quaternion does.
        const Eigen::Vector3f p = random.Vector(5.0f);
        oracle::ExpectClose(oracle::RotationActingLike(a.angle, oracle::ToEigen(a.axis)) * p, e * p,
                            2e-3f);
    }
}

TEST(AngleAxis, ConvertsFromMatricesAndEulerAngles) {
    ExpectAngleAxis(cangleaxis(cmatrix4().FromAngleZ(90)), 90, 0, 0, 1);
    ExpectAngleAxis(cangleaxis(20, 0, 0), 20, 1, 0, 0);
    ExpectAngleAxis(cangleaxis(cpoint3(0, 0, -60)), 60, 0, 0, -1);
    ExpectAngleAxis(cangleaxis(QuatFromAngleAxis(30, cpoint3(0, 1, 0))), 30, 0, 1, 0);
    // 90 about X, then 90 about Y: qx * qy = (0.5, 0.5, 0.5, 0.5), 120 about the diagonal.
    const float k = 1 / std::sqrt(3.0f);
    ExpectAngleAxis(cangleaxis(90, 90, 0), 120, k, k, k);
}

TEST(AngleAxis, InvertsAndRecognisesNoRotation) {
    ExpectAngleAxis(Inverse(MakeAngleAxis(30, cpoint3(0, 1, 0))), -30, 0, 1, 0, 0);
    EXPECT_TRUE(cangleaxis().IsIdentity());
    EXPECT_TRUE(MakeAngleAxis(-720.00001f, cpoint3(1, 0, 0)).IsIdentity());
    EXPECT_TRUE(MakeAngleAxis(45, cpoint3()).IsIdentity());
    EXPECT_FALSE(MakeAngleAxis(45, cpoint3(0, 0, 1)).IsIdentity());
    EXPECT_FALSE(MakeAngleAxis(359.99f, cpoint3(0, 0, 1)).IsIdentity());
}

}  // namespace
