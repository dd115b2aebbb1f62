// Triangle and edge adjacency by sorted edge matching.
#include "adjacency.h"

#include <algorithm>
#include <new>

#include "cmesh.h"
#include "mesh/edgematch.h"
#include "platform/hugepages.h"

namespace {

constexpr unsigned char kNoEdge = 0xFF;

// The vertex references of edge k of a triangle (k, k+1 mod 3).
unsigned int EdgeStart(const AdjTriangle& t, int k) {
    return t.vref[k];
}
unsigned int EdgeEnd(const AdjTriangle& t, int k) {
    return t.vref[(k + 1) % 3];
}

// Reserves room for n values, advised for large pages before anything is written.
template <class T>
void ReserveLarge(std::vector<T>& values, size_t n) {
    values.reserve(n);
    AdviseLargePages(values.data(), n * sizeof(T));
}

// The edge records of a triangle array, read from the triangles: record 3f+k is edge k of
// triangle f, as AddTriangle adds them.
struct TriangleRecords {
    const AdjTriangle* triangles;
    unsigned int Lower(unsigned int r) const {
        const AdjTriangle& t = triangles[r / 3];
        const unsigned int k = r % 3;
        return std::min(t.vref[k], t.vref[k == 2 ? 0 : k + 1]);
    }
    unsigned int Face(unsigned int r) const { return r / 3; }
    void Fetch(unsigned int r) const { PrefetchForWrite(&triangles[r / 3]); }
};

// The edge records of an AdjEdgeList, read from its corner records.
struct CornerRecords {
    const AdjEdge* edges;
    unsigned int Lower(unsigned int r) const {
        return std::min(static_cast<unsigned int>(edges[r].v0),
                        static_cast<unsigned int>(edges[r].v1));
    }
    unsigned int Face(unsigned int r) const { return edges[r].face; }
    void Fetch(unsigned int r) const { PrefetchForWrite(&edges[r]); }
};

bool JoinsEither(unsigned int a, unsigned int b, unsigned int r1, unsigned int r2) {
    return ((a == r1) & (b == r2)) | ((a == r2) & (b == r1));
}

}  // namespace

unsigned char AdjTriangle::FindEdge(unsigned int r1, unsigned int r2) const {
    // The first matching edge, looked up from the three matches without branching: which
    // edge matches is unpredictable while linking.
    static constexpr unsigned char kFirstOf[8] = {kNoEdge, 0, 1, 0, 2, 0, 1, 0};
    const unsigned int on0 = JoinsEither(EdgeStart(*this, 0), EdgeEnd(*this, 0), r1, r2);
    const unsigned int on1 = JoinsEither(EdgeStart(*this, 1), EdgeEnd(*this, 1), r1, r2);
    const unsigned int on2 = JoinsEither(EdgeStart(*this, 2), EdgeEnd(*this, 2), r1, r2);
    const unsigned int matches = on0 | (on1 << 1) | (on2 << 2);
    return kFirstOf[matches];
}

unsigned int AdjTriangle::OppositeVertex(unsigned int r1, unsigned int r2) const {
    const unsigned char k = FindEdge(r1, r2);
    return k == kNoEdge ? ADJ_NO_LINK : vref[(k + 2) % 3];
}

// ---- AdjTriangleArrays ----

void AdjEdgeKeys::Allocate(std::size_t n) {
    Release();
    face.reset(NewLargeArray<unsigned int>(n));
    lower.reset(NewLargeArray<unsigned int>(n));
    higher.reset(NewLargeArray<unsigned int>(n));
}

template <class Corner>
int AdjTriangleArrays::Build(int count, Corner corner) {
    triangles_.clear();
    edges_.Release();
    if (count < 1) return 0;
    try {
        const size_t records = 3 * static_cast<size_t>(count);
        ReserveLarge(triangles_, static_cast<size_t>(count));
        edges_.Allocate(records);
    } catch (const std::bad_alloc&) {
        triangles_ = std::vector<AdjTriangle>();
        edges_.Release();
        return 0;
    }
    for (int f = 0; f < count; ++f) {
        AddTriangle(static_cast<unsigned int>(corner(f, 0)),
                    static_cast<unsigned int>(corner(f, 1)),
                    static_cast<unsigned int>(corner(f, 2)));
    }
    return 1;
}

int AdjTriangleArrays::Init(cmesh& mesh) {
    return Init(const_cast<cface*>(mesh.GetFaces()), mesh.NumFaces());
}

int AdjTriangleArrays::Init(cface* faces, int count) {
    if (!faces) count = 0;
    return Build(count, [faces](int f, int k) { return faces[f].v[k]; });
}

int AdjTriangleArrays::Init(int* indices, int count) {
    if (!indices) count = 0;
    return Build(count, [indices](int f, int k) { return indices[3 * f + k]; });
}

void AdjTriangleArrays::AddTriangle(unsigned int a, unsigned int b, unsigned int c) {
    const unsigned int face = static_cast<unsigned int>(triangles_.size());
    AdjTriangle t;
    t.vref[0] = a;
    t.vref[1] = b;
    t.vref[2] = c;
    triangles_.push_back(t);
    AddEdge(std::min(a, b), std::max(a, b), face);
    AddEdge(std::min(b, c), std::max(b, c), face);
    AddEdge(std::min(c, a), std::max(c, a), face);
}

void AdjTriangleArrays::AddEdge(unsigned int lower, unsigned int higher, unsigned int face) {
    edges_.Add(lower, higher, face);
}

// ---- AdjFaceList ----

