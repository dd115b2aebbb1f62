#include "cquat.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "math/rotationoracle.h"

namespace {

using oracle::ActingLike;
using oracle::EulerActingLike;
using oracle::ExpectNear;
using oracle::ExpectQuat;
using oracle::ExpectSameRotation;
using oracle::MatrixActingLike;
using oracle::QuatActingLike;
using oracle::RotationActingLike;

constexpr int kTrials = 500;

cquat Ours(const Eigen::Quaternionf& e) {
    return MakeQuat(e.x(), e.y(), e.z(), e.w());
}

cmatrix4 MatrixOf(const cquat& q) {
    cmatrix4 m;
    MatrixFromQuat(q, m);
    return m;
}

Eigen::Affine3f RotationAffine(const Eigen::Quaternionf& e) {
    Eigen::Affine3f t = Eigen::Affine3f::Identity();
    t.linear() = e.toRotationMatrix();
    return t;
}

TEST(Quaternion, StoresXyzwAndBuildsFromAngleAndAxis) {
    ExpectQuat(cquat(), 0, 0, 0, 1, 0);
    ExpectQuat(MakeQuat(1, 2, 3, 4), 1, 2, 3, 4, 0);
    const float h = std::sqrt(0.5f);
    ExpectQuat(QuatFromAngleAxis(90, cpoint3(0, 0, 1)), 0, 0, h, h, 1e-6f);
    ExpectQuat(cquat(cpoint3(1, 0, 0), 180), 1, 0, 0, 0, 1e-6f);

    oracle::Random random(21);
    for (int trial = 0; trial < kTrials; ++trial) {
        const float angle = random.Uniform(-720, 720);
        const Eigen::Vector3f axis = random.Vector(1.0f).normalized();
        const cpoint3 a(axis.x(), axis.y(), axis.z());
        const Eigen::Quaternionf expected(RotationActingLike(angle, axis));
        ExpectSameRotation(QuatFromAngleAxis(angle, a), QuatActingLike(expected), 1e-5f);
        ExpectSameRotation(cquat(a, angle), QuatActingLike(expected), 1e-5f);
    }
}

TEST(Quaternion, ProductIsHamiltonsAndMatchesTheMatrixProduct) {
    oracle::Random random(22);
    for (int trial = 0; trial < kTrials; ++trial) {
        const Eigen::Quaternionf ea = random.Rotation(), eb = random.Rotation();
        const cquat a = Ours(ea), b = Ours(eb);
        ExpectQuat(a * b, (ea * eb).x(), (ea * eb).y(), (ea * eb).z(), (ea * eb).w(), 1e-6f);
        cquat c = a;
        c *= b;
        ExpectQuat(c, (ea * eb).x(), (ea * eb).y(), (ea * eb).z(), (ea * eb).w(), 1e-6f);

        // Rotate by a, then by b.
        ExpectNear(ActingLike(MatrixOf(a * b)), ActingLike(MatrixOf(a) * MatrixOf(b)), 1e-5f);
        ExpectNear(ActingLike(MatrixOf(a * b)), RotationAffine(ActingLike(b) * ActingLike(a)),
                   1e-5f);

        const Eigen::Quaternionf quotient = ea * eb.inverse();
        ExpectQuat(a / b, quotient.x(), quotient.y(), quotient.z(), quotient.w(), 1e-5f);
    }
}

TEST(Quaternion, RotatesPointsAsItsMatrixDoes) {
    oracle::Random random(23);
    for (int trial = 0; trial < kTrials; ++trial) {
        const Eigen::Quaternionf e = random.Rotation();
        const cquat q = QuatActingLike(e);
        const cpoint3 p = random.Point(10.0f);
        const Eigen::Vector3f expected = e * oracle::ToEigen(p);
        oracle::ExpectNear(q.PointRotate(p), expected, 1e-4f);
        oracle::ExpectNear(p * q, expected, 1e-4f);
        oracle::ExpectNear(q * p, expected, 1e-4f);
        oracle::ExpectNear(p * MatrixOf(q), expected, 1e-4f);
        // A scaled quaternion is the same rotation, for the point and the matrix.
        oracle::ExpectNear((q * 3.0f).PointRotate(p), expected, 1e-4f);
        oracle::ExpectNear(p * MatrixOf(q * 3.0f), expected, 1e-4f);
    }

    // The elementary matrices are the quaternion matrices of the same angle and axis.
    for (float angle : {-170.0f, -30.0f, 45.0f, 90.0f, 200.0f}) {
        ExpectNear(ActingLike(MatrixOf(QuatFromAngleAxis(angle, cpoint3(1, 0, 0)))),
                   ActingLike(cmatrix4().FromAngleX(angle)), 1e-6f);
        ExpectNear(ActingLike(MatrixOf(QuatFromAngleAxis(angle, cpoint3(0, 1, 0)))),
                   ActingLike(cmatrix4().FromAngleY(angle)), 1e-6f);
        ExpectNear(ActingLike(MatrixOf(QuatFromAngleAxis(angle, cpoint3(0, 0, 1)))),
                   ActingLike(cmatrix4().FromAngleZ(angle)), 1e-6f);
    }

    // MatrixFromQuat replaces the translation and fourth column.
    cmatrix4 m = cmatrix4().FromTranslation(cpoint3(1, 2, 3));
    m.m[0][3] = 7.0f;
    MatrixFromQuat(cquat(), m);
    EXPECT_TRUE(m.IsIdentity());
}

TEST(Quaternion, FromMatrixInvertsMatrixFromQuatOnEveryBranch) {
    oracle::Random random(24);
    for (int trial = 0; trial < kTrials; ++trial) {
        const Eigen::Quaternionf e = random.Rotation();
        const cmatrix4 m = MatrixActingLike(RotationAffine(e));
        const cquat expected = QuatActingLike(Eigen::Quaternionf(e.toRotationMatrix()));
        ExpectSameRotation(QuatFromMatrix(m), expected, 1e-5f);
        ExpectSameRotation(cquat(m), expected, 1e-5f);
        // Scale and translation do not change the rotation.
        cmatrix4 scaled = cmatrix4().FromScale(cpoint3(3, 3, 3)) * m;
        scaled.SetTrans(random.Point(10.0f));
        ExpectSameRotation(QuatFromMatrix(scaled), expected, 1e-5f);
    }

    // Negative trace: half turns pick the largest diagonal element.
    const float h = std::sqrt(0.5f);
    ExpectSameRotation(QuatFromMatrix(cmatrix4().FromAngleX(180)), MakeQuat(1, 0, 0, 0), 1e-6f);
    ExpectSameRotation(QuatFromMatrix(cmatrix4().FromAngleY(180)), MakeQuat(0, 1, 0, 0), 1e-6f);
    ExpectSameRotation(QuatFromMatrix(cmatrix4().FromAngleZ(180)), MakeQuat(0, 0, 1, 0), 1e-6f);
    ExpectSameRotation(QuatFromMatrix(MatrixOf(MakeQuat(h, h, 0, 0))), MakeQuat(h, h, 0, 0), 1e-6f);
    ExpectSameRotation(QuatFromMatrix(MatrixOf(MakeQuat(0, 0.6f, 0.8f, 0))),
                       MakeQuat(0, 0.6f, 0.8f, 0), 1e-6f);

    // Only a matrix holding NaN leaves every axis unusable: the result is the identity.
    cmatrix4 broken;
    broken.m[1][1] = std::numeric_limits<float>::quiet_NaN();
    ExpectQuat(QuatFromMatrix(broken), 0, 0, 0, 1, 0);
}

TEST(Quaternion, SlerpFollowsTheShorterArcAndExtrapolates) {
    oracle::Random random(25);
    for (int trial = 0; trial < kTrials; ++trial) {
        const Eigen::Quaternionf ea = random.Rotation(), eb = random.Rotation();
        const float t = random.Uniform(0, 1);
        const cquat expected = Ours(ea.slerp(t, eb));
        ExpectSameRotation(Slerp(Ours(ea), Ours(eb), t), expected, 2e-4f);
        ExpectSameRotation(Slerp(Ours(ea), -Ours(eb), t), expected, 2e-4f);
    }

    const cquat a;
    const cquat b = QuatFromAngleAxis(90, cpoint3(1, 0, 0));
    const float c = std::cos(67.5f * oracle::kPi / 180), s = std::sin(67.5f * oracle::kPi / 180);
    ExpectQuat(Slerp(a, b, 1.5f), s, 0, 0, c, 1e-5f);
    ExpectQuat(Slerp(a, b, -0.5f), -std::sin(oracle::kPi / 8), 0, 0, std::cos(oracle::kPi / 8),
               1e-5f);
    ExpectQuat(Slerp(a, b, 0.0f), 0, 0, 0, 1, 1e-6f);
    ExpectQuat(Slerp(a, b, 1.0f), b.x, b.y, b.z, b.w, 1e-6f);

    // Nearly equal rotations blend linearly, still normalised and extrapolating.
    const cquat near = QuatFromAngleAxis(0.01f, cpoint3(0, 1, 0));
    const cquat blended = Slerp(a, near, 2.0f);
    EXPECT_NEAR(blended.Length(), 1.0f, 1e-6f);
    EXPECT_NEAR(blended.y, 2.0f * near.y, 1e-6f);
}

TEST(Quaternion, ArithmeticTreatsAFloatAsARealQuaternion) {
    const cquat q = MakeQuat(1, 2, 3, 4);
    ExpectQuat(q + 2.0f, 1, 2, 3, 6, 0);
    ExpectQuat(q - 1.0f, 1, 2, 3, 3, 0);
    ExpectQuat(q * 2.0f, 2, 4, 6, 8, 0);
    ExpectQuat(2.0f * q, 2, 4, 6, 8, 0);
    ExpectQuat(q / 2.0f, 0.5f, 1, 1.5f, 2, 0);
    ExpectQuat(q + MakeQuat(1, 1, 1, 1), 2, 3, 4, 5, 0);
    ExpectQuat(q - MakeQuat(1, 1, 1, 1), 0, 1, 2, 3, 0);
    ExpectQuat(-q, -1, -2, -3, -4, 0);
    cquat r = q;
    r += 1.0f;
    r -= MakeQuat(1, 2, 3, 0);
    r *= 0.5f;
    r /= 0.5f;
    ExpectQuat(r, 0, 0, 0, 5, 1e-6f);

    ExpectQuat(Conjugate(q), -1, -2, -3, 4, 0);
    ExpectQuat(Inverse(q), -1 / 30.0f, -2 / 30.0f, -3 / 30.0f, 4 / 30.0f, 1e-7f);
    ExpectQuat(q * Inverse(q), 0, 0, 0, 1, 1e-6f);
    EXPECT_FLOAT_EQ(q.Length(), std::sqrt(30.0f));
    ExpectQuat(Normalize(q), 1 / std::sqrt(30.0f), 2 / std::sqrt(30.0f), 3 / std::sqrt(30.0f),
               4 / std::sqrt(30.0f), 1e-6f);
    ExpectQuat(Normalize(MakeQuat(0, 0, 0, 0)), 0, 0, 0, 0, 0);
    cquat inPlace = q;
    inPlace.Conjugate().Invert();
    ExpectQuat(inPlace, 1 / 30.0f, 2 / 30.0f, 3 / 30.0f, 4 / 30.0f, 1e-7f);

    EXPECT_FALSE(q.IsUnit());
    EXPECT_TRUE(Normalize(q).IsUnit());
    EXPECT_TRUE(cquat().IsIdentity());
    EXPECT_TRUE(MakeQuat(0, 0, 0, -1).IsIdentity());
    EXPECT_FALSE(MakeQuat(1e-5f, 0, 0, 1).IsIdentity());
    EXPECT_FALSE(MakeQuat(0, 0, 0, 0.5f).IsIdentity());
}

TEST(Quaternion, EulerConversionsUseXThenYThenZInDegrees) {
    ExpectQuat(EulerToQuat(cpoint3(0, 0, 0)), 0, 0, 0, 1, 0);
    const cquat yOnly = EulerToQuat(cpoint3(0, 60, 0));
    ExpectQuat(yOnly, 0, 0.5f, 0, std::sqrt(0.75f), 1e-6f);

    oracle::Random random(26);
    for (int trial = 0; trial < kTrials; ++trial) {
        const float x = random.Uniform(-179, 179), y = random.Uniform(-89, 89),
                    z = random.Uniform(-179, 179);
        const cquat expected = QuatActingLike(Eigen::Quaternionf(EulerActingLike(x, y, z)));
        const float angles[3] = {x, y, z};
        ExpectSameRotation(EulerToQuat(cpoint3(x, y, z)), expected, 1e-5f);
        ExpectSameRotation(EulerToQuat(angles), expected, 1e-5f);
        ExpectSameRotation(cquat(x, y, z), expected, 1e-5f);
        ExpectSameRotation(cquat(cpoint3(x, y, z)), expected, 1e-5f);
        cquat q;
        ExpectSameRotation(q.FromEuler(x, y, z), expected, 1e-5f);
        ExpectSameRotation(q.FromEuler(cpoint3(x, y, z)), expected, 1e-5f);

        const cpoint3 back = QuatToEuler(expected);
        EXPECT_NEAR(back.x, x, 0.05f);
        EXPECT_NEAR(back.y, y, 0.05f);
        EXPECT_NEAR(back.z, z, 0.05f);
        float filled[3];
        QuatToEuler(expected, filled);
        EXPECT_NEAR(filled[1], y, 0.05f);
    }
}

TEST(Quaternion, TransformsComposeMatrixThenQuaternion) {
    oracle::Random random(27);
    for (int trial = 0; trial < 200; ++trial) {
        const Eigen::Affine3f t = random.Affine();
        const Eigen::Quaternionf e = random.Rotation();
        const cmatrix4 m = MatrixActingLike(t);
        const cquat q = QuatActingLike(e);
        // m moves first, then q rotates: translation included.
        ExpectNear(ActingLike(TransformMatrix(m, q)), RotationAffine(e) * t, 1e-4f);

        const Eigen::Quaternionf r = random.Rotation();
        const cmatrix4 rotation = MatrixActingLike(RotationAffine(r));
        // q rotates first, then the matrix's rotation.
        ExpectSameRotation(TransformQuat(rotation, q), QuatActingLike(r * e), 1e-5f);
    }
}

}  // namespace
