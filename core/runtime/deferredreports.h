// Internal: failed checks held back on a helper thread and reported later on the host's thread.
//
// The message box, the log and the host's abort hook belong to the thread the host calls the
// library from. Work that the library spreads over helper threads collects its failed checks
// in a DeferredReports, carries on as it would after an abort hook that returns, and the
// calling thread makes the reports once the helpers are done.
#ifndef ORVANE_CORE_RUNTIME_DEFERREDREPORTS_H
#define ORVANE_CORE_RUNTIME_DEFERREDREPORTS_H

#include <string>
#include <vector>

#include "coreapi.h"
#include "runtime/threadsetting.h"

// Exported for the library's tests only; no public header declares it.
class CORE_API DeferredReports {
public:
    // Makes every report held through MyAssertFailedLine, in the order they were held, and
    // forgets them.
    void Report();

    bool Empty() const { return entries.empty(); }

private:
    friend void MyAssertFailedLine(char const*, char const*, int);
    // Keeps a report; with no memory left to keep it, it is lost rather than made off the
    // host's thread.
    void Hold(char const* expression, char const* file, int line);

    struct Entry {
        std::string expression, file;
        int line;
    };
    std::vector<Entry> entries;
};

// While alive, MyAssertFailedLine on the thread that made it holds its reports in `reports`
// instead of making them.
class CORE_API CollectReports : ThreadSetting<DeferredReports*> {
public:
    explicit CollectReports(DeferredReports& reports);
};

#endif
