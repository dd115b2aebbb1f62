// Angle brackets: the byte builder beside this file, scene/projectfile.h, would shadow it.
#include <projectfile.h>

#include "ccamera.h"
#include "clight.h"
#include "cmesh.h"
#include "projectheader.h"
#include "scene/aimednodes.h"
#include "scene/projectfile.h"

namespace {

std::uint32_t Word(const std::string& bytes, std::size_t at) {
    std::uint32_t word = 0;
    for (int b = 3; b >= 0; --b) word = word << 8 | static_cast<unsigned char>(bytes[at + b]);
    return word;
}

class ProjectFileTest : public SceneClockTest {
protected:
    void Reset() { SceneClockTest::TearDown(); }
    std::string Write(const std::string& bytes) {
        const std::string written = folder.File("written.orv");
        WriteFileBytes(written, bytes);
        return written;
    }
    int Load(const std::string& bytes) { return LoadProjectFile(Write(bytes).c_str()); }

    TempDir folder;
    const std::string path = folder.File("project.orv");
};

TEST_F(ProjectFileTest, SavedSceneLoadsBackExactly) {
    BuildCarScene();
    MainScene.Select(MainScene.FindNode("Car"));
    ASSERT_EQ(SaveProjectFile(path.c_str()), 1);
    EXPECT_EQ(ReadFileBytes(path + ".saving"), "") << "the scratch file is gone";
    const std::string saved = ReadFileBytes(path);
    Reset();
    ASSERT_EQ(LoadProjectFile(path.c_str()), 1);
    EXPECT_EQ(Values(MainScene.NumSelected(), MainScene.NumHidden()), Values(0, 1));
    ASSERT_EQ(SaveProjectFile(path.c_str()), 1);
    EXPECT_EQ(ReadFileBytes(path), saved) << "the loaded scene saves to the same bytes";

    ProjectInfo info{};
    ASSERT_EQ(ReadProjectInfo(path.c_str(), &info), 1);
    EXPECT_EQ(ReadProjectInfo(Write(saved.substr(0, 71)).c_str(), &info), 0);
    EXPECT_EQ(Values(info.version, info.numNodes, info.numMaterials, info.animStart, info.animEnd,
                     info.animTime, info.animTPF),
              Values(16, 4, 2, 10, 400, 80, 25))
        << "read, then left unchanged by a short header";
}

TEST_F(ProjectFileTest, OlderVersionsLoadWithTheirShorterRecords) {
    for (std::uint32_t version : {6u, 12u}) {
        SCOPED_TRACE(version);
        SetAnimEnd(1000);
        SetAnimStart(500);  // the file's end, 200, lies below this start
        ASSERT_EQ(Load(RobotFile(version).Bytes()), 1);
        ASSERT_EQ(Values(MainScene.NumNodes(), MainScene.NumMaterials()), Values(2, 1));
        cnode* arm = MainScene.GetNodeAt(0);  // the table's order, not the records'
        cnode* base = MainScene.GetNodeAt(1);
        EXPECT_EQ(std::string(arm->GetName()) + "/" + base->GetName() + "/" + arm->GetNotes() +
                      "/" + MainScene.GetMaterialAt(0)->GetName() + "/" + MainScene.GetNotes(),
                  "Arm/TheBaseOfTheRobotWithALongerNam/old/Steel/Old notes");
        EXPECT_EQ(arm->GetParent(), base);
        // Time 50 of the file's clock: halfway between the arm's keys, beside the base at x 2.
        EXPECT_EQ(Values(MainScene.NumHidden(), arm->GetIKNumIterations(), GetAnimTime(),
                         GetAnimEnd(), arm->GetPosition(50).x, MainScene.GetAmbient().g),
                  Values(1, version >= 7 ? 7 : 100, 50, 200, 5, 0.5f));
    }
}

TEST_F(ProjectFileTest, RefusedFilesLeaveTheSceneAsItWas) {
    BuildCarScene();
    ASSERT_EQ(SaveProjectFile(path.c_str()), 1);
    const std::string saved = ReadFileBytes(path);
    // The hand-made control loads; a later writer's fields inside a material frame are skipped.
    ProjectFile good = RobotFile(16);
    MaterialRecordBytes steel;
    steel.name = "Steel";
    steel.amounts[3] = 70;
    good.materialRecords = {steel.Bytes(16) + "future fields"};
    ASSERT_EQ(Load(good.Bytes()), 1);
    EXPECT_EQ(MainScene.GetMaterialAt(0)->GetReflectionAmount(), 70);
    // The scene in place shares names with the files.
    Reset();
    AddToMainScene("Car");
    MainScene.Select(AddToMainScene("Arm"));
    MainScene.AddMaterial(new cmaterial("Chrome"), 1);
    const std::string before = DescribeMainScene(true);

    std::vector<std::pair<std::string, std::string>> refused;
    // The material records are mostly zero-padded paths: every 13th byte inside them suffices.
    const std::size_t materialsAt = Word(saved, kMaterialRecordsAt);
    const std::uint32_t materialBytes = Word(saved, kMaterialRecordsAt + 4);
    for (size_t length = 0; length < saved.size(); ++length) {
        const bool inside = length > materialsAt && length + 1 < materialsAt + materialBytes;
        if (!inside || (length - materialsAt) % 13 == 0)
            refused.push_back({"truncated to " + std::to_string(length), saved.substr(0, length)});
    }
    const auto nodeBytes = static_cast<std::uint32_t>(saved.size()) - Word(saved, kNodeRecordsAt);
    // Header words changed: the magic, the version, where the node records start, the material
    // records' size (a byte short), the node records' size (four bytes to spare).
    const std::size_t at[] = {0, 4, kNodeRecordsAt, kMaterialRecordsAt + 4, kNodeRecordsAt + 4};
    const std::uint32_t words[] = {0x56524F23u ^ 0x20u, 17, 0xFFFFFF00u, materialBytes - 1,
                                   nodeBytes + 4};
    for (int i = 0; i < 5; ++i) {
        std::string bytes = saved + "pad!";
        ProjectFile::SetWord(bytes, at[i], words[i]);
        refused.push_back({"word at " + std::to_string(at[i]), bytes});
    }
    const auto variant = [&](const std::string& why, auto change) {
        ProjectFile file = good;
        change(file);
        refused.push_back({why, file.Bytes()});
    };
    // Node tables and records in place of the robot's.
    const auto nodes = [&](const std::string& why, std::vector<NodeRecord> records) {
        variant(why, [&](ProjectFile& f) {
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
    variant("a name not in the table", [&](ProjectFile& f) { f.nodes = {"Arm", "Leg"}; });
    variant("a material not in the table", [&](ProjectFile& f) { f.materials = {"Wood"}; });
    variant("a short material", [&](ProjectFile& f) { f.materialRecords = {"Steel"}; });

    for (const auto& [why, bytes] : refused) {
        ASSERT_EQ(Load(bytes), 0) << why;
        ASSERT_EQ(DescribeMainScene(true), before) << why;
    }
    EXPECT_EQ(LoadProjectFile(folder.File("missing.orv").c_str()) + LoadProjectFile(nullptr), 0);
    EXPECT_EQ(DescribeMainScene(true), before);
}

TEST_F(ProjectFileTest, LoadingKeepsRepeatedNamesAndFindsTargetsSavedLater) {
    AddToMainScene("Box1")->Attach(AddToMainScene("Sphere1"), 1);
    for (const char* name : {"Twin", "Twin"}) AddToMainScene(name);
    clight* spot = CreateNewLight();
    ccamera* camera = CreateNewCamera();
    MainScene.AddNode(spot, 1);
    MainScene.AddNode(camera, 1);
    // The target's record comes after the records that aim at it.
    spot->SetTarget(AddToMainScene("Aim"));
    camera->SetTarget(spot->GetTarget());
    ASSERT_EQ(SaveProjectFile(path.c_str()), 1);
    Reset();
    for (const char* name : {"Sphere1", "Box1", "Box2"}) AddToMainScene(name);
    ASSERT_EQ(LoadProjectFile(path.c_str()), 1);
    std::string names;
    for (int i = 0; i < MainScene.NumNodes(); ++i) names += MainScene.GetNodeAt(i)->GetName();
    EXPECT_EQ(names, "Box1Sphere1TwinTwinLight1Camera1Aim");
    EXPECT_EQ(MainScene.GetNodeAt(1)->GetParent(), MainScene.GetNodeAt(0));
    auto* loadedSpot = dynamic_cast<clight*>(MainScene.GetNodeAt(4));
    auto* loadedEye = dynamic_cast<ccamera*>(MainScene.GetNodeAt(5));
    EXPECT_TRUE(loadedSpot && loadedEye && loadedSpot->GetTarget() == MainScene.GetNodeAt(6) &&
                loadedEye->GetTarget() == MainScene.GetNodeAt(6));
}

TEST_F(ProjectFileTest, LoadedNodesTakeTheFilesTimeAndTheirOwnMaterials) {
    for (const char* name : {"Chrome", "Rubber", "Glass"})
        MainScene.AddMaterial(new cmaterial(name), 1);
    for (int m : {2, 1}) {
        cmesh* mesh = CreateNewMesh();
        MainScene.AddNode(mesh, 1);
        mesh->SetMaterial(MainScene.GetMaterialAt(m));
    }
    clight* light = CreateNewLight();
    MainScene.AddNode(light, 1);
    SetAnimEnd(400);
    for (auto [t, range] : {std::pair{0, 10.0f}, {160, 30.0f}})
        light->GetLightAnimPtr()->SetKey(t, ccolor(1, 1, 1, 1), 45.0f, 43.0f, range, 1.0f);
    SetAnimTime(80);
    MainScene.UpdateNodesAtAnimTimeChange();
    ASSERT_EQ(SaveProjectFile(path.c_str()), 1);
    // The light's record holds its range at time 80; the file's clock now says 40.
    std::string saved = ReadFileBytes(path);
    saved[PROJECT_ANIM_TIME_AT] = 40;
    Reset();
    ASSERT_EQ(Load(saved), 1);
    ASSERT_EQ(GetAnimTime(), 40);
    auto* loaded = dynamic_cast<clight*>(MainScene.GetNodeAt(2));
    ASSERT_NE(loaded, nullptr);
    EXPECT_FLOAT_EQ(loaded->GetRange(40), 15.0f);
    EXPECT_EQ(std::string(MainScene.GetNodeAt(0)->GetMaterial()->GetName()) +
                  MainScene.GetNodeAt(1)->GetMaterial()->GetName(),
              "GlassRubber");
}

TEST_F(ProjectFileTest, SavingRefusesWhatCouldNotBeReadBack) {
    AddToMainScene("Kept");
    ASSERT_EQ(SaveProjectFile(path.c_str()), 1);
    const std::string kept = ReadFileBytes(path);
    EXPECT_EQ(SaveProjectFile(folder.File("no-such-folder/x.orv").c_str()), 0);
    cnode* x = AddToMainScene("X");
    cnode* y = AddToMainScene("Y");
    y->SetParent(x, 0);
    x->SetParent(y, 0);
    EXPECT_EQ(SaveProjectFile(path.c_str()), 0) << "a parent chain that loops";
    EXPECT_EQ(ReadFileBytes(path), kept) << "the existing file is untouched";
    x->SetParent(nullptr, 0);
    y->SetParent(nullptr, 0);
}

}  // namespace
