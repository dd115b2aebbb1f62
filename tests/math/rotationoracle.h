// Eigen as the oracle for the matrix and rotation tests, with the conventions mapped.
//
// - Our points are row vectors, p' = p M; Eigen's are column vectors, p' = R p + t. The Eigen
//   transform that moves points as our M does has the transpose of M's upper 3 x 3 as its
//   linear part and M's fourth row as its translation.
// - Our product A * B applies A first; the Eigen equivalent is B * A.
// - Our quaternion stores x, y, z, w and rotates p as Inverse(q) (p, 0) q; Eigen's
//   constructor takes (w, x, y, z) and rotates as q (p, 0) q^-1. The Eigen quaternion that
//   moves points as our q does is therefore the conjugate of the one with the same storage.
// - Our angles are degrees. With the rotations above, our rotation by a degrees about an
//   axis moves points as Eigen's AngleAxis of -a radians about that axis.
// - Euler angles (x, y, z) apply X, then Y, then Z.
#ifndef ORVANE_TESTS_MATH_ROTATIONORACLE_H
#define ORVANE_TESTS_MATH_ROTATIONORACLE_H

#include <gtest/gtest.h>

#include <Eigen/Geometry>
#include <cmath>
#include <random>

#include "cmatrix4.h"
#include "cpoint.h"
#include "cquat.h"

namespace oracle {

constexpr float kPi = 3.14159265358979f;

inline Eigen::Vector3f ToEigen(const cpoint3& p) {
    return Eigen::Vector3f(p.x, p.y, p.z);
}

// The Eigen transform that moves points as our matrix m does.
inline Eigen::Affine3f ActingLike(const cmatrix4& m) {
    Eigen::Affine3f t = Eigen::Affine3f::Identity();
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c) t.linear()(r, c) = m.m[c][r];
    t.translation() = Eigen::Vector3f(m.m[3][0], m.m[3][1], m.m[3][2]);
    return t;
}

// Our affine matrix that moves points as the Eigen transform t does.
inline cmatrix4 MatrixActingLike(const Eigen::Affine3f& t) {
    cmatrix4 m;
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c) m.m[c][r] = t.linear()(r, c);
    for (int c = 0; c < 3; ++c) m.m[3][c] = t.translation()(c);
    return m;
}

// The Eigen quaternion that moves points as our q does.
inline Eigen::Quaternionf ActingLike(const cquat& q) {
    return Eigen::Quaternionf(q.w, q.x, q.y, q.z).conjugate();
}

// Our quaternion that moves points as the Eigen quaternion e does.
inline cquat QuatActingLike(const Eigen::Quaternionf& e) {
    return MakeQuat(-e.x(), -e.y(), -e.z(), e.w());
}

// The Eigen rotation that moves points as our rotation by `degrees` about `axis`.
inline Eigen::AngleAxisf RotationActingLike(float degrees, const Eigen::Vector3f& axis) {
    return Eigen::AngleAxisf(-degrees * kPi / 180.0f, axis.normalized());
}

// The Eigen rotation that moves points as our Euler angles (degrees, X then Y then Z).
inline Eigen::Matrix3f EulerActingLike(float x, float y, float z) {
    return (RotationActingLike(z, Eigen::Vector3f::UnitZ()) *
            RotationActingLike(y, Eigen::Vector3f::UnitY()) *
            RotationActingLike(x, Eigen::Vector3f::UnitX()))
        .toRotationMatrix();
}

// Fixed-seed random inputs.
class Random {
public:
    explicit Random(unsigned seed) : rng_(seed) {}
    float Uniform(float lo, float hi) {
        return std::uniform_real_distribution<float>(lo, hi)(rng_);
    }
    Eigen::Vector3f Vector(float range) {
        return Eigen::Vector3f(Uniform(-range, range), Uniform(-range, range),
                               Uniform(-range, range));
    }
    cpoint3 Point(float range) {
        const Eigen::Vector3f v = Vector(range);
        return cpoint3(v.x(), v.y(), v.z());
    }
    Eigen::Quaternionf Rotation() {
        std::normal_distribution<float> gauss;
        return Eigen::Quaternionf(gauss(rng_), gauss(rng_), gauss(rng_), gauss(rng_)).normalized();
    }
    // A rotation, a positive scale of 0.5 to 2 per axis and a translation within +-10.
    Eigen::Affine3f Affine() {
        Eigen::Affine3f t = Eigen::Affine3f::Identity();
        t.translate(Vector(10.0f));
        t.rotate(Rotation());
        t.scale(Eigen::Vector3f(Uniform(0.5f, 2.0f), Uniform(0.5f, 2.0f), Uniform(0.5f, 2.0f)));
        return t;
    }

private:
    std::mt19937 rng_;
};

inline void ExpectNear(const cpoint3& ours, const Eigen::Vector3f& expected, float tolerance) {
    EXPECT_NEAR(ours.x, expected.x(), tolerance);
    EXPECT_NEAR(ours.y, expected.y(), tolerance);
    EXPECT_NEAR(ours.z, expected.z(), tolerance);
}

// Both transforms move points the same way: every element within tolerance.
inline void ExpectNear(const Eigen::Affine3f& ours, const Eigen::Affine3f& expected,
                       float tolerance) {
    EXPECT_LE((ours.matrix() - expected.matrix()).cwiseAbs().maxCoeff(), tolerance)
        << "ours\n"
        << ours.matrix() << "\nexpected\n"
        << expected.matrix();
}

// The same rotation: equal components up to the sign of the whole quaternion.
inline void ExpectSameRotation(const cquat& ours, const cquat& expected, float tolerance) {
    const float sign = DotProd(ours, expected) < 0.0f ? -1.0f : 1.0f;
    EXPECT_NEAR(ours.x, sign * expected.x, tolerance);
    EXPECT_NEAR(ours.y, sign * expected.y, tolerance);
    EXPECT_NEAR(ours.z, sign * expected.z, tolerance);
    EXPECT_NEAR(ours.w, sign * expected.w, tolerance);
}

inline void ExpectQuat(const cquat& q, float x, float y, float z, float w, float tolerance) {
    EXPECT_NEAR(q.x, x, tolerance);
    EXPECT_NEAR(q.y, y, tolerance);
    EXPECT_NEAR(q.z, z, tolerance);
    EXPECT_NEAR(q.w, w, tolerance);
}

}  // namespace oracle

#endif
