#include "coreassert.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>

#include "coreinterface.h"
#include "coreplatform.h"
#include "support/testsupport.h"

namespace {

std::string ExpectedReport(const std::string& file, int line, const std::string& expression) {
    return "\n-Orvane(Core) Internal Error-\n\nAssertion Failed - File: " + file +
           ", Line: " + std::to_string(line) + "\nExpression: " + expression +
           "\n\nPlease report this error:\n";
}

TEST(AssertionReport, ShowsASystemModalStopBoxAndLogsTheSameTextThenReturnsThroughTheHook) {
    AssertRecorder recorder;
    MyAssertFailedLine("flags!=SEL_ISHIT", "Core/cscene", 123);

    ASSERT_EQ(recorder.Count(), 1) << "the host's _AbortApp hook is called once";
    ASSERT_EQ(recorder.Texts().size(), 1u);
    const std::string text = recorder.Texts()[0];
    EXPECT_EQ(text.rfind(ExpectedReport("Core/cscene", 123, "flags!=SEL_ISHIT"), 0), 0u) << text;
    EXPECT_EQ(text.substr(text.size() - 2), "\n\n") << "contact lines end with a blank line";
    EXPECT_EQ(recorder.Titles()[0], "Orvane");
    EXPECT_EQ(recorder.Types()[0], 0x11010u) << "OK, stop icon, system modal, foreground";
    EXPECT_EQ(recorder.LogContents(), text) << "the log holds exactly the box's text";
    MyAssertFailedLine("second", "Core/nodelist", 2);
    ASSERT_EQ(recorder.Texts().size(), 2u);
    EXPECT_EQ(recorder.LogContents(), text + recorder.Texts()[1]) << "appended undecorated";
}

TEST(AssertionReport, CarriesOnWhenTheLogCannotBeOpened) {
    AssertRecorder recorder;
    std::snprintf(path_app, sizeof(path_app), "%s", "/nonexistent/folder/for/orvane");
    MyAssertFailedLine("x", "Core/array", 7);
    EXPECT_EQ(recorder.Count(), 1);
    EXPECT_EQ(recorder.Texts().size(), 1u);
}

TEST(AssertionReport, LongExpressionsAreCutToTheReportBuffer) {
    AssertRecorder recorder;
    const std::string longExpression(4000, 'e');
    MyAssertFailedLine(longExpression.c_str(), "Core/array", 9);
    ASSERT_EQ(recorder.Texts().size(), 1u);
    EXPECT_EQ(recorder.Texts()[0].size(), 1023u);
}

// Without an abort hook the report ends the process: SIGABRT first, exit status 3 if the
// signal is ignored. Both paths still show the box and write the log in `folder` before ending.
void ReportWithoutHook(const TempDir& folder, const char* expression, const char* file, int line) {
    std::snprintf(path_app, sizeof(path_app), "%s", folder.Path().c_str());
    _AbortApp = nullptr;
    MyAssertFailedLine(expression, file, line);
}

TEST(AssertionReportDeathTest, WithoutAHookTheProcessIsKilledByTheAbortSignal) {
    TempDir folder;
    EXPECT_EXIT(ReportWithoutHook(folder, "fatal", "Core/array", 18),
                ::testing::KilledBySignal(SIGABRT), "Orvane");
    EXPECT_NE(ReadFileBytes(folder.File("Orvane.log")).find("Expression: fatal\n"),
              std::string::npos)
        << "the log is written before the process ends";
}

TEST(AssertionReportDeathTest, WhenTheAbortSignalReturnsTheProcessExitsWithStatus3) {
    TempDir folder;
    EXPECT_EXIT(
        {
            std::signal(SIGABRT, SIG_IGN);
            ReportWithoutHook(folder, "ignored abort", "Core/cmesh", 77);
        },
        ::testing::ExitedWithCode(3), "Assertion Failed - File: Core/cmesh, Line: 77");
    EXPECT_NE(ReadFileBytes(folder.File("Orvane.log")).find("Expression: ignored abort\n"),
              std::string::npos);
}

}  // namespace
