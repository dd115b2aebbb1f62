// The library's load entry point: records libCore.so's module handle (its base address) as
// soon as the dynamic loader maps it, before any host code can call into the library.
#include <dlfcn.h>

#include "coreplatform.h"

namespace {

HINSTANCE g_moduleHandle = nullptr;

enum { kProcessDetach = 0, kProcessAttach = 1 };

// Stores the handle it is given whatever the reason, and reports success.
int CoreEntryPoint(HINSTANCE instance, unsigned long /*reason*/) {
    g_moduleHandle = instance;
    return 1;
}

HINSTANCE OwnBaseAddress() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&OwnBaseAddress), &info) == 0) return nullptr;
    return static_cast<HINSTANCE>(info.dli_fbase);
}

__attribute__((constructor)) void OnLibraryLoad() {
    CoreEntryPoint(OwnBaseAddress(), kProcessAttach);
}

__attribute__((destructor)) void OnLibraryUnload() {
    CoreEntryPoint(OwnBaseAddress(), kProcessDetach);
}

}  // namespace

HINSTANCE GetCoreModuleHandle() {
    return g_moduleHandle;
}
