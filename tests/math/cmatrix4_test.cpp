#include "cmatrix4.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "math/rotationoracle.h"

namespace {

using oracle::ExpectNear;
using oracle::FromEigen;
using oracle::MatrixActingLike;

// The matrix with the given sixteen elements in memory order (row by row).
cmatrix4 FromElements(std::initializer_list<float> e) {
    cmatrix4 m;
    std::copy(e.begin(), e.end(), &m.m[0][0]);
    return m;
}

const cmatrix4 kCounting = FromElements({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16});

void ExpectElements(const cmatrix4& m, std::initializer_list<float> e) {
    oracle::ExpectClose(Eigen::Map<const oracle::RowMajor4f>(m),
                        Eigen::Map<const oracle::RowMajor4f>(FromElements(e)), 1e-6f);
}

// Rotated points are checked against Eigen in cquat_test.cpp.
TEST(Matrix, ElementaryMatricesAndProductsMoveRowVectorsLeftOperandFirst) {
    for (oracle::Random random(13); random.Trial();) {
        const Eigen::Affine3f a = random.Affine(), b = random.Affine();
        const Eigen::Vector3f r = random.Vector(180.0f), offset = random.Vector(3.0f);
        const Eigen::Affine3f euler(oracle::EulerActingLike(r));
        ExpectNear(cmatrix4().FromAngles(r.x(), r.y(), r.z()), euler, 1e-5f);
        ExpectNear(MatrixFromEuler(FromEigen(r)), euler, 1e-5f);
        ExpectNear(MatrixActingLike(a) * MatrixActingLike(b), b * a, 1e-4f);
        cmatrix4 c = MatrixActingLike(a);
        c *= c;  // the operand may be the matrix itself
        ExpectNear(c, a * a, 1e-4f);
        c = MatrixActingLike(a);
        c.RotateX(r.x()).RotateY(r.y()).RotateZ(r.z()).Translate(FromEigen(offset));
        ExpectNear(c, Eigen::Translation3f(offset) * euler * a, 1e-4f);
    }
    // The four-component form is the full row-vector product; the three-component one takes
    // w = 1 and does not divide by the result's w.
    const cpoint4 q = cpoint4(1, -2, 0.5f, 3) * kCounting;
    EXPECT_EQ(Eigen::Vector4f(q.x, q.y, q.z, q.w), Eigen::Vector4f(34.5f, 37, 39.5f, 42));
    ExpectNear(cpoint3(1, -2, 0.5f) * kCounting, Eigen::Vector3f(8.5f, 9, 9.5f), 1e-6f);
    // Scale also scales the translation.
    ExpectNear(
        cpoint3(1, 1, 1) * cmatrix4().FromTranslation(cpoint3(1, 2, 3)).Scale(cpoint3(2, 3, 4)),
        Eigen::Vector3f(4, 9, 16), 1e-6f);
    // The first three columns sum over all four k. Intended: the fourth column is not
    // computed; operator* keeps the identity's and operator*= the left operand's own.
    cmatrix4 left = kCounting;
    left *= kCounting;
    ExpectElements(kCounting * kCounting,
                   {90, 100, 110, 0, 202, 228, 254, 0, 314, 356, 398, 0, 426, 484, 542, 1});
    ExpectElements(left, {90, 100, 110, 4, 202, 228, 254, 8, 314, 356, 398, 12, 426, 484, 542, 16});
}

TEST(Matrix, InverseUndoesTheAffinePartAndTransposeInvertsOnlyRigidOnes) {
    for (oracle::Random random(15); random.Trial();) {
        const Eigen::Affine3f t = random.Affine();
        ExpectNear(Inverse(MatrixActingLike(t)), t.inverse(Eigen::Affine), 2e-4f);
        // The translation becomes -(R t) in Eigen's terms: the inverse only for a symmetric R.
        const Eigen::Quaternionf r = random.Rotation();
        const Eigen::Vector3f v = random.Vector(10.0f);
        ExpectNear(Transpose(MatrixActingLike(Eigen::Translation3f(v) * r)),
                   Eigen::Translation3f(-(r * v)) * r.inverse(), 1e-4f);
    }
    // A zero leading element needs a pivot from elsewhere. The fourth column is taken as
    // (0, 0, 0, 1) and is not written back. A singular matrix returns quietly.
    cmatrix4 permuted = FromElements({0, 2, 0, 5, 0, 0, 4, 0, 8, 0, 0, 0, 1, 2, 3, 2});
    permuted.Invert();
    ExpectElements(permuted,
                   {0, 0, 0.125f, 5, 0.5f, 0, 0, 0, 0, 0.25f, 0, 0, -1, -0.75f, -0.125f, 2});
    ExpectElements(Inverse(cmatrix4().Zero()), {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    // Translation (13, 14, 15) against the old columns (1, 5, 9) ... Intended: m23 is kept.
    cmatrix4 m = kCounting;
    m.Transpose();
    ExpectElements(m, {1, 5, 9, 0, 2, 6, 10, 0, 3, 7, 11, 12, -218, -260, -302, 1});
}

TEST(Matrix, OrthonormalityTestsAndCleanup) {
    const cmatrix4 rotation = cmatrix4().FromAngles(10, 20, 30);
    cmatrix4 mirrored = rotation, off = rotation;
    mirrored.SetRow(2, -rotation.GetRow3(2));
    off.m[2][1] += 0.002f;
    EXPECT_TRUE(mirrored.IsOrthonormal() && !off.IsOrthonormal()) << "row2 = -(row0 x row1) passes";
    // Row 1 is normalised but stays where it pointed.
    cmatrix4 skewed = FromElements({2, 0, 0, 0, 1, 1, 0, 0, 0, 0, 7, 0, 1, 2, 3, 1});
    skewed.Orthonormalize();
    const float h = std::sqrt(0.5f);
    ExpectElements(skewed, {1, 0, 0, 0, h, h, 0, 0, 0, 0, h, 0, 1, 2, 3, 1});
    // Rows are normalised with their fourth component.
    ExpectElements(RemoveScaling(FromElements({3, 0, 0, 4, 0, 2, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1})),
                   {0.6f, 0, 0, 0.8f, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1});
}

TEST(Matrix, EulerAnglesComeBackFromTheMatrix) {
    // Angles from rotations are checked against Eigen through QuatToEuler. A scaled matrix is
    // orthonormalised first. Gimbal lock: z is exactly 0 and x comes from row 1.
    const cmatrix4 scaled =
        cmatrix4().FromScale(cpoint3(2, 2, 2)) * cmatrix4().FromAngles(10, 20, 30);
    ExpectNear(EulerFromMatrix(scaled), Eigen::Vector3f(10, 20, 30), 1e-3f);
    const cpoint3 locked = EulerFromMatrix(cmatrix4().FromAngles(10, 90, 30));
    ExpectNear(locked, Eigen::Vector3f(-40, 90, 0), 1e-3f);
    EXPECT_EQ(locked.z, 0.0f);
}

TEST(Matrix, SetAndLookAtBuildTheRows) {
    // Row 0 is not normalised: parallel dir and up give zeros. Cameras and lights check the
    // general case.
    cmatrix4 m = kCounting;
    MatrixLookAt(m, cpoint3(0, 1, 0), cpoint3(0, 4, 0));
    ExpectElements(m, {0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1});
    // Rows taken from the matrix itself are swapped, not copied over one another.
    m = kCounting;
    m.Set(m[1], m[0], m[3], m[2]);
    ExpectElements(m, {5, 6, 7, 8, 1, 2, 3, 4, 13, 14, 15, 16, 9, 10, 11, 12});
}

}  // namespace
