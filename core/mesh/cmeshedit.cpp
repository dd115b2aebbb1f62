// The mesh editing operations: adding, replacing, deleting, welding, breaking, dividing,
// rotating edges, extruding, flipping and detaching. Every operation leaves all face indices
// in range, the counters equal to a recount and 3 edge flags per face.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "animclock.h"
#include "cmesh.h"
#include "mesh/elementarray.h"
#include "mesh/meshbox.h"
#include "mesh/mesheditor.h"
#include "runtime/check.h"

namespace {

bool InRange(int i, int count) {
    return i >= 0 && i < count;
}

int Next(int k) {
    return (k + 1) % 3;
}

int Prev(int k) {
    return (k + 2) % 3;
}

// Replaces `array` (of `count` elements) by a copy holding `extra` more elements.
template <class T>
int Grow(T*& array, int& count, int extra, char const* name) {
    T* grown = CopyElements(array, count, count + extra);
    if (!grown) {
        MyAssertFailedLine(name, CORE_SOURCE_NAME, __LINE__);
        return 0;
    }
    DeleteElements(array, count);
    array = grown;
    count += extra;
    return 1;
}

// Keeps the elements whose `remove` entry is 0, in order; returns the old-to-new index map
// (-1 for removed elements).
template <class T>
std::vector<int> Compact(T*& array, int& count, const std::vector<char>& remove) {
    std::vector<int> map(static_cast<size_t>(count), -1);
    int kept = 0;
    for (int i = 0; i < count; ++i)
        if (!remove[static_cast<size_t>(i)]) map[static_cast<size_t>(i)] = kept++;
    if (kept == count) return map;
    T* compacted = kept ? CopyElements<T>(nullptr, 0, kept) : nullptr;
    for (int i = 0; i < count; ++i)
        if (map[static_cast<size_t>(i)] >= 0) compacted[map[static_cast<size_t>(i)]] = array[i];
    DeleteElements(array, count);
    array = compacted;
    count = kept;
    return map;
}

cpoint3 Lerp(const cpoint3& a, const cpoint3& b, float t) {
    return a + (b - a) * t;
}

ccolor Lerp(const ccolor& a, const ccolor& b, float t) {
    return a + (b - a) * t;
}

// A vertex between `a` and `b` at parameter t: position, stored normal and colour
// interpolated, flags clear, no skin vertex.
cvertex Between(const cvertex& a, const cvertex& b, float t) {
    cvertex v(Lerp(a.p, b.p, t));
    v.normal = Lerp(a.normal, b.normal, t);
    v.color = Lerp(a.color, b.color, t);
    return v;
}

// A new face like `like` (flags without selection, smoothing mask, material) on new indices.
cface FaceLike(const cface& like, int a, int b, int c) {
    cface f(a, b, c);
    f.flags = static_cast<std::uint16_t>(like.flags & ~ELEMENT_SELECTED);
    f.smgroups = like.smgroups;
    f.material = like.material;
    return f;
}

// An undirected edge as one 64-bit key.
std::uint64_t EdgeKey(int a, int b) {
    const auto lo = static_cast<std::uint32_t>(std::min(a, b));
    const auto hi = static_cast<std::uint32_t>(std::max(a, b));
    return (static_cast<std::uint64_t>(hi) << 32) | lo;
}

std::vector<int> Identity(int count) {
    std::vector<int> map(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) map[static_cast<size_t>(i)] = i;
    return map;
}

}  // namespace

// ---- Shared steps ----

std::vector<char> MeshEditor::Members(const cbitarray& set, int count) {
    std::vector<char> members(static_cast<size_t>(std::max(count, 0)), 0);
    const int n = std::min(count, set.GetSize());
    const int* data = set.GetData();
    for (int i = 0; i < n; ++i) members[static_cast<size_t>(i)] = data[i] != 0;
    return members;
}

cbitarray MeshEditor::ToSet(const std::vector<char>& members) {
    cbitarray set(static_cast<int>(members.size()));
    for (size_t i = 0; i < members.size(); ++i)
        if (members[i]) set.Set(static_cast<int>(i));
    return set;
}

void MeshEditor::Refresh(cmesh& m) {
    m.Recount();
    m.CalcSelVertsCenter();
    m.CalcSelFacesCenter();
    m.CalcSelEdgesCenter();
    m.CalcBBox();
    m.CalcSmNormals();
}

int MeshEditor::AppendVerts(cmesh& m, const std::vector<cvertex>& extra) {
    const int first = m.numVerts;
    if (extra.empty() || !Grow(m.verts, m.numVerts, static_cast<int>(extra.size()), "verts"))
        return first;
    std::copy(extra.begin(), extra.end(), m.verts + first);
    return first;
}

int MeshEditor::AppendTVerts(cmesh& m, const std::vector<cpoint3>& extra) {
    const int first = m.numTVerts;
    if (extra.empty() || !Grow(m.tverts, m.numTVerts, static_cast<int>(extra.size()), "tverts"))
        return first;
    std::copy(extra.begin(), extra.end(), m.tverts + first);
    return first;
}

int MeshEditor::AppendFaces(cmesh& m, const std::vector<cface>& extra,
                            const std::vector<unsigned short>& extraEdges) {
    const int first = m.numFaces;
    if (extra.empty() || !Grow(m.faces, m.numFaces, static_cast<int>(extra.size()), "faces"))
        return first;
    std::copy(extra.begin(), extra.end(), m.faces + first);
    m.edgeFlags.SetSize(3 * m.numFaces, 0);
    for (int e = 3 * first; e < 3 * m.numFaces; ++e) {
        const auto k = static_cast<size_t>(e - 3 * first);
        m.edgeFlags.Set(e, k < extraEdges.size() ? extraEdges[k] : 0);
    }
    return first;
}

