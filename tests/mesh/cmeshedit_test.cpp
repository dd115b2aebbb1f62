#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <set>
#include <string>
#include <utility>

#include "cmesh.h"
#include "mesh/meshfixtures.h"
#include "scene/aimednodes.h"
#include "support/bytestring.h"
#include "support/testsupport.h"

namespace {

// The area of face f, or of all faces when f is -1.
float Area(const cmesh& mesh, int f = -1) {
    if (f < 0) {
        float sum = 0.0f;
        for (int g = 0; g < mesh.NumFaces(); ++g) sum += Area(mesh, g);
        return sum;
    }
    const Tri c = Corners(mesh, f);
    const cpoint3 a = mesh.GetVertPoint(c[0]);
    return 0.5f * Length(CrossProd(mesh.GetVertPoint(c[1]) - a, mesh.GetVertPoint(c[2]) - a));
}

// No directed edge used twice (a consistent winding) and, when `closed`, every edge used both
// ways.
bool WoundConsistently(const cmesh& mesh, bool closed = false) {
    std::set<std::pair<int, int>> edges;
    for (int f = 0; f < mesh.NumFaces(); ++f) {
        const Tri c = Corners(mesh, f);
        for (int k = 0; k < 3; ++k)
            if (!edges.insert({c[k], c[(k + 1) % 3]}).second) return false;
    }
    for (const auto& [a, b] : edges)
        if (closed && !edges.count({b, a})) return false;
    return true;
}

// The flags of face f's three edges.
Tri EdgeFlags(const cmesh& mesh, int f) {
    return {mesh.GetEdgeFlags(3 * f), mesh.GetEdgeFlags(3 * f + 1), mesh.GetEdgeFlags(3 * f + 2)};
}

// Whether every face normal is (0, 0, -1), the normal of the grids and of the z = 0 triangles.
bool FacingDown(const cmesh& mesh) {
    for (int f = 0; f < mesh.NumFaces(); ++f)
        if (!Near(mesh.GetFaceNormal(f), cpoint3(0, 0, -1))) return false;
    return true;
}

bool HasCorners(const cface& f, int a, int b, int c) {
    return f.FindVert(a) >= 0 && f.FindVert(b) >= 0 && f.FindVert(c) >= 0;
}

}  // namespace

