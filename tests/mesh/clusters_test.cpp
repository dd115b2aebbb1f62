#include "clusters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <set>
#include <vector>

#include "cmesh.h"
#include "mesh/edgeoracle.h"
#include "mesh/meshfixtures.h"
#include "support/objreader.h"
#include "support/testsupport.h"

namespace {

constexpr unsigned int kNone = 0xFFFFFFFFu;

// A strip of four hinged quads (two triangles each), each quad turned 30 degrees from the
// previous one about the shared hinge line (parallel to y).
void MakeBentStrip(cmesh& mesh) {
    std::vector<cpoint3> points;
    float x = 0, z = 0;
    for (int i = 0; i <= 4; ++i) {
        points.emplace_back(x, 0.0f, z);
        points.emplace_back(x, 1.0f, z);
        const double turn = i * 30.0 * M_PI / 180.0;
        x += static_cast<float>(std::cos(turn));
        z += static_cast<float>(std::sin(turn));
    }
    std::vector<int> indices;
    for (int i = 0; i < 4; ++i) {
        const int a = 2 * i, b = a + 1, c = a + 3, d = a + 2;
        indices.insert(indices.end(), {a, b, c, a, c, d});
    }
    ASSERT_TRUE(BuildMesh(mesh, points, indices));
}

std::vector<unsigned int> Clusters(const FaceClusterList& list) {
    std::vector<unsigned int> out;
    for (int f = 0; f < list.NumFaces(); ++f) out.push_back(list.GetCluster(f));
    return out;
}

}  // namespace

TEST(FaceClusterList, CubeSplitsIntoSidesBelowTheRightAngleAndStaysWholeAbove) {
    cmesh cube;
    MakeCube(cube);
    AdjFaceList adjacency;
    ASSERT_TRUE(LinkFaces(cube, adjacency));
    FaceClusterList clusters;
    ASSERT_EQ(clusters.Init(cube, adjacency, 0, 45.0f, 1), 1);
    EXPECT_EQ(clusters.NumClusters(), 6);
    EXPECT_EQ(Clusters(clusters), (std::vector<unsigned int>{0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 5, 5}));
    EXPECT_NEAR(std::fabs(clusters.GetNormal(0).z), 1.0f, 1e-6f);
    ASSERT_EQ(clusters.Init(cube, adjacency, 0, 100.0f, 1), 1);
    EXPECT_EQ(clusters.NumClusters(), 1);
    EXPECT_EQ(Clusters(clusters), std::vector<unsigned int>(12, 0));
    // Without the angle test the threshold does not matter.
    ASSERT_EQ(clusters.Init(cube, adjacency, 0, 1.0f, 0), 1);
    EXPECT_EQ(clusters.NumClusters(), 1);
    EXPECT_EQ(clusters.GetAngle(), 1.0f);
    EXPECT_EQ(clusters.GetUseAngle(), 0);
}

TEST(FaceClusterList, AngleIsMeasuredBetweenNeighboursSoClustersMayBend) {
    cmesh strip;
    MakeBentStrip(strip);
    AdjFaceList adjacency;
    ASSERT_TRUE(LinkFaces(strip, adjacency));
    FaceClusterList clusters;
    // The ends are 90 degrees apart, each hinge 30.
    ASSERT_EQ(clusters.Init(strip, adjacency, 0, 45.0f, 1), 1);
    EXPECT_EQ(clusters.NumClusters(), 1);
    ASSERT_EQ(clusters.Init(strip, adjacency, 0, 20.0f, 1), 1);
    EXPECT_EQ(clusters.NumClusters(), 4);
    EXPECT_EQ(Clusters(clusters), (std::vector<unsigned int>{0, 0, 1, 1, 2, 2, 3, 3}));
}

TEST(FaceClusterList, SkipsUnselectedAndInvalidFaces) {
    cmesh cube;
    MakeCube(cube);
    AdjFaceList adjacency;
    ASSERT_TRUE(LinkFaces(cube, adjacency));
    FaceClusterList clusters;
    ASSERT_EQ(clusters.Init(cube, adjacency, 1, 45.0f, 0), 1);
    EXPECT_EQ(clusters.NumClusters(), 0);
    EXPECT_EQ(Clusters(clusters), std::vector<unsigned int>(12, kNone));

    // The bottom (faces 0, 1) and the front (4, 5) share edge 0-1; face 3 of the top touches
    // neither.
    for (int f : {0, 1, 4, 5, 3}) cube.SetFaceFlags(f, cube.GetFaceFlags(f) | ELEMENT_SELECTED);
    ASSERT_EQ(clusters.Init(cube, adjacency, 1, 45.0f, 0), 1);
    EXPECT_EQ(clusters.NumClusters(), 2);
    EXPECT_EQ(Clusters(clusters), (std::vector<unsigned int>{0, 0, kNone, 1, 0, 0, kNone, kNone,
                                                             kNone, kNone, kNone, kNone}));

    // A face left at its default indices (-1) is invalid and joins no cluster.
    cmesh partial;
    ASSERT_EQ(partial.Allocate(4, 0, 3), 1);
    ASSERT_EQ(partial.SetFace(0, cface(0, 1, 2)), 1);
    ASSERT_EQ(partial.SetFace(1, cface(2, 1, 3)), 1);
    AdjFaceList partialAdjacency;
    ASSERT_TRUE(LinkFaces(partial, partialAdjacency));
    ASSERT_EQ(clusters.Init(partial, partialAdjacency, 0, 0.0f, 0), 1);
    EXPECT_EQ(Clusters(clusters), (std::vector<unsigned int>{0, 0, kNone}));

    cmesh empty;
    AdjFaceList none;
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
    std::vector<cpoint3> points(8);
    const int indices[] = {0, 1, 2, 4, 5, 6, 2, 7, 3};
    ASSERT_EQ(mesh.SetMesh(points.data(), nullptr, nullptr, indices, 8, 0, 3), 1);
    AdjEdgeList adjacency;
    ASSERT_TRUE(LinkFaces(mesh, adjacency));
    EdgeClusterList clusters;
    ASSERT_EQ(clusters.Init(mesh, adjacency, 0), 1);
    EXPECT_EQ(clusters.NumClusters(), 2);
    const unsigned int expected[9] = {0, 0, 0, 1, 1, 1, 0, 0, 0};
    for (int e = 0; e < 9; ++e) EXPECT_EQ(clusters.GetCluster(e), expected[e]) << e;

    // Selected only: edges 0 and 4 (unconnected) and 7 (from 7 to 3, touching nothing chosen).
    for (int e : {0, 4, 7}) mesh.SetEdgeFlags(e, ELEMENT_SELECTED);
    ASSERT_EQ(clusters.Init(mesh, adjacency, 1), 1);
    EXPECT_EQ(clusters.NumClusters(), 3);
    EXPECT_EQ(clusters.GetCluster(0), 0u);
    EXPECT_EQ(clusters.GetCluster(4), 1u);
    EXPECT_EQ(clusters.GetCluster(7), 2u);
    EXPECT_EQ(clusters.GetCluster(1), kNone);
}

