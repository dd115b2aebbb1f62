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
#include <random>

#include "cmatrix4.h"
#include "cpoint.h"
#include "cquat.h"

namespace oracle {

using RowMajor4f = Eigen::Matrix<float, 4, 4, Eigen::RowMajor>;

inline Eigen::Vector3f ToEigen(const cpoint3& p) {
    return Eigen::Vector3f(p.x, p.y, p.z);
}
inline cpoint3 FromEigen(const Eigen::Vector3f& v) {
    return cpoint3(v.x(), v.y(), v.z());
}

// The Eigen transform that moves points as our matrix m does (its fourth column is ignored).
inline Eigen::Affine3f ActingLike(const cmatrix4& m) {
    Eigen::Affine3f t;
    t.matrix() = Eigen::Map<const RowMajor4f>(m).transpose();
    t.makeAffine();
    return t;
}

// Our affine matrix that moves points as the Eigen transform t does.
inline cmatrix4 MatrixActingLike(const Eigen::Affine3f& t) {
    cmatrix4 m;
    Eigen::Map<RowMajor4f>(&m.m[0][0]) = t.matrix().transpose();
    return m;
}

// The Eigen quaternion that moves points as our q does, and back.
inline Eigen::Quaternionf ActingLike(const cquat& q) {
    return Eigen::Quaternionf(q.w, q.x, q.y, q.z).conjugate();
}
inline cquat QuatActingLike(const Eigen::Quaternionf& e) {
    return MakeQuat(-e.x(), -e.y(), -e.z(), e.w());
}

// The Eigen rotation that moves points as our rotation by `degrees` about `axis`.
inline Eigen::AngleAxisf RotationActingLike(float degrees, const Eigen::Vector3f& axis) {
    return Eigen::AngleAxisf(-degrees * static_cast<float>(EIGEN_PI) / 180.0f, axis.normalized());
}

// The Eigen rotation that moves points as our Euler angles (degrees, X then Y then Z).
inline Eigen::Quaternionf EulerActingLike(const Eigen::Vector3f& e) {
    return RotationActingLike(e.z(), Eigen::Vector3f::UnitZ()) *
           RotationActingLike(e.y(), Eigen::Vector3f::UnitY()) *
           RotationActingLike(e.x(), Eigen::Vector3f::UnitX());
}

// Fixed-seed random inputs over a number of trials: for (Random r(seed); r.Trial();) ...
struct Random {
    explicit Random(unsigned seed, int trials = 500) : rng(seed), left(trials) {}
    bool Trial() { return left-- > 0; }
    float Uniform(float lo, float hi) { return std::uniform_real_distribution<float>(lo, hi)(rng); }
    Eigen::Vector3f Vector(float r) {
        return Eigen::Vector3f(Uniform(-r, r), Uniform(-r, r), Uniform(-r, r));
    }
    // Euler angles away from gimbal lock: x and z within +-179, y within +-89 degrees.
    Eigen::Vector3f Angles() {
        return Eigen::Vector3f(Uniform(-179, 179), Uniform(-89, 89), Uniform(-179, 179));
    }
    Eigen::Quaternionf Rotation() {
        std::normal_distribution<float> gauss;
        return Eigen::Quaternionf(gauss(rng), gauss(rng), gauss(rng), gauss(rng)).normalized();
    }
    // A translation within +-10, a rotation and a positive scale of 0.5 to 2 per axis.
    Eigen::Affine3f Affine() {
        const Eigen::Vector3f scale = Vector(0.75f).array() + 1.25f;
        return Eigen::Translation3f(Vector(10.0f)) * Rotation() * Eigen::Scaling(scale);
    }
    std::mt19937 rng;
    int left;
};

// Every coefficient of `ours` within tolerance of the expected one.
template <class A, class B>
void ExpectClose(const A& ours, const B& expected, float tolerance) {
    EXPECT_LE((ours - expected).cwiseAbs().maxCoeff(), tolerance) << "ours\n"
                                                                  << ours << "\nexpected\n"
                                                                  << expected;
}

// The matrix moves points as the Eigen transform does.
inline void ExpectNear(const cmatrix4& ours, const Eigen::Affine3f& expected, float tolerance) {
    ExpectClose(ActingLike(ours).matrix(), expected.matrix(), tolerance);
}
inline void ExpectNear(const cpoint3& ours, const Eigen::Vector3f& expected, float tolerance) {
    ExpectClose(ToEigen(ours), expected, tolerance);
}
inline void ExpectNear(const cquat& ours, const cquat& e, float tolerance) {
    ExpectClose(Eigen::Vector4f(ours.x, ours.y, ours.z, ours.w),
                Eigen::Vector4f(e.x, e.y, e.z, e.w), tolerance);
}

// The same rotation: equal components up to the sign of the whole quaternion.
inline void ExpectSameRotation(const cquat& ours, const cquat& e, float tolerance) {
    ExpectNear(ours, DotProd(ours, e) < 0.0f ? -e : e, tolerance);
}

}  // namespace oracle

#endif
