// 4 x 4 float transform matrix: cmatrix4.
//
// Row-major, m[row][col], element index 4 * row + col. Points are row vectors multiplied on
// the left (p' = p x M). The translation is the fourth row (elements 12 to 14) and the fourth
// column is (0, 0, 0, 1) for every affine matrix. A product A x B applies A first. Angles are
// in degrees; Euler angles are applied X, then Y, then Z.
#ifndef ORVANE_CMATRIX4_H
#define ORVANE_CMATRIX4_H

#include <cstring>
#include <type_traits>

#include "coreapi.h"
#include "cpoint.h"

// A row is viewed in place as a cpoint4 (operator[]), so the two layouts must agree.
static_assert(sizeof(cpoint4) == 4 * sizeof(float) && std::is_standard_layout<cpoint4>::value,
              "cpoint4 must be four packed floats");

class CORE_API cmatrix4 {
public:
    float m[4][4];

    // The identity.
    cmatrix4() { Identity(); }
    // The sixteen floats of `src`, row by row.
    explicit cmatrix4(const float src[4][4]) { std::memcpy(m, src, sizeof m); }

    // Copies the sixteen floats into `dst`, row by row.
    void GetM(float dst[4][4]) const { std::memcpy(dst, m, sizeof m); }

    // Rows 0 to 3 from three-component points; the fourth column becomes (0, 0, 0, 1).
    void Set(const cpoint3& row0, const cpoint3& row1, const cpoint3& row2, const cpoint3& row3);
    // Rows 0 to 3 from four-component points, fourth column included.
    void Set(const cpoint4& row0, const cpoint4& row1, const cpoint4& row2, const cpoint4& row3);

    // Row i (0..3). The cpoint3 form writes the first three columns and keeps the fourth.
    void SetRow(int i, const cpoint3& row) {
        m[i][0] = row.x;
        m[i][1] = row.y;
        m[i][2] = row.z;
    }
    void SetRow(int i, const cpoint4& row) { (*this)[i] = row; }
    // The first three columns of row i (0..3).
    cpoint3 GetRow3(int i) const { return cpoint3(m[i][0], m[i][1], m[i][2]); }
    // All four columns of row i (0..3).
    cpoint4 GetRow4(int i) const { return (*this)[i]; }

    // The translation: the first three columns of the fourth row.
    void SetTrans(const cpoint3& t) { SetRow(3, t); }
    cpoint3 GetTrans() const { return GetRow3(3); }

    // Row i (0..3) viewed in place as (x, y, z, w) = columns 0 to 3. The index is an int.
    cpoint4& operator[](int i) { return *reinterpret_cast<cpoint4*>(m[i]); }
    const cpoint4& operator[](int i) const { return *reinterpret_cast<const cpoint4*>(m[i]); }

    // The sixteen floats, element 4 * row + col: the layout OpenGL's glLoadMatrixf expects.
    operator float*() { return &m[0][0]; }
    operator const float*() const { return &m[0][0]; }

    // Sets the identity.
    cmatrix4& Identity() {
        static constexpr float kIdentity[4][4] = {{1.0f, 0.0f, 0.0f, 0.0f},
                                                  {0.0f, 1.0f, 0.0f, 0.0f},
                                                  {0.0f, 0.0f, 1.0f, 0.0f},
                                                  {0.0f, 0.0f, 0.0f, 1.0f}};
        std::memcpy(m, kIdentity, sizeof m);
        return *this;
    }
    // Sets all sixteen elements to 0.
    cmatrix4& Zero() {
        std::memset(m, 0, sizeof m);
        return *this;
    }

    // True when every element is within 1e-6 of the identity's.
    bool IsIdentity() const;
    // True when rows 0 to 2 are mutually perpendicular: for each pair |a . b| <= 0.001 |a| |b|
    // (a zero row counts as perpendicular to every row).
    bool IsOrthogonal() const;
    // True when row0 x row1 equals row2 or -row2 within 0.001 per component.
    bool IsOrthonormal() const;
    // Normalises rows 0 and 1 (three components) and sets row2 = row0 x row1. Row 1 is not
    // made perpendicular to row 0.
    cmatrix4& Orthonormalize();

