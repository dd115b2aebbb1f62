#include <gtest/gtest.h>

#include "mesh/meshfixtures.h"

// Deselecting shrinks the selection box back to the -z side; the level-taking forms follow the
// sub-object level (none at level 0) and never select hidden elements.
TEST(MeshSelect, KeepsCountersAndNeverSelectsHiddenElements) {
    cmesh cube;
    MakeCube(cube);
    cube.SelectFaceSet(SetOf(12, {0, 1, 4}), 1);
    cube.SelectFaceSet(SetOf(12, {4}), 0);
    EXPECT_TRUE(Near(cube.GetSelFacesCenter(), cpoint3(0.5f, 0.5f, 0.0f)));
    cube.SetSubLevel(2);
    cube.HideSelected();
    const std::array<int, 4> levelForms{cube.SelectAll(), cube.NumSelFaces(),
                                        cube.GetFaceFlags(0) & ELEMENT_SELECTED,
                                        cube.InvertSelection()};
    EXPECT_EQ(levelForms, (std::array<int, 4>{1, 10, 0, 1}));
    cube.SetSubLevel(3);
    cube.SelectEdgeSet(SetOf(36, {0, 35}), 1);
    cube.HideEdgeSet(SetOf(36, {0, 1}));
    EXPECT_EQ((std::array<int, 3>{cube.GetNumSelElements(3), cube.GetNumHiddenElements(3),
                                  cube.NumSelFaces()}),
              (std::array<int, 3>{1, 2, 0}));
    EXPECT_TRUE(MeshIsValid(cube));
    cube.SetSubLevel(0);
    EXPECT_EQ(cube.SelectAll(), 0);
}
