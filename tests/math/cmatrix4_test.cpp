#include "cmatrix4.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "math/rotationoracle.h"
#include "support/testsupport.h"

namespace {

using oracle::ActingLike;
using oracle::EulerActingLike;
using oracle::ExpectNear;
using oracle::MatrixActingLike;
using oracle::RotationActingLike;

constexpr int kTrials = 500;

// A matrix whose sixteen elements are 1, 2, ..., 16 in memory order.
cmatrix4 Counting() {
    float a[4][4];
    for (int i = 0; i < 16; ++i) a[i / 4][i % 4] = static_cast<float>(i + 1);
    return cmatrix4(a);
}

void ExpectRow(const cmatrix4& m, int row, float x, float y, float z, float w) {
    EXPECT_FLOAT_EQ(m.m[row][0], x) << "row " << row;
    EXPECT_FLOAT_EQ(m.m[row][1], y) << "row " << row;
    EXPECT_FLOAT_EQ(m.m[row][2], z) << "row " << row;
    EXPECT_FLOAT_EQ(m.m[row][3], w) << "row " << row;
}

void ExpectPoint(const cpoint3& p, float x, float y, float z, float tolerance = 1e-5f) {
    EXPECT_NEAR(p.x, x, tolerance);
    EXPECT_NEAR(p.y, y, tolerance);
    EXPECT_NEAR(p.z, z, tolerance);
}

TEST(Matrix, StoresRowsWithTheTranslationInTheFourthRow) {
    const cmatrix4 identity;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) EXPECT_EQ(identity.m[r][c], r == c ? 1.0f : 0.0f);

    cmatrix4 m = Counting();
    const float* flat = m;
    for (int i = 0; i < 16; ++i) EXPECT_EQ(flat[i], i + 1.0f) << "element 4*row+col " << i;
    float copy[4][4];
    m.GetM(copy);
    EXPECT_EQ(copy[2][1], 10.0f);

    // Rows viewed in place as cpoint4 write through to the elements.
    m[2].y = -1.0f;
    EXPECT_EQ(m.m[2][1], -1.0f);
    EXPECT_EQ(m[3].w, 16.0f);
    EXPECT_EQ(m.GetRow4(1).x, 5.0f);
    ExpectPoint(m.GetRow3(1), 5, 6, 7, 0);

    // A three-component row keeps the fourth column; four components replace it.
    m.SetRow(0, cpoint3(-1, -2, -3));
    ExpectRow(m, 0, -1, -2, -3, 4);
    m.SetRow(0, cpoint4(9, 8, 7, 6));
    ExpectRow(m, 0, 9, 8, 7, 6);

    m.Set(cpoint3(1, 2, 3), cpoint3(4, 5, 6), cpoint3(7, 8, 9), cpoint3(10, 11, 12));
    ExpectRow(m, 0, 1, 2, 3, 0);
    ExpectRow(m, 2, 7, 8, 9, 0);
    ExpectRow(m, 3, 10, 11, 12, 1);
    m.Set(cpoint4(1, 2, 3, 4), cpoint4(), cpoint4(), cpoint4(5, 6, 7, 8));
    ExpectRow(m, 0, 1, 2, 3, 4);
    ExpectRow(m, 3, 5, 6, 7, 8);

    m.Identity().SetTrans(cpoint3(1, 2, 3));
    EXPECT_EQ(static_cast<const float*>(m)[12], 1.0f);
    EXPECT_EQ(static_cast<const float*>(m)[14], 3.0f);
    ExpectPoint(m.GetTrans(), 1, 2, 3, 0);
    ExpectPoint(cpoint3() * cmatrix4().FromTranslation(cpoint3(1, 2, 3)), 1, 2, 3, 0);
    m.Zero();
    for (int i = 0; i < 16; ++i) EXPECT_EQ(static_cast<const float*>(m)[i], 0.0f);
}

TEST(Matrix, TransformsRowVectorPointsLikeEigen) {
    oracle::Random random(11);
    for (int trial = 0; trial < kTrials; ++trial) {
        const Eigen::Affine3f t = random.Affine();
        const cmatrix4 m = MatrixActingLike(t);
        const cpoint3 p = random.Point(5.0f);
        const Eigen::Vector3f expected = t * oracle::ToEigen(p);
        ExpectNear(p * m, expected, 1e-4f);
        ExpectNear(m.PointTransform(p), expected, 1e-4f);
    }

    // No division by w: the three-component form ignores the fourth column.
    cmatrix4 projective = Counting();
    const cpoint3 p(1, -2, 0.5f);
    ExpectPoint(p * projective, 1 - 10 + 4.5f + 13, 2 - 12 + 5 + 14, 3 - 14 + 5.5f + 15);

    // The four-component form is the full row-vector product.
    const Eigen::Matrix4f e =
        Eigen::Map<Eigen::Matrix<float, 4, 4, Eigen::RowMajor>>(static_cast<float*>(projective));
    const Eigen::RowVector4f row = Eigen::RowVector4f(1, -2, 0.5f, 3) * e;
    const cpoint4 q = cpoint4(1, -2, 0.5f, 3) * projective;
    for (int i = 0; i < 4; ++i) EXPECT_FLOAT_EQ(q[i], row(i));
}