TEST(MeshEdit, AddsAndReplacesWithRebasedIndices) {
    cmesh mesh, cube;
    MakeGrid(mesh, 1);
    MakeCube(cube);
    cube.SetFaceFlags(1, ELEMENT_SELECTED);
    ASSERT_EQ(mesh.AddMesh(0, cube, 1), 1);
    EXPECT_EQ(VertsAndFaces(mesh), std::pair(12, 14));
    EXPECT_EQ(Corners(mesh, 2), (Tri{4, 6, 7}));  // the cube's face (0, 2, 3)
    EXPECT_EQ(mesh.NumSelFaces(), 0);
    EXPECT_TRUE(MeshIsValid(mesh));
    ASSERT_EQ(mesh.AddMesh(1, cube, 0), 1);
    EXPECT_EQ(mesh.NumSelFaces(), 1);
    EXPECT_EQ(mesh.GetFace(14).v[0], 12);
    EXPECT_EQ(mesh.AddFace(cface(0, 1, 40)), -1);
    EXPECT_EQ(mesh.AddFace(cface(0, 1, 2)), 26);
    EXPECT_EQ(mesh.NumEdges(), 81);
    EXPECT_EQ(mesh.AddVert(cpoint3(9, 9, 9)), 20);
    EXPECT_EQ(mesh.AddTVert(cpoint3(0.5f, 0.5f, 0)), 0);
    ASSERT_EQ(mesh.SetMesh(cube), 1);
    EXPECT_EQ(VertsAndFaces(mesh), std::pair(8, 12));
    EXPECT_EQ(mesh.NumTVerts(), 0);
    EXPECT_EQ(mesh.NumSelFaces(), 1);
    const cpoint3 points[3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    const int bad[3] = {0, 1, 3}, good[3] = {0, 1, 2};
    EXPECT_EQ(mesh.SetMesh(points, nullptr, nullptr, bad, 3, 0, 1), 0);
    EXPECT_EQ(mesh.NumFaces(), 12);
    ASSERT_EQ(mesh.SetMesh(points, nullptr, points, good, 3, 3, 1), 1);
    EXPECT_EQ(mesh.GetFace(0).tv[2], 2);
    EXPECT_EQ(mesh.GetTVert(1), cpoint3(1, 0, 0));
}

TEST(MeshEdit, DeletesElementsAndTheVerticesLeftUnused) {
    cmesh cube, mesh, grid;
    MakeCube(cube);
    mesh.SetMesh(cube);
    ASSERT_EQ(mesh.DeleteVert(0), 1);  // used by faces 0, 1, 4, 5, 8, 9
    ASSERT_EQ(VertsAndFaces(mesh), std::pair(7, 6));
    EXPECT_EQ(Corners(mesh, 0), (Tri{3, 4, 6}));  // old (4, 5, 7), re-based
    EXPECT_EQ(mesh.DeleteVert(7), 0);
    mesh.SetMesh(cube);
    // Edge 0 is 0 -> 2, held by face 0 and (reversed) by face 9.
    ASSERT_EQ(mesh.DeleteEdge(0), 1);
    EXPECT_EQ(mesh.NumFaces(), 10);
    EXPECT_EQ(mesh.FindAdjacentFaceFromEdge(0, 2, -1, 0), -1);
    mesh.SetMesh(cube);
    mesh.DeleteSelFaces();  // nothing selected: nothing changes
    EXPECT_EQ(mesh.NumFaces(), 12);
    MakeGrid(grid, 1);  // faces (0, 1, 3) and (0, 3, 2)
    grid.SetFaceFlags(0, ELEMENT_SELECTED);
    grid.DeleteSelFaces();
    ASSERT_EQ(VertsAndFaces(grid), std::pair(3, 1));
    EXPECT_EQ(Corners(grid, 0), (Tri{0, 2, 1}));
    EXPECT_EQ(grid.NumSelFaces(), 0);
    EXPECT_TRUE(MeshIsValid(grid));
    MakeGrid(grid, 1);
    grid.SetVertFlags(1, ELEMENT_SELECTED);
    grid.SetEdgeFlags(5, ELEMENT_SELECTED);  // face 1's 2 -> 0
    grid.DeleteSelVerts();
    EXPECT_EQ(grid.NumFaces(), 1);
    EXPECT_EQ(grid.NumSelEdges(), 1);
    grid.DeleteSelEdges();
    EXPECT_EQ(VertsAndFaces(grid), std::pair(0, 0));
    EXPECT_TRUE(MeshIsValid(grid));
}

TEST(MeshEdit, ReportsASelectionCounterThatDisagreesWithTheFlags) {
    AssertRecorder recorder;
    cmesh cube, mesh;
    MakeCube(cube);
    cube.SetFaceFlags(3, ELEMENT_SELECTED);
    // The record stores the counters as they are; make it claim two selected faces.
    std::string bytes = SavedRecord(cube);
    const std::size_t header = bytes.size() - (64 + 8 * 46 + 12 * 34 + 72);
    bytes.replace(header + 20, 4, ByteString().Ints({2}).bytes);
    RecordStream record(bytes);
    ASSERT_EQ(mesh.Load(record.in, 16), 1);
    EXPECT_EQ(mesh.NumSelFaces(), 2);
    mesh.DeleteSelFaces();
    ASSERT_EQ(recorder.Count(), 1);
    EXPECT_NE(recorder.Texts()[0].find("isel==nselfaces"), std::string::npos);
    EXPECT_EQ(mesh.NumFaces(), 11);
    EXPECT_TRUE(MeshIsValid(mesh));
}

TEST(MeshEdit, ClearsUnusedElementsAndInvalidFaces) {
    cmesh mesh, shifted;
    mesh.Allocate(4, 2, 2);
    mesh.SetVert(1, cpoint3(1, 0, 0));
    mesh.SetVert(2, cpoint3(0, 1, 0));
    cface face(0, 1, 2);
    face.tv[0] = face.tv[1] = face.tv[2] = 1;
    mesh.SetFace(0, face);
    EXPECT_EQ(mesh.ClearInvalidFaces(), 1);  // face 1 still holds -1 indices
    EXPECT_EQ(mesh.NumFaces(), 1);
    EXPECT_EQ(mesh.ClearUnusedVerts(), 1);
    EXPECT_EQ(mesh.NumVerts(), 3);
    EXPECT_EQ(mesh.ClearUnusedTVerts(), 1);
    EXPECT_EQ(mesh.GetFace(0).tv[1], 0);
    EXPECT_EQ(mesh.ClearAllUnused(), 0);
    EXPECT_TRUE(MeshIsValid(mesh));
    ASSERT_EQ(mesh.DeleteTVert(0), 1);
    EXPECT_EQ(mesh.GetFace(0).tv[0], -1);
    shifted.Allocate(5, 0, 1);
    shifted.SetFace(0, cface(0, 2, 4));
    shifted.CorrectFacesIndices(1);
    EXPECT_EQ(Corners(shifted, 0), (Tri{0, 1, 3}));
}

TEST(MeshEdit, WeldsVerticesWithinTheTolerance) {
    cmesh mesh, grid;
    BuildMesh(mesh, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1.0005f, 0, 0}, {1, 1, 0}, {0, 1.0005f, 0}},
              {0, 1, 2, 3, 4, 5});
    EXPECT_EQ(mesh.WeldMesh(0.0001f), 0);
    EXPECT_EQ(mesh.NumVerts(), 6);
    EXPECT_EQ(mesh.WeldMesh(0.001f), 2);
    ASSERT_EQ(mesh.NumVerts(), 4);
    EXPECT_EQ(Corners(mesh, 1), (Tri{1, 3, 2}));  // welded onto the earlier vertex
    EXPECT_TRUE(Near(mesh.GetVertPoint(1), cpoint3(1, 0, 0)));
    // Collapsing an edge's two ends removes the faces that become degenerate.
    MakeGrid(grid, 1);
    cbitarray ends = SetOf(4, {0, 3}), side = SetOf(4, {0, 1});
    EXPECT_EQ(grid.WeldVertSet(ends, -1), 1);
    EXPECT_EQ(grid.NumFaces(), 0);
    MakeGrid(grid, 1);
    EXPECT_EQ(grid.WeldVertSet(side, 1), 1);
    ASSERT_EQ(VertsAndFaces(grid), std::pair(3, 1));
    EXPECT_TRUE(Near(grid.GetVertPoint(0), cpoint3(1, 0, 0)));
    MakeGrid(grid, 2);
    grid.SetVertFlags(0, ELEMENT_SELECTED);
    grid.SetVertFlags(1, ELEMENT_SELECTED);
    EXPECT_EQ(grid.WeldSelVerts(0.5f), 0);
    EXPECT_EQ(grid.WeldSelVerts(1.0f), 1);
    EXPECT_EQ(grid.NumVerts(), 8);
    EXPECT_TRUE(MeshIsValid(grid));
}

