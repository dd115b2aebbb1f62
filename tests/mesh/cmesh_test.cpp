#include <gtest/gtest.h>

#include "cmaterial.h"
#include "cmesh.h"
#include "mesh/meshfixtures.h"

TEST(MeshElements, StartWithTheirDefaults) {
    const cface face;
    EXPECT_EQ(face.type, 2u);
    EXPECT_EQ(face.flags, 0x0038);
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(face.v[k], -1);
        EXPECT_EQ(face.tv[k], -1);
    }
    EXPECT_EQ(face.smgroups, 0u);
    EXPECT_EQ(face.material, nullptr);

    const cvertex vertex;
    EXPECT_EQ(vertex.type, 1u);
    EXPECT_EQ(vertex.flags, 0);
    EXPECT_EQ(vertex.color, ccolor(1.0f, 1.0f, 1.0f, 1.0f));
    EXPECT_EQ(vertex.skinIndex, 0xFFFFFFFFu);

    // Only the default constructor makes an edge of type 3.
    EXPECT_EQ(cedge().type, 3u);
    const cedge ab(4, 7);
    EXPECT_EQ(ab.type, 0u);
    EXPECT_EQ(ab.flags, 0);
    cedge ba = Swap(ab);
    EXPECT_EQ(ba.v[0], 7);
    EXPECT_EQ(ba.v[1], 4);
    EXPECT_TRUE(CompareSwap(ab, ba));
    EXPECT_FALSE(CompareEdge(ab, ba));
    EXPECT_TRUE(CompareBoth(ab, ba));
    EXPECT_TRUE(ab != ba);
    ba.Swap();
    EXPECT_TRUE(ab == ba);
    EXPECT_FALSE(cedge(3, 3).CheckIndices());
    EXPECT_FALSE(cedge(-1, 3).CheckIndices());
    EXPECT_TRUE(cedge(0, 3).CheckIndices());

    EXPECT_FALSE(cface(0, 1, 1).CheckVIndices(3));
    EXPECT_FALSE(cface(0, 1, 3).CheckVIndices(3));
    EXPECT_TRUE(cface(2, 0, 1).CheckVIndices(3));
}

TEST(MeshArrays, AllocateRefusesAMeshWithoutVertices) {
    cmesh mesh;
    EXPECT_STREQ(mesh.GetName(), "Mesh1");
    EXPECT_EQ(mesh.GetTypeID(), TYPE_MESH);
    EXPECT_EQ(mesh.IsRenderable(), 1);
    EXPECT_EQ(mesh.HandlesUVMapping(), 1);
    ASSERT_EQ(mesh.Allocate(8, 0, 12), 1);
    EXPECT_EQ(mesh.NumVerts(), 8);
    EXPECT_EQ(mesh.NumNormals(), 8);
    EXPECT_EQ(mesh.NumTVerts(), 0);
    EXPECT_EQ(mesh.NumFaces(), 12);
    EXPECT_EQ(mesh.NumEdges(), 36);
    for (int e = 0; e < 36; ++e) EXPECT_EQ(mesh.GetEdgeFlags(e), 0);
    EXPECT_EQ(mesh.GetFace(11).flags, 0x0038);

    EXPECT_EQ(mesh.Allocate(0, 5, 5), 0);
    EXPECT_EQ(mesh.NumVerts(), 8);
    EXPECT_EQ(mesh.NumFaces(), 12);

    // Out-of-range access answers defaults and changes nothing.
    EXPECT_EQ(mesh.GetFace(12).v[0], -1);
    EXPECT_EQ(mesh.GetEdge(36).v[0], -1);
    EXPECT_EQ(mesh.GetEdge(36).type, 3u);
    EXPECT_EQ(mesh.SetVert(8, cpoint3(1, 1, 1)), 0);
    EXPECT_EQ(mesh.SetEdgeFlags(-1, 1), 0);
    EXPECT_EQ(mesh.GetSkinVertIndex(99), 0xFFFFFFFFu);

    cmesh* made = CreateNewMesh();
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->NumVerts(), 0);
    EXPECT_STREQ(made->GetName(), "Mesh1");
    made->Delete();

    Mesh_CreateSubMode(3);
    EXPECT_EQ(Mesh_GetCreateSubMode(), 3);

    mesh.SetNumFaces(2);
    EXPECT_EQ(mesh.NumEdges(), 6);
    mesh.SetNumVerts(0);
    EXPECT_EQ(mesh.NumVerts(), 0);
}