TEST(Matrix, ElementaryRotationsTurnAsEigenWithTheAngleInDegrees) {
    // By hand: a quarter turn about Z takes X to -Y under these matrices.
    ExpectPoint(cpoint3(1, 0, 0) * cmatrix4().FromAngleZ(90), 0, -1, 0);
    ExpectPoint(cpoint3(0, 1, 0) * cmatrix4().FromAngleX(90), 0, 0, -1);
    ExpectPoint(cpoint3(0, 0, 1) * cmatrix4().FromAngleY(90), -1, 0, 0);
    const cmatrix4 y30 = cmatrix4().FromAngleY(30);
    EXPECT_FLOAT_EQ(y30.m[0][2], 0.5f);
    EXPECT_FLOAT_EQ(y30.m[2][0], -0.5f);
    EXPECT_EQ(cmatrix4().FromAngleY(90).m[0][2], 1.0f);

    oracle::Random random(12);
    for (int trial = 0; trial < kTrials; ++trial) {
        const float x = random.Uniform(-360, 360), y = random.Uniform(-360, 360),
                    z = random.Uniform(-360, 360);
        Eigen::Affine3f expected = Eigen::Affine3f::Identity();
        expected.linear() = RotationActingLike(x, Eigen::Vector3f::UnitX()).toRotationMatrix();
        ExpectNear(ActingLike(cmatrix4().FromAngleX(x)), expected, 1e-5f);
        expected.linear() = RotationActingLike(y, Eigen::Vector3f::UnitY()).toRotationMatrix();
        ExpectNear(ActingLike(cmatrix4().FromAngleY(y)), expected, 1e-5f);
        expected.linear() = RotationActingLike(z, Eigen::Vector3f::UnitZ()).toRotationMatrix();
        ExpectNear(ActingLike(cmatrix4().FromAngleZ(z)), expected, 1e-5f);

        expected.linear() = EulerActingLike(x, y, z);
        ExpectNear(ActingLike(cmatrix4().FromAngles(x, y, z)), expected, 1e-5f);
        ExpectNear(ActingLike(MatrixFromEuler(cpoint3(x, y, z))), expected, 1e-5f);
        const float angles[3] = {x, y, z};
        ExpectNear(ActingLike(MatrixFromEuler(angles)), expected, 1e-5f);
    }
}

TEST(Matrix, ProductAppliesTheLeftOperandFirstAndComputesThreeColumns) {
    oracle::Random random(13);
    for (int trial = 0; trial < kTrials; ++trial) {
        const Eigen::Affine3f a = random.Affine(), b = random.Affine();
        const cmatrix4 ma = MatrixActingLike(a), mb = MatrixActingLike(b);
        ExpectNear(ActingLike(ma * mb), b * a, 1e-4f);
        cmatrix4 c = ma;
        c *= mb;
        ExpectNear(ActingLike(c), b * a, 1e-4f);
        c = ma;
        c *= c;
        ExpectNear(ActingLike(c), a * a, 1e-4f);
    }

    // The first three columns sum over all four k; the fourth column is never computed.
    const cmatrix4 a = Counting();
    cmatrix4 b = Counting();
    b.m[0][3] = std::numeric_limits<float>::infinity();
    b.m[2][3] = std::numeric_limits<float>::quiet_NaN();
    const Eigen::Matrix4f ea = Eigen::Map<const Eigen::Matrix<float, 4, 4, Eigen::RowMajor>>(a);
    const Eigen::Matrix4f eb = Eigen::Map<const Eigen::Matrix<float, 4, 4, Eigen::RowMajor>>(b);
    const Eigen::Matrix4f full = ea * eb;
    const cmatrix4 product = a * b;
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 3; ++c) EXPECT_FLOAT_EQ(product.m[r][c], full(r, c));
        EXPECT_EQ(product.m[r][3], r == 3 ? 1.0f : 0.0f) << "operator* keeps the identity's";
    }
    cmatrix4 left = a;
    left *= b;
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 3; ++c) EXPECT_FLOAT_EQ(left.m[r][c], full(r, c));
        EXPECT_EQ(left.m[r][3], a.m[r][3]) << "operator*= keeps the left operand's own";
    }
}

