// Internal: the start-up registration of the built-in tools.
#ifndef ORVANE_CORE_TOOLS_STARTUP_H
#define ORVANE_CORE_TOOLS_STARTUP_H

#include "coreapi.h"

// Registers the built-in creators and modifiers, in their fixed order, with the library's
// module handle; returns 1. The built-in tools so far are the three invisible creators of
// plain nodes, meshes and skins.
int RegisterBuiltinInterfaces(HINSTANCE instance);

#endif
