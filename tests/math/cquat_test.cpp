#include "cquat.h"

#include <gtest/gtest.h>

#include <cmath>

#include "math/rotationoracle.h"

namespace {

using oracle::ActingLike;
using oracle::ExpectNear;
using oracle::ExpectSameRotation;
using oracle::FromEigen;
using oracle::MatrixActingLike;
using oracle::QuatActingLike;

// Our quaternion with the same storage as e (not the same rotation: see rotationoracle.h).
cquat SameStorage(const Eigen::Quaternionf& e) {
    return MakeQuat(e.x(), e.y(), e.z(), e.w());
}

cmatrix4 MatrixOf(const cquat& q) {
    cmatrix4 m;
    MatrixFromQuat(q, m);
    return m;
}

TEST(Quaternion, ConvertsFromAngleAndAxisEulerAnglesInDegreesAndMatrices) {
    for (oracle::Random random(21); random.Trial();) {
        const float angle = random.Uniform(-720, 720);
        const Eigen::Vector3f axis = random.Vector(1.0f).normalized(), e = random.Angles();
        ExpectSameRotation(
            QuatFromAngleAxis(angle, FromEigen(axis)),
            QuatActingLike(Eigen::Quaternionf(oracle::RotationActingLike(angle, axis))), 1e-5f);
        const Eigen::Quaternionf rotation = oracle::EulerActingLike(e);
        const cquat euler = QuatActingLike(rotation);
        ExpectSameRotation(EulerToQuat(FromEigen(e)), euler, 1e-5f);
        ExpectNear(QuatToEuler(euler), e, 0.05f);
        // Scale and translation do not change the rotation read from a matrix.
        cmatrix4 scaled =
            cmatrix4().FromScale(cpoint3(3, 3, 3)) * MatrixActingLike(Eigen::Affine3f(rotation));
        scaled.SetTrans(FromEigen(10 * axis));
        ExpectSameRotation(QuatFromMatrix(scaled), euler, 1e-5f);
    }
    // Half turns have a negative trace: the quaternion is read off the largest diagonal element.
    const float h = std::sqrt(0.5f);
    for (const cquat& q : {MakeQuat(1, 0, 0, 0), MakeQuat(0, 1, 0, 0), MakeQuat(0, 0, 1, 0),
                           MakeQuat(h, h, 0, 0), MakeQuat(0, 0.6f, 0.8f, 0)})
        ExpectSameRotation(QuatFromMatrix(MatrixOf(q)), q, 1e-6f);
}

TEST(Quaternion, ProductIsHamiltonsAndRotatesByTheLeftOperandFirst) {
    for (oracle::Random random(22); random.Trial();) {
        const Eigen::Quaternionf ea = random.Rotation(), eb = random.Rotation();
        const cquat a = SameStorage(ea), b = SameStorage(eb);
        ExpectNear(a * b, SameStorage(ea * eb), 1e-6f);
        ExpectNear(a / b, SameStorage(ea * eb.inverse()), 1e-5f);
        cquat squared = a;  // the operand is the quaternion being assigned
        ExpectNear(squared *= squared, SameStorage(ea * ea), 1e-6f);
        // A scaled quaternion is the same rotation, for the point and the matrix.
        const Eigen::Vector3f p = random.Vector(10.0f);
        const cpoint3 ours = FromEigen(p);
        for (const cpoint3& r :
             {ours * b, b * ours, (b * 3.0f).PointRotate(ours), ours * MatrixOf(b * 3.0f)})
            ExpectNear(r, ActingLike(b) * p, 1e-4f);
    }
}

TEST(Quaternion, SlerpFollowsTheShorterArcAndExtrapolates) {
    for (oracle::Random random(25); random.Trial();) {
        const Eigen::Quaternionf ea = random.Rotation(), eb = random.Rotation();
        const float t = random.Uniform(0, 1);
        const cquat expected = SameStorage(ea.slerp(t, eb));
        ExpectSameRotation(Slerp(SameStorage(ea), SameStorage(eb), t), expected, 2e-4f);
        ExpectSameRotation(Slerp(SameStorage(ea), -SameStorage(eb), t), expected, 2e-4f);
    }
    // t is not clamped: from 0 to 90 degrees about X, 1.5 gives 135. Nearly equal rotations
    // blend linearly, normalised and extrapolating too.
    ExpectNear(Slerp(cquat(), QuatFromAngleAxis(90, cpoint3(1, 0, 0)), 1.5f),
               MakeQuat(0.9238795f, 0, 0, 0.3826834f), 1e-5f);
    const cquat near = QuatFromAngleAxis(0.01f, cpoint3(0, 1, 0));
    const cquat twice = MakeQuat(0, 2 * near.y, 0, 2 * near.w - 1);
    ExpectNear(Slerp(cquat(), near, 2.0f), twice / twice.Length(), 1e-6f);
}

TEST(Quaternion, ArithmeticTreatsAFloatAsARealQuaternion) {
    const cquat q = MakeQuat(1, 2, 3, 4);
    ExpectNear(q + 2.0f, MakeQuat(1, 2, 3, 6), 0);
    ExpectNear(Inverse(q), MakeQuat(-1, -2, -3, 4) / 30.0f, 1e-7f);
    ExpectNear(Normalize(MakeQuat(0, 0, 0, 0)), MakeQuat(0, 0, 0, 0), 0);
    EXPECT_TRUE(!q.IsUnit() && Normalize(q).IsUnit());
    EXPECT_TRUE(MakeQuat(0, 0, 0, -1).IsIdentity());
}

}  // namespace
