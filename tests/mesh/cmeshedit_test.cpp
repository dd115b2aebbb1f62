#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <set>

#include "mesh/meshfixtures.h"
#include "scene/aimednodes.h"

namespace {

// Whether `mesh` is valid, uses no directed edge twice (a consistent winding) and covers `area`
// in total.
::testing::AssertionResult WellFormed(const cmesh& mesh, float area) {
    std::set<std::pair<int, int>> edges;
    float sum = 0.0f;
    for (int f = 0; f < mesh.NumFaces(); ++f) {
        const Tri c = Corners(mesh, f);
        const cpoint3 a = mesh.GetVertPoint(c[0]);
        sum += 0.5f * Length(CrossProd(mesh.GetVertPoint(c[1]) - a, mesh.GetVertPoint(c[2]) - a));
        for (int k = 0; k < 3; ++k)
            if (!edges.insert({c[k], c[(k + 1) % 3]}).second)
                return ::testing::AssertionFailure() << "edge used twice in face " << f;
    }
    if (std::fabs(sum - area) > 1e-5f) return ::testing::AssertionFailure() << "area " << sum;
    return MeshIsValid(mesh);
}

// The unit square in the z = 0 plane as faces (0, 1, 3) and (0, 3, 2).
void MakeSquare(cmesh& mesh) {
    BuildMesh(mesh, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}}, {0, 1, 3, 0, 3, 2});
}

}  // namespace

