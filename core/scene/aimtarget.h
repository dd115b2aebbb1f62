// Internal: aiming a node (a light or a camera) at a target node. While the target is set the
// node faces it, keeping only a roll of its own; the node's own rotation key holds that roll.
#ifndef ORVANE_CORE_SCENE_AIMTARGET_H
#define ORVANE_CORE_SCENE_AIMTARGET_H

#include <algorithm>
#include <cmath>

#include "animclock.h"
#include "cmatrix4.h"
#include "cnode.h"
#include "cpoint.h"
#include "cquat.h"
#include "math/angles.h"
#include "nodelist.h"
#include "scene/loadingnodes.h"

namespace aimtarget {

// A target that is being deleted no longer steers the node.
inline bool Steers(const cnode* target) {
    return target && !(target->GetFlags() & FLAG_DELETED);
}

// The look-at matrix at `time` built from the direction from `self` to `target`, so that its
// Z row points at the target (as Create's look-at points Z along its direction), with the Y
// row of self's own (untargeted) matrix as up. False when the two coincide or up lies along
// the direction.
inline bool LookAt(const cnode& self, const cnode& target, int time, cmatrix4& m) {
    const cpoint3 toward = target.GetPosition(time) - self.GetPosition(time);
    cmatrix4 own;
    MatrixFromQuat(self.cnode::GetRotation(time), own);
    const cpoint3 up = own.GetRow3(1) * self.GetScale(time).y;
    if (LengthSq(CrossProd(up, toward)) <= 0.0f) return false;
    MatrixLookAt(m, toward, up);
    return true;
}

// The world rotation of `self` at `time`: facing the target when one steers it, else its own.
inline cquat Rotation(const cnode& self, const cnode* target, int time) {
    cmatrix4 m;
    if (Steers(target) && LookAt(self, *target, time, m)) return QuatFromMatrix(m);
    return self.cnode::GetRotation(time);
}

// Stores `rotation` at `time`; under a target only its roll about the facing axis is kept:
// the unsigned angle between the X rows of the given and the facing rotation.
inline void SetRotation(cnode& self, const cnode* target, int time, const cquat& rotation) {
    cmatrix4 look;
    if (!Steers(target) || !LookAt(self, *target, time, look)) {
        self.cnode::SetRotation(time, rotation);
        return;
    }
    cmatrix4 given;
    MatrixFromQuat(rotation, given);
    const float cosine =
        std::clamp(DotProd(Normalize(look.GetRow3(0)), Normalize(given.GetRow3(0))), -1.0f, 1.0f);
    // Intended: the roll is an unsigned angle, so rolls to either side come out positive.
    const float roll = ToDegrees(std::acos(cosine));
    self.cnode::SetRotation(time, EulerToQuat(cpoint3(0.0f, 0.0f, roll)) * QuatFromMatrix(look));
}

// Replaces `target` by `node` for `self`. A node never targets itself; dropping a target
// freezes the facing it gave as the node's own rotation at the current time.
inline void SetTarget(cnode& self, cnode*& target, cnode* node) {
    if (node == &self) return;
    if (target && !node) {
        const int now = GetAnimTime();
        // The facing shown now: towards the target, or the node's own while the target carries
        // the deleted flag, so that dropping a deleted target does not turn the node.
        const cquat facing = self.GetRotation(now);
        target = nullptr;
        self.SetRotation(now, facing);
        return;
    }
    target = node;
}

// Reacts to node messages about the target: a deleted target is dropped (freezing the
// facing), a replaced one is swapped for its replacement. 1 when the target changed.
inline int HandleMessage(cnode& self, cnode*& target, unsigned long msg, void* a, void* b) {
    if (!target || target != a) return 0;
    if (msg == MSG_NODE_DELETED) {
        SetTarget(self, target, nullptr);
        return 1;
    }
    if (msg == MSG_NODE_REPLACED) {
        target = static_cast<cnode*>(b);
        return 1;
    }
    return 0;
}

// Sets `target` to the node a loaded record names: the loader's node of that name, never
// `self`. While a project file loads, a name borne only by a later record is resolved once
// every record has been read; otherwise an unknown name leaves no target.
inline void LoadTarget(const cnode& self, char const* name, cnode*& target) {
    cnode* found = name[0] ? NodeList::FindNode(name) : nullptr;
    target = found == &self ? nullptr : found;
    if (!found && name[0]) DeferLink(&self, name, &target);
}

}  // namespace aimtarget

#endif
