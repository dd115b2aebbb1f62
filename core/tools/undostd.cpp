// The standard undo items, one class per undo type code, and their factory.
//
// Every item works on MainScene. Nodes and materials are captured by pointer; a captured
// node or material that is no longer in the scene when an item is restored is left alone,
// because whatever took it out (a newer level, or the host) owns it now. Nodes and materials
// that an item takes out of the scene itself are held by the item and destroyed with it: nodes
// through the scene's final-delete protocol (MSG_NODE_DELETED to every node, the host's
// Application_InformDeleted, then destruction).
#include <algorithm>
#include <memory>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "animclock.h"
#include "canim.h"
#include "cbitarray.h"
#include "ccamera.h"
#include "clight.h"
#include "cmaterial.h"
#include "cmesh.h"
#include "cnode.h"
#include "cscene.h"
#include "undo.h"

namespace {

// ---- What is captured of a node ----

enum NodePart : unsigned {
    PART_TRANSFORM = 0x1,  // the cached transform at the current time and the key track
    PART_FLAGS = 0x2,      // selected and hidden
    PART_NAME = 0x4,
    PART_LINKS = 0x8,  // the parent and the children in their order
    PART_MATERIAL = 0x10,
    PART_COLOR = 0x20,
    PART_PROPERTIES = 0x40,  // shadow switches and see-through display
    PART_IK = 0x80,          // every IK parameter
    PART_NOTES = 0x100,
};

// Reaches the node's cached transform, which has no public setter that leaves the key track
// alone: restoring it through SetPosition would write keys and round through world space.
struct NodeCache : cnode {
    static cpoint3& Position(cnode& node) { return node.*(&NodeCache::position); }
    static cquat& Rotation(cnode& node) { return node.*(&NodeCache::rotation); }
    static cpoint3& Scale(cnode& node) { return node.*(&NodeCache::scale); }
};

bool InScene(const cnode* node) {
    return MainScene.Find(node) >= 0;
}

bool InScene(const cmaterial* material) {
    return MainScene.Find(material) >= 0;
}

// The state of one node as the parts it was captured with.
class NodeState {
public:
    NodeState(cnode* node, unsigned parts) : node(node), parts(parts) {
        if (parts & PART_TRANSFORM) CaptureTransform();
        if (parts & PART_FLAGS) flags = node->GetFlags();
        if (parts & PART_NAME) node->GetName(name);
        if (parts & PART_LINKS) CaptureLinks();
        if (parts & PART_MATERIAL) material = node->GetMaterial();
        if (parts & PART_COLOR) color = node->GetColor();
        if (parts & PART_PROPERTIES) {
            castShadow = node->GetCastShadowFlag();
            receiveShadow = node->GetReceiveShadowFlag();
            seeThrough = node->GetSeeThroughFlag();
        }
        if (parts & PART_IK) CaptureIK();
        if (parts & PART_NOTES && node->NotesSize() > 0)
            notes.assign(node->GetNotes(), static_cast<size_t>(node->NotesSize()));
    }

    cnode* Node() const { return node; }
    unsigned long Flags() const { return flags; }

    // Puts back every captured part except the flags, which go through the scene's counters
    // (see RestoreVisibility).
    void Restore() const {
        if (parts & PART_TRANSFORM) RestoreTransform();
        if (parts & PART_NAME) node->SetName(name);
        if (parts & PART_LINKS) RestoreLinks();
        if (parts & PART_MATERIAL) node->SetMaterial(material);
        if (parts & PART_COLOR) node->SetColor(color);
        if (parts & PART_PROPERTIES) {
            node->SetCastShadowFlag(castShadow);
            node->SetReceiveShadowFlag(receiveShadow);
            node->SetSeeThroughFlag(seeThrough);
        }
        if (parts & PART_IK) RestoreIK();
        if (parts & PART_NOTES) {
            node->ClearNotes();
            if (!notes.empty()) node->CopyNotes(notes.data(), static_cast<int>(notes.size()));
        }
    }

private:
    void CaptureIK() {
        ik.dof = node->IsIKDOFEnabled();
        ik.damping = node->IsIKDampingEnabled();
        ik.locked = node->IsIKLocked();
        ik.dampWidth = node->GetIKDampWidth();
        ik.minRot = node->GetIKMinRot();
        ik.maxRot = node->GetIKMaxRot();
        ik.initialRot = node->GetIKInitialRot();
        ik.iterations = node->GetIKNumIterations();
        ik.recurse = node->GetIKRecurseNum();
    }

