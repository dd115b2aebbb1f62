#include <gtest/gtest.h>

#include "cquat.h"
#include "mesh/meshfixtures.h"

static cpoint3 World(const cmesh& mesh, int v) {
    return mesh.GetVertPoint(v) * mesh.GetNodeTM(0, TM_ALL);
}

// Selected sub-objects move in world terms through a cube placed at (3, 0, 0), turned 90 degrees
// about z and scaled by 2; at object level the node moves instead.
TEST(MeshTransform, MovesSelectedElementsInWorldTerms) {
    cmesh cube;
    MakeCube(cube);
    cube.SetScale(0, cpoint3(2, 2, 2));
    cube.SetRotation(0, QuatFromAngleAxis(90.0f, cpoint3(0, 0, 1)));
    cube.SetPosition(0, cpoint3(3, 0, 0));
    const cpoint3 w1 = World(cube, 1), w2 = World(cube, 2), w4 = World(cube, 4),
                  w7 = World(cube, 7);
    cube.SetSubLevel(2);  // face 2 (4, 5, 7) moved, then scaled by 3 about vertex 4
    cube.SelectFaceSet(SetOf(12, {2}), 1);
    cube.Move(0, cpoint3(1, 2, 3), 0, 0, 1, 0.0f);
    cube.Scale(0, cpoint3(3, 3, 3), w4 + cpoint3(1, 2, 3), 0);
    EXPECT_TRUE(Near(World(cube, 7), w4 + cpoint3(1, 2, 3) + (w7 - w4) * 3.0f, 1e-4f));
    cube.SetSubLevel(3);  // edge 0 (0 -> 2) turned 180 degrees about z through the origin
    cube.SelectEdgeSet(SetOf(36, {0}), 1);
    cube.Rotate(0, QuatFromAngleAxis(180.0f, cpoint3(0, 0, 1)), cpoint3(), 0);
    EXPECT_TRUE(Near(World(cube, 2), cpoint3(-w2.x, -w2.y, w2.z), 1e-4f));
    cube.SetSubLevel(0);
    cube.Move(0, cpoint3(1, 0, 0), 0, 0, 1, 0.0f);
    EXPECT_TRUE(Near(World(cube, 1), w1 + cpoint3(1, 0, 0), 1e-4f));  // vertex 1 never selected
}
