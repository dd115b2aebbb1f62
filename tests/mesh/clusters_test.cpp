#include "clusters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <vector>

#include "cmesh.h"
#include "mesh/edgeoracle.h"
#include "mesh/meshfixtures.h"
#include "support/objreader.h"

namespace {

constexpr unsigned int kNone = 0xFFFFFFFFu;
using Ids = std::vector<unsigned int>;

// A strip of four hinged quads (two triangles each), each quad turned 30 degrees from the
// previous one about the shared hinge line (parallel to y).
void MakeBentStrip(cmesh& mesh) {
    std::vector<cpoint3> points;
    float x = 0, z = 0;
    for (int i = 0; i <= 4; ++i) {
        points.emplace_back(x, 0.0f, z);
        points.emplace_back(x, 1.0f, z);
        x += static_cast<float>(std::cos(i * 30.0 * M_PI / 180.0));
        z += static_cast<float>(std::sin(i * 30.0 * M_PI / 180.0));
    }
    std::vector<int> indices;
    for (int a = 0; a < 8; a += 2)
        indices.insert(indices.end(), {a, a + 1, a + 3, a, a + 3, a + 2});
    ASSERT_TRUE(BuildMesh(mesh, points, indices));
}

Ids Clusters(const FaceClusterList& list) {
    Ids out;
    for (int f = 0; f < list.NumFaces(); ++f) out.push_back(list.GetCluster(f));
    return out;
}

}  // namespace

// The angle is measured between neighbours: the cube splits into its sides below the right
// angle, and the bent strip (hinges of 30 degrees, ends 90 apart) bends within one cluster.
TEST(FaceClusterList, JoinsNeighboursWithinTheAngle) {
    cmesh cube, strip;
    MakeCube(cube);
    MakeBentStrip(strip);
    AdjFaceList adjacency, stripAdjacency;
    ASSERT_TRUE(LinkFaces(cube, adjacency));
    ASSERT_TRUE(LinkFaces(strip, stripAdjacency));
    FaceClusterList clusters;
    ASSERT_EQ(clusters.Init(cube, adjacency, 0, 45.0f, 1), 1);
    EXPECT_EQ(clusters.NumClusters(), 6);
    EXPECT_EQ(Clusters(clusters), (Ids{0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 5, 5}));
    EXPECT_NEAR(std::fabs(clusters.GetNormal(0).z), 1.0f, 1e-6f);
    ASSERT_EQ(clusters.Init(cube, adjacency, 0, 100.0f, 1), 1);
    EXPECT_EQ(clusters.NumClusters(), 1);
    EXPECT_EQ(Clusters(clusters), Ids(12, 0));
    // Without the angle test the threshold does not matter.
    ASSERT_EQ(clusters.Init(cube, adjacency, 0, 1.0f, 0), 1);
    EXPECT_EQ(clusters.NumClusters(), 1);
    ASSERT_EQ(clusters.Init(strip, stripAdjacency, 0, 45.0f, 1), 1);
    EXPECT_EQ(clusters.NumClusters(), 1);
    ASSERT_EQ(clusters.Init(strip, stripAdjacency, 0, 20.0f, 1), 1);
    EXPECT_EQ(clusters.NumClusters(), 4);
    EXPECT_EQ(Clusters(clusters), (Ids{0, 0, 1, 1, 2, 2, 3, 3}));
}