namespace {

// Clusters `name` with and without the angle rule (30 degrees) and compares them with a
// union-find clustering over independently matched edges.
void ExpectUnionFindClusters(const char* name, std::initializer_list<bool> angleModes) {
    ObjData data;
    ASSERT_TRUE(ReadObj(SharedDataPath(std::string("meshes/") + name), data)) << name;
    cmesh mesh;
    ASSERT_TRUE(BuildMesh(data, mesh)) << name;
    AdjFaceList adjacency;
    ASSERT_TRUE(LinkFaces(mesh, adjacency));
    const auto links = OracleLinks(data.triangles);
    const auto normals = OracleNormals(data);
    for (bool useAngle : angleModes) {
        FaceClusterList clusters;
        ASSERT_EQ(clusters.Init(mesh, adjacency, 0, 30.0f, useAngle), 1);
        const auto expected = OracleClusters(
            links, normals, [](size_t) { return true; }, useAngle, 30.0);
        const unsigned int count = *std::max_element(expected.begin(), expected.end()) + 1;
        EXPECT_EQ(clusters.NumClusters(), static_cast<int>(count)) << name;
        size_t mismatches = 0;
        for (size_t f = 0; f < expected.size(); ++f)
            mismatches += clusters.GetCluster(static_cast<int>(f)) != expected[f];
        EXPECT_EQ(mismatches, 0u) << name << " useAngle " << useAngle;
    }
}

}  // namespace

TEST(FaceClusterList, RealMeshesMatchAUnionFindClustering) {
    ExpectUnionFindClusters("bunny.obj", {false, true});
    ExpectUnionFindClusters("dragon_res3.obj.gz", {false, true});
}

// Without the angle rule the full dragon is one search about a million faces deep.
TEST(FaceClusterList, FullDragonClustersWithoutExhaustingTheStack) {
    ExpectUnionFindClusters("dragon.obj.gz", {false});
}

// The smoothing groups AutoSmooth assigns: one group per angle cluster, and clusters that
// share a vertex never share a group.
TEST(FaceClusterList, AutoSmoothGivesClustersSharingAVertexDifferentGroups) {
    for (const char* name : {"bunny.obj", "dragon_res3.obj.gz"}) {
        ObjData data;
        ASSERT_TRUE(ReadObj(SharedDataPath(std::string("meshes/") + name), data)) << name;
        cmesh mesh;
        ASSERT_TRUE(BuildMesh(data, mesh)) << name;
        ASSERT_EQ(mesh.AutoSmooth(45.0f, 0), 1);
        const auto cluster = OracleClusters(
            OracleLinks(data.triangles), OracleNormals(data), [](size_t) { return true; }, true,
            45.0);
        std::vector<std::set<unsigned int>> around(data.vertices.size());
        std::vector<unsigned int> groupOf(data.triangles.size(), 0);
        size_t conflicts = 0, uneven = 0, empty = 0;
        for (size_t f = 0; f < data.triangles.size(); ++f) {
            const unsigned int mask = mesh.GetFace(static_cast<int>(f)).smgroups;
            empty += mask == 0;
            unsigned int& g = groupOf[cluster[f]];
            if (g == 0) g = mask;
            uneven += g != mask;
            for (int v : data.triangles[f]) around[v].insert(static_cast<unsigned int>(f));
        }
        for (const auto& faces : around)
            for (unsigned int a : faces)
                for (unsigned int b : faces)
                    if (cluster[a] != cluster[b])
                        conflicts += (mesh.GetFace(static_cast<int>(a)).smgroups &
                                      mesh.GetFace(static_cast<int>(b)).smgroups) != 0;
        EXPECT_EQ(empty, 0u) << name;
        EXPECT_EQ(uneven, 0u) << name;
        EXPECT_EQ(conflicts, 0u) << name;
    }
}
