// ccamera: the scene node through which a viewport or the raytracer looks (node type
// TYPE_CAMERA). Its field of view can be animated through its own track; a camera may aim at a
// target node and then always faces it.
//
// The camera looks along its local -Z axis with +Y up. Angles are degrees, times animation
// ticks. The field of view is held both as a current value (what the camera shows at the
// current animation time) and as keys of the camera track.
#ifndef ORVANE_CCAMERA_H
#define ORVANE_CCAMERA_H

#include "cio.h"
#include "cnode.h"
#include "coreapi.h"
#include "cparamanim.h"
#include "cpoint.h"
#include "cquat.h"

class CORE_API ccamera : public cnode {
public:
    // A perspective camera named "Camera1" in the cameras' wire colour of the graphics
    // settings: field of view 53 (one key at time 0), distance 128, near 1, far 4096, no target.
    ccamera();
    // Copy the camera's own state: every camera field, the target pointer and the camera
    // track. The node part (name, transform, hierarchy) is that of a new camera.
    ccamera(const ccamera& other);
    ccamera& operator=(const ccamera& other);
    ~ccamera() override;

    void Delete() override;
    // cnode::Clone, then, when `target` is a camera, this camera's own state as operator= does.
    void Clone(int time, cnode& target) const override;
    // Without a target (or one being deleted) the node's own rotation. With one, the world
    // look-at rotation built from the direction from the camera to the target at `time`: its Z
    // axis (matrix row 2) points at the target, and the roll of the camera's own Y axis is kept.
    void SetRotation(int time, const cquat& rotation) override;
    cquat GetRotation(int time) const override;
    // 1 when the camera track or the node track has a key at exactly `time`.
    int HasKey(int time) const override;
    // Refreshes the current field of view from the track, then the node's transform.
    void UpdateTimeIdle() override;
    // Keys the current field of view (and the transform) at the current time.
    void SnapKey() override;
    // Removes the camera and node keys at `time`; never the ones at time 0.
    void DeleteKey(int time) override;
    // cnode::HitTest with the tolerance widened by 2.5 pixels.
    int HitTest(int time, CGLWindow* window, int x, int y, float* depth, float tolerance) override;
    // The camera record follows the node record. Load returns 0 when the node record, a
    // camera field or the track fails; Save returns 0 when the node record fails, else the
    // track's result.
    int Load(cio_load& in, unsigned long version) override;
    int Save(cio_save& out) const override;
    // Drops a deleted target (message 1, keeping the facing) and follows a replaced one
    // (message 3); or-ed with cnode::HandleMessage.
    int HandleMessage(unsigned long msg, void* a, void* b) override;

    // Places the camera at `pos` at the current time and turns it to the look-at rotation of
    // direction `a` and up `b` (MatrixLookAt).
    void Create(const cpoint3& pos, const cpoint3& a, const cpoint3& b);
    void Create(float px, float py, float pz, float ax, float ay, float az, float bx, float by,
                float bz);

    // The vertical field of view in degrees at time `t`, kept within 0..179: the current
    // value at the current time, else the camera track interpolated at `t`.
    void SetFOV(int t, float degrees);
    float GetFOV(int t) const;

    // Display and aiming distance, never negative.
    void SetDistance(float d) { distance = d < 0.0f ? 0.0f : d; }
    float GetDistance() const { return distance; }
    // Near clip distance, never below 0.1.
    void SetDepthNear(float d) { depthNear = d < 0.1f ? 0.1f : d; }
    float GetDepthNear() const { return depthNear; }
    // Far clip distance, stored as given.
    void SetDepthFar(float d) { depthFar = d; }
    float GetDepthFar() const { return depthFar; }
    // Orthographic (non-zero) instead of perspective projection.
    void Ortho(int on) { ortho = on; }
    int IsOrtho() const { return ortho; }
    // The node the camera faces (not owned); itself is ignored, and null keeps the facing the
    // old target gave.
    void SetTarget(cnode* node);
    cnode* GetTarget() const { return target; }
    // The camera track, for direct editing.
    ccamanim* GetCamAnimPtr() { return &camAnim; }

private:
    // The key of the current field of view at time t.
    ccamkey CurrentKey(int t) const { return ccamkey(t, fov); }
    void CopyCamera(const ccamera& other);

    float fov;
    float distance;
    float depthNear;
    float depthFar;
    int ortho;
    cnode* target;
    ccamanim camAnim;
};

// A new default camera owned by the caller, or null when memory runs out.
CORE_API ccamera* CreateNewCamera();

#endif
