#include <gtest/gtest.h>

#include "adjacency.h"
#include "clusters.h"
#include "cskin.h"
#include "mesh/skinfixtures.h"

namespace {

// The unit cube as a skin, skinned to one bone that has been moved: its deformed points differ
// from the rest positions, which the adjacency must not see.
struct SkinnedCube {
    SkinnedCube() {
        MakeCube(skin);
        MakeCube(mesh);
        skin.AddBone(&bone);
        bone.SetPosition(0, cpoint3(0, 0, 7));
        skin.AssignNearestBones(1);
    }
    cnode bone{"Bone", ccolor()};
    cskin skin;
    cmesh mesh;
};

TEST(SkinAdjacency, LinksASkinsFacesAsTheMeshFormDoes) {
    SkinnedCube cube;
    ASSERT_TRUE(NearPoint(cube.skin.GetDeformedVert(0), cpoint3(0, 0, 7)));
    AdjFaceList fromSkin, fromMesh;
    AdjEdgeList edgesFromSkin, edgesFromMesh;
    ASSERT_TRUE(LinkFaces(cube.skin, fromSkin));
    ASSERT_TRUE(LinkFaces(cube.mesh, fromMesh));
    ASSERT_TRUE(LinkFaces(cube.skin, edgesFromSkin));
    ASSERT_TRUE(LinkFaces(cube.mesh, edgesFromMesh));
    ASSERT_EQ(fromSkin.NumFaces(), 12);
    ASSERT_EQ(edgesFromSkin.NumEdges(), 36);
    for (int e = 0; e < 36; ++e) {
        const AdjTriangle &s = fromSkin.GetTriangle(e / 3), &m = fromMesh.GetTriangle(e / 3);
        EXPECT_EQ(s.vref[e % 3], m.vref[e % 3]) << e;
        EXPECT_EQ(s.link[e % 3], m.link[e % 3]) << e;
        EXPECT_NE(s.link[e % 3], ADJ_NO_LINK) << "the cube is closed";
        EXPECT_EQ(edgesFromSkin.GetEdge(e).link, edgesFromMesh.GetEdge(e).link) << e;
    }
    CheckFaceList check;
    ASSERT_EQ(check.Init(cube.skin), 1);
    EXPECT_EQ(check.Check(), 1);
    EXPECT_EQ(check.NumSharedEdges(), 18);
    cskin empty;
    EXPECT_EQ(fromSkin.Init(empty), 0);
    EXPECT_EQ(edgesFromSkin.Init(empty), 0);
}

TEST(SkinAdjacency, ClustersASkinsFacesAndEdgesAsTheMeshFormDoes) {
    SkinnedCube cube;
    AdjFaceList adjacency;
    AdjEdgeList edges;
    ASSERT_TRUE(LinkFaces(cube.skin, adjacency));
    ASSERT_TRUE(LinkFaces(cube.skin, edges));
    FaceClusterList sides;
    ASSERT_EQ(sides.Init(cube.skin, adjacency, 0, 45.0f, 1), 1);
    EXPECT_EQ(sides.NumClusters(), 6);
    for (int f = 0; f < 12; ++f) EXPECT_EQ(sides.GetCluster(f), static_cast<unsigned>(f / 2));
    ASSERT_EQ(sides.Init(cube.skin, adjacency, 0, 100.0f, 1), 1);
    EXPECT_EQ(sides.NumClusters(), 1);
    EdgeClusterList edgeClusters;
    ASSERT_EQ(edgeClusters.Init(cube.skin, edges, 0), 1);
    EXPECT_EQ(edgeClusters.NumClusters(), 1);
    cube.skin.SetEdgeFlags(4, ELEMENT_SELECTED);
    ASSERT_EQ(edgeClusters.Init(cube.skin, edges, 1), 1);
    EXPECT_EQ(edgeClusters.NumClusters(), 1);
    EXPECT_EQ(edgeClusters.GetCluster(4), 0u);
    EXPECT_EQ(edgeClusters.GetCluster(3), CLUSTER_NONE);
}

}  // namespace
