#include "support/objreader.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "support/testsupport.h"

TEST(ObjReader, ReadsPositionsAndFanSplitsFacesWithAbsoluteAndRelativeIndices) {
    TempDir dir;
    WriteFileBytes(dir.File("quad.obj"),
                   "# comment\nv 0 0 0\nv 1 0 0\nv 1 1 0\nvt 0.5 0.5\nv 0 1 0.5\n"
                   "vn 0 0 1\nf 1/1/1 2/1/1 3/1/1 4\nf -4 -2 -1\ng part\nf 2 3 4\n");
    ObjData data;
    ASSERT_TRUE(ReadObj(dir.File("quad.obj"), data));
    ASSERT_EQ(data.vertices.size(), 4u);
    EXPECT_EQ(data.vertices[3], (std::array<float, 3>{0.0f, 1.0f, 0.5f}));
    const std::vector<std::array<int, 3>> expected = {{0, 1, 2}, {0, 2, 3}, {0, 2, 3}, {1, 2, 3}};
    EXPECT_EQ(data.triangles, expected);
    EXPECT_EQ(FlatIndices(data), (std::vector<int>{0, 1, 2, 0, 2, 3, 0, 2, 3, 1, 2, 3}));

    WriteFileBytes(dir.File("bad.obj"), "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 4\n");
    EXPECT_FALSE(ReadObj(dir.File("bad.obj"), data));
    WriteFileBytes(dir.File("short.obj"), "v 0 0 0\nv 1 0 0\nf 1 2\n");
    EXPECT_FALSE(ReadObj(dir.File("short.obj"), data));
    EXPECT_FALSE(ReadObj(dir.File("missing.obj"), data));

    // The shared meshes, compressed or not.
    ASSERT_TRUE(ReadObj(SharedDataPath("meshes/bunny.obj"), data));
    EXPECT_EQ(data.vertices.size(), 1839u);
    EXPECT_EQ(data.triangles.size(), 3674u);
    ASSERT_TRUE(ReadObj(SharedDataPath("meshes/dragon_res3.obj.gz"), data));
    EXPECT_EQ(data.vertices.size(), 22998u);
    EXPECT_EQ(data.triangles.size(), 47794u);
}
