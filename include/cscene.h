// cscene: the container of a scene, and MainScene, its one instance.
//
// The scene keeps the nodes and the materials in insertion order (index order is the order of
// GetNodeAt and of every scene-wide loop), the selected-node and hidden-node counters in step
// with the nodes' FLAG_SELECTED and FLAG_HIDDEN bits, the scene-wide colours, background image,
// fog, coordinate-system and axis settings and the scene notes. It owns the nodes and materials
// from AddNode/AddMaterial until RemoveNode/RemoveMaterial hands them back (to the undo item
// that keeps them).
//
// Invariants, reported through the assertion facility when broken: a hidden node is never
// selected ("!(fl&FLAG_HIDDEN)"); neither counter goes below zero ("nselected>=0",
// "nhidden>=0"); a recount of the selected nodes equals the counter ("ns==nselected").
//
// Selection and visibility work on nodes of this scene: selecting or hiding a node that is not
// in it would count it without the scene-wide loops ever seeing it.
//
// Times are ticks; every world value is in scene units with points as row vectors.
// The drawing and picking operations come with the viewports.
#ifndef ORVANE_CSCENE_H
#define ORVANE_CSCENE_H

#include "cbitarray.h"
#include "ccolor.h"
#include "cimage.h"
#include "coreapi.h"
#include "cpoint.h"
#include "cquat.h"

class cnode;
class cmaterial;

class CORE_API cscene {
public:
    // An empty scene with the default colours, fog off with its default values, no notes.
    cscene();
    // Destroys every node and material still held.
    ~cscene();

    cscene(const cscene&) = delete;
    cscene& operator=(const cscene&) = delete;

    // ---- Nodes ----

    // Adds `node` at the end of the node array unless it is null or already in the scene.
    // With `flag` 0 its name is first made unique (UniqueNameForNode); other values keep it.
    // The node's flags join the counters: FLAG_DELETED is cleared, a hidden node counts as
    // hidden (and loses FLAG_SELECTED), a selected one as selected.
    void AddNode(cnode* node, int flag);
    // Adds `count` nodes in array order as AddNode does, stopping at the first one that is
    // already in the scene: the nodes after it are not added. A null entry is skipped; a
    // count of 0 or less adds nothing.
    void AddNodeArray(cnode** nodes, int count, int flag);
    // Takes `node` out of the node array without destroying it: it leaves the selection and
    // the hidden set (both counters follow) and its flags become
    // (flags & ~(FLAG_SELECTED | FLAG_HIDDEN)) | FLAG_DELETED. Returns 1, or 0 when the node
    // is not in the scene.
    int RemoveNode(cnode* node);
    // RemoveNode of the node at `index`; returns that node, or null for an index out of range.
    cnode* RemoveNodeAt(int index);
    // Destroys every node and empties the array; both counters and the sub-object level
    // return to 0. No node messages are sent: no node is left to receive them, and the host
    // that asked for the clear drops its own references.
    void ClearNodes();
    // The index of `node`, or -1.
    int Find(const cnode* node) const;
    // The first node whose name equals `name` (case-sensitive), or null.
    cnode* FindNode(char const* name) const;
    // The node at `index`, or null for an index out of range.
    cnode* GetNodeAt(int index) const;
    int NumNodes() const { return nnodes; }
    // Renames `node` with UniqueNameForNode when another node of the scene bears its name.
    void EvalUniqueName(cnode* node);

    // Lists the nodes parents first: `order` is resized to NumNodes() and element k receives
    // the scene index of the k-th node listed; a node whose parent is in the scene comes after
    // that parent, unless their chain loops. The roots (nodes with no ancestor in the scene) are
    // taken in index order, each followed depth-first by its descendants in child order. A child
    // outside the scene is not walked through; nodes reached neither way (below such a child, or on
    // a parent chain that loops) are then taken in index order, each with its descendants. Every
    // node appears exactly once. Returns the number of entries, NumNodes().
    int GetNodesHierarchy(cbitarray& order);
    // Rearranges the node array: the node at index order[k] moves to index k. Returns 1, or 0
    // with nothing changed when `order` is not a permutation of 0 .. NumNodes() - 1.
    int SetNodeOrder(const cbitarray& order);

    // The world-space box of the nodes at `time`: each node's local box (GetBBox) with its
    // eight corners transformed by the node's world matrix (GetNodeTM). A node without
    // geometry has an empty local box at its origin and so contributes its pivot. With
    // `selectedOnly` non-zero only selected nodes count; hidden nodes count only when
    // `includeHidden` is non-zero. Returns 1 when at least one node counted; otherwise 0, with
    // min and max both (0, 0, 0).
    int GetWorldBBox(int time, cpoint3& min, cpoint3& max, int selectedOnly, int includeHidden);

