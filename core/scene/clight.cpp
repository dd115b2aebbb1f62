// Lights: keyed parameters, targeting, the OpenGL set-up and the light record.
#include "clight.h"

#include <GL/gl.h>

#include <cmath>
#include <new>

#include "animclock.h"
#include "cgfx.h"
#include "ciofields.h"
#include "cmatrix4.h"
#include "scene/aimtarget.h"
#include "scene/keyedparams.h"
#include "scene/recordconstruction.h"

namespace {

constexpr float kMaxFallOff = 179.5f;
constexpr int kMinShadowMapSize = 8;
constexpr int kMaxShadowMapSize = 2048;
constexpr float kMaxShadowMapBias = 1000.0f;
// Records from this version on carry the attenuation type, the shadow-map fields and the
// volume flag; older ones carry two unused words after the strength instead.
constexpr unsigned long kShadowMapVersion = 5;
// Records from this version on carry the attenuation flag and the range.
constexpr unsigned long kRangeVersion = 4;
// Records from this version on name the target.
constexpr unsigned long kTargetVersion = 3;
// Records from this version on have 64-byte names, older ones 32-byte names.
constexpr unsigned long kLongNameVersion = 13;

unsigned int TargetNameSize(unsigned long version) {
    return version >= kLongNameVersion ? 64u : 32u;
}

}  // namespace

clight::clight() : cnode("Light1", GetGfxInfo().lightcolor) {
    SetTypeID(TYPE_LIGHT);
    SetSubTypeID(LIGHT_POINT);
    SetCurrent(clightkey());
    distance = 128.0f;
    attenuation = 0;
    attenuationType = 0;
    lightCastShadow = 1;
    target = nullptr;
    shadowMap = 0;
    shadowMapSize = 256;
    shadowMapBias = 4.0f;
    volume = 0;
    // A light made for its record takes its keys from the record.
    if (!RecordConstruction::Active()) lightAnim.SetKey(clightkey());
}

clight::clight(const clight& other) : clight() {
    CopyLight(other);
}

clight& clight::operator=(const clight& other) {
    if (this != &other) CopyLight(other);
    return *this;
}

clight::~clight() = default;

void clight::CopyLight(const clight& other) {
    SetSubTypeID(other.GetSubTypeID());
    lightColor = other.lightColor;
    distance = other.distance;
    hotspot = other.hotspot;
    falloff = other.falloff;
    attenuation = other.attenuation;
    range = other.range;
    attenuationType = other.attenuationType;
    strength = other.strength;
    lightCastShadow = other.lightCastShadow;
    target = other.target;
    shadowMap = other.shadowMap;
    shadowMapSize = other.shadowMapSize;
    shadowMapBias = other.shadowMapBias;
    volume = other.volume;
    lightAnim = other.lightAnim;
}

void clight::Delete() {
    delete this;
}

void clight::Clone(int time, cnode& targetNode) const {
    cnode::Clone(time, targetNode);
    if (auto* light = dynamic_cast<clight*>(&targetNode)) *light = *this;
}

clight* CreateNewLight() {
    return new (std::nothrow) clight;
}

void clight::Create(unsigned int type, const cpoint3& pos, const cpoint3& a, const cpoint3& b) {
    SetLightType(type);
    const int now = GetAnimTime();
    SetPosition(now, pos);
    cmatrix4 m;
    MatrixLookAt(m, a, b);
    SetRotation(now, QuatFromMatrix(m));
}

void clight::Create(unsigned int type, float px, float py, float pz, float ax, float ay, float az,
                    float bx, float by, float bz) {
    Create(type, cpoint3(px, py, pz), cpoint3(ax, ay, az), cpoint3(bx, by, bz));
}

// ---------------------------------------------------------------------------------------------
// Keyed parameters

clightkey clight::CurrentKey(int t) const {
    return clightkey(t, lightColor, falloff, hotspot, range, strength);
}

void clight::SetCurrent(const clightkey& key) {
    lightColor = key.color;
    hotspot = key.hotspot;
    falloff = key.falloff;
    range = key.range;
    strength = key.strength;
}

void clight::SetLightColor(int t, const ccolor& c) {
    keyedparams::Write(lightAnim, t, &clightkey::color, c, lightColor,
                       [this](int at) { return CurrentKey(at); });
}

