#include "adjacency.h"

#include <gtest/gtest.h>

#include "mesh/edgeoracle.h"
#include "mesh/meshfixtures.h"

namespace {

constexpr unsigned int kNone = 0xFFFFFFFFu;
using Links = std::array<unsigned int, 3>;

// The links of every triangle of `list`, in face order.
std::vector<Links> AllLinks(const AdjFaceList& list) {
    std::vector<Links> out;
    for (int f = 0; f < list.NumFaces(); ++f) {
        const AdjTriangle& t = list.GetTriangle(f);
        out.push_back({t.link[0], t.link[1], t.link[2]});
    }
    return out;
}

}  // namespace

// The cface form links two triangles across their shared edge (the index form is checked against
// the real meshes below); a triangle finds the corner opposite an edge given in either order.
TEST(AdjFaceList, LinksTrianglesAcrossSharedEdgesFromFaces) {
    cface faces[2] = {cface(0, 1, 2), cface(2, 1, 3)};
    AdjFaceList list;
    ASSERT_TRUE(list.Init(faces, 2) == 1 && list.Create() == 1);
    EXPECT_EQ(AllLinks(list), (std::vector<Links>{{kNone, 1u | (0u << 30), kNone},
                                                  {0u | (1u << 30), kNone, kNone}}));
    // Empty input, and Create or Check after a failed Init (braces evaluate in order).
    int strip[] = {0, 1, 2};
    CheckFaceList check;
    AdjEdgeList edges;
    cmesh empty;
    const std::array<int, 7> refused{list.Init(strip, 0), list.Init(empty), list.Create(),
                                     check.Init(empty),   check.Check(),    edges.Init(empty),
                                     edges.Create()};
    EXPECT_EQ(refused, (std::array<int, 7>{}));
    AdjTriangle t;
    t.vref[0] = 7, t.vref[1] = 3, t.vref[2] = 9;
    for (const Links& row : {Links{3, 7, 9}, {3, 9, 7}, {9, 7, 3}, {1, 2, kNone}})
        EXPECT_EQ(t.OppositeVertex(row[0], row[1]), row[2]) << row[0] << "-" << row[1];
}

TEST(CheckFaceList, ReportsWhetherEveryEdgeHasAtMostTwoTriangles) {
    // A tetrahedron, a strip, and a fan on 5-6 with 0-5 shared: the verdict and the shared,
    // open and over-shared edges.
    const std::pair<std::vector<int>, std::array<int, 4>> rows[] = {
        {{0, 1, 2, 0, 3, 1, 1, 3, 2, 2, 3, 0}, {1, 6, 0, 0}},
        {{0, 1, 2, 2, 1, 3}, {1, 1, 4, 0}},
        {{5, 6, 0, 6, 5, 1, 5, 6, 2, 0, 5, 9}, {0, 1, 7, 1}}};
    for (auto [indices, expected] : rows) {
        CheckFaceList check;
        ASSERT_EQ(check.Init(indices.data(), static_cast<int>(indices.size() / 3)), 1);
        const std::array<int, 4> got{check.Check(), check.NumSharedEdges(), check.NumOpenEdges(),
                                     check.NumOverSharedEdges()};
        EXPECT_EQ(got, expected) << indices.size();
    }
}

TEST(AdjEdgeList, ListsEdgesPerStartVertexAndLinksFacesAcrossEdges) {
    cmesh mesh;
    ASSERT_TRUE(BuildMesh(mesh, std::vector<cpoint3>(5), {0, 1, 2, 2, 1, 3, 3, 1, 4}));
    AdjEdgeList list;
    ASSERT_EQ(list.Init(mesh), 1);
    EXPECT_EQ(std::tuple(list.GetEdge(4).v0, list.GetEdge(4).v1, list.GetEdge(4).face),
              std::tuple(1, 3, 1u));
    const cbitarray& at = list.GetVertEdges(1);  // edge 1 of faces 0, 1 and 2
    EXPECT_EQ((std::vector<int>{at.GetSize(), at[0], at[1], at[2]}),
              (std::vector<int>{3, 1, 4, 7}));
    ASSERT_EQ(list.Create(), 1);
    std::vector<unsigned int> links;
    for (int e = 0; e < list.NumEdges(); ++e) links.push_back(list.GetEdge(e).link);
    EXPECT_EQ(links, (std::vector<unsigned int>{kNone, 1, kNone, 0, 2, kNone, 1, kNone, kNone}));
}

// The real meshes against the ordered-map matcher: the teapot has open edges, the decimated
// dragon has edges of four and more triangles, so its linking stops early with success and keeps
// its edge records; the others release them.
TEST(AdjFaceList, RealMeshesMatchAnOrderedMapEdgeMatcher) {
    for (const auto& [name, kept] :
         {std::pair("bunny.obj", false), {"teapot.obj", false}, {"dragon_res3.obj.gz", true}}) {
        ObjData data;
        ASSERT_TRUE(ReadObj(SharedDataPath(std::string("meshes/") + name), data)) << name;
        std::vector<int> indices = FlatIndices(data);
        const int faces = static_cast<int>(data.triangles.size());
        AdjFaceList list;
        ASSERT_TRUE(list.Init(indices.data(), faces) == 1 && list.Create() == 1) << name;
        EXPECT_TRUE(AllLinks(list) == OracleLinks(data.triangles)) << name;
        EXPECT_EQ(list.NumEdgeRecords(), kept ? 3 * faces : 0) << name;
    }
}
