#include <gtest/gtest.h>

#include <string>

#include "coreplatform.h"

namespace {

std::string g_seen;

int AnswerNo(char const* text, char const* title, unsigned int type) {
    g_seen = std::string(title) + "|" + text + "|" + std::to_string(type);
    return IDNO;
}

void KeepDebugText(char const* text) {
    g_seen += text;
}

TEST(MessageBox, GoesToTheHostHandlerOrByDefaultToStandardErrorAnsweringOk) {
    SetMessageBoxHandler(AnswerNo);
    EXPECT_EQ(CoreMessageBox("Save changes?", "Orvane", MB_YESNO | MB_ICONQUESTION), IDNO);
    EXPECT_EQ(g_seen, "Orvane|Save changes?|36");
    SetMessageBoxHandler(nullptr);
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(CoreMessageBox("Something happened", "Orvane", MB_YESNO | MB_ICONSTOP), IDOK);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Orvane\nSomething happened\n");
}

TEST(DebugOutput, GoesToStandardErrorOrToTheHostHandler) {
    SetDebugOutputHandler(nullptr);
    ::testing::internal::CaptureStderr();
    CoreDebugOutput("trace line\n");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "trace line\n");

    g_seen.clear();
    SetDebugOutputHandler(KeepDebugText);
    CoreDebugOutput("a");
    CoreDebugOutput("b");
    SetDebugOutputHandler(nullptr);
    EXPECT_EQ(g_seen, "ab");
}

}  // namespace
