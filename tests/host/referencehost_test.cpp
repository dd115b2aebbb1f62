#include "referencehost.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

class ReferenceHostTest : public ::testing::Test {
protected:
    void SetUp() override { ReferenceHost::Instance().Install("/opt/orvane"); }
    void TearDown() override {
        ReferenceHost::Instance().Uninstall();
        ResetAnim();
    }
    ReferenceHost& host = ReferenceHost::Instance();
};

cnode* Node(int i) {
    return reinterpret_cast<cnode*>(static_cast<std::uintptr_t>(0x1000 * i));
}

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

TEST_F(ReferenceHostTest, ClockSettersThroughTheFacadeMoveTheLibrarysClock) {
    Interface::SetAnimEnd(400);
    Interface::SetAnimTime(320);
    Interface::SetAnimTPF(0);
    EXPECT_EQ(GetAnimEnd(), 400);
    EXPECT_EQ(GetAnimTime(), 320);
    EXPECT_EQ(GetAnimTPF(), 1);
    Interface::ResetAnim();
    EXPECT_EQ(GetAnimTime(), 0);
    EXPECT_EQ(host.Calls(), (std::vector<std::string>{"I_SetAnimEnd", "I_SetAnimTime",
                                                      "I_SetAnimTPF", "I_ResetAnim"}));
}

TEST_F(ReferenceHostTest, KeepsSceneListsWithHiddenObjectsNeverSelected) {
    cnode* nodes[] = {Node(1), Node(2), Node(1), Node(3)};
    Interface::AddNodeArrayToScene(nodes, 4, 0);
    EXPECT_EQ(Interface::GetNodeAt(2), Node(3)) << "a node already held is not added twice";
    EXPECT_EQ(Interface::GetNodeAt(3), nullptr);
    EXPECT_EQ(Interface::Find(Node(2)), 1);

    Interface::Select(Node(2));
    EXPECT_EQ(Interface::GetSelNode(), Node(2));
    Interface::Hide(Node(2));
    EXPECT_EQ(Interface::GetSelNode(), nullptr);
    Interface::Select(Node(2));
    EXPECT_EQ(Interface::GetSelNode(), nullptr) << "a hidden node cannot be selected";
    Interface::UnhideAll();
    Interface::Select(Node(2));
    Interface::Select(Node(3));
    EXPECT_EQ(Interface::GetSelNode(), nullptr) << "only a single selection is answered";

    Application_InformDeleted(Node(2));
    EXPECT_EQ(Interface::Find(Node(2)), -1) << "a node deleted for good is dropped";
    EXPECT_EQ(Interface::GetSelNode(), Node(3));
}

TEST_F(ReferenceHostTest, KeepsNotesProjectNamesAndViews) {
    Interface::CopyNotes("first line", 5);
    Interface::AddNotes("+more", 5);
    EXPECT_EQ(Interface::NotesSize(), 10);
    EXPECT_EQ(std::string(Interface::GetNotes(), 10), "first+more");

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
    EXPECT_EQ(Interface::ActiveViewID(), 2);
    EXPECT_EQ(Interface::IsViewMaximized(2), 1);
    EXPECT_EQ(Interface::IsActiveViewMaximized(), 1);
    Interface::SetActiveView(9);
    EXPECT_EQ(Interface::ActiveViewID(), 2) << "views outside 0..3 are ignored";
    Interface::EnableView(1, 0);
    EXPECT_EQ(Interface::IsViewEnabled(1), 0);
    EXPECT_EQ(Interface::IsViewEnabled(9), 0);
    EXPECT_EQ(Interface::SetCameraToView(1, Node(4), 0), 1);
    EXPECT_EQ(host.GetState().views[1].camera, Node(4));
}

TEST_F(ReferenceHostTest, AssertionsCanBeCountedInsteadOfEndingTheProcess) {
    host.Install("/nonexistent", false);
    SetMessageBoxHandler([](char const*, char const*, unsigned int) -> int { return IDOK; });
    MyAssertFailedLine("x", "Core/test", 1);
    SetMessageBoxHandler(nullptr);
    EXPECT_EQ(host.FailedAssertions(), 1);
}

}  // namespace
