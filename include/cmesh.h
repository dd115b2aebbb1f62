// cmesh: the scene node that holds a triangle mesh, and its element types.
//
// A mesh owns an array of vertices, an array of texture vertices (u, v, w), an array of
// triangular faces and one flag word per face edge (3 per face). Edge e is corner e % 3 of face
// e / 3 and joins the face's vertex k to its vertex (k + 1) % 3. On top of the arrays the mesh
// keeps selected and hidden counters per sub-object level (1 vertices, 2 faces, 3 edges), a
// bounding box and selection boxes in object space, and per vertex the smoothed normals that
// the faces' smoothing groups produce.
//
// Face normals are (P0 - P1) x (P2 - P1): a face's front is the side from which its corners run
// clockwise. Points are row vectors; angles are degrees.
#ifndef ORVANE_CMESH_H
#define ORVANE_CMESH_H

#include <cstdint>

#include "cbitarray.h"
#include "ccolor.h"
#include "cio.h"
#include "cmatrix4.h"
#include "cnode.h"
#include "coreapi.h"
#include "cpoint.h"
#include "cquat.h"

class cmaterial;

// Element types, also the sub-object levels of the level-taking operations.
constexpr unsigned long ELEMENT_VERTEX = 1;
constexpr unsigned long ELEMENT_FACE = 2;
constexpr unsigned long ELEMENT_EDGE = 3;

// Element flag bits shared by vertices, faces and edges. A hidden element is never selected.
constexpr unsigned short ELEMENT_SELECTED = 0x0001;
constexpr unsigned short ELEMENT_HIDDEN = 0x0002;

// The flags of every new face.
constexpr unsigned short FACE_DEFAULT_FLAGS = 0x0038;

// The skin vertex index of a vertex that no skin drives.
constexpr std::uint32_t SKIN_VERTEX_NONE = 0xFFFFFFFFu;

// The common part of the mesh elements: an element type (ELEMENT_*) and a flag word.
struct celement {
    std::uint32_t type = 0;
    std::uint16_t flags = 0;

    celement() = default;
    celement(std::uint32_t type_, std::uint16_t flags_) : type(type_), flags(flags_) {}

    bool IsSelected() const { return (flags & ELEMENT_SELECTED) != 0; }
    bool IsHidden() const { return (flags & ELEMENT_HIDDEN) != 0; }
};

// One smoothing-group accumulator of a vertex: the sum of the face normals given under a
// group mask, the union of those masks and the number of contributions.
struct csmgroup {
    float normal[3] = {0.0f, 0.0f, 0.0f};
    std::uint32_t mask = 0;
    std::int32_t count = 0;
    csmgroup* next = nullptr;

    cpoint3 GetNormal() const { return cpoint3(normal[0], normal[1], normal[2]); }
};

// The smoothing normals of one vertex: a singly linked list of csmgroup nodes, newest first.
class CORE_API csmnormal {
public:
    csmnormal() = default;
    csmnormal(const csmnormal& other);
    // Deep copy of the whole list.
    csmnormal& operator=(const csmnormal& other);
    ~csmnormal();

    // Frees every node.
    void Clear();
    // Empties the list but keeps its nodes for the next AddNormal calls, so that rebuilding a
    // mesh's normals after an edit does not reallocate them. The list reads as after Clear.
    void Recycle();
    // Adds the face normal `n` under the smoothing `mask`: the first node from the head whose
    // mask shares a bit with `mask` takes it (its position is returned); otherwise a new node
    // is pushed at the head and the node count - 1 is returned. Mask 0 never matches.
    int AddNormal(const cpoint3& n, std::uint32_t mask);
    // Turns every node's sum into the normalised average of its contributions.
    void Normalize();
    // The normal of the first node sharing a bit with `mask`; 0 when none does.
    int GetNormal(cpoint3& normal, std::uint32_t mask) const;
    // The position of the first node sharing a bit with `mask`, or -1.
    int FindSM(std::uint32_t mask) const;

    int NumGroups() const { return count; }
    const csmgroup* GetHead() const { return head; }

private:
    csmgroup* head = nullptr;
    int count = 0;
    csmgroup* spare = nullptr;  // recycled nodes, not part of the list
};

// Replaces `destination` by a deep copy of `source`.
CORE_API void CopySMnormal(csmnormal& destination, const csmnormal& source);

