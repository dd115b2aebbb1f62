#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "adjacency.h"
#include "clusters.h"
#include "cmesh.h"
#include "mesh/meshfixtures.h"

TEST(MeshSmooth, AveragesTheFaceNormalsIntoTheStoredNormals) {
    cmesh cube;
    MakeCube(cube);
    cube.AddVert(cpoint3(5, 5, 5));
    cube.SetNormal(8, cpoint3(0, 1, 0));
    cube.Smooth(0);
    // Vertex 0 touches two faces of each of the -z, -y and -x sides, whose normals point
    // inwards: (0, 0, 1), (0, 1, 0), (1, 0, 0), each of length 1.
    const float r = 1.0f / std::sqrt(3.0f);
    EXPECT_TRUE(Near(cube.GetNormal(0), cpoint3(r, r, r)));
    EXPECT_TRUE(Near(cube.GetNormal(7), cpoint3(-r, -r, -r)));
    EXPECT_TRUE(Near(cube.GetNormal(8), cpoint3(0, 1, 0)));  // unused: kept
    cpoint3 n;
    EXPECT_EQ(cube.GetSmNormal(n, 0, 0), 0);
    cube.SetFaceSmGroups(-1, 1);
    cube.Smooth(1);
    ASSERT_EQ(cube.GetSmNormal(n, 0, 0), 1);
    EXPECT_TRUE(Near(n, cpoint3(r, r, r)));
}

TEST(MeshSmooth, AutoSmoothColoursTheSidesOfACube) {
    cmesh cube;
    MakeCube(cube);
    ASSERT_EQ(cube.AutoSmooth(45.0f, 0), 1);
    // Sides in cluster order -z, +z, -y, +y, -x, +x: opposite sides share no vertex.
    const std::uint32_t expected[6] = {1, 1, 2, 2, 4, 4};
    for (int f = 0; f < 12; ++f) EXPECT_EQ(cube.GetFace(f).smgroups, expected[f / 2]) << f;
    cpoint3 n;
    ASSERT_EQ(cube.GetSmNormal(n, 0, 0), 1);
    EXPECT_TRUE(Near(n, cpoint3(0, 0, 1)));

    // With a wide angle every side joins one cluster.
    ASSERT_EQ(cube.AutoSmooth(100.0f, 0), 1);
    for (int f = 0; f < 12; ++f) EXPECT_EQ(cube.GetFace(f).smgroups, 1u);

    // Only the selected faces change; unselected ones keep their masks.
    cube.SetFaceSmGroups(-1, 0x100);
    cube.SelectFaceSet(SetOf(12, {2, 3, 6}), 1);
    ASSERT_EQ(cube.AutoSmooth(45.0f, 1), 1);
    EXPECT_EQ(cube.GetFace(2).smgroups, 1u);
    EXPECT_EQ(cube.GetFace(3).smgroups, 1u);
    EXPECT_EQ(cube.GetFace(6).smgroups, 2u);
    EXPECT_EQ(cube.GetFace(0).smgroups, 0x100u);
    EXPECT_EQ(cube.GetFace(7).smgroups, 0x100u);

    cmesh empty;
    EXPECT_EQ(empty.AutoSmooth(45.0f, 0), 0);
}

// On a real mesh: clusters touching at a vertex never share a group.
TEST(MeshSmooth, AutoSmoothSeparatesClustersMeetingAtAVertex) {
    cmesh bunny;
    ASSERT_TRUE(LoadObjMesh(bunny, "bunny.obj"));
    ASSERT_EQ(bunny.AutoSmooth(30.0f, 0), 1);
    AdjFaceList adjacency;
    ASSERT_TRUE(LinkFaces(bunny, adjacency));
    FaceClusterList clusters;
    ASSERT_EQ(clusters.Init(bunny, adjacency, 0, 30.0f, 1), 1);
    ASSERT_GT(clusters.NumClusters(), 1);
    // For each vertex, the cluster that owns each group among its faces.
    std::vector<std::vector<std::pair<std::uint32_t, unsigned int>>> seen(
        static_cast<size_t>(bunny.NumVerts()));
    int clashes = 0;
    for (int f = 0; f < bunny.NumFaces(); ++f) {
        const cface face = bunny.GetFace(f);
        ASSERT_EQ(__builtin_popcount(face.smgroups), 1) << f;
        for (int k = 0; k < 3; ++k)
            for (auto& [mask, cluster] : seen[static_cast<size_t>(face.v[k])]) {
                if (mask == face.smgroups && cluster != clusters.GetCluster(f)) ++clashes;
            }
        for (int k = 0; k < 3; ++k)
            seen[static_cast<size_t>(face.v[k])].emplace_back(face.smgroups,
                                                              clusters.GetCluster(f));
    }
    EXPECT_EQ(clashes, 0);
}