    // The span of key times over every node's key track: the earliest first key and the latest
    // last key, in ticks. Null pointers are skipped. Returns 1, or 0 for a scene without nodes
    // (both times then 0).
    int GetAnimSeg(int* start, int* end) const;

    // ---- Materials ----

    // Adds `material` at the end of the material array unless it is null or already there;
    // with `flag` 0 its name is first made unique (UniqueNameForMaterial).
    void AddMaterial(cmaterial* material, int flag);
    // Adds `count` materials in array order, stopping at the first one already present. A
    // null entry is skipped; a count of 0 or less adds nothing.
    void AddMaterialArray(cmaterial** materials, int count, int flag);
    // Every node receives HandleMessage(MSG_MTL_DELETED, material, 0) so that it drops its
    // references, then the material leaves the array without being destroyed. Returns 1, or 0
    // when the material is not in the scene.
    int RemoveMaterial(cmaterial* material);
    // RemoveMaterial of the material at `index`; returns it, or null out of range.
    cmaterial* RemoveMaterialAt(int index);
    // For each material in turn, every node receives MSG_MTL_DELETED and the material is
    // destroyed; the array ends empty.
    void ClearMaterials();
    // The index of `material`, or -1.
    int Find(const cmaterial* material) const;
    // The first material whose name equals `name` (case-sensitive), or null.
    cmaterial* FindMaterial(char const* name) const;
    // The material at `index`, or null out of range.
    cmaterial* GetMaterialAt(int index) const;
    int NumMaterials() const { return nmaterials; }
    // Renames `material` with UniqueNameForMaterial when another material bears its name.
    void EvalUniqueName(cmaterial* material);

    // 1 when some node uses `material` (asks every node's IsMaterialUsed), else 0. Null is
    // asked too: a node without a material uses it.
    int IsMaterialUsed(cmaterial* material) const;
    // The number of the scene's materials that some node uses.
    int NumUsedMaterials() const;
    // Resizes `unused` to NumMaterials() and sets element i to 1 when material i is used by no
    // node, 0 otherwise. Returns the number of unused materials.
    int GetUnusedMaterials(cbitarray& unused) const;
    // Gives every selected node `material` (SetMaterial); a null material does nothing (see
    // ResetMaterial). A material not yet in the scene is first added with AddMaterial(m, 0),
    // so that whatever a node uses is saved with the scene. Returns the number of selected
    // nodes.
    int ApplyMaterial(cmaterial* material);
    // ApplyMaterial of the material at `index`; an index out of range does nothing (returns 0).
    int ApplyMaterial(int index);
    // Takes the material away from every selected node (SetMaterial(null)); returns their
    // number.
    int ResetMaterial();

    // ---- Selection and visibility ----

    // Sets FLAG_SELECTED and counts the node. An already selected node is left alone; a hidden
    // one is reported ("!(fl&FLAG_HIDDEN)") and stays unselected. Null is ignored.
    void Select(cnode* node);
    // Clears FLAG_SELECTED and uncounts the node; an unselected node is left alone.
    void Deselect(cnode* node);
    // Deselects every node.
    void DeselectAll();
    int NumSelected() const { return nselected; }
    // The selected node when exactly one is selected, otherwise null.
    cnode* GetSelNode() const;
    // At object level (GetSubLevel() 0) the number of selected nodes; at a sub-object level
    // the sum of the selected nodes' selected elements at that level.
    int NumSelElements() const;
    // The centre of the selection at the current animation time: at object level the mean of
    // the selected nodes' world positions (pivots); at a sub-object level the mean of the
    // centres of the selected elements (GetSelElementsCenter) of those selected nodes that
    // have any. Returns the number of contributions, or 0 with `point` set to (0, 0, 0).
    int CalcSelPos(cpoint3& point);
    // The world box of the selected nodes at the current animation time (GetWorldBBox with
    // selectedOnly). Returns 1, or 0 with both corners (0, 0, 0) for an empty selection.
    int CalcSelBBox(cpoint3& min, cpoint3& max);
    // Caches CalcSelPos as the selection centre; GetSelCenter answers the cached point.
    void UpdateSelPos();
    cpoint3 GetSelCenter() const { return selcenter; }