TEST(MeshEdit, BreaksSharedVertices) {
    cmesh grid;
    MakeGrid(grid, 2);  // vertex 4 is the centre, used by six faces
    ASSERT_EQ(grid.BreakVert(4), 1);
    EXPECT_EQ(grid.NumVerts(), 14);
    int users = 0;
    for (int f = 0; f < grid.NumFaces(); ++f)
        for (int v : Corners(grid, f))
            if (grid.GetVertPoint(v) == cpoint3(1, 1, 0)) {
                ++users;
                EXPECT_TRUE(v == 4 || v >= 9) << v;
            }
    EXPECT_EQ(users, 6);
    EXPECT_NEAR(Area(grid), 4.0f, 1e-5f);
    MakeGrid(grid, 2);
    ASSERT_EQ(grid.BreakFace(0), 1);  // face (0, 1, 4): all three corners are shared
    EXPECT_EQ(grid.NumVerts(), 12);
    const Tri loose = Corners(grid, 0);
    EXPECT_GE(std::min({loose[0], loose[1], loose[2]}), 9);
    EXPECT_TRUE(Near(grid.GetVertPoint(loose[2]), cpoint3(1, 1, 0)));
    MakeGrid(grid, 2);
    cbitarray pair = SetOf(8, {0, 1});  // the square (0, 1, 4, 3) comes loose as one piece
    ASSERT_EQ(grid.BreakFaceSet(pair), 1);
    EXPECT_EQ(grid.NumVerts(), 12);  // 1, 3 and 4 are also used outside; 0 is not
    EXPECT_EQ(grid.GetFace(0).v[0], 0);
    EXPECT_GE(grid.GetFace(0).v[2], 9);
    EXPECT_EQ(grid.GetFace(0).v[2], grid.GetFace(1).v[1]);
    MakeGrid(grid, 1);
    ASSERT_EQ(grid.BreakEdge(2), 1);  // face 0's 3 -> 0, shared with face 1
    EXPECT_EQ(grid.NumVerts(), 6);
    EXPECT_EQ(grid.FindAdjacentFaceFromEdge(grid.GetFace(0).v[2], grid.GetFace(0).v[0], -1, 0), -1);
    EXPECT_TRUE(MeshIsValid(grid));
}

