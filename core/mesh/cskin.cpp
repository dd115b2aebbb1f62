// cskin: the bone list, the skin vertices and their weights, automatic binding and the
// deformation of the mesh's rest positions by the bones.
#include "cskin.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "animclock.h"

namespace {

// Distances below this put a vertex on a bone's segment.
constexpr float kOnSegment = 1e-6f;

cmatrix4 WorldNow(const cnode& node) {
    return node.GetNodeTM(GetAnimTime(), TM_ALL);
}

float WeightSum(const cskinvert& sv) {
    float sum = 0.0f;
    for (int k = 0; k < sv.count; ++k) sum += sv.influences[k].weight;
    return sum;
}

void Normalize(cskinvert& sv) {
    const float sum = WeightSum(sv);
    if (sum <= 0.0f) return;
    for (int k = 0; k < sv.count; ++k) sv.influences[k].weight /= sum;
}

// Removes influence k, keeping the others in order.
void RemoveInfluence(cskinvert& sv, int k) {
    for (int j = k + 1; j < sv.count; ++j) sv.influences[j - 1] = sv.influences[j];
    --sv.count;
    sv.influences[sv.count] = cskininfluence();
}

// Moves influence k up or down until the influences are heaviest first again. Among equal
// weights the older influence stays in front.
void Resort(cskinvert& sv, int k) {
    while (k > 0 && sv.influences[k - 1].weight < sv.influences[k].weight) {
        std::swap(sv.influences[k - 1], sv.influences[k]);
        --k;
    }
    while (k + 1 < sv.count && sv.influences[k + 1].weight > sv.influences[k].weight) {
        std::swap(sv.influences[k + 1], sv.influences[k]);
        ++k;
    }
}

int FindInfluence(const cskinvert& sv, int bone) {
    for (int k = 0; k < sv.count; ++k)
        if (sv.influences[k].bone == bone) return k;
    return -1;
}

// Drops the influences on bone `index`, shifts the later bones' indices down, and normalises
// the skin vertex when it lost an influence.
void ForgetBone(cskinvert& sv, int index) {
    const int k = FindInfluence(sv, index);
    if (k >= 0) RemoveInfluence(sv, k);
    for (int j = 0; j < sv.count; ++j)
        if (sv.influences[j].bone > index) --sv.influences[j].bone;
    if (k >= 0) Normalize(sv);
}

// The distance from `p` to the segment a-b (a point when they coincide).
float DistanceToSegment(const cpoint3& p, const cpoint3& a, const cpoint3& b) {
    const cpoint3 ab = b - a;
    const float lengthSq = DotProd(ab, ab);
    float t = lengthSq > 0.0f ? DotProd(p - a, ab) / lengthSq : 0.0f;
    t = std::clamp(t, 0.0f, 1.0f);
    return Length(p - (a + ab * t));
}

// The weighted average of `rest` carried by each influence's bone matrix; `rest` itself when
// no influence pulls.
cpoint3 Blend(const cpoint3& rest, const cskinvert& sv, const std::vector<const cmatrix4*>& pulls) {
    cpoint3 sum;
    float total = 0.0f;
    for (int k = 0; k < sv.count; ++k) {
        const cskininfluence& influence = sv.influences[k];
        const cmatrix4* matrix = pulls[static_cast<size_t>(influence.bone)];
        if (!matrix) continue;
        sum += (rest * *matrix) * influence.weight;
        total += influence.weight;
    }
    return total > 0.0f ? sum / total : rest;
}

}  // namespace

cskin* CreateNewSkin() {
    return new (std::nothrow) cskin();
}

cskin::cskin() {
    SetTypeID(TYPE_SKIN);
    SetName("Skin1");
}

cskin::cskin(const cskin& other) : cskin() {
    CopySkin(other);
}

cskin& cskin::operator=(const cskin& other) {
    if (this != &other) CopySkin(other);
    return *this;
}

cskin::~cskin() = default;

void cskin::Delete() {
    delete this;
}

void cskin::CopySkin(const cskin& other) {
    CopyMeshContent(other);
    CopyBones(other);
}

void cskin::CopyBones(const cskin& other) {
    bones = other.bones;
    skinBind = other.skinBind;
    skinVerts = other.skinVerts;
    stale = true;
}

void cskin::Clone(int time, cnode& target) const {
    cmesh::Clone(time, target);
    auto* skin = dynamic_cast<cskin*>(&target);
    if (skin && skin != this) skin->CopyBones(*this);
}

