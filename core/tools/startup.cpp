// Library start-up and shut-down, and the registration of the built-in tools.
#include "tools/startup.h"
#include "coreinterface.h"
#include "coreplatform.h"
#include "tools/rebuildcreators.h"

int RegisterBuiltinInterfaces(HINSTANCE /*instance*/) {
    // The invisible creators have no panel, so their module instance stays null.
    RegisterInterface(&theNodeCreator);
    RegisterInterface(&theMeshCreator);
    RegisterInterface(&theSkinCreator);
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