// A vertex: position, a stored normal (not the smoothing normal), the smoothing normals,
// a colour and the skin vertex index.
struct cvertex : celement {
    cpoint3 p;
    cpoint3 normal;
    csmnormal sm;
    ccolor color = ccolor(1.0f, 1.0f, 1.0f, 1.0f);
    std::uint32_t skinIndex = SKIN_VERTEX_NONE;

    cvertex() : celement(ELEMENT_VERTEX, 0) {}
    explicit cvertex(const cpoint3& position) : celement(ELEMENT_VERTEX, 0), p(position) {}
};

// A triangle: three vertex indices, three texture-vertex indices, a smoothing-group mask and
// a material (not owned).
struct cface : celement {
    std::int32_t v[3] = {-1, -1, -1};
    std::int32_t tv[3] = {-1, -1, -1};
    std::uint32_t smgroups = 0;
    cmaterial* material = nullptr;

    cface() : celement(ELEMENT_FACE, FACE_DEFAULT_FLAGS) {}
    cface(int a, int b, int c) : cface() {
        v[0] = a;
        v[1] = b;
        v[2] = c;
    }

    // 1 when the three vertex indices are in [0, numVerts) and pairwise different.
    int CheckVIndices(int numVerts) const { return CheckTriple(v, numVerts); }
    // The same test for the texture-vertex indices against `numTVerts`.
    int CheckTVIndices(int numTVerts) const { return CheckTriple(tv, numTVerts); }
    // The corner (0..2) holding vertex index `vi`, or -1.
    int FindVert(int vi) const { return v[0] == vi ? 0 : v[1] == vi ? 1 : v[2] == vi ? 2 : -1; }

private:
    static int CheckTriple(const std::int32_t (&i)[3], int count) {
        for (int k = 0; k < 3; ++k)
            if (i[k] < 0 || i[k] >= count) return 0;
        return i[0] != i[1] && i[1] != i[2] && i[0] != i[2];
    }
};

// An edge between two vertex indices. Edges are not stored; cmesh::GetEdge builds them.
struct cedge : celement {
    std::int32_t v[2] = {-1, -1};

    cedge() : celement(ELEMENT_EDGE, 0) {}
    // Intended: this constructor leaves the element type at 0.
    cedge(int a, int b) : celement(0, 0) {
        v[0] = a;
        v[1] = b;
    }

    bool operator==(const cedge& e) const { return v[0] == e.v[0] && v[1] == e.v[1]; }
    bool operator!=(const cedge& e) const { return !(*this == e); }
    // Exchanges the two indices.
    void Swap() {
        const std::int32_t t = v[0];
        v[0] = v[1];
        v[1] = t;
    }
    // 1 when both indices are >= 0 and different.
    int CheckIndices() const { return v[0] >= 0 && v[1] >= 0 && v[0] != v[1]; }
};

// The same indices in the same order.
inline int CompareEdge(const cedge& a, const cedge& b) {
    return a.v[0] == b.v[0] && a.v[1] == b.v[1];
}
// The same indices in the opposite order.
inline int CompareSwap(const cedge& a, const cedge& b) {
    return a.v[0] == b.v[1] && a.v[1] == b.v[0];
}
// The same indices in either order.
inline int CompareBoth(const cedge& a, const cedge& b) {
    return CompareEdge(a, b) || CompareSwap(a, b);
}
// A reversed copy, with type 0 and flags 0.
inline cedge Swap(const cedge& e) {
    return cedge(e.v[1], e.v[0]);
}

class CORE_API cmesh : public cnode {
public:
    // An empty mesh named "Mesh1": no elements, counters 0, a zero bounding box.
    cmesh();
    ~cmesh() override;