int MeshEditor::RemoveFaces(cmesh& m, const std::vector<char>& remove) {
    const int before = m.numFaces;
    const std::vector<int> map = Compact(m.faces, m.numFaces, remove);
    if (m.numFaces == before) return 0;
    cbitarray edges(3 * m.numFaces);
    for (int f = 0; f < before; ++f) {
        const int to = map[static_cast<size_t>(f)];
        for (int k = 0; to >= 0 && k < 3; ++k) edges.Set(3 * to + k, m.edgeFlags[3 * f + k]);
    }
    m.edgeFlags = std::move(edges);
    return before - m.numFaces;
}

int MeshEditor::RemoveVerts(cmesh& m, const std::vector<char>& remove) {
    std::vector<char> deadFaces(static_cast<size_t>(m.numFaces), 0);
    for (int f = 0; f < m.numFaces; ++f)
        for (int k = 0; k < 3; ++k) {
            const int v = m.faces[f].v[k];
            if (InRange(v, m.numVerts) && remove[static_cast<size_t>(v)])
                deadFaces[static_cast<size_t>(f)] = 1;
        }
    RemoveFaces(m, deadFaces);
    const int before = m.numVerts;
    const std::vector<int> map = Compact(m.verts, m.numVerts, remove);
    for (int f = 0; f < m.numFaces; ++f)
        for (int k = 0; k < 3; ++k) {
            std::int32_t& v = m.faces[f].v[k];
            if (InRange(v, before)) v = map[static_cast<size_t>(v)];
        }
    return before - m.numVerts;
}

int MeshEditor::RemoveTVerts(cmesh& m, const std::vector<char>& remove) {
    const int before = m.numTVerts;
    const std::vector<int> map = Compact(m.tverts, m.numTVerts, remove);
    for (int f = 0; f < m.numFaces; ++f) {
        std::int32_t(&tv)[3] = m.faces[f].tv;
        bool lost = false;
        for (int k = 0; k < 3; ++k)
            if (InRange(tv[k], before)) {
                tv[k] = map[static_cast<size_t>(tv[k])];
                lost = lost || tv[k] < 0;
            }
        if (lost) tv[0] = tv[1] = tv[2] = -1;
    }
    return before - m.numTVerts;
}

std::vector<char> MeshEditor::UnusedVerts(const cmesh& m) {
    std::vector<char> unused(static_cast<size_t>(m.numVerts), 1);
    for (int f = 0; f < m.numFaces; ++f)
        for (int k = 0; k < 3; ++k)
            if (InRange(m.faces[f].v[k], m.numVerts))
                unused[static_cast<size_t>(m.faces[f].v[k])] = 0;
    return unused;
}

int MeshEditor::MergeVerts(cmesh& m, const std::vector<int>& mapTo) {
    std::vector<char> collapsed(static_cast<size_t>(m.numFaces), 0);
    for (int f = 0; f < m.numFaces; ++f) {
        cface& face = m.faces[f];
        for (int k = 0; k < 3; ++k)
            if (InRange(face.v[k], m.numVerts)) face.v[k] = mapTo[static_cast<size_t>(face.v[k])];
        collapsed[static_cast<size_t>(f)] =
            face.v[0] == face.v[1] || face.v[1] == face.v[2] || face.v[0] == face.v[2];
    }
    RemoveFaces(m, collapsed);
    std::vector<char> merged(static_cast<size_t>(m.numVerts), 0);
    for (int v = 0; v < m.numVerts; ++v)
        merged[static_cast<size_t>(v)] = mapTo[static_cast<size_t>(v)] != v;
    return RemoveVerts(m, merged);
}

int MeshEditor::CopyVertForFace(cmesh& m, int f, int v) {
    cvertex copy = m.verts[v];
    copy.sm.Clear();
    const int index = AppendVerts(m, {copy});
    cface& face = m.faces[f];
    face.v[face.FindVert(v)] = index;
    return index;
}

void MeshEditor::SetCorners(cmesh& m, int f, const std::int32_t (&v)[3]) {
    std::copy(v, v + 3, m.faces[f].v);
}

void MeshEditor::FlipFace(cmesh& m, int f) {
    cface& face = m.faces[f];
    std::swap(face.v[0], face.v[2]);
    std::swap(face.tv[0], face.tv[2]);
    const int e0 = m.edgeFlags[3 * f];
    m.edgeFlags.Set(3 * f, m.edgeFlags[3 * f + 1]);
    m.edgeFlags.Set(3 * f + 1, e0);
}

// ---- Adding and replacing ----

int cmesh::AddVert(const cpoint3& p) {
    return AddVert(cvertex(p));
}

int cmesh::AddVert(const cvertex& v) {
    cvertex fresh = v;
    fresh.flags = 0;
    const int before = numVerts;
    const int index = MeshEditor::AppendVerts(*this, {fresh});
    if (numVerts == before) return -1;
    SetVert(index, v);
    GrowBox(bbMin, bbMax, v.p);
    return index;
}

int cmesh::AddTVert(const cpoint3& uvw) {
    const int before = numTVerts;
    const int index = MeshEditor::AppendTVerts(*this, {uvw});
    return numTVerts == before ? -1 : index;
}

int cmesh::AddFace(const cface& face) {
    if (!face.CheckVIndices(numVerts)) return -1;
    cface fresh = face;
    fresh.flags = 0;
    const int before = numFaces;
    const int index = MeshEditor::AppendFaces(*this, {fresh}, {});
    if (numFaces == before) return -1;
    SetFace(index, face);
    return index;
}