    // Inverts the affine part in place (Gauss-Jordan elimination with full pivoting). A
    // singular matrix is left as far as the elimination got; no error is reported.
    cmatrix4& Invert();
    // The rigid-transform inverse of this library: transposes the 3 x 3 rotation R and sets the
    // translation's j-th component to -(t . column j of the old R), t the old translation,
    // which is the exact inverse when R is symmetric; m33 = 1, m03 = m13 = 0, m23 unchanged.
    cmatrix4& Transpose();
    // Normalises rows 0 to 2 as four-component vectors.
    cmatrix4& RemoveScaling();
    // The lengths of rows 0 to 2 (first three components).
    cpoint3 GetScale() const;

    // p x M for the row vector (p.x, p.y, p.z, 1), without division by w.
    cpoint3 PointTransform(const cpoint3& p) const {
        const Row r = RowTimes(p.x, p.y, p.z, 1.0f);
        return cpoint3(r[0], r[1], r[2]);
    }
    // The full row-vector product p x M, w included.
    cpoint4 PointTransform(const cpoint4& p) const {
        const Row r = RowTimes(p.x, p.y, p.z, p.w);
        return cpoint4(r[0], r[1], r[2], r[3]);
    }

    // Each From* member replaces the whole matrix with an elementary one.
    // The identity with the fourth row (t.x, t.y, t.z, 1).
    cmatrix4& FromTranslation(const cpoint3& t);
    // Rotation about X by `degrees`: m11 = c, m12 = -s, m21 = s, m22 = c.
    cmatrix4& FromAngleX(float degrees);
    // Rotation about Y by `degrees`: m00 = c, m02 = s, m20 = -s, m22 = c.
    cmatrix4& FromAngleY(float degrees);
    // Rotation about Z by `degrees`: m00 = c, m01 = -s, m10 = s, m11 = c.
    cmatrix4& FromAngleZ(float degrees);
    // FromAngleX(x) x FromAngleY(y) x FromAngleZ(z), angles in degrees.
    cmatrix4& FromAngles(float x, float y, float z);
    // The identity with the diagonal s.x, s.y, s.z.
    cmatrix4& FromScale(const cpoint3& s);
    // Shear along `axis` (0 = X, 1 = Y, 2 = Z): that coordinate gains `first` times the
    // lower-indexed other coordinate plus `second` times the higher one; for axis X,
    // x' = x + first y + second z. Another axis is reported and leaves the identity.
    cmatrix4& FromShear(int axis, float first, float second);

    // Each of these multiplies on the right by the elementary matrix (M = M x E), so the
    // new transform applies after the current one.
    cmatrix4& Translate(const cpoint3& t);
    cmatrix4& RotateX(float degrees);
    cmatrix4& RotateY(float degrees);
    cmatrix4& RotateZ(float degrees);
    // M = M x FromScale(s). With `scaleTranslation` 0 the translation row is kept, so the
    // scaling happens about the matrix's own origin instead of the world origin.
    cmatrix4& Scale(const cpoint3& s, int scaleTranslation = 1);

    // this = this x b over the first three columns; the fourth column keeps this matrix's own.
    cmatrix4& operator*=(const cmatrix4& b) {
        SetAffineProduct(*this, b);
        return *this;
    }

    // a x b over the first three columns; the fourth column is the identity's (0, 0, 0, 1).
    friend cmatrix4 operator*(const cmatrix4& a, const cmatrix4& b) {
        cmatrix4 c;
        c.SetAffineProduct(a, b);
        return c;
    }

private:
    // Four floats in one SIMD register (the vector extension of GCC and Clang): the product
    // then works on whole rows, branch-free.
    typedef float Row __attribute__((vector_size(16)));
    typedef int RowBits __attribute__((vector_size(16)));

