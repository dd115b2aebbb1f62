#include <gtest/gtest.h>

#include <tuple>

#include "cmaterial.h"
#include "cmesh.h"
#include "mesh/meshfixtures.h"

TEST(MeshElements, StartWithTheirDefaults) {
    const cface face;
    EXPECT_EQ(std::tuple(face.type, face.flags, face.smgroups, face.material),
              std::tuple(2u, 0x0038, 0u, nullptr));
    EXPECT_EQ(Corners(face), (Tri{-1, -1, -1}));
    EXPECT_EQ((Tri{face.tv[0], face.tv[1], face.tv[2]}), (Tri{-1, -1, -1}));
    const cvertex vertex;
    EXPECT_EQ(std::tuple(vertex.type, vertex.flags, vertex.color, vertex.skinIndex),
              std::tuple(1u, 0, ccolor(1.0f, 1.0f, 1.0f, 1.0f), 0xFFFFFFFFu));
    // Only the default constructor makes an edge of type 3.
    EXPECT_EQ(cedge().type, 3u);
    const cedge ab(4, 7);
    EXPECT_EQ(ab.type, 0u);
    cedge ba = Swap(ab);
    EXPECT_TRUE(ba == cedge(7, 4));
    EXPECT_EQ(std::tuple(CompareSwap(ab, ba), CompareEdge(ab, ba), CompareBoth(ab, ba), ab != ba),
              std::tuple(true, false, true, true));
    ba.Swap();
    EXPECT_TRUE(ab == ba);
    EXPECT_EQ(std::tuple(cedge(3, 3).CheckIndices(), cedge(-1, 3).CheckIndices(),
                         cedge(0, 3).CheckIndices()),
              std::tuple(false, false, true));
    EXPECT_EQ(std::tuple(cface(0, 1, 1).CheckVIndices(3), cface(0, 1, 3).CheckVIndices(3),
                         cface(2, 0, 1).CheckVIndices(3)),
              std::tuple(0, 0, 1));
}

TEST(MeshArrays, AllocateRefusesAMeshWithoutVertices) {
    cmesh mesh;
    EXPECT_STREQ(mesh.GetName(), "Mesh1");
    EXPECT_EQ(std::tuple(mesh.GetTypeID(), mesh.IsRenderable(), mesh.HandlesUVMapping()),
              std::tuple(TYPE_MESH, 1, 1));
    ASSERT_EQ(mesh.Allocate(8, 0, 12), 1);
    const auto counts = [&] {
        return std::tuple(mesh.NumVerts(), mesh.NumNormals(), mesh.NumTVerts(), mesh.NumFaces(),
                          mesh.NumEdges());
    };
    EXPECT_EQ(counts(), std::tuple(8, 8, 0, 12, 36));
    for (int e = 0; e < 36; ++e) EXPECT_EQ(mesh.GetEdgeFlags(e), 0);
    EXPECT_EQ(mesh.GetFace(11).flags, 0x0038);
    EXPECT_EQ(mesh.Allocate(0, 5, 5), 0);
    EXPECT_EQ(counts(), std::tuple(8, 8, 0, 12, 36));
    // Out-of-range access answers defaults and changes nothing.
    EXPECT_EQ(std::tuple(mesh.GetFace(12).v[0], mesh.GetEdge(36).v[0], mesh.GetEdge(36).type),
              std::tuple(-1, -1, 3u));
    EXPECT_EQ(std::tuple(mesh.SetVert(8, cpoint3(1, 1, 1)), mesh.SetEdgeFlags(-1, 1)),
              std::tuple(0, 0));
    EXPECT_EQ(mesh.GetSkinVertIndex(99), 0xFFFFFFFFu);
    cmesh* made = CreateNewMesh();
    ASSERT_NE(made, nullptr);
    made->Delete();
    mesh.SetNumFaces(2);
    EXPECT_EQ(mesh.NumEdges(), 6);
}

