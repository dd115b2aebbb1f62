#include "coreassert.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>

#include "coreinterface.h"
#include "support/testsupport.h"

namespace {

TEST(AssertionReport, ShowsASystemModalStopBoxLogsTheSameTextAndReturnsThroughTheHook) {
    AssertRecorder recorder;
    MyAssertFailedLine("flags!=SEL_ISHIT", "Core/cscene", 123);
    MyAssertFailedLine(std::string(4000, 'e').c_str(), "Core/nodelist", 2);
    ASSERT_EQ(recorder.Texts().size(), 2u);
    const std::string text = recorder.Texts()[0];
    EXPECT_EQ(text.rfind("\n-Orvane(Core) Internal Error-\n\nAssertion Failed - File: Core/cscene, "
                         "Line: 123\nExpression: flags!=SEL_ISHIT\n\nPlease report this error:\n",
                         0),
              0u)
        << text;
    EXPECT_EQ(text.substr(text.size() - 2), "\n\n");
    EXPECT_EQ(recorder.Titles()[0] + " " + std::to_string(recorder.Types()[0]), "Orvane 69648")
        << "OK, stop icon, system modal, foreground";
    EXPECT_EQ(recorder.Texts()[1].size(), 1023u) << "cut to the report buffer";
    EXPECT_EQ(recorder.LogContents(), text + recorder.Texts()[1]) << "appended undecorated";
    std::snprintf(path_app, sizeof(path_app), "%s", "/nonexistent/folder/for/orvane");
    MyAssertFailedLine("x", "Core/array", 7);
    EXPECT_EQ(recorder.Count(), 3) << "the hook runs once per report, even without a log";
}

// Without an abort hook the report ends the process: SIGABRT first, exit status 3 if the
// signal is ignored, after showing the box and writing the log.
void ReportWithoutHook(const TempDir& folder, bool ignoreAbort) {
    if (ignoreAbort) std::signal(SIGABRT, SIG_IGN);
    std::snprintf(path_app, sizeof(path_app), "%s", folder.Path().c_str());
    _AbortApp = nullptr;
    MyAssertFailedLine("fatal", "Core/cmesh", 77);
}

TEST(AssertionReportDeathTest, WithoutAHookEndsByTheAbortSignalOrElseWithStatus3) {
    TempDir aborted, exited;
    EXPECT_EXIT(ReportWithoutHook(aborted, false), ::testing::KilledBySignal(SIGABRT), "Orvane");
    EXPECT_EXIT(ReportWithoutHook(exited, true), ::testing::ExitedWithCode(3),
                "Assertion Failed - File: Core/cmesh, Line: 77");
    for (const TempDir* folder : {&aborted, &exited})
        EXPECT_NE(ReadFileBytes(folder->File("Orvane.log")).find("Expression: fatal\n"),
                  std::string::npos);
}

}  // namespace
