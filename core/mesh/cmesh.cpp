// cmesh: the arrays, their accessors, the counters kept in step with the flags, the boxes,
// the smoothing normals and the materials.
#include "cmesh.h"

#include <algorithm>
#include <new>

#include "mesh/elementarray.h"
#include "mesh/meshbox.h"
#include "runtime/check.h"

namespace {

int createSubMode = 0;

bool InRange(int i, int count) {
    return i >= 0 && i < count;
}

// Resizes the edge flags to `count` entries, keeping the leading ones; new entries are 0.
void ResizeEdgeFlags(cbitarray& flags, int count) {
    const int old = flags.GetSize();
    flags.SetSize(count, 0);
    for (int i = old; i < count; ++i) flags.Reset(i);
}

constexpr unsigned short kSelected = ELEMENT_SELECTED;
constexpr unsigned short kHidden = ELEMENT_HIDDEN;

}  // namespace

cmesh* CreateNewMesh() {
    return new (std::nothrow) cmesh();
}

void Mesh_CreateSubMode(int mode) {
    createSubMode = mode;
}

int Mesh_GetCreateSubMode() {
    return createSubMode;
}

cmesh::cmesh() : cnode("Mesh1") {
    SetTypeID(TYPE_MESH);
}

cmesh::~cmesh() {
    Clear();
}

void cmesh::Delete() {
    delete this;
}

// ---- Arrays ----

int cmesh::Allocate(int nverts, int ntverts, int nfaces) {
    // Intended: a mesh is never allocated without vertices.
    if (nverts < 1) return 0;
    Clear();
    verts = CopyElements<cvertex>(nullptr, 0, nverts);
    CORE_CHECK(verts != nullptr, "verts");
    if (!verts) return 0;
    numVerts = nverts;
    if (ntverts > 0) {
        tverts = CopyElements<cpoint3>(nullptr, 0, ntverts);
        CORE_CHECK(tverts != nullptr, "tverts");
        if (tverts) numTVerts = ntverts;
    }
    if (nfaces > 0) {
        faces = CopyElements<cface>(nullptr, 0, nfaces);
        CORE_CHECK(faces != nullptr, "faces");
        if (faces) numFaces = nfaces;
    }
    edgeFlags = cbitarray(3 * numFaces);
    return 1;
}

void cmesh::Clear() {
    DeleteElements(verts, numVerts);
    DeleteElements(tverts, numTVerts);
    DeleteElements(faces, numFaces);
    verts = nullptr;
    tverts = nullptr;
    faces = nullptr;
    numVerts = numTVerts = numFaces = 0;
    edgeFlags = cbitarray();
    nselverts = nselfaces = nseledges = 0;
    nhiddenverts = nhiddenfaces = nhiddenedges = 0;
    bbMin = bbMax = cpoint3();
    selVertMin = selVertMax = selVertCenter = cpoint3();
    selFaceMin = selFaceMax = selFaceCenter = cpoint3();
    selEdgeMin = selEdgeMax = selEdgeCenter = cpoint3();
}

namespace {

// Resizes one element array in place; `name` is the allocation report's text.
template <class T>
int ResizeArray(T*& array, int& count, int n, char const* name) {
    if (n < 1) {
        DeleteElements(array, count);
        array = nullptr;
        count = 0;
        return 1;
    }
    T* resized = CopyElements(array, count, n);
    if (!resized) {
        MyAssertFailedLine(name, CORE_SOURCE_NAME, __LINE__);
        return 0;
    }
    DeleteElements(array, count);
    array = resized;
    count = n;
    return 1;
}

}  // namespace

int cmesh::SetNumVerts(int n, int) {
    const int ok = ResizeArray(verts, numVerts, n, "verts");
    Recount();
    return ok;
}

int cmesh::SetNumTVerts(int n, int) {
    return ResizeArray(tverts, numTVerts, n, "tverts");
}

int cmesh::SetNumFaces(int n, int) {
    const int ok = ResizeArray(faces, numFaces, n, "faces");
    ResizeEdgeFlags(edgeFlags, 3 * numFaces);
    Recount();
    return ok;
}