    void RestoreIK() const {
        node->EnableIKDOF(ik.dof);
        node->EnableIKDamping(ik.damping);
        node->LockIK(ik.locked);
        node->SetIKDampWidth(ik.dampWidth);
        node->SetIKMinRot(ik.minRot);
        node->SetIKMaxRot(ik.maxRot);
        node->SetIKInitialRot(ik.initialRot);
        node->SetIKNumIterations(ik.iterations);
        node->SetIKRecurseNum(ik.recurse);
    }

    void CaptureTransform() {
        track = *node->GetAnimPtr();
        position = NodeCache::Position(*node);
        rotation = NodeCache::Rotation(*node);
        scale = NodeCache::Scale(*node);
    }
    void RestoreTransform() const {
        *node->GetAnimPtr() = track;
        NodeCache::Position(*node) = position;
        NodeCache::Rotation(*node) = rotation;
        NodeCache::Scale(*node) = scale;
    }
    void CaptureLinks() {
        parent = node->GetParent();
        for (int i = 0; i < node->NumChildren(); ++i) children.push_back(node->GetChild(i));
    }
    // The links are put back as plain pointers: the transforms are restored separately, so
    // nothing is converted.
    void RestoreLinks() const {
        node->SetParent(parent && InScene(parent) ? parent : nullptr, 0);
        while (node->NumChildren() > 0) node->Detach(node->NumChildren() - 1, 0);
        for (cnode* child : children)
            if (InScene(child) || child->GetParent() == node) node->Attach(child, 0);
    }

