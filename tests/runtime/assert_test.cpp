#include "coreassert.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <thread>

#include "coreinterface.h"
#include "runtime/deferredreports.h"
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

// A helper thread holds its reports; the calling thread makes them later, in order, on its own
// thread, while its own reports go out at once.
TEST(AssertionReport, HeldOnAHelperThreadAndMadeLaterByTheCallingThread) {
    AssertRecorder recorder;
    DeferredReports held;
    std::thread::id hookThread;
    static std::thread::id* seen;
    seen = &hookThread;
    _AbortApp = [] { *seen = std::this_thread::get_id(); };
    std::thread helper([&held] {
        const CollectReports collect(held);
        MyAssertFailedLine("first", "Core/cnode", 1);
        MyAssertFailedLine("second", "Core/canim", 2);
    });
    helper.join();
    EXPECT_TRUE(recorder.Texts().empty() && !held.Empty());
    MyAssertFailedLine("own", "Core/cscene", 3);
    held.Report();
    ASSERT_EQ(recorder.Texts().size(), 3u);
    EXPECT_EQ(hookThread, std::this_thread::get_id());
    std::string order;
    for (const std::string& text : recorder.Texts())
        order += text.substr(text.find("Expression: ") + 12, 3);
    EXPECT_EQ(order, "ownfirsec");
    EXPECT_NE(recorder.Texts()[2].find("File: Core/canim, Line: 2\n"), std::string::npos);
    held.Report();
    EXPECT_EQ(recorder.Texts().size(), 3u) << "made once, then forgotten";
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
