#include "mtllist.h"

#include <gtest/gtest.h>

#include <string>

#include "cmaterial.h"
#include "cscene.h"
#include "scene/projectfile.h"
#include "support/testsupport.h"

namespace {

class MtlListTest : public ::testing::Test {
protected:
    void TearDown() override {
        MtlList::Clear();
        MainScene.Clear();
    }
    cio_load& Open(const std::string& bytes) {
        const std::string path = folder.File("project.orv");
        WriteFileBytes(path, bytes);
        in.Close();
        EXPECT_EQ(in.Open(path.c_str()), 0);
        return in;
    }
    TempDir folder;
    cio_load in;
};

TEST_F(MtlListTest, ReadsTheMaterialTableNotTheNodeTable) {
    auto* chrome = new cmaterial("Chrome");
    auto* wood = new cmaterial("Wood");
    MainScene.AddMaterial(chrome, 1);
    MainScene.AddMaterial(wood, 1);
    EXPECT_EQ(MtlList::GetMaterialAt(1), wood) << "without a table the scene answers";

    ProjectFile file;
    file.nodes = {"Chrome", "Box01", "Wood"};
    file.materials = {"Wood", "Glass", "Chrome"};
    cio_load& stream = Open(file.Bytes());
    ASSERT_EQ(stream.SetPosition(40, 0), 0);
    ASSERT_EQ(MtlList::ReadMaterialNames(stream), 1);
    EXPECT_EQ(stream.GetPosition(), 40);
    EXPECT_EQ(MtlList::NumMaterials(), 3);
    EXPECT_EQ(MtlList::GetMaterialAt(0), wood);
    EXPECT_EQ(MtlList::GetMaterialAt(1), nullptr);
    EXPECT_EQ(MtlList::GetMaterialAt(2), chrome);
    EXPECT_STREQ(MtlList::GetNameAt(1), "Glass");
    EXPECT_EQ(MtlList::GetNameAt(3), nullptr);
    EXPECT_EQ(MtlList::FindMaterial("Chrome"), chrome);
    EXPECT_EQ(MtlList::Find(wood), 1);

    // The material table's own count and offset decide.
    std::string bytes = file.Bytes();
    ProjectFile::SetWord(bytes, kMaterialCountAt, 2);
    EXPECT_EQ(MtlList::ReadMaterialNames(Open(bytes)), 0);
    EXPECT_EQ(MtlList::IsLoaded(), 0);

    EXPECT_EQ(MtlList::NumMaterials(), 2);
}

}  // namespace