    // ---- cnode operations ----
    void Delete() override;
    // Sets `material` on every selected face at sub-object level 2, otherwise
    // SetMeshMaterial(material, 1).
    void SetMaterial(cmaterial* material) override;
    // The mesh material (not the faces').
    cmaterial* GetMaterial() const override;
    // The node part (cnode::Clone) plus a copy of every array, counter, box, flag and the
    // mesh and face materials; `target` must be a cmesh (or a class made from one, such as
    // a skin) for the mesh part.
    void Clone(int time, cnode& target) const override;
    // Copies type and flags of vertex, face or edge `index` (level 1, 2, 3) into `element`;
    // 1 only for 0 < index < count.
    int GetElement(celement& element, int index, unsigned int level) const override;
    int GetNumElements(unsigned int level) const override;
    int GetNumSelElements(unsigned int level) const override;
    int GetNumHiddenElements(unsigned int level) const override;
    // The world position at `time` of the selection centre of `level`; 0 with no selection.
    int GetSelElementsCenter(unsigned int level, int time, cpoint3& center) const override;
    // Selection and hiding at the node's sub-object level; return 1 at levels 1 to 3 and 0
    // at any other level.
    int SelectAll() override;
    int DeselectAll() override;
    int InvertSelection() override;
    void HideSelected() override;
    void UnhideAll() override;
    void DeleteSelected() override;
    // At sub-object levels 1 to 3 these transform the selected elements' vertices in object
    // space (`delta`, `rotation` and `center` are world values); at level 0 the node itself.
    void Move(int time, const cpoint3& delta, int mode, int ikOn, int iterations,
              float tolerance) override;
    void Rotate(int time, const cquat& rotation, const cpoint3& center, int flag) override;
    void Scale(int time, const cpoint3& factors, const cpoint3& center, int flag) override;
    // Mirrors the selected vertices (sub-object levels) or all vertices (level 0) across the
    // object-space plane through the selection centre (or the origin) normal to `axis`
    // (0 = x, 1 = y, 2 = z), then reverses the faces concerned so they keep facing outwards.
    // A non-null `tm` is used instead as the object-space mirror matrix.
    void Mirror(int time, int axis, cmatrix4* tm) override;
    int Load(cio_load& in, unsigned long version) override;
    int Save(cio_save& out) const override;
    // MSG_MTL_DELETED clears the mesh material and every face material equal to `a`.
    int HandleMessage(unsigned long msg, void* a, void* b) override;
    int IsMaterialUsed(cmaterial* material) const override;
    // These keep the vertices where they are in the world while the pivot moves.
    void ResetTransform(int time, int parts) override;
    // Moves the vertices so that the centre of the bounding box lies on the pivot.
    void CenterGeomToPivot(int time) override;
    using cnode::CenterPivotToGeom;
    // Moves the pivot to the centre of the bounding box.
    void CenterPivotToGeom(int time) override;
    int HandlesUVMapping() const override { return 1; }
    int IsRenderable() const override { return 1; }

    // ---- Arrays ----
    // Clears the mesh and creates `nverts` default vertices, `ntverts` zero texture vertices,
    // `nfaces` default faces and 3 x nfaces zero edge flags. 0 (mesh untouched) when
    // nverts < 1.
    int Allocate(int nverts, int ntverts, int nfaces);
    // Frees all arrays and the edge flags; counters, boxes and centres return to 0.
    void Clear();
    // Resize one array keeping the leading elements; n < 1 frees it. SetNumFaces keeps the
    // edge flags at 3 x faces. The int argument is unused and kept for callers.
    int SetNumVerts(int n, int keep = 1);
    int SetNumTVerts(int n, int keep = 1);
    int SetNumFaces(int n, int keep = 1);

    int NumVerts() const { return numVerts; }
    int NumTVerts() const { return numTVerts; }
    int NumFaces() const { return numFaces; }
    int NumEdges() const { return edgeFlags.GetSize(); }
    int NumNormals() const { return numVerts; }
    int NumSelVerts() const { return nselverts; }
    int NumSelFaces() const { return nselfaces; }
    int NumSelEdges() const { return nseledges; }
    int NumHiddenVerts() const { return nhiddenverts; }
    int NumHiddenFaces() const { return nhiddenfaces; }
    int NumHiddenEdges() const { return nhiddenedges; }

    // Getters: an index out of range gives 0 or a default element.
    cvertex GetVert(int i) const;
    cpoint3 GetVertPoint(int i) const;
    ccolor GetVertColor(int i) const;
    unsigned short GetVertFlags(int i) const;
    cpoint3 GetNormal(int i) const;
    cpoint3 GetTVert(int i) const;
    cface GetFace(int i) const;
    unsigned short GetFaceFlags(int i) const;
    // The normalised (P0 - P1) x (P2 - P1); zero for an invalid face.
    cpoint3 GetFaceNormal(int i) const;
    // The face's own material, without falling back to the mesh material.
    cmaterial* GetFaceMaterial(int i) const;
    // Edge e (corner e % 3 of face e / 3), type 3, with its flags.
    cedge GetEdge(int e) const;
    unsigned short GetEdgeFlags(int e) const;
    std::uint32_t GetSkinVertIndex(int i) const;
    // Read-only views of the arrays (null when empty), for algorithms over the whole mesh.
    const cvertex* GetVerts() const { return verts; }
    const cface* GetFaces() const { return faces; }
    const cpoint3* GetTVerts() const { return tverts; }