int cmesh::AddMesh(int keepSelection, const cmesh& mesh, int clearMaterials) {
    if (&mesh == this) return 0;
    std::vector<cvertex> newVerts(mesh.verts, mesh.verts + mesh.numVerts);
    std::vector<cpoint3> newTVerts(mesh.tverts, mesh.tverts + mesh.numTVerts);
    std::vector<cface> newFaces(mesh.faces, mesh.faces + mesh.numFaces);
    std::vector<unsigned short> newEdges(static_cast<size_t>(3 * mesh.numFaces));
    const auto unselect = [&](auto flags) {
        return static_cast<decltype(flags)>(keepSelection ? flags : flags & ~ELEMENT_SELECTED);
    };
    for (cvertex& v : newVerts) v.flags = unselect(v.flags);
    for (int e = 0; e < 3 * mesh.numFaces; ++e)
        newEdges[static_cast<size_t>(e)] = unselect(static_cast<std::uint16_t>(mesh.edgeFlags[e]));
    const int vertBase = numVerts, tvertBase = numTVerts;
    for (cface& f : newFaces) {
        f.flags = unselect(f.flags);
        if (clearMaterials) f.material = nullptr;
        // A negative index means none and stays so; re-basing it could make it valid.
        for (int k = 0; k < 3; ++k) {
            if (f.v[k] >= 0) f.v[k] += vertBase;
            if (f.tv[k] >= 0) f.tv[k] += tvertBase;
        }
    }
    MeshEditor::AppendVerts(*this, newVerts);
    MeshEditor::AppendTVerts(*this, newTVerts);
    MeshEditor::AppendFaces(*this, newFaces, newEdges);
    MeshEditor::Refresh(*this);
    return 1;
}

int cmesh::SetMesh(const cmesh& mesh) {
    if (&mesh == this) return 1;
    Clear();
    MeshEditor::AppendVerts(*this, std::vector<cvertex>(mesh.verts, mesh.verts + mesh.numVerts));
    MeshEditor::AppendTVerts(*this,
                             std::vector<cpoint3>(mesh.tverts, mesh.tverts + mesh.numTVerts));
    std::vector<unsigned short> edges(static_cast<size_t>(3 * mesh.numFaces), 0);
    const int copied = std::min(3 * mesh.numFaces, mesh.edgeFlags.GetSize());
    for (int e = 0; e < copied; ++e)
        edges[static_cast<size_t>(e)] = static_cast<unsigned short>(mesh.edgeFlags[e]);
    MeshEditor::AppendFaces(*this, std::vector<cface>(mesh.faces, mesh.faces + mesh.numFaces),
                            edges);
    MeshEditor::Refresh(*this);
    return 1;
}

int cmesh::SetMesh(const cpoint3* points, const cpoint3* normals, const cpoint3* uvws,
                   const int* indices, int nverts, int ntverts, int nfaces) {
    if (nverts < 1 || !points || (nfaces > 0 && !indices)) return 0;
    const bool textured = uvws && ntverts > 0;
    for (int i = 0; i < 3 * std::max(nfaces, 0); i += 3) {
        cface probe(indices[i], indices[i + 1], indices[i + 2]);
        if (!probe.CheckVIndices(nverts)) return 0;
        if (textured && !probe.CheckVIndices(ntverts)) return 0;
    }
    if (!Allocate(nverts, textured ? ntverts : 0, nfaces)) return 0;
    for (int i = 0; i < nverts; ++i) {
        verts[i].p = points[i];
        if (normals) verts[i].normal = normals[i];
    }
    for (int i = 0; i < numTVerts; ++i) tverts[i] = uvws[i];
    for (int f = 0; f < numFaces; ++f)
        for (int k = 0; k < 3; ++k) {
            faces[f].v[k] = indices[3 * f + k];
            if (textured) faces[f].tv[k] = indices[3 * f + k];
        }
    MeshEditor::Refresh(*this);
    return 1;
}

// ---- Deleting ----

namespace {

// A set with one member.
cbitarray Single(int i, int count) {
    cbitarray set(count);
    set.Set(i);
    return set;
}

}  // namespace

int cmesh::DeleteVert(int i) {
    if (!InRange(i, numVerts)) return 0;
    cbitarray set = Single(i, numVerts);
    return DeleteVertSet(set, 0);
}

int cmesh::DeleteTVert(int i) {
    if (!InRange(i, numTVerts)) return 0;
    cbitarray set = Single(i, numTVerts);
    return DeleteTVertSet(set, 0);
}

int cmesh::DeleteFace(int i) {
    if (!InRange(i, numFaces)) return 0;
    cbitarray set = Single(i, numFaces);
    return DeleteFaceSet(set, 0);
}

int cmesh::DeleteEdge(int e) {
    if (!InRange(e, 3 * numFaces)) return 0;
    cbitarray set = Single(e, 3 * numFaces);
    return DeleteEdgeSet(set, 0);
}

int cmesh::DeleteVertSet(cbitarray& set, int clearUnused) {
    if (numVerts == 0) return 0;
    MeshEditor::RemoveVerts(*this, MeshEditor::Members(set, numVerts));
    if (clearUnused) MeshEditor::RemoveVerts(*this, MeshEditor::UnusedVerts(*this));
    MeshEditor::Refresh(*this);
    return 1;
}

int cmesh::DeleteTVertSet(cbitarray& set, int) {
    if (numTVerts == 0) return 0;
    MeshEditor::RemoveTVerts(*this, MeshEditor::Members(set, numTVerts));
    return 1;
}

int cmesh::DeleteFaceSet(cbitarray& set, int clearUnused) {
    if (numFaces == 0) return 0;
    MeshEditor::RemoveFaces(*this, MeshEditor::Members(set, numFaces));
    if (clearUnused) MeshEditor::RemoveVerts(*this, MeshEditor::UnusedVerts(*this));
    MeshEditor::Refresh(*this);
    return 1;
}

