// cscene: the scene container, MainScene and the unique-name functions.
#include "cscene.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>
#include <string_view>
#include <utility>
#include <vector>

#include "animclock.h"
#include "cmaterial.h"
#include "cnode.h"
#include "corearray.h"
#include "coreinterface.h"
#include "runtime/check.h"
#include "runtime/flatmap.h"
#include "runtime/namefield.h"
#include "runtime/notestext.h"
#include "runtime/prefetch.h"

cscene MainScene;

namespace {

// The bytes at the start of a node that a pass over its flags reads: the pointer to its
// virtual operations, its type words, its name and the flags that follow.
constexpr unsigned long kNodeHeadBytes = 96;

// ---- Pointer arrays: one entry per element, grown one at a time ----

template <class T>
int IndexOf(T* const* items, int count, const T* item) {
    for (int i = 0; i < count; ++i)
        if (items[i] == item) return i;
    return -1;
}

// Replaces the array by one exactly one entry longer: old entries copied, `item` appended, the
// old array freed. Returns 0, changing nothing, when the new array cannot be allocated.
template <class T>
int AppendOne(T**& items, int& count, T* item, char const* what) {
    auto** grown =
        static_cast<T**>(array_new(sizeof(T*) * (static_cast<unsigned long>(count) + 1)));
    CORE_CHECK(grown != nullptr, what);
    if (!grown) return 0;
    std::copy(items, items + count, grown);
    grown[count] = item;
    array_delete(items);
    items = grown;
    ++count;
    return 1;
}

// The entries of `list` that adding them one at a time would take: nulls are skipped, and the
// first entry already among the `count` items (or earlier in `list`) ends the list.
template <class T>
std::vector<T*> EntriesToAdd(T* const* items, int count, T* const* list, int listCount) {
    FlatSet<const T*> present(static_cast<size_t>(count + listCount));
    for (int i = 0; i < count; ++i) present.Insert(items[i]);
    std::vector<T*> added;
    // Each entry's slot is asked for a few entries ahead of its turn.
    for (int i = 0; i < listCount; ++i) {
        if (i + kPrefetchAhead < listCount) present.Prefetch(list[i + kPrefetchAhead]);
        if (!list[i]) continue;
        if (!present.Insert(list[i])) break;
        added.push_back(list[i]);
    }
    return added;
}

// Appends the `n` entries of `added` with one allocation, the same array as appending them
// one at a time, without copying the old entries once per entry. Returns 0, changing nothing
// and reporting nothing, when the array cannot be allocated; the caller then goes one at a
// time, which reports as each single append does.
template <class T>
int AppendAll(T**& items, int& count, T* const* added, size_t n) {
    if (n == 0) return 1;
    const unsigned long total = static_cast<unsigned long>(count) + n;
    auto** grown = static_cast<T**>(array_new(sizeof(T*) * total));
    if (!grown) return 0;
    std::copy(items, items + count, grown);
    std::copy(added, added + n, grown + count);
    array_delete(items);
    items = grown;
    count = static_cast<int>(total);
    return 1;
}

// Calls `joined` on each of the `n` entries of `added` in order. It reads each item, which is
// asked for a few items ahead.
template <class T, class Joined>
void JoinEach(T* const* added, size_t n, Joined joined) {
    for (size_t i = 0; i < n; ++i) {
        if (i + kPrefetchAhead < n) PrefetchBytes(added[i + kPrefetchAhead], kNodeHeadBytes);
        joined(added[i]);
    }
}

// Adds the entries of `list` to the array at once, as adding them one at a time would, and
// calls `joined` on each in order. Returns 0, changing nothing, when that cannot be done in
// one piece (out of memory); the caller then adds them one at a time.
template <class T, class Joined>
int AddAllAtOnce(T**& items, int& count, T* const* list, int listCount, Joined joined) {
    try {
        const std::vector<T*> added = EntriesToAdd(items, count, list, listCount);
        if (!AppendAll(items, count, added.data(), added.size())) return 0;
        JoinEach(added.data(), added.size(), joined);
        return 1;
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

// Closes the gap at `index`; the block is freed once the last entry has gone.
template <class T>
void RemoveOne(T**& items, int& count, int index) {
    std::copy(items + index + 1, items + count, items + index);
    if (--count == 0) {
        array_delete(items);
        items = nullptr;
    }
}

template <class T>
T* ItemAt(T* const* items, int count, int index) {
    return index >= 0 && index < count ? items[index] : nullptr;
}

template <class T>
T* ItemNamed(T* const* items, int count, char const* name) {
    if (!name) return nullptr;
    for (int i = 0; i < count; ++i)
        if (std::strcmp(items[i]->GetName(), name) == 0) return items[i];
    return nullptr;
}

// ---- Unique names ----

constexpr int kMaxSuffixTries = 100000;

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// How many of the `count` names that `nameAt` gives equal `name`, counting no further than
// `limit`.
template <class NameAt>
int Bearers(NameAt nameAt, int count, char const* name, int limit) {
    int bearers = 0;
    for (int i = 0; i < count && bearers < limit; ++i)
        if (std::string_view(nameAt(i)) == name) ++bearers;
    return bearers;
}

// The shared rule of UniqueNameForNode and UniqueNameForMaterial over `count` names given by
// `nameAt`. `flag` non-zero: one bearer is the owner of the name itself.
template <class NameAt>
void MakeNameUnique(char* name, int flag, NameAt nameAt, int count) {
    if (!name || !*name || count == 0) return;
    char current[NAME_FIELD_BYTES] = {};
    std::strncpy(current, name, NAME_MAX_CHARS);
    const int allowed = flag ? 1 : 0;
    if (Bearers(nameAt, count, current, allowed + 1) <= allowed) return;

    int baseLength = static_cast<int>(std::strlen(current));
    while (baseLength > 0 && IsDigit(current[baseLength - 1])) --baseLength;
    char candidate[NAME_FIELD_BYTES];
    for (int i = 1; i <= kMaxSuffixTries; ++i) {
        char suffix[16];
        const int suffixLength = std::snprintf(suffix, sizeof suffix, "%d", i);
        // The base gives up its last characters so that base + suffix stays within 63.
        const int keep = std::min(baseLength, NAME_MAX_CHARS - suffixLength);
        std::memcpy(candidate, current, static_cast<size_t>(keep));
        std::memcpy(candidate + keep, suffix, static_cast<size_t>(suffixLength) + 1);
        if (Bearers(nameAt, count, candidate, 1) == 0) {
            std::memcpy(name, candidate, static_cast<size_t>(keep + suffixLength) + 1);
            return;
        }
    }
}

// Renames `object` when the scene rule finds its name taken.
template <class T>
void RenameIfTaken(T* object, int inScene, void (*makeUnique)(char*, int)) {
    if (!object) return;
    char name[NAME_FIELD_BYTES];
    object->GetName(name);
    makeUnique(name, inScene);
    if (std::strcmp(name, object->GetName()) != 0) object->SetName(name);
}

// ---- Walking up a hierarchy ----

// 1 when some ancestor of `node` satisfies `test`. The walk stops at a root and also when the
// parent chain of a broken hierarchy loops (detected by a second walker at double speed).
template <class Test>
int AnyAncestor(const cnode* node, Test test) {
    const cnode* slow = node;
    const cnode* fast = node;
    for (;;) {
        for (int step = 0; step < 2; ++step) {
            fast = fast->GetParent();
            if (!fast) return 0;
            if (test(fast)) return 1;
        }
        slow = slow->GetParent();
        if (slow == fast) return 0;
    }
}

void Extend(cpoint3& min, cpoint3& max, const cpoint3& p) {
    for (int i = 0; i < 3; ++i) {
        min[i] = std::min(min[i], p[i]);
        max[i] = std::max(max[i], p[i]);
    }
}

// Decrements a counter that must not go below zero; a report keeps it at zero.
void Decrement(int& counter, char const* text) {
    --counter;
    CORE_CHECK(counter >= 0, text);
    if (counter < 0) counter = 0;
}

}  // namespace

// The state of one GetNodesHierarchy walk.
struct cscene::HierarchyWalk {
    cbitarray& order;
    int next = 0;
    cbitarray listed;
    FlatMap<const cnode*, int> index;
    // The nodes being walked, each with the number of its next child.
    std::vector<std::pair<const cnode*, int>> stack;

    int IndexOf(const cnode* node) const {
        const int* found = index.Find(node);
        return found ? *found : -1;
    }
};

// ---- Construction ----

cscene::cscene() {
    ResetColors();
    ResetFog(1);
}

cscene::~cscene() {
    Clear();
}

// ---- Nodes ----

void cscene::AddNode(cnode* node, int flag) {
    if (!node || Find(node) >= 0) return;
    AddToScene(node, flag);
}

void cscene::AddNodeArray(cnode** list, int count, int flag) {
    if (!list || count <= 0) return;
    // Without renaming no node depends on the ones added before it, so the array can grow once
    // (a loaded project hands over all its nodes here). A rename looks at the nodes added
    // before, so with `flag` 0 the nodes go one at a time.
    if (flag != 0 &&
        AddAllAtOnce(nodes, nnodes, list, count, [this](cnode* node) { JoinCounters(node); }))
        return;
    for (int i = 0; i < count; ++i) {
        if (!list[i]) continue;
        // Intended: the first node already in the scene ends the whole addition.
        if (Find(list[i]) >= 0) return;
        AddToScene(list[i], flag);
    }
}

int cscene::AddNewNodes(cnode** list, int count, const JoinedCounts& counts) {
    if (!list || count <= 0) return count == 0;
    if (!AppendAll(nodes, nnodes, list, static_cast<size_t>(count))) return 0;
    JoinCounts(counts);
    return 1;
}

void cscene::AddToScene(cnode* node, int flag) {
    if (flag == 0) EvalUniqueName(node);
    if (AppendOne(nodes, nnodes, node, "nodes")) JoinCounters(node);
}

void cscene::JoinCounters(cnode* node) {
    JoinedCounts counts;
    JoinFlags(node, counts);
    JoinCounts(counts);
}

void cscene::JoinFlags(cnode* node, JoinedCounts& counts) {
    // A node coming back from the undo history sheds its deleted mark; a node loaded hidden
    // stays hidden and, hidden, cannot be selected.
    unsigned long fl = node->GetFlags() & ~FLAG_DELETED;
    if (fl & FLAG_HIDDEN) fl &= ~FLAG_SELECTED;
    if (fl != node->GetFlags()) node->SetFlags(fl);
    if (fl & FLAG_HIDDEN) ++counts.hidden;
    if (fl & FLAG_SELECTED) {
        ++counts.selected;
        counts.lastSelected = node;
    }
}

void cscene::JoinedCounts::Add(const JoinedCounts& later) {
    hidden += later.hidden;
    selected += later.selected;
    if (later.lastSelected) lastSelected = later.lastSelected;
}

void cscene::JoinCounts(const JoinedCounts& counts) {
    nhidden += counts.hidden;
    if (counts.selected == 0) return;
    // Joined one at a time, the last selected node is cached when the count ends at one.
    nselected += counts.selected;
    UpdateSelNodeCache(counts.lastSelected);
}

int cscene::RemoveNode(cnode* node) {
    const int index = Find(node);
    if (index < 0) return 0;
    RemoveOne(nodes, nnodes, index);
    DropNodeFromCounters(node);
    return 1;
}

void cscene::DropNodeFromCounters(cnode* node) {
    const unsigned long fl = node->GetFlags();
    if (fl & FLAG_SELECTED) Decrement(nselected, "nselected>=0");
    if (fl & FLAG_HIDDEN) Decrement(nhidden, "nhidden>=0");
    node->SetFlags((fl & ~(FLAG_SELECTED | FLAG_HIDDEN)) | FLAG_DELETED);
    UpdateSelNodeCache(nullptr);
}

cnode* cscene::RemoveNodeAt(int index) {
    cnode* node = GetNodeAt(index);
    if (node) RemoveNode(node);
    return node;
}

void cscene::ClearNodes() {
    cnode** doomed = nodes;
    const int count = nnodes;
    nodes = nullptr;
    nnodes = 0;
    nselected = 0;
    nhidden = 0;
    selnode = nullptr;
    sublevel = 0;
    selcenter = cpoint3();
    // Last to first: where parents come before their children, as in every loaded scene, the
    // children go first, so no parent converts the keys of children that are about to go too.
    for (int i = count; i-- > 0;) doomed[i]->Delete();
    array_delete(doomed);
}

int cscene::Find(const cnode* node) const {
    return IndexOf(nodes, nnodes, node);
}

cnode* cscene::FindNode(char const* name) const {
    return ItemNamed(nodes, nnodes, name);
}

cnode* cscene::GetNodeAt(int index) const {
    return ItemAt(nodes, nnodes, index);
}

void cscene::EvalUniqueName(cnode* node) {
    RenameIfTaken(node, Find(node) >= 0 ? 1 : 0, UniqueNameForNode);
}

int cscene::GetNodesHierarchy(cbitarray& order) {
    order.SetSize(nnodes, 1);
    HierarchyWalk walk{order, 0, cbitarray(nnodes), FlatMap<const cnode*, int>(nnodes), {}};
    for (int i = 0; i < nnodes; ++i) {
        if (i + kPrefetchAhead < nnodes) walk.index.Prefetch(nodes[i + kPrefetchAhead]);
        walk.index.Insert(nodes[i], i);
    }
    const auto inScene = [&walk](const cnode* n) { return walk.IndexOf(n) >= 0; };
    for (int i = 0; i < nnodes; ++i) {
        if (i + kPrefetchAhead < nnodes) PrefetchBytes(nodes[i + kPrefetchAhead], sizeof(cnode));
        if (!AnyAncestor(nodes[i], inScene)) RecurseNodesHierarchy(i, walk);
    }
    // Whatever the roots did not reach (a parent chain that loops, or that leads to a scene node
    // only through nodes outside the scene) starts a walk of its own.
    for (int i = 0; i < nnodes; ++i)
        if (!walk.listed[i]) RecurseNodesHierarchy(i, walk);
    return walk.next;
}

int cscene::SetNodeOrder(const cbitarray& order) {
    if (order.GetSize() != nnodes) return 0;
    cbitarray taken(nnodes);
    for (int k = 0; k < nnodes; ++k) {
        const int from = order[k];
        if (from < 0 || from >= nnodes || taken[from]) return 0;
        taken.Set(from);
    }
    if (nnodes == 0) return 1;
    auto** sorted =
        static_cast<cnode**>(array_new(sizeof(cnode*) * static_cast<unsigned long>(nnodes)));
    CORE_CHECK(sorted != nullptr, "nodes");
    if (!sorted) return 0;
    for (int k = 0; k < nnodes; ++k) sorted[k] = nodes[order[k]];
    array_delete(nodes);
    nodes = sorted;
    return 1;
}

void cscene::RecurseNodesHierarchy(int index, HierarchyWalk& walk) {
    // Depth first, each node before its children in child order, on a stack of our own so
    // that a chain of any length fits.
    const auto list = [&walk](const cnode* node, int at) {
        walk.listed.Set(at);
        walk.order.Set(walk.next++, at);
        walk.stack.emplace_back(node, 0);
    };
    if (walk.listed[index]) return;
    list(nodes[index], index);
    while (!walk.stack.empty()) {
        auto& [node, nextChild] = walk.stack.back();
        if (nextChild >= node->NumChildren()) {
            walk.stack.pop_back();
            continue;
        }
        const cnode* child = node->GetChild(nextChild++);
        const int at = child ? walk.IndexOf(child) : -1;
        if (at >= 0 && !walk.listed[at]) list(child, at);
    }
}

int cscene::GetWorldBBox(int time, cpoint3& min, cpoint3& max, int selectedOnly,
                         int includeHidden) {
    bool any = false;
    cpoint3 lo, hi;
    for (int i = 0; i < nnodes; ++i) {
        cnode* node = nodes[i];
        const unsigned long fl = node->GetFlags();
        if (selectedOnly && !(fl & FLAG_SELECTED)) continue;
        if (!includeHidden && (fl & FLAG_HIDDEN)) continue;
        cpoint3 bmin, bmax;
        if (!node->GetBBox(time, bmin, bmax)) continue;
        const cmatrix4 tm = node->GetNodeTM(time, TM_ALL);
        for (int corner = 0; corner < 8; ++corner) {
            const cpoint3 local((corner & 1) ? bmax.x : bmin.x, (corner & 2) ? bmax.y : bmin.y,
                                (corner & 4) ? bmax.z : bmin.z);
            const cpoint3 world = tm.PointTransform(local);
            if (!any) lo = hi = world;
            any = true;
            Extend(lo, hi, world);
        }
    }
    min = lo;
    max = hi;
    return any ? 1 : 0;
}

int cscene::GetAnimSeg(int* start, int* end) const {
    bool any = false;
    int first = 0, last = 0;
    for (int i = 0; i < nnodes; ++i) {
        const canim* track = nodes[i]->GetAnimPtr();
        if (track->NumKeys() == 0) continue;
        first = any ? std::min(first, track->GetFirstKeyTime()) : track->GetFirstKeyTime();
        last = any ? std::max(last, track->GetLastKeyTime()) : track->GetLastKeyTime();
        any = true;
    }
    if (start) *start = first;
    if (end) *end = last;
    return any ? 1 : 0;
}

// ---- Materials ----

void cscene::AddMaterial(cmaterial* material, int flag) {
    if (!material || Find(material) >= 0) return;
    AddToScene(material, flag);
}

void cscene::AddMaterialArray(cmaterial** list, int count, int flag) {
    if (!list || count <= 0) return;
    // As AddNodeArray: without renaming the array grows once.
    if (flag != 0 && AddAllAtOnce(materials, nmaterials, list, count, [](cmaterial*) {})) return;
    for (int i = 0; i < count; ++i) {
        if (!list[i]) continue;
        // Intended: the first material already in the scene ends the whole addition.
        if (Find(list[i]) >= 0) return;
        AddToScene(list[i], flag);
    }
}

void cscene::AddToScene(cmaterial* material, int flag) {
    if (flag == 0) EvalUniqueName(material);
    AppendOne(materials, nmaterials, material, "materials");
}

int cscene::RemoveMaterial(cmaterial* material) {
    const int index = Find(material);
    if (index < 0) return 0;
    SendToNodes(MSG_MTL_DELETED, material, nullptr);
    RemoveOne(materials, nmaterials, index);
    return 1;
}

cmaterial* cscene::RemoveMaterialAt(int index) {
    cmaterial* material = GetMaterialAt(index);
    if (material) RemoveMaterial(material);
    return material;
}

void cscene::ClearMaterials() {
    cmaterial** doomed = materials;
    const int count = nmaterials;
    materials = nullptr;
    nmaterials = 0;
    for (int i = 0; i < count; ++i) {
        SendToNodes(MSG_MTL_DELETED, doomed[i], nullptr);
        doomed[i]->Delete();
    }
    array_delete(doomed);
}

int cscene::Find(const cmaterial* material) const {
    return IndexOf(materials, nmaterials, material);
}

cmaterial* cscene::FindMaterial(char const* name) const {
    return ItemNamed(materials, nmaterials, name);
}

cmaterial* cscene::GetMaterialAt(int index) const {
    return ItemAt(materials, nmaterials, index);
}

void cscene::EvalUniqueName(cmaterial* material) {
    RenameIfTaken(material, Find(material) >= 0 ? 1 : 0, UniqueNameForMaterial);
}

int cscene::IsMaterialUsed(cmaterial* material) const {
    for (int i = 0; i < nnodes; ++i)
        if (nodes[i]->IsMaterialUsed(material)) return 1;
    return 0;
}

int cscene::NumUsedMaterials() const {
    int used = 0;
    for (int i = 0; i < nmaterials; ++i) used += IsMaterialUsed(materials[i]);
    return used;
}

int cscene::GetUnusedMaterials(cbitarray& unused) const {
    unused.SetSize(nmaterials, 1);
    int count = 0;
    for (int i = 0; i < nmaterials; ++i) {
        if (IsMaterialUsed(materials[i])) continue;
        unused.Set(i);
        ++count;
    }
    return count;
}

int cscene::ApplyMaterial(cmaterial* material) {
    if (!material) return 0;
    // What a node uses must be in the list that is saved with the scene.
    AddMaterial(material, 0);
    int count = 0;
    for (int i = 0; i < nnodes; ++i) {
        if (!(nodes[i]->GetFlags() & FLAG_SELECTED)) continue;
        nodes[i]->SetMaterial(material);
        ++count;
    }
    return count;
}

int cscene::ApplyMaterial(int index) {
    return ApplyMaterial(GetMaterialAt(index));
}

int cscene::ResetMaterial() {
    int count = 0;
    for (int i = 0; i < nnodes; ++i) {
        if (!(nodes[i]->GetFlags() & FLAG_SELECTED)) continue;
        nodes[i]->SetMaterial(nullptr);
        ++count;
    }
    return count;
}

// ---- Selection and visibility ----

void cscene::Select(cnode* node) {
    if (!node) return;
    const unsigned long fl = node->GetFlags();
    if (fl & FLAG_SELECTED) return;
    CORE_CHECK(!(fl & FLAG_HIDDEN), "!(fl&FLAG_HIDDEN)");
    if (fl & FLAG_HIDDEN) return;
    node->SetFlags(fl | FLAG_SELECTED);
    ++nselected;
    UpdateSelNodeCache(node);
}

void cscene::Deselect(cnode* node) {
    if (!node) return;
    const unsigned long fl = node->GetFlags();
    if (!(fl & FLAG_SELECTED)) return;
    node->SetFlags(fl & ~FLAG_SELECTED);
    Decrement(nselected, "nselected>=0");
    UpdateSelNodeCache(nullptr);
}

void cscene::DeselectAll() {
    for (int i = 0; i < nnodes; ++i) {
        const unsigned long fl = nodes[i]->GetFlags();
        if (fl & FLAG_SELECTED) nodes[i]->SetFlags(fl & ~FLAG_SELECTED);
    }
    nselected = 0;
    selnode = nullptr;
}

void cscene::UpdateSelNodeCache(cnode* selectedNow) {
    selnode = nullptr;
    if (nselected != 1) return;
    // The node just selected is the only one; otherwise the survivor has to be found.
    if (selectedNow) {
        selnode = selectedNow;
        return;
    }
    for (int i = 0; i < nnodes && !selnode; ++i)
        if (nodes[i]->GetFlags() & FLAG_SELECTED) selnode = nodes[i];
}

cnode* cscene::GetSelNode() const {
    return nselected == 1 ? selnode : nullptr;
}

int cscene::NumSelElements() const {
    if (sublevel == 0) return nselected;
    int count = 0;
    for (int i = 0; i < nnodes; ++i)
        if (nodes[i]->GetFlags() & FLAG_SELECTED)
            count += nodes[i]->GetNumSelElements(static_cast<unsigned int>(sublevel));
    return count;
}

int cscene::CalcSelPos(cpoint3& point) {
    const int time = GetAnimTime();
    cpoint3 sum;
    int contributions = 0;
    int ns = 0;
    for (int i = 0; i < nnodes; ++i) {
        if (i + kPrefetchAhead < nnodes) PrefetchBytes(nodes[i + kPrefetchAhead], kNodeHeadBytes);
        cnode* node = nodes[i];
        if (!(node->GetFlags() & FLAG_SELECTED)) continue;
        ++ns;
        cpoint3 center = node->GetPosition(time);
        if (sublevel != 0 &&
            !node->GetSelElementsCenter(static_cast<unsigned int>(sublevel), time, center))
            continue;
        sum += center;
        ++contributions;
    }
    CORE_CHECK(ns == nselected, "ns==nselected");
    point = contributions ? sum / static_cast<float>(contributions) : cpoint3();
    return contributions;
}

int cscene::CalcSelBBox(cpoint3& min, cpoint3& max) {
    return GetWorldBBox(GetAnimTime(), min, max, 1, 0);
}

void cscene::UpdateSelPos() {
    CalcSelPos(selcenter);
}

void cscene::Hide(cnode* node) {
    if (!node) return;
    if (node->GetFlags() & FLAG_HIDDEN) return;
    if (node->GetFlags() & FLAG_SELECTED) Deselect(node);
    node->SetFlags(node->GetFlags() | FLAG_HIDDEN);
    ++nhidden;
}

void cscene::HideSelected() {
    for (int i = 0; i < nnodes; ++i)
        if (nodes[i]->GetFlags() & FLAG_SELECTED) Hide(nodes[i]);
}

void cscene::HideUnselected() {
    for (int i = 0; i < nnodes; ++i)
        if (!(nodes[i]->GetFlags() & (FLAG_SELECTED | FLAG_HIDDEN))) Hide(nodes[i]);
}

void cscene::Unhide(cnode* node) {
    if (!node) return;
    const unsigned long fl = node->GetFlags();
    if (!(fl & FLAG_HIDDEN)) return;
    node->SetFlags(fl & ~FLAG_HIDDEN);
    Decrement(nhidden, "nhidden>=0");
}

void cscene::UnhideAll() {
    for (int i = 0; i < nnodes; ++i) Unhide(nodes[i]);
}

// ---- Numeric transforms of the selection ----

int cscene::HasSelectedAncestor(const cnode* node) {
    return AnyAncestor(node, [](const cnode* n) { return (n->GetFlags() & FLAG_SELECTED) != 0; });
}

template <class Apply>
void cscene::ForEachSelectedTop(Apply apply) {
    for (int i = 0; i < nnodes; ++i)
        if ((nodes[i]->GetFlags() & FLAG_SELECTED) && !HasSelectedAncestor(nodes[i]))
            apply(nodes[i]);
}

cpoint3 cscene::SelectedPivotsCenter(int time) const {
    cpoint3 sum;
    int count = 0;
    for (int i = 0; i < nnodes; ++i) {
        if (!(nodes[i]->GetFlags() & FLAG_SELECTED)) continue;
        sum += nodes[i]->GetPosition(time);
        ++count;
    }
    return count ? sum / static_cast<float>(count) : cpoint3();
}

void cscene::MoveSelected(const cpoint3& delta) {
    const int time = GetAnimTime();
    ForEachSelectedTop([&](cnode* node) { node->Move(time, delta, 0, 0, 0, 0.0f); });
    UpdateSelPos();
}

void cscene::RotateSelected(const cquat& rotation) {
    const int time = GetAnimTime();
    const cpoint3 center = SelectedPivotsCenter(time);
    ForEachSelectedTop([&](cnode* node) { node->Rotate(time, rotation, center, 0); });
    UpdateSelPos();
}

void cscene::ScaleSelected(const cpoint3& factors) {
    if (!(factors.x > 0.0f && factors.y > 0.0f && factors.z > 0.0f)) return;
    const int time = GetAnimTime();
    const cpoint3 center = SelectedPivotsCenter(time);
    ForEachSelectedTop([&](cnode* node) { node->Scale(time, factors, center, 0); });
    UpdateSelPos();
}

// ---- Time ----

void cscene::UpdateNodesAtAnimTimeChange() {
    for (int i = 0; i < nnodes; ++i) nodes[i]->UpdateTimeIdle();
}

void cscene::UpdateMiscAtAnimTimeChange() {
    UpdateSelPos();
}

// ---- Final deletion ----

void cscene::SendToNodes(unsigned long msg, void* a, void* b) {
    for (int i = 0; i < nnodes; ++i) nodes[i]->HandleMessage(msg, a, b);
}

void cscene::DeleteNodeForGood(cnode* node) {
    if (!node) return;
    RemoveNode(node);
    SendToNodes(MSG_NODE_DELETED, node, nullptr);
    Application_InformDeleted(node);
    node->Delete();
}

// ---- Replacing the whole scene ----

void cscene::SwapNodesAndMaterials(cscene& other) {
    std::swap(nodes, other.nodes);
    std::swap(nnodes, other.nnodes);
    std::swap(materials, other.materials);
    std::swap(nmaterials, other.nmaterials);
    std::swap(nselected, other.nselected);
    std::swap(nhidden, other.nhidden);
    std::swap(selnode, other.selnode);
    std::swap(sublevel, other.sublevel);
    std::swap(selcenter, other.selcenter);
}

// ---- Scene settings ----

void cscene::ResetColors() {
    ambient = ccolor(0.2f, 0.2f, 0.2f, 1.0f);
    bkcolor = ccolor(0.0f, 0.0f, 0.0f, 1.0f);
}

void cscene::SetFogValues(const cpoint3& color, float start, float end, float density) {
    fogcolor = color;
    fogstart = start;
    fogend = end;
    fogdensity = density;
}

void cscene::GetFogValues(cpoint3& color, float& start, float& end, float& density) const {
    color = fogcolor;
    start = fogstart;
    end = fogend;
    density = fogdensity;
}

void cscene::ResetFog(int disable) {
    SetFogValues(cpoint3(0.0f, 0.0f, 0.0f), 0.0f, 1.0f, 1.0f);
    if (disable) fog = 0;
}

// ---- Notes ----

void cscene::ClearNotes() {
    ClearNotesText(notes);
}

void cscene::CopyNotes(char const* text, int length) {
    CopyNotesText(notes, text, length, [](bool ok, char const* what) { CORE_CHECK(ok, what); });
}

void cscene::AddNotes(char const* text, int length) {
    AddNotesText(notes, text, length, [](bool ok, char const* what) { CORE_CHECK(ok, what); });
}

int cscene::NotesSize() const {
    return NotesTextSize(notes);
}

void cscene::SetBkImage(cimage* image) {
    if (image)
        CopyImage(bkimage, *image);
    else
        bkimage.Clear();
}

void cscene::Clear() {
    ClearBkImage();
    ClearMaterials();
    ClearNodes();
    ClearNotes();
    ResetColors();
    ResetFog(1);
}

// ---- Unique names ----

void UniqueNameForNode(char* name, int flag) {
    MakeNameUnique(
        name, flag, [](int i) -> char const* { return MainScene.GetNodeAt(i)->GetName(); },
        MainScene.NumNodes());
}

void UniqueNameForMaterial(char* name, int flag) {
    MakeNameUnique(
        name, flag, [](int i) -> char const* { return MainScene.GetMaterialAt(i)->GetName(); },
        MainScene.NumMaterials());
}
