#include "cmatrix4.h"

#include <gtest/gtest.h>

#include <cmath>

#include "math/rotationoracle.h"
#include "support/testsupport.h"

namespace {

using oracle::ActingLike;
using oracle::ExpectNear;
using oracle::MatrixActingLike;
using oracle::RotationActingLike;

// The sixteen elements, m(r, c) = m[r][c].
Eigen::Matrix4f Elements(const cmatrix4& m) {
    return Eigen::Map<const Eigen::Matrix<float, 4, 4, Eigen::RowMajor>>(m);
}

// A matrix whose sixteen elements are 1, 2, ..., 16 in memory order.
cmatrix4 Counting() {
    float a[4][4];
    for (int i = 0; i < 16; ++i) a[i / 4][i % 4] = static_cast<float>(i + 1);
    return cmatrix4(a);
}

void ExpectRow(const cmatrix4& m, int row, float x, float y, float z, float w) {
    const float expected[4] = {x, y, z, w};
    for (int c = 0; c < 4; ++c) EXPECT_FLOAT_EQ(m.m[row][c], expected[c]) << "m" << row << c;
}

void ExpectPoint(const cpoint3& p, float x, float y, float z, float tolerance = 1e-5f) {
    ExpectNear(p, Eigen::Vector3f(x, y, z), tolerance);
}

TEST(Matrix, StoresRowsWithTheTranslationInTheFourthRow) {
    cmatrix4 m = Counting();
    const float* flat = m;
    for (int i = 0; i < 16; ++i) EXPECT_EQ(flat[i], i + 1.0f) << "element 4*row+col " << i;
    m.SetRow(0, cpoint3(-1, -2, -3));
    ExpectRow(m, 0, -1, -2, -3, 4);
    m.Set(cpoint3(1, 2, 3), cpoint3(4, 5, 6), cpoint3(7, 8, 9), cpoint3(10, 11, 12));
    ExpectRow(m, 1, 4, 5, 6, 0);
    ExpectRow(m, 3, 10, 11, 12, 1);
}

TEST(Matrix, TransformsRowVectorPointsLikeEigen) {
    for (oracle::Random random(11); random.Trial();) {
        const Eigen::Affine3f t = random.Affine();
        const Eigen::Vector3f p = random.Vector(5.0f);
        ExpectNear(oracle::FromEigen(p) * MatrixActingLike(t), t * p, 1e-4f);
    }

    // The four-component form is the full row-vector product; the three-component one takes
    // w = 1 and does not divide by the result's w.
    const cmatrix4 projective = Counting();
    const Eigen::RowVector4f full = Eigen::RowVector4f(1, -2, 0.5f, 3) * Elements(projective);
    const cpoint4 q = cpoint4(1, -2, 0.5f, 3) * projective;
    for (int i = 0; i < 4; ++i) EXPECT_FLOAT_EQ(q[i], full(i));
    ExpectPoint(cpoint3(1, -2, 0.5f) * projective, 1 - 10 + 4.5f + 13, 2 - 12 + 5 + 14,
                3 - 14 + 5.5f + 15);
}

TEST(Matrix, ElementaryRotationsTurnAsEigenWithTheAngleInDegrees) {
    // By hand: a quarter turn about Z takes X to -Y; m02 = sin for Y, exactly 1 at 90.
    ExpectPoint(cpoint3(1, 0, 0) * cmatrix4().FromAngleZ(90), 0, -1, 0);
    EXPECT_EQ(cmatrix4().FromAngleY(90).m[0][2], 1.0f);

    cmatrix4& (cmatrix4::*const from[3])(float) = {&cmatrix4::FromAngleX, &cmatrix4::FromAngleY,
                                                   &cmatrix4::FromAngleZ};
    for (oracle::Random random(12); random.Trial();) {
        const Eigen::Vector3f a = random.Vector(360.0f);
        for (int axis = 0; axis < 3; ++axis)
            ExpectNear(ActingLike((cmatrix4().*from[axis])(a[axis])),
                       Eigen::Affine3f(RotationActingLike(a[axis], Eigen::Vector3f::Unit(axis))),
                       1e-5f);
        const Eigen::Affine3f expected(oracle::EulerActingLike(a.x(), a.y(), a.z()));
        const float angles[3] = {a.x(), a.y(), a.z()};
        for (const cmatrix4& m : {cmatrix4().FromAngles(a.x(), a.y(), a.z()),
                                  MatrixFromEuler(oracle::FromEigen(a)), MatrixFromEuler(angles)})
            ExpectNear(ActingLike(m), expected, 1e-5f);
    }
}

TEST(Matrix, ProductAppliesTheLeftOperandFirstAndComputesThreeColumns) {
    for (oracle::Random random(13); random.Trial();) {
        const Eigen::Affine3f a = random.Affine(), b = random.Affine();
        ExpectNear(ActingLike(MatrixActingLike(a) * MatrixActingLike(b)), b * a, 1e-4f);
        cmatrix4 c = MatrixActingLike(a);
        c *= c;  // the operand may be the matrix itself
        ExpectNear(ActingLike(c), a * a, 1e-4f);
    }

    // The first three columns sum over all four k; the fourth column is never computed.
    const cmatrix4 a = Counting();
    const Eigen::Matrix4f full = Elements(a) * Elements(a);
    cmatrix4 left = a;
    left *= a;
    for (const Eigen::Matrix4f& ours : {Elements(a * a), Elements(left)})
        EXPECT_EQ(ours.leftCols(3), full.leftCols(3));
    EXPECT_EQ(Elements(a * a).col(3), Eigen::Vector4f(0, 0, 0, 1))
        << "operator* keeps the identity's";
    EXPECT_EQ(Elements(left).col(3), Elements(a).col(3))
        << "operator*= keeps the left operand's own";
}

TEST(Matrix, ComposingMembersMultiplyOnTheRight) {
    cmatrix4& (cmatrix4::*const rotate[3])(float) = {&cmatrix4::RotateX, &cmatrix4::RotateY,
                                                     &cmatrix4::RotateZ};
    for (oracle::Random random(14, 100); random.Trial();) {
        const Eigen::Affine3f t = random.Affine();
        const float angle = random.Uniform(-180, 180);
        for (int axis = 0; axis < 3; ++axis) {
            cmatrix4 m = MatrixActingLike(t);
            ExpectNear(ActingLike((m.*rotate[axis])(angle)),
                       RotationActingLike(angle, Eigen::Vector3f::Unit(axis)) * t, 1e-4f);
        }
        const Eigen::Vector3f offset = random.Vector(3.0f);
        ExpectNear(ActingLike(MatrixActingLike(t).Translate(oracle::FromEigen(offset))),
                   Eigen::Translation3f(offset) * t, 1e-4f);
    }

    // Scale also scales the translation unless told to keep it.
    const cmatrix4 moved = cmatrix4().FromTranslation(cpoint3(1, 2, 3));
    ExpectPoint(cpoint3(1, 1, 1) * cmatrix4(moved).Scale(cpoint3(2, 3, 4)), 4, 9, 16);
    ExpectPoint(cpoint3(1, 1, 1) * cmatrix4(moved).Scale(cpoint3(2, 3, 4), 0), 3, 5, 7);
}

TEST(Matrix, ScaleAndShearMoveCoordinatesAsDocumented) {
    ExpectPoint(cpoint3(1, 1, 4) * cmatrix4().FromScale(cpoint3(2, -3, 0.5f)), 2, -3, 2);
    ExpectPoint(cpoint3(1, 1, 1) * cmatrix4().FromShear(0, 2, 3), 6, 1, 1);
    ExpectPoint(cpoint3(4, 2, 1) * cmatrix4().FromShear(1, 0.5f, -1), 4, 3, 1);
    ExpectPoint(cpoint3(4, 2, 1) * cmatrix4().FromShear(2, 0, 1), 4, 2, 3);

    AssertRecorder recorder;
    EXPECT_TRUE(Counting().FromShear(3, 1, 1).IsIdentity());
    ASSERT_EQ(recorder.Count(), 1);
    EXPECT_NE(recorder.Texts()[0].find("axis>=0 && axis<3"), std::string::npos);
}

TEST(Matrix, InverseUndoesTheAffinePartWithFullPivoting) {
    for (oracle::Random random(15); random.Trial();) {
        const Eigen::Affine3f t = random.Affine();
        ExpectNear(ActingLike(Inverse(MatrixActingLike(t))), t.inverse(Eigen::Affine), 2e-4f);
    }

    // A zero leading element needs a pivot from elsewhere. The fourth column is taken as
    // (0, 0, 0, 1) and is not written back.
    cmatrix4 permuted;
    permuted.Set(cpoint4(0, 2, 0, 5), cpoint4(0, 0, 4, 0), cpoint4(8, 0, 0, 0),
                 cpoint4(1, 2, 3, 2));
    permuted.Invert();
    ExpectRow(permuted, 0, 0, 0, 0.125f, 5);
    ExpectRow(permuted, 1, 0.5f, 0, 0, 0);
    ExpectRow(permuted, 2, 0, 0.25f, 0, 0);
    ExpectRow(permuted, 3, -1, -0.75f, -0.125f, 2);

    // Singular matrices return quietly with whatever the elimination reached.
    AssertRecorder recorder;
    EXPECT_TRUE(Elements(Inverse(cmatrix4().Zero())).isZero(0.0f));
    cmatrix4 flat;
    flat.Set(cpoint3(1, 2, 3), cpoint3(2, 4, 6), cpoint3(0, 1, 1), cpoint3(4, 5, 6));
    EXPECT_TRUE(Elements(Inverse(flat)).allFinite());
    EXPECT_EQ(recorder.Count(), 0);
}

TEST(Matrix, TransposeTransposesTheRotationAndMovesTheTranslationByTheOldColumns) {
    for (oracle::Random random(16); random.Trial();) {
        const Eigen::Quaternionf r = random.Rotation();
        const Eigen::Vector3f t = random.Vector(10.0f);
        // The translation becomes -(R t) in Eigen's terms: the inverse only for a symmetric R.
        ExpectNear(ActingLike(Transpose(MatrixActingLike(Eigen::Translation3f(t) * r))),
                   Eigen::Translation3f(-(r * t)) * r.inverse(), 1e-4f);
    }

    cmatrix4 m = Counting();
    m.Transpose();
    ExpectRow(m, 0, 1, 5, 9, 0);
    ExpectRow(m, 1, 2, 6, 10, 0);
    ExpectRow(m, 2, 3, 7, 11, 12);  // Intended: m23 is left as it was.
    // Translation (13, 14, 15) against the old rotation part's columns (1, 5, 9) ...
    ExpectRow(m, 3, -(13 * 1 + 14 * 5 + 15 * 9), -(13 * 2 + 14 * 6 + 15 * 10),
              -(13 * 3 + 14 * 7 + 15 * 11), 1);
}

TEST(Matrix, OrthonormalityTestsAndCleanup) {
    const cmatrix4 rotation = cmatrix4().FromAngles(10, 20, 30);
    cmatrix4 mirrored = rotation, within = rotation, off = rotation;
    mirrored.SetRow(2, -rotation.GetRow3(2));
    within.m[2][1] += 0.0005f;
    off.m[2][1] += 0.002f;
    const cmatrix4 scaled = cmatrix4().FromScale(cpoint3(2, 3, 4)) * rotation;
    EXPECT_TRUE(mirrored.IsOrthonormal()) << "row2 = -(row0 x row1) passes";
    EXPECT_TRUE(within.IsOrthonormal());
    EXPECT_FALSE(off.IsOrthonormal());
    EXPECT_FALSE(scaled.IsOrthonormal());
    EXPECT_TRUE(scaled.IsOrthogonal());
    EXPECT_FALSE(cmatrix4().FromShear(0, 0.1f, 0).IsOrthogonal());

    cmatrix4 nearIdentity;
    nearIdentity.m[3][1] = 1e-7f;
    EXPECT_TRUE(nearIdentity.IsIdentity());
    nearIdentity.m[0][3] = 1e-5f;
    EXPECT_FALSE(nearIdentity.IsIdentity());

    // Row 1 is normalised but stays where it pointed.
    cmatrix4 skewed;
    skewed.Set(cpoint3(2, 0, 0), cpoint3(1, 1, 0), cpoint3(0, 0, 7), cpoint3(1, 2, 3));
    skewed.Orthonormalize();
    const float h = std::sqrt(0.5f);
    ExpectRow(skewed, 1, h, h, 0, 0);
    ExpectRow(skewed, 2, 0, 0, h, 0);

    ExpectPoint(scaled.GetScale(), 2, 3, 4);
    ExpectPoint(RemoveScaling(scaled).GetScale(), 1, 1, 1);
    cmatrix4 fourth;  // rows are normalised with their fourth component
    fourth.Set(cpoint4(3, 0, 0, 4), cpoint4(0, 2, 0, 0), cpoint4(0, 0, 1, 0), cpoint4(5, 6, 7, 1));
    fourth.RemoveScaling();
    ExpectRow(fourth, 0, 0.6f, 0, 0, 0.8f);
    ExpectRow(fourth, 3, 5, 6, 7, 1);
}

TEST(Matrix, EulerAnglesComeBackFromTheMatrix) {
    for (oracle::Random random(17); random.Trial();) {
        const Eigen::Vector3f e(random.Uniform(-179, 179), random.Uniform(-89, 89),
                                random.Uniform(-179, 179));
        float angles[3];
        EulerFromMatrix(cmatrix4().FromAngles(e.x(), e.y(), e.z()), angles);
        ExpectNear(cpoint3(angles[0], angles[1], angles[2]), e, 0.05f);
    }

    // A scaled matrix is orthonormalised first.
    ExpectPoint(
        EulerFromMatrix(cmatrix4().FromScale(cpoint3(2, 2, 2)) * cmatrix4().FromAngles(10, 20, 30)),
        10, 20, 30, 1e-3f);

    // Gimbal lock: z is 0 and x comes from row 1.
    for (const float y : {90.0f, -90.0f}) {
        const cpoint3 e = EulerFromMatrix(cmatrix4().FromAngles(10, y, 30));
        ExpectPoint(e, y > 0 ? -40.0f : -20.0f, y, 0, 1e-3f);
        EXPECT_EQ(e.z, 0.0f);
    }
}

TEST(Matrix, LookAtBuildsRowsFromDirectionAndUp) {
    cmatrix4 m = Counting();
    MatrixLookAt(m, cpoint3(2, 0, 0), cpoint3(0, 2, 0));
    ExpectRow(m, 0, 0, 0, -1, 0);
    ExpectRow(m, 1, 0, 1, 0, 0);
    ExpectRow(m, 2, 1, 0, 0, 0);
    ExpectRow(m, 3, 0, 0, 0, 1);

    // Row 0 is not normalised when dir and up are not perpendicular; parallel ones give zeros.
    MatrixLookAt(m, cpoint3(1, 0, 0), cpoint3(1, 1, 0));
    const float h = std::sqrt(0.5f);
    ExpectRow(m, 0, 0, 0, -h, 0);
    ExpectRow(m, 1, 0, h, 0, 0);
    MatrixLookAt(m, cpoint3(0, 1, 0), cpoint3(0, 4, 0));
    EXPECT_TRUE(Elements(m).topRows(2).isZero(0.0f));
}

}  // namespace
