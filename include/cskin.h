// cskin: the scene node of a mesh deformed by bones (node type TYPE_SKIN).
//
// A skin is a mesh: its vertices, faces, edges, editing operations, smoothing and record are
// the mesh's, and the mesh's vertex positions stay the rest pose, so that editing keeps working
// on the undeformed shape. On top of the mesh a skin keeps an ordered list of bones (any node
// can be a bone; the skin does not own them), each with its bind matrix, the skin's own world
// matrix at bind time, and an array of skin vertices, each holding up to four (bone, weight)
// influences. A mesh vertex names its skin vertex through its skin vertex index
// (cmesh::GetSkinVertIndex); several mesh vertices may share one skin vertex (split seams), and
// a vertex without one (SKIN_VERTEX_NONE) follows the skin node rigidly.
//
// Deformation is linear blend skinning with row vectors. For a vertex at rest position p (skin
// space) with influences (b_i, w_i):
//     p' = sum_i w_i p SkinBind BoneBind_i BoneWorld_i Inverse(SkinWorld) / sum_i w_i
// where SkinBind is the skin's world matrix at bind time, BoneBind_i the inverse of bone b_i's
// world matrix at bind time, and BoneWorld_i, SkinWorld the world matrices at the current
// animation time. The deformed points are in the skin's own space.
#ifndef ORVANE_CSKIN_H
#define ORVANE_CSKIN_H

#include <cstdint>
#include <string>
#include <vector>

#include "cio.h"
#include "cmatrix4.h"
#include "cmesh.h"
#include "cnode.h"
#include "coreapi.h"
#include "cpoint.h"

// The most influences one skin vertex holds.
constexpr int SKIN_MAX_INFLUENCES = 4;

// One bone's share in a skin vertex: the bone's index in the skin's bone list and its weight.
struct cskininfluence {
    int bone = -1;
    float weight = 0.0f;
};

// A skin vertex: its influences, heaviest first, `count` of them in use.
struct cskinvert {
    cskininfluence influences[SKIN_MAX_INFLUENCES];
    int count = 0;
};

class CORE_API cskin : public cmesh {
public:
    // An empty skin named "Skin1": an empty mesh, no bones, no skin vertices, identity bind
    // matrices.
    cskin();
    // Copy the mesh content (as cmesh::SetMesh, with the mesh material and display switches)
    // and the skin's own state: the bone pointers, bind matrices and skin vertices. The node
    // part (name, transform, hierarchy) is that of a new skin.
    cskin(const cskin& other);
    cskin& operator=(const cskin& other);
    ~cskin() override;

    // ---- cnode operations ----
    void Delete() override;
    // cmesh::Clone, then, when `target` is a skin, this skin's mesh and skin state as
    // operator= copies (the same bone nodes, not copies of them).
    void Clone(int time, cnode& target) const override;
    // Re-evaluates the node at the current time and marks the deformed points stale: they are
    // recomputed when next asked for, once every bone has followed the time change as well.
    void UpdateTimeIdle() override;
    // The skin section follows the mesh record: the bones by name with their bind matrices,
    // the skin's bind matrix and the skin vertices. Bones are found by name among the loaded
    // nodes; while a project file loads, a bone whose record comes later is linked once every
    // record has been read. Bones no node answers to are dropped as RemoveBone drops them.
    // Load returns 0 for a corrupt or truncated record.
    int Load(cio_load& in, unsigned long version) override;
    int Save(cio_save& out) const override;
    // MSG_NODE_DELETED for a bone removes it (RemoveBone); MSG_NODE_REPLACED puts the new node
    // in the old bone's place with the same bind matrix, or removes the old bone when the new
    // node is already a bone or is the skin. Or-ed with cmesh::HandleMessage.
    int HandleMessage(unsigned long msg, void* a, void* b) override;

