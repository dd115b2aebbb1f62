// Rotation quaternions and their conversions to and from matrices and Euler angles.
#include "cquat.h"

#include <cmath>

#include "math/angles.h"

namespace {

constexpr float kIdentityTolerance = 1e-6f;
constexpr float kUnitTolerance = 1e-5f;
// Below this 1 - cos(angle between a and b), Slerp blends linearly: sin(omega) is too small
// to divide by.
constexpr float kSlerpLinearThreshold = 0.00001f;
// The smallest usable 2 |component| when QuatFromMatrix reads a component off the diagonal.
constexpr float kDiagonalThreshold = 0.1f;

// The rotation about one coordinate axis for Euler conversion; an angle of exactly 0 is the
// identity.
cquat AxisQuat(float degrees, const cpoint3& axis) {
    return degrees == 0.0f ? cquat() : QuatFromAngleAxis(degrees, axis);
}

// Reads the quaternion off the diagonal element i of the rotation part of m, with j and k the
// next two axes in cyclic order: s = sqrt(m_ii - m_jj - m_kk + 1) is twice |component i|.
// Returns false, leaving q alone, when s is not greater than the threshold (or not a number).
bool QuatFromDiagonal(const float m[4][4], int i, cquat& q) {
    const int j = (i + 1) % 3;
    const int k = (i + 2) % 3;
    float s = std::sqrt(m[i][i] - m[j][j] - m[k][k] + 1.0f);
    if (!(s > kDiagonalThreshold)) return false;
    float v[3];
    v[i] = 0.5f * s;
    s = 0.5f / s;
    v[j] = (m[i][j] + m[j][i]) * s;
    v[k] = (m[i][k] + m[k][i]) * s;
    q = MakeQuat(v[0], v[1], v[2], (m[k][j] - m[j][k]) * s);
    return true;
}

// The index (0..2) of the largest diagonal element of the rotation part, first one on ties.
int LargestDiagonal(const float m[4][4]) {
    int i = 0;
    if (m[1][1] > m[i][i]) i = 1;
    if (m[2][2] > m[i][i]) i = 2;
    return i;
}

}  // namespace

cquat::cquat(const cmatrix4& m) : cquat(QuatFromMatrix(m)) {}

cquat::cquat(float ex, float ey, float ez) : cquat(EulerToQuat(cpoint3(ex, ey, ez))) {}

cquat::cquat(const cpoint3& euler) : cquat(EulerToQuat(euler)) {}

cquat::cquat(const cpoint3& axis, float degrees) : cquat(QuatFromAngleAxis(degrees, axis)) {}

cquat& cquat::FromEuler(float ex, float ey, float ez) {
    return *this = EulerToQuat(cpoint3(ex, ey, ez));
}

cquat& cquat::FromEuler(const cpoint3& euler) {
    return *this = EulerToQuat(euler);
}

bool cquat::IsIdentity() const {
    const cpoint3 v(x, y, z);
    return Compare(v, cpoint3(), kIdentityTolerance) &&
           std::fabs(std::fabs(w) - 1.0f) <= kIdentityTolerance;
}

bool cquat::IsUnit() const {
    return std::fabs(Length() - 1.0f) <= kUnitTolerance;
}

cquat& cquat::Normalize() {
    // A quaternion whose squared length is exactly 1 would be scaled by 1/1: it is left as it
    // is, which saves a square root and a division for every key a record reads or writes.
    const float squared = x * x + y * y + z * z + w * w;
    if (squared == 1.0f) return *this;
    const float length = std::sqrt(squared);
    if (length != 0.0f) *this /= length;
    return *this;
}

cpoint3 cquat::PointRotate(const cpoint3& p) const {
    // Inverse(q) * (p, 0) * q written out: ((w^2 - u.u) p + 2 (u.p) u - 2 w (u x p)) / |q|^2.
    const cpoint3 u(x, y, z);
    const float uu = DotProd(u, u);
    const cpoint3 r = (w * w - uu) * p + (2.0f * DotProd(u, p)) * u - (2.0f * w) * CrossProd(u, p);
    return r / (uu + w * w);
}

