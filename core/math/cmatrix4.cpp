// The 4 x 4 transform matrix: elementary matrices, inversion, cleanup and Euler angles.
#include "cmatrix4.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "math/angles.h"
#include "runtime/check.h"

namespace {

constexpr float kIdentityTolerance = 1e-6f;
constexpr float kOrthoTolerance = 0.001f;

// The rotation by `degrees` about coordinate axis `axis` (0 = X, 1 = Y, 2 = Z). With i and j
// the next two axes in cyclic order: m[i][i] = c, m[i][j] = -s, m[j][i] = s, m[j][j] = c.
cmatrix4 AxisRotation(int axis, float degrees) {
    const SinCos sc = SinCosDegrees(degrees);
    const int i = (axis + 1) % 3;
    const int j = (axis + 2) % 3;
    cmatrix4 r;
    r.m[i][i] = sc.c;
    r.m[i][j] = -sc.s;
    r.m[j][i] = sc.s;
    r.m[j][j] = sc.c;
    return r;
}

// |a . b| <= tolerance |a| |b|: the cosine of the angle between a and b is within tolerance
// of 0, whatever the lengths.
bool ArePerpendicular(const cpoint3& a, const cpoint3& b) {
    return std::fabs(DotProd(a, b)) <= kOrthoTolerance * Length(a) * Length(b);
}

void SwapColumns(float a[4][4], int c0, int c1) {
    for (int row = 0; row < 4; ++row) std::swap(a[row][c0], a[row][c1]);
}

// Finds the largest |a[row][col]| over the rows and columns not yet used, scanning rows then
// columns in index order and keeping the first maximum. Returns false when every candidate
// is zero (or not a number).
bool FindPivot(const float a[4][4], const bool used[4], int& pivotRow, int& pivotCol) {
    float largest = 0.0f;
    bool found = false;
    for (int row = 0; row < 4; ++row) {
        if (used[row]) continue;
        for (int col = 0; col < 4; ++col) {
            if (used[col] || !(std::fabs(a[row][col]) > largest)) continue;
            largest = std::fabs(a[row][col]);
            pivotRow = row;
            pivotCol = col;
            found = true;
        }
    }
    return found;
}

// Eliminates column `col` from every row but `col`, whose pivot has been scaled to 1.
void EliminateColumn(float a[4][4], int col) {
    for (int row = 0; row < 4; ++row) {
        if (row == col) continue;
        const float factor = a[row][col];
        a[row][col] = 0.0f;
        for (int k = 0; k < 4; ++k) a[row][k] -= a[col][k] * factor;
    }
}

// Gauss-Jordan inversion with full pivoting, in place. The pivot selection skips used rows
// and columns, so no column is chosen twice; a zero pivot stops the elimination silently and
// leaves `a` as far as it got, without the final column swaps.
void GaussJordanInvert(float a[4][4]) {
    bool used[4] = {false, false, false, false};
    int pivotRows[4];
    int pivotCols[4];
    for (int step = 0; step < 4; ++step) {
        int row = 0;
        int col = 0;
        if (!FindPivot(a, used, row, col)) return;
        used[col] = true;
        if (row != col)
            for (int k = 0; k < 4; ++k) std::swap(a[row][k], a[col][k]);
        pivotRows[step] = row;
        pivotCols[step] = col;
        const float inverse = 1.0f / a[col][col];
        a[col][col] = 1.0f;
        for (int k = 0; k < 4; ++k) a[col][k] *= inverse;
        EliminateColumn(a, col);
    }
    for (int step = 3; step >= 0; --step)
        if (pivotRows[step] != pivotCols[step]) SwapColumns(a, pivotRows[step], pivotCols[step]);
}

}  // namespace

void cmatrix4::Set(const cpoint3& row0, const cpoint3& row1, const cpoint3& row2,
                   const cpoint3& row3) {
    Set(cpoint4(row0, 0.0f), cpoint4(row1, 0.0f), cpoint4(row2, 0.0f), cpoint4(row3, 1.0f));
}

