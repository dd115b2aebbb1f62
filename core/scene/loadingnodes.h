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

#include "cbitarray.h"
#include "cnode.h"
#include "runtime/nameindex.h"
#include "runtime/threadsetting.h"

class LoadingNodes {
public:
    explicit LoadingNodes(size_t expected = 0) : names(expected) { nodes.reserve(expected); }

    std::vector<cnode*> nodes;  // in load order

    // Appends a node whose record has been read completely. `name` is its name, `hash`
    // NameIndex::Hash of that name.
    void Add(cnode* node, std::string_view name, std::uint64_t hash) {
        const int entry = static_cast<int>(nodes.size());
        nodes.push_back(node);
        const int first = names.Add(name, hash);
        if (first != entry) AddNamesake(first, entry);
    }

    // Prepares for a name of `hash` to be added or looked for soon (see NameIndex::Prefetch).
    void Expect(std::uint64_t hash) const { names.Prefetch(hash); }

    // The first loaded node bearing `name`, as MainScene.FindNode finds the first; or null.
    cnode* Find(std::string_view name, std::uint64_t hash) const {
        const int entry = names.Find(name, hash);
        return entry < 0 ? nullptr : nodes[static_cast<size_t>(entry)];
    }
    cnode* Find(std::string_view name) const { return Find(name, NameIndex::Hash(name)); }

    // The load positions of the nodes in the order of `tableName(0)` ... `tableName(count -
    // 1)`: each name claims the earliest loaded node of that name not yet claimed. Answers
    // false when some name finds no unclaimed node.
    template <class TableName>
    bool TableOrder(int count, TableName tableName, cbitarray& order) const {
        order.SetSize(count, 0);
        // Per first bearer, the next of its namesakes to claim (-1: all are claimed).
        std::vector<int> unclaimed(nodes.size());
        for (size_t i = 0; i < nodes.size(); ++i) unclaimed[i] = static_cast<int>(i);
        // The names are looked up kPrefetchAhead places after their slots are asked for.
        std::uint64_t hashes[kPrefetchAhead];
        const auto ask = [&](int k) {
            if (k >= count) return;
            hashes[k % kPrefetchAhead] = NameIndex::Hash(tableName(k));
            names.Prefetch(hashes[k % kPrefetchAhead]);
        };
        for (int k = 0; k < kPrefetchAhead; ++k) ask(k);
        for (int k = 0; k < count; ++k) {
            const int first = names.Find(tableName(k), hashes[k % kPrefetchAhead]);
            ask(k + kPrefetchAhead);
            if (first < 0) return false;
            int& next = unclaimed[static_cast<size_t>(first)];
            if (next < 0) return false;
            order.Set(k, next);
            next = NextNamesake(next);
        }
        return true;
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
            cnode* found = Find(pending.name);
            pending.link(found != pending.self ? found : nullptr);
        }
        pendingLinks.clear();
    }

private:
    // Entry i is the name nodes[i] bore when it was added.
    NameIndex names;
    // Each node's next loaded namesake, and per first bearer its last one (-1: none). They
    // grow only as far as the last node whose name repeats an earlier one.
    std::vector<int> nextNamesake, lastNamesake;

    int NextNamesake(int entry) const {
        const auto at = static_cast<size_t>(entry);
        return at < nextNamesake.size() ? nextNamesake[at] : -1;
    }

    void AddNamesake(int first, int entry) {
        nextNamesake.resize(nodes.size(), -1);
        lastNamesake.resize(nodes.size(), -1);
        int& last = lastNamesake[static_cast<size_t>(first)];
        nextNamesake[static_cast<size_t>(last < 0 ? first : last)] = entry;
        last = entry;
    }
};

// While `loading` is set (non-null) on the calling thread, NodeList::FindNode and NodeList::Find
// answer there as MainScene would if it held exactly the loaded nodes, in load order, and
// DeferLink collects into it. Each thread sets its own.
void SetLoadingNodes(const LoadingNodes* loading);

// Sets the calling thread's loading nodes while alive, then puts back the ones it found.
class LoadingNodesScope : ThreadSetting<const LoadingNodes*> {
public:
    explicit LoadingNodesScope(const LoadingNodes* loading);
};

// While `names` is set (non-null), MtlList finds materials by name through it, where entry i
// names MainScene's material i: a loading project's node records look up one material each.
// Unlike the loading nodes it holds for every thread, so that threads reading node records in
// parallel find materials too; it and MainScene's materials must not change meanwhile.
void SetLoadingMaterials(const NameIndex* names);

// While a project file loads, arranges for `link` (which sets a member of `self`) to receive
// the node named `name` once every record has been read (null when no loaded node other than
// `self` bears it), and answers 1. With no load in progress it does nothing and answers 0.
int DeferLink(const cnode* self, char const* name, std::function<void(cnode*)> link);
// The same for a plain pointer member `*slot`, which a name no loaded node bears leaves null.
int DeferLink(const cnode* self, char const* name, cnode** slot);

#endif
