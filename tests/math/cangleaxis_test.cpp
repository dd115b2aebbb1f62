#include "cangleaxis.h"

#include <gtest/gtest.h>

#include <cmath>

#include "math/rotationoracle.h"

namespace {

void ExpectAngleAxis(const cangleaxis& a, float angle, const Eigen::Vector3f& axis,
                     float tolerance = 1e-4f) {
    EXPECT_NEAR(a.angle, angle, tolerance);
    oracle::ExpectNear(a.axis, axis, tolerance);
}

TEST(AngleAxis, ComesFromAQuaternionMatrixOrEulerAnglesInDegreesAndInverts) {
    for (oracle::Random random(31); random.Trial();) {
        const Eigen::Quaternionf e = random.Rotation();
        const cangleaxis a = AngleAxisFromQuat(oracle::QuatActingLike(e));
        EXPECT_TRUE(a.angle >= 0.0f && a.angle <= 360.0f) << a.angle;
        // The angle and axis move points as the quaternion does.
        const Eigen::Vector3f p = random.Vector(5.0f);
        oracle::ExpectClose(oracle::RotationActingLike(a.angle, oracle::ToEigen(a.axis)) * p, e * p,
                            2e-3f);
    }
    ExpectAngleAxis(AngleAxisFromQuat(cquat()), 0, Eigen::Vector3f::Zero(), 0);
    ExpectAngleAxis(AngleAxisFromQuat(MakeQuat(0, 0, 2, 2)), 90, Eigen::Vector3f::UnitZ());
    ExpectAngleAxis(cangleaxis(cmatrix4().FromAngleZ(90)), 90, Eigen::Vector3f::UnitZ());
    // 90 about X, then 90 about Y: qx * qy = (0.5, 0.5, 0.5, 0.5), 120 about the diagonal.
    ExpectAngleAxis(cangleaxis(90, 90, 0), 120, Eigen::Vector3f::Ones() / std::sqrt(3.0f));
    ExpectAngleAxis(Inverse(MakeAngleAxis(30, cpoint3(0, 1, 0))), -30, Eigen::Vector3f::UnitY());
    EXPECT_TRUE(MakeAngleAxis(-720.00001f, cpoint3(1, 0, 0)).IsIdentity());
}

}  // namespace