TEST(MeshArrays, GetElementRefusesIndexZero) {
    cmesh mesh;
    MakeCube(mesh);
    mesh.SetVertFlags(1, ELEMENT_SELECTED);
    const struct {
        int index, level, found, flags;
    } rows[] = {{0, 1, 0, 0},       {0, 2, 0, 0},  {0, 3, 0, 0},  {1, 1, 1, ELEMENT_SELECTED},
                {11, 2, 1, 0x0038}, {12, 2, 0, 0}, {35, 3, 1, 0}, {1, 4, 0, 0}};
    for (const auto& row : rows) {
        celement element;
        ASSERT_EQ(mesh.GetElement(element, row.index, row.level), row.found)
            << row.index << " at level " << row.level;
        if (!row.found) continue;
        EXPECT_EQ(element.type, static_cast<unsigned>(row.level)) << row.index;
        EXPECT_EQ(element.flags, row.flags) << row.index;
    }
    EXPECT_EQ(std::tuple(mesh.GetNumElements(3), mesh.GetNumElements(0)), std::tuple(36, 0));
}

TEST(MeshCounters, FollowFlagChangesOfFacesAndEdges) {
    cmesh mesh;
    MakeCube(mesh);
    const unsigned short selected = ELEMENT_SELECTED, hidden = ELEMENT_HIDDEN;
    // Selected and hidden faces, selected and hidden edges.
    const auto counters = [&] {
        return std::array<int, 4>{mesh.NumSelFaces(), mesh.NumHiddenFaces(), mesh.NumSelEdges(),
                                  mesh.NumHiddenEdges()};
    };
    using Four = std::array<int, 4>;
    mesh.SetFaceFlags(0, selected);
    EXPECT_EQ(counters(), (Four{1, 0, 0, 0}));
    mesh.SetFaceFlags(0, hidden | selected);  // hiding a selected face deselects it
    EXPECT_EQ(counters(), (Four{0, 1, 0, 0}));
    EXPECT_EQ(mesh.GetFaceFlags(0), hidden);
    // A face hidden before and after keeps the flags as given; an edge never does.
    mesh.SetFaceFlags(0, hidden | selected);
    EXPECT_EQ(mesh.GetFaceFlags(0), hidden | selected);
    mesh.SetEdgeFlags(4, hidden);
    mesh.SetEdgeFlags(4, hidden | selected);
    EXPECT_EQ(mesh.GetEdgeFlags(4), hidden);
    EXPECT_EQ(counters(), (Four{0, 1, 0, 1}));
    mesh.SetEdgeFlags(4, selected);
    EXPECT_EQ(counters(), (Four{0, 1, 1, 0}));
    mesh.SetEdgeFlags(4, 0);
    mesh.SetFaceFlags(0, hidden);
    mesh.SetFaceFlags(1, hidden);
    EXPECT_EQ(counters(), (Four{0, 2, 0, 0}));
    mesh.UnhideAllFaces();
    EXPECT_EQ(counters(), (Four{0, 0, 0, 0}));
    mesh.SetFaceFlags(2, hidden);
    // SetFace refuses invalid indices and keeps counters for a whole new face.
    const auto selectedFace = [&](int a, int b, int c) {
        cface face(a, b, c);
        face.flags = selected;
        return face;
    };
    EXPECT_EQ(mesh.SetFace(5, cface(0, 0, 2)), 0);
    ASSERT_EQ(mesh.SetFace(5, selectedFace(0, 1, 2)), 1);
    EXPECT_EQ(mesh.NumSelFaces(), 1);
    EXPECT_TRUE(Near(mesh.GetSelFacesCenter(), cpoint3()));  // centres wait for Update
    mesh.Update();
    EXPECT_TRUE(Near(mesh.GetSelFacesCenter(), cpoint3(0.5f, 0.5f, 0.0f)));
    // A face that stays selected moves its vertex selection to its new corners.
    for (int v : {0, 1, 2}) mesh.SetVertFlags(v, selected);
    ASSERT_EQ(mesh.SetFace(5, cface(4, 5, 6)), 1);  // default flags: deselects the face
    EXPECT_EQ(std::tuple(mesh.NumSelFaces(), mesh.NumSelVerts()), std::tuple(0, 3));
    mesh.SetFace(5, selectedFace(0, 1, 2));
    mesh.SetFace(5, selectedFace(5, 6, 7));
    EXPECT_EQ(std::tuple(mesh.GetVertFlags(0), mesh.GetVertFlags(7), mesh.NumSelVerts()),
              std::tuple(0, selected, 3));  // 5, 6, 7 selected
    EXPECT_TRUE(MeshIsValid(mesh));
}

