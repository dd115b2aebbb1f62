// Rotation quaternion: cquat.
//
// Stored x, y, z, w; w is the scalar part. The product a * b is the Hamilton product; under
// the library's row-vector convention it rotates by a, then by b, so that
// MatrixFromQuat(a * b) = MatrixFromQuat(a) x MatrixFromQuat(b). A point p is rotated by q as
// the vector part of Inverse(q) * (p, 0) * q, which equals p x MatrixFromQuat(q). Angles are
// in degrees; Euler angles are applied X, then Y, then Z.
#ifndef ORVANE_CQUAT_H
#define ORVANE_CQUAT_H

#include <cmath>

#include "cmatrix4.h"
#include "coreapi.h"
#include "cpoint.h"

class CORE_API cquat {
public:
    float x = 0.0f, y = 0.0f, z = 0.0f, w = 1.0f;

    // The identity rotation (0, 0, 0, 1).
    cquat() = default;
    // The rotation of matrix m (QuatFromMatrix).
    explicit cquat(const cmatrix4& m);
    // From Euler angles in degrees, X then Y then Z (EulerToQuat).
    cquat(float ex, float ey, float ez);
    explicit cquat(const cpoint3& euler);
    // The rotation by `degrees` about `axis` (QuatFromAngleAxis).
    cquat(const cpoint3& axis, float degrees);

    // Replaces this quaternion with EulerToQuat of the angles (degrees, X then Y then Z).
    cquat& FromEuler(float ex, float ey, float ez);
    cquat& FromEuler(const cpoint3& euler);

    // The conjugate divided by the squared length. The zero quaternion has no inverse and
    // gives non-finite components.
    cquat& Invert();
    // True when x, y and z are within 1e-6 of 0 and w within 1e-6 of 1 or -1 (both signs
    // are the rotation by 0 degrees).
    bool IsIdentity() const;
    // True when the length is within 1e-5 of 1.
    bool IsUnit() const;
    // Divides by the length; a quaternion of length exactly 0 is left unchanged.
    cquat& Normalize();
    // sqrt(x^2 + y^2 + z^2 + w^2).
    float Length() const { return std::sqrt(x * x + y * y + z * z + w * w); }
    // Negates x, y and z.
    cquat& Conjugate() {
        x = -x;
        y = -y;
        z = -z;
        return *this;
    }
    // p rotated by this quaternion: the vector part of Inverse(q) * (p, 0) * q.
    cpoint3 PointRotate(const cpoint3& p) const;

    // Sum and difference component by component; Hamilton product; a / b = a * Inverse(b).
    cquat& operator+=(const cquat& q) {
        x += q.x;
        y += q.y;
        z += q.z;
        w += q.w;
        return *this;
    }
    cquat& operator-=(const cquat& q) {
        x -= q.x;
        y -= q.y;
        z -= q.z;
        w -= q.w;
        return *this;
    }
    cquat& operator*=(const cquat& b) {
        // Both operands copied first: b may be this quaternion itself (q *= q).
        const cquat a = *this, q = b;
        x = q.w * a.x + a.w * q.x + (a.y * q.z - a.z * q.y);
        y = q.w * a.y + a.w * q.y + (a.z * q.x - a.x * q.z);
        z = q.w * a.z + a.w * q.z + (a.x * q.y - a.y * q.x);
        w = a.w * q.w - (a.x * q.x + a.y * q.y + a.z * q.z);
        return *this;
    }
    cquat& operator/=(const cquat& q);

    // A float s acts as the real quaternion (0, 0, 0, s): + and - change w only, * and /
    // scale all four components.
    cquat& operator+=(float s) {
        w += s;
        return *this;
    }
    cquat& operator-=(float s) {
        w -= s;
        return *this;
    }
    cquat& operator*=(float s) {
        x *= s;
        y *= s;
        z *= s;
        w *= s;
        return *this;
    }
    cquat& operator/=(float s) { return *this *= 1.0f / s; }

    friend cquat operator+(cquat a, const cquat& b) { return a += b; }
    friend cquat operator-(cquat a, const cquat& b) { return a -= b; }
    friend cquat operator*(cquat a, const cquat& b) { return a *= b; }
    friend cquat operator/(cquat a, const cquat& b) { return a /= b; }
    friend cquat operator+(cquat a, float s) { return a += s; }
    friend cquat operator-(cquat a, float s) { return a -= s; }
    friend cquat operator*(cquat a, float s) { return a *= s; }
    friend cquat operator*(float s, cquat a) { return a *= s; }
    friend cquat operator/(cquat a, float s) { return a /= s; }
    // All four components negated: the same rotation.
    friend cquat operator-(cquat a) { return a *= -1.0f; }
};

// The quaternion with these components.
inline cquat MakeQuat(float x, float y, float z, float w) {
    cquat q;
    q.x = x;
    q.y = y;
    q.z = z;
    q.w = w;
    return q;
}

// x a.x + y a.y + z a.z + w a.w.
inline float DotProd(const cquat& a, const cquat& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
}

// Copying forms of the members.
inline cquat Conjugate(cquat q) {
    return q.Conjugate();
}
inline cquat Inverse(cquat q) {
    return q.Invert();
}
inline cquat Normalize(cquat q) {
    return q.Normalize();
}

inline cquat& cquat::Invert() {
    return Conjugate() /= x * x + y * y + z * z + w * w;
}

inline cquat& cquat::operator/=(const cquat& q) {
    return *this *= Inverse(q);
}

// Spherical interpolation from a (t = 0) to b (t = 1) along the shorter arc, normalised.
// Nearly equal rotations (1 - |a . b| <= 0.00001) are blended linearly. t is not clamped:
// values outside [0, 1] extrapolate along the same great circle.
CORE_API cquat Slerp(const cquat& a, const cquat& b, float t);
// The rotation by `degrees` about `axis` (normalised after construction).
CORE_API cquat QuatFromAngleAxis(float degrees, const cpoint3& axis);
// The rotation of matrix m; a matrix that is not orthonormal is orthonormalised first. The
// exact inverse of MatrixFromQuat for a unit quaternion, up to sign.
CORE_API cquat QuatFromMatrix(const cmatrix4& m);
// m = the rotation matrix of q (normalised first), with no translation.
CORE_API void MatrixFromQuat(const cquat& q, cmatrix4& m);
// q * QuatFromMatrix(m): rotates by q, then by m's rotation.
CORE_API cquat TransformQuat(const cmatrix4& m, const cquat& q);
// m x MatrixFromQuat(q): transforms by m, then rotates by q.
CORE_API cmatrix4 TransformMatrix(const cmatrix4& m, const cquat& q);
// EulerFromMatrix(MatrixFromQuat(q)): Euler angles in degrees, X then Y then Z.
CORE_API cpoint3 QuatToEuler(const cquat& q);
CORE_API void QuatToEuler(const cquat& q, float angles[3]);
// qx * qy * qz from the half-angle quaternions of Euler angles in degrees; an angle of
// exactly 0 contributes the identity.
CORE_API cquat EulerToQuat(const cpoint3& angles);
CORE_API cquat EulerToQuat(const float angles[3]);

// p rotated by q (cquat::PointRotate); both orders give the same result.
CORE_API cpoint3 operator*(const cpoint3& p, const cquat& q);
CORE_API cpoint3 operator*(const cquat& q, const cpoint3& p);

#endif