cquat Slerp(const cquat& a, const cquat& b, float t) {
    cquat to = b;
    float cosom = DotProd(a, b);
    if (cosom < 0.0f) {
        cosom = -cosom;
        to = -to;
    }
    float scale0 = 1.0f - t;
    float scale1 = t;
    if (1.0f - cosom > kSlerpLinearThreshold) {
        const float omega = std::acos(cosom);
        const float sinom = std::sin(omega);
        scale0 = std::sin((1.0f - t) * omega) / sinom;
        scale1 = std::sin(t * omega) / sinom;
    }
    // Intended: t is not clamped, so values outside [0, 1] extrapolate.
    return Normalize(a * scale0 + to * scale1);
}

cquat QuatFromAngleAxis(float degrees, const cpoint3& axis) {
    const double half = ToRadians(degrees) * 0.5;
    const float s = static_cast<float>(std::sin(half));
    return Normalize(
        MakeQuat(axis.x * s, axis.y * s, axis.z * s, static_cast<float>(std::cos(half))));
}

cquat QuatFromMatrix(const cmatrix4& matrix) {
    cmatrix4 r(matrix);
    if (!r.IsOrthonormal()) r.Orthonormalize();
    const float(&m)[4][4] = r.m;
    const float trace = m[0][0] + m[1][1] + m[2][2];
    if (trace > 0.0f) {
        float s = std::sqrt(trace + 1.0f);
        const float w = 0.5f * s;
        s = 0.5f / s;
        return MakeQuat((m[2][1] - m[1][2]) * s, (m[0][2] - m[2][0]) * s, (m[1][0] - m[0][1]) * s,
                        w);
    }
    // For finite input the largest diagonal always passes (its s is at least 1); the other
    // axes, tried in cyclic order, and the identity serve matrices holding NaN or infinity.
    const int first = LargestDiagonal(m);
    cquat q;
    for (int step = 0; step < 3; ++step)
        if (QuatFromDiagonal(m, (first + step) % 3, q)) return q;
    return cquat();
}

void MatrixFromQuat(const cquat& quat, cmatrix4& m) {
    const cquat q = Normalize(quat);
    const float x = q.x, y = q.y, z = q.z, w = q.w;
    m.Identity();
    m.m[0][0] = 1.0f - 2.0f * y * y - 2.0f * z * z;
    m.m[0][1] = 2.0f * x * y - 2.0f * w * z;
    m.m[0][2] = 2.0f * x * z + 2.0f * w * y;
    m.m[1][0] = 2.0f * x * y + 2.0f * w * z;
    m.m[1][1] = 1.0f - 2.0f * x * x - 2.0f * z * z;
    m.m[1][2] = 2.0f * y * z - 2.0f * w * x;
    m.m[2][0] = 2.0f * x * z - 2.0f * w * y;
    m.m[2][1] = 2.0f * y * z + 2.0f * w * x;
    m.m[2][2] = 1.0f - 2.0f * x * x - 2.0f * y * y;
}

cquat TransformQuat(const cmatrix4& m, const cquat& q) {
    return q * QuatFromMatrix(m);
}

cmatrix4 TransformMatrix(const cmatrix4& m, const cquat& q) {
    cmatrix4 rotation;
    MatrixFromQuat(q, rotation);
    return m * rotation;
}

cpoint3 QuatToEuler(const cquat& q) {
    cmatrix4 m;
    MatrixFromQuat(q, m);
    return EulerFromMatrix(m);
}

void QuatToEuler(const cquat& q, float angles[3]) {
    cmatrix4 m;
    MatrixFromQuat(q, m);
    EulerFromMatrix(m, angles);
}

cquat EulerToQuat(const cpoint3& angles) {
    return AxisQuat(angles.x, cpoint3(1.0f, 0.0f, 0.0f)) *
           AxisQuat(angles.y, cpoint3(0.0f, 1.0f, 0.0f)) *
           AxisQuat(angles.z, cpoint3(0.0f, 0.0f, 1.0f));
}

cquat EulerToQuat(const float angles[3]) {
    return EulerToQuat(cpoint3(angles[0], angles[1], angles[2]));
}

cpoint3 operator*(const cpoint3& p, const cquat& q) {
    return q.PointRotate(p);
}

cpoint3 operator*(const cquat& q, const cpoint3& p) {
    return q.PointRotate(p);
}
