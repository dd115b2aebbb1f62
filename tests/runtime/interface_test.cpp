#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "animclock.h"
#include "coreinterface.h"

namespace {

// What the fake host saw: one entry per call, the callback's name and its arguments.
std::vector<std::string> g_calls;
void Saw(const std::string& call) {
    g_calls.push_back(call);
}

// Fills a few callbacks with recording fakes and puts every pointer back to null afterwards.
class InterfaceTest : public ::testing::Test {
protected:
    void SetUp() override { g_calls.clear(); }
    void TearDown() override {
#define CORE_CLEAR(ret, name, params) name = nullptr;
        CORE_HOST_CALLBACKS(CORE_CLEAR)
#undef CORE_CLEAR
        ResetAnim();
        SetAnimOn(0);
    }
};

cnode* const kNode = reinterpret_cast<cnode*>(0x1000);
cmaterial* const kMaterial = reinterpret_cast<cmaterial*>(0x2000);

TEST_F(InterfaceTest, OverloadsReachTheirOwnCallbacks) {
    I_AddNodeToScene = [](cnode* n, int f) {
        Saw("AddNode " + std::to_string(n == kNode) + std::to_string(f));
    };
    I_AddMatToScene = [](cmaterial* m, int f) {
        Saw("AddMat " + std::to_string(m == kMaterial) + std::to_string(f));
    };
    I_FindNode = [](cnode*) { return 3; };
    I_FindMaterial = [](cmaterial*) { return 4; };
    I_FindNodeByName = [](char const* name) {
        return std::string(name) == "Box1" ? kNode : nullptr;
    };
    I_FindMaterialByName = [](char const* name) {
        return std::string(name) == "Mat1" ? kMaterial : nullptr;
    };
    I_RemoveNodeFromScene = [](cnode*, int f) { Saw("Remove " + std::to_string(f)); };
    I_ShowMatImage = [](cmaterial*, int map) { return 100 + map; };
    I_ShowImage = [](cimage*, char*, int x, int y) { return 200 + x + y; };
    I_ShowFileImage = [](char const* file, char*, int, int) {
        return std::string(file) == "a.png" ? 300 : 0;
    };
    I_ShowRawImage = [](void*, void*, int w, int h, int bpp, int x, int y) {
        return 400 + w + h + bpp + x + y;
    };

    Interface::AddToScene(kNode, 1);
    Interface::AddToScene(kMaterial, 0);
    Interface::RemoveFromScene(kNode, 7);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"AddNode 11", "AddMat 10", "Remove 7"}));
    EXPECT_EQ(Interface::Find(kNode), 3);
    EXPECT_EQ(Interface::Find(kMaterial), 4);
    EXPECT_EQ(Interface::FindNode("Box1"), kNode);
    EXPECT_EQ(Interface::FindMaterial("Mat1"), kMaterial);
    char title[] = "t";
    EXPECT_EQ(Interface::ShowImage(kMaterial, 5), 105);
    EXPECT_EQ(Interface::ShowImage(static_cast<cimage*>(nullptr), title, 1, 2), 203);
    EXPECT_EQ(Interface::ShowImage("a.png", title, 0, 0), 300);
    EXPECT_EQ(Interface::ShowImage(nullptr, nullptr, 1, 2, 3, 4, 5), 415);
}