TEST(MeshArrays, GetElementRefusesIndexZero) {
    cmesh mesh;
    MakeCube(mesh);
    mesh.SetVertFlags(1, ELEMENT_SELECTED);
    celement element;
    EXPECT_EQ(mesh.GetElement(element, 0, 1), 0);
    EXPECT_EQ(mesh.GetElement(element, 0, 2), 0);
    EXPECT_EQ(mesh.GetElement(element, 0, 3), 0);
    ASSERT_EQ(mesh.GetElement(element, 1, 1), 1);
    EXPECT_EQ(element.type, 1u);
    EXPECT_EQ(element.flags, ELEMENT_SELECTED);
    ASSERT_EQ(mesh.GetElement(element, 11, 2), 1);
    EXPECT_EQ(element.type, 2u);
    EXPECT_EQ(mesh.GetElement(element, 12, 2), 0);
    ASSERT_EQ(mesh.GetElement(element, 35, 3), 1);
    EXPECT_EQ(element.type, 3u);
    EXPECT_EQ(mesh.GetElement(element, 1, 4), 0);
    EXPECT_EQ(mesh.GetNumElements(3), 36);
    EXPECT_EQ(mesh.GetNumElements(0), 0);
}

TEST(MeshCounters, FollowFlagChangesOfFacesAndEdges) {
    cmesh mesh;
    MakeCube(mesh);
    const unsigned short selected = ELEMENT_SELECTED, hidden = ELEMENT_HIDDEN;
    mesh.SetFaceFlags(0, selected);
    EXPECT_EQ(mesh.NumSelFaces(), 1);
    // Hiding a selected face deselects it.
    mesh.SetFaceFlags(0, hidden | selected);
    EXPECT_EQ(mesh.NumSelFaces(), 0);
    EXPECT_EQ(mesh.NumHiddenFaces(), 1);
    EXPECT_EQ(mesh.GetFaceFlags(0), hidden);
    // A face hidden before and after keeps the flags as given; an edge never does.
    mesh.SetFaceFlags(0, hidden | selected);
    EXPECT_EQ(mesh.GetFaceFlags(0), hidden | selected);
    EXPECT_EQ(mesh.NumHiddenFaces(), 1);
    mesh.SetEdgeFlags(4, hidden);
    mesh.SetEdgeFlags(4, hidden | selected);
    EXPECT_EQ(mesh.GetEdgeFlags(4), hidden);
    EXPECT_EQ(mesh.NumHiddenEdges(), 1);
    EXPECT_EQ(mesh.NumSelEdges(), 0);
    mesh.SetEdgeFlags(4, selected);
    EXPECT_EQ(mesh.NumHiddenEdges(), 0);
    EXPECT_EQ(mesh.NumSelEdges(), 1);
    mesh.SetEdgeFlags(4, 0);
    EXPECT_EQ(mesh.NumSelEdges(), 0);
    mesh.SetFaceFlags(0, hidden);
    mesh.SetFaceFlags(1, hidden);
    EXPECT_EQ(mesh.NumHiddenFaces(), 2);
    mesh.UnhideAllFaces();
    EXPECT_EQ(mesh.NumHiddenFaces(), 0);
    mesh.SetFaceFlags(2, hidden);

    // SetFace refuses invalid indices and keeps counters for a whole new face.
    cface face(0, 1, 2);
    EXPECT_EQ(mesh.SetFace(5, cface(0, 0, 2)), 0);
    face.flags = selected;
    ASSERT_EQ(mesh.SetFace(5, face), 1);
    EXPECT_EQ(mesh.NumSelFaces(), 1);
    EXPECT_TRUE(Near(mesh.GetSelFacesCenter(), cpoint3()));  // centres wait for Update
    mesh.Update();
    EXPECT_TRUE(Near(mesh.GetSelFacesCenter(), cpoint3(0.5f, 0.5f, 0.0f)));
    // A face that stays selected moves its vertex selection to its new corners.
    mesh.SetVertFlags(0, selected);
    mesh.SetVertFlags(1, selected);
    mesh.SetVertFlags(2, selected);
    ASSERT_EQ(mesh.SetFace(5, cface(4, 5, 6)), 1);  // default flags: deselects the face
    EXPECT_EQ(mesh.NumSelFaces(), 0);
    EXPECT_EQ(mesh.NumSelVerts(), 3);
    face = cface(0, 1, 2);
    face.flags = selected;
    mesh.SetFace(5, face);
    face = cface(5, 6, 7);
    face.flags = selected;
    mesh.SetFace(5, face);
    EXPECT_EQ(mesh.GetVertFlags(0), 0);
    EXPECT_EQ(mesh.GetVertFlags(7), selected);
    EXPECT_EQ(mesh.NumSelVerts(), 3);  // 5, 6, 7
    EXPECT_TRUE(MeshIsValid(mesh));
}

