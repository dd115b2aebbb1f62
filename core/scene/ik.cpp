// Cyclic coordinate descent over a node's chain of ancestors.
#include "ik.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "cnode.h"
#include "math/angles.h"

namespace {

// Below this length a direction is undefined and the joint is left alone.
constexpr float MIN_ARM = 1e-6f;

// The joints that may turn: nearest ancestor first, at most the effector's recursion depth,
// stopping before the first locked one.
std::vector<cnode*> JointChain(const cnode* effector) {
    std::vector<cnode*> chain;
    for (cnode* joint = effector->GetParent();
         joint && !joint->IsIKLocked() &&
         static_cast<int>(chain.size()) < effector->GetIKRecurseNum();
         joint = joint->GetParent())
        chain.push_back(joint);
    return chain;
}

// Any unit vector perpendicular to the unit vector v.
cpoint3 Perpendicular(const cpoint3& v) {
    const cpoint3 other = std::fabs(v.x) < 0.9f ? cpoint3(1, 0, 0) : cpoint3(0, 1, 0);
    return Normalize(CrossProd(v, other));
}

// The smallest rotation (row vectors, v * q) turning direction `from` toward direction `to`,
// by at most `maxDegrees`.
cquat RotationBetween(cpoint3 from, cpoint3 to, float maxDegrees) {
    from.Normalize();
    to.Normalize();
    // For row vectors a positive angle turns clockwise seen from the axis's tip, so the axis
    // that turns `from` toward `to` is to x from.
    cpoint3 axis = CrossProd(to, from);
    const float sine = Length(axis), cosine = DotProd(from, to);
    if (sine < MIN_ARM) {
        if (cosine > 0.0f) return cquat();
        axis = Perpendicular(from);
    }
    // atan2 keeps small angles exact where acos of a cosine rounded to 1 would give 0.
    const auto degrees = static_cast<float>(std::atan2(sine, cosine) * kDegreesPerRadianDouble);
    return QuatFromAngleAxis(std::min(degrees, maxDegrees), Normalize(axis));
}

float ClampAngle(float degrees, float lo, float hi) {
    return degrees < lo ? lo : (degrees > hi ? hi : degrees);
}

// The world rotation `world` of `joint` with its Euler angles relative to the parent, measured
// from the initial rotation, clamped into the joint's limits.
cquat LimitRotation(const cnode& joint, int time, const cquat& world) {
    const cnode* parent = joint.GetParent();
    const cquat parentRot = parent ? parent->GetRotation(time) : cquat();
    const cquat initial = joint.GetIKInitialRot();
    const cpoint3 euler = QuatToEuler(world * Inverse(parentRot) * Inverse(initial));
    const cpoint3 lo = joint.GetIKMinRot(), hi = joint.GetIKMaxRot();
    const cpoint3 clamped(ClampAngle(euler.x, lo.x, hi.x), ClampAngle(euler.y, lo.y, hi.y),
                          ClampAngle(euler.z, lo.z, hi.z));
    return EulerToQuat(clamped) * initial * parentRot;
}

// One CCD step: turns `joint` about its world position so that the effector points at the
// target.
void TurnJoint(cnode& joint, int time, const cpoint3& effector, const cpoint3& target) {
    const cpoint3 pivot = joint.GetPosition(time);
    const cpoint3 toEffector = effector - pivot, toTarget = target - pivot;
    if (Length(toEffector) < MIN_ARM || Length(toTarget) < MIN_ARM) return;
    const float maxDegrees =
        joint.IsIKDampingEnabled() ? std::max(joint.GetIKDampWidth(), 0.0f) : 180.0f;
    cquat world =
        Normalize(joint.GetRotation(time) * RotationBetween(toEffector, toTarget, maxDegrees));
    if (joint.IsIKDOFEnabled()) world = Normalize(LimitRotation(joint, time, world));
    joint.SetRotation(time, world);
}

}  // namespace

int IK_ComputeCCD(int time, const cpoint3& target, cnode* effector, int iterations,
                  float tolerance) {
    if (!effector) return 0;
    const float reach = tolerance > 0.0f ? tolerance : IK_DEFAULT_TOLERANCE;
    const int passes = iterations > 0 ? iterations : effector->GetIKNumIterations();
    const std::vector<cnode*> chain = JointChain(effector);
    const auto reached = [&] { return Distance(effector->GetPosition(time), target) <= reach; };
    for (int pass = 0; pass < passes && !chain.empty() && !reached(); ++pass)
        for (cnode* joint : chain) TurnJoint(*joint, time, effector->GetPosition(time), target);
    return reached() ? 1 : 0;
}
