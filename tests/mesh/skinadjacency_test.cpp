#include <gtest/gtest.h>

#include "clusters.h"
#include "mesh/skinfixtures.h"

// The skin forms pass their arguments on to the mesh forms. On the cube, face 0's edge 0 (0-2) is
// edge 2 of face 9 (0, 6, 2); only edge 4 is selected.
TEST(SkinAdjacency, LinksAndClustersASkinsFacesAsTheMeshFormDoes) {
    cskin skin;
    MakeCube(skin);
    skin.SetEdgeFlags(4, ELEMENT_SELECTED);
    AdjFaceList faces;
    AdjEdgeList edges;
    FaceClusterList sides;
    EdgeClusterList edgeClusters;
    ASSERT_TRUE(LinkFaces(skin, faces) && LinkFaces(skin, edges));
    ASSERT_EQ(sides.Init(skin, faces, 0, 45.0f, 1) + edgeClusters.Init(skin, edges, 1), 2);
    EXPECT_EQ(std::tuple(faces.GetTriangle(0).link[0], edges.GetEdge(0).link, sides.NumClusters(),
                         edgeClusters.GetCluster(3), edgeClusters.GetCluster(4)),
              std::tuple(9u | (2u << 30), 9u, 6, CLUSTER_NONE, 0u));
}
