#include "adjacency.h"

#include <gtest/gtest.h>

#include <array>
#include <tuple>
#include <vector>

#include "cmesh.h"
#include "mesh/edgeoracle.h"
#include "mesh/meshfixtures.h"
#include "support/objreader.h"
#include "support/testsupport.h"

namespace {

constexpr unsigned int kNone = 0xFFFFFFFFu;

using Links = std::array<unsigned int, 3>;

Links LinksOf(const AdjTriangle& t) {
    return {t.link[0], t.link[1], t.link[2]};
}

}  // namespace

TEST(AdjTriangle, FindsEdgesAndOppositeCornersInEitherOrder) {
    AdjTriangle t;
    t.vref[0] = 7, t.vref[1] = 3, t.vref[2] = 9;
    for (const Links& row : {Links{7, 3, 0}, {3, 7, 0}, {9, 3, 1}, {7, 9, 2}, {7, 8, 0xFF}})
        EXPECT_EQ(t.FindEdge(row[0], row[1]), row[2]) << row[0] << "-" << row[1];
    for (const Links& row : {Links{3, 7, 9}, {3, 9, 7}, {9, 7, 3}, {1, 2, kNone}})
        EXPECT_EQ(t.OppositeVertex(row[0], row[1]), row[2]) << row[0] << "-" << row[1];
    EXPECT_EQ(AdjLinkFace(5u | (2u << 30)), 5u);
    EXPECT_EQ(AdjLinkEdge(5u | (2u << 30)), 2u);
    // A degenerate triangle has edges joining the same pair twice: the first one counts.
    for (const auto& corners : {Links{4, 6, 4}, {6, 4, 6}, {4, 6, 6}, {4, 4, 6}}) {
        AdjTriangle d;
        std::copy(corners.begin(), corners.end(), d.vref);
        const unsigned char first = corners[0] != corners[1] ? 0 : 1;
        EXPECT_EQ(d.FindEdge(4, 6), first) << corners[0] << corners[1] << corners[2];
        EXPECT_EQ(d.FindEdge(6, 4), first);
    }
}

TEST(AdjFaceList, LinksTrianglesAcrossTheirSharedEdgesOnly) {
    int indices[] = {0, 1, 2, 2, 1, 3};
    AdjFaceList list;
    ASSERT_EQ(list.Init(indices, 2), 1);
    EXPECT_EQ(list.NumEdgeRecords(), 6);
    EXPECT_EQ(LinksOf(list.GetTriangle(0)), (Links{kNone, kNone, kNone}));
    ASSERT_EQ(list.Create(), 1);
    EXPECT_EQ(LinksOf(list.GetTriangle(0)), (Links{kNone, 1u | (0u << 30), kNone}));
    EXPECT_EQ(LinksOf(list.GetTriangle(1)), (Links{0u | (1u << 30), kNone, kNone}));
    EXPECT_EQ(list.NumEdgeRecords(), 0);  // released after a complete linking
    // The same through a face array and through a mesh.
    cface faces[2] = {cface(0, 1, 2), cface(2, 1, 3)};
    AdjFaceList fromFaces, fromMesh;
    ASSERT_EQ(fromFaces.Init(faces, 2), 1);
    ASSERT_EQ(fromFaces.Create(), 1);
    EXPECT_EQ(LinksOf(fromFaces.GetTriangle(1)), (Links{0u | (1u << 30), kNone, kNone}));
    cmesh mesh;
    ASSERT_TRUE(BuildMesh(mesh, std::vector<cpoint3>(4), {0, 1, 2, 2, 1, 3}));
    ASSERT_TRUE(LinkFaces(mesh, fromMesh));
    EXPECT_EQ(LinksOf(fromMesh.GetTriangle(0)), (Links{kNone, 1u | (0u << 30), kNone}));
    EXPECT_EQ(fromMesh.GetTriangle(1).vref[2], 3u);
    // A closed tetrahedron links every edge both ways.
    int tetra[] = {0, 1, 2, 0, 3, 1, 1, 3, 2, 2, 3, 0};
    ASSERT_EQ(list.Init(tetra, 4), 1);
    ASSERT_EQ(list.Create(), 1);
    for (unsigned int f = 0; f < 4; ++f) {
        const AdjTriangle& t = list.GetTriangle(static_cast<int>(f));
        for (unsigned int k = 0; k < 3; ++k) {
            ASSERT_NE(t.link[k], kNone);
            const AdjTriangle& n = list.GetTriangle(static_cast<int>(AdjLinkFace(t.link[k])));
            const unsigned int j = AdjLinkEdge(t.link[k]);
            EXPECT_EQ(n.link[j], f | (k << 30));
            EXPECT_EQ(n.FindEdge(t.vref[k], t.vref[(k + 1) % 3]), j);
        }
    }
}

TEST(AdjFaceList, EdgeOfThreeTrianglesEndsTheLinkingWithSuccess) {
    // Edge 5-6 has three triangles; edge 2-3 sorts before it and is linked, edge 10-11 sorts
    // after it and stays open.
    int indices[] = {5, 6, 0, 6, 5, 1, 5, 6, 2, 10, 11, 12, 11, 10, 13, 2, 3, 20, 3, 2, 21};
    AdjFaceList list;
    ASSERT_EQ(list.Init(indices, 7), 1);
    EXPECT_EQ(list.Create(), 1);
    EXPECT_EQ(LinksOf(list.GetTriangle(5)), (Links{6u, kNone, kNone}));
    EXPECT_EQ(LinksOf(list.GetTriangle(6)), (Links{5u, kNone, kNone}));
    for (int f = 0; f < 5; ++f)
        EXPECT_EQ(LinksOf(list.GetTriangle(f)), (Links{kNone, kNone, kNone})) << f;
    EXPECT_EQ(list.NumEdgeRecords(), 21);  // kept
}

