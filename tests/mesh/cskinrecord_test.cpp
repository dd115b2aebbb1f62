// Angle brackets: the byte builder under tests/scene would shadow the library's header.
#include <projectfile.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "cscene.h"
#include "cskin.h"
#include "mesh/skinfixtures.h"
#include "support/bytestring.h"
#include "support/testsupport.h"

namespace {

using SkinRecord = SkinTest;

std::string SavedSkin(const cskin& skin) {
    return Saved([&](cio_save& out) { EXPECT_EQ(skin.Save(out), 1); });
}

int LoadSkin(cskin& skin, const std::string& bytes, unsigned long version = 16) {
    RecordStream record(bytes);
    if (!record.opened) return -1;
    return skin.Load(record.in, version);
}

// The same words, where floats compare by value (a computed inverse may hold -0 for 0).
::testing::AssertionResult SameWords(const std::string& a, const std::string& b) {
    if (a.size() != b.size() || a.size() % 4 != 0)
        return ::testing::AssertionFailure() << a.size() << " bytes vs " << b.size();
    for (size_t at = 0; at < a.size(); at += 4) {
        float x = 0, y = 0;
        std::memcpy(&x, a.data() + at, 4);
        std::memcpy(&y, b.data() + at, 4);
        if (a.compare(at, 4, b, at, 4) != 0 && !(x == y))
            return ::testing::AssertionFailure() << "differ at byte " << at;
    }
    return ::testing::AssertionSuccess();
}

// A matrix as the record holds it: the identity with translation t, row by row.
ByteString& Translation(ByteString& r, float x, float y, float z) {
    return r.Floats({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1});
}

// A skin "Body" placed at (0, 0, 3) with bones "Root" at (1, 0, 0) and "Tip" at (0, 2, 0):
// vertex 0 is weighed 3:1 to them, vertex 1 to the tip alone, vertex 2 shares vertex 0's skin
// vertex and vertex 3 has none.
cskin* MakeBody(cnode*& root, cnode*& tip) {
    cskin* skin = CreateNewSkin();
    skin->SetName("Body");
    skin->SetPosition(0, cpoint3(0, 0, 3));
    SetSkinPoints(*skin, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 1}});
    root = new cnode("Root", ccolor());
    root->SetPosition(0, cpoint3(1, 0, 0));
    tip = new cnode("Tip", ccolor());
    tip->SetPosition(0, cpoint3(0, 2, 0));
    skin->AddBone(root);
    skin->AddBone(tip);
    Weigh(*skin, 0, {{0, 0.75f}, {1, 0.25f}});
    Weigh(*skin, 1, {{1, 1.0f}});
    skin->SetSkinVertIndex(2, 0);
    return skin;
}

// The skin section MakeBody's skin writes.
std::string BodySection() {
    ByteString r;
    r.Word(2).Name("Root", 64);
    Translation(r, -1, 0, 0).Name("Tip", 64);
    Translation(r, 0, -2, 0);
    Translation(r, 0, 0, 3).Word(2);
    r.Ints({2, 0}).Floats({0.75f}).Ints({1}).Floats({0.25f});
    r.Ints({-1}).Floats({0}).Ints({-1}).Floats({0});
    r.Ints({1, 1}).Floats({1}).Ints({-1}).Floats({0}).Ints({-1}).Floats({0});
    r.Ints({-1}).Floats({0});
    return r.bytes;
}

TEST_F(SkinRecord, AppendsTheSkinSectionAndLinksTheBonesByName) {
    cnode *root = nullptr, *tip = nullptr;
    cskin* skin = MakeBody(root, tip);
    MainScene.AddNode(skin, 1);
    MainScene.AddNode(root, 1);
    MainScene.AddNode(tip, 1);
    const std::string saved = SavedSkin(*skin);
    const std::string section = BodySection();
    ASSERT_GT(saved.size(), section.size());
    EXPECT_TRUE(SameWords(saved.substr(saved.size() - section.size()), section));
    EXPECT_EQ(saved.substr(0, 4), ByteString().Word(TYPE_SKIN).bytes);
    cskin loaded;
    ASSERT_EQ(LoadSkin(loaded, saved), 1);
    EXPECT_STREQ(loaded.GetName(), "Body");
    EXPECT_EQ(BonesOf(loaded), (std::vector<cnode*>{root, tip}));
    ASSERT_EQ(loaded.NumSkinVerts(), 2);
    EXPECT_EQ(loaded.GetSkinVertIndex(2), 0u);
    EXPECT_EQ(loaded.GetSkinVertIndex(3), SKIN_VERTEX_NONE);
    EXPECT_EQ(SavedSkin(loaded), saved);
    // Posed: the root moves by (0, 4, 0), the tip by (2, 0, 0).
    root->SetPosition(0, cpoint3(1, 4, 0));
    tip->SetPosition(0, cpoint3(2, 2, 0));
    const cpoint3 posed[] = {{1.5f, 3, 0}, {2, 1, 0}, {0.5f, 3, 1}, {1, 1, 1}};
    for (int v = 0; v < 4; ++v) EXPECT_TRUE(NearPoint(loaded.GetDeformedVert(v), posed[v])) << v;
    // A bone no node answers to is dropped with its influences.
    tip->SetName("Renamed");
    cskin orphan;
    ASSERT_EQ(LoadSkin(orphan, saved), 1);
    EXPECT_EQ(BonesOf(orphan), (std::vector<cnode*>{root}));
    EXPECT_TRUE(HasInfluences(orphan, 0, {{0, 1.0f}}));
    EXPECT_TRUE(HasInfluences(orphan, 1, {}));
}