int cmesh::DeleteEdgeSet(cbitarray& set, int clearUnused) {
    if (numFaces == 0) return 0;
    const std::vector<char> members = MeshEditor::Members(set, 3 * numFaces);
    std::vector<std::uint64_t> keys;
    for (int e = 0; e < 3 * numFaces; ++e)
        if (members[static_cast<size_t>(e)])
            keys.push_back(EdgeKey(faces[e / 3].v[e % 3], faces[e / 3].v[Next(e % 3)]));
    std::sort(keys.begin(), keys.end());
    cbitarray doomed(numFaces);
    for (int f = 0; f < numFaces; ++f)
        for (int k = 0; k < 3; ++k)
            if (std::binary_search(keys.begin(), keys.end(),
                                   EdgeKey(faces[f].v[k], faces[f].v[Next(k)])))
                doomed.Set(f);
    return DeleteFaceSet(doomed, clearUnused);
}

namespace {

// The selected elements' set, checked against the selected counter.
template <class IsSelected>
cbitarray GatherSelected(int count, int counter, char const* report, IsSelected isSelected) {
    std::vector<int> found;
    found.reserve(static_cast<size_t>(counter));
    for (int i = 0; i < count; ++i)
        if (isSelected(i)) found.push_back(i);
    if (static_cast<int>(found.size()) != counter)
        MyAssertFailedLine(report, CORE_SOURCE_NAME, __LINE__);
    cbitarray set(count);
    for (int i : found) set.Set(i);
    return set;
}

}  // namespace

void cmesh::DeleteSelVerts() {
    if (numVerts == 0 || nselverts == 0) return;
    cbitarray set = GatherSelected(numVerts, nselverts, "isel==nselverts",
                                   [this](int i) { return verts[i].IsSelected(); });
    DeleteVertSet(set, 1);
    CalcSmNormals();
}

void cmesh::DeleteSelFaces() {
    if (numFaces == 0 || nselfaces == 0) return;
    cbitarray set = GatherSelected(numFaces, nselfaces, "isel==nselfaces",
                                   [this](int i) { return faces[i].IsSelected(); });
    DeleteFaceSet(set, 1);
    CalcSmNormals();
}

void cmesh::DeleteSelEdges() {
    if (NumEdges() == 0 || nseledges == 0) return;
    cbitarray set = GatherSelected(NumEdges(), nseledges, "isel==nseledges", [this](int e) {
        return (edgeFlags[e] & ELEMENT_SELECTED) != 0;
    });
    DeleteEdgeSet(set, 1);
    CalcSmNormals();
}

int cmesh::ClearUnusedVerts() {
    const int removed = MeshEditor::RemoveVerts(*this, MeshEditor::UnusedVerts(*this));
    if (removed) MeshEditor::Refresh(*this);
    return removed;
}

int cmesh::ClearUnusedTVerts() {
    std::vector<char> unused(static_cast<size_t>(numTVerts), 1);
    for (int f = 0; f < numFaces; ++f)
        for (int k = 0; k < 3; ++k)
            if (InRange(faces[f].tv[k], numTVerts)) unused[static_cast<size_t>(faces[f].tv[k])] = 0;
    return MeshEditor::RemoveTVerts(*this, unused);
}

int cmesh::ClearInvalidFaces() {
    std::vector<char> invalid(static_cast<size_t>(numFaces), 0);
    for (int f = 0; f < numFaces; ++f)
        invalid[static_cast<size_t>(f)] = !faces[f].CheckVIndices(numVerts);
    const int removed = MeshEditor::RemoveFaces(*this, invalid);
    if (removed) MeshEditor::Refresh(*this);
    return removed;
}

int cmesh::ClearAllUnused() {
    const int faces_ = ClearInvalidFaces();
    const int verts_ = ClearUnusedVerts();
    const int tverts_ = ClearUnusedTVerts();
    return faces_ + verts_ + tverts_;
}

void cmesh::CorrectFacesIndices(int removed) {
    for (int f = 0; f < numFaces; ++f)
        for (int k = 0; k < 3; ++k)
            if (faces[f].v[k] > removed) --faces[f].v[k];
}

// ---- Welding ----

namespace {

// Hashes points into cubic cells of side `cell` so that neighbours within `cell` are found in
// the 27 cells around a point.
class PointGrid {
public:
    explicit PointGrid(float cell) : size(cell > 0.0f ? cell : 1.0f) {}

    void Insert(const cpoint3& p, int index) { cells[Key(Cell(p))].push_back(index); }

    // Calls `visit(index)` for every point stored in the cells around `p`.
    template <class Visit>
    void ForNear(const cpoint3& p, Visit visit) const {
        const Coord c = Cell(p);
        for (int dx = -1; dx <= 1; ++dx)
            for (int dy = -1; dy <= 1; ++dy)
                for (int dz = -1; dz <= 1; ++dz) {
                    const auto it = cells.find(Key({c.x + dx, c.y + dy, c.z + dz}));
                    if (it == cells.end()) continue;
                    for (int i : it->second) visit(i);
                }
    }

private:
    struct Coord {
        long long x, y, z;
    };
    Coord Cell(const cpoint3& p) const {
        return {static_cast<long long>(std::floor(p.x / size)),
                static_cast<long long>(std::floor(p.y / size)),
                static_cast<long long>(std::floor(p.z / size))};
    }
    static std::uint64_t Key(const Coord& c) {
        const auto mix = [](long long v) {
            return static_cast<std::uint64_t>(v) * 0x9E3779B97F4A7C15ull;
        };
        return mix(c.x) ^ (mix(c.y) >> 21) ^ (mix(c.z) << 17) ^ static_cast<std::uint64_t>(c.z);
    }

    float size;
    std::unordered_map<std::uint64_t, std::vector<int>> cells;
};

}  // namespace