// ---- Getters ----

cvertex cmesh::GetVert(int i) const {
    return InRange(i, numVerts) ? verts[i] : cvertex();
}

cpoint3 cmesh::GetVertPoint(int i) const {
    return InRange(i, numVerts) ? verts[i].p : cpoint3();
}

ccolor cmesh::GetVertColor(int i) const {
    return InRange(i, numVerts) ? verts[i].color : ccolor();
}

unsigned short cmesh::GetVertFlags(int i) const {
    return InRange(i, numVerts) ? verts[i].flags : 0;
}

cpoint3 cmesh::GetNormal(int i) const {
    return InRange(i, numVerts) ? verts[i].normal : cpoint3();
}

cpoint3 cmesh::GetTVert(int i) const {
    return InRange(i, numTVerts) ? tverts[i] : cpoint3();
}

cface cmesh::GetFace(int i) const {
    return InRange(i, numFaces) ? faces[i] : cface();
}

unsigned short cmesh::GetFaceFlags(int i) const {
    return InRange(i, numFaces) ? faces[i].flags : 0;
}

cpoint3 cmesh::GetFaceNormal(int i) const {
    if (!CheckFaceVIndices(i)) return cpoint3();
    return Normalize(FaceCross(verts, faces[i]));
}

cmaterial* cmesh::GetFaceMaterial(int i) const {
    return InRange(i, numFaces) ? faces[i].material : nullptr;
}

cedge cmesh::GetEdge(int e) const {
    cedge edge;
    if (!InRange(e, 3 * numFaces) || e >= edgeFlags.GetSize()) return edge;
    const cface& f = faces[e / 3];
    edge.v[0] = f.v[e % 3];
    edge.v[1] = f.v[(e + 1) % 3];
    edge.flags = static_cast<std::uint16_t>(edgeFlags[e]);
    return edge;
}

unsigned short cmesh::GetEdgeFlags(int e) const {
    return InRange(e, edgeFlags.GetSize()) ? static_cast<unsigned short>(edgeFlags[e]) : 0;
}

std::uint32_t cmesh::GetSkinVertIndex(int i) const {
    return InRange(i, numVerts) ? verts[i].skinIndex : SKIN_VERTEX_NONE;
}

int cmesh::CheckFaceVIndices(int i) const {
    return InRange(i, numFaces) && faces[i].CheckVIndices(numVerts);
}

// ---- Counters ----

int& cmesh::SelCounter(int level) {
    return level == 1 ? nselverts : level == 2 ? nselfaces : nseledges;
}

int& cmesh::HiddenCounter(int level) {
    return level == 1 ? nhiddenverts : level == 2 ? nhiddenfaces : nhiddenedges;
}

unsigned short cmesh::CountFlagChange(int level, int index, unsigned short oldFlags,
                                      unsigned short newFlags, bool faceRule) {
    int& selected = SelCounter(level);
    int& hidden = HiddenCounter(level);
    const bool wasSelected = (oldFlags & kSelected) != 0;
    const bool wasHidden = (oldFlags & kHidden) != 0;
    unsigned short stored = newFlags;
    if (newFlags & kHidden) {
        if (!wasHidden) {
            if (wasSelected) --selected;
            ++hidden;
        }
        // Intended: a face hidden before and after keeps its flags exactly as given.
        if (!faceRule || !wasHidden) stored = static_cast<unsigned short>(stored & ~kSelected);
        return stored;
    }
    if (wasHidden) hidden = std::max(0, hidden - 1);
    const bool isSelected = (newFlags & kSelected) != 0;
    if (!wasSelected && isSelected) {
        ++selected;
        GrowSelBoxByElement(level, index);
    } else if (wasSelected && !isSelected) {
        --selected;
    }
    return stored;
}

int cmesh::ElementVerts(int level, int index, int out[3]) const {
    if (level == 1) {
        out[0] = index;
        return 1;
    }
    const cface& f = faces[level == 2 ? index : index / 3];
    if (level == 2) {
        std::copy(f.v, f.v + 3, out);
        return 3;
    }
    out[0] = f.v[index % 3];
    out[1] = f.v[(index + 1) % 3];
    return 2;
}