void cmatrix4::Set(const cpoint4& row0, const cpoint4& row1, const cpoint4& row2,
                   const cpoint4& row3) {
    // Copied before any row is written: the rows may be this matrix's own (m.Set(m[1], ...)).
    const cpoint4 rows[4] = {row0, row1, row2, row3};
    for (int i = 0; i < 4; ++i) (*this)[i] = rows[i];
}

bool cmatrix4::IsIdentity() const {
    const cmatrix4 identity;
    for (int i = 0; i < 4; ++i)
        if (!Compare((*this)[i], identity[i], kIdentityTolerance)) return false;
    return true;
}

bool cmatrix4::IsOrthogonal() const {
    const cpoint3 r0 = GetRow3(0), r1 = GetRow3(1), r2 = GetRow3(2);
    return ArePerpendicular(r0, r1) && ArePerpendicular(r0, r2) && ArePerpendicular(r1, r2);
}

bool cmatrix4::IsOrthonormal() const {
    const cpoint3 cross = CrossProd(GetRow3(0), GetRow3(1));
    const cpoint3 r2 = GetRow3(2);
    return Compare(cross, r2, kOrthoTolerance) || Compare(cross, -r2, kOrthoTolerance);
}

cmatrix4& cmatrix4::Orthonormalize() {
    const cpoint3 r0 = Normalize(GetRow3(0));
    // Intended: row 1 is normalised but not made perpendicular to row 0.
    const cpoint3 r1 = Normalize(GetRow3(1));
    SetRow(0, r0);
    SetRow(1, r1);
    SetRow(2, CrossProd(r0, r1));
    return *this;
}

cmatrix4& cmatrix4::Invert() {
    cmatrix4 work(*this);
    work.m[0][3] = work.m[1][3] = work.m[2][3] = 0.0f;
    work.m[3][3] = 1.0f;
    GaussJordanInvert(work.m);
    for (int row = 0; row < 4; ++row) SetRow(row, work.GetRow3(row));
    return *this;
}

cmatrix4& cmatrix4::Transpose() {
    const cpoint3 t = GetTrans();
    for (int row = 0; row < 3; ++row)
        for (int col = row + 1; col < 3; ++col) std::swap(m[row][col], m[col][row]);
    // The new translation is -(t . column j) of the old rotation part, i.e. of row j of the
    // transposed one. This undoes p' = p R + t exactly when R is symmetric; kept as it is.
    for (int j = 0; j < 3; ++j) m[3][j] = -(t.x * m[j][0] + t.y * m[j][1] + t.z * m[j][2]);
    m[3][3] = 1.0f;
    m[0][3] = 0.0f;
    // Intended: element 7 is written twice and element 11 (m23) never.
    m[1][3] = 0.0f;
    m[1][3] = 0.0f;
    return *this;
}

cmatrix4& cmatrix4::RemoveScaling() {
    for (int row = 0; row < 3; ++row) (*this)[row].Normalize();
    return *this;
}

cpoint3 cmatrix4::GetScale() const {
    return cpoint3(Length(GetRow3(0)), Length(GetRow3(1)), Length(GetRow3(2)));
}

cmatrix4& cmatrix4::FromTranslation(const cpoint3& t) {
    Identity();
    SetTrans(t);
    return *this;
}

cmatrix4& cmatrix4::FromAngleX(float degrees) {
    return *this = AxisRotation(0, degrees);
}

cmatrix4& cmatrix4::FromAngleY(float degrees) {
    return *this = AxisRotation(1, degrees);
}

cmatrix4& cmatrix4::FromAngleZ(float degrees) {
    return *this = AxisRotation(2, degrees);
}

cmatrix4& cmatrix4::FromAngles(float x, float y, float z) {
    return *this = AxisRotation(0, x) * AxisRotation(1, y) * AxisRotation(2, z);
}

