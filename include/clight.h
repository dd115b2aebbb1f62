// clight: the scene node that lights the scene (node type TYPE_LIGHT), a point, spot or
// directional light whose colour, cone, range and strength can be animated through its own
// parameter track. A light may aim at a target node and then always faces it.
//
// The light shines along its local -Z axis. Cone angles are full angles in degrees; times are
// animation ticks. The five keyed parameters (colour, hotspot, falloff, range, strength) are
// held both as current values (what the light shows at the current animation time) and as
// keys of the light track.
#ifndef ORVANE_CLIGHT_H
#define ORVANE_CLIGHT_H

#include "ccolor.h"
#include "cio.h"
#include "cnode.h"
#include "coreapi.h"
#include "cparamanim.h"
#include "cpoint.h"
#include "cquat.h"

// Light sub-types (GetLightType), kept as the node's sub-type id.
constexpr unsigned int LIGHT_POINT = 0;
constexpr unsigned int LIGHT_SPOT = 1;
constexpr unsigned int LIGHT_DIRECTIONAL = 2;

class CORE_API clight : public cnode {
public:
    // A point light named "Light1" in the lights' wire colour of the graphics settings, with
    // white colour, hotspot 43, falloff 45, range 256, strength 1 (one key at time 0), distance
    // 128, shadow map 256 with bias 4, casting shadows, no attenuation and no target.
    clight();
    // Copy the light's own state: sub-type, every light field, the target pointer and the
    // light track. The node part (name, transform, hierarchy) is that of a new light.
    clight(const clight& other);
    clight& operator=(const clight& other);
    ~clight() override;

    void Delete() override;
    // cnode::Clone, then, when `target` is a light, this light's own state as operator= copies.
    void Clone(int time, cnode& target) const override;
    // Without a target (or one being deleted) the node's own rotation. With one, the world
    // look-at rotation built from the direction from the light to the target at `time`: its Z
    // axis (matrix row 2) points at the target, and the roll of the light's own Y axis is kept.
    void SetRotation(int time, const cquat& rotation) override;
    cquat GetRotation(int time) const override;
    // 1 when the light track or the node track has a key at exactly `time`.
    int HasKey(int time) const override;
    // Refreshes the current values from the light track, then the node's transform.
    void UpdateTimeIdle() override;
    // Keys the current values (and the transform) at the current time.
    void SnapKey() override;
    // Removes the light and node keys at `time`; never the ones at time 0.
    void DeleteKey(int time) override;
    // cnode::HitTest with the tolerance widened by 2.5 pixels.
    int HitTest(int time, CGLWindow* window, int x, int y, float* depth, float tolerance) override;
    // The light record follows the node record. Load returns 0 when the node record, a light
    // field or the track fails; Save returns 0 when the node record fails, else the track's
    // result.
    int Load(cio_load& in, unsigned long version) override;
    int Save(cio_save& out) const override;
    // Drops a deleted target (message 1, keeping the facing) and follows a replaced one
    // (message 3); or-ed with cnode::HandleMessage.
    int HandleMessage(unsigned long msg, void* a, void* b) override;

    // Sets the sub-type, places the light at `pos` at the current time and turns it to the
    // look-at rotation of direction `a` and up `b` (MatrixLookAt).
    void Create(unsigned int type, const cpoint3& pos, const cpoint3& a, const cpoint3& b);
    void Create(unsigned int type, float px, float py, float pz, float ax, float ay, float az,
                float bx, float by, float bz);

    // Keyed parameters at animation time `t`: the current value at the current time, else the
    // light track interpolated at `t`. Setters clamp: hotspot to 0..current falloff, falloff to
    // 0..179.5 (lowering the hotspot at `t` below it), range to its absolute value, strength
    // to 0 and above.
    void SetLightColor(int t, const ccolor& color);
    ccolor GetLightColor(int t) const;
    void SetHotSpot(int t, float degrees);
    float GetHotSpot(int t) const;
    void SetFallOff(int t, float degrees);
    float GetFallOff(int t) const;
    void SetRange(int t, float range);
    float GetRange(int t) const;
    // Off the current time the key at `t` takes the light's current strength, not `strength`.
    void SetStrength(int t, float strength);
    float GetStrength(int t) const;

    // Display and aiming distance, never negative.
    void SetDistance(float d) { distance = d < 0.0f ? 0.0f : d; }
    float GetDistance() const { return distance; }
    void SetAttenuationFlag(int on) { attenuation = on; }
    int GetAttenuationFlag() const { return attenuation; }
    void SetAttenuationType(int type) { attenuationType = type; }
    int GetAttenuationType() const { return attenuationType; }
    void SetLightCastShadowFlag(int on) { lightCastShadow = on; }
    int GetLightCastShadowFlag() const { return lightCastShadow; }
    void SetShadowMapFlag(int on) { shadowMap = on; }
    int GetShadowMapFlag() const { return shadowMap; }
    // Edge of the shadow map in texels, kept within 8..2048.
    void SetShadowMapSize(int size);
    int GetShadowMapSize() const { return shadowMapSize; }
    // Depth bias, kept within 0..1000.
    void SetShadowMapBias(float bias);
    float GetShadowMapBias() const { return shadowMapBias; }
    void SetVolumeFlag(int on) { volume = on; }
    int GetVolumeFlag() const { return volume; }
    // LIGHT_POINT, LIGHT_SPOT or LIGHT_DIRECTIONAL.
    void SetLightType(unsigned int type) { SetSubTypeID(type); }
    unsigned int GetLightType() const { return static_cast<unsigned int>(GetSubTypeID()); }
    // The node the light faces (not owned); itself is ignored, and null keeps the facing the
    // old target gave.
    void SetTarget(cnode* node);
    cnode* GetTarget() const { return target; }
    // The light track, for direct editing.
    clightanim* GetLightAnimPtr() { return &lightAnim; }

    // Sets up OpenGL light GL_LIGHT0 + `index` from this light at time `t` in the current
    // modelview space: ambient black, diffuse the light colour, specular white, position
    // (x, y, z, 1) for every sub-type, spot direction along local -Z, constant attenuation
    // 1/strength, spot exponent and cut-off by sub-type; enables GL_LIGHTING, the light and
    // GL_NORMALIZE.
    void PushLight(int t, unsigned int index);

private:
    // The key of every current value at time t.
    clightkey CurrentKey(int t) const;
    void SetCurrent(const clightkey& key);
    void CopyLight(const clight& other);

    ccolor lightColor;
    float distance;
    float hotspot;
    float falloff;
    int attenuation;
    float range;
    int attenuationType;
    float strength;
    int lightCastShadow;
    cnode* target;
    int shadowMap;
    int shadowMapSize;
    float shadowMapBias;
    int volume;
    clightanim lightAnim;
};

// A new default light owned by the caller, or null when memory runs out.
CORE_API clight* CreateNewLight();

#endif
