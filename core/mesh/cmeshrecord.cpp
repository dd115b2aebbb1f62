// The mesh record: the node base record followed by the arrays, read at every older layout.
#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "ciofields.h"
#include "cmaterial.h"
#include "cmesh.h"
#include "mesh/elementarray.h"
#include "mtllist.h"
#include "runtime/check.h"

namespace {

// Versions from which the record holds each field.
constexpr unsigned long kHiddenCountsFrom = 4;
constexpr unsigned long kMaterialIndexFrom = 6;
constexpr unsigned long kSmGroupsFrom = 8;
constexpr unsigned long kSkinIndexFrom = 9;

// The material name field of records below kMaterialIndexFrom.
constexpr unsigned int kOldMaterialNameSize = 32;

// Record sizes of one element at `version`, to check counts against the stream.
unsigned long VertexBytes(unsigned long version) {
    return 2 + 12 + 12 + 16 + (version >= kSkinIndexFrom ? 4 : 0);
}

unsigned long FaceBytes(unsigned long version) {
    return 2 + 12 + 12 + (version >= kSmGroupsFrom ? 4 : 0) +
           (version >= kMaterialIndexFrom ? 4 : kOldMaterialNameSize);
}

// The index of the first list material named like `material`, or -1. Meshes use few
// materials, so the answers are remembered per material.
class MaterialIndexer {
public:
    int IndexOf(const cmaterial* material) {
        if (!material) return -1;
        for (const auto& known : found)
            if (known.first == material) return known.second;
        int index = -1;
        for (int i = 0; i < MtlList::NumMaterials() && index < 0; ++i) {
            const cmaterial* candidate = MtlList::GetMaterialAt(i);
            if (candidate && std::strcmp(candidate->GetName(), material->GetName()) == 0) index = i;
        }
        found.emplace_back(material, index);
        return index;
    }

private:
    std::vector<std::pair<const cmaterial*, int>> found;
};

int WriteVertex(cio_save& out, const cvertex& v) {
    return WriteUInt16(out, v.flags) && WritePoint3(out, v.p) && WritePoint3(out, v.normal) &&
           WriteColor(out, v.color) && WriteUInt32(out, v.skinIndex);
}

int ReadVertex(cio_load& in, unsigned long version, cvertex& v) {
    unsigned short flags = 0;
    if (!(ReadUInt16(in, flags) && ReadPoint3(in, v.p) && ReadPoint3(in, v.normal) &&
          ReadColor(in, v.color)))
        return 0;
    v.flags = flags;
    if (version < kSkinIndexFrom) return 1;
    unsigned int skin = 0;
    if (!ReadUInt32(in, skin)) return 0;
    v.skinIndex = skin;
    return 1;
}

int WriteIndices(cio_save& out, const std::int32_t (&i)[3]) {
    return WriteInt32(out, i[0]) && WriteInt32(out, i[1]) && WriteInt32(out, i[2]);
}

int ReadIndices(cio_load& in, std::int32_t (&i)[3]) {
    int a = 0, b = 0, c = 0;
    if (!(ReadInt32(in, a) && ReadInt32(in, b) && ReadInt32(in, c))) return 0;
    i[0] = a;
    i[1] = b;
    i[2] = c;
    return 1;
}

int WriteFace(cio_save& out, const cface& f, MaterialIndexer& materials) {
    return WriteUInt16(out, f.flags) && WriteIndices(out, f.v) && WriteIndices(out, f.tv) &&
           WriteUInt32(out, f.smgroups) && WriteInt32(out, materials.IndexOf(f.material));
}

int ReadFaceMaterial(cio_load& in, unsigned long version, cface& f) {
    if (version >= kMaterialIndexFrom) {
        int index = -1;
        if (!ReadInt32(in, index)) return 0;
        f.material = index == -1 ? nullptr : MtlList::GetMaterialAt(index);
        return 1;
    }
    char name[kOldMaterialNameSize + 1] = {};
    if (!ReadName(in, name, kOldMaterialNameSize)) return 0;
    f.material = name[0] ? MtlList::FindMaterial(name) : nullptr;
    return 1;
}

int ReadFace(cio_load& in, unsigned long version, cface& f) {
    unsigned short flags = 0;
    if (!(ReadUInt16(in, flags) && ReadIndices(in, f.v) && ReadIndices(in, f.tv))) return 0;
    f.flags = flags;
    // Faces of records without smoothing masks are smooth all over.
    unsigned int mask = 1;
    if (version >= kSmGroupsFrom && !ReadUInt32(in, mask)) return 0;
    f.smgroups = mask;
    return ReadFaceMaterial(in, version, f);
}

// The header counts in record order.
struct MeshHeader {
    int numVerts = 0, numTVerts = 0, numFaces = 0, numEdges = 0;
    int selVerts = 0, selFaces = 0, selEdges = 0;
    int hiddenVerts = 0, hiddenFaces = 0, hiddenEdges = 0;
    cpoint3 min, max;
};

int ReadHeader(cio_load& in, unsigned long version, MeshHeader& h) {
    if (!(ReadInt32(in, h.numVerts) && ReadInt32(in, h.numTVerts) && ReadInt32(in, h.numFaces) &&
          ReadInt32(in, h.numEdges) && ReadInt32(in, h.selVerts) && ReadInt32(in, h.selFaces)))
        return 0;
    if (version >= kHiddenCountsFrom &&
        !(ReadInt32(in, h.selEdges) && ReadInt32(in, h.hiddenVerts) &&
          ReadInt32(in, h.hiddenFaces) && ReadInt32(in, h.hiddenEdges)))
        return 0;
    if (!(ReadPoint3(in, h.min) && ReadPoint3(in, h.max))) return 0;
    // The arrays must fit in what the stream still holds before anything is allocated.
    const unsigned long long need =
        static_cast<unsigned long long>(h.numVerts) * VertexBytes(version) +
        static_cast<unsigned long long>(h.numTVerts) * 12 +
        static_cast<unsigned long long>(h.numFaces) * FaceBytes(version) +
        static_cast<unsigned long long>(h.numEdges) * 2;
    return h.numVerts >= 0 && h.numTVerts >= 0 && h.numFaces >= 0 && h.numEdges >= 0 &&
           need <= in.BytesLeft();
}

// Reads `count` elements into a new block `array` with `read`; reports `name` when the
// allocation fails.
template <class T, class ReadOne>
int ReadArray(T*& array, int count, char const* name, ReadOne read) {
    if (count == 0) return 1;
    array = CopyElements<T>(nullptr, 0, count);
    if (!array) {
        MyAssertFailedLine(name, CORE_SOURCE_NAME, __LINE__);
        return 0;
    }
    for (int i = 0; i < count; ++i)
        if (!read(array[i])) return 0;
    return 1;
}

}  // namespace

