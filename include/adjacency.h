// Face and edge adjacency of triangle meshes: AdjTriangle, AdjFaceList, AdjEdgeList and
// CheckFaceList. Shared edges are matched by sorting the edges' vertex pairs (radix passes),
// not by searching. Each structure is built on demand, used once and freed.
#ifndef ORVANE_ADJACENCY_H
#define ORVANE_ADJACENCY_H

#include <cstddef>
#include <memory>
#include <vector>

#include "cbitarray.h"
#include "coreapi.h"

class cmesh;
class cskin;
struct cface;

// The link of an edge without a neighbour.
constexpr unsigned int ADJ_NO_LINK = 0xFFFFFFFFu;

// The neighbouring triangle of a link (its low 30 bits) and the number (0..2) of the shared
// edge within that neighbour (its top two bits).
inline unsigned int AdjLinkFace(unsigned int link) {
    return link & 0x3FFFFFFFu;
}
inline unsigned int AdjLinkEdge(unsigned int link) {
    return link >> 30;
}

// A triangle's three vertex references and the links across its edges. Edge 0 joins
// references 0 and 1, edge 1 joins 1 and 2, edge 2 joins 2 and 0.
struct CORE_API AdjTriangle {
    unsigned int vref[3] = {0, 0, 0};
    unsigned int link[3] = {ADJ_NO_LINK, ADJ_NO_LINK, ADJ_NO_LINK};

    // The number of the edge joining r1 and r2 (either order), or 0xFF when there is none.
    unsigned char FindEdge(unsigned int r1, unsigned int r2) const;
    // The reference of the corner opposite the edge r1-r2, or 0xFFFFFFFF.
    unsigned int OppositeVertex(unsigned int r1, unsigned int r2) const;
};

// The three key arrays of a list of edges: the face of each edge record and its two vertex
// references, lower first.
struct AdjEdgeKeys {
    std::unique_ptr<unsigned int[]> face, lower, higher;
    unsigned int count = 0;

    // Makes room for n records, dropping any held (std::bad_alloc when memory runs out).
    void Allocate(std::size_t n);
    // Adds the record of edge a-b of face `faceIndex`; a must not exceed b. Allocate made room.
    void Add(unsigned int a, unsigned int b, unsigned int faceIndex) {
        const unsigned int at = count++;
        face[at] = faceIndex;
        lower[at] = a;
        higher[at] = b;
    }
    // Frees the three arrays.
    void Release() { *this = AdjEdgeKeys(); }
    unsigned int Count() const { return count; }
};

// The triangles and edge records that AdjFaceList and CheckFaceList build from a mesh.
class CORE_API AdjTriangleArrays {
public:
    AdjTriangleArrays() = default;
    AdjTriangleArrays(const AdjTriangleArrays&) = delete;
    AdjTriangleArrays& operator=(const AdjTriangleArrays&) = delete;

    // Stores every face's three vertex indices (valid or not) and its three edges. 0 for no
    // faces or when memory runs out, else 1. The face-array form reads `count` faces; the
    // index form reads `count` triangles of three indices each.
    int Init(cmesh& mesh);
    // A skin's faces, exactly as the mesh form takes them.
    int Init(cskin& skin);
    int Init(cface* faces, int count);
    int Init(int* indices, int count);

    int NumFaces() const { return static_cast<int>(triangles_.size()); }
    // The triangles in face order (null when empty).
    const AdjTriangle* GetTriangles() const {
        return triangles_.empty() ? nullptr : triangles_.data();
    }
    const AdjTriangle& GetTriangle(int face) const { return triangles_[face]; }
    // The number of edge records held (3 per face from Init on).
    int NumEdgeRecords() const { return static_cast<int>(edges_.Count()); }

protected:
    ~AdjTriangleArrays() = default;

    std::vector<AdjTriangle> triangles_;
    AdjEdgeKeys edges_;

private:
    template <class Corner>
    int Build(int count, Corner corner);
    void AddTriangle(unsigned int a, unsigned int b, unsigned int c);
    void AddEdge(unsigned int lower, unsigned int higher, unsigned int face);
};

// Triangle-to-triangle links across shared edges. The edge records live from Init until a
// completed Create.
class CORE_API AdjFaceList : public AdjTriangleArrays {
public:
    // Links the triangles across edges that exactly two of them share. 0 when Init has not
    // run or an edge cannot be found in its own triangle. An edge shared by three or more
    // triangles ends the linking early with 1 (see the source).
    int Create();

private:
    int UpdateLink(unsigned int f1, unsigned int f2, unsigned int r1, unsigned int r2);
};

// One face corner's edge: from `v0` to `v1` (face winding order) on `face`, with `link` the
// neighbouring face across it or 0xFFFFFFFF.
struct AdjEdge {
    int v0 = -1;
    int v1 = -1;
    unsigned int face = 0;
    unsigned int link = ADJ_NO_LINK;
};

// Per face corner edge records (record 3f+k is edge k of face f) and, per vertex, the edges
// that start at it.
class CORE_API AdjEdgeList {
public:
    AdjEdgeList() = default;
    AdjEdgeList(const AdjEdgeList&) = delete;
    AdjEdgeList& operator=(const AdjEdgeList&) = delete;

    // Builds the records and the per-vertex lists (valid edges only, in face order). 0 for a
    // mesh without faces or when memory runs out, else 1.
    int Init(cmesh& mesh);
    // A skin's faces and vertices, exactly as the mesh form takes them.
    int Init(cskin& skin);
    // Links each record to the face across its edge where exactly two records share the
    // edge; same matching and early end as AdjFaceList::Create.
    int Create();

    int NumEdges() const { return static_cast<int>(edges_.size()); }
    const AdjEdge& GetEdge(int e) const { return edges_[e]; }
    int NumVerts() const { return static_cast<int>(vertEdges_.size()); }
    // The numbers of the edges starting at vertex v, in face order.
    const cbitarray& GetVertEdges(int v) const { return vertEdges_[v]; }

private:
    int UpdateLink(unsigned int f1, unsigned int f2, unsigned int r1, unsigned int r2);
    // The record among face f's three joining r1 and r2 (either order), trying 0, 1, 2; or -1.
    int FindFaceEdge(unsigned int f, unsigned int r1, unsigned int r2) const;

    std::vector<AdjEdge> edges_;
    std::vector<cbitarray> vertEdges_;
};

// Runs the edge matching of AdjFaceList as a check of the mesh's edges (Init as there).
class CORE_API CheckFaceList : public AdjTriangleArrays {
public:
    // 1 when every edge belongs to one or two triangles and each shared edge is found in
    // both; 0 otherwise (an edge shared by three or more triangles, an edge missing from its
    // own triangle, or no Init). The counts below describe the last Check.
    int Check();
    // Edges of one triangle, of exactly two, and of three or more.
    int NumOpenEdges() const { return open_; }
    int NumSharedEdges() const { return shared_; }
    int NumOverSharedEdges() const { return overShared_; }

private:
    int open_ = 0, shared_ = 0, overShared_ = 0;
};

#endif