void cmesh::GrowSelBoxByElement(int level, int index) {
    cpoint3* box[3][2] = {
        {&selVertMin, &selVertMax}, {&selFaceMin, &selFaceMax}, {&selEdgeMin, &selEdgeMax}};
    int corners[3];
    const int n = ElementVerts(level, index, corners);
    for (int k = 0; k < n; ++k)
        if (InRange(corners[k], numVerts))
            GrowBox(*box[level - 1][0], *box[level - 1][1], verts[corners[k]].p);
}

void cmesh::Recount() {
    nselverts = nselfaces = nseledges = 0;
    nhiddenverts = nhiddenfaces = nhiddenedges = 0;
    for (int i = 0; i < numVerts; ++i) {
        nselverts += verts[i].IsSelected();
        nhiddenverts += verts[i].IsHidden();
    }
    for (int i = 0; i < numFaces; ++i) {
        nselfaces += faces[i].IsSelected();
        nhiddenfaces += faces[i].IsHidden();
    }
    for (int e = 0; e < edgeFlags.GetSize(); ++e) {
        nseledges += (edgeFlags[e] & kSelected) != 0;
        nhiddenedges += (edgeFlags[e] & kHidden) != 0;
    }
}

// ---- Setters ----

int cmesh::SetVert(int i, const cpoint3& p) {
    if (!InRange(i, numVerts)) return 0;
    verts[i].p = p;
    return 1;
}

int cmesh::SetVert(int i, const cvertex& v) {
    if (!InRange(i, numVerts)) return 0;
    const unsigned short oldFlags = verts[i].flags;
    verts[i] = v;
    verts[i].flags = CountFlagChange(1, i, oldFlags, v.flags, false);
    return 1;
}

int cmesh::SetVertFlags(int i, unsigned short flags) {
    if (!InRange(i, numVerts)) return 0;
    verts[i].flags = CountFlagChange(1, i, verts[i].flags, flags, false);
    return 1;
}

int cmesh::SetVertColor(int i, const ccolor& c) {
    if (!InRange(i, numVerts)) return 0;
    verts[i].color = c;
    return 1;
}

int cmesh::SetNormal(int i, const cpoint3& n) {
    if (!InRange(i, numVerts)) return 0;
    verts[i].normal = n;
    return 1;
}

int cmesh::SetTVert(int i, const cpoint3& uvw) {
    if (!InRange(i, numTVerts)) return 0;
    tverts[i] = uvw;
    return 1;
}

int cmesh::SetFace(int i, const cface& face) {
    if (!InRange(i, numFaces) || !face.CheckVIndices(numVerts)) return 0;
    const cface old = faces[i];
    faces[i] = face;
    faces[i].flags = CountFlagChange(2, i, old.flags, face.flags, true);
    const bool staysSelected = old.IsSelected() && faces[i].IsSelected();
    if (staysSelected && !std::equal(old.v, old.v + 3, face.v)) {
        for (int k = 0; k < 3; ++k)
            if (InRange(old.v[k], numVerts))
                SetVertFlags(old.v[k],
                             static_cast<unsigned short>(verts[old.v[k]].flags & ~kSelected));
        for (int k = 0; k < 3; ++k)
            if (!verts[face.v[k]].IsHidden())
                SetVertFlags(face.v[k],
                             static_cast<unsigned short>(verts[face.v[k]].flags | kSelected));
    }
    return 1;
}

int cmesh::SetFaceFlags(int i, unsigned short flags) {
    if (!InRange(i, numFaces)) return 0;
    faces[i].flags = CountFlagChange(2, i, faces[i].flags, flags, true);
    return 1;
}

int cmesh::SetEdgeFlags(int e, unsigned short flags) {
    if (!InRange(e, edgeFlags.GetSize())) return 0;
    const auto old = static_cast<unsigned short>(edgeFlags[e]);
    edgeFlags.Set(e, CountFlagChange(3, e, old, flags, false));
    return 1;
}

void cmesh::SetFaceMaterial(int i, cmaterial* material) {
    if (InRange(i, numFaces)) faces[i].material = material;
}