TEST(MeshEdit, DividesEdgesAndFacesKeepingAreaAndWinding) {
    cmesh tri, grid;
    BuildMesh(tri, {{0, 0, 0}, {2, 0, 0}, {0, 2, 0}}, {0, 1, 2});
    EXPECT_EQ(tri.DivideEdge(0, 0.0f, 0), -1);
    ASSERT_EQ(tri.DivideEdge(0, 0.25f, 0), 3);
    EXPECT_TRUE(Near(tri.GetVertPoint(3), cpoint3(0.5f, 0, 0)));
    ASSERT_EQ(tri.NumFaces(), 2);
    EXPECT_TRUE(HasCorners(tri.GetFace(0), 0, 3, 2));
    EXPECT_TRUE(HasCorners(tri.GetFace(1), 3, 1, 2));
    EXPECT_NEAR(Area(tri), 2.0f, 1e-6f);
    EXPECT_TRUE(FacingDown(tri));
    EXPECT_TRUE(WoundConsistently(tri));
    MakeGrid(grid, 1);
    // Edge 2 of face 0 is the diagonal 3 -> 0, which face 1 holds as 0 -> 3.
    ASSERT_EQ(grid.DivideEdge(2, 0.5f, 1), 4);
    EXPECT_EQ(grid.NumFaces(), 4);
    EXPECT_TRUE(Near(grid.GetVertPoint(4), cpoint3(0.5f, 0.5f, 0)));
    EXPECT_TRUE(FacingDown(grid));
    EXPECT_NEAR(Area(grid), 1.0f, 1e-6f);
    EXPECT_TRUE(WoundConsistently(grid));
    BuildMesh(tri, {{0, 0, 0}, {3, 0, 0}, {0, 3, 0}}, {0, 1, 2});
    ASSERT_EQ(tri.DivideFace(0, cpoint3(1, 1, 0), cpoint3(), ccolor(1.0f, 0.0f, 0.0f)), 3);
    EXPECT_EQ(tri.NumFaces(), 3);
    EXPECT_EQ(tri.GetVertColor(3), ccolor(1.0f, 0.0f, 0.0f));
    EXPECT_NEAR(Area(tri), 4.5f, 1e-5f);
    for (int f = 0; f < 3; ++f) EXPECT_NEAR(Area(tri, f), 1.5f, 5e-6f);  // even thirds
    EXPECT_TRUE(FacingDown(tri));
    EXPECT_TRUE(WoundConsistently(tri));
    EXPECT_TRUE(MeshIsValid(tri));
}