    cnode* node;
    unsigned parts;
    canim track;
    cpoint3 position;
    cquat rotation;
    cpoint3 scale;
    unsigned long flags = 0;
    char name[NODE_NAME_SIZE] = {};
    cnode* parent = nullptr;
    std::vector<cnode*> children;
    cmaterial* material = nullptr;
    ccolor color;
    int castShadow = 0, receiveShadow = 0, seeThrough = 0;
    struct {
        int dof = 0, damping = 0, locked = 0;
        float dampWidth = 0.0f;
        cpoint3 minRot, maxRot;
        cquat initialRot;
        int iterations = 0, recurse = 0;
    } ik;
    std::string notes;
};

// Selection and visibility go through the scene so that its counters follow: first every
// node leaves the states it should not have, then enters the ones it should.
void RestoreVisibility(const std::vector<NodeState>& states) {
    for (const NodeState& state : states) {
        cnode* node = state.Node();
        if (!InScene(node)) continue;
        if ((node->GetFlags() & FLAG_SELECTED) && !(state.Flags() & FLAG_SELECTED))
            MainScene.Deselect(node);
        if ((node->GetFlags() & FLAG_HIDDEN) && !(state.Flags() & FLAG_HIDDEN))
            MainScene.Unhide(node);
    }
    for (const NodeState& state : states) {
        cnode* node = state.Node();
        if (!InScene(node)) continue;
        if (state.Flags() & FLAG_HIDDEN) MainScene.Hide(node);
        if (state.Flags() & FLAG_SELECTED) MainScene.Select(node);
    }
}

// ---- Which nodes are captured ----

enum class Scope { Selected, SelectedAndChildren, All };

std::vector<cnode*> SceneNodes() {
    std::vector<cnode*> nodes;
    for (int i = 0; i < MainScene.NumNodes(); ++i) nodes.push_back(MainScene.GetNodeAt(i));
    return nodes;
}

std::vector<cnode*> SelectedNodes() {
    std::vector<cnode*> nodes;
    for (cnode* node : SceneNodes())
        if (node->GetFlags() & FLAG_SELECTED) nodes.push_back(node);
    return nodes;
}

// `nodes` followed by the children of each that are not among them yet.
std::vector<cnode*> WithChildren(std::vector<cnode*> nodes) {
    std::unordered_set<cnode*> listed(nodes.begin(), nodes.end());
    const std::size_t count = nodes.size();
    for (std::size_t i = 0; i < count; ++i)
        for (int c = 0; c < nodes[i]->NumChildren(); ++c)
            if (listed.insert(nodes[i]->GetChild(c)).second) nodes.push_back(nodes[i]->GetChild(c));
    return nodes;
}

std::vector<cnode*> NodesOf(Scope scope) {
    switch (scope) {
        case Scope::Selected:
            return SelectedNodes();
        case Scope::SelectedAndChildren:
            return WithChildren(SelectedNodes());
        case Scope::All:
            break;
    }
    return SceneNodes();
}

std::vector<NodeState> Capture(const std::vector<cnode*>& nodes, unsigned parts) {
    std::vector<NodeState> states;
    states.reserve(nodes.size());
    for (cnode* node : nodes) states.emplace_back(node, parts);
    return states;
}

// Puts the scene's nodes back into the order `order` lists; nodes not listed keep their
// relative order after the listed ones.
void RestoreNodeOrder(const std::vector<cnode*>& order) {
    const int count = MainScene.NumNodes();
    cbitarray permutation(count);
    std::vector<bool> placed(static_cast<std::size_t>(count), false);
    int next = 0;
    for (cnode* node : order) {
        const int at = MainScene.Find(node);
        if (at < 0 || placed[static_cast<std::size_t>(at)]) continue;
        placed[static_cast<std::size_t>(at)] = true;
        permutation.Set(next++, at);
    }
    for (int at = 0; at < count; ++at)
        if (!placed[static_cast<std::size_t>(at)]) permutation.Set(next++, at);
    MainScene.SetNodeOrder(permutation);
}

void RestoreStates(const std::vector<NodeState>& states) {
    for (const NodeState& state : states)
        if (InScene(state.Node())) state.Restore();
}

// ---- Nodes held out of the scene ----

// Takes `node` out of the live hierarchy: it leaves a parent that is not in `held`, and its
// children that are not in `held` become roots keeping their world transforms.
void IsolateFromScene(cnode* node, const std::unordered_set<cnode*>& held) {
    cnode* parent = node->GetParent();
    if (parent && !held.count(parent)) {
        parent->Detach(node, 0);
        node->SetParent(nullptr, 0);
    }
    for (int i = node->NumChildren() - 1; i >= 0; --i)
        if (!held.count(node->GetChild(i))) node->Detach(i, 1);
}

// Nodes the item took out of the scene; destroyed for good with the item.
class HeldNodes {
public:
    HeldNodes() = default;
    HeldNodes(const HeldNodes&) = delete;
    HeldNodes& operator=(const HeldNodes&) = delete;
    ~HeldNodes() { DeleteForGood(); }

    // Takes `nodes` out of the hierarchy and the scene and keeps them.
    void Take(const std::vector<cnode*>& nodes) {
        const std::unordered_set<cnode*> set(nodes.begin(), nodes.end());
        for (cnode* node : nodes) IsolateFromScene(node, set);
        for (cnode* node : nodes) MainScene.RemoveNode(node);
        held.insert(held.end(), nodes.begin(), nodes.end());
    }
    // Keeps `nodes`, already out of the scene, after isolating them.
    void Keep(const std::vector<cnode*>& nodes) {
        const std::unordered_set<cnode*> set(nodes.begin(), nodes.end());
        for (cnode* node : nodes) IsolateFromScene(node, set);
        held.insert(held.end(), nodes.begin(), nodes.end());
    }
    // Hands the nodes back to the caller, which returns them to the scene.
    std::vector<cnode*> Release() { return std::exchange(held, {}); }
    bool Empty() const { return held.empty(); }

    void DeleteForGood() {
        for (cnode* node : Release()) MainScene.DeleteNodeForGood(node);
    }

private:
    std::vector<cnode*> held;
};

// Materials the item took out of the scene; destroyed with the item.
class HeldMaterials {
public:
    HeldMaterials() = default;
    HeldMaterials(const HeldMaterials&) = delete;
    HeldMaterials& operator=(const HeldMaterials&) = delete;
    ~HeldMaterials() { DeleteAll(); }