namespace {

// For the member vertices in index order: the first earlier member kept as a representative
// that lies within `tolerance` (distance <= tolerance), or the vertex itself.
std::vector<int> WeldMap(const cvertex* verts, int count, const std::vector<char>& members,
                         float tolerance) {
    std::vector<int> mapTo = Identity(count);
    PointGrid grid(tolerance);
    for (int i = 0; i < count; ++i) {
        if (!members[static_cast<size_t>(i)]) continue;
        int best = i;
        grid.ForNear(verts[i].p, [&](int j) {
            if (j < best && Distance(verts[i].p, verts[j].p) <= tolerance) best = j;
        });
        mapTo[static_cast<size_t>(i)] = best;
        if (best == i) grid.Insert(verts[i].p, i);
    }
    return mapTo;
}

}  // namespace

int cmesh::WeldMesh(float tolerance) {
    if (numVerts == 0 || tolerance < 0.0f) return 0;
    const std::vector<char> all(static_cast<size_t>(numVerts), 1);
    const int merged = MeshEditor::MergeVerts(*this, WeldMap(verts, numVerts, all, tolerance));
    MeshEditor::Refresh(*this);
    return merged;
}

int cmesh::WeldSelVerts(float tolerance) {
    if (numVerts == 0 || nselverts == 0 || tolerance < 0.0f) return 0;
    std::vector<char> selected(static_cast<size_t>(numVerts), 0);
    for (int i = 0; i < numVerts; ++i) selected[static_cast<size_t>(i)] = verts[i].IsSelected();
    const int merged = MeshEditor::MergeVerts(*this, WeldMap(verts, numVerts, selected, tolerance));
    MeshEditor::Refresh(*this);
    return merged;
}

int cmesh::WeldVertSet(cbitarray& set, int target) {
    const std::vector<char> members = MeshEditor::Members(set, numVerts);
    std::vector<int> list;
    for (int i = 0; i < numVerts; ++i)
        if (members[static_cast<size_t>(i)]) list.push_back(i);
    if (list.empty() || (list.size() == 1 && !InRange(target, numVerts))) return 0;
    int keep = target;
    if (!InRange(target, numVerts)) {
        cpoint3 sum;
        for (int i : list) sum += verts[i].p;
        keep = list.front();
        verts[keep].p = sum / static_cast<float>(list.size());
    }
    std::vector<int> mapTo = Identity(numVerts);
    for (int i : list) mapTo[static_cast<size_t>(i)] = keep;
    const int merged = MeshEditor::MergeVerts(*this, mapTo);
    MeshEditor::Refresh(*this);
    return merged;
}

// ---- Breaking ----

int cmesh::BreakVert(int i) {
    if (!InRange(i, numVerts)) return 0;
    cbitarray set = Single(i, numVerts);
    return BreakVertSet(set);
}

int cmesh::BreakVertSet(cbitarray& set) {
    if (numVerts == 0) return 0;
    const std::vector<char> members = MeshEditor::Members(set, numVerts);
    std::vector<char> seen(static_cast<size_t>(numVerts), 0);
    const int faceCount = numFaces;
    for (int f = 0; f < faceCount; ++f) {
        if (!faces[f].CheckVIndices(numVerts)) continue;
        for (int k = 0; k < 3; ++k) {
            const int v = faces[f].v[k];
            if (v >= static_cast<int>(members.size()) || !members[static_cast<size_t>(v)]) continue;
            // The first face keeps the vertex; every later one gets a copy.
            if (seen[static_cast<size_t>(v)]) MeshEditor::CopyVertForFace(*this, f, v);
            seen[static_cast<size_t>(v)] = 1;
        }
    }
    MeshEditor::Refresh(*this);
    return 1;
}

int cmesh::BreakFace(int i) {
    if (!InRange(i, numFaces)) return 0;
    cbitarray set = Single(i, numFaces);
    return BreakFaceSet(set);
}

int cmesh::BreakFaceSet(cbitarray& set) {
    if (numFaces == 0) return 0;
    const std::vector<char> members = MeshEditor::Members(set, numFaces);
    // Vertices used both inside and outside the set get one copy for the whole set.
    std::vector<char> inside(static_cast<size_t>(numVerts), 0), outside(inside);
    for (int f = 0; f < numFaces; ++f) {
        if (!faces[f].CheckVIndices(numVerts)) continue;
        for (int k = 0; k < 3; ++k)
            (members[static_cast<size_t>(f)] ? inside
                                             : outside)[static_cast<size_t>(faces[f].v[k])] = 1;
    }
    std::vector<int> copyOf(static_cast<size_t>(numVerts), -1);
    const int vertCount = numVerts;
    for (int v = 0; v < vertCount; ++v) {
        if (!inside[static_cast<size_t>(v)] || !outside[static_cast<size_t>(v)]) continue;
        cvertex copy = verts[v];
        copy.sm.Clear();
        copyOf[static_cast<size_t>(v)] = MeshEditor::AppendVerts(*this, {copy});
    }
    for (int f = 0; f < numFaces; ++f) {
        if (!members[static_cast<size_t>(f)] || !faces[f].CheckVIndices(vertCount)) continue;
        for (int k = 0; k < 3; ++k) {
            const int to = copyOf[static_cast<size_t>(faces[f].v[k])];
            if (to >= 0) faces[f].v[k] = to;
        }
    }
    MeshEditor::Refresh(*this);
    return 1;
}

int cmesh::BreakEdge(int e) {
    if (!InRange(e, 3 * numFaces)) return 0;
    cbitarray set = Single(e, 3 * numFaces);
    return BreakEdgeSet(set);
}