    // Setters: 0 (nothing changed) for an index out of range. Flag changes keep the counters.
    int SetVert(int i, const cpoint3& p);
    int SetVert(int i, const cvertex& v);
    int SetVertFlags(int i, unsigned short flags);
    int SetVertColor(int i, const ccolor& c);
    int SetNormal(int i, const cpoint3& n);
    int SetTVert(int i, const cpoint3& uvw);
    // Stores `face` (0 when its vertex indices are invalid) and keeps the counters.
    int SetFace(int i, const cface& face);
    int SetFaceFlags(int i, unsigned short flags);
    int SetEdgeFlags(int e, unsigned short flags);
    void SetFaceMaterial(int i, cmaterial* material);
    int SetSkinVertIndex(int i, std::uint32_t index);
    // Sets the smoothing mask of face i, or of every face when i is -1.
    int SetFaceSmGroups(int i, std::uint32_t mask);

    // ---- Derived data ----
    // Rebuilds the bounding box from all vertices.
    void CalcBBox();
    // Recomputes the three selection centres and the three hidden counters.
    void Update();
    // Selection boxes rebuilt from the selected elements; the centre is the box middle.
    void CalcSelVertsCenter();
    void CalcSelFacesCenter();
    void CalcSelEdgesCenter();
    cpoint3 GetSelVertsCenter() const { return selVertCenter; }
    cpoint3 GetSelFacesCenter() const { return selFaceCenter; }
    cpoint3 GetSelEdgesCenter() const { return selEdgeCenter; }
    void GetMeshBBox(cpoint3& min, cpoint3& max) const {
        min = bbMin;
        max = bbMax;
    }
    // Rebuilds the smoothing normals of every vertex from the valid faces, in face order.
    void CalcSmNormals();
    // The smoothing normal of `corner` (0..2) of `face`; 0 when out of range or when no
    // group of the vertex matches the face's mask (callers then use the face normal).
    int GetSmNormal(cpoint3& normal, int face, int corner) const;
    // 1 when face i's vertex indices are valid.
    int CheckFaceVIndices(int i) const;
    // 1 when edge e (corner e % 3 of face e / 3) joins two different vertices in range.
    // Inline: the adjacency and cluster builders ask it for every edge.
    int CheckEdgeVIndices(int e) const {
        if (e < 0 || e >= 3 * numFaces) return 0;
        const int a = faces[e / 3].v[e % 3], b = faces[e / 3].v[(e + 1) % 3];
        return a >= 0 && a < numVerts && b >= 0 && b < numVerts && a != b;
    }

    // ---- Materials ----
    // Sets the mesh material; with `clearFaces` non-zero every face's material becomes none.
    void SetMeshMaterial(cmaterial* material, int clearFaces);

    // ---- Display switches ----
    void ShowNormals(int on) { showNormals = on; }
    int GetShowNormalsFlag() const { return showNormals; }
    void IgnoreBack(int on) { ignoreBack = on; }
    int GetIgnoreBackFlag() const { return ignoreBack; }

    // ---- Adding and replacing ----
    // Append one element; return its index (-1 on failure; a face with invalid indices).
    int AddVert(const cpoint3& p);
    int AddVert(const cvertex& v);
    int AddTVert(const cpoint3& uvw);
    int AddFace(const cface& face);
    // Appends `mesh`'s vertices, texture vertices and faces with re-based indices. With
    // `keepSelection` 0 the appended elements are deselected. `clearMaterials` non-zero
    // gives the appended faces no material. Returns 1.
    int AddMesh(int keepSelection, const cmesh& mesh, int clearMaterials);
    // Replaces the whole content by a copy of `mesh`'s arrays.
    int SetMesh(const cmesh& mesh);
    // Replaces the content by `nverts` vertices at `points` (with `normals` when non-null),
    // `ntverts` texture vertices at `uvws` (when non-null) and `nfaces` faces of three
    // indices each from `indices` (used for vertices and, with texture vertices, for them
    // too). 0 when nverts < 1 or an index is invalid.
    int SetMesh(const cpoint3* points, const cpoint3* normals, const cpoint3* uvws,
                const int* indices, int nverts, int ntverts, int nfaces);

