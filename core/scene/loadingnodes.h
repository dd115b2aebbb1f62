// Internal: the nodes of the project file being loaded, before they join MainScene.
//
// The loader keeps them here rather than adding each to MainScene, whose array grows by one
// entry per addition and whose name lookup is a scan: both would make a load quadratic in the
// number of nodes. NodeList answers from here while a load is in progress.
#ifndef ORVANE_CORE_SCENE_LOADINGNODES_H
#define ORVANE_CORE_SCENE_LOADINGNODES_H

#include <functional>
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

    // A link (a light's or camera's target, a skin's bone) to a node whose record comes
    // later in the file. `link` receives the node of that name once every record is read, or
    // null when none bears it.
    struct PendingLink {
        const cnode* self;
        std::string name;
        std::function<void(cnode*)> link;
    };
    // Records add to it through DeferLink while they load.
    mutable std::vector<PendingLink> pendingLinks;

    // Hands every pending link the loaded node of its name, never the node that owns the
    // link (null instead), in the order the links were made.
    void ResolvePendingLinks() const {
        for (const PendingLink& pending : pendingLinks) {
            cnode* const* found = byName.Find(pending.name);
            pending.link(found && *found != pending.self ? *found : nullptr);
        }
        pendingLinks.clear();
    }
};

// While `loading` is set (non-null), NodeList::FindNode and NodeList::Find answer as MainScene
// would if it held exactly the loaded nodes, in load order.
void SetLoadingNodes(const LoadingNodes* loading);

// While a project file loads, arranges for `link` (which sets a member of `self`) to receive
// the node named `name` once every record has been read (null when no loaded node other than
// `self` bears it), and answers 1. With no load in progress it does nothing and answers 0.
int DeferLink(const cnode* self, char const* name, std::function<void(cnode*)> link);
// The same for a plain pointer member `*slot`, which a name no loaded node bears leaves null.
int DeferLink(const cnode* self, char const* name, cnode** slot);

#endif
