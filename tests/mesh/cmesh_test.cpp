#include <gtest/gtest.h>

#include "cmaterial.h"
#include "mesh/meshfixtures.h"
#include "scene/aimednodes.h"

// Intended: only the default constructor makes an edge of type 3.
TEST(MeshElements, EdgesCompareEitherWayAndIndicesAreChecked) {
    const cedge ab(4, 7), ba = Swap(ab);
    EXPECT_EQ(std::tuple(cedge().type, ab.type, ba == cedge(7, 4), CompareSwap(ab, ba),
                         CompareEdge(ab, ba), CompareBoth(ab, ba), cedge(3, 3).CheckIndices(),
                         cedge(-1, 3).CheckIndices(), cface(0, 1, 1).CheckVIndices(3)),
              std::tuple(3u, 0u, true, true, false, true, false, false, 0));
    // Edges of a valid face, of a face left at its default indices, and numbers outside.
    cmesh mesh;
    ASSERT_EQ(mesh.Allocate(3, 0, 2) + mesh.SetFace(0, cface(0, 1, 2)), 2);
    std::vector<int> valid;
    for (int e : {0, 1, 2, 3, 5, -1, 6}) valid.push_back(mesh.CheckEdgeVIndices(e));
    EXPECT_EQ(valid, (std::vector<int>{1, 1, 1, 0, 0, 0, 0}));
}

TEST(MeshArrays, RefuseEmptyAllocationsIndexZeroAndOutOfRangeAndKeepTheBoxRule) {
    cmesh mesh;
    ASSERT_EQ(mesh.Allocate(8, 0, 12), 1);
    EXPECT_EQ(mesh.Allocate(0, 5, 5), 0);
    EXPECT_EQ(std::tuple(mesh.NumVerts(), mesh.NumNormals(), mesh.NumTVerts(), mesh.NumFaces(),
                         mesh.NumEdges(), mesh.GetEdgeFlags(35), mesh.GetFace(11).flags),
              std::tuple(8, 8, 0, 12, 36, 0, 0x0038));
    EXPECT_EQ(std::tuple(mesh.GetFace(12).v[0], mesh.SetVert(8, cpoint3(1, 1, 1)),
                         mesh.SetEdgeFlags(-1, 1), mesh.GetNumElements(0)),
              std::tuple(-1, 0, 0, 0));
    mesh.SetNumFaces(2);
    EXPECT_EQ(mesh.NumEdges(), 6);
    // Intended: GetElement refuses index 0 at every level.
    mesh.SetVertFlags(1, ELEMENT_SELECTED);
    celement e;
    std::vector<int> found;
    for (const auto& [index, level] :
         {std::pair(0, 1), {0, 2}, {0, 3}, {2, 2}, {6, 3}, {1, 4}, {5, 3}, {1, 2}, {1, 1}})
        found.push_back(mesh.GetElement(e, index, level));
    EXPECT_EQ(found, (std::vector<int>{0, 0, 0, 0, 0, 0, 1, 1, 1}));
    EXPECT_EQ(std::tuple(e.type, e.flags), std::tuple(1u, ELEMENT_SELECTED));
    // Intended: (2, 2, 2) alone is an "empty" box, so (-1, 4, 0.5) replaces it.
    BuildMesh(mesh, {{2, 2, 2}, {-1, 4, 0.5f}, {0, 0, 0}}, {0, 1, 2});
    mesh.CalcBBox();
    cpoint3 min, max;
    mesh.GetMeshBBox(min, max);
    EXPECT_TRUE(Near(min, cpoint3(-1, 0, 0)) && Near(max, cpoint3(0, 4, 0.5f)));
}