TEST_F(InterfaceTest, ForwardersPassArgumentsInOrderAndReturnTheCallbacksResult) {
    I_GetAppVersion = [] { return 0x00020001ul; };
    I_DlgPickColor = [](unsigned long& color) {
        color = 0x00FF8000ul;
        return 1;
    };
    I_SetFogValues = [](cpoint3 const& c, float a, float b, float d) {
        Saw("Fog " + std::to_string(c.x + c.y + c.z) + " " + std::to_string(a) + " " +
            std::to_string(b) + " " + std::to_string(d));
    };
    I_GetFogValues = [](cpoint3& c, float& a, float& b, float& d) {
        c = cpoint3(1, 2, 3);
        a = 10, b = 20, d = 0.5f;
    };
    I_GetSceneAmbient = [] { return ccolor(0.25f, 0.5f, 0.75f, 1.0f); };
    I_PickFromList = [](unsigned int type, unsigned int sub, char* title, char*,
                        int (*filter)(cnode*), void (*)(cnode*)) {
        Saw(std::string(title) + " " + std::to_string(type) + "." + std::to_string(sub));
        return filter(kNode);
    };
    I_SetCameraToView = [](int view, cnode* camera, int flags) {
        return view * 100 + (camera == kNode) * 10 + flags;
    };
    I_GetProjectName = [](char* out) {
        std::snprintf(out, 256, "%s", "scene.orv");
        return 9;
    };

    EXPECT_EQ(Interface::GetAppVersion(), 0x00020001ul);
    unsigned long color = 0;
    EXPECT_EQ(Interface::DlgPickColor(color), 1);
    EXPECT_EQ(color, 0x00FF8000ul);
    Interface::SetFogValues(cpoint3(1, 1, 1), 2, 3, 4);
    cpoint3 c;
    float a = 0, b = 0, d = 0;
    Interface::GetFogValues(c, a, b, d);
    EXPECT_EQ(c, cpoint3(1, 2, 3));
    EXPECT_EQ(a + b + d, 30.5f);
    EXPECT_EQ(Interface::GetSceneAmbient(), ccolor(0.25f, 0.5f, 0.75f, 1.0f));
    char title[] = "Pick";
    EXPECT_EQ(Interface::PickFromList(
                  3, 1, title, nullptr, [](cnode*) { return 42; }, nullptr),
              42);
    EXPECT_EQ(Interface::SetCameraToView(2, kNode, 1), 211);
    char name[256];
    EXPECT_EQ(Interface::GetProjectName(name), 9);
    EXPECT_STREQ(name, "scene.orv");
    EXPECT_EQ(g_calls,
              (std::vector<std::string>{"Fog 3.000000 2.000000 3.000000 4.000000", "Pick 3.1"}));
}

TEST_F(InterfaceTest, ClockIsReadFromTheLibraryButSetThroughTheHost) {
    I_SetAnimTime = [](int t) { Saw("time " + std::to_string(t)); };
    I_SetAnimStart = [](int t) { Saw("start " + std::to_string(t)); };
    I_SetAnimEnd = [](int t) { Saw("end " + std::to_string(t)); };
    I_SetAnimTPF = [](int t) { Saw("tpf " + std::to_string(t)); };
    I_ResetAnim = [] { Saw("reset"); };

    Interface::SetAnimTime(30);
    Interface::SetAnimStart(5);
    Interface::SetAnimEnd(60);
    Interface::SetAnimTPF(20);
    Interface::ResetAnim();
    EXPECT_EQ(g_calls,
              (std::vector<std::string>{"time 30", "start 5", "end 60", "tpf 20", "reset"}));
    EXPECT_EQ(GetAnimTime(), 0) << "the host's fake did not set the clock, so nothing moved";

    SetAnimEnd(500);
    SetAnimStart(8);
    SetAnimTime(250);
    SetAnimTPF(25);
    EXPECT_EQ((std::vector<int>{Interface::GetAnimTime(), Interface::GetAnimStart(),
                                Interface::GetAnimEnd(), Interface::GetAnimTPF()}),
              (std::vector<int>{250, 8, 500, 25}));

    Interface::SetAnimOn(1);
    EXPECT_EQ(IsAnimOn(), 1) << "animation mode is set directly, without the host";
    EXPECT_EQ(Interface::IsAnimOn(), 1);
    EXPECT_EQ(g_calls.size(), 5u);
}

TEST_F(InterfaceTest, MainPathIsACopyOfTheApplicationFolder) {
    const std::string saved = path_app;
    std::snprintf(path_app, sizeof(path_app), "%s", "/srv/orvane");
    char* copy = Interface::GetMainPath();
    EXPECT_STREQ(copy, "/srv/orvane");
    EXPECT_NE(copy, path_app);
    std::snprintf(path_app, sizeof(path_app), "%s", "/elsewhere");
    EXPECT_STREQ(copy, "/srv/orvane") << "the copy changes only on the next call";
    EXPECT_EQ(Interface::GetMainPath(), copy);
    EXPECT_STREQ(copy, "/elsewhere");
    std::snprintf(path_app, sizeof(path_app), "%s", saved.c_str());
}

}  // namespace
