// Rotation as an angle and an axis: cangleaxis.
//
// The angle is in degrees and turns points the way the quaternion QuatFromAngleAxis(angle,
// axis) does (see cquat.h for the row-vector convention). Euler angles are in degrees,
// applied X, then Y, then Z.
#ifndef ORVANE_CANGLEAXIS_H
#define ORVANE_CANGLEAXIS_H

#include "cmatrix4.h"
#include "coreapi.h"
#include "cpoint.h"
#include "cquat.h"

class CORE_API cangleaxis {
public:
    float angle = 0.0f;  // degrees
    cpoint3 axis;

    // No rotation: angle 0 about the zero axis, as AngleAxisFromQuat gives for the identity.
    cangleaxis() = default;
    cangleaxis(float degrees, const cpoint3& axis_) : angle(degrees), axis(axis_) {}
    // The rotation of matrix m (FromMatrix).
    explicit cangleaxis(const cmatrix4& m);
    // The rotation of quaternion q (FromQuat).
    explicit cangleaxis(const cquat& q);
    // From Euler angles in degrees, X then Y then Z (FromEuler).
    explicit cangleaxis(const cpoint3& euler);
    cangleaxis(float ex, float ey, float ez);

    // AngleAxisFromQuat(QuatFromMatrix(m)).
    cangleaxis& FromMatrix(const cmatrix4& m);
    // AngleAxisFromQuat(q).
    cangleaxis& FromQuat(const cquat& q);
    // AngleAxisFromQuat(EulerToQuat(euler)).
    cangleaxis& FromEuler(const cpoint3& euler);
    cangleaxis& FromEuler(float ex, float ey, float ez);
    // The opposite rotation: the angle is negated, the axis kept.
    cangleaxis& Invert();
    // True when the axis is zero or the angle is within 1e-4 degrees of a multiple of 360.
    bool IsIdentity() const;
};

// The rotation by `degrees` about `axis`.
CORE_API cangleaxis MakeAngleAxis(float degrees, const cpoint3& axis);
// The angle (degrees, 0 to 360) and unit axis of q, normalised first. With no rotation the
// angle is 0 and the axis (0, 0, 0).
CORE_API cangleaxis AngleAxisFromQuat(const cquat& q);
CORE_API void AngleAxisFromQuat(const cquat& q, float& degrees, cpoint3& axis);
// The opposite rotation (cangleaxis::Invert).
CORE_API cangleaxis Inverse(const cangleaxis& a);

#endif
