// The narrow platform layer: message boxes, debug output and the library's module handle.
// Every operating-system service the library uses goes through here.
#ifndef ORVANE_COREPLATFORM_H
#define ORVANE_COREPLATFORM_H

#include "coreapi.h"

// Message box types and results, with the Win32 flag values.
enum : unsigned int {
    MB_OK = 0x00000000u,
    MB_OKCANCEL = 0x00000001u,
    MB_YESNOCANCEL = 0x00000003u,
    MB_YESNO = 0x00000004u,
    MB_ICONSTOP = 0x00000010u,
    MB_ICONERROR = MB_ICONSTOP,
    MB_ICONQUESTION = 0x00000020u,
    MB_ICONWARNING = 0x00000030u,
    MB_ICONINFORMATION = 0x00000040u,
    MB_SYSTEMMODAL = 0x00001000u,
    MB_SETFOREGROUND = 0x00010000u,
};
enum : int { IDOK = 1, IDCANCEL = 2, IDYES = 6, IDNO = 7 };

// Shows a message box through the installed handler and returns its answer (IDOK ...).
// `type` combines the MB_* flags above.
CORE_API int CoreMessageBox(char const* text, char const* title, unsigned int type);

// Installs the function that shows message boxes; null restores the default handler, which
// writes the title and the text to standard error and answers IDOK without waiting.
CORE_API void SetMessageBoxHandler(int (*handler)(char const* text, char const* title,
                                                  unsigned int type));

// Sends a line of diagnostic text to the debugger's channel: standard error by default, or
// the handler the host installs (null restores standard error).
CORE_API void CoreDebugOutput(char const* text);
CORE_API void SetDebugOutputHandler(void (*handler)(char const* text));

// The library's own module handle: the base address at which libCore.so is loaded, stored by
// the library's load entry point before any host code runs.
CORE_API HINSTANCE GetCoreModuleHandle();

#endif