    // Hides the node: a selected node is first deselected, then FLAG_HIDDEN is set and
    // counted. A hidden node is left alone; null is ignored.
    void Hide(cnode* node);
    // Hides every selected node / every unselected visible node.
    void HideSelected();
    void HideUnselected();
    // Clears FLAG_HIDDEN and uncounts the node; a visible node is left alone.
    void Unhide(cnode* node);
    void UnhideAll();
    int NumHidden() const { return nhidden; }

    // The scene's current sub-object level (0 = object level); the modify tools set it
    // together with the nodes' own levels.
    void SetSubLevel(int level) { sublevel = level; }
    int GetSubLevel() const { return sublevel; }

    // Numeric transforms of the selected nodes at the current animation time, each through the
    // node's own Move, Rotate or Scale. A selected node with a selected ancestor is skipped:
    // it follows that ancestor already. Rotation and scale are about the selection centre
    // (CalcSelPos); the cached centre is updated afterwards. `delta` is a world vector,
    // `rotation` is applied after each node's own, `factors` are per world axis and must all
    // be greater than 0 for anything to happen.
    void MoveSelected(const cpoint3& delta);
    void RotateSelected(const cquat& rotation);
    void ScaleSelected(const cpoint3& factors);

    // ---- Time ----

    // Every node re-evaluates its transform and parameters at the current animation time.
    void UpdateNodesAtAnimTimeChange();
    // The rest of the scene's time-dependent state: the cached selection centre, which
    // follows the selected nodes as they move with the time.
    void UpdateMiscAtAnimTimeChange();

    // ---- Final deletion ----

    // Destroys a node for good: a node still in the scene is removed first; every node of the
    // scene receives HandleMessage(MSG_NODE_DELETED, node, 0) so that it drops its references,
    // then the host's Application_InformDeleted(node) is called, then node->Delete(). Null is
    // ignored.
    void DeleteNodeForGood(cnode* node);

    // ---- Replacing the whole scene ----

    // Exchanges the nodes and materials with those of `other`, together with the state that
    // goes with them: the selected and hidden counters, the cached selected node, the
    // sub-object level and the cached selection centre. Settings, colours and notes stay with
    // each scene. The project loader moves MainScene's contents aside into a scratch scene
    // with it, loads into the emptied MainScene, and swaps back when the file is refused.
    void SwapNodesAndMaterials(cscene& other);

    // ---- Scene settings ----

    // Colours of the scene's ambient light and of the viewport and render background.
    void SetAmbient(const ccolor& color) { ambient = color; }
    ccolor GetAmbient() const { return ambient; }
    void SetBkColor(const ccolor& color) { bkcolor = color; }
    ccolor GetBkColor() const { return bkcolor; }
    // Restores the ambient colour (0.2, 0.2, 0.2, 1) and the background colour (0, 0, 0, 1).
    void ResetColors();

    // The background image, which the scene owns. SetBkImage copies `image` (pixels, path,
    // frame and key settings; the caller keeps its own) or, given null, empties the scene's.
    void SetBkImage(cimage* image);
    // The scene's own image, never null: an image without pixels (IsEmpty) when none is set.
    cimage* GetBkImage() { return &bkimage; }
    // Releases the image's pixels and texture.
    void ClearBkImage() { bkimage.Clear(); }

    // Fog: a switch, a colour and the start distance, end distance and density.
    void EnableFog(int on) { fog = on ? 1 : 0; }
    int IsFogEnabled() const { return fog; }
    void SetFogValues(const cpoint3& color, float start, float end, float density);
    void GetFogValues(cpoint3& color, float& start, float& end, float& density) const;
    // Restores the fog values to colour (0, 0, 0), start 0, end 1, density 1; a non-zero
    // `disable` also switches fog off.
    void ResetFog(int disable);

    // The coordinate system in which the selection is transformed, the axis restriction of
    // interactive transforms and the switch for drawing the selection's axes; the viewport
    // tools give the values their meaning. Defaults 0, 0 and 1; Clear keeps them.
    void SetCS(int mode) { csmode = mode; }
    int GetCS() const { return csmode; }
    void RestrictTo(int axis) { restrictaxis = axis; }
    int GetRestrictAxis() const { return restrictaxis; }
    void DrawAxis(int on) { drawaxis = on; }
    int GetDrawAxis() const { return drawaxis; }

    // ---- Notes: free text of at most 8192 characters ----

    void ClearNotes();
    // Replaces the notes by the first `length` (at most 8192) characters of `text`; ignored
    // for null or empty text or a length of 0 or less. Reports "notes" when the buffer cannot
    // be allocated.
    void CopyNotes(char const* text, int length);
    // Appends at most `length` characters of `text`, never past 8192 in all; without notes it
    // is CopyNotes. Reports "nnotes" when the buffer cannot be allocated.
    void AddNotes(char const* text, int length);
    // The notes, or null.
    char* GetNotes() const { return notes; }
    // The notes' length in characters (0 with none).
    int NotesSize() const;