TEST(MeshEdit, RotatesTheDiagonalOfTwoTriangles) {
    cmesh grid;
    MakeGrid(grid, 1);
    EXPECT_EQ(grid.RotateEdge(0), 0);  // 0 -> 1 is a border edge
    grid.SetEdgeFlags(2, 0x10);
    ASSERT_EQ(grid.RotateEdge(2), 1);
    const cface a = grid.GetFace(0);
    EXPECT_TRUE(HasCorners(a, 2, 1, 3));
    EXPECT_TRUE(HasCorners(grid.GetFace(1), 0, 1, 2));
    EXPECT_TRUE(FacingDown(grid));
    EXPECT_TRUE(WoundConsistently(grid));
    // The new diagonal 2 -> 1 keeps the old diagonal's flags in face 0.
    const int k = a.FindVert(2);
    EXPECT_EQ(a.v[(k + 1) % 3], 1);
    EXPECT_EQ(grid.GetEdgeFlags(k), 0x10);
    EXPECT_NEAR(Area(grid), 1.0f, 1e-6f);
}

TEST(MeshEdit, ExtrudesFacesAndEdgesWithConsistentSides) {
    cmesh tri, cube, grid;
    BuildMesh(tri, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {0, 1, 2});
    ASSERT_EQ(tri.ExtrudeFace(0, 2.0f, cpoint3(), 7), 1);
    EXPECT_EQ(VertsAndFaces(tri), std::pair(6, 7));
    for (int v : Corners(tri, 0)) EXPECT_NEAR(tri.GetVertPoint(v).z, -2.0f, 1e-6f);
    EXPECT_TRUE(WoundConsistently(tri));
    // Sides are upright rectangles of area 2 * edge length.
    EXPECT_NEAR(Area(tri), 0.5f + 2.0f * (2.0f + std::sqrt(2.0f)), 1e-5f);
    EXPECT_TRUE(MeshIsValid(tri));
    BuildMesh(tri, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {0, 1, 2});
    ASSERT_EQ(tri.ExtrudeFace(0, 1.0f, cpoint3(0, 0, 3), 1), 1);
    EXPECT_EQ(tri.NumFaces(), 3);
    EXPECT_NEAR(tri.GetVertPoint(tri.GetFace(0).v[1]).z, 1.0f, 1e-6f);
    MakeCube(cube);
    cube.SetFaceFlags(2, ELEMENT_SELECTED);  // the +z side, normals (0, 0, -1)
    cube.SetFaceFlags(3, ELEMENT_SELECTED);
    ASSERT_EQ(cube.ExtrudeSelFaces(0.5f), 1);
    EXPECT_EQ(VertsAndFaces(cube), std::pair(12, 20));
    for (int v : Corners(cube, 2)) EXPECT_NEAR(cube.GetVertPoint(v).z, 0.5f, 1e-6f);
    EXPECT_TRUE(WoundConsistently(cube, true));
    EXPECT_EQ(cube.NumSelFaces(), 2);
    EXPECT_EQ(cube.NumSelVerts(), 0);
    EXPECT_TRUE(MeshIsValid(cube));
    MakeGrid(grid, 1);
    ASSERT_EQ(grid.ExtrudeEdge(0, 0.5f, cpoint3()), 1);  // 0 -> 1 along y = 0
    EXPECT_EQ(grid.NumFaces(), 4);
    EXPECT_TRUE(Near(grid.GetVertPoint(4), cpoint3(0, -0.5f, 0)));
    EXPECT_TRUE(Near(grid.GetVertPoint(5), cpoint3(1, -0.5f, 0)));
    EXPECT_TRUE(WoundConsistently(grid));
    EXPECT_TRUE(FacingDown(grid));
    EXPECT_NEAR(Area(grid), 1.5f, 1e-6f);
    grid.SetEdgeFlags(3, ELEMENT_SELECTED);  // face 1's 0 -> 3 is the diagonal
    grid.SetEdgeFlags(5, ELEMENT_SELECTED);  // face 1's 2 -> 0 is a border
    ASSERT_EQ(grid.ExtrudeSelEdges(1.0f), 1);
    EXPECT_EQ(grid.NumFaces(), 8);
    EXPECT_TRUE(MeshIsValid(grid));
}