void cskin::UpdateTimeIdle() {
    cmesh::UpdateTimeIdle();
    stale = true;
}

int cskin::HandleMessage(unsigned long msg, void* a, void* b) {
    int reacted = cmesh::HandleMessage(msg, a, b);
    if (msg != MSG_NODE_DELETED && msg != MSG_NODE_REPLACED) return reacted;
    const int index = FindBone(static_cast<const cnode*>(a));
    if (index < 0) return reacted;
    if (msg == MSG_NODE_DELETED) reacted |= RemoveBone(index);
    if (msg == MSG_NODE_REPLACED) {
        auto* replacement = static_cast<cnode*>(b);
        // A replacement that is already a bone, or the skin itself, cannot take the place.
        if (replacement && replacement != this && FindBone(replacement) < 0) {
            bones[static_cast<size_t>(index)].node = replacement;
            stale = true;
        } else {
            RemoveBone(index);
        }
        reacted = 1;
    }
    return reacted;
}

// ---- Bones ----

int cskin::AddBone(cnode* bone) {
    if (!bone || bone == this || FindBone(bone) >= 0) return -1;
    if (bones.empty()) skinBind = WorldNow(*this);
    bones.push_back({bone, Inverse(WorldNow(*bone))});
    stale = true;
    return NumBones() - 1;
}

int cskin::RemoveBone(int index) {
    if (index < 0 || index >= NumBones()) return 0;
    bones.erase(bones.begin() + index);
    for (cskinvert& sv : skinVerts) ForgetBone(sv, index);
    stale = true;
    return 1;
}

cnode* cskin::GetBone(int index) const {
    return index >= 0 && index < NumBones() ? bones[static_cast<size_t>(index)].node : nullptr;
}

int cskin::FindBone(const cnode* bone) const {
    if (!bone) return -1;
    for (int i = 0; i < NumBones(); ++i)
        if (bones[static_cast<size_t>(i)].node == bone) return i;
    return -1;
}

cmatrix4 cskin::GetBoneBindTM(int index) const {
    return index >= 0 && index < NumBones() ? bones[static_cast<size_t>(index)].bind : cmatrix4();
}

void cskin::Bind() {
    skinBind = WorldNow(*this);
    for (Bone& bone : bones)
        if (bone.node) bone.bind = Inverse(WorldNow(*bone.node));
    stale = true;
}

void cskin::DropMissingBones() {
    for (int i = NumBones() - 1; i >= 0; --i) {
        const cnode* node = bones[static_cast<size_t>(i)].node;
        const auto begin = bones.begin();
        const bool repeated = std::any_of(
            begin, begin + i, [node](const Bone& earlier) { return earlier.node == node; });
        if (!node || node == this || repeated) RemoveBone(i);
    }
}

// ---- Skin vertices ----

int cskin::AddSkinVert() {
    skinVerts.emplace_back();
    stale = true;
    return NumSkinVerts() - 1;
}

void cskin::ClearSkinVerts() {
    skinVerts.clear();
    for (int i = 0; i < NumVerts(); ++i) SetSkinVertIndex(i, SKIN_VERTEX_NONE);
    stale = true;
}

int cskin::SetInfluence(int skinVert, int bone, float weight) {
    if (skinVert < 0 || skinVert >= NumSkinVerts() || bone < 0 || bone >= NumBones()) return 0;
    if (!std::isfinite(weight) || weight < 0.0f) return 0;
    cskinvert& sv = skinVerts[static_cast<size_t>(skinVert)];
    stale = true;
    int k = FindInfluence(sv, bone);
    if (weight == 0.0f) {
        if (k >= 0) RemoveInfluence(sv, k);
        return 1;
    }
    if (k < 0) {
        if (sv.count == SKIN_MAX_INFLUENCES) {
            // Only the four heaviest are kept: a new influence takes the lightest one's place.
            if (weight <= sv.influences[SKIN_MAX_INFLUENCES - 1].weight) return 0;
            --sv.count;
        }
        k = sv.count++;
        sv.influences[k].bone = bone;
    }
    sv.influences[k].weight = weight;
    Resort(sv, k);
    return 1;
}