    // Returns the scene to its starting state, in this order: ClearBkImage, ClearMaterials,
    // ClearNodes, ClearNotes, ResetColors, ResetFog(1).
    void Clear();

protected:
    // Appends to the array (one entry longer, old entries copied, old array freed); with
    // `flag` 0 the name is first made unique.
    void AddToScene(cnode* node, int flag);
    void AddToScene(cmaterial* material, int flag);
    // The state of one GetNodesHierarchy walk: the order being filled, the next position in
    // it, which scene indices are listed already, and the scene index of every node.
    struct HierarchyWalk;
    // Lists the node at scene index `index` unless it is listed already, then its
    // descendants that are in the scene, depth-first in child order (on a stack of its own,
    // not the call stack, so that a chain of any length fits).
    void RecurseNodesHierarchy(int index, HierarchyWalk& walk);

private:
    // Updates the cached single selected node after a change of the selected counter.
    void UpdateSelNodeCache(cnode* selectedNow);
    // 1 when some ancestor of `node` is selected.
    static int HasSelectedAncestor(const cnode* node);
    // Calls `apply` on every selected node that has no selected ancestor.
    template <class Apply>
    void ForEachSelectedTop(Apply apply);
    // The mean world position of the selected nodes at `time`, or (0, 0, 0).
    cpoint3 SelectedPivotsCenter(int time) const;
    void DropNodeFromCounters(cnode* node);
    // The flag changes and counting of a node that has just joined the array.
    void JoinCounters(cnode* node);
    // What nodes joining the array add to the counters, gathered node by node by JoinFlags.
    struct JoinedCounts {
        int hidden = 0;
        int selected = 0;
        cnode* lastSelected = nullptr;
        // Adds the counts of nodes that join after these.
        void Add(const JoinedCounts& later);
    };
    // The flag changes of a node about to join, counted into `counts`. It touches only the
    // node, so nodes that nothing else holds yet may be prepared on any thread.
    static void JoinFlags(cnode* node, JoinedCounts& counts);
    // Adds `counts` to the counters, as joining those nodes one at a time would.
    void JoinCounts(const JoinedCounts& counts);
    // Appends `count` nodes that nothing else holds yet (none in the scene, none repeated) as
    // AddNodeArray with a non-zero flag would, without looking for them first; JoinFlags has
    // prepared each of them, in order, into `counts`. Returns 0, adding none, when the array
    // cannot grow. Only the project loader, which has just created them, knows that of its
    // nodes.
    int AddNewNodes(cnode** list, int count, const JoinedCounts& counts);
    friend struct LoadedNodesHandOver;
    void SendToNodes(unsigned long msg, void* a, void* b);

    cnode** nodes = nullptr;  // nnodes entries, null when empty
    int nnodes = 0;
    cmaterial** materials = nullptr;  // nmaterials entries, null when empty
    int nmaterials = 0;
    int nselected = 0;
    int nhidden = 0;
    cnode* selnode = nullptr;  // the selected node while nselected is 1
    int sublevel = 0;
    cpoint3 selcenter;
    ccolor ambient;
    ccolor bkcolor;
    cimage bkimage;
    int fog = 0;
    cpoint3 fogcolor;
    float fogstart = 0.0f;
    float fogend = 1.0f;
    float fogdensity = 1.0f;
    int csmode = 0;
    int restrictaxis = 0;
    int drawaxis = 1;
    char* notes = nullptr;  // zero-terminated, or null
};

// The scene of the application.
extern CORE_API cscene MainScene;

// Makes `name` (a buffer of at least 64 bytes) a name that no node of MainScene bears, in
// place. Nothing changes for a null or empty name, an empty scene, or a free name; with `flag`
// non-zero the name belongs to a node already in the scene, so it counts as taken only when a
// second node bears it. Otherwise the trailing decimal digits are stripped and the suffixes
// 1, 2, 3 ... (at most 100000 tries) appended until a free name is found ("Box12" with "Box1"
// free gives "Box1"). A new name never exceeds 63 characters: when base plus suffix would, the
// base loses characters at its end until the suffix fits. When every try is taken the name is
// left as it was. Names are compared case-sensitively over their first 63 characters.
CORE_API void UniqueNameForNode(char* name, int flag);
// The same over the materials of MainScene.
CORE_API void UniqueNameForMaterial(char* name, int flag);

#endif
