#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <vector>

#include "cmesh.h"
#include "mesh/edgeoracle.h"
#include "mesh/meshfixtures.h"

TEST(MeshSmooth, AveragesTheFaceNormalsIntoTheStoredNormals) {
    cmesh cube;
    MakeCube(cube);
    cube.AddVert(cpoint3(5, 5, 5));
    cube.SetNormal(8, cpoint3(0, 1, 0));
    cube.Smooth(0);
    // Vertex 0 touches two faces of each of the -z, -y and -x sides, whose normals point
    // inwards: (0, 0, 1), (0, 1, 0), (1, 0, 0), each of length 1.
    const float r = 1.0f / std::sqrt(3.0f);
    EXPECT_TRUE(Near(cube.GetNormal(0), cpoint3(r, r, r)));
    EXPECT_TRUE(Near(cube.GetNormal(7), cpoint3(-r, -r, -r)));
    EXPECT_TRUE(Near(cube.GetNormal(8), cpoint3(0, 1, 0)));  // unused: kept
    cpoint3 n;
    EXPECT_EQ(cube.GetSmNormal(n, 0, 0), 0);
    cube.SetFaceSmGroups(-1, 1);
    cube.Smooth(1);
    EXPECT_TRUE(SmNormalIs(cube, 0, 0, cpoint3(r, r, r)));
}

TEST(MeshSmooth, AutoSmoothColoursTheSidesOfACube) {
    cmesh cube, empty;
    MakeCube(cube);
    const auto masks = [&] {
        std::vector<std::uint32_t> out;
        for (int f = 0; f < cube.NumFaces(); ++f) out.push_back(cube.GetFace(f).smgroups);
        return out;
    };
    // Sides in cluster order -z, +z, -y, +y, -x, +x: opposite sides share no vertex.
    ASSERT_EQ(cube.AutoSmooth(45.0f, 0), 1);
    EXPECT_EQ(masks(), (std::vector<std::uint32_t>{1, 1, 1, 1, 2, 2, 2, 2, 4, 4, 4, 4}));
    EXPECT_TRUE(SmNormalIs(cube, 0, 0, cpoint3(0, 0, 1)));
    // With a wide angle every side joins one cluster.
    ASSERT_EQ(cube.AutoSmooth(100.0f, 0), 1);
    EXPECT_EQ(masks(), std::vector<std::uint32_t>(12, 1));
    // Only the selected faces change; unselected ones keep their masks.
    cube.SetFaceSmGroups(-1, 0x100);
    cube.SelectFaceSet(SetOf(12, {2, 3, 6}), 1);
    ASSERT_EQ(cube.AutoSmooth(45.0f, 1), 1);
    const std::uint32_t o = 0x100;
    EXPECT_EQ(masks(), (std::vector<std::uint32_t>{o, o, 1, 1, o, o, 2, o, o, o, o, o}));
    EXPECT_EQ(empty.AutoSmooth(45.0f, 0), 0);
}

// On real meshes against a union-find clustering: each face gets one group, every face of a
// cluster the same, and clusters that share a vertex never share a group.
TEST(MeshSmooth, AutoSmoothSeparatesClustersMeetingAtAVertex) {
    for (const auto& [name, angle] :
         {std::pair("bunny.obj", 30.0f), {"bunny.obj", 45.0f}, {"dragon_res3.obj.gz", 45.0f}}) {
        ObjData data;
        cmesh mesh;
        ASSERT_TRUE(LoadObjMesh(mesh, name, data)) << name;
        ASSERT_EQ(mesh.AutoSmooth(angle, 0), 1);
        const auto cluster = OracleClusters(
            OracleLinks(data.triangles), OracleNormals(data), [](size_t) { return true; }, true,
            angle);
        std::vector<std::set<unsigned int>> around(data.vertices.size());
        std::vector<unsigned int> groupOf(data.triangles.size(), 0);
        size_t conflicts = 0, uneven = 0, notOne = 0;
        for (size_t f = 0; f < data.triangles.size(); ++f) {
            const unsigned int mask = mesh.GetFace(static_cast<int>(f)).smgroups;
            notOne += __builtin_popcount(mask) != 1;
            unsigned int& g = groupOf[cluster[f]];
            if (g == 0) g = mask;
            uneven += g != mask;
            for (int v : data.triangles[f]) around[v].insert(static_cast<unsigned int>(f));
        }
        for (const auto& faces : around)
            for (unsigned int a : faces)
                for (unsigned int b : faces)
                    if (cluster[a] != cluster[b])
                        conflicts += (mesh.GetFace(static_cast<int>(a)).smgroups &
                                      mesh.GetFace(static_cast<int>(b)).smgroups) != 0;
        EXPECT_EQ(notOne, 0u) << name << " at " << angle;
        EXPECT_EQ(uneven, 0u) << name << " at " << angle;
        EXPECT_EQ(conflicts, 0u) << name << " at " << angle;
    }
}
