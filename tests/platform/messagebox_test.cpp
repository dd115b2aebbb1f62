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

TEST(MessageBox, DefaultHandlerWritesTitleAndTextToStandardErrorAndAnswersOk) {
    SetMessageBoxHandler(nullptr);
    ::testing::internal::CaptureStderr();
    const int answer = CoreMessageBox("Something happened", "Orvane", MB_OK | MB_ICONSTOP);
    const std::string written = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(answer, IDOK);
    EXPECT_EQ(written, "Orvane\nSomething happened\n");
}

TEST(MessageBox, HostHandlerReceivesEverythingUntilNullRestoresTheDefault) {
    SetMessageBoxHandler(AnswerNo);
    EXPECT_EQ(CoreMessageBox("Save changes?", "Orvane", MB_YESNO | MB_ICONQUESTION), IDNO);
    EXPECT_EQ(g_seen, "Orvane|Save changes?|36");
    SetMessageBoxHandler(nullptr);
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(CoreMessageBox("again", "T", MB_YESNO), IDOK);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "T\nagain\n");
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
