// The skin record: the mesh record followed by the skin section.
//
// Skin section: bone count (int32); per bone its name (a name field: 64 bytes, 32 below
// version 13) and its bind matrix (16 floats, row by row); the skin's bind matrix; the skin
// vertex count (int32); per skin vertex its influence count (int32, 0 to 4) and four
// (bone index int32, weight float32) pairs, the unused ones written as (-1, 0).
#include <cmath>
#include <string>
#include <vector>

#include "ciofields.h"
#include "cskin.h"
#include "nodelist.h"
#include "scene/loadingnodes.h"

namespace {

constexpr unsigned long kMatrixBytes = 16 * 4;
constexpr unsigned long kSkinVertBytes = 4 + SKIN_MAX_INFLUENCES * 8;

int WriteMatrix(cio_save& out, const cmatrix4& m) {
    int ok = 1;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) ok = ok && WriteFloat(out, m.m[r][c]);
    return ok;
}

int ReadMatrix(cio_load& in, cmatrix4& m) {
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            if (!ReadFloat(in, m.m[r][c])) return 0;
    return 1;
}

int WriteSkinVert(cio_save& out, const cskinvert& sv) {
    int ok = WriteInt32(out, sv.count);
    for (int k = 0; k < SKIN_MAX_INFLUENCES; ++k) {
        const cskininfluence unused;
        const cskininfluence& in = k < sv.count ? sv.influences[k] : unused;
        ok = ok && WriteInt32(out, in.bone) && WriteFloat(out, in.weight);
    }
    return ok;
}

// An influence in use names a bone of the record that no earlier influence of the vertex
// names (removing a bone forgets one influence per vertex) and has a finite positive weight.
bool ValidInfluence(const cskinvert& sv, int k, int numBones) {
    const cskininfluence& in = sv.influences[k];
    for (int j = 0; j < k; ++j)
        if (sv.influences[j].bone == in.bone) return false;
    return in.bone >= 0 && in.bone < numBones && std::isfinite(in.weight) && in.weight > 0.0f;
}

int ReadSkinVert(cio_load& in, int numBones, cskinvert& sv) {
    if (!ReadInt32(in, sv.count) || sv.count < 0 || sv.count > SKIN_MAX_INFLUENCES) return 0;
    for (int k = 0; k < SKIN_MAX_INFLUENCES; ++k) {
        cskininfluence& influence = sv.influences[k];
        if (!ReadInt32(in, influence.bone) || !ReadFloat(in, influence.weight)) return 0;
        if (k < sv.count && !ValidInfluence(sv, k, numBones)) return 0;
        if (k >= sv.count) influence = cskininfluence();
    }
    return 1;
}

// The bones' names and bind matrices, after a count checked against the stream.
int ReadBones(cio_load& in, unsigned long version, std::vector<std::string>& names,
              std::vector<cmatrix4>& binds) {
    int count = 0;
    const unsigned int nameSize = NameFieldSize(version);
    if (!ReadInt32(in, count) || !StreamHolds(in, count, nameSize + kMatrixBytes)) return 0;
    names.resize(static_cast<size_t>(count));
    binds.resize(static_cast<size_t>(count));
    std::vector<char> name(nameSize);
    for (int i = 0; i < count; ++i) {
        if (!ReadName(in, name.data(), nameSize) || !ReadMatrix(in, binds[static_cast<size_t>(i)]))
            return 0;
        names[static_cast<size_t>(i)] = name.data();
    }
    return 1;
}

int ReadSkinVerts(cio_load& in, int numBones, std::vector<cskinvert>& skinVerts) {
    int count = 0;
    if (!ReadInt32(in, count) || !StreamHolds(in, count, kSkinVertBytes)) return 0;
    skinVerts.resize(static_cast<size_t>(count));
    for (cskinvert& sv : skinVerts)
        if (!ReadSkinVert(in, numBones, sv)) return 0;
    return 1;
}

}  // namespace

int cskin::Save(cio_save& out) const {
    const int result = cmesh::Save(out);
    WriteInt32(out, NumBones());
    for (const Bone& bone : bones) {
        WriteName(out, bone.node ? bone.node->GetName() : nullptr, NAME_FIELD_SIZE);
        WriteMatrix(out, bone.bind);
    }
    WriteMatrix(out, skinBind);
    WriteInt32(out, NumSkinVerts());
    for (const cskinvert& sv : skinVerts) WriteSkinVert(out, sv);
    return result;
}

int cskin::Load(cio_load& in, unsigned long version) {
    if (!cmesh::Load(in, version)) return 0;
    std::vector<std::string> names;
    std::vector<cmatrix4> binds;
    cmatrix4 bind;
    std::vector<cskinvert> loadedVerts;
    if (!ReadBones(in, version, names, binds) || !ReadMatrix(in, bind) ||
        !ReadSkinVerts(in, static_cast<int>(names.size()), loadedVerts))
        return 0;
    bones.assign(binds.size(), Bone());
    for (size_t i = 0; i < binds.size(); ++i) bones[i].bind = binds[i];
    skinBind = bind;
    skinVerts.swap(loadedVerts);
    LinkLoadedBones(names);
    stale = true;
    return 1;
}

void cskin::LinkLoadedBones(const std::vector<std::string>& names) {
    pendingBones = 0;
    for (size_t i = 0; i < names.size(); ++i) {
        cnode* found = names[i].empty() ? nullptr : NodeList::FindNode(names[i].c_str());
        bones[i].node = found == this ? nullptr : found;
        if (found) continue;
        // A bone whose record comes later in the project file; the last link to arrive
        // drops the bones no record answered to.
        const auto link = [this, i](cnode* node) {
            bones[i].node = node;
            if (--pendingBones == 0) DropMissingBones();
        };
        if (DeferLink(this, names[i].c_str(), link)) ++pendingBones;
    }
    if (pendingBones == 0) DropMissingBones();
}
