// Inverse kinematics: cyclic coordinate descent (CCD) over a node's chain of ancestors.
//
// The chain is the effector's parent, grandparent and so on, nearest first: at most
// effector->GetIKRecurseNum() nodes, ending before the first locked node (IsIKLocked), which
// neither rotates nor lets the nodes above it rotate. Each pass visits the chain once and turns
// every joint about its own world position, by the smallest rotation that points the
// joint-to-effector direction at the joint-to-target direction. A joint with damping enabled
// turns by at most its damping width (degrees) per step; a joint with limits enabled keeps the
// Euler angles (degrees, X then Y then Z) of its rotation relative to the parent, measured from
// its IK initial rotation, within [GetIKMinRot(), GetIKMaxRot()]. With the default identity
// initial rotation the limits apply to the plain rotation relative to the parent.
//
// Rotations are written with SetRotation at the given time, so they follow the node's key
// rules (keys in animation mode).
#ifndef ORVANE_IK_H
#define ORVANE_IK_H

#include "coreapi.h"
#include "cpoint.h"

class cnode;

// The distance tolerance used when IK_ComputeCCD is given none, in world units.
constexpr float IK_DEFAULT_TOLERANCE = 0.001f;

// Moves `effector` toward the world point `target` at `time` by rotating its ancestors.
// `iterations` is the number of passes over the chain when above 0, otherwise the effector's
// GetIKNumIterations(). `tolerance` is the world distance at which the target counts as
// reached (IK_DEFAULT_TOLERANCE when 0 or less); the passes stop once it is. Returns 1 when the
// effector ends within the tolerance of the target, 0 otherwise (an unreachable target leaves
// the chain stretched toward it) and for a null effector.
CORE_API int IK_ComputeCCD(int time, const cpoint3& target, cnode* effector, int iterations,
                           float tolerance);

#endif