TEST(Matrix, ComposingMembersMultiplyOnTheRight) {
    oracle::Random random(14);
    for (int trial = 0; trial < 100; ++trial) {
        const Eigen::Affine3f t = random.Affine();
        const float angle = random.Uniform(-180, 180);
        const Eigen::Vector3f axes[3] = {Eigen::Vector3f::UnitX(), Eigen::Vector3f::UnitY(),
                                         Eigen::Vector3f::UnitZ()};
        cmatrix4 rotated[3] = {MatrixActingLike(t), MatrixActingLike(t), MatrixActingLike(t)};
        rotated[0].RotateX(angle);
        rotated[1].RotateY(angle);
        rotated[2].RotateZ(angle);
        for (int axis = 0; axis < 3; ++axis)
            ExpectNear(ActingLike(rotated[axis]), RotationActingLike(angle, axes[axis]) * t, 1e-4f);
        const Eigen::Vector3f offset = random.Vector(3.0f);
        ExpectNear(
            ActingLike(MatrixActingLike(t).Translate(cpoint3(offset.x(), offset.y(), offset.z()))),
            Eigen::Translation3f(offset) * t, 1e-4f);
    }

    // Scale also scales the translation unless told to keep it.
    const cmatrix4 moved = cmatrix4().FromTranslation(cpoint3(1, 2, 3));
    cmatrix4 m = moved;
    m.Scale(cpoint3(2, 3, 4));
    ExpectRow(m, 0, 2, 0, 0, 0);
    ExpectRow(m, 3, 2, 6, 12, 1);
    m = moved;
    m.Scale(cpoint3(2, 3, 4), 0);
    ExpectRow(m, 2, 0, 0, 4, 0);
    ExpectRow(m, 3, 1, 2, 3, 1);
    ExpectPoint(cpoint3(1, 1, 1) * m, 3, 5, 7);
}

TEST(Matrix, ScaleAndShearMoveCoordinatesAsDocumented) {
    const cmatrix4 s = cmatrix4().FromScale(cpoint3(2, -3, 0.5f));
    ExpectPoint(cpoint3(1, 1, 4) * s, 2, -3, 2);
    ExpectPoint(cpoint3(1, 1, 1) * cmatrix4().FromShear(0, 2, 3), 6, 1, 1);
    ExpectPoint(cpoint3(4, 2, 1) * cmatrix4().FromShear(1, 0.5f, -1), 4, 3, 1);
    ExpectPoint(cpoint3(4, 2, 1) * cmatrix4().FromShear(2, 0, 1), 4, 2, 3);

    AssertRecorder recorder;
    cmatrix4 bad = Counting();
    bad.FromShear(3, 1, 1);
    EXPECT_TRUE(bad.IsIdentity());
    ASSERT_EQ(recorder.Count(), 1);
    EXPECT_NE(recorder.Texts()[0].find("axis>=0 && axis<3"), std::string::npos);
}

TEST(Matrix, InverseUndoesTheAffinePartWithFullPivoting) {
    oracle::Random random(15);
    for (int trial = 0; trial < kTrials; ++trial) {
        const Eigen::Affine3f t = random.Affine();
        const Eigen::Affine3f expected = t.inverse(Eigen::Affine);
        ExpectNear(ActingLike(Inverse(MatrixActingLike(t))), expected, 2e-4f);
        cmatrix4 m = MatrixActingLike(t);
        m.Invert();
        ExpectNear(ActingLike(m), expected, 2e-4f);
    }

    // A zero leading element needs a pivot from elsewhere.
    cmatrix4 permuted;
    permuted.Set(cpoint3(0, 2, 0), cpoint3(0, 0, 4), cpoint3(8, 0, 0), cpoint3(1, 2, 3));
    const cmatrix4 inverse = Inverse(permuted);
    ExpectRow(inverse, 0, 0, 0, 0.125f, 0);
    ExpectRow(inverse, 1, 0.5f, 0, 0, 0);
    ExpectRow(inverse, 2, 0, 0.25f, 0, 0);
    ExpectRow(inverse, 3, -1, -0.75f, -0.125f, 1);

    // The fourth column is treated as (0, 0, 0, 1) and is not copied back.
    cmatrix4 projective = permuted;
    projective.m[0][3] = 5.0f;
    projective.m[3][3] = 2.0f;
    const cmatrix4 kept = Inverse(projective);
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 3; ++c) EXPECT_FLOAT_EQ(kept.m[r][c], inverse.m[r][c]);
    EXPECT_EQ(kept.m[0][3], 5.0f);
    EXPECT_EQ(kept.m[3][3], 2.0f);

    // Singular matrices return quietly with whatever the elimination reached.
    AssertRecorder recorder;
    cmatrix4 zero;
    zero.Zero();
    const cmatrix4 zeroInverse = Inverse(zero);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(static_cast<const float*>(zeroInverse)[i], 0.0f);
    cmatrix4 flat;
    flat.Set(cpoint3(1, 2, 3), cpoint3(2, 4, 6), cpoint3(0, 1, 1), cpoint3(4, 5, 6));
    const cmatrix4 partial = Inverse(flat);
    for (int i = 0; i < 16; ++i) EXPECT_TRUE(std::isfinite(static_cast<const float*>(partial)[i]));
    EXPECT_EQ(recorder.Count(), 0);
}