TEST(MeshEdit, FlipsAllFacesOrTheSelectedOnes) {
    cmesh cube;
    MakeCube(cube);
    cube.SetNumTVerts(3);
    cface face = cube.GetFace(0);
    face.tv[0] = 0, face.tv[1] = 1, face.tv[2] = 2;
    cube.SetFace(0, face);
    cube.SetEdgeFlags(0, 0x10);
    cube.SetEdgeFlags(2, 0x20);
    cube.FlipAllFaces();
    const cface flipped = cube.GetFace(0);
    EXPECT_EQ(Corners(flipped), (Tri{3, 2, 0}));
    EXPECT_EQ((Tri{flipped.tv[0], flipped.tv[1], flipped.tv[2]}), (Tri{2, 1, 0}));
    EXPECT_EQ(EdgeFlags(cube, 0), (Tri{0, 0x10, 0x20}));
    EXPECT_TRUE(Near(cube.GetFaceNormal(0), cpoint3(0, 0, -1)));
    cube.FlipAllFaces();
    const cface back = cube.GetFace(0);
    EXPECT_EQ(Corners(back), Corners(face));
    EXPECT_EQ((Tri{back.tv[0], back.tv[1], back.tv[2]}), (Tri{0, 1, 2}));
    EXPECT_EQ(EdgeFlags(cube, 0), (Tri{0x10, 0, 0x20}));
    cube.SetFaceFlags(1, ELEMENT_SELECTED);
    EXPECT_EQ(cube.FlipSelFaces(), 0);  // only at face level
    cube.SetSubLevel(2);
    EXPECT_EQ(cube.FlipSelFaces(), 1);
    EXPECT_EQ(cube.GetFace(1).v[0], 1);
    EXPECT_EQ(cube.GetFace(0).v[0], 0);
    // FlipSelFaces rebuilds the smoothing normals; FlipAllFaces leaves them.
    cube.SetFaceSmGroups(-1, 0x1);
    cube.CalcSmNormals();
    cpoint3 before;
    cube.GetSmNormal(before, 4, 0);
    cube.FlipAllFaces();
    EXPECT_TRUE(SmNormalIs(cube, 4, 2, before));
}

TEST(MeshEdit, DetachesTheSelectedFacesIntoANewMesh) {
    cmesh cube;
    MakeCube(cube);
    EXPECT_EQ(cube.DetachSelFaces(), nullptr);
    cube.SetPosition(0, cpoint3(4, 0, 0));
    cube.SetFaceFlags(0, ELEMENT_SELECTED);
    cube.SetFaceFlags(1, ELEMENT_SELECTED);
    cmesh* part = cube.DetachSelFaces();
    ASSERT_NE(part, nullptr);
    EXPECT_EQ(VertsAndFaces(*part), std::pair(4, 2));
    EXPECT_EQ(part->NumSelFaces(), 2);
    EXPECT_TRUE(Near(part->GetPosition(0), cpoint3(4, 0, 0)));
    EXPECT_NEAR(Area(*part), 1.0f, 1e-6f);
    EXPECT_EQ(VertsAndFaces(cube), std::pair(8, 10));
    EXPECT_EQ(cube.NumSelFaces(), 0);
    EXPECT_TRUE(MeshIsValid(*part));
    EXPECT_TRUE(MeshIsValid(cube));
    part->Delete();
}

TEST(MeshEdit, FindsFacesByDirectedEdge) {
    cmesh cube;
    MakeCube(cube);
    EXPECT_EQ(cube.FindFaceFromEdge(0, 2, -1, 0), 0);
    EXPECT_EQ(cube.FindFaceFromEdge(0, 2, 0, 0), -1);
    EXPECT_EQ(cube.FindAdjacentFaceFromEdge(0, 2, -1, 0), 9);  // (0, 6, 2) holds 2 -> 0
    EXPECT_EQ(cube.FindFaceFromEdge(2, 0, -1, 0), 9);
    cube.SetFaceFlags(9, ELEMENT_HIDDEN);
    EXPECT_EQ(cube.FindAdjacentFaceFromEdge(0, 2, -1, ELEMENT_HIDDEN), -1);
    EXPECT_EQ(cube.FindAdjacentFaceFromEdge(0, 2, -1, ELEMENT_SELECTED), 9);
}

