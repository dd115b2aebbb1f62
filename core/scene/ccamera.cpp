// Cameras: the keyed field of view, targeting and the camera record.
#include "ccamera.h"

#include <new>

#include "animclock.h"
#include "cgfx.h"
#include "ciofields.h"
#include "cmatrix4.h"
#include "scene/aimtarget.h"
#include "scene/keyedparams.h"
#include "scene/recordconstruction.h"

namespace {

constexpr float kMaxFOV = 179.0f;
// Records from this version on carry the near and far depths.
constexpr unsigned long kDepthVersion = 3;
// Records from this version on have 64-byte names, older ones 32-byte names.
constexpr unsigned long kLongNameVersion = 13;

}  // namespace

ccamera::ccamera() : cnode("Camera1", GetGfxInfo().cameracolor) {
    SetTypeID(TYPE_CAMERA);
    SetSubTypeID(0);
    fov = ccamkey().fov;
    distance = 128.0f;
    depthNear = 1.0f;
    depthFar = 4096.0f;
    ortho = 0;
    target = nullptr;
    // A camera made for its record takes its keys from the record.
    if (!RecordConstruction::Active()) camAnim.SetKey(ccamkey());
}

ccamera::ccamera(const ccamera& other) : ccamera() {
    CopyCamera(other);
}

ccamera& ccamera::operator=(const ccamera& other) {
    if (this != &other) CopyCamera(other);
    return *this;
}

ccamera::~ccamera() = default;

void ccamera::CopyCamera(const ccamera& other) {
    fov = other.fov;
    distance = other.distance;
    depthNear = other.depthNear;
    depthFar = other.depthFar;
    ortho = other.ortho;
    target = other.target;
    camAnim = other.camAnim;
}

void ccamera::Delete() {
    delete this;
}

void ccamera::Clone(int time, cnode& targetNode) const {
    cnode::Clone(time, targetNode);
    if (auto* camera = dynamic_cast<ccamera*>(&targetNode)) *camera = *this;
}

ccamera* CreateNewCamera() {
    return new (std::nothrow) ccamera;
}

void ccamera::Create(const cpoint3& pos, const cpoint3& a, const cpoint3& b) {
    const int now = GetAnimTime();
    SetPosition(now, pos);
    cmatrix4 m;
    MatrixLookAt(m, a, b);
    SetRotation(now, QuatFromMatrix(m));
}

void ccamera::Create(float px, float py, float pz, float ax, float ay, float az, float bx, float by,
                     float bz) {
    Create(cpoint3(px, py, pz), cpoint3(ax, ay, az), cpoint3(bx, by, bz));
}

// ---------------------------------------------------------------------------------------------
// The keyed field of view

void ccamera::SetFOV(int t, float degrees) {
    const float v = degrees < 0.0f ? 0.0f : (degrees > kMaxFOV ? kMaxFOV : degrees);
    keyedparams::Write(camAnim, t, &ccamkey::fov, v, fov,
                       [this](int at) { return CurrentKey(at); });
}

float ccamera::GetFOV(int t) const {
    return keyedparams::Read(camAnim, t, &ccamkey::fov, fov);
}

void ccamera::UpdateTimeIdle() {
    fov = keyedparams::KeyAt(camAnim, GetAnimTime()).fov;
    cnode::UpdateTimeIdle();
}

void ccamera::SnapKey() {
    keyedparams::Snap(camAnim, [this](int at) { return CurrentKey(at); });
    cnode::SnapKey();
}

void ccamera::DeleteKey(int time) {
    // Intended: the keys at time 0 are never removed.
    if (time == 0) return;
    camAnim.RemoveKey(time);
    UpdateTimeIdle();
    cnode::DeleteKey(time);
}

int ccamera::HasKey(int time) const {
    return camAnim.KeyExists(time) ? 1 : cnode::HasKey(time);
}

// ---------------------------------------------------------------------------------------------
// Targeting

void ccamera::SetTarget(cnode* node) {
    aimtarget::SetTarget(*this, target, node);
}

cquat ccamera::GetRotation(int time) const {
    return aimtarget::Rotation(*this, target, time);
}

void ccamera::SetRotation(int time, const cquat& q) {
    aimtarget::SetRotation(*this, target, time, q);
}

int ccamera::HandleMessage(unsigned long msg, void* a, void* b) {
    const int reacted = aimtarget::HandleMessage(*this, target, msg, a, b);
    return reacted | cnode::HandleMessage(msg, a, b);
}

int ccamera::HitTest(int time, CGLWindow* window, int x, int y, float* depth, float tolerance) {
    // The icon's thin lines are hard to hit exactly.
    return cnode::HitTest(time, window, x, y, depth, tolerance + 2.5f);
}

// ---------------------------------------------------------------------------------------------
// The camera record

int ccamera::Save(cio_save& out) const {
    if (!cnode::Save(out)) return 0;
    WriteFloat(out, GetFOV(0));
    WriteFloat(out, distance);
    WriteInt32(out, ortho);
    WriteFloat(out, depthNear);
    WriteFloat(out, depthFar);
    WriteName(out, target ? target->GetName() : nullptr, 64);
    return camAnim.Save(out);
}

int ccamera::Load(cio_load& in, unsigned long version) {
    if (!cnode::Load(in, version)) return 0;
    int ok = ReadFloat(in, fov) && ReadFloat(in, distance) && ReadInt32(in, ortho);
    if (ok && version >= kDepthVersion) ok = ReadFloat(in, depthNear) && ReadFloat(in, depthFar);
    char name[NODE_NAME_SIZE] = {};
    ok = ok && ReadName(in, name, version >= kLongNameVersion ? 64u : 32u);
    if (ok) aimtarget::LoadTarget(*this, name, target);
    if (!ok || !camAnim.Load(in, version)) return 0;
    if (camAnim.NumKeys() == 0) camAnim.SetKey(ccamkey());
    return 1;
}