int AdjFaceList::UpdateLink(unsigned int f1, unsigned int f2, unsigned int r1, unsigned int r2) {
    AdjTriangle& t1 = triangles_[f1];
    AdjTriangle& t2 = triangles_[f2];
    const unsigned char e1 = t1.FindEdge(r1, r2);
    const unsigned char e2 = t2.FindEdge(r1, r2);
    if (e1 == kNoEdge || e2 == kNoEdge) return 0;
    t1.link[e1] = f2 | (static_cast<unsigned int>(e2) << 30);
    t2.link[e2] = f1 | (static_cast<unsigned int>(e1) << 30);
    return 1;
}

int AdjFaceList::Create() {
    if (triangles_.empty() || edges_.Count() == 0) return 0;
    int result = 1;
    // An edge of three or more triangles stops the walk: the edge records are then kept.
    const EdgeWalk walk =
        LinkEdgePairs(edges_, TriangleRecords{triangles_.data()}, result,
                      [this](unsigned int f1, unsigned int f2, unsigned int lower,
                             unsigned int higher) { return UpdateLink(f1, f2, lower, higher); });
    if (walk == EdgeWalk::kNoMemory) result = 0;
    if (walk == EdgeWalk::kStopped && result != 0) return result;
    edges_.Release();
    return result;
}

// ---- CheckFaceList ----

int CheckFaceList::Check() {
    open_ = shared_ = overShared_ = 0;
    if (triangles_.empty() || edges_.Count() == 0) return 0;
    bool found = true;
    const EdgeWalk walk = WalkEdgeRuns(
        edges_, TriangleRecords{triangles_.data()},
        [&](unsigned int lower, unsigned int higher, const unsigned int* faces, unsigned int size) {
            if (size == 1) {
                ++open_;
            } else if (size == 2) {
                ++shared_;
                found = found && triangles_[faces[0]].FindEdge(lower, higher) != kNoEdge &&
                        triangles_[faces[1]].FindEdge(lower, higher) != kNoEdge;
            } else {
                ++overShared_;
            }
            return true;
        });
    return walk != EdgeWalk::kNoMemory && found && overShared_ == 0;
}

// ---- AdjEdgeList ----

int AdjEdgeList::Init(cmesh& mesh) {
    edges_.clear();
    vertEdges_.clear();
    const int numFaces = mesh.NumFaces(), numVerts = mesh.NumVerts();
    const cface* faces = mesh.GetFaces();
    if (numFaces < 1 || !faces) return 0;
    try {
        std::vector<int> starting(static_cast<size_t>(std::max(numVerts, 0)), 0);
        for (int f = 0; f < numFaces; ++f)
            for (int k = 0; k < 3; ++k)
                if (mesh.CheckEdgeVIndices(3 * f + k)) ++starting[faces[f].v[k]];
        vertEdges_.resize(starting.size());
        for (size_t v = 0; v < starting.size(); ++v) {
            vertEdges_[v].SetSize(starting[v], 0);
            vertEdges_[v].SetAll(-1);  // 0xFFFFFFFF until filled
            starting[v] = 0;
        }
        edges_.resize(3 * static_cast<size_t>(numFaces));
        for (int f = 0; f < numFaces; ++f) {
            for (int k = 0; k < 3; ++k) {
                const int e = 3 * f + k;
                if (mesh.CheckEdgeVIndices(e)) {
                    const int v = faces[f].v[k];
                    vertEdges_[v].Set(starting[v]++, e);
                }
                AdjEdge& record = edges_[e];
                record.v0 = faces[f].v[k];
                record.v1 = faces[f].v[(k + 1) % 3];
                record.face = static_cast<unsigned int>(f);
            }
        }
    } catch (const std::bad_alloc&) {
        edges_ = std::vector<AdjEdge>();
        vertEdges_ = std::vector<cbitarray>();
        return 0;
    }
    return 1;
}

int AdjEdgeList::FindFaceEdge(unsigned int f, unsigned int r1, unsigned int r2) const {
    for (unsigned int k = 0; k < 3; ++k) {
        const AdjEdge& e = edges_[3 * f + k];
        if (JoinsEither(static_cast<unsigned int>(e.v0), static_cast<unsigned int>(e.v1), r1, r2))
            return static_cast<int>(3 * f + k);
    }
    return -1;
}

int AdjEdgeList::UpdateLink(unsigned int f1, unsigned int f2, unsigned int r1, unsigned int r2) {
    const int e1 = FindFaceEdge(f1, r1, r2);
    const int e2 = FindFaceEdge(f2, r1, r2);
    if (e1 < 0 || e2 < 0) return 0;
    edges_[e1].link = f2;
    edges_[e2].link = f1;
    return 1;
}

int AdjEdgeList::Create() {
    if (edges_.empty()) return 0;
    AdjEdgeKeys keys;
    try {
        keys.Allocate(edges_.size());
        for (const AdjEdge& e : edges_) {
            const unsigned int a = static_cast<unsigned int>(e.v0);
            const unsigned int b = static_cast<unsigned int>(e.v1);
            keys.Add(std::min(a, b), std::max(a, b), e.face);
        }
    } catch (const std::bad_alloc&) {
        return 0;
    }
    int result = 1;
    const EdgeWalk walk =
        LinkEdgePairs(keys, CornerRecords{edges_.data()}, result,
                      [this](unsigned int f1, unsigned int f2, unsigned int lower,
                             unsigned int higher) { return UpdateLink(f1, f2, lower, higher); });
    return walk == EdgeWalk::kNoMemory ? 0 : result;
}
