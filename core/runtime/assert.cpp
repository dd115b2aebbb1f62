// The assertion failure handler: message box, log file, then the host's abort hook or the end
// of the process.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "coreassert.h"
#include "coreinterface.h"
#include "coreplatform.h"
#include "runtime/deferredreports.h"

namespace {

constexpr unsigned int kAssertBoxType = MB_OK | MB_ICONSTOP | MB_SYSTEMMODAL | MB_SETFOREGROUND;

void AppendToLog(char const* text) {
    char path[512];
    std::snprintf(path, sizeof(path), "%s/Orvane.log", GetAppPath());
    std::FILE* log = std::fopen(path, "at");
    if (!log) return;
    std::fwrite(text, std::strlen(text), 1, log);
    std::fclose(log);
}

thread_local DeferredReports* collecting = nullptr;

}  // namespace

CollectReports::CollectReports(DeferredReports& reports) : ThreadSetting(collecting, &reports) {}

void DeferredReports::Hold(char const* expression, char const* file, int line) {
    try {
        entries.push_back({expression ? expression : "", file ? file : "", line});
    } catch (...) {
        // Lost: see the declaration.
    }
}

void DeferredReports::Report() {
    std::vector<Entry> held;
    held.swap(entries);
    for (const Entry& entry : held)
        MyAssertFailedLine(entry.expression.c_str(), entry.file.c_str(), entry.line);
}

void MyAssertFailedLine(char const* expression, char const* file, int line) {
    if (collecting) {
        collecting->Hold(expression, file, line);
        return;
    }
    char text[1024];
    std::snprintf(text, sizeof(text),
                  "\n-Orvane(Core) Internal Error-\n\n"
                  "Assertion Failed - File: %s, Line: %d\n"
                  "Expression: %s\n\n"
                  "Please report this error:\n"
                  "  in the Orvane Core issue tracker, with the steps that led to it\n"
                  "  and the file Orvane.log from the application folder.\n"
                  "\n",
                  file, line, expression);
    CoreMessageBox(text, "Orvane", kAssertBoxType);
    AppendToLog(text);
    if (_AbortApp) {
        _AbortApp();
        return;
    }
    // The C library's abort: raise the abort signal, and should a handler return, exit with 3.
    std::raise(SIGABRT);
    std::_Exit(3);
}