TEST(FaceClusterList, SkipsUnselectedAndInvalidFaces) {
    cmesh cube;
    MakeCube(cube);
    AdjFaceList adjacency;
    ASSERT_TRUE(LinkFaces(cube, adjacency));
    FaceClusterList clusters;
    ASSERT_EQ(clusters.Init(cube, adjacency, 1, 45.0f, 0), 1);
    EXPECT_EQ(clusters.NumClusters(), 0);
    EXPECT_EQ(Clusters(clusters), Ids(12, kNone));
    // The bottom (faces 0, 1) and the front (4, 5) share edge 0-1; face 3 of the top touches
    // neither.
    for (int f : {0, 1, 4, 5, 3}) cube.SetFaceFlags(f, cube.GetFaceFlags(f) | ELEMENT_SELECTED);
    ASSERT_EQ(clusters.Init(cube, adjacency, 1, 45.0f, 0), 1);
    EXPECT_EQ(clusters.NumClusters(), 2);
    EXPECT_EQ(Clusters(clusters),
              (Ids{0, 0, kNone, 1, 0, 0, kNone, kNone, kNone, kNone, kNone, kNone}));
    // A face left at its default indices (-1) is invalid and joins no cluster.
    cmesh partial;
    ASSERT_EQ(partial.Allocate(4, 0, 3), 1);
    ASSERT_EQ(partial.SetFace(0, cface(0, 1, 2)), 1);
    ASSERT_EQ(partial.SetFace(1, cface(2, 1, 3)), 1);
    AdjFaceList partialAdjacency, none;
    ASSERT_TRUE(LinkFaces(partial, partialAdjacency));
    ASSERT_EQ(clusters.Init(partial, partialAdjacency, 0, 0.0f, 0), 1);
    EXPECT_EQ(Clusters(clusters), (Ids{0, 0, kNone}));
    cmesh empty;
    EXPECT_EQ(clusters.Init(empty, none, 0, 45.0f, 1), 0);
    EdgeClusterList edges;
    AdjEdgeList noEdges;
    EXPECT_EQ(edges.Init(empty, noEdges, 0), 0);
    // An adjacency built for another mesh is refused.
    EXPECT_EQ(clusters.Init(cube, partialAdjacency, 0, 45.0f, 1), 0);
}

TEST(EdgeClusterList, ClustersEdgesThroughSharedStartVertices) {
    // Two separate triangles and a third sharing vertex 2 with the first.
    cmesh mesh;
    ASSERT_TRUE(BuildMesh(mesh, std::vector<cpoint3>(8), {0, 1, 2, 4, 5, 6, 2, 7, 3}));
    AdjEdgeList adjacency;
    ASSERT_TRUE(LinkFaces(mesh, adjacency));
    EdgeClusterList clusters;
    const auto ids = [&] {
        Ids out;
        for (int e = 0; e < 9; ++e) out.push_back(clusters.GetCluster(e));
        return out;
    };
    ASSERT_EQ(clusters.Init(mesh, adjacency, 0), 1);
    EXPECT_EQ(clusters.NumClusters(), 2);
    EXPECT_EQ(ids(), (Ids{0, 0, 0, 1, 1, 1, 0, 0, 0}));
    // Selected only: edges 0 and 4 (unconnected) and 7 (from 7 to 3, touching nothing chosen).
    for (int e : {0, 4, 7}) mesh.SetEdgeFlags(e, ELEMENT_SELECTED);
    ASSERT_EQ(clusters.Init(mesh, adjacency, 1), 1);
    EXPECT_EQ(clusters.NumClusters(), 3);
    EXPECT_EQ(ids(), (Ids{0, kNone, kNone, kNone, 1, kNone, kNone, 2, kNone}));
}

// Real meshes clustered with and without the angle rule (30 degrees) against a union-find
// clustering over independently matched edges. Without the angle rule the full dragon is one
// search about a million faces deep, which must not exhaust the stack.
TEST(FaceClusterList, RealMeshesMatchAUnionFindClustering) {
    const struct {
        const char* name;
        std::initializer_list<bool> angleModes;
    } rows[] = {{"bunny.obj", {false, true}},
                {"dragon_res3.obj.gz", {false, true}},
                {"dragon.obj.gz", {false}}};
    for (const auto& row : rows) {
        ObjData data;
        cmesh mesh;
        ASSERT_TRUE(LoadObjMesh(mesh, row.name, data)) << row.name;
        AdjFaceList adjacency;
        ASSERT_TRUE(LinkFaces(mesh, adjacency));
        const auto links = OracleLinks(data.triangles);
        const auto normals = OracleNormals(data);
        for (bool useAngle : row.angleModes) {
            FaceClusterList clusters;
            ASSERT_EQ(clusters.Init(mesh, adjacency, 0, 30.0f, useAngle), 1);
            const auto expected = OracleClusters(
                links, normals, [](size_t) { return true; }, useAngle, 30.0);
            const unsigned int count = *std::max_element(expected.begin(), expected.end()) + 1;
            EXPECT_EQ(clusters.NumClusters(), static_cast<int>(count)) << row.name;
            size_t mismatches = 0;
            for (size_t f = 0; f < expected.size(); ++f)
                mismatches += clusters.GetCluster(static_cast<int>(f)) != expected[f];
            EXPECT_EQ(mismatches, 0u) << row.name << " useAngle " << useAngle;
        }
    }
}