    // ---- Bones ----
    // Appends `bone` and captures its bind matrix from its world matrix at the current time;
    // the first bone of an empty list also captures the skin's bind matrix. Returns the new
    // index, or -1 for null, the skin itself or a node already in the list.
    int AddBone(cnode* bone);
    // Removes bone `index`: the influences on it are dropped, the remaining weights of the
    // skin vertices concerned are normalised, and the later bones' indices shift down by one.
    // 0 for an index out of range.
    int RemoveBone(int index);
    int NumBones() const { return static_cast<int>(bones.size()); }
    // The bone at `index`, or null when out of range.
    cnode* GetBone(int index) const;
    // The index of `bone` in the list, or -1.
    int FindBone(const cnode* bone) const;
    // The inverse of bone `index`'s world matrix at bind time (identity when out of range).
    cmatrix4 GetBoneBindTM(int index) const;
    // The skin's world matrix at bind time.
    cmatrix4 GetSkinBindTM() const { return skinBind; }
    // Takes the current pose (world matrices at the current animation time) of the skin and
    // of every bone as the bind pose, in which the deformed points equal the rest positions.
    void Bind();

    // ---- Skin vertices ----
    int NumSkinVerts() const { return static_cast<int>(skinVerts.size()); }
    // Appends a skin vertex without influences and returns its index.
    int AddSkinVert();
    // Removes every skin vertex; every mesh vertex then has no skin vertex.
    void ClearSkinVerts();
    // Sets the weight of bone `bone` in skin vertex `skinVert`; weight 0 removes the
    // influence. Weights are stored as given (see NormalizeWeights). A fifth influence keeps
    // the four heaviest: the lightest of the five is dropped (the older one on a tie).
    // Returns 1 when the skin vertex holds the influence afterwards (or, for weight 0, no
    // longer holds it); 0 for an index out of range, a negative or non-finite weight, or a
    // new influence lighter than the four held.
    int SetInfluence(int skinVert, int bone, float weight);
    // Copies the influences of `skinVert` (heaviest first) into `bones` and `weights` (room
    // for SKIN_MAX_INFLUENCES each; either may be null) and returns their number, 0 for an
    // index out of range.
    int GetInfluences(int skinVert, int* bones, float* weights) const;
    // The skin vertex `skinVert` (an empty one when out of range).
    cskinvert GetSkinVert(int skinVert) const;
    // Scales the weights of every skin vertex so that they sum to 1; a skin vertex whose
    // weights sum to 0 is left alone.
    void NormalizeWeights();
    // Automatic binding: replaces the skin vertices by one per mesh vertex (vertex i gets
    // skin vertex i) weighted by inverse distance to the `maxBones` (kept within 1 to 4) nearest
    // bone segments, in the bind pose. A bone's segment runs from its origin to its first child's
    // origin, or is its origin alone when it has no child. Weights are normalised; a vertex on
    // a segment (distance below 1e-6) belongs to that bone alone. Returns the number of skin
    // vertices made: 0 without bones or vertices.
    int AssignNearestBones(int maxBones);

    // ---- Deformation ----
    // Computes the deformed points at the current animation time (see the top of this file).
    // A vertex without a skin vertex, with an index past the skin vertices, or whose weights
    // sum to 0 stays at its rest position.
    void Deform();
    // The deformed points in skin space, one per mesh vertex. They are recomputed when stale:
    // after a time change, a change of the bones, bind pose or weights, or of the vertex
    // count. After moving a bone or a vertex without a time change, call Deform.
    const cpoint3* GetDeformedVerts();
    // Deformed point `i` (the origin when out of range).
    cpoint3 GetDeformedVert(int i);

private:
    struct Bone {
        cnode* node = nullptr;
        cmatrix4 bind;  // inverse of the bone's world matrix at bind time
    };

    // The mesh content and the skin's own state of `other` (CopyBones: the bone pointers,
    // bind matrices and skin vertices).
    void CopySkin(const cskin& other);
    void CopyBones(const cskin& other);
    // Removes the bones that are null, repeat an earlier bone or are the skin itself, as
    // RemoveBone does.
    void DropMissingBones();
    // Links the bones of a loaded record to the nodes of their `names`: found names at once,
    // names of later records once the project file has been read.
    void LinkLoadedBones(const std::vector<std::string>& names);

    std::vector<Bone> bones;
    cmatrix4 skinBind;
    std::vector<cskinvert> skinVerts;
    std::vector<cpoint3> deformed;
    bool stale = true;
    int deformedAt = 0;    // the animation time of `deformed`
    int pendingBones = 0;  // bone links waiting for the end of a project load
};

// A new skin on the heap (as the constructor makes it), or null when memory runs out.
CORE_API cskin* CreateNewSkin();

#endif
