// The library's one assertion failure handler.
#ifndef ORVANE_COREASSERT_H
#define ORVANE_COREASSERT_H

#include "coreapi.h"

// Reports a failed check: shows a system-modal "Orvane" message box with the text
//
//   "\n-Orvane(Core) Internal Error-\n\nAssertion Failed - File: <file>, Line: <line>\n"
//   "Expression: <expression>\n\nPlease report this error:\n<contact lines>\n"
//
// appends the same text to "<path_app>/Orvane.log" (skipped if the file cannot be opened),
// then calls the host's _AbortApp hook and returns. With no hook set the process is ended the
// way abort() does: SIGABRT is raised and, should that return, the process exits with status 3.
// `file` names the source as "Core/<file>".
CORE_API void MyAssertFailedLine(char const* expression, char const* file, int line);

#endif