    void Keep(cmaterial* material) { held.push_back(material); }
    std::vector<cmaterial*> Release() { return std::exchange(held, {}); }
    bool Empty() const { return held.empty(); }
    void DeleteAll() {
        for (cmaterial* material : Release()) material->Delete();
    }

private:
    std::vector<cmaterial*> held;
};

std::vector<cmaterial*> SceneMaterials() {
    std::vector<cmaterial*> materials;
    for (int i = 0; i < MainScene.NumMaterials(); ++i)
        materials.push_back(MainScene.GetMaterialAt(i));
    return materials;
}

// ---- The item classes ----

// The factory's common base: the default name of the class.
class StdUndoItem : public UndoItem {
public:
    explicit StdUndoItem(char const* defaultName) {
        // The name is only read; the pointer type is the item's interface.
        SetName(const_cast<char*>(defaultName));
    }
};

// Captures `parts` of the nodes in `scope` and puts them back.
template <unsigned long Code>
struct NodeStateTraits;

#define CORE_NODESTATE_ITEM(code, text, scopeValue, partsValue) \
    template <>                                                 \
    struct NodeStateTraits<code> {                              \
        static constexpr char const* name = text;               \
        static constexpr Scope scope = scopeValue;              \
        static constexpr unsigned parts = partsValue;           \
    };

CORE_NODESTATE_ITEM(UNDO_MOVE, "Move", Scope::Selected, PART_TRANSFORM)
CORE_NODESTATE_ITEM(UNDO_ROTATE, "Rotate", Scope::Selected, PART_TRANSFORM)
CORE_NODESTATE_ITEM(UNDO_SCALE, "Scale", Scope::Selected, PART_TRANSFORM)
CORE_NODESTATE_ITEM(UNDO_KEYS, "Edit Keys", Scope::Selected, PART_TRANSFORM)
CORE_NODESTATE_ITEM(UNDO_RESETTRANSFORM, "Reset Transform", Scope::SelectedAndChildren,
                    PART_TRANSFORM)
CORE_NODESTATE_ITEM(UNDO_SELECT, "Select", Scope::All, PART_FLAGS)
CORE_NODESTATE_ITEM(UNDO_HIDE, "Hide", Scope::All, PART_FLAGS)
CORE_NODESTATE_ITEM(UNDO_UNHIDE, "Unhide", Scope::All, PART_FLAGS)
CORE_NODESTATE_ITEM(UNDO_RENAME, "Rename", Scope::All, PART_NAME)
CORE_NODESTATE_ITEM(UNDO_LINK, "Link", Scope::All, PART_LINKS | PART_TRANSFORM)
CORE_NODESTATE_ITEM(UNDO_UNLINK, "Unlink", Scope::All, PART_LINKS | PART_TRANSFORM)
CORE_NODESTATE_ITEM(UNDO_ASSIGNMATERIAL, "Assign Material", Scope::All, PART_MATERIAL)
CORE_NODESTATE_ITEM(UNDO_SETKEYS, "Set Keys", Scope::All, PART_TRANSFORM)
CORE_NODESTATE_ITEM(UNDO_DELETEKEYS, "Delete Keys", Scope::All, PART_TRANSFORM)
CORE_NODESTATE_ITEM(UNDO_OBJECTCOLOR, "Object Color", Scope::Selected, PART_COLOR)
CORE_NODESTATE_ITEM(UNDO_OBJECTPROPERTIES, "Object Properties", Scope::Selected, PART_PROPERTIES)
CORE_NODESTATE_ITEM(UNDO_IKPARAMS, "IK Parameters", Scope::Selected, PART_IK)
CORE_NODESTATE_ITEM(UNDO_NOTES, "Edit Notes", Scope::Selected, PART_NOTES)
#undef CORE_NODESTATE_ITEM

template <unsigned long Code>
class NodeStateUndo : public StdUndoItem {
public:
    using Traits = NodeStateTraits<Code>;
    NodeStateUndo()
        : StdUndoItem(Traits::name), states(Capture(NodesOf(Traits::scope), Traits::parts)) {}

