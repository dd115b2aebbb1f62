// Angle brackets: the byte builder beside this file, scene/projectfile.h, would shadow it.
#include <projectfile.h>

#include <algorithm>

#include "ccamera.h"
#include "clight.h"
#include "cmesh.h"
#include "cskin.h"
#include "projectheader.h"
#include "scene/aimednodes.h"
#include "scene/projectfile.h"

namespace {

// Where two byte strings first differ ("same" when they do not), so that a failure does not
// print megabytes.
std::string FirstDifference(const std::string& a, const std::string& b) {
    const auto at = std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin();
    if (a.size() == b.size() && static_cast<std::size_t>(at) == a.size()) return "same";
    return "differ at " + std::to_string(at) + " of " + std::to_string(a.size()) + "/" +
           std::to_string(b.size());
}

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

// Some nodes of the marked scene share the name "Twin". Loading pairs a name with the nodes
// that bear it in file order, so the twins are alike in all else: plain roots without keys.
bool IsTwin(int i) {
    return i % 97 == 5;
}

// A scene of 5000 nodes and a skin, so that its file marks four records, with the kinds,
// keys and links that reading the records on several threads must leave exactly as one
// thread does. With `hierarchyOrder` the scene keeps its nodes in the order the file's
// records take (chains of ten); otherwise trees reach across the marks (node i under node
// i / 2 for every fourth node) and the records take another order than the scene's.
void BuildMarkedScene(bool hierarchyOrder) {
    constexpr int kCount = 5000;
    for (const char* name : {"Chrome", "Rubber"}) MainScene.AddMaterial(new cmaterial(name), 1);
    std::vector<cnode*> nodes(kCount);
    const auto at = [&nodes](int i) { return nodes[static_cast<size_t>(i)]; };
    for (int i = 0; i < kCount; ++i) {
        cnode*& node = nodes[static_cast<size_t>(i)];
        if (IsTwin(i)) {
            node = new cnode("Twin", ccolor(0.1f, 0.2f, 0.3f, 1.0f));
            continue;
        }
        if (i % 50 == 7) {
            cmesh* mesh = CreateNewMesh();
            mesh->SetMaterial(MainScene.GetMaterialAt(i % 2));
            node = mesh;
        } else if (i % 100 == 9) {
            node = CreateNewLight();
        } else if (i % 100 == 59) {
            node = CreateNewCamera();
        } else {
            node = new cnode("", ccolor(0.1f, 0.2f, 0.3f, 1.0f));
        }
        node->SetName(("N" + std::to_string(i)).c_str());
        if (i % 13 == 0) node->SetFlags(FLAG_HIDDEN);
    }
    for (int i = 1; i < kCount; ++i) {
        const int parent = hierarchyOrder ? (i % 10 ? i - 1 : -1) : (i % 4 == 1 ? i / 2 : -1);
        if (parent >= 0 && !IsTwin(parent) && !IsTwin(i)) at(parent)->Attach(at(i), 1);
    }
    MainScene.AddNodeArray(nodes.data(), kCount, 1);
    SetAnimOn(1);
    for (int i = 0; i < kCount; i += 3)
        if (!IsTwin(i)) at(i)->SetPosition(40 + i % 5, cpoint3(1, 2, 3));
    SetAnimOn(0);
    // Lights and cameras aim at nodes saved before and after them, a skin at bones all over.
    for (int i = 9; i < kCount; i += 50) {
        cnode* target = at((i * 7 + 2500) % kCount);
        if (auto* light = dynamic_cast<clight*>(at(i))) light->SetTarget(target);
        if (auto* camera = dynamic_cast<ccamera*>(at(i))) camera->SetTarget(target);
    }
    cskin* skin = CreateNewSkin();
    MainScene.AddNode(skin, 1);
    for (int bone : {4999, 10, 2048, 3333}) skin->AddBone(at(bone));
}

TEST_F(ProjectFileTest, RecordsReadOnSeveralThreadsGiveTheSceneOneThreadGives) {
    for (bool hierarchyOrder : {false, true}) {
        SCOPED_TRACE(hierarchyOrder);
        Reset();
        BuildMarkedScene(hierarchyOrder);
        ASSERT_EQ(SaveProjectFile(path.c_str()), 1);
        const std::string saved = ReadFileBytes(path);
        // The marks: a stride of 1024, then records 1024, 2048, 3072 and 4096.
        const std::uint32_t marksAt = Word(saved, PROJECT_NODE_MARKS_OFFSET_AT);
        ASSERT_EQ(Values(Word(saved, PROJECT_NODE_MARKS_SIZE_AT), Word(saved, marksAt)),
                  Values(20u, 1024u));
        std::string loaded[3];
        const int threads[] = {1, 2, 8};
        for (int t = 0; t < 3; ++t) {
            SetProjectLoadThreads(threads[t]);
            Reset();
            ASSERT_EQ(LoadProjectFile(path.c_str()), 1) << threads[t];
            loaded[t] = DescribeMainScene(false);
            EXPECT_EQ(MainScene.NumHidden(), 381) << "every 13th node but four twins";
        }
        SetProjectLoadThreads(0);
        EXPECT_EQ(FirstDifference(loaded[0].substr(1, saved.size()), saved), "same")
            << "the loaded scene saves alike";
        EXPECT_EQ(FirstDifference(loaded[1], loaded[0]), "same");
        EXPECT_EQ(FirstDifference(loaded[2], loaded[0]), "same");
        auto* skin = dynamic_cast<cskin*>(MainScene.FindNode("Skin1"));
        ASSERT_TRUE(skin && skin->NumBones() == 4);
        EXPECT_EQ(std::string(skin->GetBone(0)->GetName()) + skin->GetBone(3)->GetName(),
                  "N4999N3333");
    }
}

TEST_F(ProjectFileTest, MarksThatDisagreeWithTheRecordsAreRefused) {
    BuildMarkedScene(false);
    ASSERT_EQ(SaveProjectFile(path.c_str()), 1);
    const std::string saved = ReadFileBytes(path);
    Reset();
    AddToMainScene("Kept");
    const std::string before = DescribeMainScene(true);
    const std::uint32_t marksAt = Word(saved, PROJECT_NODE_MARKS_OFFSET_AT);
    const std::uint32_t marksSize = Word(saved, PROJECT_NODE_MARKS_SIZE_AT);
    const auto changed = [&](std::size_t at, std::uint32_t word) {
        std::string bytes = saved;
        ProjectFile::SetWord(bytes, at, word);
        return bytes;
    };
    const std::pair<const char*, std::string> refused[] = {
        {"marks inside the records", changed(PROJECT_NODE_MARKS_OFFSET_AT, Word(saved, 40) + 8)},
        {"one mark too few", changed(PROJECT_NODE_MARKS_SIZE_AT, marksSize - 4)},
        {"a size past the end", changed(PROJECT_NODE_MARKS_SIZE_AT, marksSize + 4)},
        {"a size of no whole words", changed(PROJECT_NODE_MARKS_SIZE_AT, marksSize - 1)},
        {"an offset without a size", changed(PROJECT_NODE_MARKS_SIZE_AT, 0)},
        {"a stride of 0", changed(marksAt, 0)},
        {"a stride the count does not fit", changed(marksAt, 2048)},
        {"a mark inside a record", changed(marksAt + 8, Word(saved, marksAt + 8) + 4)},
        {"marks that do not rise", changed(marksAt + 8, Word(saved, marksAt + 4))},
    };
    for (int threads : {1, 3}) {
        SetProjectLoadThreads(threads);
        for (const auto& [why, bytes] : refused) {
            ASSERT_EQ(Load(bytes), 0) << why << " on threads: " << threads;
            ASSERT_EQ(DescribeMainScene(true), before) << why;
        }
    }
    SetProjectLoadThreads(0);
    // A file without marks is read on the calling thread alone.
    std::string unmarked = changed(PROJECT_NODE_MARKS_OFFSET_AT, 0);
    ProjectFile::SetWord(unmarked, PROJECT_NODE_MARKS_SIZE_AT, 0);
    ASSERT_EQ(Load(unmarked), 1);
    EXPECT_EQ(MainScene.NumNodes(), 5001);
}

TEST_F(ProjectFileTest, AnyStrideOfMarksReadsAsTheRecordsAlone) {
    ProjectFile file = RobotFile(16);
    for (const char* name : {"C", "D", "E"}) {
        NodeRecord extra;
        extra.name = name;
        extra.parent = "Arm";
        extra.keys = {{0, 3.0f}, {20, 4.0f}};
        file.nodes.push_back(name);
        file.nodeRecords.push_back(extra.Bytes(16));
    }
    ASSERT_EQ(Load(file.Bytes()), 1);
    const std::string unmarked = DescribeMainScene(false);
    for (std::uint32_t stride : {1u, 2u, 4u, 5u}) {
        file.markStride = stride;
        for (int threads : {1, 2, 5}) {
            SetProjectLoadThreads(threads);
            Reset();
            ASSERT_EQ(Load(file.Bytes()), 1) << stride << " " << threads;
            EXPECT_EQ(DescribeMainScene(false), unmarked) << stride << " " << threads;
        }
    }
    SetProjectLoadThreads(0);
    EXPECT_EQ(MainScene.FindNode("Arm")->NumChildren(), 3);
}

TEST_F(ProjectFileTest, LoadedSelectionIsCountedAndCentred) {
    ProjectFile file = RobotFile(16);
    NodeRecord picked, hidden;
    picked.name = "Picked";
    picked.flags = FLAG_SELECTED;
    picked.keys = {{0, 6.0f}};
    hidden.name = "Hidden";
    hidden.flags = FLAG_SELECTED | FLAG_HIDDEN | FLAG_DELETED;
    for (const NodeRecord& r : {picked, hidden}) {
        file.nodes.push_back(r.name);
        file.nodeRecords.push_back(r.Bytes(16));
    }
    ASSERT_EQ(Load(file.Bytes()), 1);
    cnode* loaded = MainScene.FindNode("Picked");
    EXPECT_EQ(Values(MainScene.NumSelected(), MainScene.NumHidden(),
                     MainScene.FindNode("Hidden")->GetFlags()),
              Values(1, 2, static_cast<unsigned long>(FLAG_HIDDEN)))
        << "hidden sheds the selection and the deleted mark";
    EXPECT_EQ(MainScene.GetSelNode(), loaded);
    EXPECT_EQ(MainScene.GetSelCenter().x, 6.0f);
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
