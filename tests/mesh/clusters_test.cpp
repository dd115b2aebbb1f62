#include "clusters.h"

#include <gtest/gtest.h>

#include "mesh/edgeoracle.h"
#include "mesh/meshfixtures.h"

namespace {

constexpr unsigned int kNone = 0xFFFFFFFFu;
using Ids = std::vector<unsigned int>;

template <class List>
Ids Clusters(const List& list, int count) {
    Ids out;
    for (int i = 0; i < count; ++i) out.push_back(list.GetCluster(i));
    return out;
}

}  // namespace

// The angle rule and the numbering are checked against the real meshes below. Selected-only skips
// unselected faces, and a face left at its default indices (-1) is invalid and joins no cluster.
TEST(FaceClusterList, SkipsUnselectedAndInvalidFaces) {
    cmesh cube, partial, empty;
    MakeCube(cube);
    AdjFaceList adjacency, partialAdjacency, none;
    ASSERT_TRUE(LinkFaces(cube, adjacency));
    FaceClusterList clusters;
    EXPECT_TRUE(clusters.Init(cube, adjacency, 1, 45.0f, 0) == 1 && clusters.NumClusters() == 0);
    // The bottom (faces 0, 1) and the front (4, 5) share edge 0-1; face 3 touches neither.
    cube.SelectFaceSet(SetOf(12, {0, 1, 4, 5, 3}), 1);
    ASSERT_EQ(clusters.Init(cube, adjacency, 1, 45.0f, 0), 1);
    EXPECT_EQ(Clusters(clusters, 6), (Ids{0, 0, kNone, 1, 0, 0}));
    ASSERT_EQ(partial.Allocate(4, 0, 3), 1);
    ASSERT_EQ(partial.SetFace(0, cface(0, 1, 2)) + partial.SetFace(1, cface(2, 1, 3)), 2);
    ASSERT_TRUE(LinkFaces(partial, partialAdjacency));
    ASSERT_EQ(clusters.Init(partial, partialAdjacency, 0, 0.0f, 0), 1);
    EXPECT_EQ(Clusters(clusters, 3), (Ids{0, 0, kNone}));
    // Refused: no faces, and an adjacency built for another mesh.
    EXPECT_EQ(clusters.Init(empty, none, 0, 45.0f, 1), 0);
    EXPECT_EQ(clusters.Init(cube, partialAdjacency, 0, 45.0f, 1), 0);
}

TEST(EdgeClusterList, ClustersEdgesThroughSharedStartVertices) {
    // Two separate triangles and a third sharing vertex 2 with the first.
    cmesh mesh, empty;
    ASSERT_TRUE(BuildMesh(mesh, std::vector<cpoint3>(8), {0, 1, 2, 4, 5, 6, 2, 7, 3}));
    AdjEdgeList adjacency, none;
    ASSERT_TRUE(LinkFaces(mesh, adjacency));
    EdgeClusterList clusters;
    ASSERT_EQ(clusters.Init(mesh, adjacency, 0), 1);
    EXPECT_EQ(Clusters(clusters, 9), (Ids{0, 0, 0, 1, 1, 1, 0, 0, 0}));
    // Selected only: edges 0 and 4 (unconnected) and 7 (from 7 to 3, touching nothing chosen).
    mesh.SelectEdgeSet(SetOf(9, {0, 4, 7}), 1);
    ASSERT_EQ(clusters.Init(mesh, adjacency, 1), 1);
    EXPECT_EQ(Clusters(clusters, 9), (Ids{0, kNone, kNone, kNone, 1, kNone, kNone, 2, kNone}));
    EXPECT_EQ(clusters.NumClusters(), 3);
    EXPECT_EQ(clusters.Init(empty, none, 0), 0);
}

// Real meshes clustered with and without the angle rule (30 degrees) against a union-find
// clustering over independently matched edges. Without the angle rule the full dragon is one
// search about a million faces deep, which must not exhaust the stack.
TEST(FaceClusterList, RealMeshesMatchAUnionFindClustering) {
    for (const auto& [name, angleModes] :
         {std::pair("bunny.obj", 2), {"dragon_res3.obj.gz", 2}, {"dragon.obj.gz", 1}}) {
        ObjData data;
        cmesh mesh;
        AdjFaceList adjacency;
        ASSERT_TRUE(LoadObjMesh(mesh, name, data) && LinkFaces(mesh, adjacency)) << name;
        for (int useAngle = 0; useAngle < angleModes; ++useAngle) {
            FaceClusterList clusters;
            ASSERT_EQ(clusters.Init(mesh, adjacency, 0, 30.0f, useAngle), 1);
            const auto expected =
                OracleClusters(OracleLinks(data.triangles), OracleNormals(data), useAngle, 30.0);
            EXPECT_EQ(clusters.NumClusters(),
                      static_cast<int>(*std::max_element(expected.begin(), expected.end()) + 1));
            EXPECT_TRUE(Clusters(clusters, mesh.NumFaces()) == expected) << name << useAngle;
        }
    }
}