int cskin::GetInfluences(int skinVert, int* boneIndices, float* weights) const {
    if (skinVert < 0 || skinVert >= NumSkinVerts()) return 0;
    const cskinvert& sv = skinVerts[static_cast<size_t>(skinVert)];
    for (int k = 0; k < sv.count; ++k) {
        if (boneIndices) boneIndices[k] = sv.influences[k].bone;
        if (weights) weights[k] = sv.influences[k].weight;
    }
    return sv.count;
}

cskinvert cskin::GetSkinVert(int skinVert) const {
    return skinVert >= 0 && skinVert < NumSkinVerts() ? skinVerts[static_cast<size_t>(skinVert)]
                                                      : cskinvert();
}

void cskin::NormalizeWeights() {
    for (cskinvert& sv : skinVerts) Normalize(sv);
    stale = true;
}

int cskin::AssignNearestBones(int maxBones) {
    if (bones.empty() || NumVerts() == 0) return 0;
    maxBones = std::clamp(maxBones, 1, SKIN_MAX_INFLUENCES);
    // The segments in skin space of the bind pose. A child's origin is taken where it sits
    // in its bone's frame now, carried into the bone's bind frame.
    const cmatrix4 toSkinBind = Inverse(skinBind);
    std::vector<cpoint3> starts, ends;
    for (const Bone& bone : bones) {
        const cmatrix4 boneToSkin = Inverse(bone.bind) * toSkinBind;
        const cnode* child = bone.node ? bone.node->GetChild(0) : nullptr;
        const cpoint3 childInBone =
            child ? child->GetPosition(GetAnimTime()) * Inverse(WorldNow(*bone.node)) : cpoint3();
        starts.push_back(cpoint3() * boneToSkin);
        ends.push_back(childInBone * boneToSkin);
    }
    skinVerts.assign(static_cast<size_t>(NumVerts()), cskinvert());
    std::vector<std::pair<float, int>> nearest(bones.size());
    for (int v = 0; v < NumVerts(); ++v) {
        const cpoint3 p = GetVertPoint(v);
        for (size_t b = 0; b < bones.size(); ++b)
            nearest[b] = {DistanceToSegment(p, starts[b], ends[b]), static_cast<int>(b)};
        const auto kept = std::min(nearest.size(), static_cast<size_t>(maxBones));
        std::partial_sort(nearest.begin(), nearest.begin() + static_cast<long>(kept),
                          nearest.end());
        cskinvert& sv = skinVerts[static_cast<size_t>(v)];
        // A vertex on a segment belongs to that bone alone.
        const size_t used = nearest[0].first < kOnSegment ? 1 : kept;
        for (size_t k = 0; k < used; ++k)
            sv.influences[k] = {nearest[k].second, 1.0f / std::max(nearest[k].first, kOnSegment)};
        sv.count = static_cast<int>(used);
        Normalize(sv);
        SetSkinVertIndex(v, static_cast<std::uint32_t>(v));
    }
    stale = true;
    return NumSkinVerts();
}

// ---- Deformation ----

void cskin::Deform() {
    // One matrix per bone: skin space at bind -> the bone's bind frame -> its pose now ->
    // skin space now. Bones still waiting for their link while a project file loads do not
    // pull (null matrix entries).
    const cmatrix4 toSkinNow = Inverse(WorldNow(*this));
    std::vector<const cmatrix4*> pulls(bones.size(), nullptr);
    std::vector<cmatrix4> matrices(bones.size());
    for (size_t b = 0; b < bones.size(); ++b) {
        if (!bones[b].node) continue;
        matrices[b] = skinBind * bones[b].bind * WorldNow(*bones[b].node) * toSkinNow;
        pulls[b] = &matrices[b];
    }
    const cvertex* verts = GetVerts();
    deformed.resize(static_cast<size_t>(NumVerts()));
    for (size_t v = 0; v < deformed.size(); ++v) {
        const std::uint32_t index = verts[v].skinIndex;
        deformed[v] =
            index < skinVerts.size() ? Blend(verts[v].p, skinVerts[index], pulls) : verts[v].p;
    }
    stale = false;
    deformedAt = GetAnimTime();
}

const cpoint3* cskin::GetDeformedVerts() {
    if (stale || deformedAt != GetAnimTime() || deformed.size() != static_cast<size_t>(NumVerts()))
        Deform();
    return deformed.empty() ? nullptr : deformed.data();
}

cpoint3 cskin::GetDeformedVert(int i) {
    const cpoint3* points = GetDeformedVerts();
    return i >= 0 && i < NumVerts() ? points[i] : cpoint3();
}