int cmesh::BreakEdgeSet(cbitarray& set) {
    if (numFaces == 0) return 0;
    const std::vector<char> members = MeshEditor::Members(set, 3 * numFaces);
    std::vector<int> users(static_cast<size_t>(numVerts), 0);
    for (int f = 0; f < numFaces; ++f)
        if (faces[f].CheckVIndices(numVerts))
            for (int k = 0; k < 3; ++k) ++users[static_cast<size_t>(faces[f].v[k])];
    for (int e = 0; e < 3 * numFaces; ++e) {
        const int f = e / 3;
        if (!members[static_cast<size_t>(e)] || !faces[f].CheckVIndices(numVerts)) continue;
        for (int v : {faces[f].v[e % 3], faces[f].v[Next(e % 3)]}) {
            if (users[static_cast<size_t>(v)] < 2) continue;
            --users[static_cast<size_t>(v)];
            MeshEditor::CopyVertForFace(*this, f, v);
            users.push_back(1);
        }
    }
    MeshEditor::Refresh(*this);
    return 1;
}

// ---- Dividing and rotating ----

namespace {

// Splits face `f` at the new vertex `mid` on its edge `k`: the face keeps corners k and k + 2
// with `mid` in corner k + 1, and a new face (mid, corner k + 1, corner k + 2) is queued with
// its edge flags. `tmid` is the texture vertex at `mid` (-1 for none).
void SplitFaceAtEdge(cface& face, const int edges[3], int k, int mid, int tmid,
                     std::vector<cface>& newFaces, std::vector<unsigned short>& newEdges) {
    cface second = face;
    second.flags = static_cast<std::uint16_t>(face.flags & ~ELEMENT_SELECTED);
    second.v[k] = mid;
    if (tmid >= 0) second.tv[k] = tmid;
    face.v[Next(k)] = mid;
    if (tmid >= 0) face.tv[Next(k)] = tmid;
    newFaces.push_back(second);
    unsigned short secondEdges[3];
    secondEdges[k] = static_cast<unsigned short>(edges[k]);
    secondEdges[Next(k)] = static_cast<unsigned short>(edges[Next(k)]);
    secondEdges[Prev(k)] = 0;
    newEdges.insert(newEdges.end(), secondEdges, secondEdges + 3);
}

}  // namespace

int cmesh::DivideEdge(int e, float t, int both) {
    if (!InRange(e, 3 * numFaces) || !CheckFaceVIndices(e / 3) || !(t > 0.0f && t < 1.0f))
        return -1;
    const int a = faces[e / 3].v[e % 3], b = faces[e / 3].v[Next(e % 3)];
    const int mid = MeshEditor::AppendVerts(*this, {Between(verts[a], verts[b], t)});
    std::vector<cface> newFaces;
    std::vector<unsigned short> newEdges;
    const int faceCount = numFaces;
    for (int f = 0; f < faceCount; ++f) {
        if (f != e / 3 && (!both || !faces[f].CheckVIndices(numVerts))) continue;
        cface& face = faces[f];
        const int ka = face.FindVert(a), kb = face.FindVert(b);
        if (ka < 0 || kb < 0) continue;
        // The edge's first corner in this face's own winding, and the parameter from it.
        const int k = Next(ka) == kb ? ka : kb;
        const float along = k == ka ? t : 1.0f - t;
        int tmid = -1;
        if (face.CheckTVIndices(numTVerts))
            tmid = MeshEditor::AppendTVerts(
                *this, {Lerp(tverts[face.tv[k]], tverts[face.tv[Next(k)]], along)});
        const int edges[3] = {edgeFlags[3 * f], edgeFlags[3 * f + 1], edgeFlags[3 * f + 2]};
        edgeFlags.Set(3 * f + Next(k), 0);
        SplitFaceAtEdge(faces[f], edges, k, mid, tmid, newFaces, newEdges);
    }
    MeshEditor::AppendFaces(*this, newFaces, newEdges);
    MeshEditor::Refresh(*this);
    return mid;
}

int cmesh::DivideFace(int i, cpoint3 point, cpoint3 uvw, ccolor color) {
    if (!CheckFaceVIndices(i)) return -1;
    cvertex v(point);
    v.color = color;
    v.normal = GetFaceNormal(i);
    const int mid = MeshEditor::AppendVerts(*this, {v});
    const cface old = faces[i];
    int tmid = -1;
    if (old.CheckTVIndices(numTVerts)) tmid = MeshEditor::AppendTVerts(*this, {uvw});
    // Corner k's new face runs along the old edge k to the new vertex: (v_k, v_k+1, mid).
    std::vector<cface> newFaces;
    std::vector<unsigned short> newEdges;
    for (int k = 0; k < 3; ++k) {
        cface f = k == 0 ? old : FaceLike(old, 0, 0, 0);
        f.v[0] = old.v[k];
        f.v[1] = old.v[Next(k)];
        f.v[2] = mid;
        if (tmid >= 0) {
            f.tv[0] = old.tv[k];
            f.tv[1] = old.tv[Next(k)];
            f.tv[2] = tmid;
        }
        const auto flags = static_cast<unsigned short>(edgeFlags[3 * i + k]);
        if (k == 0) {
            faces[i] = f;
            edgeFlags.Set(3 * i, flags);
            edgeFlags.Set(3 * i + 1, 0);
            edgeFlags.Set(3 * i + 2, 0);
            continue;
        }
        newFaces.push_back(f);
        newEdges.insert(newEdges.end(), {flags, 0, 0});
    }
    MeshEditor::AppendFaces(*this, newFaces, newEdges);
    MeshEditor::Refresh(*this);
    return mid;
}