int cmesh::SetSkinVertIndex(int i, std::uint32_t index) {
    if (!InRange(i, numVerts)) return 0;
    verts[i].skinIndex = index;
    return 1;
}

int cmesh::SetFaceSmGroups(int i, std::uint32_t mask) {
    if (i == -1) {
        for (int f = 0; f < numFaces; ++f) faces[f].smgroups = mask;
        return 1;
    }
    if (!InRange(i, numFaces)) return 0;
    faces[i].smgroups = mask;
    return 1;
}

// ---- Boxes and centres ----

void cmesh::CalcBBox() {
    bbMin = bbMax = cpoint3();
    for (int i = 0; i < numVerts; ++i) GrowBox(bbMin, bbMax, verts[i].p);
}

void cmesh::RebuildSelBox(int level, cpoint3& min, cpoint3& max, cpoint3& center) {
    min = max = cpoint3();
    const int count = GetNumElements(static_cast<unsigned int>(level));
    for (int i = 0; i < count; ++i) {
        const bool selected = level == 1   ? verts[i].IsSelected()
                              : level == 2 ? faces[i].IsSelected()
                                           : (edgeFlags[i] & kSelected) != 0;
        if (!selected || (level > 1 && !CheckFaceVIndices(level == 2 ? i : i / 3))) continue;
        int corners[3];
        const int n = ElementVerts(level, i, corners);
        for (int k = 0; k < n; ++k) GrowBox(min, max, verts[corners[k]].p);
    }
    center = (min + max) * 0.5f;
}

void cmesh::CalcSelVertsCenter() {
    RebuildSelBox(1, selVertMin, selVertMax, selVertCenter);
}

void cmesh::CalcSelFacesCenter() {
    RebuildSelBox(2, selFaceMin, selFaceMax, selFaceCenter);
}

void cmesh::CalcSelEdgesCenter() {
    RebuildSelBox(3, selEdgeMin, selEdgeMax, selEdgeCenter);
}

void cmesh::Update() {
    CalcSelVertsCenter();
    CalcSelFacesCenter();
    CalcSelEdgesCenter();
    nhiddenverts = nhiddenfaces = nhiddenedges = 0;
    for (int i = 0; i < numVerts; ++i) nhiddenverts += verts[i].IsHidden();
    for (int i = 0; i < numFaces; ++i) nhiddenfaces += faces[i].IsHidden();
    for (int e = 0; e < edgeFlags.GetSize(); ++e) nhiddenedges += (edgeFlags[e] & kHidden) != 0;
}

// ---- Smoothing normals ----

void cmesh::CalcSmNormals() {
    // The nodes of the old normals are reused: meshes rebuild their normals after every edit.
    for (int i = 0; i < numVerts; ++i) verts[i].sm.Recycle();
    for (int i = 0; i < numFaces; ++i) {
        const cface& f = faces[i];
        if (!f.CheckVIndices(numVerts)) continue;
        // Not normalised: larger faces weigh more.
        const cpoint3 n = FaceCross(verts, f);
        for (int k = 0; k < 3; ++k) verts[f.v[k]].sm.AddNormal(n, f.smgroups);
    }
    for (int i = 0; i < numVerts; ++i) verts[i].sm.Normalize();
}

int cmesh::GetSmNormal(cpoint3& normal, int face, int corner) const {
    if (!CheckFaceVIndices(face) || corner < 0 || corner > 2) return 0;
    const cface& f = faces[face];
    return verts[f.v[corner]].sm.GetNormal(normal, f.smgroups);
}

// ---- Materials ----

void cmesh::SetMeshMaterial(cmaterial* material, int clearFaces) {
    meshMaterial = material;
    if (!clearFaces) return;
    for (int i = 0; i < numFaces; ++i) faces[i].material = nullptr;
}

void cmesh::SetMaterial(cmaterial* material) {
    if (GetSubLevel() != 2) {
        SetMeshMaterial(material, 1);
        return;
    }
    for (int i = 0; i < numFaces; ++i)
        if (faces[i].IsSelected()) faces[i].material = material;
}