TEST(MeshBox, TreatsABoxOfEqualCoordinatesAsEmpty) {
    // (2, 2, 2) alone is an "empty" box, so (-1, 4, 0.5) replaces it instead of growing it;
    // likewise (3, 3, 3) gives way to (5, 6, 7).
    const struct {
        std::vector<cpoint3> points;
        cpoint3 min, max;
    } rows[] = {{{{2, 2, 2}, {-1, 4, 0.5f}, {0, 0, 0}}, {-1, 0, 0}, {0, 4, 0.5f}},
                {{{3, 3, 3}, {5, 6, 7}}, {5, 6, 7}, {5, 6, 7}}};
    for (const auto& row : rows) {
        cmesh mesh;
        mesh.Allocate(static_cast<int>(row.points.size()), 0, 0);
        for (size_t i = 0; i < row.points.size(); ++i)
            mesh.SetVert(static_cast<int>(i), row.points[i]);
        mesh.CalcBBox();
        cpoint3 min, max;
        mesh.GetMeshBBox(min, max);
        EXPECT_TRUE(Near(min, row.min));
        EXPECT_TRUE(Near(max, row.max));
    }
}

TEST(MeshSmoothing, AveragesOnlyFacesSharingAGroup) {
    // Two triangles of a folded strip sharing edge 1-2.
    cmesh mesh;
    BuildMesh(mesh, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 1}}, {0, 1, 2, 2, 1, 3});
    // (P0 - P1) x (P2 - P1) for face 0: (-1,0,0) x (-1,1,0) = (0,0,-1); for face 1:
    // (P2 - P1) x (P3 - P1) = (-1,1,0) x (0,1,1) = (1,1,-1).
    const float r = 1.0f / std::sqrt(3.0f);
    const cpoint3 n0(0, 0, -1), n1(r, r, -r);
    EXPECT_TRUE(Near(mesh.GetFaceNormal(0), n0));
    EXPECT_TRUE(Near(mesh.GetFaceNormal(1), n1));
    // Unnormalised sums: (0,0,-1) + (1,1,-1), averaged and normalised.
    mesh.SetFaceSmGroups(-1, 1);
    mesh.CalcSmNormals();
    EXPECT_TRUE(SmNormalIs(mesh, 0, 1, Normalize(cpoint3(1, 1, -2))));
    EXPECT_TRUE(SmNormalIs(mesh, 1, 0, Normalize(cpoint3(1, 1, -2))));
    EXPECT_TRUE(SmNormalIs(mesh, 0, 0, n0));
    mesh.SetFaceSmGroups(1, 2);
    mesh.CalcSmNormals();
    EXPECT_TRUE(SmNormalIs(mesh, 0, 1, n0));
    EXPECT_TRUE(SmNormalIs(mesh, 1, 0, n1));
    mesh.SetFaceSmGroups(-1, 0);
    mesh.CalcSmNormals();
    cpoint3 n;
    for (const auto& [face, corner] : {std::pair(0, 1), {1, 0}, {0, 3}, {2, 0}})
        EXPECT_EQ(mesh.GetSmNormal(n, face, corner), 0) << face << ", " << corner;
}