TEST(MeshCounters, FollowFlagChangesOfFacesAndEdges) {
    cmesh mesh;
    MakeCube(mesh);
    const unsigned short selected = ELEMENT_SELECTED, hidden = ELEMENT_HIDDEN;
    const auto counters = [&] {  // selected and hidden faces, selected and hidden edges
        return std::array<int, 4>{mesh.NumSelFaces(), mesh.NumHiddenFaces(), mesh.NumSelEdges(),
                                  mesh.NumHiddenEdges()};
    };
    mesh.SetFaceFlags(0, selected);
    mesh.SetFaceFlags(0, hidden | selected);  // hiding a selected face deselects it
    const int once = mesh.GetFaceFlags(0);
    // Intended: a face hidden before and after keeps the flags as given; an edge never does.
    mesh.SetFaceFlags(0, hidden | selected);
    mesh.SetEdgeFlags(4, hidden);
    mesh.SetEdgeFlags(4, hidden | selected);
    EXPECT_EQ(std::tuple(once, mesh.GetFaceFlags(0), mesh.GetEdgeFlags(4), counters()),
              std::tuple(hidden, hidden | selected, hidden, std::array<int, 4>{0, 1, 0, 1}));
    mesh.SetEdgeFlags(4, selected);
    mesh.SetFaceFlags(0, hidden);
    mesh.UnhideAllFaces();
    EXPECT_EQ(counters(), (std::array<int, 4>{0, 0, 1, 0}));
    // SetFace refuses invalid indices and keeps counters for a whole new face. A face that stays
    // selected moves its vertex selection to its new corners.
    cface chosen(0, 1, 2);
    chosen.flags = selected;
    EXPECT_EQ(mesh.SetFace(5, cface(0, 0, 2)), 0);
    ASSERT_EQ(mesh.SetFace(5, chosen), 1);
    mesh.Update();
    EXPECT_TRUE(Near(mesh.GetSelFacesCenter(), cpoint3(0.5f, 0.5f, 0)));
    mesh.SelectVertSet(SetOf(8, {0, 1, 2}), 1);
    chosen.v[0] = 5, chosen.v[1] = 6, chosen.v[2] = 7;
    mesh.SetFace(5, chosen);
    EXPECT_EQ(std::tuple(mesh.GetVertFlags(0), mesh.GetVertFlags(7), mesh.NumSelVerts()),
              std::tuple(0, selected, 3));
}

TEST(MeshSmoothing, AveragesOnlyFacesSharingAGroup) {
    // Two triangles of a folded strip sharing edge 1-2: (P0 - P1) x (P2 - P1) is (0, 0, -1)
    // for face 0 and (-1, 1, 0) x (0, 1, 1) = (1, 1, -1) for face 1.
    cmesh mesh;
    BuildMesh(mesh, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 1}}, {0, 1, 2, 2, 1, 3});
    const float r = 1.0f / std::sqrt(3.0f);
    EXPECT_TRUE(Near(mesh.GetFaceNormal(1), cpoint3(r, r, -r)));
    mesh.SetFaceSmGroups(-1, 1);
    mesh.CalcSmNormals();
    EXPECT_TRUE(SmNormalIs(mesh, 0, 1, Normalize(cpoint3(1, 1, -2))));  // unnormalised sums
    EXPECT_TRUE(SmNormalIs(mesh, 0, 0, cpoint3(0, 0, -1)));
    mesh.SetFaceSmGroups(1, 2);
    mesh.CalcSmNormals();
    EXPECT_TRUE(SmNormalIs(mesh, 1, 0, cpoint3(r, r, -r)));
    mesh.SetFaceSmGroups(-1, 0);
    mesh.CalcSmNormals();
    cpoint3 n;
    EXPECT_EQ(mesh.GetSmNormal(n, 0, 1) + mesh.GetSmNormal(n, 0, 3) + mesh.GetSmNormal(n, 2, 0), 0);
}

TEST(MeshMaterials, FaceLevelSetsSelectedFacesAndOtherLevelsTheMesh) {
    cmaterial red("red"), blue("blue");
    cmesh mesh, copy;
    MakeCube(mesh);
    mesh.SetFaceFlags(2, ELEMENT_SELECTED);
    mesh.SetSubLevel(2);
    mesh.SetMaterial(&red);
    EXPECT_EQ(std::tuple(mesh.GetFaceMaterial(2), mesh.GetFaceMaterial(3), mesh.GetMaterial(),
                         mesh.IsMaterialUsed(&red), mesh.IsMaterialUsed(&blue)),
              std::tuple(&red, nullptr, nullptr, 1, 0));
    mesh.SetSubLevel(0);
    mesh.SetMaterial(&blue);
    EXPECT_EQ(std::tuple(mesh.GetMaterial(), mesh.GetFaceMaterial(2)), std::tuple(&blue, nullptr));
    mesh.SetFaceMaterial(5, &red);
    mesh.SetMeshMaterial(&red, 0);
    mesh.Clone(0, copy);
    EXPECT_EQ(SavedRecord(copy), SavedRecord(mesh));
    EXPECT_EQ(mesh.HandleMessage(MSG_MTL_DELETED, &red, nullptr), 1);
    EXPECT_EQ(std::tuple(mesh.GetMaterial(), mesh.GetFaceMaterial(5), copy.GetFaceMaterial(5)),
              std::tuple(nullptr, nullptr, &red));
}
