// NodeList: the node name table of the project file being loaded.
#include "nodelist.h"

#include <algorithm>
#include <utility>

#include "cscene.h"
#include "runtime/check.h"
#include "scene/loadingnodes.h"
#include "scene/nametable.h"

namespace {

NameTable& Table() {
    static NameTable table;
    return table;
}

// Each thread has its own: the threads that read a project's records in parallel answer from
// their own, while the calling thread links the nodes through the loader's.
const LoadingNodes*& Loading() {
    thread_local const LoadingNodes* loading = nullptr;
    return loading;
}

char* AllocateNodeNames(unsigned long bytes) {
    char* names = static_cast<char*>(array_new(bytes));
    CORE_CHECK(names != nullptr, "nodenames");
    return names;
}

}  // namespace

void SetLoadingNodes(const LoadingNodes* loading) {
    Loading() = loading;
}

LoadingNodesScope::LoadingNodesScope(const LoadingNodes* loading)
    : ThreadSetting(Loading(), loading) {}

int DeferLink(const cnode* self, char const* name, std::function<void(cnode*)> link) {
    const LoadingNodes* loading = Loading();
    if (!loading || !name || !*name || !link) return 0;
    loading->pendingLinks.push_back({self, name, std::move(link)});
    return 1;
}

int DeferLink(const cnode* self, char const* name, cnode** slot) {
    if (!slot) return 0;
    return DeferLink(self, name, [slot](cnode* node) {
        if (node) *slot = node;
    });
}

int NodeList::ReadNodeNames(cio_load& in) {
    return Table().Read(in, PROJECT_NODE_TABLE_OFFSET_AT, PROJECT_NODE_COUNT_AT, AllocateNodeNames);
}

void NodeList::Clear() {
    Table().Clear();
}

int NodeList::IsLoaded() {
    return Table().Loaded() ? 1 : 0;
}

cnode* NodeList::GetNodeAt(int i) {
    if (!Table().Loaded()) return MainScene.GetNodeAt(i);
    char const* name = Table().NameAt(i);
    return name ? FindNode(name) : nullptr;
}

int NodeList::NumNodes() {
    return Table().Loaded() ? Table().Count() : MainScene.NumNodes();
}

char const* NodeList::GetNameAt(int i) {
    return Table().NameAt(i);
}

cnode* NodeList::FindNode(char const* name) {
    const LoadingNodes* loading = Loading();
    if (!loading) return MainScene.FindNode(name);
    if (!name) return nullptr;
    return loading->Find(name);
}

int NodeList::Find(cnode* node) {
    const LoadingNodes* loading = Loading();
    if (!loading) return MainScene.Find(node);
    const auto found = std::find(loading->nodes.begin(), loading->nodes.end(), node);
    return found == loading->nodes.end() ? -1 : static_cast<int>(found - loading->nodes.begin());
}