TEST(Matrix, TransposeTransposesTheRotationAndMovesTheTranslationByTheOldColumns) {
    oracle::Random random(16);
    for (int trial = 0; trial < kTrials; ++trial) {
        const Eigen::Affine3f rigid =
            Eigen::Translation3f(random.Vector(10.0f)) * random.Rotation();
        cmatrix4 m = MatrixActingLike(rigid);
        const cmatrix4 copy = Transpose(m);
        // The rotation is inverted; the translation becomes -(R t) in Eigen's terms, which
        // is the old translation dotted with each column of our row-vector matrix.
        Eigen::Affine3f expected = Eigen::Affine3f::Identity();
        expected.linear() = rigid.linear().transpose();
        expected.translation() = -(rigid.linear() * rigid.translation());
        ExpectNear(ActingLike(copy), expected, 1e-4f);
        ExpectNear(ActingLike(m), rigid, 0.0f);  // the free form works on a copy
        m.Transpose();
        ExpectNear(ActingLike(m), expected, 1e-4f);
    }

    // With a symmetric rotation part (a half turn) the result is the rigid inverse.
    cmatrix4 halfTurn = cmatrix4().FromAngleZ(180.0f);
    halfTurn.SetTrans(cpoint3(3.0f, -2.0f, 7.0f));
    const cpoint3 p(1.5f, 2.5f, -4.0f);
    const cpoint3 back = (p * halfTurn) * Transpose(halfTurn);
    EXPECT_NEAR(back.x, p.x, 1e-5f);
    EXPECT_NEAR(back.y, p.y, 1e-5f);
    EXPECT_NEAR(back.z, p.z, 1e-5f);

    cmatrix4 m = Counting();
    m.m[2][3] = 5.0f;
    m.Transpose();
    EXPECT_EQ(m.m[0][3], 0.0f);
    EXPECT_EQ(m.m[1][3], 0.0f);
    EXPECT_EQ(m.m[2][3], 5.0f);
    EXPECT_EQ(m.m[3][3], 1.0f);
    EXPECT_EQ(m.m[0][1], 5.0f);
    EXPECT_EQ(m.m[1][0], 2.0f);
    // Translation (13, 14, 15) against the old rotation part's columns (1, 5, 9) ...
    ExpectRow(m, 3, -(13 * 1 + 14 * 5 + 15 * 9), -(13 * 2 + 14 * 6 + 15 * 10),
              -(13 * 3 + 14 * 7 + 15 * 11), 1);
}