cmaterial* cmesh::GetMaterial() const {
    return meshMaterial;
}

int cmesh::IsMaterialUsed(cmaterial* material) const {
    if (meshMaterial == material) return 1;
    for (int i = 0; i < numFaces; ++i)
        if (faces[i].material == material) return 1;
    return 0;
}

int cmesh::HandleMessage(unsigned long msg, void* a, void* b) {
    if (msg != MSG_MTL_DELETED) return cnode::HandleMessage(msg, a, b);
    int changed = 0;
    if (meshMaterial && meshMaterial == a) {
        meshMaterial = nullptr;
        changed = 1;
    }
    for (int i = 0; i < numFaces; ++i) {
        if (!faces[i].material || faces[i].material != a) continue;
        faces[i].material = nullptr;
        changed = 1;
    }
    return changed;
}

// ---- Sub-object levels ----

int cmesh::GetNumElements(unsigned int level) const {
    return level == 1 ? numVerts : level == 2 ? numFaces : level == 3 ? NumEdges() : 0;
}

int cmesh::GetNumSelElements(unsigned int level) const {
    return level == 1 ? nselverts : level == 2 ? nselfaces : level == 3 ? nseledges : 0;
}

int cmesh::GetNumHiddenElements(unsigned int level) const {
    return level == 1 ? nhiddenverts : level == 2 ? nhiddenfaces : level == 3 ? nhiddenedges : 0;
}

int cmesh::GetElement(celement& element, int index, unsigned int level) const {
    // Intended: index 0 is refused at every level.
    if (index <= 0 || index >= GetNumElements(level)) return 0;
    if (level == 1) element = celement(ELEMENT_VERTEX, verts[index].flags);
    if (level == 2) element = celement(ELEMENT_FACE, faces[index].flags);
    if (level == 3) element = celement(ELEMENT_EDGE, GetEdgeFlags(index));
    return 1;
}

int cmesh::GetSelElementsCenter(unsigned int level, int time, cpoint3& center) const {
    if (GetNumSelElements(level) == 0) return 0;
    const cpoint3 local = level == 1 ? selVertCenter : level == 2 ? selFaceCenter : selEdgeCenter;
    center = local * GetNodeTM(time, TM_ALL);
    return 1;
}

int cmesh::SelectAll() {
    switch (GetSubLevel()) {
        case 1:
            SelectAllVerts();
            return 1;
        case 2:
            SelectAllFaces();
            return 1;
        case 3:
            SelectAllEdges();
            return 1;
        default:
            return 0;
    }
}

int cmesh::DeselectAll() {
    switch (GetSubLevel()) {
        case 1:
            DeselectAllVerts();
            return 1;
        case 2:
            DeselectAllFaces();
            return 1;
        case 3:
            DeselectAllEdges();
            return 1;
        default:
            return 0;
    }
}

int cmesh::InvertSelection() {
    switch (GetSubLevel()) {
        case 1:
            InvertSelVerts();
            return 1;
        case 2:
            InvertSelFaces();
            return 1;
        case 3:
            InvertSelEdges();
            return 1;
        default:
            return 0;
    }
}

void cmesh::UnhideAll() {
    switch (GetSubLevel()) {
        case 1:
            UnhideAllVerts();
            break;
        case 2:
            UnhideAllFaces();
            break;
        case 3:
            UnhideAllEdges();
            break;
        default:
            break;
    }
}

void cmesh::DeleteSelected() {
    switch (GetSubLevel()) {
        case 1:
            DeleteSelVerts();
            break;
        case 2:
            DeleteSelFaces();
            break;
        case 3:
            DeleteSelEdges();
            break;
        default:
            break;
    }
}

// ---- Copies ----

void cmesh::Clone(int time, cnode& target) const {
    cnode::Clone(time, target);
    auto* mesh = dynamic_cast<cmesh*>(&target);
    if (mesh && mesh != this) mesh->CopyMeshContent(*this);
}

void cmesh::CopyMeshContent(const cmesh& other) {
    SetMesh(other);
    meshMaterial = other.meshMaterial;
    showNormals = other.showNormals;
    ignoreBack = other.ignoreBack;
}