TEST(AdjFaceList, RefusesEmptyInputAndCreateWithoutInit) {
    AdjFaceList list;
    EXPECT_EQ(list.Create(), 0);
    int indices[] = {0, 1, 2};
    EXPECT_EQ(list.Init(indices, 0), 0);
    EXPECT_EQ(list.Init(static_cast<int*>(nullptr), 3), 0);
    EXPECT_EQ(list.Init(static_cast<cface*>(nullptr), 1), 0);
    cmesh empty;
    EXPECT_EQ(list.Init(empty), 0);
    EXPECT_EQ(list.NumFaces(), 0);
    CheckFaceList check;
    EXPECT_EQ(check.Init(empty), 0);
    EXPECT_EQ(check.Check(), 0);
    AdjEdgeList edges;
    EXPECT_EQ(edges.Init(empty), 0);
    EXPECT_EQ(edges.Create(), 0);
}

TEST(CheckFaceList, ReportsWhetherEveryEdgeHasAtMostTwoTriangles) {
    const struct {
        std::vector<int> indices;
        int check, shared, open, overShared;
    } rows[] = {
        {{0, 1, 2, 0, 3, 1, 1, 3, 2, 2, 3, 0}, 1, 6, 0, 0},  // a tetrahedron
        {{0, 1, 2, 2, 1, 3}, 1, 1, 4, 0},                    // a strip
        {{5, 6, 0, 6, 5, 1, 5, 6, 2, 0, 5, 9}, 0, 1, 7, 1},  // a fan on 5-6, and 0-5 shared
    };
    CheckFaceList check;
    for (const auto& row : rows) {
        std::vector<int> indices = row.indices;
        ASSERT_EQ(check.Init(indices.data(), static_cast<int>(indices.size() / 3)), 1);
        EXPECT_EQ(check.Check(), row.check) << indices.size();
        EXPECT_EQ(check.NumSharedEdges(), row.shared) << indices.size();
        EXPECT_EQ(check.NumOpenEdges(), row.open) << indices.size();
        EXPECT_EQ(check.NumOverSharedEdges(), row.overShared) << indices.size();
    }
}

TEST(AdjEdgeList, ListsEdgesPerStartVertexAndLinksFacesAcrossEdges) {
    cmesh mesh;
    ASSERT_TRUE(BuildMesh(mesh, std::vector<cpoint3>(5), {0, 1, 2, 2, 1, 3, 3, 1, 4}));
    AdjEdgeList list;
    ASSERT_EQ(list.Init(mesh), 1);
    ASSERT_EQ(list.NumEdges(), 9);
    EXPECT_EQ(std::tuple(list.GetEdge(4).v0, list.GetEdge(4).v1, list.GetEdge(4).face),
              std::tuple(1, 3, 1u));
    // Vertex 1 starts edge 1 of face 0, edge 1 of face 1 and edge 1 of face 2.
    const auto starts = [&](int v) {
        const cbitarray& at = list.GetVertEdges(v);
        std::vector<int> edges;
        for (int i = 0; i < at.GetSize(); ++i) edges.push_back(at[i]);
        return edges;
    };
    EXPECT_EQ(starts(1), (std::vector<int>{1, 4, 7}));
    EXPECT_EQ(starts(4), (std::vector<int>{8}));
    ASSERT_EQ(list.Create(), 1);
    const unsigned int expected[9] = {kNone, 1, kNone, 0, 2, kNone, 1, kNone, kNone};
    for (int e = 0; e < 9; ++e) EXPECT_EQ(list.GetEdge(e).link, expected[e]) << e;
}

// The real meshes against the ordered-map matcher: the teapot has open edges, the decimated
// dragon has edges of four and more triangles (so linking stops early).
TEST(AdjFaceList, RealMeshesMatchAnOrderedMapEdgeMatcher) {
    for (const char* name : {"bunny.obj", "teapot.obj", "dragon_res3.obj.gz"}) {
        ObjData data;
        ASSERT_TRUE(ReadObj(SharedDataPath(std::string("meshes/") + name), data)) << name;
        int overShared = 0;
        const auto expected = OracleLinks(data.triangles, &overShared);
        std::vector<int> indices = FlatIndices(data);
        const int count = static_cast<int>(data.triangles.size());
        AdjFaceList list;
        ASSERT_EQ(list.Init(indices.data(), count), 1);
        ASSERT_EQ(list.Create(), 1) << name;
        int mismatches = 0, linked = 0;
        for (int f = 0; f < count; ++f) {
            const Links got = LinksOf(list.GetTriangle(f));
            mismatches += got != expected[static_cast<size_t>(f)];
            for (unsigned int l : got) linked += l != kNone;
        }
        EXPECT_EQ(mismatches, 0) << name;
        EXPECT_GT(linked, 0) << name;
        EXPECT_EQ(list.NumEdgeRecords() != 0, overShared != 0) << name;
        CheckFaceList check;
        ASSERT_EQ(check.Init(indices.data(), count), 1);
        EXPECT_EQ(check.Check(), overShared == 0 ? 1 : 0) << name;
        EXPECT_EQ(check.NumOverSharedEdges(), overShared) << name;
    }
}