    int Restore() override {
        RestoreStates(states);
        if (Traits::parts & PART_FLAGS) RestoreVisibility(states);
        return 1;
    }
    void Destroy() override { std::vector<NodeState>().swap(states); }
    int Validate() override { return !states.empty(); }

protected:
    std::vector<NodeState> states;
};

// Assigning materials may also bring new materials into the scene: undo takes those out
// again when no node uses them any more, and keeps them until the level goes.
class AssignMaterialUndo : public NodeStateUndo<UNDO_ASSIGNMATERIAL> {
public:
    AssignMaterialUndo() : before(SceneMaterials()) {}

    int Restore() override {
        NodeStateUndo::Restore();
        const std::unordered_set<cmaterial*> known(before.begin(), before.end());
        for (cmaterial* material : SceneMaterials())
            if (!known.count(material) && !MainScene.IsMaterialUsed(material)) {
                MainScene.RemoveMaterial(material);
                added.Keep(material);
            }
        return 1;
    }
    void Destroy() override {
        NodeStateUndo::Destroy();
        added.DeleteAll();
        std::vector<cmaterial*>().swap(before);
    }

private:
    std::vector<cmaterial*> before;
    HeldMaterials added;
};

// Creating nodes: the nodes in the scene at End that were not there at Begin. Undo takes
// them out of the scene; they are destroyed for good with the level.
class CreateUndo : public StdUndoItem {
public:
    explicit CreateUndo(char const* defaultName = "Create")
        : StdUndoItem(defaultName), before(MainScene.NumNodes()) {
        for (cnode* node : SceneNodes()) before.insert(node);
    }

    int Validate() override {
        created.clear();
        for (cnode* node : SceneNodes())
            if (!before.count(node)) created.push_back(node);
        return !created.empty();
    }
    int Restore() override {
        std::vector<cnode*> present;
        for (cnode* node : created)
            if (InScene(node)) present.push_back(node);
        created.clear();
        removed.Take(present);
        return 1;
    }
    void Destroy() override {
        removed.DeleteForGood();
        created.clear();
        std::unordered_set<cnode*>().swap(before);
    }

private:
    std::unordered_set<cnode*> before;
    std::vector<cnode*> created;
    HeldNodes removed;
};

// Cloning nodes: the clones are created nodes.
class CloneUndo : public CreateUndo {
public:
    CloneUndo() : CreateUndo("Clone") {}
};

// Deleting the selected nodes: at Begin the selection with its links, flags and transforms
// and those of its neighbours (parents lose a child, children lose their parent); at End the
// captured nodes that left the scene are held. Undo puts them back in their places in the
// scene's node order with everything captured; dropping the level destroys them for good.
class DeleteUndo : public StdUndoItem {
public:
    DeleteUndo() : StdUndoItem("Delete"), order(SceneNodes()), targets(SelectedNodes()) {
        std::vector<cnode*> neighbours = WithChildren(targets);
        for (cnode* node : targets)
            if (node->GetParent()) neighbours.push_back(node->GetParent());
        states = Capture(neighbours, PART_TRANSFORM | PART_LINKS | PART_FLAGS);
    }

    int Validate() override {
        if (deleted.Empty()) {
            std::vector<cnode*> gone;
            for (cnode* node : targets)
                if (!InScene(node)) gone.push_back(node);
            deleted.Keep(gone);
        }
        return !deleted.Empty();
    }
    int Restore() override {
        if (deleted.Empty()) return 0;
        std::vector<cnode*> back = deleted.Release();
        for (const NodeState& state : states)
            if (std::find(back.begin(), back.end(), state.Node()) != back.end())
                state.Node()->SetFlags(state.Flags());
        for (cnode* node : back) MainScene.AddNode(node, 1);
        RestoreNodeOrder(order);
        RestoreStates(states);
        return 1;
    }
    void Destroy() override {
        deleted.DeleteForGood();
        std::vector<cnode*>().swap(order);
        std::vector<cnode*>().swap(targets);
        std::vector<NodeState>().swap(states);
    }

private:
    std::vector<cnode*> order;
    std::vector<cnode*> targets;
    std::vector<NodeState> states;
    HeldNodes deleted;
};

// Editing materials: a copy of every scene material's settings.
class EditMaterialUndo : public StdUndoItem {
public:
    EditMaterialUndo() : StdUndoItem("Edit Material") {
        for (cmaterial* material : SceneMaterials())
            copies.emplace_back(material, std::make_unique<cmaterial>(*material));
    }

