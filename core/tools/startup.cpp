// Library start-up and shut-down, and the registration of the built-in tools.
#include "tools/startup.h"
#include "coreinterface.h"
#include "coreplatform.h"

int RegisterBuiltinInterfaces(HINSTANCE /*instance*/) {
    return 1;
}

int CoreInit(int (*progress)(char*)) {
    // The progress callback takes a writable string; hand it copies of the two texts.
    char registering[] = "  Registering interfaces: ";
    char done[] = "OK\n";
    progress(registering);
    RegisterBuiltinInterfaces(GetCoreModuleHandle());
    progress(done);
    return 1;
}

int CoreFini() {
    return 1;
}