TEST(MeshBox, TreatsABoxOfEqualCoordinatesAsEmpty) {
    cmesh mesh;
    mesh.Allocate(3, 0, 0);
    mesh.SetVert(0, cpoint3(2, 2, 2));
    mesh.SetVert(1, cpoint3(-1, 4, 0.5f));
    mesh.SetVert(2, cpoint3(0, 0, 0));
    mesh.CalcBBox();
    cpoint3 min, max;
    mesh.GetMeshBBox(min, max);
    // (2, 2, 2) alone is an "empty" box, so (-1, 4, 0.5) replaces it instead of growing it.
    EXPECT_TRUE(Near(min, cpoint3(-1, 0, 0)));
    EXPECT_TRUE(Near(max, cpoint3(0, 4, 0.5f)));

    cmesh ordered;
    ordered.Allocate(2, 0, 0);
    ordered.SetVert(0, cpoint3(3, 3, 3));
    ordered.SetVert(1, cpoint3(5, 6, 7));
    ordered.CalcBBox();
    ordered.GetMeshBBox(min, max);
    EXPECT_TRUE(Near(min, cpoint3(5, 6, 7)));
    EXPECT_TRUE(Near(max, cpoint3(5, 6, 7)));
}

TEST(MeshSmoothing, AveragesOnlyFacesSharingAGroup) {
    // Two triangles of a folded strip sharing edge 1-2.
    cmesh mesh;
    BuildMesh(mesh, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 1}}, {0, 1, 2, 2, 1, 3});
    const cpoint3 n0 = mesh.GetFaceNormal(0), n1 = mesh.GetFaceNormal(1);
    // (P0 - P1) x (P2 - P1) for face 0: (-1,0,0) x (-1,1,0) = (0,0,-1).
    EXPECT_TRUE(Near(n0, cpoint3(0, 0, -1)));
    // Face 1: (P2 - P1) = (-1,1,0), (P3 - P1) = (0,1,1): (-1,1,0) x (0,1,1) = (1,1,-1).
    const float r = 1.0f / std::sqrt(3.0f);
    EXPECT_TRUE(Near(n1, cpoint3(r, r, -r)));

    cpoint3 n;
    mesh.SetFaceSmGroups(-1, 1);
    mesh.CalcSmNormals();
    ASSERT_EQ(mesh.GetSmNormal(n, 0, 1), 1);
    // Unnormalised sums: (0,0,-1) + (1,1,-1), averaged and normalised.
    const cpoint3 shared = Normalize(cpoint3(1, 1, -2));
    EXPECT_TRUE(Near(n, shared));
    ASSERT_EQ(mesh.GetSmNormal(n, 1, 0), 1);
    EXPECT_TRUE(Near(n, shared));
    ASSERT_EQ(mesh.GetSmNormal(n, 0, 0), 1);
    EXPECT_TRUE(Near(n, n0));

    mesh.SetFaceSmGroups(1, 2);
    mesh.CalcSmNormals();
    ASSERT_EQ(mesh.GetSmNormal(n, 0, 1), 1);
    EXPECT_TRUE(Near(n, n0));
    ASSERT_EQ(mesh.GetSmNormal(n, 1, 0), 1);
    EXPECT_TRUE(Near(n, n1));

    mesh.SetFaceSmGroups(-1, 0);
    mesh.CalcSmNormals();
    EXPECT_EQ(mesh.GetSmNormal(n, 0, 1), 0);
    EXPECT_EQ(mesh.GetSmNormal(n, 1, 0), 0);
    EXPECT_EQ(mesh.GetSmNormal(n, 0, 3), 0);
    EXPECT_EQ(mesh.GetSmNormal(n, 2, 0), 0);
}

