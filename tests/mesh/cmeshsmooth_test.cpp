#include <gtest/gtest.h>

#include <set>

#include "mesh/edgeoracle.h"
#include "mesh/meshfixtures.h"

namespace {

std::vector<std::uint32_t> Masks(const cmesh& mesh) {
    std::vector<std::uint32_t> out;
    for (int f = 0; f < mesh.NumFaces(); ++f) out.push_back(mesh.GetFace(f).smgroups);
    return out;
}

}  // namespace

// Vertex 0 of the cube touches two faces of each of the -z, -y and -x sides, whose normals point
// inwards; an unused vertex keeps its normal.
TEST(MeshSmooth, AveragesTheFaceNormalsAndColoursTheSidesOfACube) {
    cmesh cube;
    MakeCube(cube);
    cube.AddVert(cpoint3(5, 5, 5));
    cube.SetNormal(8, cpoint3(0, 1, 0));
    cube.SetFaceSmGroups(-1, 1);
    cube.Smooth(0);
    const float r = 1.0f / std::sqrt(3.0f);
    EXPECT_TRUE(Near(cube.GetNormal(0), cpoint3(r, r, r)));
    EXPECT_TRUE(Near(cube.GetNormal(8), cpoint3(0, 1, 0)));
    cpoint3 n;
    EXPECT_EQ(cube.GetSmNormal(n, 0, 0), 0);  // not rebuilt without the argument
    cube.Smooth(1);
    EXPECT_TRUE(SmNormalIs(cube, 0, 0, cpoint3(r, r, r)));
    // Sides in cluster order -z, +z, -y, +y, -x, +x: opposite sides share no vertex. Only
    // selected faces change when asked.
    ASSERT_EQ(cube.AutoSmooth(45.0f, 0), 1);
    EXPECT_EQ(Masks(cube), (std::vector<std::uint32_t>{1, 1, 1, 1, 2, 2, 2, 2, 4, 4, 4, 4}));
    cube.SetFaceSmGroups(-1, 0x100);
    cube.SelectFaceSet(SetOf(12, {2, 3, 6}), 1);
    ASSERT_EQ(cube.AutoSmooth(45.0f, 1), 1);
    const std::uint32_t o = 0x100;
    EXPECT_EQ(Masks(cube), (std::vector<std::uint32_t>{o, o, 1, 1, o, o, 2, o, o, o, o, o}));
}

// On real meshes against a union-find clustering: each face gets one group, every face of a
// cluster the same, and clusters that share a vertex never share a group.
TEST(MeshSmooth, AutoSmoothSeparatesClustersMeetingAtAVertex) {
    for (const auto& [name, angle] :
         {std::pair("bunny.obj", 30.0f), {"dragon_res3.obj.gz", 45.0f}}) {
        ObjData data;
        cmesh mesh;
        ASSERT_TRUE(LoadObjMesh(mesh, name, data)) << name;
        ASSERT_EQ(mesh.AutoSmooth(angle, 0), 1);
        const auto cluster =
            OracleClusters(OracleLinks(data.triangles), OracleNormals(data), true, angle);
        const auto masks = Masks(mesh);
        std::vector<std::set<unsigned int>> around(data.vertices.size());
        std::vector<unsigned int> groupOf(data.triangles.size(), 0);
        size_t faults = 0;  // faces without exactly one group, or another than their cluster's
        for (size_t f = 0; f < masks.size(); ++f) {
            unsigned int& g = groupOf[cluster[f]];
            if (g == 0) g = masks[f];
            faults += __builtin_popcount(masks[f]) != 1 || g != masks[f];
            for (int v : data.triangles[f]) around[v].insert(cluster[f]);
        }
        for (const auto& clusters : around)
            for (unsigned int a : clusters)
                for (unsigned int b : clusters) faults += a != b && (groupOf[a] & groupOf[b]) != 0;
        EXPECT_EQ(faults, 0u) << name;
    }
}