    // ---- Deleting ----
    // Deleting a vertex deletes the faces that use it; `clearUnused` non-zero then also
    // removes the vertices no face uses any more. Deleting a face or an edge (the faces that
    // contain it, in either direction) with `clearUnused` non-zero removes the vertices left
    // unused. Texture vertices removed leave the faces that used them with no texture indices.
    int DeleteVert(int i);
    int DeleteTVert(int i);
    int DeleteFace(int i);
    int DeleteEdge(int e);
    int DeleteVertSet(cbitarray& set, int clearUnused);
    int DeleteTVertSet(cbitarray& set, int clearUnused);
    int DeleteFaceSet(cbitarray& set, int clearUnused);
    int DeleteEdgeSet(cbitarray& set, int clearUnused);
    void DeleteSelVerts();
    void DeleteSelFaces();
    void DeleteSelEdges();
    // Remove vertices / texture vertices no face refers to, faces with invalid vertex indices.
    int ClearUnusedVerts();
    int ClearUnusedTVerts();
    int ClearInvalidFaces();
    int ClearAllUnused();
    // After vertex `removed` has been taken out of the array: every face index above it
    // moves down by one.
    void CorrectFacesIndices(int removed);

    // ---- Welding ----
    // Merges every vertex into the first earlier vertex at a distance <= `tolerance`, then
    // removes the faces that collapse and the vertices left unused. Returns the number of
    // vertices merged away.
    int WeldMesh(float tolerance);
    // Merges every member of `set` into one vertex: `target` when it is a valid index, else a
    // new position at the members' average. Returns the number of vertices merged away.
    int WeldVertSet(cbitarray& set, int target);
    // WeldMesh restricted to the selected vertices.
    int WeldSelVerts(float tolerance);

    // ---- Breaking ----
    // Gives every face using vertex i but the first its own copy of the vertex.
    int BreakVert(int i);
    // Gives face i its own copies of the vertices it shares with other faces.
    int BreakFace(int i);
    // Gives edge e's face its own copies of the edge's two vertices where they are shared.
    int BreakEdge(int e);
    int BreakVertSet(cbitarray& set);
    // The faces of the set get their own copies of the vertices they share with faces outside
    // the set (the set comes loose as one piece).
    int BreakFaceSet(cbitarray& set);
    int BreakEdgeSet(cbitarray& set);

    // ---- Dividing and rotating ----
    // Splits edge e at P(a) + t (P(b) - P(a)) with 0 < t < 1: its face becomes two faces; with
    // `both` non-zero every other face on the same two vertices is split at the same new
    // vertex. Returns the new vertex index, or -1.
    int DivideEdge(int e, float t, int both);
    // Splits face i into three at the new vertex `point` (object space) with texture
    // coordinates `uvw` (used when the face has valid texture indices) and colour `color`.
    // Returns the new vertex index, or -1.
    int DivideFace(int i, cpoint3 point, cpoint3 uvw, ccolor color);
    // Turns the diagonal shared by edge e's face and the face on the other side of the edge
    // (the one holding it in the opposite direction). 0 without such a face.
    int RotateEdge(int e);

    // ---- Extruding ----
    // Moves face i off the mesh by `distance` along `direction` (the face normal when
    // `direction` is zero) onto copies of its vertices, and closes the gap with two side faces
    // for every edge k with bit k set in `sideEdges`. Returns 1.
    int ExtrudeFace(int i, float distance, cpoint3 direction, unsigned short sideEdges);
    // Extrudes the selected faces as one region along the vertices' averaged normals, with
    // side faces along the region's border.
    int ExtrudeSelFaces(float distance);
    // Adds copies of edge e's two vertices moved by `distance` along `direction` (in the
    // face's plane, away from the face, when zero) and two faces joining them to the edge.
    int ExtrudeEdge(int e, float distance, cpoint3 direction);
    int ExtrudeSelEdges(float distance);