    int Restore() override {
        for (const auto& entry : copies)
            if (InScene(entry.first)) *entry.first = *entry.second;
        return 1;
    }
    void Destroy() override { copies.clear(); }
    int Validate() override { return !copies.empty(); }

private:
    std::vector<std::pair<cmaterial*, std::unique_ptr<cmaterial>>> copies;
};

// Deleting materials: at Begin the scene's materials and every node's material; at End the
// materials that left the scene are held. Undo adds them back and gives the nodes their
// materials again.
class DeleteMaterialUndo : public StdUndoItem {
public:
    DeleteMaterialUndo()
        : StdUndoItem("Delete Material"),
          before(SceneMaterials()),
          assignments(Capture(SceneNodes(), PART_MATERIAL)) {}

    int Validate() override {
        if (deleted.Empty())
            for (cmaterial* material : before)
                if (!InScene(material)) deleted.Keep(material);
        return !deleted.Empty();
    }
    int Restore() override {
        if (deleted.Empty()) return 0;
        for (cmaterial* material : deleted.Release()) MainScene.AddMaterial(material, 1);
        RestoreStates(assignments);
        return 1;
    }
    void Destroy() override {
        deleted.DeleteAll();
        std::vector<cmaterial*>().swap(before);
        std::vector<NodeState>().swap(assignments);
    }

private:
    std::vector<cmaterial*> before;
    std::vector<NodeState> assignments;
    HeldMaterials deleted;
};

// ---- Objects' own state ----

// A copy of an object's own state (not its node part), and putting it back: lights and
// cameras copy their fields and tracks by assignment, meshes their arrays.
template <class Object>
std::unique_ptr<Object> CopyOwnState(const Object& object) {
    return std::make_unique<Object>(object);
}
template <class Object>
void PutBackOwnState(Object& object, const Object& copy) {
    object = copy;
}
template <>
std::unique_ptr<cmesh> CopyOwnState(const cmesh& mesh) {
    auto copy = std::make_unique<cmesh>();
    copy->SetMesh(mesh);
    return copy;
}
template <>
void PutBackOwnState(cmesh& mesh, const cmesh& copy) {
    mesh.SetMesh(copy);
}

template <unsigned long Code>
struct ObjectTraits;

#define CORE_OBJECT_ITEM(code, text, objectClass) \
    template <>                                   \
    struct ObjectTraits<code> {                   \
        static constexpr char const* name = text; \
        using Object = objectClass;               \
    };

CORE_OBJECT_ITEM(UNDO_MODIFYELEMENTS, "Modify Elements", cmesh)
CORE_OBJECT_ITEM(UNDO_DELETEELEMENTS, "Delete Elements", cmesh)
CORE_OBJECT_ITEM(UNDO_MOVEELEMENTS, "Move Elements", cmesh)
CORE_OBJECT_ITEM(UNDO_ROTATEELEMENTS, "Rotate Elements", cmesh)
CORE_OBJECT_ITEM(UNDO_SCALEELEMENTS, "Scale Elements", cmesh)
CORE_OBJECT_ITEM(UNDO_SELECTELEMENTS, "Select Elements", cmesh)
CORE_OBJECT_ITEM(UNDO_LIGHTPARAMS, "Light Parameters", clight)
CORE_OBJECT_ITEM(UNDO_CAMERAPARAMS, "Camera Parameters", ccamera)
#undef CORE_OBJECT_ITEM

// Captures the own state of every selected node of the traits' object class.
template <unsigned long Code>
class ObjectStateUndo : public StdUndoItem {
public:
    using Traits = ObjectTraits<Code>;
    using Object = typename Traits::Object;

    ObjectStateUndo() : StdUndoItem(Traits::name) {
        for (cnode* node : SelectedNodes())
            if (auto* object = dynamic_cast<Object*>(node))
                copies.emplace_back(object, CopyOwnState(*object));
    }

