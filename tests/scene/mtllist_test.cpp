#include "mtllist.h"

#include <gtest/gtest.h>

#include "scene/projectfile.h"

// The reading itself is the node table's mechanism; this checks the material table's wiring.
TEST(MtlList, ReadsTheMaterialTableNotTheNodeTable) {
    auto* chrome = new cmaterial("Chrome");
    MainScene.AddMaterial(new cmaterial("Wood"), 1);
    MainScene.AddMaterial(chrome, 1);
    ProjectFile file;
    file.nodes = {"Wood", "Box01"};
    file.materials = {"Chrome", "Glass", "Wood"};
    std::string bytes = file.Bytes();
    TempDir folder;
    const std::string path = folder.File("project.orv");
    for (std::uint32_t count : {3u, 2u}) {
        ProjectFile::SetWord(bytes, kMaterialCountAt, count);  // 2: header and table disagree
        WriteFileBytes(path, bytes);
        cio_load in;
        ASSERT_EQ(in.Open(path.c_str()), 0);
        EXPECT_EQ(MtlList::ReadMaterialNames(in), count == 3 ? 1 : 0);
        EXPECT_EQ(MtlList::NumMaterials(), count == 3 ? 3 : 2) << "the table, else the scene";
        EXPECT_EQ(MtlList::GetMaterialAt(0), count == 3 ? chrome : MainScene.GetMaterialAt(0))
            << "the table's, else the scene's";
        EXPECT_STREQ(MtlList::GetNameAt(1), count == 3 ? "Glass" : nullptr);
    }
    MainScene.Clear();
}
