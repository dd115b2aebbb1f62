#include "referencehost.h"
#include "undo.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/testsupport.h"

namespace {

class ReferenceHostTest : public ::testing::Test {
protected:
    void SetUp() override { host.Install("/opt/orvane"); }
    void TearDown() override {
        MainScene.Clear();  // destroys every node and material a test handed to the scene
        host.Uninstall();
        ResetAnim();
        SetAnimOn(0);
    }
    // A node of MainScene, added through the host.
    static cnode* AddNode(char const* name) {
        auto* node = new cnode(name);
        Interface::AddToScene(node, 0);
        return node;
    }
    static std::string ProjectName() {
        char name[256];
        Interface::GetProjectName(name);
        return name;
    }
    ReferenceHost& host = ReferenceHost::Instance();
};

// A node that keeps the material it is given, as meshes do.
class PaintedNode : public cnode {
public:
    using cnode::cnode;
    void SetMaterial(cmaterial* m) override { material = m; }
    cmaterial* GetMaterial() const override { return material; }

private:
    cmaterial* material = nullptr;
};

TEST_F(ReferenceHostTest, InstallFillsEveryCallbackAndTheApplicationFolder) {
    EXPECT_STREQ(path_app, "/opt/orvane");
#define CORE_EXPECT_SET(ret, name, params) EXPECT_NE(name, nullptr) << #name;
    CORE_HOST_CALLBACKS(CORE_EXPECT_SET)
#undef CORE_EXPECT_SET
    EXPECT_NE(Application_InformDeleted, nullptr);
    EXPECT_EQ(_AbortApp, nullptr) << "failed assertions end the process by default";
    host.Uninstall();
#define CORE_EXPECT_NULL(ret, name, params) EXPECT_EQ(name, nullptr) << #name;
    CORE_HOST_CALLBACKS(CORE_EXPECT_NULL)
#undef CORE_EXPECT_NULL
}

TEST_F(ReferenceHostTest, ClockSettersMoveTheLibrarysClockAndTheNodesFollow) {
    SetAnimOn(1);
    cnode* node = AddNode("Slider");
    node->SetPosition(0, cpoint3(0.0f, 0.0f, 0.0f));
    SetAnimTime(80);  // the library's own setter: the node is not told
    node->SetPosition(80, cpoint3(40.0f, -8.0f, 0.0f));
    host.ClearCalls();
    Interface::SetAnimTime(20);
    EXPECT_EQ(GetAnimTime(), 20);
    // The cache, re-evaluated by the host.
    EXPECT_TRUE(Compare(node->GetPosition(20), cpoint3(10.0f, -2.0f, 0.0f), 1e-5f));
    Interface::SetAnimEnd(400);
    Interface::SetAnimTPF(0);
    EXPECT_EQ(GetAnimEnd(), 400);
    EXPECT_EQ(GetAnimTPF(), 1);
    Interface::ResetAnim();
    EXPECT_EQ(GetAnimTime(), 0);
    EXPECT_FLOAT_EQ(node->GetPosition(0).x, 0.0f);
    EXPECT_EQ(host.Calls(), (std::vector<std::string>{"I_SetAnimTime", "I_SetAnimEnd",
                                                      "I_SetAnimTPF", "I_ResetAnim"}));
}

TEST_F(ReferenceHostTest, SceneCallbacksActOnMainScene) {
    cnode* a = new cnode("Box");
    cnode* b = new cnode("Box");
    cnode* c = new cnode("Cone");
    Interface::AddToScene(b, 0);
    cnode* batch[] = {a, b, c};
    Interface::AddNodeArrayToScene(batch, 3, 1);
    EXPECT_EQ(MainScene.NumNodes(), 2) << "the batch stops at the node already in the scene";
    EXPECT_EQ(Interface::GetNodeAt(1), a);
    EXPECT_EQ(Interface::Find(c), -1);
    EXPECT_EQ(Interface::FindNode("Box"), b);
    delete c;

    auto* painted = new PaintedNode("Painted");
    Interface::AddToScene(painted, 0);
    auto* steel = new cmaterial("Steel");
    auto* glass = new cmaterial("Glass");
    cmaterial* mats[] = {steel, glass};
    Interface::AddMatArrayToScene(mats, 2, 0);
    painted->SetMaterial(glass);
    EXPECT_EQ(Interface::FindMaterial("Glass"), glass);
    EXPECT_EQ(Interface::GetMaterialAt(0), steel);
    EXPECT_EQ(Interface::Find(glass), 1);
    EXPECT_EQ(Interface::IsMaterialUsed(glass), 1);
    EXPECT_EQ(Interface::IsMaterialUsed(steel), 0);

    Interface::SetSceneAmbient(ccolor(0.3f, 0.4f, 0.5f));
    Interface::SetFogValues(cpoint3(1.0f, 0.0f, 0.0f), 5.0f, 50.0f, 0.5f);
    Interface::EnableFog(1);
    Interface::CopyNotes("scene notes", 5);
    Interface::AddNotes(" more", 5);
    cpoint3 fog;
    float start = 0, end = 0, density = 0;
    MainScene.GetFogValues(fog, start, end, density);
    EXPECT_EQ(fog.x, 1.0f);
    EXPECT_EQ(end, 50.0f);
    EXPECT_EQ(MainScene.IsFogEnabled(), 1);
    EXPECT_EQ(MainScene.GetAmbient().g, 0.4f);
    EXPECT_STREQ(MainScene.GetNotes(), "scene more");
    EXPECT_EQ(Interface::NotesSize(), 10);
    Interface::ClearNotes();
    EXPECT_EQ(MainScene.GetNotes(), nullptr);
}

TEST_F(ReferenceHostTest, SelectionVisibilityAndRemovalAreTheScenesOwn) {
    cnode* a = AddNode("A");
    cnode* b = AddNode("B");
    a->SetPosition(GetAnimTime(), cpoint3(2.0f, 0.0f, 0.0f));
    b->SetPosition(GetAnimTime(), cpoint3(4.0f, 6.0f, 0.0f));
    Interface::Select(a);
    Interface::Select(b);
    EXPECT_EQ(Interface::GetSelNode(), nullptr) << "only a single selection is answered";
    Interface::UpdateSelPos();
    EXPECT_TRUE(Compare(Interface::GetSelCenter(), cpoint3(3.0f, 3.0f, 0.0f), 1e-5f));
    Interface::Hide(b);
    EXPECT_EQ(b->GetFlags(), FLAG_HIDDEN) << "a hidden node loses its selection";
    EXPECT_EQ(Interface::GetSelNode(), a);
    {
        AssertRecorder asserts;
        Interface::Select(b);
        EXPECT_EQ(asserts.Count(), 1) << "a hidden node cannot be selected";
    }
    Interface::UnhideAll();
    Interface::DeselectAll();
    EXPECT_EQ(Interface::NumSelNodes() + Interface::NumHiddenNodes(), 0);

    Interface::Select(a);
    Interface::RemoveFromScene(a, 0);
    EXPECT_EQ(Interface::NumSelNodes(), 0);
    EXPECT_EQ(Interface::Find(a), -1);
    EXPECT_EQ(a->GetFlags(), FLAG_DELETED);
    a->Delete();  // the caller owns a removed node
    EXPECT_EQ(Interface::SetCameraToView(1, b, 0) + Interface::SetCameraToView(2, b, 0), 2);
    host.ClearCalls();
    MainScene.DeleteNodeForGood(b);
    EXPECT_EQ(host.GetState().views[1].camera, nullptr) << "a deleted node leaves the views";
    EXPECT_EQ(host.GetState().views[2].camera, nullptr);
    EXPECT_EQ(host.Calls(), std::vector<std::string>{"Application_InformDeleted"});
    EXPECT_EQ(Interface::NumNodes(), 0);
}

TEST_F(ReferenceHostTest, NewEmptiesTheSceneAndResetsClockAndProject) {
    cnode* camera = AddNode("Camera");
    Interface::AddToScene(new cmaterial("Steel"), 0);
    Interface::SetCameraToView(0, camera, 0);
    Interface::SetSceneBkColor(ccolor(1.0f, 1.0f, 1.0f));
    Interface::SetProjectPathName("/home/ann/robot.orv");
    Interface::SetAnimOn(1);
    Interface::SetAnimTime(60);
    char create[] = "Create";
    ASSERT_EQ(theUndo.Begin(UNDO_CREATE, create), 1);
    AddNode("Extra");
    theUndo.End();
    ASSERT_EQ(theUndo.NumLevels(), 1);

    Interface::New(0, 0, 0);
    EXPECT_EQ(theUndo.NumLevels(), 0) << "levels of the old scene are dropped";
    EXPECT_EQ(Interface::NumNodes() + Interface::NumMaterials(), 0);
    EXPECT_EQ(Interface::GetSceneBkColor().r, 0.0f);
    EXPECT_EQ(host.GetState().views[0].camera, nullptr);
    EXPECT_EQ(GetAnimTime(), 0);
    EXPECT_EQ(IsAnimOn(), 0);
    EXPECT_EQ(ProjectName(), "Untitled");
    EXPECT_EQ(Interface::Save(), 0) << "an untitled project has no file to save to";
}

TEST_F(ReferenceHostTest, OpenSaveAndSaveAsGoThroughTheProjectFile) {
    TempDir dir;
    const std::string first = dir.File("first.orv"), second = dir.File("second.orv");
    cnode* camera = AddNode("Camera");
    Interface::SetAnimEnd(300);
    Interface::SetAnimTime(120);
    ASSERT_EQ(Interface::SaveAs(first.c_str()), 1);
    char text[256];
    Interface::GetProjectPathName(text);
    EXPECT_EQ(std::string(text), first) << "the project takes the file it was saved as";
    AddNode("Light");
    ASSERT_EQ(Interface::Save(), 1);  // overwrites first.orv with two nodes
    EXPECT_EQ(Interface::SaveAs(""), 0);
    EXPECT_EQ(Interface::Open(second.c_str()), 0);
    EXPECT_NE(Interface::FindNode("Light"), nullptr) << "a failed open keeps the scene";

    Interface::SetCameraToView(3, camera, 0);
    Interface::New(0, 0, 0);
    ASSERT_EQ(Interface::Open(first.c_str()), 1);
    EXPECT_EQ(Interface::NumNodes(), 2);
    EXPECT_NE(Interface::FindNode("Camera"), nullptr);
    EXPECT_NE(Interface::FindNode("Light"), nullptr);
    EXPECT_EQ(GetAnimEnd(), 300);
    EXPECT_EQ(GetAnimTime(), 120);
    EXPECT_EQ(ProjectName(), "first.orv");
    Interface::SetCameraToView(3, Interface::FindNode("Camera"), 0);
    ASSERT_EQ(Interface::Open(first.c_str()), 1);
    EXPECT_EQ(host.GetState().views[3].camera, nullptr) << "the old nodes are gone after an open";
}

TEST_F(ReferenceHostTest, KeepsProjectNamesAndViews) {
    Interface::SetProjectPathName("/home/ann/scenes/robot.orv");
    char text[256];
    EXPECT_EQ(Interface::GetProjectName(text), 9);
    EXPECT_STREQ(text, "robot.orv");
    Interface::GetProjectPath(text);
    EXPECT_STREQ(text, "/home/ann/scenes");
    Interface::GetProjectPathName(text);
    EXPECT_STREQ(text, "/home/ann/scenes/robot.orv");

    Interface::SetActiveView(2);
    Interface::MaximizeActiveView(1);
    Interface::SetActiveView(9);
    EXPECT_EQ(Interface::ActiveViewID(), 2) << "views outside 0..3 are ignored";
    EXPECT_EQ(Interface::IsViewMaximized(2), 1);
    EXPECT_EQ(Interface::IsActiveViewMaximized(), 1);
    Interface::EnableView(1, 0);
    EXPECT_EQ(Interface::IsViewEnabled(1) + Interface::IsViewEnabled(9), 0);
    EXPECT_EQ(Interface::SetCameraToView(9, nullptr, 0), 0);
}

TEST_F(ReferenceHostTest, AssertionsCanBeCountedInsteadOfEndingTheProcess) {
    host.Install("/nonexistent", false);
    SetMessageBoxHandler([](char const*, char const*, unsigned int) -> int { return IDOK; });
    MyAssertFailedLine("x", "Core/test", 1);
    SetMessageBoxHandler(nullptr);
    EXPECT_EQ(host.FailedAssertions(), 1);
}

}  // namespace
