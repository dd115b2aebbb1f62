#include "referencehost.h"
#include "undo.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/testsupport.h"

namespace {

using Calls = std::vector<std::string>;

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
    static std::string ProjectFile() {
        char text[256];
        Interface::GetProjectPathName(text);
        return text;
    }
    ReferenceHost& host = ReferenceHost::Instance();
};

TEST_F(ReferenceHostTest, InstallFillsEveryCallbackAndTheApplicationFolder) {
    EXPECT_STREQ(path_app, "/opt/orvane");
#define CORE_EXPECT_SET(ret, name, params) EXPECT_NE(name, nullptr) << #name;
    CORE_HOST_CALLBACKS(CORE_EXPECT_SET)
#undef CORE_EXPECT_SET
    EXPECT_NE(Application_InformDeleted, nullptr);
    EXPECT_EQ(_AbortApp, nullptr) << "failed assertions end the process by default";
}

TEST_F(ReferenceHostTest, ClockSettersMoveTheLibrarysClockAndTheNodesFollow) {
    SetAnimOn(1);
    cnode* node = AddNode("Slider");
    SetAnimTime(80);  // the library's own setter: the node is not told
    node->SetPosition(80, cpoint3(40.0f, -8.0f, 0.0f));
    Interface::SetAnimTime(20);
    // The cache, re-evaluated by the host.
    EXPECT_TRUE(Compare(node->GetPosition(20), cpoint3(10.0f, -2.0f, 0.0f), 1e-5f));
}

TEST_F(ReferenceHostTest, ViewsIgnoreNumbersOutside0To3AndForgetDeletedNodes) {
    cnode* camera = AddNode("Camera");
    EXPECT_EQ(Interface::SetCameraToView(1, camera, 0) + Interface::SetCameraToView(2, camera, 0) +
                  Interface::SetCameraToView(9, camera, 0),
              2);
    host.ClearCalls();
    MainScene.DeleteNodeForGood(camera);
    EXPECT_TRUE(!host.GetState().views[1].camera && !host.GetState().views[2].camera);
    EXPECT_EQ(host.Calls(), Calls{"Application_InformDeleted"});
}

TEST_F(ReferenceHostTest, NewEmptiesTheSceneAndResetsClockUndoAndProject) {
    Interface::SetCameraToView(0, AddNode("Camera"), 0);
    Interface::SetProjectPathName("/home/ann/robot.orv");
    char name[256];
    EXPECT_EQ(Interface::GetProjectName(name), 9);
    EXPECT_STREQ(name, "robot.orv");
    Interface::SetAnimOn(1);
    Interface::SetAnimTime(60);
    ASSERT_EQ(theUndo.Begin(UNDO_CREATE, nullptr), 1);
    AddNode("Extra");
    theUndo.End();

    Interface::New(0, 0, 0);
    EXPECT_EQ(theUndo.NumLevels() + Interface::NumNodes() + GetAnimTime() + IsAnimOn(), 0)
        << "no undo levels of the old scene, no nodes, the clock at 0 and not recording";
    EXPECT_EQ(host.GetState().views[0].camera, nullptr);
    EXPECT_EQ(ProjectFile(), "Untitled");
}

TEST_F(ReferenceHostTest, OpenSaveAndSaveAsGoThroughTheProjectFile) {
    TempDir dir;
    const std::string first = dir.File("first.orv");
    AddNode("Camera");
    ASSERT_EQ(Interface::SaveAs(first.c_str()), 1);
    EXPECT_EQ(ProjectFile(), first) << "the project takes the file it was saved as";
    AddNode("Light");
    ASSERT_EQ(Interface::Save(), 1);  // overwrites first.orv with two nodes
    EXPECT_EQ(Interface::SaveAs(""), 0);
    EXPECT_EQ(Interface::Open(dir.File("second.orv").c_str()), 0);
    EXPECT_EQ(Interface::NumNodes(), 2) << "a failed open keeps the scene";

    Interface::New(0, 0, 0);
    ASSERT_EQ(Interface::Open(first.c_str()), 1);
    EXPECT_EQ(ProjectFile(), first);
    cnode* light = Interface::FindNode("Light");
    ASSERT_NE(light, nullptr);
    Interface::SetCameraToView(3, light, 0);
    ASSERT_EQ(Interface::Open(first.c_str()), 1);
    EXPECT_EQ(host.GetState().views[3].camera, nullptr) << "the old nodes are gone after an open";
}

}  // namespace
