#include <gtest/gtest.h>

#include <string>

#include "coreplatform.h"

namespace {

std::string g_seen;

TEST(MessageBoxAndDebugOutput, GoToTheHostHandlerOrByDefaultToStandardError) {
    SetMessageBoxHandler([](char const* text, char const* title, unsigned int type) -> int {
        g_seen = std::string(title) + "|" + text + "|" + std::to_string(type);
        return IDNO;
    });
    EXPECT_EQ(CoreMessageBox("Save changes?", "Orvane", MB_YESNO | MB_ICONQUESTION), IDNO);
    SetDebugOutputHandler([](char const* text) { g_seen += text; });
    CoreDebugOutput("a");
    EXPECT_EQ(g_seen, "Orvane|Save changes?|36a");

    SetMessageBoxHandler(nullptr);
    SetDebugOutputHandler(nullptr);
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(CoreMessageBox("Something happened", "Orvane", MB_YESNO | MB_ICONSTOP), IDOK);
    CoreDebugOutput("trace line\n");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Orvane\nSomething happened\ntrace line\n");
}

}  // namespace
