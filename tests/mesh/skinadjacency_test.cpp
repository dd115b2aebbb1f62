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
    ASSERT_EQ(fromSkin.Init(cube.skin), 1);
    ASSERT_EQ(fromSkin.Create(), 1);
    ASSERT_TRUE(LinkFaces(cube.mesh, fromMesh));
    ASSERT_EQ(fromSkin.NumFaces(), 12);
    for (int f = 0; f < 12; ++f)
        for (int k = 0; k < 3; ++k) {
            EXPECT_EQ(fromSkin.GetTriangle(f).vref[k], fromMesh.GetTriangle(f).vref[k]);
            EXPECT_EQ(fromSkin.GetTriangle(f).link[k], fromMesh.GetTriangle(f).link[k]);
            EXPECT_NE(fromSkin.GetTriangle(f).link[k], ADJ_NO_LINK) << "the cube is closed";
        }

    AdjEdgeList edgesFromSkin, edgesFromMesh;
    ASSERT_EQ(edgesFromSkin.Init(cube.skin), 1);
    ASSERT_EQ(edgesFromSkin.Create(), 1);
    ASSERT_TRUE(LinkFaces(cube.mesh, edgesFromMesh));
    ASSERT_EQ(edgesFromSkin.NumEdges(), 36);
    for (int e = 0; e < 36; ++e)
        EXPECT_EQ(edgesFromSkin.GetEdge(e).link, edgesFromMesh.GetEdge(e).link) << e;

    CheckFaceList check;
    ASSERT_EQ(check.Init(cube.skin), 1);
    EXPECT_EQ(check.Check(), 1);
    EXPECT_EQ(check.NumSharedEdges(), 18);

    cskin empty;
    AdjFaceList none;
    AdjEdgeList noEdges;
    EXPECT_EQ(none.Init(empty), 0);
    EXPECT_EQ(noEdges.Init(empty), 0);
}

TEST(SkinAdjacency, ClustersASkinsFacesAndEdgesAsTheMeshFormDoes) {
    SkinnedCube cube;
    AdjFaceList adjacency;
    ASSERT_EQ(adjacency.Init(cube.skin), 1);
    ASSERT_EQ(adjacency.Create(), 1);
    FaceClusterList sides, whole;
    ASSERT_EQ(sides.Init(cube.skin, adjacency, 0, 45.0f, 1), 1);
    EXPECT_EQ(sides.NumClusters(), 6);
    for (int f = 0; f < 12; ++f) EXPECT_EQ(sides.GetCluster(f), static_cast<unsigned>(f / 2));
    ASSERT_EQ(whole.Init(cube.skin, adjacency, 0, 100.0f, 1), 1);
    EXPECT_EQ(whole.NumClusters(), 1);

    AdjEdgeList edges;
    ASSERT_EQ(edges.Init(cube.skin), 1);
    ASSERT_EQ(edges.Create(), 1);
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
