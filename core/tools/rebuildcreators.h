// Internal: the invisible creators through which the host makes empty objects of a known class
// (before loading one, for example). They have no name, no category and no panel, and the host
// does not show them.
#ifndef ORVANE_CORE_TOOLS_REBUILDCREATORS_H
#define ORVANE_CORE_TOOLS_REBUILDCREATORS_H

#include "cinterface.h"
#include "cmesh.h"
#include "cnode.h"
#include "cskin.h"

// A creator of class id (Type, 0) whose Create() answers Make(), as a cnode, or null when
// memory runs out.
template <unsigned Type, class Made, Made* (*Make)()>
class RebuildCreator : public ccreateinterface {
public:
    int IsPublic() override { return 0; }
    unsigned int GetType() override { return Type; }
    unsigned int GetSubType() override { return 0; }
    void* Create() override { return static_cast<cnode*>(Make()); }
};

// A new node of the base class with its default name, or null when memory runs out.
cnode* CreateNewPlainNode();

class ccreatenode : public RebuildCreator<TYPE_NODE, cnode, CreateNewPlainNode> {};
class ccreatemesh : public RebuildCreator<TYPE_MESH, cmesh, CreateNewMesh> {};
class ccreateskin : public RebuildCreator<TYPE_SKIN, cskin, CreateNewSkin> {};

extern ccreatenode theNodeCreator;
extern ccreatemesh theMeshCreator;
extern ccreateskin theSkinCreator;

#endif