// Random operations on real meshes; after every step each face index is in range, the
// counters equal a recount and there are three edge flags per face.
TEST(MeshEditProperty, RandomOperationsKeepTheMeshValid) {
    for (const char* file : {"teapot.obj", "bunny.obj", "dragon_res3.obj.gz"}) {
        SCOPED_TRACE(file);
        cmesh mesh;
        ASSERT_TRUE(LoadObjMesh(mesh, file));
        ASSERT_TRUE(MeshIsValid(mesh));
        std::mt19937 random(12345);
        const auto pick = [&](int count) {
            return count > 0 ? std::uniform_int_distribution<int>(0, count - 1)(random) : 0;
        };
        const auto someOf = [&](int count, int per) {
            cbitarray set(count);
            for (int i = 0; i < count; ++i)
                if (pick(per) == 0) set.Set(i);
            return set;
        };
        const float size = 0.01f;
        const std::function<void()> operations[] = {
            [&] { mesh.SelectFaceSet(someOf(mesh.NumFaces(), 200), 1); },
            [&] { mesh.SelectVertSet(someOf(mesh.NumVerts(), 300), 1); },
            [&] { mesh.SelectEdgeSet(someOf(mesh.NumEdges(), 500), 1); },
            [&] { mesh.DeleteSelFaces(); },
            [&] { mesh.WeldMesh(size * 0.1f); },
            [&] { mesh.BreakVert(pick(mesh.NumVerts())); },
            [&] { mesh.BreakFace(pick(mesh.NumFaces())); },
            [&] { mesh.DivideEdge(pick(mesh.NumEdges()), 0.3f, pick(2)); },
            [&] {
                mesh.DivideFace(pick(mesh.NumFaces()), mesh.GetVertPoint(0), cpoint3(),
                                ccolor(1.0f, 1.0f, 1.0f));
            },
            [&] { mesh.RotateEdge(pick(mesh.NumEdges())); },
            [&] { mesh.ExtrudeFace(pick(mesh.NumFaces()), size, cpoint3(), 7); },
            [&] { mesh.ExtrudeSelFaces(size); },
            [&] { mesh.ExtrudeEdge(pick(mesh.NumEdges()), size, cpoint3()); },
            [&] { mesh.SetSubLevel(2), mesh.FlipSelFaces(); },
            [&] {
                if (cmesh* part = mesh.DetachSelFaces()) {
                    EXPECT_TRUE(MeshIsValid(*part));
                    part->Delete();
                }
            },
            [&] { mesh.AutoSmooth(45.0f, pick(2)); },
            [&] { mesh.SetSubLevel(1 + pick(3)), mesh.HideSelected(); },
            [&] { mesh.UnhideAllFaces(), mesh.UnhideAllVerts(), mesh.UnhideAllEdges(); },
            [&] { mesh.InvertSelFaces(); },
            [&] { mesh.DeleteVert(pick(mesh.NumVerts())); },
            [&] { mesh.DeleteSelVerts(), mesh.DeleteSelEdges(); },
            [&] {
                mesh.SetSubLevel(1 + pick(3));
                mesh.Move(0, cpoint3(size, 0, 0), 0, 0, 1, 0.0f);
                mesh.Scale(0, cpoint3(1.1f, 1.1f, 1.1f), cpoint3(), 0);
            },
        };
        for (int step = 0; step < 60; ++step) {
            const int op = pick(22);
            SCOPED_TRACE("step " + std::to_string(step) + " op " + std::to_string(op));
            operations[op]();
            ASSERT_TRUE(MeshIsValid(mesh));
        }
        EXPECT_GT(mesh.NumFaces(), 0);
    }
}
