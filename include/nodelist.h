// NodeList: which scene node stands at a given index of the project file being loaded.
//
// Records refer to nodes by index or by name. Before the node records are read, the host
// calls ReadNodeNames on the project stream; GetNodeAt(i) then answers the scene node that
// bears the file's i-th node name. Without a loaded table (or after Clear) every answer comes
// from MainScene directly. The table is process-wide state, so every member is static: a node
// record's loader reaches it as NodeList::FindNode(name) without an instance. The file layout
// is described in projectheader.h.
#ifndef ORVANE_NODELIST_H
#define ORVANE_NODELIST_H

#include "cio.h"
#include "coreapi.h"

class cnode;

class CORE_API NodeList {
public:
    NodeList() = delete;

    // Reads the node name table of the project file held by `in` and keeps it, replacing any
    // table read before. The stream position is restored afterwards, whatever the outcome.
    // Returns 0, keeping no table, when the header is short, its magic is not "#ORV", its
    // version is above 16, the table lies outside the file, its count differs from the
    // header's or exceeds what the file holds; "nodenames" is reported when the table's
    // memory cannot be allocated. Returns 1 otherwise.
    static int ReadNodeNames(cio_load& in);
    // Forgets the loaded table; later answers come from MainScene.
    static void Clear();
    // 1 while a table is loaded.
    static int IsLoaded();

    // With a table: the scene node named like the table's i-th name (null for an index
    // outside the table or a name no node bears). Without: MainScene.GetNodeAt(i).
    static cnode* GetNodeAt(int i);
    // The number of names in the table, or MainScene.NumNodes() without one.
    static int NumNodes();
    // The table's i-th name (zero-terminated, at most 63 characters), or null for an index
    // outside the table or without a table. The project loader matches records against it.
    static char const* GetNameAt(int i);
    // MainScene's node named `name`, or null. While LoadProjectFile reads node records, the
    // first node loaded so far that bears the name: the loaded nodes join MainScene together
    // after the last record, so a record's loader finds earlier nodes here, not in MainScene.
    static cnode* FindNode(char const* name);
    // MainScene's index of `node`, or -1; during LoadProjectFile, its position among the nodes
    // loaded so far.
    static int Find(cnode* node);
};

#endif
