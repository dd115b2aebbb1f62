// Message boxes and debug output, with handlers the host can replace.
#include <cstdio>

#include "coreplatform.h"

namespace {

int WriteMessageToStderr(char const* text, char const* title, unsigned int /*type*/) {
    std::fprintf(stderr, "%s\n%s\n", title ? title : "", text ? text : "");
    std::fflush(stderr);
    return IDOK;
}

void WriteDebugToStderr(char const* text) {
    std::fputs(text ? text : "", stderr);
    std::fflush(stderr);
}

int (*g_messageBoxHandler)(char const*, char const*, unsigned int) = WriteMessageToStderr;
void (*g_debugOutputHandler)(char const*) = WriteDebugToStderr;

}  // namespace

int CoreMessageBox(char const* text, char const* title, unsigned int type) {
    return g_messageBoxHandler(text, title, type);
}

void SetMessageBoxHandler(int (*handler)(char const*, char const*, unsigned int)) {
    g_messageBoxHandler = handler ? handler : WriteMessageToStderr;
}

void CoreDebugOutput(char const* text) {
    g_debugOutputHandler(text);
}

void SetDebugOutputHandler(void (*handler)(char const*)) {
    g_debugOutputHandler = handler ? handler : WriteDebugToStderr;
}
