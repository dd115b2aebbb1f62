// Test meshes built by hand (a unit cube, a grid), meshes read from the shared OBJ files, and
// the structural invariants every mesh operation must keep.
#ifndef ORVANE_TESTS_MESH_MESHFIXTURES_H
#define ORVANE_TESTS_MESH_MESHFIXTURES_H

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "adjacency.h"
#include "cmesh.h"
#include "support/objreader.h"
#include "support/testsupport.h"

using Tri = std::array<int, 3>;

// The vertex indices of `face`, and of face `f` of `mesh`.
inline Tri Corners(const cface& face) {
    return {face.v[0], face.v[1], face.v[2]};
}
inline Tri Corners(const cmesh& mesh, int f) {
    return Corners(mesh.GetFace(f));
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

// An n x n grid of unit squares in the z = 0 plane, two triangles per square.
inline void MakeGrid(cmesh& mesh, int n) {
    std::vector<cpoint3> points;
    for (int y = 0; y <= n; ++y)
        for (int x = 0; x <= n; ++x)
            points.emplace_back(static_cast<float>(x), static_cast<float>(y), 0.0f);
    std::vector<int> indices;
    for (int y = 0; y < n; ++y)
        for (int x = 0; x < n; ++x) {
            const int a = y * (n + 1) + x, b = a + 1, c = a + n + 1, d = c + 1;
            indices.insert(indices.end(), {a, b, d, a, d, c});
        }
    BuildMesh(mesh, points, indices);
}

// Reads a shared OBJ mesh into `data` and `mesh`; false when either step fails.
inline bool LoadObjMesh(cmesh& mesh, const std::string& name, ObjData& data) {
    return ReadObj(SharedDataPath("meshes/" + name), data) && BuildMesh(data, mesh);
}
inline bool LoadObjMesh(cmesh& mesh, const std::string& name) {
    ObjData data;
    return LoadObjMesh(mesh, name, data);
}

// Every face index in range, the counters equal to a recount of the flags, three edge flags
// per face.
inline ::testing::AssertionResult MeshIsValid(const cmesh& mesh) {
    if (mesh.NumEdges() != 3 * mesh.NumFaces())
        return ::testing::AssertionFailure()
               << mesh.NumEdges() << " edge flags for " << mesh.NumFaces() << " faces";
    // Selected and hidden vertices, faces and edges, recounted from the flags.
    std::array<int, 6> recount{};
    const auto tally = [&](int kind, unsigned int flags) {
        recount[2 * kind] += (flags & 1) != 0;
        recount[2 * kind + 1] += (flags & 2) != 0;
    };
    for (int i = 0; i < mesh.NumVerts(); ++i) tally(0, mesh.GetVertFlags(i));
    for (int f = 0; f < mesh.NumFaces(); ++f) {
        for (int v : Corners(mesh, f))
            if (v < 0 || v >= mesh.NumVerts())
                return ::testing::AssertionFailure() << "face " << f << " index " << v;
        tally(1, mesh.GetFace(f).flags);
    }
    for (int e = 0; e < mesh.NumEdges(); ++e) tally(2, mesh.GetEdgeFlags(e));
    const std::array<int, 6> counters = {mesh.NumSelVerts(), mesh.NumHiddenVerts(),
                                         mesh.NumSelFaces(), mesh.NumHiddenFaces(),
                                         mesh.NumSelEdges(), mesh.NumHiddenEdges()};
    if (recount == counters) return ::testing::AssertionSuccess();
    auto failure = ::testing::AssertionFailure() << "counter/recount:";
    for (int i = 0; i < 6; ++i) failure << " " << counters[i] << "/" << recount[i];
    return failure;
}

inline ::testing::AssertionResult Near(const cpoint3& a, const cpoint3& b, float eps = 1e-5f) {
    if (std::fabs(a.x - b.x) <= eps && std::fabs(a.y - b.y) <= eps && std::fabs(a.z - b.z) <= eps)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "(" << a.x << ", " << a.y << ", " << a.z << ") vs ("
                                         << b.x << ", " << b.y << ", " << b.z << ")";
}

// The vertex and face counts of `mesh`.
inline std::pair<int, int> VertsAndFaces(const cmesh& mesh) {
    return {mesh.NumVerts(), mesh.NumFaces()};
}

// Every vertex position, every face's corners, texture corners, flags and smoothing groups, and
// every edge flag: two meshes with equal snapshots hold the same arrays.
inline auto Snapshot(const cmesh& mesh) {
    std::vector<cpoint3> points;
    std::vector<std::tuple<Tri, Tri, int, std::uint32_t>> faces;
    std::vector<int> edges;
    for (int v = 0; v < mesh.NumVerts(); ++v) points.push_back(mesh.GetVertPoint(v));
    for (int f = 0; f < mesh.NumFaces(); ++f) {
        const cface c = mesh.GetFace(f);
        faces.emplace_back(Corners(c), Tri{c.tv[0], c.tv[1], c.tv[2]}, c.flags, c.smgroups);
    }
    for (int e = 0; e < mesh.NumEdges(); ++e) edges.push_back(mesh.GetEdgeFlags(e));
    return std::tuple(points, faces, edges);
}

// Whether corner `k` of face `f` has a smoothing normal and it is near `expected`.
inline ::testing::AssertionResult SmNormalIs(const cmesh& mesh, int f, int k,
                                             const cpoint3& expected) {
    cpoint3 n;
    if (mesh.GetSmNormal(n, f, k) != 1)
        return ::testing::AssertionFailure() << "no smoothing normal at " << f << ", " << k;
    return Near(n, expected);
}

// A set of `count` entries with the given members.
inline cbitarray SetOf(int count, std::initializer_list<int> members) {
    cbitarray set(count);
    for (int i : members) set.Set(i);
    return set;
}

#endif
