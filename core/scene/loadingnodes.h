// Internal: the nodes of the project file being loaded, before they join MainScene.
//
// The loader keeps them here rather than adding each to MainScene, whose array grows by one
// entry per addition and whose name lookup is a scan: both would make a load quadratic in the
// number of nodes. NodeList answers from here while a load is in progress.
#ifndef ORVANE_CORE_SCENE_LOADINGNODES_H
#define ORVANE_CORE_SCENE_LOADINGNODES_H

#include <string>
#include <string_view>
#include <vector>

#include "cnode.h"
#include "runtime/flatmap.h"

struct LoadingNodes {
    explicit LoadingNodes(size_t expected = 0) : byName(expected) { nodes.reserve(expected); }

    std::vector<cnode*> nodes;  // in load order
    // The first loaded node of each name, as MainScene.FindNode finds the first bearer. The
    // keys view the nodes' own name buffers, which stay put while the nodes live.
    FlatMap<std::string_view, cnode*> byName;

    // Appends a node whose record has been read completely.
    void Add(cnode* node) {
        nodes.push_back(node);
        byName.Insert(node->GetName(), node);
    }

    // A link (a light's or camera's target) to a node whose record comes later in the file.
    struct PendingLink {
        const cnode* self;
        std::string name;
        cnode** slot;
    };
    // Records add to it through DeferLink while they load.
    mutable std::vector<PendingLink> pendingLinks;

    // Points every pending slot at the loaded node of its name, never at the node that owns
    // the slot; a name no loaded node bears leaves the slot null.
    void ResolvePendingLinks() const {
        for (const PendingLink& link : pendingLinks) {
            cnode* const* found = byName.Find(link.name);
            if (found && *found != link.self) *link.slot = *found;
        }
        pendingLinks.clear();
    }
};

// While `loading` is set (non-null), NodeList::FindNode and NodeList::Find answer as MainScene
// would if it held exactly the loaded nodes, in load order.
void SetLoadingNodes(const LoadingNodes* loading);

// While a project file loads, arranges for `*slot` (a member of `self`) to point at the node
// named `name` once every record has been read, and answers 1. With no load in progress it
// does nothing and answers 0.
int DeferLink(const cnode* self, char const* name, cnode** slot);

#endif