    // ---- Flipping, detaching, smoothing ----
    // Reverses every face: (a, b, c) becomes (c, b, a); the texture indices likewise; the
    // flags of edges 0 and 1 are exchanged. Smoothing normals are not rebuilt.
    void FlipAllFaces();
    // At sub-object level 2 only: reverses the selected faces, then rebuilds the smoothing
    // normals as well. Returns the number of faces flipped.
    int FlipSelFaces();
    // Moves the selected faces (and the vertices only they use) into a new mesh placed like
    // this one. Null without selected faces.
    cmesh* DetachSelFaces();
    // Stored vertex normals become the normalised average of the unnormalised normals of
    // the valid faces using each vertex; with `smNormals` non-zero also CalcSmNormals.
    void Smooth(int smNormals);
    // Assigns smoothing groups by face angle (degrees): faces joined across edges whose
    // normals differ by at most `angle` form clusters; clusters that share a vertex get
    // different groups. With `selectedOnly` only the selected faces change. 0 without
    // faces or vertices.
    int AutoSmooth(float angle, int selectedOnly);

    // ---- Selecting and hiding ----
    // Select (`select` non-zero) or deselect every member of the set.
    int SelectVertSet(const cbitarray& set, int select);
    int SelectFaceSet(const cbitarray& set, int select);
    int SelectEdgeSet(const cbitarray& set, int select);
    void SelectAllVerts();
    void SelectAllFaces();
    void SelectAllEdges();
    void DeselectAllVerts();
    void DeselectAllFaces();
    void DeselectAllEdges();
    void InvertSelVerts();
    void InvertSelFaces();
    void InvertSelEdges();
    // Hide every member of the set.
    int HideVertSet(const cbitarray& set);
    int HideFaceSet(const cbitarray& set);
    int HideEdgeSet(const cbitarray& set);
    void UnhideAllVerts();
    void UnhideAllFaces();
    void UnhideAllEdges();

    // The first face after `start` (start + 1 onwards; pass -1 to search from 0) holding the
    // edge a -> b, skipping faces whose flags share a bit with `skipFlags`; -1 when none.
    int FindFaceFromEdge(int a, int b, int start, unsigned short skipFlags) const;
    // The same search for b -> a: the face on the other side of a face's edge a -> b.
    int FindAdjacentFaceFromEdge(int a, int b, int start, unsigned short skipFlags) const;

protected:
    // Replaces this mesh's content by `other`'s: the arrays as SetMesh copies them, the mesh
    // material and the display switches.
    void CopyMeshContent(const cmesh& other);

private:
    // The selected and hidden counters of sub-object `level` (1 to 3).
    int& SelCounter(int level);
    int& HiddenCounter(int level);
    // Applies the counter rules of a flag change of element `index` at `level` and returns
    // the flags to store. `faceRule`: an element hidden before and after keeps its flags.
    unsigned short CountFlagChange(int level, int index, unsigned short oldFlags,
                                   unsigned short newFlags, bool faceRule);
    // Grows the selection box of `level` by the vertices of element `index`.
    void GrowSelBoxByElement(int level, int index);
    // Rebuilds the selection box and centre of `level` from the selected elements.
    void RebuildSelBox(int level, cpoint3& min, cpoint3& max, cpoint3& center);
    // The vertex indices of element `index` at `level` (1 to 3 of them); returns the count.
    int ElementVerts(int level, int index, int out[3]) const;
    // Recounts the selected and hidden counters from the flags.
    void Recount();

    // The editing algorithms' shared steps (appending and removing elements in bulk).
    friend struct MeshEditor;

    cvertex* verts = nullptr;
    cpoint3* tverts = nullptr;
    cface* faces = nullptr;
    int numVerts = 0;
    int numTVerts = 0;
    int numFaces = 0;
    cbitarray edgeFlags;
    cpoint3 selVertMin, selVertMax, selVertCenter;
    cpoint3 selFaceMin, selFaceMax, selFaceCenter;
    cpoint3 selEdgeMin, selEdgeMax, selEdgeCenter;
    int nselverts = 0;
    int nselfaces = 0;
    int nseledges = 0;
    int nhiddenverts = 0;
    int nhiddenfaces = 0;
    int nhiddenedges = 0;
    cmaterial* meshMaterial = nullptr;
    int showNormals = 0;
    int ignoreBack = 0;
};

// A new mesh on the heap (as the constructor makes it).
CORE_API cmesh* CreateNewMesh();

// Stores the host's mesh-creation sub-mode; nothing in the library reads it back.
CORE_API void Mesh_CreateSubMode(int mode);
// The value last stored by Mesh_CreateSubMode (0 before any call).
CORE_API int Mesh_GetCreateSubMode();

#endif