int cmesh::RotateEdge(int e) {
    if (!InRange(e, 3 * numFaces) || !CheckFaceVIndices(e / 3)) return 0;
    const int f = e / 3, k = e % 3;
    const int a = faces[f].v[k], b = faces[f].v[Next(k)], c = faces[f].v[Prev(k)];
    int g = -1;
    while ((g = FindAdjacentFaceFromEdge(a, b, g, 0)) == f) {
    }
    if (g < 0) return 0;
    const int j = faces[g].FindVert(b);
    const int d = faces[g].v[Prev(j)];
    if (d == c) return 0;
    // The quad a, d, b, c is split along c-d instead of a-b: (a, d, c) and (b, c, d).
    cface& ff = faces[f];
    cface& gg = faces[g];
    const int ftv[3] = {ff.tv[k], ff.tv[Next(k)], ff.tv[Prev(k)]};  // a, b, c
    const int gtv[3] = {gg.tv[j], gg.tv[Next(j)], gg.tv[Prev(j)]};  // b, a, d
    const int fe[3] = {edgeFlags[3 * f + k], edgeFlags[3 * f + Next(k)],
                       edgeFlags[3 * f + Prev(k)]};
    const int ge[3] = {edgeFlags[3 * g + j], edgeFlags[3 * g + Next(j)],
                       edgeFlags[3 * g + Prev(j)]};
    ff.v[k] = a, ff.v[Next(k)] = d, ff.v[Prev(k)] = c;
    ff.tv[k] = ftv[0], ff.tv[Next(k)] = gtv[2], ff.tv[Prev(k)] = ftv[2];
    gg.v[j] = b, gg.v[Next(j)] = c, gg.v[Prev(j)] = d;
    gg.tv[j] = gtv[0], gg.tv[Next(j)] = ftv[2], gg.tv[Prev(j)] = gtv[2];
    // a-d was g's edge, b-c was f's; the new diagonal keeps each face's old diagonal flags.
    edgeFlags.Set(3 * f + k, ge[1]);
    edgeFlags.Set(3 * f + Next(k), fe[0]);
    edgeFlags.Set(3 * f + Prev(k), fe[2]);
    edgeFlags.Set(3 * g + j, fe[1]);
    edgeFlags.Set(3 * g + Next(j), ge[0]);
    edgeFlags.Set(3 * g + Prev(j), ge[2]);
    if (!ff.CheckTVIndices(numTVerts) || !gg.CheckTVIndices(numTVerts))
        for (int m = 0; m < 3; ++m) ff.tv[m] = gg.tv[m] = -1;
    MeshEditor::Refresh(*this);
    return 1;
}

// ---- Extruding ----

namespace {

// Queues the two side faces closing the gap between edge a -> b of a face that moved to
// a2 -> b2: (a, b, b2) and (a, b2, a2), wound like the moved face.
void AddSideFaces(const cface& like, int a, int b, int a2, int b2, std::vector<cface>& out) {
    out.push_back(FaceLike(like, a, b, b2));
    out.push_back(FaceLike(like, a, b2, a2));
}

}  // namespace

namespace {

// Moves the member faces onto copies of their vertices displaced by offset(v), and adds side
// faces along the edges `side(face, k)` accepts.
template <class Offset, class Side>
void ExtrudeFaces(cmesh& m, const std::vector<char>& member, Offset offset, Side side) {
    const int vertCount = m.NumVerts(), faceCount = m.NumFaces();
    std::vector<int> copyOf(static_cast<size_t>(vertCount), -1);
    std::vector<cvertex> copies;
    for (int f = 0; f < faceCount; ++f) {
        if (!member[static_cast<size_t>(f)]) continue;
        const cface face = m.GetFace(f);
        for (int k = 0; k < 3; ++k) {
            int& c = copyOf[static_cast<size_t>(face.v[k])];
            if (c >= 0) continue;
            cvertex copy = m.GetVert(face.v[k]);
            copy.sm.Clear();
            copy.flags = 0;
            copy.p += offset(face.v[k]);
            c = vertCount + static_cast<int>(copies.size());
            copies.push_back(copy);
        }
    }
    MeshEditor::AppendVerts(m, copies);
    std::vector<cface> sides;
    for (int f = 0; f < faceCount; ++f) {
        if (!member[static_cast<size_t>(f)]) continue;
        cface face = m.GetFace(f);
        for (int k = 0; k < 3; ++k) {
            if (!side(f, k)) continue;
            const int a = face.v[k], b = face.v[Next(k)];
            AddSideFaces(face, a, b, copyOf[static_cast<size_t>(a)], copyOf[static_cast<size_t>(b)],
                         sides);
        }
        for (int k = 0; k < 3; ++k) face.v[k] = copyOf[static_cast<size_t>(face.v[k])];
        MeshEditor::SetCorners(m, f, face.v);
    }
    MeshEditor::AppendFaces(m, sides, {});
    MeshEditor::Refresh(m);
}

cpoint3 DirectionOr(const cpoint3& direction, const cpoint3& fallback) {
    return LengthSq(direction) > 0.0f ? Normalize(direction) : fallback;
}

}  // namespace

int cmesh::ExtrudeFace(int i, float distance, cpoint3 direction, unsigned short sideEdges) {
    if (!CheckFaceVIndices(i)) return 0;
    const cpoint3 offset = DirectionOr(direction, GetFaceNormal(i)) * distance;
    std::vector<char> member(static_cast<size_t>(numFaces), 0);
    member[static_cast<size_t>(i)] = 1;
    ExtrudeFaces(
        *this, member, [&](int) { return offset; },
        [&](int, int k) { return (sideEdges >> k) & 1; });
    return 1;
}

