// Test meshes built by hand (a unit cube, a grid), meshes read from the shared OBJ files, and
// the structural invariants every mesh operation must keep.
#ifndef ORVANE_TESTS_MESH_MESHFIXTURES_H
#define ORVANE_TESTS_MESH_MESHFIXTURES_H

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "adjacency.h"
#include "cmesh.h"
#include "support/objreader.h"
#include "support/testsupport.h"

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

// Fills an adjacency list (AdjFaceList or AdjEdgeList) from `mesh` and links it; true when
// both steps succeed.
template <class Adjacency>
bool LinkFaces(cmesh& mesh, Adjacency& adjacency) {
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

// Reads a shared OBJ mesh into `mesh`; false when the file cannot be read.
inline bool LoadObjMesh(cmesh& mesh, const std::string& name) {
    ObjData data;
    if (!ReadObj(SharedDataPath("meshes/" + name), data)) return false;
    std::vector<cpoint3> points;
    for (const auto& v : data.vertices) points.emplace_back(v[0], v[1], v[2]);
    std::vector<int> indices;
    for (const auto& t : data.triangles) indices.insert(indices.end(), t.begin(), t.end());
    return BuildMesh(mesh, points, indices);
}

// Every face index in range, the counters equal to a recount of the flags, three edge flags
// per face.
inline ::testing::AssertionResult MeshIsValid(const cmesh& mesh) {
    if (mesh.NumEdges() != 3 * mesh.NumFaces())
        return ::testing::AssertionFailure()
               << mesh.NumEdges() << " edge flags for " << mesh.NumFaces() << " faces";
    int counts[6] = {};
    for (int i = 0; i < mesh.NumVerts(); ++i) {
        counts[0] += (mesh.GetVertFlags(i) & 1) != 0;
        counts[1] += (mesh.GetVertFlags(i) & 2) != 0;
    }
    for (int f = 0; f < mesh.NumFaces(); ++f) {
        const cface face = mesh.GetFace(f);
        for (int k = 0; k < 3; ++k)
            if (face.v[k] < 0 || face.v[k] >= mesh.NumVerts())
                return ::testing::AssertionFailure() << "face " << f << " index " << face.v[k];
        counts[2] += (face.flags & 1) != 0;
        counts[3] += (face.flags & 2) != 0;
    }
    for (int e = 0; e < mesh.NumEdges(); ++e) {
        counts[4] += (mesh.GetEdgeFlags(e) & 1) != 0;
        counts[5] += (mesh.GetEdgeFlags(e) & 2) != 0;
    }
    const int counters[6] = {mesh.NumSelVerts(),    mesh.NumHiddenVerts(), mesh.NumSelFaces(),
                             mesh.NumHiddenFaces(), mesh.NumSelEdges(),    mesh.NumHiddenEdges()};
    for (int i = 0; i < 6; ++i)
        if (counts[i] != counters[i])
            return ::testing::AssertionFailure()
                   << "counter " << i << " is " << counters[i] << ", recount " << counts[i];
    return ::testing::AssertionSuccess();
}

inline ::testing::AssertionResult Near(const cpoint3& a, const cpoint3& b, float eps = 1e-5f) {
    if (std::fabs(a.x - b.x) <= eps && std::fabs(a.y - b.y) <= eps && std::fabs(a.z - b.z) <= eps)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "(" << a.x << ", " << a.y << ", " << a.z << ") vs ("
                                         << b.x << ", " << b.y << ", " << b.z << ")";
}

// A set of `count` entries with the given members.
inline cbitarray SetOf(int count, std::initializer_list<int> members) {
    cbitarray set(count);
    for (int i : members) set.Set(i);
    return set;
}

#endif
