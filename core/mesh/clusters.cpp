// Face and edge clusters by depth-first search.
//
// The search visits elements exactly in the order of the recursive definition (an element is
// marked when entered; its candidates are tried in order, each after the previous one's whole
// subtree) but keeps its frames in an explicit stack: a cluster on a scanned mesh can hold a
// million faces, far deeper than a thread's stack allows.
#include "clusters.h"

#include <cmath>
#include <new>

#include "cmesh.h"

namespace {

constexpr unsigned int kNoItem = 0xFFFFFFFFu;

// One element being searched and the next of its candidates to try.
struct Frame {
    unsigned int item;
    unsigned int next;
};

// Intended: the face search keeps its temporaries in process-wide variables, so face
// clustering is not re-entrant.
unsigned int g_link;
unsigned int g_neighbour;
float g_dot;
float g_angle;

std::vector<Frame>& SearchStack() {
    static std::vector<Frame> stack;
    return stack;
}

// Depth-first search from `start`: enter(item) marks an element; candidates(item) is the
// number of candidates it has; candidate(item, i) is the element candidate i leads to, or
// kNoItem when it must not be entered. Returns the number of elements entered.
template <class Enter, class Candidates, class Candidate>
unsigned int DepthFirst(unsigned int start, Enter enter, Candidates candidates,
                        Candidate candidate) {
    std::vector<Frame>& stack = SearchStack();
    stack.clear();
    enter(start);
    stack.push_back({start, 0});
    unsigned int entered = 1;
    while (!stack.empty()) {
        Frame& top = stack.back();
        if (top.next >= candidates(top.item)) {
            stack.pop_back();
            continue;
        }
        const unsigned int next = candidate(top.item, top.next++);
        if (next == kNoItem) continue;
        enter(next);
        stack.push_back({next, 0});
        ++entered;
    }
    return entered;
}

// Starts a cluster at each lowest-numbered unvisited element until every element is visited
// or the elements reached add up to `count`; returns the number of clusters.
template <class Recurse>
int FormClusters(const std::vector<unsigned char>& visited, unsigned int count, Recurse recurse) {
    unsigned int reached = 0, clusters = 0;
    for (unsigned int start = 0; start < count && reached < count; ++start) {
        if (visited[start]) continue;
        reached += recurse(start, clusters);
        ++clusters;
    }
    return static_cast<int>(clusters);
}

}  // namespace

// ---- FaceClusterList ----

bool FaceClusterList::Follows(unsigned int face, unsigned int link) const {
    g_link = link;
    if (g_link == ADJ_NO_LINK) return false;
    g_neighbour = AdjLinkFace(g_link);
    if (g_neighbour >= visited_.size() || visited_[g_neighbour]) return false;
    if (!useAngle_) return true;
    const cpoint3& a = normals_[face];
    const cpoint3& b = normals_[g_neighbour];
    g_dot = a.x * b.x + a.y * b.y + a.z * b.z;
    g_angle = static_cast<float>(std::acos(g_dot) * 57.29577951308232);
    // A dot product just outside [-1, 1] gives NaN, which counts as within the threshold.
    return !(g_angle > angle_);
}

unsigned int FaceClusterList::Recurse(unsigned int face, unsigned int id) {
    const AdjTriangle* triangles = adjacency_->GetTriangles();
    return DepthFirst(
        face,
        [&](unsigned int f) {
            visited_[f] = 1;
            clusters_[f] = id;
        },
        [](unsigned int) { return 3u; },
        [&](unsigned int f, unsigned int k) {
            return Follows(f, triangles[f].link[k]) ? g_neighbour : kNoItem;
        });
}

int FaceClusterList::Init(cmesh& mesh, AdjFaceList& adjacency, int selectedOnly, float angle,
                          int useAngle) {
    clusters_.clear();
    visited_.clear();
    normals_.clear();
    numClusters_ = 0;
    adjacency_ = &adjacency;
    selectedOnly_ = selectedOnly;
    angle_ = angle;
    useAngle_ = useAngle;
    const int numFaces = mesh.NumFaces();
    if (numFaces < 1 || adjacency.NumFaces() != numFaces) return 0;
    try {
        clusters_.assign(numFaces, CLUSTER_NONE);
        visited_.assign(numFaces, 0);
        normals_.resize(numFaces);
    } catch (const std::bad_alloc&) {
        return 0;
    }
    const cface* faces = mesh.GetFaces();
    for (int f = 0; f < numFaces; ++f) {
        const bool valid = faces[f].CheckVIndices(mesh.NumVerts()) != 0;
        if (!valid || (selectedOnly && !faces[f].IsSelected())) visited_[f] = 1;
        normals_[f] = mesh.GetFaceNormal(f);
    }
    numClusters_ = FormClusters(visited_, static_cast<unsigned int>(numFaces),
                                [this](unsigned int f, unsigned int id) { return Recurse(f, id); });
    return 1;
}

// ---- EdgeClusterList ----

unsigned int EdgeClusterList::Recurse(unsigned int edge, unsigned int id) {
    const AdjEdgeList& list = *adjacency_;
    // Candidates of an edge: the edges listed at its first vertex, then at its second.
    auto listLength = [&](int v) {
        return v >= 0 && v < list.NumVerts() ? list.GetVertEdges(v).GetSize() : 0;
    };
    return DepthFirst(
        edge,
        [&](unsigned int e) {
            visited_[e] = 1;
            clusters_[e] = id;
        },
        [&](unsigned int e) {
            const AdjEdge& r = list.GetEdge(static_cast<int>(e));
            return static_cast<unsigned int>(listLength(r.v0) + listLength(r.v1));
        },
        [&](unsigned int e, unsigned int i) {
            const AdjEdge& r = list.GetEdge(static_cast<int>(e));
            const int first = listLength(r.v0);
            const int position = static_cast<int>(i);
            const int next = position < first ? list.GetVertEdges(r.v0)[position]
                                              : list.GetVertEdges(r.v1)[position - first];
            const bool enter = next >= 0 && static_cast<size_t>(next) < visited_.size() &&
                               !visited_[static_cast<size_t>(next)];
            return enter ? static_cast<unsigned int>(next) : kNoItem;
        });
}

int EdgeClusterList::Init(cmesh& mesh, AdjEdgeList& adjacency, int selectedOnly) {
    clusters_.clear();
    visited_.clear();
    numClusters_ = 0;
    adjacency_ = &adjacency;
    selectedOnly_ = selectedOnly;
    const int numFaces = mesh.NumFaces();
    const int numEdges = 3 * numFaces;
    if (numFaces < 1 || adjacency.NumEdges() != numEdges) return 0;
    try {
        clusters_.assign(numEdges, CLUSTER_NONE);
        visited_.assign(numEdges, 0);
    } catch (const std::bad_alloc&) {
        return 0;
    }
    for (int e = 0; e < numEdges; ++e) {
        const bool selected = (mesh.GetEdgeFlags(e) & ELEMENT_SELECTED) != 0;
        if (!mesh.CheckEdgeVIndices(e) || (selectedOnly && !selected)) visited_[e] = 1;
    }
    numClusters_ = FormClusters(visited_, static_cast<unsigned int>(numEdges),
                                [this](unsigned int e, unsigned int id) { return Recurse(e, id); });
    return 1;
}
