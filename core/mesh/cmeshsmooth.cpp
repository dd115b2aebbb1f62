// Stored vertex normals and smoothing groups assigned by angle.
#include <cstdint>
#include <vector>

#include "adjacency.h"
#include "clusters.h"
#include "cmesh.h"
#include "mesh/meshbox.h"

namespace {

constexpr int kGroups = 32;

// The lowest group whose bit is not in `taken`. When all 32 are taken the cluster gets the
// group its neighbours use least, so that the fewest corners merge across a sharp edge.
int FreeGroup(std::uint32_t taken, const std::vector<int>& neighbourUse) {
    for (int g = 0; g < kGroups; ++g)
        if (!(taken & (1u << g))) return g;
    int best = 0;
    for (int g = 1; g < kGroups; ++g)
        if (neighbourUse[static_cast<size_t>(g)] < neighbourUse[static_cast<size_t>(best)])
            best = g;
    return best;
}

}  // namespace

void cmesh::Smooth(int smNormals) {
    std::vector<cpoint3> sum(static_cast<size_t>(numVerts));
    std::vector<char> used(static_cast<size_t>(numVerts), 0);
    for (int f = 0; f < numFaces; ++f) {
        if (!faces[f].CheckVIndices(numVerts)) continue;
        const cpoint3 n = FaceCross(verts, faces[f]);
        for (int k = 0; k < 3; ++k) {
            sum[static_cast<size_t>(faces[f].v[k])] += n;
            used[static_cast<size_t>(faces[f].v[k])] = 1;
        }
    }
    for (int v = 0; v < numVerts; ++v)
        if (used[static_cast<size_t>(v)]) verts[v].normal = Normalize(sum[static_cast<size_t>(v)]);
    if (smNormals) CalcSmNormals();
}

int cmesh::AutoSmooth(float angle, int selectedOnly) {
    if (numFaces == 0 || numVerts == 0) return 0;
    const auto takesPart = [&](int f) {
        return faces[f].CheckVIndices(numVerts) && (!selectedOnly || faces[f].IsSelected());
    };
    // The faces around each vertex, as offsets into one array.
    std::vector<int> start(static_cast<size_t>(numVerts) + 1, 0);
    for (int f = 0; f < numFaces; ++f)
        if (takesPart(f))
            for (int k = 0; k < 3; ++k) ++start[static_cast<size_t>(faces[f].v[k]) + 1];
    for (int v = 0; v < numVerts; ++v)
        start[static_cast<size_t>(v) + 1] += start[static_cast<size_t>(v)];
    std::vector<int> around(static_cast<size_t>(start.back()));
    std::vector<int> fill(start.begin(), start.end() - 1);
    for (int f = 0; f < numFaces; ++f)
        if (takesPart(f))
            for (int k = 0; k < 3; ++k)
                around[static_cast<size_t>(fill[static_cast<size_t>(faces[f].v[k])]++)] = f;

    AdjFaceList adjacency;
    FaceClusterList clusters;
    if (!adjacency.Init(*this) || !adjacency.Create() ||
        !clusters.Init(*this, adjacency, selectedOnly, angle, 1))
        return 0;

    // The faces of each cluster, as offsets into one array.
    const int numClusters = clusters.NumClusters();
    std::vector<int> clusterStart(static_cast<size_t>(numClusters) + 1, 0);
    for (int f = 0; f < numFaces; ++f)
        if (clusters.GetCluster(f) != CLUSTER_NONE) ++clusterStart[clusters.GetCluster(f) + 1];
    for (int c = 0; c < numClusters; ++c)
        clusterStart[static_cast<size_t>(c) + 1] += clusterStart[static_cast<size_t>(c)];
    std::vector<int> members(static_cast<size_t>(clusterStart.back()));
    std::vector<int> cursor(clusterStart.begin(), clusterStart.end() - 1);
    for (int f = 0; f < numFaces; ++f)
        if (clusters.GetCluster(f) != CLUSTER_NONE)
            members[static_cast<size_t>(cursor[clusters.GetCluster(f)]++)] = f;

    std::vector<int> group(static_cast<size_t>(numClusters), 0);
    std::vector<int> neighbourUse(kGroups);
    for (int c = 0; c < numClusters; ++c) {
        std::uint32_t taken = 0;
        std::fill(neighbourUse.begin(), neighbourUse.end(), 0);
        for (int i = clusterStart[static_cast<size_t>(c)];
             i < clusterStart[static_cast<size_t>(c) + 1]; ++i) {
            const cface& f = faces[members[static_cast<size_t>(i)]];
            for (int k = 0; k < 3; ++k) {
                const int v = f.v[k];
                for (int j = start[static_cast<size_t>(v)]; j < start[static_cast<size_t>(v) + 1];
                     ++j) {
                    const unsigned int other = clusters.GetCluster(around[static_cast<size_t>(j)]);
                    if (other == CLUSTER_NONE || static_cast<int>(other) >= c) continue;
                    const int g = group[other];
                    taken |= 1u << g;
                    ++neighbourUse[static_cast<size_t>(g)];
                }
            }
        }
        group[static_cast<size_t>(c)] = FreeGroup(taken, neighbourUse);
    }

    for (int f = 0; f < numFaces; ++f) {
        if (!takesPart(f)) continue;
        const unsigned int c = clusters.GetCluster(f);
        faces[f].smgroups = c == CLUSTER_NONE ? 0u : 1u << group[c];
    }
    CalcSmNormals();
    return 1;
}