TEST_F(SkinRecord, FailsOnEveryTruncationAndOnCorruptCounts) {
    cnode *root = nullptr, *tip = nullptr;
    cskin* skin = MakeBody(root, tip);
    MainScene.AddNode(root, 1);
    MainScene.AddNode(tip, 1);
    const std::string saved = SavedSkin(*skin);
    skin->Delete();
    for (size_t length = 0; length < saved.size(); ++length) {
        cskin truncated;
        EXPECT_EQ(LoadSkin(truncated, saved.substr(0, length)), 0) << length;
    }
    const size_t at = saved.size() - BodySection().size();
    const size_t vertsAt = at + 4 + 2 * (64 + 64) + 64;
    const size_t firstVert = vertsAt + 4;
    const auto corrupt = [&](size_t offset, std::uint32_t word) {
        std::string bytes = saved;
        bytes.replace(offset, 4, ByteString().Word(word).bytes);
        cskin skinCopy;
        return LoadSkin(skinCopy, bytes);
    };
    EXPECT_EQ(corrupt(at, 0x7FFFFFFF), 0) << "bone count past the end";
    EXPECT_EQ(corrupt(at, 0xFFFFFFFF), 0) << "negative bone count";
    EXPECT_EQ(corrupt(vertsAt, 0x10000000), 0) << "skin vertex count past the end";
    EXPECT_EQ(corrupt(firstVert, 5), 0) << "five influences";
    EXPECT_EQ(corrupt(firstVert + 4, 2), 0) << "a bone index past the bones";
    EXPECT_EQ(corrupt(firstVert + 8, 0xBF800000), 0) << "a weight of -1";
    EXPECT_EQ(corrupt(firstVert + 8, 0x7FC00000), 0) << "a NaN weight";
    EXPECT_EQ(corrupt(firstVert + 20, 7), 1) << "unused pairs are ignored";
}

TEST_F(SkinRecord, OlderRecordsHoldShorterBoneNames) {
    cnode* bone = new cnode("Stem", ccolor());
    MainScene.AddNode(bone, 1);
    cskin skin;
    SetSkinPoints(skin, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
    ByteString section;
    section.Word(1).Name("Stem", 32);
    Translation(section, 0, -1, 0);
    Translation(section, 0, 0, 0).Word(1).Ints({1, 0}).Floats({1});
    section.Ints({-1}).Floats({0}).Ints({-1}).Floats({0}).Ints({-1}).Floats({0});
    // The mesh record of version 12 is the newest one with 32-byte names and no see-through.
    const std::string newest = SavedSkin(skin);
    const std::string meshOnly = newest.substr(0, newest.size() - 72);  // empty skin section
    std::string old = meshOnly.substr(0, 8);
    for (int name = 0; name < 3; ++name) old += meshOnly.substr(8 + 64 * name, 32);
    const size_t afterNames = 8 + 3 * 64, ikEnd = afterNames + 96 + 64;
    old += meshOnly.substr(afterNames, ikEnd - afterNames) + meshOnly.substr(ikEnd + 4);
    cskin loaded;
    ASSERT_EQ(LoadSkin(loaded, old + section.bytes, 12), 1);
    EXPECT_EQ(BonesOf(loaded), (std::vector<cnode*>{bone}));
    loaded.SetSkinVertIndex(0, 0);
    bone->SetPosition(0, cpoint3(0, 1, 5));
    EXPECT_TRUE(NearPoint(loaded.GetDeformedVert(0), cpoint3(1, 0, 5)));
}

TEST_F(SkinRecord, ProjectFilesLinkBonesSavedAfterTheSkin) {
    TempDir folder;
    const std::string path = folder.File("skinned.orv");
    cnode *root = nullptr, *tip = nullptr;
    cskin* skin = MakeBody(root, tip);
    cnode outside("Outside", ccolor());
    skin->AddBone(&outside);
    MainScene.AddNode(skin, 1);  // before its bones: their records come later
    MainScene.AddNode(tip, 1);
    MainScene.AddNode(root, 1);
    SetAnimOn(1);
    tip->SetPosition(40, cpoint3(0, 2, 8));
    SetAnimOn(0);
    ASSERT_EQ(SaveProjectFile(path.c_str()), 1);
    MainScene.Clear();
    ASSERT_EQ(LoadProjectFile(path.c_str()), 1);
    ASSERT_EQ(MainScene.NumNodes(), 3);
    auto* loaded = dynamic_cast<cskin*>(MainScene.FindNode("Body"));
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(BonesOf(*loaded),
              (std::vector<cnode*>{MainScene.FindNode("Root"), MainScene.FindNode("Tip")}))
        << "the bone outside the scene is dropped";
    EXPECT_EQ(loaded->NumSkinVerts(), 2);
    SetAnimTime(20);
    MainScene.UpdateNodesAtAnimTimeChange();
    EXPECT_TRUE(NearPoint(loaded->GetDeformedVert(0), cpoint3(1, 0, 1)));
    EXPECT_TRUE(NearPoint(loaded->GetDeformedVert(1), cpoint3(0, 1, 4)));
}

}  // namespace
