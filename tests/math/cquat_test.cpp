#include "cquat.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "math/rotationoracle.h"

namespace {

using oracle::ActingLike;
using oracle::ExpectNear;
using oracle::ExpectQuat;
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

TEST(Quaternion, BuildsFromAngleAndAxisInDegrees) {
    ExpectQuat(cquat(), MakeQuat(0, 0, 0, 1), 0);
    const float h = std::sqrt(0.5f);
    ExpectQuat(QuatFromAngleAxis(90, cpoint3(0, 0, 1)), MakeQuat(0, 0, h, h), 1e-6f);

    for (oracle::Random random(21); random.Trial();) {
        const float angle = random.Uniform(-720, 720);
        const Eigen::Vector3f axis = random.Vector(1.0f).normalized();
        const cquat expected =
            QuatActingLike(Eigen::Quaternionf(oracle::RotationActingLike(angle, axis)));
        ExpectSameRotation(QuatFromAngleAxis(angle, FromEigen(axis)), expected, 1e-5f);
        ExpectSameRotation(cquat(FromEigen(axis), angle), expected, 1e-5f);
    }
}

TEST(Quaternion, ProductIsHamiltonsAndRotatesByTheLeftOperandFirst) {
    for (oracle::Random random(22); random.Trial();) {
        const Eigen::Quaternionf ea = random.Rotation(), eb = random.Rotation();
        const cquat a = SameStorage(ea), b = SameStorage(eb);
        ExpectQuat(a * b, SameStorage(ea * eb), 1e-6f);
        ExpectQuat(a / b, SameStorage(ea * eb.inverse()), 1e-5f);
        ExpectNear(ActingLike(MatrixOf(a * b)), Eigen::Affine3f(ActingLike(b) * ActingLike(a)),
                   1e-5f);
        // The transforms apply the matrix first, then the quaternion.
        const Eigen::Affine3f t = random.Affine();
        ExpectNear(ActingLike(TransformMatrix(MatrixActingLike(t), b)), ActingLike(b) * t, 1e-4f);
        ExpectSameRotation(TransformQuat(MatrixActingLike(Eigen::Affine3f(ActingLike(b))), a),
                           SameStorage(ea * eb), 1e-5f);
    }
}

TEST(Quaternion, RotatesPointsAsItsMatrixDoes) {
    for (oracle::Random random(23); random.Trial();) {
        const Eigen::Quaternionf e = random.Rotation();
        const cquat q = QuatActingLike(e);
        const Eigen::Vector3f p = random.Vector(10.0f);
        const cpoint3 ours = FromEigen(p);
        // A scaled quaternion is the same rotation, for the point and the matrix.
        for (const cpoint3& r : {ours * q, q * ours, ours * MatrixOf(q),
                                 (q * 3.0f).PointRotate(ours), ours * MatrixOf(q * 3.0f)})
            ExpectNear(r, e * p, 1e-4f);
    }

    // MatrixFromQuat replaces the translation and the fourth column.
    cmatrix4 m = cmatrix4().FromTranslation(cpoint3(1, 2, 3));
    m.m[0][3] = 7.0f;
    MatrixFromQuat(cquat(), m);
    EXPECT_TRUE(m.IsIdentity());
}

TEST(Quaternion, FromMatrixInvertsMatrixFromQuatOnEveryBranch) {
    for (oracle::Random random(24); random.Trial();) {
        const Eigen::Quaternionf e = random.Rotation();
        const cmatrix4 m = MatrixActingLike(Eigen::Affine3f(e));
        // Scale and translation do not change the rotation.
        cmatrix4 scaled = cmatrix4().FromScale(cpoint3(3, 3, 3)) * m;
        scaled.SetTrans(FromEigen(random.Vector(10.0f)));
        for (const cquat& q : {QuatFromMatrix(m), cquat(m), QuatFromMatrix(scaled)})
            ExpectSameRotation(q, QuatActingLike(e), 1e-5f);
    }

    // Half turns have a negative trace: the quaternion is read off the largest diagonal element.
    const float h = std::sqrt(0.5f);
    for (const cquat& q : {MakeQuat(1, 0, 0, 0), MakeQuat(0, 1, 0, 0), MakeQuat(0, 0, 1, 0),
                           MakeQuat(h, h, 0, 0), MakeQuat(0, 0.6f, 0.8f, 0)})
        ExpectSameRotation(QuatFromMatrix(MatrixOf(q)), q, 1e-6f);

    // Only a matrix holding NaN leaves every axis unusable: the result is the identity.
    cmatrix4 broken;
    broken.m[1][1] = std::numeric_limits<float>::quiet_NaN();
    ExpectQuat(QuatFromMatrix(broken), cquat(), 0);
}

TEST(Quaternion, SlerpFollowsTheShorterArcAndExtrapolates) {
    for (oracle::Random random(25); random.Trial();) {
        const Eigen::Quaternionf ea = random.Rotation(), eb = random.Rotation();
        const float t = random.Uniform(0, 1);
        const cquat expected = SameStorage(ea.slerp(t, eb));
        ExpectSameRotation(Slerp(SameStorage(ea), SameStorage(eb), t), expected, 2e-4f);
        ExpectSameRotation(Slerp(SameStorage(ea), -SameStorage(eb), t), expected, 2e-4f);
    }

    // t is not clamped: from 0 to 90 degrees about X, 1.5 gives 135 and -0.5 gives -45.
    const cquat b = QuatFromAngleAxis(90, cpoint3(1, 0, 0));
    ExpectQuat(Slerp(cquat(), b, 1.5f), MakeQuat(0.9238795f, 0, 0, 0.3826834f), 1e-5f);
    ExpectQuat(Slerp(cquat(), b, -0.5f), MakeQuat(-0.3826834f, 0, 0, 0.9238795f), 1e-5f);

    // Nearly equal rotations blend linearly, still normalised and extrapolating.
    const cquat near = QuatFromAngleAxis(0.01f, cpoint3(0, 1, 0));
    const cquat blended = Slerp(cquat(), near, 2.0f);
    EXPECT_NEAR(blended.Length(), 1.0f, 1e-6f);
    EXPECT_NEAR(blended.y, 2.0f * near.y, 1e-6f);
}

TEST(Quaternion, ArithmeticTreatsAFloatAsARealQuaternion) {
    const cquat q = MakeQuat(1, 2, 3, 4);
    ExpectQuat(q + 2.0f, MakeQuat(1, 2, 3, 6), 0);
    ExpectQuat(q - 1.0f, MakeQuat(1, 2, 3, 3), 0);
    ExpectQuat(q * 2.0f, MakeQuat(2, 4, 6, 8), 0);
    ExpectQuat(2.0f * q, MakeQuat(2, 4, 6, 8), 0);
    ExpectQuat(q / 2.0f, MakeQuat(0.5f, 1, 1.5f, 2), 0);
    ExpectQuat(q + MakeQuat(1, 1, 1, 1), MakeQuat(2, 3, 4, 5), 0);
    ExpectQuat(q - MakeQuat(1, 1, 1, 1), MakeQuat(0, 1, 2, 3), 0);
    ExpectQuat(-q, MakeQuat(-1, -2, -3, -4), 0);
    ExpectQuat(Conjugate(q), MakeQuat(-1, -2, -3, 4), 0);
    ExpectQuat(Inverse(q), MakeQuat(-1, -2, -3, 4) / 30.0f, 1e-7f);
    EXPECT_FLOAT_EQ(q.Length(), std::sqrt(30.0f));
    ExpectQuat(Normalize(q), q / std::sqrt(30.0f), 1e-6f);
    ExpectQuat(Normalize(MakeQuat(0, 0, 0, 0)), MakeQuat(0, 0, 0, 0), 0);

    EXPECT_FALSE(q.IsUnit());
    EXPECT_TRUE(Normalize(q).IsUnit());
    EXPECT_TRUE(MakeQuat(0, 0, 0, -1).IsIdentity());
    EXPECT_FALSE(MakeQuat(1e-5f, 0, 0, 1).IsIdentity());
    EXPECT_FALSE(MakeQuat(0, 0, 0, 0.5f).IsIdentity());
}

TEST(Quaternion, EulerConversionsUseXThenYThenZInDegrees) {
    for (oracle::Random random(26); random.Trial();) {
        const Eigen::Vector3f e(random.Uniform(-179, 179), random.Uniform(-89, 89),
                                random.Uniform(-179, 179));
        const float array[3] = {e.x(), e.y(), e.z()};
        const cquat expected = QuatActingLike(oracle::EulerActingLike(e.x(), e.y(), e.z()));
        cquat a, b;
        for (const cquat& q : {EulerToQuat(FromEigen(e)), EulerToQuat(array), cquat(FromEigen(e)),
                               cquat(e.x(), e.y(), e.z()), a.FromEuler(e.x(), e.y(), e.z()),
                               b.FromEuler(FromEigen(e))})
            ExpectSameRotation(q, expected, 1e-5f);

        float back[3];
        QuatToEuler(expected, back);
        ExpectNear(cpoint3(back[0], back[1], back[2]), e, 0.05f);
        ExpectNear(QuatToEuler(expected), e, 0.05f);
    }
}

}  // namespace
