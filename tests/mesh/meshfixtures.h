// Test meshes built by hand (a unit cube), meshes read from the shared OBJ files, and
// the structural invariants every mesh operation must keep.
#ifndef ORVANE_TESTS_MESH_MESHFIXTURES_H
#define ORVANE_TESTS_MESH_MESHFIXTURES_H

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "cmesh.h"
#include "support/objreader.h"
#include "support/testsupport.h"

using Tri = std::array<int, 3>;

// The vertex indices of face `f` of `mesh`.
inline Tri Corners(const cmesh& mesh, int f) {
    const cface face = mesh.GetFace(f);
    return {face.v[0], face.v[1], face.v[2]};
}

// Builds `mesh` from positions and triangles through SetMesh.
inline bool BuildMesh(cmesh& mesh, const std::vector<cpoint3>& points,
                      const std::vector<int>& indices) {
    return mesh.SetMesh(points.data(), nullptr, nullptr, indices.data(),
                        static_cast<int>(points.size()), 0,
                        static_cast<int>(indices.size() / 3)) == 1;
}

// The unit cube [0,1]^3: vertex x + 2y + 4z at (x, y, z); twelve triangles, two per side, in
// the side order -z, +z, -y, +y, -x, +x, all wound the same way (counter-clockwise seen from
// outside, so their face normals point inwards).
inline void MakeCube(cmesh& mesh) {
    std::vector<cpoint3> points;
    for (int i = 0; i < 8; ++i)
        points.emplace_back(static_cast<float>(i & 1), static_cast<float>((i >> 1) & 1),
                            static_cast<float>((i >> 2) & 1));
    BuildMesh(mesh, points, {0, 2, 3, 0, 3, 1, 4, 5, 7, 4, 7, 6, 0, 1, 5, 0, 5, 4,
                             2, 6, 7, 2, 7, 3, 0, 4, 6, 0, 6, 2, 1, 3, 7, 1, 7, 5});
}

// Fills an adjacency list (AdjFaceList or AdjEdgeList) from a mesh or skin (through the
// overload for its own type) and links it; true when both steps succeed.
template <class Mesh, class Adjacency>
bool LinkFaces(Mesh& mesh, Adjacency& adjacency) {
    return adjacency.Init(mesh) == 1 && adjacency.Create() == 1;
}

// Reads a shared OBJ mesh into `data` and `mesh`; false when either step fails.
inline bool LoadObjMesh(cmesh& mesh, const std::string& name, ObjData& data) {
    return ReadObj(SharedDataPath("meshes/" + name), data) && BuildMesh(data, mesh);
}

// Three edge flags per face, every face index in range, and the selected and hidden counters of
// vertices, faces and edges equal to a recount of the flags.
inline ::testing::AssertionResult MeshIsValid(const cmesh& mesh) {
    std::array<int, 6> recount{};
    const auto tally = [&](int kind, unsigned int flags) {
        recount[2 * kind] += (flags & 1) != 0;
        recount[2 * kind + 1] += (flags & 2) != 0;
    };
    for (int i = 0; i < mesh.NumVerts(); ++i) tally(0, mesh.GetVertFlags(i));
    for (int e = 0; e < mesh.NumEdges(); ++e) tally(2, mesh.GetEdgeFlags(e));
    bool inRange = mesh.NumEdges() == 3 * mesh.NumFaces();
    for (int f = 0; f < mesh.NumFaces(); ++f) {
        tally(1, mesh.GetFace(f).flags);
        for (int v : Corners(mesh, f)) inRange = inRange && v >= 0 && v < mesh.NumVerts();
    }
    const std::array<int, 6> counters = {mesh.NumSelVerts(), mesh.NumHiddenVerts(),
                                         mesh.NumSelFaces(), mesh.NumHiddenFaces(),
                                         mesh.NumSelEdges(), mesh.NumHiddenEdges()};
    return (inRange && recount == counters ? ::testing::AssertionSuccess()
                                           : ::testing::AssertionFailure())
           << "indices in range " << inRange << ", counters " << ::testing::PrintToString(counters)
           << ", recount " << ::testing::PrintToString(recount);
}

inline ::testing::AssertionResult Near(const cpoint3& a, const cpoint3& b, float eps = 1e-5f) {
    const bool near =
        std::fabs(a.x - b.x) <= eps && std::fabs(a.y - b.y) <= eps && std::fabs(a.z - b.z) <= eps;
    return (near ? ::testing::AssertionSuccess() : ::testing::AssertionFailure())
           << a.x << " " << a.y << " " << a.z << " vs " << b.x << " " << b.y << " " << b.z;
}

// Whether corner `k` of face `f` has a smoothing normal and it is near `expected`.
inline ::testing::AssertionResult SmNormalIs(const cmesh& mesh, int f, int k,
                                             const cpoint3& expected) {
    cpoint3 n;
    return mesh.GetSmNormal(n, f, k) == 1 ? Near(n, expected) : ::testing::AssertionFailure();
}

// A set of `count` entries with the given members.
inline cbitarray SetOf(int count, std::initializer_list<int> members) {
    cbitarray set(count);
    for (int i : members) set.Set(i);
    return set;
}

#endif
