// Angle brackets: the byte builder beside this file, scene/projectfile.h, would shadow it.
#include <projectfile.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "scene/aimednodes.h"
#include "scene/projectfile.h"
#include "support/testsupport.h"

namespace {

std::uint32_t Word(const std::string& bytes, std::size_t at) {
    std::uint32_t word = 0;
    for (int b = 3; b >= 0; --b) word = word << 8 | static_cast<unsigned char>(bytes[at + b]);
    return word;
}

class ProjectFileTest : public ::testing::Test {
protected:
    void SetUp() override { Reset(); }
    void TearDown() override { Reset(); }
    static void Reset() {
        MainScene.Clear();
        ResetAnim();
        SetAnimOn(0);
    }

    static cnode* Add(const char* name) { return AddToMainScene(name); }

    std::string Write(const std::string& bytes) {
        const std::string path = folder.File("written.orv");
        WriteFileBytes(path, bytes);
        return path;
    }

    TempDir folder;
    const std::string path = folder.File("project.orv");
};

TEST_F(ProjectFileTest, SavedSceneLoadsBackExactly) {
    BuildCarScene();
    MainScene.Select(MainScene.FindNode("Car"));
    ASSERT_EQ(SaveProjectFile(path.c_str()), 1);
    EXPECT_EQ(ReadFileBytes(path + ".saving"), "") << "the scratch file is gone";
    const std::string saved = ReadFileBytes(path);
    MainScene.DeselectAll();  // the selection is not saved
    const std::string expected = DescribeMainScene(false);

    Reset();
    ASSERT_EQ(LoadProjectFile(path.c_str()), 1);
    EXPECT_EQ(DescribeMainScene(false), expected);
    ASSERT_EQ(SaveProjectFile(path.c_str()), 1);
    EXPECT_EQ(ReadFileBytes(path), saved) << "the loaded scene saves to the same bytes";

    ProjectInfo info{};
    ASSERT_EQ(ReadProjectInfo(path.c_str(), &info), 1);
    EXPECT_EQ(ReadProjectInfo(Write(saved.substr(0, 71)).c_str(), &info), 0);
    EXPECT_EQ(Values(info.version, info.numNodes, info.numMaterials, info.animStart, info.animEnd,
                     info.animTime, info.animTPF),
              Values(16, 5, 3, 10, 400, 80, 25))
        << "read, then left unchanged by a short header";
}

TEST_F(ProjectFileTest, OlderVersionsLoadWithTheirShorterRecords) {
    for (std::uint32_t version : {6u, 12u}) {
        SCOPED_TRACE(version);
        SetAnimEnd(1000);
        SetAnimStart(500);  // the file's end, 200, lies below this start
        ASSERT_EQ(LoadProjectFile(Write(RobotFile(version).Bytes()).c_str()), 1);
        ASSERT_EQ(MainScene.NumNodes(), 2);
        cnode* arm = MainScene.GetNodeAt(0);
        cnode* base = MainScene.GetNodeAt(1);
        EXPECT_STREQ(arm->GetName(), "Arm") << "the table's order, not the records'";
        EXPECT_STREQ(base->GetName(), "TheBaseOfTheRobotWithALongerNam");
        EXPECT_EQ(arm->GetParent(), base);
        EXPECT_EQ(MainScene.NumHidden(), 1);
        EXPECT_STREQ(arm->GetNotes(), "old");
        const bool ik = version >= 7;
        EXPECT_EQ(Values(arm->GetSeeThroughFlag(), arm->IsIKLocked(), arm->GetIKNumIterations(),
                         arm->GetIKMaxRot().x),
                  Values(0, ik, ik ? 7 : 100, ik ? 90 : 180));
        // Time 50 of the file's clock: halfway between the arm's keys, above the base at y 2.
        EXPECT_EQ(Values(GetAnimTime(), GetAnimEnd(), arm->GetPosition(50).x,
                         arm->GetPosition(50).y, MainScene.GetAmbient().g),
                  Values(50, 200, 3, 2, 0.5f));
        ASSERT_EQ(MainScene.NumMaterials(), 1);
        EXPECT_STREQ(MainScene.GetMaterialAt(0)->GetName(), "Steel");
        EXPECT_STREQ(MainScene.GetNotes(), "Old notes");
    }
}

TEST_F(ProjectFileTest, RefusedFilesLeaveTheSceneAsItWas) {
    BuildCarScene();
    ASSERT_EQ(SaveProjectFile(path.c_str()), 1);
    const std::string saved = ReadFileBytes(path);
    const WholeProjectFile good = RobotFile(16);
    ASSERT_EQ(LoadProjectFile(Write(good.Bytes()).c_str()), 1) << "the hand-made control loads";
    // The scene in place shares names with the files.
    Reset();
    Add("Car");
    MainScene.Select(Add("Arm"));
    MainScene.AddMaterial(new cmaterial("Chrome"), 1);
    const std::string before = DescribeMainScene(true);

    std::vector<std::pair<std::string, std::string>> refused;
    // The material records are mostly zero-padded paths: every 13th byte inside them suffices.
    const std::size_t materialsAt = Word(saved, kMaterialRecordsAt);
    const std::size_t materialsEnd = materialsAt + Word(saved, kMaterialRecordsAt + 4);
    for (size_t length = 0; length < saved.size(); ++length) {
        const bool insideMaterials = length > materialsAt && length + 1 < materialsEnd;
        if (insideMaterials && (length - materialsAt) % 13 != 0) continue;
        refused.push_back({"truncated to " + std::to_string(length), saved.substr(0, length)});
    }
    const auto changed = [&](const std::string& why, std::size_t at, std::uint32_t word) {
        std::string bytes = saved + "pad!";
        ProjectFile::SetWord(bytes, at, word);
        refused.push_back({why, bytes});
    };
    changed("wrong magic", 0, 0x56524F23u ^ 0x20u);
    changed("version 17", 4, 17);
    changed("version 0", 4, 0);
    changed("absurd node count", kNodeCountAt, 0x7FFFFFFF);
    changed("node records outside the file", kNodeRecordsAt, 0xFFFFFF00u);
    changed("settings larger than the file", kSettingsAt + 4, 0x7FFFFFFF);
    const auto materialBytes =
        static_cast<std::uint32_t>(3 * (4 + DefaultMaterialRecord("Chrome", 16).size()));
    changed("material records one byte short", kMaterialRecordsAt + 4, materialBytes - 1);
    changed("material records with bytes to spare", kMaterialRecordsAt + 4, materialBytes + 1);
    const auto nodeBytes = static_cast<std::uint32_t>(saved.size()) - Word(saved, kNodeRecordsAt);
    changed("node records with bytes to spare", kNodeRecordsAt + 4, nodeBytes + 4);

    const auto variant = [&](const std::string& why, auto change) {
        WholeProjectFile file = good;
        change(file);
        refused.push_back({why, file.Bytes()});
    };
    // Node tables and records in place of the robot's.
    const auto nodes = [&](const std::string& why, std::vector<NodeRecord> records) {
        variant(why, [&](WholeProjectFile& f) {
            f.nodes.clear();
            f.nodeRecords.clear();
            for (const NodeRecord& r : records) {
                f.nodes.push_back(r.name);
                f.nodeRecords.push_back(r.Bytes(16));
            }
        });
    };
    NodeRecord a, b;
    a.name = a.parent = "A";
    nodes("its own parent", {a});
    a.parent = b.name = "B";
    b.parent = "A";
    nodes("a parent cycle", {a, b});
    b.type = b.recordType = TYPE_MESH;
    b.parent = "";
    nodes("a type the library cannot create", {b});
    b.type = TYPE_NODE;
    nodes("a record of another type", {b});
    variant("a name not in the table", [&](WholeProjectFile& f) { f.nodes = {"Arm", "Leg"}; });
    variant("a material not in the table", [&](WholeProjectFile& f) { f.materials = {"Wood"}; });
    variant("a short material", [&](WholeProjectFile& f) { f.materialRecords = {"Steel"}; });

    for (const auto& [why, bytes] : refused) {
        ASSERT_EQ(LoadProjectFile(Write(bytes).c_str()), 0) << why;
        ASSERT_EQ(DescribeMainScene(true), before) << why;
    }
    EXPECT_EQ(LoadProjectFile(folder.File("missing.orv").c_str()), 0);
    EXPECT_EQ(LoadProjectFile(nullptr), 0);
    EXPECT_EQ(DescribeMainScene(true), before);
}

TEST_F(ProjectFileTest, LoadingKeepsTheFilesNamesOverClashingOnes) {
    Add("Box1")->Attach(Add("Sphere1"), 1);
    Add("Twin");
    Add("Twin");
    MainScene.AddMaterial(new cmaterial("Mat1"), 1);
    ASSERT_EQ(SaveProjectFile(path.c_str()), 1);
    Reset();
    Add("Sphere1");
    Add("Box1");
    Add("Box2");
    MainScene.AddMaterial(new cmaterial("Mat1"), 1);
    ASSERT_EQ(LoadProjectFile(path.c_str()), 1);
    std::string names;
    for (int i = 0; i < MainScene.NumNodes(); ++i) names += MainScene.GetNodeAt(i)->GetName();
    EXPECT_EQ(names, "Box1Sphere1TwinTwin");
    EXPECT_EQ(MainScene.GetNodeAt(1)->GetParent(), MainScene.GetNodeAt(0));
    EXPECT_EQ(MainScene.GetNodeAt(0)->NumChildren(), 1);
    ASSERT_EQ(MainScene.NumMaterials(), 1);
    EXPECT_STREQ(MainScene.GetMaterialAt(0)->GetName(), "Mat1");
}

TEST_F(ProjectFileTest, MaterialsKeepTheirWholeRecordAndFramesMaySpareBytes) {
    auto* glass = new cmaterial("Glass");
    glass->SetOpacityAmount(35);
    glass->SetRefractionAmount(640);
    glass->SetShininess(12.0f);
    glass->GetImage(MAP_DIFFUSE)->SetPathName(const_cast<char*>("maps/missing.png"));
    MainScene.AddMaterial(glass, 1);
    ASSERT_EQ(SaveProjectFile(path.c_str()), 1);
    Reset();
    ASSERT_EQ(LoadProjectFile(path.c_str()), 1);
    ASSERT_EQ(MainScene.NumMaterials(), 1);
    cmaterial* loaded = MainScene.GetMaterialAt(0);
    EXPECT_EQ(
        Values(loaded->GetOpacityAmount(), loaded->GetRefractionAmount(), loaded->GetShininess()),
        Values(35, 640, 12));
    EXPECT_STREQ(loaded->GetImage(MAP_DIFFUSE)->GetPathNamePtr(), "maps/missing.png");
    // A later writer's extra fields inside the frame are skipped.
    WholeProjectFile file = RobotFile(16);
    MaterialRecordBytes steel;
    steel.name = "Steel";
    steel.amounts[3] = 70;
    file.materialRecords = {steel.Bytes(16) + "future fields"};
    ASSERT_EQ(LoadProjectFile(Write(file.Bytes()).c_str()), 1);
    EXPECT_EQ(MainScene.GetMaterialAt(0)->GetReflectionAmount(), 70);
}

TEST_F(ProjectFileTest, SavingRefusesWhatCouldNotBeReadBack) {
    Add("Kept");
    ASSERT_EQ(SaveProjectFile(path.c_str()), 1);
    const std::string kept = ReadFileBytes(path);
    EXPECT_EQ(SaveProjectFile(folder.File("no-such-folder/x.orv").c_str()), 0);
    EXPECT_EQ(SaveProjectFile(""), 0);
    cnode* x = Add("X");
    cnode* y = Add("Y");
    x->Attach(y, 0);
    y->SetParent(x, 0);
    y->Attach(x, 0);
    x->SetParent(y, 0);
    EXPECT_EQ(SaveProjectFile(path.c_str()), 0) << "a parent chain that loops";
    EXPECT_EQ(ReadFileBytes(path), kept) << "the existing file is untouched";
    x->SetParent(nullptr, 0);
    y->Detach(x, 0);
}

}  // namespace