TEST(MeshSmoothing, ABridgingFaceJoinsTheNewerGroupOnly) {
    // Three faces around vertex 0, processed A (mask 1), B (mask 2), C (mask 3).
    cmesh mesh;
    BuildMesh(mesh, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {-1, 0, 0}, {0, 0, 1}},
              {0, 1, 2, 0, 2, 3, 0, 4, 1});
    for (int f = 0; f < 3; ++f) mesh.SetFaceSmGroups(f, static_cast<std::uint32_t>(f + 1));
    mesh.CalcSmNormals();
    // A: (0-1) x (2-1) = (-1,0,0) x (-1,1,0) = (0,0,-1) (length 1).
    // B: (0-2) x (3-2) = (0,-1,0) x (-1,-1,0) = (0,0,-1).
    // C: (0-4) x (1-4) = (0,0,-1) x (1,0,-1) = (0,-1,0).
    EXPECT_TRUE(SmNormalIs(mesh, 2, 0, Normalize(cpoint3(0, -1, -1))));  // B + C
    // A's corner also finds the B + C node first: its mask 3 shares A's bit.
    EXPECT_TRUE(SmNormalIs(mesh, 0, 0, Normalize(cpoint3(0, -1, -1))));
    const cvertex v0 = mesh.GetVert(0);
    ASSERT_EQ(v0.sm.NumGroups(), 2);
    const csmgroup* a = v0.sm.GetHead()->next;
    EXPECT_EQ(a->mask, 1u);
    EXPECT_EQ(a->count, 1);
    EXPECT_TRUE(Near(a->GetNormal(), cpoint3(0, 0, -1)));
    EXPECT_EQ(v0.sm.GetHead()->count, 2);
}

TEST(MeshMaterials, FaceLevelSetsSelectedFacesAndOtherLevelsTheMesh) {
    cmaterial red("red"), blue("blue");
    cmesh mesh;
    MakeCube(mesh);
    mesh.SetFaceFlags(2, ELEMENT_SELECTED);
    mesh.SetSubLevel(2);
    mesh.SetMaterial(&red);
    EXPECT_EQ(std::tuple(mesh.GetFaceMaterial(2), mesh.GetFaceMaterial(3), mesh.GetMaterial()),
              std::tuple(&red, nullptr, nullptr));
    EXPECT_EQ(std::tuple(mesh.IsMaterialUsed(&red), mesh.IsMaterialUsed(&blue)), std::tuple(1, 0));
    EXPECT_EQ(mesh.GetFaceMaterial(40), nullptr);
    mesh.SetFaceMaterial(40, &blue);
    mesh.SetSubLevel(0);
    mesh.SetMaterial(&blue);
    EXPECT_EQ(std::tuple(mesh.GetMaterial(), mesh.GetFaceMaterial(2)), std::tuple(&blue, nullptr));
    mesh.SetFaceMaterial(5, &red);
    mesh.SetMeshMaterial(&red, 0);
    EXPECT_EQ(mesh.GetFaceMaterial(5), &red);
    EXPECT_EQ(mesh.HandleMessage(MSG_MTL_DELETED, &red, nullptr), 1);
    EXPECT_EQ(std::tuple(mesh.GetMaterial(), mesh.GetFaceMaterial(5)),
              std::tuple(nullptr, nullptr));
    EXPECT_EQ(mesh.HandleMessage(MSG_MTL_DELETED, &red, nullptr), 0);
}

TEST(MeshArrays, CloneCopiesTheArraysAndTheNode) {
    cmesh mesh, copy;
    MakeCube(mesh);
    mesh.SetFaceFlags(3, ELEMENT_SELECTED);
    mesh.SetName("box");
    mesh.Clone(0, copy);
    EXPECT_STREQ(copy.GetName(), "box");
    EXPECT_TRUE(Snapshot(copy) == Snapshot(mesh));
    EXPECT_EQ(copy.NumSelFaces(), 1);
    EXPECT_TRUE(MeshIsValid(copy));
}