TEST(Matrix, OrthonormalityTestsAndCleanup) {
    const cmatrix4 rotation = cmatrix4().FromAngles(10, 20, 30);
    EXPECT_TRUE(rotation.IsOrthonormal());
    EXPECT_TRUE(rotation.IsOrthogonal());
    EXPECT_FALSE(rotation.IsIdentity());
    cmatrix4 mirrored = rotation;
    mirrored.SetRow(2, -mirrored.GetRow3(2));
    EXPECT_TRUE(mirrored.IsOrthonormal()) << "row2 = -(row0 x row1) passes";
    const cmatrix4 scaled = cmatrix4().FromScale(cpoint3(2, 2, 2)) * rotation;
    EXPECT_FALSE(scaled.IsOrthonormal());
    EXPECT_TRUE(scaled.IsOrthogonal());
    EXPECT_FALSE(cmatrix4().FromShear(0, 0.1f, 0).IsOrthogonal());
    cmatrix4 slightly = rotation;
    slightly.m[2][1] += 0.002f;
    EXPECT_FALSE(slightly.IsOrthonormal());
    slightly.m[2][1] -= 0.0015f;
    EXPECT_TRUE(slightly.IsOrthonormal());

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
    ExpectRow(skewed, 0, 1, 0, 0, 0);
    ExpectRow(skewed, 1, h, h, 0, 0);
    ExpectRow(skewed, 2, 0, 0, h, 0);
    ExpectRow(skewed, 3, 1, 2, 3, 1);

    const cmatrix4 stretched = cmatrix4().FromScale(cpoint3(2, 3, 4)) * rotation;
    ExpectPoint(stretched.GetScale(), 2, 3, 4);
    ExpectPoint(GetScale(stretched), 2, 3, 4);
    const cmatrix4 unit = RemoveScaling(stretched);
    ExpectPoint(unit.GetScale(), 1, 1, 1);
    EXPECT_TRUE(unit.IsOrthonormal());
    cmatrix4 fourth;
    fourth.Set(cpoint4(3, 0, 0, 4), cpoint4(0, 2, 0, 0), cpoint4(0, 0, 1, 0), cpoint4(5, 6, 7, 1));
    fourth.RemoveScaling();
    ExpectRow(fourth, 0, 0.6f, 0, 0, 0.8f);
    ExpectRow(fourth, 1, 0, 1, 0, 0);
    ExpectRow(fourth, 3, 5, 6, 7, 1);
}

TEST(Matrix, EulerAnglesComeBackFromTheMatrix) {
    const cpoint3 e = EulerFromMatrix(cmatrix4().FromAngles(10, 20, 30));
    ExpectPoint(e, 10, 20, 30, 1e-4f);

    oracle::Random random(17);
    for (int trial = 0; trial < kTrials; ++trial) {
        const float x = random.Uniform(-179, 179), y = random.Uniform(-89, 89),
                    z = random.Uniform(-179, 179);
        Eigen::Affine3f t = Eigen::Affine3f::Identity();
        t.linear() = EulerActingLike(x, y, z);
        float angles[3];
        EulerFromMatrix(MatrixActingLike(t), angles);
        EXPECT_NEAR(angles[0], x, 0.05f);
        EXPECT_NEAR(angles[1], y, 0.05f);
        EXPECT_NEAR(angles[2], z, 0.05f);
    }

    // A scaled matrix is orthonormalised first.
    ExpectPoint(
        EulerFromMatrix(cmatrix4().FromScale(cpoint3(2, 2, 2)) * cmatrix4().FromAngles(10, 20, 30)),
        10, 20, 30, 1e-3f);

    // Gimbal lock: z is 0 and x comes from row 1.
    const cpoint3 up = EulerFromMatrix(cmatrix4().FromAngles(10, 90, 30));
    EXPECT_FLOAT_EQ(up.y, 90.0f);
    EXPECT_EQ(up.z, 0.0f);
    EXPECT_NEAR(up.x, -40.0f, 1e-3f);
    const cpoint3 down = EulerFromMatrix(cmatrix4().FromAngles(10, -90, 30));
    EXPECT_FLOAT_EQ(down.y, -90.0f);
    EXPECT_EQ(down.z, 0.0f);
    EXPECT_NEAR(down.x, -20.0f, 1e-3f);
}

TEST(Matrix, LookAtBuildsRowsFromDirectionAndUp) {
    cmatrix4 m = Counting();
    MatrixLookAt(m, cpoint3(0, 0, 5), cpoint3(0, 3, 0));
    EXPECT_TRUE(m.IsIdentity());

    MatrixLookAt(m, cpoint3(2, 0, 0), cpoint3(0, 2, 0));
    ExpectRow(m, 0, 0, 0, -1, 0);
    ExpectRow(m, 1, 0, 1, 0, 0);
    ExpectRow(m, 2, 1, 0, 0, 0);
    ExpectRow(m, 3, 0, 0, 0, 1);

    // Row 0 is not normalised when dir and up are not perpendicular.
    MatrixLookAt(m, cpoint3(1, 0, 0), cpoint3(1, 1, 0));
    const float h = std::sqrt(0.5f);
    ExpectRow(m, 0, 0, 0, -h, 0);
    ExpectRow(m, 1, 0, h, 0, 0);

    MatrixLookAt(m, cpoint3(0, 1, 0), cpoint3(0, 4, 0));
    ExpectRow(m, 0, 0, 0, 0, 0);
    ExpectRow(m, 1, 0, 0, 0, 0);
    ExpectRow(m, 2, 0, 1, 0, 0);
}

}  // namespace