TEST(MeshSmoothing, ABridgingFaceJoinsTheNewerGroupOnly) {
    // Three faces around vertex 0, processed A (mask 1), B (mask 2), C (mask 3).
    cmesh mesh;
    BuildMesh(mesh, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {-1, 0, 0}, {0, 0, 1}},
              {0, 1, 2, 0, 2, 3, 0, 4, 1});
    mesh.SetFaceSmGroups(0, 1);
    mesh.SetFaceSmGroups(1, 2);
    mesh.SetFaceSmGroups(2, 3);
    mesh.CalcSmNormals();
    // A: (0-1) x (2-1) = (-1,0,0) x (-1,1,0) = (0,0,-1) (length 1).
    // B: (0-2) x (3-2) = (0,-1,0) x (-1,-1,0) = (0,0,-1).
    // C: (0-4) x (1-4) = (0,0,-1) x (1,0,-1) = (0,-1,0).
    cpoint3 n;
    ASSERT_EQ(mesh.GetSmNormal(n, 2, 0), 1);
    EXPECT_TRUE(Near(n, Normalize(cpoint3(0, -1, -1))));  // B + C
    // A's corner also finds the B + C node first: its mask 3 shares A's bit.
    ASSERT_EQ(mesh.GetSmNormal(n, 0, 0), 1);
    EXPECT_TRUE(Near(n, Normalize(cpoint3(0, -1, -1))));
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
    EXPECT_EQ(mesh.GetFaceMaterial(2), &red);
    EXPECT_EQ(mesh.GetFaceMaterial(3), nullptr);
    EXPECT_EQ(mesh.GetMaterial(), nullptr);
    EXPECT_EQ(mesh.IsMaterialUsed(&red), 1);
    EXPECT_EQ(mesh.IsMaterialUsed(&blue), 0);
    EXPECT_EQ(mesh.GetFaceMaterial(40), nullptr);
    mesh.SetFaceMaterial(40, &blue);

    mesh.SetSubLevel(0);
    mesh.SetMaterial(&blue);
    EXPECT_EQ(mesh.GetMaterial(), &blue);
    EXPECT_EQ(mesh.GetFaceMaterial(2), nullptr);
    mesh.SetFaceMaterial(5, &red);
    mesh.SetMeshMaterial(&red, 0);
    EXPECT_EQ(mesh.GetFaceMaterial(5), &red);

    EXPECT_EQ(mesh.HandleMessage(MSG_MTL_DELETED, &red, nullptr), 1);
    EXPECT_EQ(mesh.GetMaterial(), nullptr);
    EXPECT_EQ(mesh.GetFaceMaterial(5), nullptr);
    EXPECT_EQ(mesh.HandleMessage(MSG_MTL_DELETED, &red, nullptr), 0);
}

TEST(MeshArrays, CloneCopiesTheArraysAndTheNode) {
    cmesh mesh;
    MakeCube(mesh);
    mesh.SetFaceFlags(3, ELEMENT_SELECTED);
    mesh.SetName("box");
    cmesh copy;
    mesh.Clone(0, copy);
    EXPECT_STREQ(copy.GetName(), "box");
    ASSERT_EQ(copy.NumFaces(), 12);
    EXPECT_EQ(copy.NumSelFaces(), 1);
    EXPECT_EQ(copy.GetFace(7).v[2], 3);
    EXPECT_TRUE(Near(copy.GetVertPoint(7), cpoint3(1, 1, 1)));
    EXPECT_TRUE(MeshIsValid(copy));
}