cmatrix4& cmatrix4::FromScale(const cpoint3& s) {
    Identity();
    m[0][0] = s.x;
    m[1][1] = s.y;
    m[2][2] = s.z;
    return *this;
}

cmatrix4& cmatrix4::FromShear(int axis, float first, float second) {
    Identity();
    CORE_CHECK(axis >= 0 && axis < 3, "axis>=0 && axis<3");
    if (axis < 0 || axis >= 3) return *this;
    // Row k holds what coordinate k adds to each output: column `axis` of the two other rows.
    const int lower = axis == 0 ? 1 : 0;
    const int higher = axis == 2 ? 1 : 2;
    m[lower][axis] = first;
    m[higher][axis] = second;
    return *this;
}

cmatrix4& cmatrix4::Translate(const cpoint3& t) {
    return *this *= cmatrix4().FromTranslation(t);
}

cmatrix4& cmatrix4::RotateX(float degrees) {
    return *this *= AxisRotation(0, degrees);
}

cmatrix4& cmatrix4::RotateY(float degrees) {
    return *this *= AxisRotation(1, degrees);
}

cmatrix4& cmatrix4::RotateZ(float degrees) {
    return *this *= AxisRotation(2, degrees);
}

cmatrix4& cmatrix4::Scale(const cpoint3& s, int scaleTranslation) {
    const cpoint3 t = GetTrans();
    *this *= cmatrix4().FromScale(s);
    if (!scaleTranslation) SetTrans(t);
    return *this;
}

cmatrix4 Inverse(const cmatrix4& m) {
    return cmatrix4(m).Invert();
}

cmatrix4 Transpose(const cmatrix4& m) {
    return cmatrix4(m).Transpose();
}

cmatrix4 RemoveScaling(const cmatrix4& m) {
    return cmatrix4(m).RemoveScaling();
}

cpoint3 GetScale(const cmatrix4& m) {
    return m.GetScale();
}

cpoint3 EulerFromMatrix(const cmatrix4& matrix) {
    cmatrix4 r(matrix);
    if (!r.IsOrthonormal()) r.Orthonormalize();
    const float s = std::clamp(r.m[0][2], -1.0f, 1.0f);
    const float y = std::asin(s);
    // cos(asin(s)), exactly 0 when |s| is 1, which is what detects the gimbal lock.
    const float cosY = std::sqrt(1.0f - s * s);
    float x = 0.0f;
    float z = 0.0f;
    if (cosY != 0.0f) {
        x = -std::atan2(r.m[1][2], r.m[2][2]);
        z = -std::atan2(r.m[0][1], r.m[0][0]);
    } else {
        // Row 1 holds the combined angle of x and z: at y = -90 this gives x - z (with z = 0
        // the same rotation), at y = +90 it gives -(x + z).
        x = -std::atan2(r.m[1][0], r.m[1][1]);
    }
    return cpoint3(ToDegrees(x), ToDegrees(y), ToDegrees(z));
}

void EulerFromMatrix(const cmatrix4& m, float angles[3]) {
    const cpoint3 e = EulerFromMatrix(m);
    angles[0] = e.x;
    angles[1] = e.y;
    angles[2] = e.z;
}

cmatrix4 MatrixFromEuler(const cpoint3& angles) {
    return cmatrix4().FromAngles(angles.x, angles.y, angles.z);
}

cmatrix4 MatrixFromEuler(const float angles[3]) {
    return cmatrix4().FromAngles(angles[0], angles[1], angles[2]);
}

void MatrixLookAt(cmatrix4& m, const cpoint3& dir, const cpoint3& up) {
    const cpoint3 d = Normalize(dir);
    const cpoint3 u = Normalize(up);
    const cpoint3 x = CrossProd(u, d);
    m.Set(x, CrossProd(d, x), d, cpoint3());
}