int cmesh::ExtrudeSelFaces(float distance) {
    if (nselfaces == 0) return 0;
    std::vector<char> member(static_cast<size_t>(numFaces), 0);
    std::vector<cpoint3> normal(static_cast<size_t>(numVerts));
    std::vector<std::uint64_t> directed;
    for (int f = 0; f < numFaces; ++f) {
        if (!faces[f].IsSelected() || !faces[f].CheckVIndices(numVerts)) continue;
        member[static_cast<size_t>(f)] = 1;
        const cpoint3 n = FaceCross(verts, faces[f]);
        for (int k = 0; k < 3; ++k) {
            normal[static_cast<size_t>(faces[f].v[k])] += n;
            directed.push_back((static_cast<std::uint64_t>(faces[f].v[k]) << 32) |
                               static_cast<std::uint32_t>(faces[f].v[Next(k)]));
        }
    }
    std::sort(directed.begin(), directed.end());
    // A border edge a -> b has no member face holding b -> a.
    const auto border = [&](int f, int k) {
        const std::uint64_t back = (static_cast<std::uint64_t>(faces[f].v[Next(k)]) << 32) |
                                   static_cast<std::uint32_t>(faces[f].v[k]);
        return !std::binary_search(directed.begin(), directed.end(), back);
    };
    ExtrudeFaces(
        *this, member, [&](int v) { return Normalize(normal[static_cast<size_t>(v)]) * distance; },
        border);
    return 1;
}

int cmesh::ExtrudeEdge(int e, float distance, cpoint3 direction) {
    if (!InRange(e, 3 * numFaces) || !CheckFaceVIndices(e / 3)) return 0;
    const cface face = faces[e / 3];
    const int k = e % 3;
    const int a = face.v[k], b = face.v[Next(k)];
    const cpoint3 pa = verts[a].p, pb = verts[b].p, pc = verts[face.v[Prev(k)]].p;
    // In the face's plane, perpendicular to the edge, away from the opposite corner.
    cpoint3 away = CrossProd(pb - pa, GetFaceNormal(e / 3));
    if (DotProd(away, (pa + pb) * 0.5f - pc) < 0.0f) away = -away;
    const cpoint3 offset = DirectionOr(direction, Normalize(away)) * distance;
    cvertex na = verts[a], nb = verts[b];
    na.sm.Clear();
    nb.sm.Clear();
    na.flags = nb.flags = 0;
    na.p += offset;
    nb.p += offset;
    const int first = MeshEditor::AppendVerts(*this, {na, nb});
    // The new faces hold the edge as b -> a, the way a neighbour of the face would.
    MeshEditor::AppendFaces(*this,
                            {FaceLike(face, b, a, first), FaceLike(face, b, first, first + 1)}, {});
    MeshEditor::Refresh(*this);
    return 1;
}

int cmesh::ExtrudeSelEdges(float distance) {
    if (nseledges == 0) return 0;
    std::vector<int> selected;
    for (int e = 0; e < NumEdges(); ++e)
        if ((edgeFlags[e] & ELEMENT_SELECTED) && CheckFaceVIndices(e / 3)) selected.push_back(e);
    // New faces are appended, so the selected edges keep their numbers.
    for (int e : selected) ExtrudeEdge(e, distance, cpoint3());
    return selected.empty() ? 0 : 1;
}

// ---- Flipping and detaching ----

void cmesh::FlipAllFaces() {
    for (int f = 0; f < numFaces; ++f) MeshEditor::FlipFace(*this, f);
    CalcSelVertsCenter();
    CalcSelFacesCenter();
    CalcSelEdgesCenter();
    // Intended: the smoothing normals are left for the caller to rebuild.
}

int cmesh::FlipSelFaces() {
    if (GetSubLevel() != 2) return 0;
    int flipped = 0;
    for (int f = 0; f < numFaces; ++f) {
        if (!faces[f].IsSelected()) continue;
        MeshEditor::FlipFace(*this, f);
        ++flipped;
    }
    if (flipped) {
        CalcSelVertsCenter();
        CalcSelFacesCenter();
        CalcSelEdgesCenter();
        // Intended: unlike FlipAllFaces, the smoothing normals are rebuilt here.
        CalcSmNormals();
    }
    return flipped;
}

cmesh* cmesh::DetachSelFaces() {
    if (nselfaces == 0) return nullptr;
    std::vector<char> member(static_cast<size_t>(numFaces), 0);
    std::vector<int> newIndex(static_cast<size_t>(numVerts), -1);
    std::vector<cvertex> newVerts;
    std::vector<cface> newFaces;
    std::vector<unsigned short> newEdges;
    for (int f = 0; f < numFaces; ++f) {
        if (!faces[f].IsSelected() || !faces[f].CheckVIndices(numVerts)) continue;
        member[static_cast<size_t>(f)] = 1;
        cface face = faces[f];
        for (int k = 0; k < 3; ++k) {
            int& to = newIndex[static_cast<size_t>(face.v[k])];
            if (to < 0) {
                to = static_cast<int>(newVerts.size());
                newVerts.push_back(verts[face.v[k]]);
                newVerts.back().sm.Clear();
            }
            face.v[k] = to;
            newEdges.push_back(static_cast<unsigned short>(edgeFlags[3 * f + k]));
        }
        newFaces.push_back(face);
    }
    if (newFaces.empty()) return nullptr;
    cmesh* detached = CreateNewMesh();
    if (!detached) return nullptr;
    // Texture vertices are copied whole; the detached mesh's ClearUnusedTVerts trims them.
    MeshEditor::AppendVerts(*detached, newVerts);
    MeshEditor::AppendTVerts(*detached, std::vector<cpoint3>(tverts, tverts + numTVerts));
    MeshEditor::AppendFaces(*detached, newFaces, newEdges);
    detached->ClearUnusedTVerts();
    detached->SetMeshMaterial(meshMaterial, 0);
    const int now = GetAnimTime();
    detached->SetNodeTM(now, GetNodeTM(now, TM_ALL), TM_ALL);
    detached->SetSubLevel(GetSubLevel());
    MeshEditor::Refresh(*detached);
    MeshEditor::RemoveFaces(*this, member);
    MeshEditor::RemoveVerts(*this, MeshEditor::UnusedVerts(*this));
    MeshEditor::Refresh(*this);
    return detached;
}
