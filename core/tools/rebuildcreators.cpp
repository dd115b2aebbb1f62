// The invisible creators of plain nodes, meshes and skins.
#include "tools/rebuildcreators.h"

#include <new>

cnode* CreateNewPlainNode() {
    return new (std::nothrow) cnode();
}

ccreatenode theNodeCreator;
ccreatemesh theMeshCreator;
ccreateskin theSkinCreator;