TEST(MeshEdit, AddsDeletesAndClearsWithRebasedIndices) {
    cmesh mesh, cube;
    MakeSquare(mesh);
    MakeCube(cube);
    cube.SetFaceFlags(1, ELEMENT_SELECTED);
    ASSERT_EQ(mesh.AddMesh(0, cube, 1), 1);  // drops the selection
    ASSERT_EQ(mesh.AddMesh(1, cube, 0), 1);  // keeps it
    EXPECT_EQ(std::tuple(std::pair(mesh.NumVerts(), mesh.NumFaces()), Corners(mesh, 2),
                         Corners(mesh, 14), mesh.NumSelFaces()),
              std::tuple(std::pair(20, 26), Tri{4, 6, 7}, Tri{12, 14, 15}, 1));
    // A missing index (-1, as a record may hold) stays missing instead of becoming base - 1.
    cmesh holed, target;
    MakeSquare(holed), MakeSquare(target);
    std::string record = SavedRecord(holed);
    record.replace(record.size() - 12 - 2 * 34 + 10, 4, ByteString().Ints({-1}).bytes);
    ASSERT_EQ(LoadRecord(holed, record, 16), 1);
    target.AddMesh(1, holed, 0);
    EXPECT_EQ(std::tuple(Corners(target, 2), target.CheckFaceVIndices(2)),
              std::tuple(Tri{4, 5, -1}, 0));
    const cpoint3 points[3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    const int bad[3] = {0, 1, 3};
    const std::array<int, 4> added{mesh.AddFace(cface(0, 1, 40)), mesh.AddFace(cface(0, 1, 2)),
                                   mesh.SetMesh(points, nullptr, nullptr, bad, 3, 0, 1),
                                   mesh.NumFaces()};
    EXPECT_EQ(added, (std::array<int, 4>{-1, 26, 0, 27}));
    EXPECT_TRUE(MeshIsValid(mesh));
    mesh.SetMesh(cube);
    ASSERT_EQ(mesh.DeleteVert(0), 1);  // used by faces 0, 1, 4, 5, 8, 9
    EXPECT_EQ(std::tuple(std::pair(mesh.NumVerts(), mesh.NumFaces()), Corners(mesh, 0)),
              std::tuple(std::pair(7, 6), Tri{3, 4, 6}));  // old (4, 5, 7), re-based
    mesh.Allocate(4, 2, 2);                                // face 1 keeps its -1 indices
    cface face(0, 1, 2);
    face.tv[0] = face.tv[1] = face.tv[2] = 1;
    mesh.SetFace(0, face);
    const std::array<int, 4> cleared{mesh.ClearInvalidFaces(), mesh.ClearUnusedVerts(),
                                     mesh.ClearUnusedTVerts(), mesh.ClearAllUnused()};
    EXPECT_EQ(cleared, (std::array<int, 4>{1, 1, 1, 0}));
    EXPECT_EQ(std::tuple(mesh.NumFaces(), mesh.NumVerts(), mesh.GetFace(0).tv[1]),
              std::tuple(1, 3, 0));
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
    ASSERT_EQ(LoadRecord(mesh, bytes, 16), 1);
    mesh.DeleteSelFaces();
    // Every file of the mesh class reports under the class's one file name.
    EXPECT_TRUE(recorder.Count() == 1 &&
                recorder.Texts()[0].find("isel==nselfaces") != std::string::npos &&
                recorder.Texts()[0].find("File: Core/cmesh,") != std::string::npos)
        << (recorder.Count() ? recorder.Texts()[0] : "");
    EXPECT_EQ(mesh.NumFaces(), 11);
}

TEST(MeshEdit, WeldsBreaksDividesRotatesAndExtrudes) {
    cmesh mesh, grid, cube;
    BuildMesh(mesh, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1.0005f, 0, 0}, {1, 1, 0}, {0, 1.0005f, 0}},
              {0, 1, 2, 3, 4, 5});
    const std::array<int, 2> welded{mesh.WeldMesh(0.0001f), mesh.WeldMesh(0.001f)};
    EXPECT_EQ(std::tuple(welded, Corners(mesh, 1)),
              std::tuple(std::array<int, 2>{0, 2}, Tri{1, 3, 2}));
    MakeCube(cube);
    EXPECT_TRUE(cube.BreakVert(0) == 1 && WellFormed(cube, 6.0f) && cube.NumVerts() == 13);
    MakeSquare(grid);
    // The diagonal 3 -> 0, also held by face 1.
    EXPECT_TRUE(grid.DivideEdge(2, 0.25f, 1) == 4 && WellFormed(grid, 1.0f) &&
                Near(grid.GetVertPoint(4), cpoint3(0.75f, 0.75f, 0)));
    BuildMesh(mesh, {{0, 0, 0}, {3, 0, 0}, {0, 3, 0}}, {0, 1, 2});
    EXPECT_TRUE(mesh.DivideFace(0, cpoint3(1, 1, 0), cpoint3(), ccolor(1.0f, 0.0f, 0.0f)) == 3 &&
                WellFormed(mesh, 4.5f) && mesh.GetVertColor(3) == ccolor(1.0f, 0.0f, 0.0f));
    MakeSquare(grid);
    grid.SetEdgeFlags(2, 0x10);
    const std::array<int, 2> rotated{grid.RotateEdge(0), grid.RotateEdge(2)};  // border, diagonal
    // The new diagonal 2 -> 1 keeps the old diagonal's flags in face 0.
    const cface a = grid.GetFace(0);
    const int k = a.FindVert(2);
    EXPECT_EQ(std::tuple(rotated, a.v[(k + 1) % 3], a.v[(k + 2) % 3], grid.GetEdgeFlags(k)),
              std::tuple(std::array<int, 2>{0, 1}, 1, 3, 0x10));
    EXPECT_TRUE(WellFormed(grid, 1.0f));
    BuildMesh(mesh, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {0, 1, 2});
    // Sides of area 2 * edge length.
    EXPECT_TRUE(mesh.ExtrudeFace(0, 2.0f, cpoint3(), 7) == 1 &&
                WellFormed(mesh, 0.5f + 2.0f * (2.0f + std::sqrt(2.0f))));
    MakeCube(cube);
    cube.SelectFaceSet(SetOf(12, {2, 3}), 1);  // the +z side, normals (0, 0, -1)
    EXPECT_TRUE(cube.ExtrudeSelFaces(0.5f) == 1 && WellFormed(cube, 8.0f) &&
                cube.NumVerts() == 12 && cube.NumSelFaces() == 2);
    MakeSquare(grid);
    // Edge 0 -> 1 along y = 0.
    EXPECT_TRUE(grid.ExtrudeEdge(0, 0.5f, cpoint3()) == 1 && WellFormed(grid, 1.5f) &&
                Near(grid.GetVertPoint(5), cpoint3(1, -0.5f, 0)));
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
    EXPECT_EQ(std::tuple(Corners(cube, 0), cube.GetFace(0).tv[0], cube.GetEdgeFlags(1),
                         cube.GetEdgeFlags(2)),
              std::tuple(Tri{3, 2, 0}, 2, 0x10, 0x20));
    EXPECT_EQ(Corners(cube, 11), (Tri{5, 7, 1}));
    cube.FlipAllFaces();
    cube.SetFaceFlags(1, ELEMENT_SELECTED);
    const int atObjectLevel = cube.FlipSelFaces();
    cube.SetSubLevel(2);
    EXPECT_EQ((std::tuple{atObjectLevel, cube.FlipSelFaces(), Corners(cube, 1), Corners(cube, 0)}),
              std::tuple(0, 1, Tri{1, 3, 0}, Tri{0, 2, 3}));
    // Intended: FlipSelFaces rebuilds the smoothing normals; FlipAllFaces leaves them.
    cube.SetFaceSmGroups(-1, 0x1);
    cube.CalcSmNormals();
    // Vertex 0's faces sum to (2, 2, 0), face 1 being flipped; after FlipAllFaces it is corner 2
    // of face 4 and keeps that normal.
    cube.FlipAllFaces();
    EXPECT_TRUE(SmNormalIs(cube, 4, 2, Normalize(cpoint3(1, 1, 0))));
}

// Random operations on real meshes; after every step each face index is in range, the
// counters equal a recount and there are three edge flags per face.
TEST(MeshEditProperty, RandomOperationsKeepTheMeshValid) {
    for (const char* file : {"teapot.obj", "bunny.obj", "dragon_res3.obj.gz"}) {
        ObjData data;
        cmesh mesh;
        ASSERT_TRUE(LoadObjMesh(mesh, file, data));
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
            [&] { mesh.DivideFace(pick(mesh.NumFaces()), mesh.GetVertPoint(0), {}, ccolor()); },
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
                mesh.SetSubLevel(1 + pick(3)), mesh.Move(0, cpoint3(size, 0, 0), 0, 0, 1, 0.0f);
                mesh.Scale(0, cpoint3(1.1f, 1.1f, 1.1f), cpoint3(), 0);
            },
        };
        for (int step = 0; step < 60; ++step) {
            const int op = pick(22);
            operations[op]();
            ASSERT_TRUE(MeshIsValid(mesh)) << file << " step " << step << " op " << op;
        }
        EXPECT_GT(mesh.NumFaces(), 0);
    }
}
