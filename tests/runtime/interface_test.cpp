#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "animclock.h"
#include "coreinterface.h"

namespace {

std::vector<int> g_setByHost;

TEST(Interface, ReadsTheClockFromTheLibraryButSetsItThroughTheHost) {
    I_SetAnimTime = [](int t) { g_setByHost.push_back(t); };
    I_SetAnimEnd = [](int t) { g_setByHost.push_back(-t); };
    Interface::SetAnimTime(30);
    Interface::SetAnimEnd(60);
    EXPECT_EQ(g_setByHost, (std::vector<int>{30, -60}));
    SetAnimEnd(500);
    SetAnimTime(250);
    Interface::SetAnimOn(1);  // directly, without the host
    EXPECT_EQ((std::vector<int>{Interface::GetAnimTime(), Interface::GetAnimEnd(), IsAnimOn()}),
              (std::vector<int>{250, 500, 1}));
    I_SetAnimTime = nullptr;
    I_SetAnimEnd = nullptr;
    ResetAnim();
    SetAnimOn(0);
}

TEST(Interface, MainPathIsACopyOfTheApplicationFolderTakenAtEachCall) {
    const std::string saved = path_app;
    std::snprintf(path_app, sizeof(path_app), "%s", "/srv/orvane");
    char* copy = Interface::GetMainPath();
    std::snprintf(path_app, sizeof(path_app), "%s", "/elsewhere");
    EXPECT_STREQ(copy, "/srv/orvane");
    EXPECT_EQ(Interface::GetMainPath(), copy);
    EXPECT_STREQ(copy, "/elsewhere");
    std::snprintf(path_app, sizeof(path_app), "%s", saved.c_str());
}

}  // namespace
