#include <gtest/gtest.h>

#include "cmesh.h"
#include "cquat.h"
#include "mesh/meshfixtures.h"

namespace {

cpoint3 World(const cmesh& mesh, int v) {
    return mesh.GetVertPoint(v) * mesh.GetNodeTM(0, TM_ALL);
}

// A cube placed at (3, 0, 0), turned 90 degrees about z and scaled by 2.
void PlacedCube(cmesh& cube) {
    MakeCube(cube);
    cube.SetScale(0, cpoint3(2, 2, 2));
    cube.SetRotation(0, QuatFromAngleAxis(90.0f, cpoint3(0, 0, 1)));
    cube.SetPosition(0, cpoint3(3, 0, 0));
}

}  // namespace

TEST(MeshTransform, MovesRotatesAndScalesSelectedElementsInWorldTerms) {
    cmesh cube;
    PlacedCube(cube);
    const cpoint3 before7 = World(cube, 7), before0 = World(cube, 0);
    cube.SetSubLevel(1);
    cube.SelectVertSet(SetOf(8, {7}), 1);
    cube.Move(0, cpoint3(1, 2, 3), 0, 0, 1, 0.0f);
    EXPECT_TRUE(Near(World(cube, 7), before7 + cpoint3(1, 2, 3), 1e-4f));
    EXPECT_TRUE(Near(World(cube, 0), before0, 1e-4f));
    EXPECT_TRUE(Near(cube.GetPosition(0), cpoint3(3, 0, 0)));
    // Face 2 (4, 5, 7) scaled by 3 about vertex 4's world position.
    cube.DeselectAllVerts();
    cube.SetSubLevel(2);
    cube.SelectFaceSet(SetOf(12, {2}), 1);
    const cpoint3 w4 = World(cube, 4), w5 = World(cube, 5);
    cube.Scale(0, cpoint3(3, 3, 3), w4, 0);
    EXPECT_TRUE(Near(World(cube, 4), w4, 1e-4f));
    EXPECT_TRUE(Near(World(cube, 5), w4 + (w5 - w4) * 3.0f, 1e-4f));
    EXPECT_TRUE(Near(World(cube, 0), before0, 1e-4f));
    // Edge 0 (0 -> 2) turned 180 degrees about z through the world origin.
    cube.SetSubLevel(3);
    cube.SelectEdgeSet(SetOf(36, {0}), 1);
    const cpoint3 w2 = World(cube, 2);
    cube.Rotate(0, QuatFromAngleAxis(180.0f, cpoint3(0, 0, 1)), cpoint3(), 0);
    EXPECT_TRUE(Near(World(cube, 0), cpoint3(-before0.x, -before0.y, before0.z), 1e-4f));
    EXPECT_TRUE(Near(World(cube, 2), cpoint3(-w2.x, -w2.y, w2.z), 1e-4f));
    // At object level the node moves instead.
    cube.SetSubLevel(0);
    cube.Move(0, cpoint3(1, 0, 0), 0, 0, 1, 0.0f);
    EXPECT_TRUE(Near(cube.GetPosition(0), cpoint3(4, 0, 0)));
}

TEST(MeshTransform, MirrorsAndKeepsFacesOutward) {
    cmesh cube;
    MakeCube(cube);
    const cpoint3 n0 = cube.GetFaceNormal(4);  // -y side: (0, 1, 0)
    cube.Mirror(0, 1, nullptr);
    EXPECT_TRUE(Near(cube.GetVertPoint(2), cpoint3(0, -1, 0)));
    EXPECT_TRUE(Near(cube.GetFaceNormal(4), cpoint3(n0.x, -n0.y, n0.z)));
    cmesh grid;
    MakeGrid(grid, 1);
    grid.SetSubLevel(1);
    grid.SelectVertSet(SetOf(4, {1, 3}), 1);  // the x = 1 column, centre x = 1
    grid.Mirror(0, 0, nullptr);
    EXPECT_TRUE(Near(grid.GetVertPoint(1), cpoint3(1, 0, 0)));
    EXPECT_TRUE(Near(grid.GetVertPoint(0), cpoint3(0, 0, 0)));
    EXPECT_TRUE(MeshIsValid(grid));
}

TEST(MeshTransform, PivotOperationsKeepTheGeometryInTheWorld) {
    cmesh cube;
    PlacedCube(cube);
    std::vector<cpoint3> world;
    for (int v = 0; v < 8; ++v) world.push_back(World(cube, v));
    cube.CenterPivotToGeom(0);
    for (int v = 0; v < 8; ++v) EXPECT_TRUE(Near(World(cube, v), world[v], 1e-4f));
    // The pivot lands on the box centre, midway between the opposite corners 0 and 7.
    EXPECT_TRUE(Near(cube.GetPosition(0), (world[0] + world[7]) * 0.5f, 1e-4f));
    cpoint3 min, max;
    cube.GetMeshBBox(min, max);
    EXPECT_TRUE(Near(min, cpoint3(-0.5f, -0.5f, -0.5f), 1e-5f));
    cube.ResetTransform(0, TM_ALL);
    for (int v = 0; v < 8; ++v) EXPECT_TRUE(Near(World(cube, v), world[v], 1e-4f));
    EXPECT_TRUE(Near(cube.GetScale(0), cpoint3(1, 1, 1), 1e-5f));
    cmesh plain;
    MakeCube(plain);
    plain.CenterGeomToPivot(0);
    plain.GetMeshBBox(min, max);
    EXPECT_TRUE(Near(min, cpoint3(-0.5f, -0.5f, -0.5f)));
    EXPECT_TRUE(Near(max, cpoint3(0.5f, 0.5f, 0.5f)));
}