    int Restore() override {
        for (const auto& entry : copies)
            if (InScene(entry.first)) PutBackOwnState(*entry.first, *entry.second);
        return 1;
    }
    void Destroy() override { copies.clear(); }
    int Validate() override { return !copies.empty(); }

private:
    std::vector<std::pair<Object*, std::unique_ptr<Object>>> copies;
};

template <class Item>
UndoItem* Make() {
    return new Item();
}

// The item class of each type code.
UndoItem* MakeItem(unsigned long type) {
    switch (type) {
        case UNDO_MOVE:
            return Make<NodeStateUndo<UNDO_MOVE>>();
        case UNDO_ROTATE:
            return Make<NodeStateUndo<UNDO_ROTATE>>();
        case UNDO_SCALE:
            return Make<NodeStateUndo<UNDO_SCALE>>();
        case UNDO_KEYS:
            return Make<NodeStateUndo<UNDO_KEYS>>();
        case UNDO_RESETTRANSFORM:
            return Make<NodeStateUndo<UNDO_RESETTRANSFORM>>();
        case UNDO_CREATE:
            return Make<CreateUndo>();
        case UNDO_DELETE:
            return Make<DeleteUndo>();
        case UNDO_SELECT:
            return Make<NodeStateUndo<UNDO_SELECT>>();
        case UNDO_HIDE:
            return Make<NodeStateUndo<UNDO_HIDE>>();
        case UNDO_UNHIDE:
            return Make<NodeStateUndo<UNDO_UNHIDE>>();
        case UNDO_RENAME:
            return Make<NodeStateUndo<UNDO_RENAME>>();
        case UNDO_LINK:
            return Make<NodeStateUndo<UNDO_LINK>>();
        case UNDO_UNLINK:
            return Make<NodeStateUndo<UNDO_UNLINK>>();
        case UNDO_ASSIGNMATERIAL:
            return Make<AssignMaterialUndo>();
        case UNDO_EDITMATERIAL:
            return Make<EditMaterialUndo>();
        case UNDO_DELETEMATERIAL:
            return Make<DeleteMaterialUndo>();
        case UNDO_MODIFYELEMENTS:
            return Make<ObjectStateUndo<UNDO_MODIFYELEMENTS>>();
        case UNDO_DELETEELEMENTS:
            return Make<ObjectStateUndo<UNDO_DELETEELEMENTS>>();
        case UNDO_MOVEELEMENTS:
            return Make<ObjectStateUndo<UNDO_MOVEELEMENTS>>();
        case UNDO_ROTATEELEMENTS:
            return Make<ObjectStateUndo<UNDO_ROTATEELEMENTS>>();
        case UNDO_SCALEELEMENTS:
            return Make<ObjectStateUndo<UNDO_SCALEELEMENTS>>();
        case UNDO_SELECTELEMENTS:
            return Make<ObjectStateUndo<UNDO_SELECTELEMENTS>>();
        case UNDO_LIGHTPARAMS:
            return Make<ObjectStateUndo<UNDO_LIGHTPARAMS>>();
        case UNDO_CAMERAPARAMS:
            return Make<ObjectStateUndo<UNDO_CAMERAPARAMS>>();
        case UNDO_CLONE:
            return Make<CloneUndo>();
        case UNDO_SETKEYS:
            return Make<NodeStateUndo<UNDO_SETKEYS>>();
        case UNDO_DELETEKEYS:
            return Make<NodeStateUndo<UNDO_DELETEKEYS>>();
        case UNDO_OBJECTCOLOR:
            return Make<NodeStateUndo<UNDO_OBJECTCOLOR>>();
        case UNDO_OBJECTPROPERTIES:
            return Make<NodeStateUndo<UNDO_OBJECTPROPERTIES>>();
        case UNDO_IKPARAMS:
            return Make<NodeStateUndo<UNDO_IKPARAMS>>();
        case UNDO_NOTES:
            return Make<NodeStateUndo<UNDO_NOTES>>();
        default:
            return nullptr;
    }
}

}  // namespace

UndoItem* CreateNewUndoItem(unsigned long type, char* name) {
    UndoItem* item = MakeItem(type);
    if (!item) return nullptr;
    if (name && *name) item->SetName(name);
    item->SetType(static_cast<int>(type));
    item->SetTime(GetAnimTime());
    return item;
}