ccolor clight::GetLightColor(int t) const {
    return keyedparams::Read(lightAnim, t, &clightkey::color, lightColor);
}

void clight::SetHotSpot(int t, float degrees) {
    float v = degrees < 0.0f ? 0.0f : degrees;
    if (v > falloff) v = falloff;
    keyedparams::Write(lightAnim, t, &clightkey::hotspot, v, hotspot,
                       [this](int at) { return CurrentKey(at); });
}

float clight::GetHotSpot(int t) const {
    return keyedparams::Read(lightAnim, t, &clightkey::hotspot, hotspot);
}

void clight::SetFallOff(int t, float degrees) {
    const float v = degrees < 0.0f ? 0.0f : (degrees > kMaxFallOff ? kMaxFallOff : degrees);
    keyedparams::Write(lightAnim, t, &clightkey::falloff, v, falloff,
                       [this](int at) { return CurrentKey(at); });
    if (GetHotSpot(t) > v) SetHotSpot(t, v);
}

float clight::GetFallOff(int t) const {
    return keyedparams::Read(lightAnim, t, &clightkey::falloff, falloff);
}

void clight::SetRange(int t, float r) {
    keyedparams::Write(lightAnim, t, &clightkey::range, std::fabs(r), range,
                       [this](int at) { return CurrentKey(at); });
}

float clight::GetRange(int t) const {
    return keyedparams::Read(lightAnim, t, &clightkey::range, range);
}

void clight::SetStrength(int t, float s) {
    const float v = s < 0.0f ? 0.0f : s;
    // Intended: off the current time the key takes the light's current strength, not `s`.
    const float keyed = t == GetAnimTime() ? v : strength;
    keyedparams::Write(lightAnim, t, &clightkey::strength, keyed, strength,
                       [this](int at) { return CurrentKey(at); });
}

float clight::GetStrength(int t) const {
    return keyedparams::Read(lightAnim, t, &clightkey::strength, strength);
}

void clight::UpdateTimeIdle() {
    SetCurrent(keyedparams::KeyAt(lightAnim, GetAnimTime()));
    cnode::UpdateTimeIdle();
}

void clight::SnapKey() {
    keyedparams::Snap(lightAnim, [this](int at) { return CurrentKey(at); });
    cnode::SnapKey();
}

void clight::DeleteKey(int time) {
    // Intended: the keys at time 0 are never removed.
    if (time == 0) return;
    lightAnim.RemoveKey(time);
    UpdateTimeIdle();
    cnode::DeleteKey(time);
}

int clight::HasKey(int time) const {
    return lightAnim.KeyExists(time) ? 1 : cnode::HasKey(time);
}

// ---------------------------------------------------------------------------------------------
// Plain parameters

void clight::SetShadowMapSize(int size) {
    shadowMapSize = size < kMinShadowMapSize
                        ? kMinShadowMapSize
                        : (size > kMaxShadowMapSize ? kMaxShadowMapSize : size);
}

void clight::SetShadowMapBias(float bias) {
    shadowMapBias = bias < 0.0f ? 0.0f : (bias > kMaxShadowMapBias ? kMaxShadowMapBias : bias);
}

// ---------------------------------------------------------------------------------------------
// Targeting

void clight::SetTarget(cnode* node) {
    aimtarget::SetTarget(*this, target, node);
}

cquat clight::GetRotation(int time) const {
    return aimtarget::Rotation(*this, target, time);
}

void clight::SetRotation(int time, const cquat& q) {
    aimtarget::SetRotation(*this, target, time, q);
}

int clight::HandleMessage(unsigned long msg, void* a, void* b) {
    const int reacted = aimtarget::HandleMessage(*this, target, msg, a, b);
    return reacted | cnode::HandleMessage(msg, a, b);
}

int clight::HitTest(int time, CGLWindow* window, int x, int y, float* depth, float tolerance) {
    // The icon's thin lines are hard to hit exactly.
    return cnode::HitTest(time, window, x, y, depth, tolerance + 2.5f);
}

// ---------------------------------------------------------------------------------------------
// OpenGL