    Row LoadRow(int i) const {
        Row r;
        std::memcpy(&r, m[i], sizeof r);
        return r;
    }
    void StoreRow(int i, Row r) { std::memcpy(m[i], &r, sizeof r); }

    // The row vector (a0, a1, a2, a3) times this matrix: a0 row0 + a1 row1 + a2 row2 + a3 row3.
    Row RowTimes(float a0, float a1, float a2, float a3) const {
        return a0 * LoadRow(0) + a1 * LoadRow(1) + a2 * LoadRow(2) + a3 * LoadRow(3);
    }

    // Lanes 0 to 2 of `computed` and lane 3 of `kept`, as exact bit copies.
    static Row FirstThreeOf(Row computed, Row kept) {
        const RowBits firstThree = {-1, -1, -1, 0};
        return reinterpret_cast<Row>((reinterpret_cast<RowBits>(computed) & firstThree) |
                                     (reinterpret_cast<RowBits>(kept) & ~firstThree));
    }

    // Writes the first three columns of a x b into this matrix and keeps its fourth column.
    // Every row is computed before any is stored, so `a` or `b` may be this matrix.
    void SetAffineProduct(const cmatrix4& a, const cmatrix4& b) {
        const Row r0 = b.RowTimes(a.m[0][0], a.m[0][1], a.m[0][2], a.m[0][3]);
        const Row r1 = b.RowTimes(a.m[1][0], a.m[1][1], a.m[1][2], a.m[1][3]);
        const Row r2 = b.RowTimes(a.m[2][0], a.m[2][1], a.m[2][2], a.m[2][3]);
        const Row r3 = b.RowTimes(a.m[3][0], a.m[3][1], a.m[3][2], a.m[3][3]);
        // Intended: the fourth column is not computed; the product treats matrices as affine.
        StoreRow(0, FirstThreeOf(r0, LoadRow(0)));
        StoreRow(1, FirstThreeOf(r1, LoadRow(1)));
        StoreRow(2, FirstThreeOf(r2, LoadRow(2)));
        StoreRow(3, FirstThreeOf(r3, LoadRow(3)));
    }
};

// The point transform spelt as a product, p x M (see cmatrix4::PointTransform).
inline cpoint3 operator*(const cpoint3& p, const cmatrix4& m) {
    return m.PointTransform(p);
}
inline cpoint4 operator*(const cpoint4& p, const cmatrix4& m) {
    return m.PointTransform(p);
}

// The inverse of the affine part (see cmatrix4::Invert).
CORE_API cmatrix4 Inverse(const cmatrix4& m);
// A copy with cmatrix4::Transpose applied.
CORE_API cmatrix4 Transpose(const cmatrix4& m);
// A copy with rows 0 to 2 normalised as four-component vectors.
CORE_API cmatrix4 RemoveScaling(const cmatrix4& m);
// The lengths of rows 0 to 2 (first three components).
CORE_API cpoint3 GetScale(const cmatrix4& m);

// The Euler angles (x, y, z) in degrees, order X then Y then Z, with FromAngles(x, y, z)
// giving back the rotation; y lies in [-90, 90]. A matrix that is not orthonormal is
// orthonormalised first. At y = +-90 (gimbal lock) z is 0 and x is -atan2(m10, m11).
CORE_API cpoint3 EulerFromMatrix(const cmatrix4& m);
// The same, written to angles[0..2].
CORE_API void EulerFromMatrix(const cmatrix4& m, float angles[3]);
// FromAngles(angles.x, angles.y, angles.z): Euler angles in degrees, X then Y then Z.
CORE_API cmatrix4 MatrixFromEuler(const cpoint3& angles);
CORE_API cmatrix4 MatrixFromEuler(const float angles[3]);

// m = the identity with row0 = up x dir, row1 = dir x row0 and row2 = dir, where dir and up
// are normalised first and row0 is not; no translation. Parallel dir and up give zero rows.
CORE_API void MatrixLookAt(cmatrix4& m, const cpoint3& dir, const cpoint3& up);

#endif
