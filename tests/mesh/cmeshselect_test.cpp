#include <gtest/gtest.h>

#include "cmesh.h"
#include "mesh/meshfixtures.h"

TEST(MeshSelect, KeepsCountersAndNeverSelectsHiddenElements) {
    cmesh cube;
    MakeCube(cube);
    ASSERT_EQ(cube.SelectFaceSet(SetOf(12, {0, 1, 4}), 1), 1);
    EXPECT_EQ(cube.NumSelFaces(), 3);
    // Faces 0 and 1 span the -z side, face 4 reaches (1, 0, 1): centre of the box
    // [0,1]x[0,1]x[0,1].
    EXPECT_TRUE(Near(cube.GetSelFacesCenter(), cpoint3(0.5f, 0.5f, 0.5f)));
    cube.SelectFaceSet(SetOf(12, {4}), 0);
    EXPECT_EQ(cube.NumSelFaces(), 2);
    // Deselecting shrinks the box back to the -z side.
    EXPECT_TRUE(Near(cube.GetSelFacesCenter(), cpoint3(0.5f, 0.5f, 0.0f)));
    cube.SetSubLevel(2);
    cube.HideSelected();
    EXPECT_EQ(cube.NumSelFaces(), 0);
    EXPECT_EQ(cube.NumHiddenFaces(), 2);
    EXPECT_EQ(cube.SelectAll(), 1);
    EXPECT_EQ(cube.NumSelFaces(), 10);
    EXPECT_EQ(cube.GetFaceFlags(0) & ELEMENT_SELECTED, 0);
    EXPECT_EQ(cube.InvertSelection(), 1);
    EXPECT_EQ(cube.NumSelFaces(), 0);
    cube.UnhideAll();
    EXPECT_EQ(cube.NumHiddenFaces(), 0);
    cube.InvertSelFaces();
    EXPECT_EQ(cube.NumSelFaces(), 12);
    EXPECT_EQ(cube.DeselectAll(), 1);
    EXPECT_EQ(cube.NumSelFaces(), 0);
    cube.SetSubLevel(1);
    cube.SelectAll();
    EXPECT_EQ(cube.NumSelVerts(), 8);
    EXPECT_TRUE(Near(cube.GetSelVertsCenter(), cpoint3(0.5f, 0.5f, 0.5f)));
    cube.HideVertSet(SetOf(8, {7}));
    EXPECT_EQ(cube.NumSelVerts(), 7);
    EXPECT_EQ(cube.NumHiddenVerts(), 1);
    EXPECT_EQ(cube.GetNumHiddenElements(1), 1);
    cube.UnhideAllVerts();
    EXPECT_EQ(cube.GetVertFlags(7), 0);
    cube.SetSubLevel(3);
    cube.SelectEdgeSet(SetOf(36, {0, 35}), 1);
    EXPECT_EQ(cube.GetNumSelElements(3), 2);
    cube.HideEdgeSet(SetOf(36, {0, 1}));
    EXPECT_EQ(cube.NumSelEdges(), 1);
    EXPECT_EQ(cube.NumHiddenEdges(), 2);
    cube.UnhideAllEdges();
    EXPECT_EQ(cube.NumHiddenEdges(), 0);
    EXPECT_TRUE(MeshIsValid(cube));
    cube.SetSubLevel(0);
    EXPECT_EQ(cube.SelectAll(), 0);
    cmesh empty;
    EXPECT_EQ(empty.SelectFaceSet(SetOf(1, {0}), 1), 0);
}