void clight::PushLight(int t, unsigned int index) {
    const GLenum light = GL_LIGHT0 + index;
    const unsigned int type = GetLightType();
    const cpoint3 p = GetPosition(t);
    const cpoint3 dir = -GetNodeTM(t, TM_ROT).GetRow3(2);
    const ccolor diffuse = GetLightColor(t);

    const GLfloat ambient[4] = {0.0f, 0.0f, 0.0f, 1.0f};
    const GLfloat diffuseRGBA[4] = {diffuse.r, diffuse.g, diffuse.b, diffuse.a};
    const GLfloat specular[4] = {1.0f, 1.0f, 1.0f, 1.0f};
    // Intended: directional lights too are placed as positional lights (w = 1).
    const GLfloat position[4] = {p.x, p.y, p.z, 1.0f};
    const GLfloat direction[3] = {dir.x, dir.y, dir.z};
    glLightfv(light, GL_AMBIENT, ambient);
    glLightfv(light, GL_DIFFUSE, diffuseRGBA);
    glLightfv(light, GL_SPECULAR, specular);
    glLightfv(light, GL_POSITION, position);
    glLightfv(light, GL_SPOT_DIRECTION, direction);

    const float s = GetStrength(t);
    glLightf(light, GL_CONSTANT_ATTENUATION, s != 0.0f ? 1.0f / s : 0.0f);
    glLightf(light, GL_LINEAR_ATTENUATION, 0.0f);
    glLightf(light, GL_QUADRATIC_ATTENUATION, 0.0f);

    if (type == LIGHT_SPOT) {
        const float fall = GetFallOff(t);
        // A cone of no width has no soft edge to shape.
        const float exponent = fall > 0.0f ? 128.0f - 128.0f * GetHotSpot(t) / fall : 0.0f;
        glLightf(light, GL_SPOT_EXPONENT, exponent);
        glLightf(light, GL_SPOT_CUTOFF, fall / 2.0f);
    } else if (type == LIGHT_DIRECTIONAL) {
        glLightf(light, GL_SPOT_EXPONENT, 0.0f);
        glLightf(light, GL_SPOT_CUTOFF, 90.0f);
    } else if (type == LIGHT_POINT) {
        glLightf(light, GL_SPOT_EXPONENT, 0.0f);
        glLightf(light, GL_SPOT_CUTOFF, 180.0f);
    }

    glEnable(GL_LIGHTING);
    glEnable(light);
    glEnable(GL_NORMALIZE);
}

// ---------------------------------------------------------------------------------------------
// The light record

int clight::Save(cio_save& out) const {
    if (!cnode::Save(out)) return 0;
    WriteColor(out, GetLightColor(0));
    WriteFloat(out, distance);
    WriteFloat(out, GetHotSpot(0));
    WriteFloat(out, GetFallOff(0));
    WriteInt32(out, attenuation);
    WriteFloat(out, GetRange(0));
    WriteInt32(out, attenuationType);
    WriteFloat(out, GetStrength(0));
    WriteInt32(out, lightCastShadow);
    WriteInt32(out, shadowMap);
    WriteInt32(out, shadowMapSize);
    WriteFloat(out, shadowMapBias);
    WriteInt32(out, volume);
    WriteName(out, target ? target->GetName() : nullptr, 64);
    return lightAnim.Save(out);
}

int clight::Load(cio_load& in, unsigned long version) {
    if (!cnode::Load(in, version)) return 0;
    int ok = ReadColor(in, lightColor) && ReadFloat(in, distance) && ReadFloat(in, hotspot) &&
             ReadFloat(in, falloff);
    if (ok && version >= kRangeVersion) ok = ReadInt32(in, attenuation) && ReadFloat(in, range);
    if (ok && version >= kShadowMapVersion) ok = ReadInt32(in, attenuationType);
    ok = ok && ReadFloat(in, strength);
    // Two words that older records kept after the strength are no longer used.
    if (ok && version < kShadowMapVersion) ok = in.Skip(8);
    ok = ok && ReadInt32(in, lightCastShadow);
    if (ok && version >= kShadowMapVersion)
        ok = ReadInt32(in, shadowMap) && ReadInt32(in, shadowMapSize) &&
             ReadFloat(in, shadowMapBias) && ReadInt32(in, volume);
    if (ok && version >= kTargetVersion) {
        char name[NODE_NAME_SIZE] = {};
        ok = ReadName(in, name, TargetNameSize(version));
        if (ok) aimtarget::LoadTarget(*this, name, target);
    }
    if (!ok || !lightAnim.Load(in, version)) return 0;
    if (lightAnim.NumKeys() == 0) lightAnim.SetKey(clightkey());
    return 1;
}
