// NodeList: the node name table of the project file being loaded.
#include "nodelist.h"

#include "cscene.h"
#include "runtime/check.h"
#include "scene/nametable.h"

namespace {

NameTable& Table() {
    static NameTable table;
    return table;
}

char* AllocateNodeNames(unsigned long bytes) {
    char* names = static_cast<char*>(array_new(bytes));
    CORE_CHECK(names != nullptr, "nodenames");
    return names;
}

}  // namespace

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
    return name ? MainScene.FindNode(name) : nullptr;
}

int NodeList::NumNodes() {
    return Table().Loaded() ? Table().Count() : MainScene.NumNodes();
}

char const* NodeList::GetNameAt(int i) {
    return Table().NameAt(i);
}

cnode* NodeList::FindNode(char const* name) {
    return MainScene.FindNode(name);
}

int NodeList::Find(cnode* node) {
    return MainScene.Find(node);
}