int cmesh::Save(cio_save& out) const {
    const int result = cnode::Save(out);
    const int faceEdges = 3 * numFaces;
    WriteInt32(out, numVerts);
    WriteInt32(out, numTVerts);
    WriteInt32(out, numFaces);
    WriteInt32(out, faceEdges);
    WriteInt32(out, nselverts);
    WriteInt32(out, nselfaces);
    WriteInt32(out, std::min(nseledges, faceEdges));
    WriteInt32(out, nhiddenverts);
    WriteInt32(out, nhiddenfaces);
    WriteInt32(out, std::min(nhiddenedges, faceEdges));
    WritePoint3(out, bbMin);
    WritePoint3(out, bbMax);
    for (int i = 0; i < numVerts; ++i) WriteVertex(out, verts[i]);
    for (int i = 0; i < numTVerts; ++i) WritePoint3(out, tverts[i]);
    MaterialIndexer materials;
    for (int i = 0; i < numFaces; ++i) WriteFace(out, faces[i], materials);
    // Only the flags of existing edges: a longer array keeps its tail out of the record.
    for (int e = 0; e < faceEdges; ++e) WriteUInt16(out, static_cast<unsigned short>(edgeFlags[e]));
    return result;
}

int cmesh::Load(cio_load& in, unsigned long version) {
    if (!cnode::Load(in, version)) return 0;
    MeshHeader h;
    if (!ReadHeader(in, version, h)) return 0;
    Clear();
    int ok = ReadArray(verts, h.numVerts, "verts",
                       [&](cvertex& v) { return ReadVertex(in, version, v); });
    numVerts = verts ? h.numVerts : 0;
    ok = ok &&
         ReadArray(tverts, h.numTVerts, "tverts", [&](cpoint3& t) { return ReadPoint3(in, t); });
    numTVerts = tverts ? h.numTVerts : 0;
    ok = ok &&
         ReadArray(faces, h.numFaces, "faces", [&](cface& f) { return ReadFace(in, version, f); });
    numFaces = faces ? h.numFaces : 0;
    if (h.numEdges > 0) edgeFlags.SetSize(h.numEdges, 1);
    for (int e = 0; ok && e < h.numEdges; ++e) {
        unsigned short flags = 0;
        ok = ReadUInt16(in, flags);
        edgeFlags.Set(e, flags);
    }
    if (!ok) return 0;
    if (h.numEdges != 3 * numFaces) {
        const int old = edgeFlags.GetSize();
        edgeFlags.SetSize(3 * numFaces, 0);
        for (int e = old; e < 3 * numFaces; ++e) edgeFlags.Reset(e);
    }
    // The counters stay as stored; only the edge counters are clipped to the edges there are.
    nselverts = h.selVerts;
    nselfaces = h.selFaces;
    nseledges = std::min(h.selEdges, 3 * numFaces);
    nhiddenverts = h.hiddenVerts;
    nhiddenfaces = h.hiddenFaces;
    nhiddenedges = std::min(h.hiddenEdges, 3 * numFaces);
    bbMin = h.min;
    bbMax = h.max;
    CalcSelVertsCenter();
    CalcSelFacesCenter();
    CalcSelEdgesCenter();
    CalcSmNormals();
    return 1;
}
