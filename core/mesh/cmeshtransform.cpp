// Sub-object transforms and the pivot operations: the vertices move in object space so that
// the change seen in the world is the one asked for.
#include <vector>

#include "cmesh.h"
#include "mesh/mesheditor.h"

namespace {

// The object-space matrix that applies the world-space `worldOp` to points of a node whose
// matrix is `node`: node x worldOp x Inverse(node) (row vectors).
cmatrix4 ToObjectSpace(const cmatrix4& node, const cmatrix4& worldOp) {
    return node * worldOp * Inverse(node);
}

// The world matrix that does `op` about the world point `center`.
cmatrix4 AboutCenter(const cmatrix4& op, const cpoint3& center) {
    cmatrix4 toOrigin, back;
    toOrigin.FromTranslation(-center);
    back.FromTranslation(center);
    return toOrigin * op * back;
}

}  // namespace

std::vector<char> MeshEditor::SelectedVerts(const cmesh& m, int level) {
    std::vector<char> members(static_cast<size_t>(m.numVerts), level == 0);
    if (level == 1)
        for (int i = 0; i < m.numVerts; ++i)
            members[static_cast<size_t>(i)] = m.verts[i].IsSelected();
    for (int e = 0; level == 2 && e < 3 * m.numFaces; e += 3)
        if (m.faces[e / 3].IsSelected() && m.CheckFaceVIndices(e / 3))
            for (int k = 0; k < 3; ++k) members[static_cast<size_t>(m.faces[e / 3].v[k])] = 1;
    for (int e = 0; level == 3 && e < 3 * m.numFaces; ++e)
        if ((m.edgeFlags[e] & ELEMENT_SELECTED) && m.CheckFaceVIndices(e / 3)) {
            const cface& f = m.faces[e / 3];
            members[static_cast<size_t>(f.v[e % 3])] = 1;
            members[static_cast<size_t>(f.v[(e + 1) % 3])] = 1;
        }
    return members;
}

void MeshEditor::TransformVerts(cmesh& m, const std::vector<char>& members, const cmatrix4& tm) {
    for (int i = 0; i < m.numVerts; ++i)
        if (members[static_cast<size_t>(i)]) m.verts[i].p = m.verts[i].p * tm;
    Refresh(m);
}

void cmesh::Move(int time, const cpoint3& delta, int mode, int ikOn, int iterations,
                 float tolerance) {
    const int level = GetSubLevel();
    if (level < 1 || level > 3) {
        cnode::Move(time, delta, mode, ikOn, iterations, tolerance);
        return;
    }
    cmatrix4 op;
    op.FromTranslation(delta);
    MeshEditor::TransformVerts(*this, MeshEditor::SelectedVerts(*this, level),
                               ToObjectSpace(GetNodeTM(time, TM_ALL), op));
}

void cmesh::Rotate(int time, const cquat& rotation, const cpoint3& center, int flag) {
    const int level = GetSubLevel();
    if (level < 1 || level > 3) {
        cnode::Rotate(time, rotation, center, flag);
        return;
    }
    cmatrix4 op;
    MatrixFromQuat(rotation, op);
    MeshEditor::TransformVerts(*this, MeshEditor::SelectedVerts(*this, level),
                               ToObjectSpace(GetNodeTM(time, TM_ALL), AboutCenter(op, center)));
}

void cmesh::Scale(int time, const cpoint3& factors, const cpoint3& center, int flag) {
    const int level = GetSubLevel();
    if (level < 1 || level > 3) {
        cnode::Scale(time, factors, center, flag);
        return;
    }
    if (!(factors.x > 0.0f && factors.y > 0.0f && factors.z > 0.0f)) return;
    cmatrix4 op;
    op.FromScale(factors);
    MeshEditor::TransformVerts(*this, MeshEditor::SelectedVerts(*this, level),
                               ToObjectSpace(GetNodeTM(time, TM_ALL), AboutCenter(op, center)));
}

void cmesh::Mirror(int, int axis, cmatrix4* tm) {
    if (axis < 0 || axis > 2 || numVerts == 0) return;
    const int level = GetSubLevel() >= 1 && GetSubLevel() <= 3 ? GetSubLevel() : 0;
    const std::vector<char> members = MeshEditor::SelectedVerts(*this, level);
    cmatrix4 mirror;
    if (tm) {
        mirror = *tm;
    } else {
        cpoint3 factors(1.0f, 1.0f, 1.0f);
        factors[axis] = -1.0f;
        mirror.FromScale(factors);
        const cpoint3 center = level == 1   ? selVertCenter
                               : level == 2 ? selFaceCenter
                               : level == 3 ? selEdgeCenter
                                            : cpoint3();
        mirror = AboutCenter(mirror, center);
    }
    // A reflection turns the faces inside out; those wholly mirrored are reversed again.
    for (int f = 0; f < numFaces; ++f) {
        if (!CheckFaceVIndices(f)) continue;
        const cface& face = faces[f];
        if (members[static_cast<size_t>(face.v[0])] && members[static_cast<size_t>(face.v[1])] &&
            members[static_cast<size_t>(face.v[2])])
            MeshEditor::FlipFace(*this, f);
    }
    MeshEditor::TransformVerts(*this, members, mirror);
}

void cmesh::ResetTransform(int time, int parts) {
    const cmatrix4 keep = ChangePivot(ResetPivotMatrix(time, parts));
    MeshEditor::TransformVerts(*this, std::vector<char>(static_cast<size_t>(numVerts), 1), keep);
}

void cmesh::CenterGeomToPivot(int) {
    cmatrix4 shift;
    shift.FromTranslation(-(bbMin + bbMax) * 0.5f);
    MeshEditor::TransformVerts(*this, std::vector<char>(static_cast<size_t>(numVerts), 1), shift);
}

void cmesh::CenterPivotToGeom(int time) {
    const cpoint3 center = ((bbMin + bbMax) * 0.5f) * GetNodeTM(time, TM_ALL);
    const cmatrix4 keep = cnode::CenterPivotToGeom(time, center);
    MeshEditor::TransformVerts(*this, std::vector<char>(static_cast<size_t>(numVerts), 1), keep);
}
