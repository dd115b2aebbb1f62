// Rotations as angle and axis, converted through quaternions.
#include "cangleaxis.h"

#include <algorithm>
#include <cmath>

#include "math/angles.h"

namespace {

constexpr float kIdentityDegrees = 1e-4f;

}  // namespace

cangleaxis::cangleaxis(const cmatrix4& m) {
    FromMatrix(m);
}

cangleaxis::cangleaxis(const cquat& q) {
    FromQuat(q);
}

cangleaxis::cangleaxis(const cpoint3& euler) {
    FromEuler(euler);
}

cangleaxis::cangleaxis(float ex, float ey, float ez) {
    FromEuler(ex, ey, ez);
}

cangleaxis& cangleaxis::FromMatrix(const cmatrix4& m) {
    return FromQuat(QuatFromMatrix(m));
}

cangleaxis& cangleaxis::FromQuat(const cquat& q) {
    AngleAxisFromQuat(q, angle, axis);
    return *this;
}

cangleaxis& cangleaxis::FromEuler(const cpoint3& euler) {
    return FromQuat(EulerToQuat(euler));
}

cangleaxis& cangleaxis::FromEuler(float ex, float ey, float ez) {
    return FromEuler(cpoint3(ex, ey, ez));
}

cangleaxis& cangleaxis::Invert() {
    angle = -angle;
    return *this;
}

bool cangleaxis::IsIdentity() const {
    if (axis == cpoint3()) return true;
    const float turns = std::fmod(std::fabs(angle), 360.0f);
    return std::min(turns, 360.0f - turns) <= kIdentityDegrees;
}

cangleaxis MakeAngleAxis(float degrees, const cpoint3& axis) {
    return cangleaxis(degrees, axis);
}

cangleaxis AngleAxisFromQuat(const cquat& q) {
    cangleaxis a;
    AngleAxisFromQuat(q, a.angle, a.axis);
    return a;
}

void AngleAxisFromQuat(const cquat& quat, float& degrees, cpoint3& axis) {
    const cquat q = Normalize(quat);
    // Rounding can leave |w| a hair above 1 after normalising; acos would give NaN.
    const float a = 2.0f * std::acos(std::clamp(q.w, -1.0f, 1.0f));
    const float s = std::sin(a / 2.0f);
    axis = s == 0.0f ? cpoint3() : cpoint3(q.x, q.y, q.z) / s;
    degrees = ToDegrees(a);
}

cangleaxis Inverse(const cangleaxis& a) {
    return cangleaxis(a).Invert();
}
