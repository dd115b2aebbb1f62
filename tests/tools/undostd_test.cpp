#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

#include "Core.h"
#include "referencehost.h"
#include "support/testsupport.h"

namespace {

// Every node-deleted message a probe received, as "<receiver>:<subject>".
std::vector<std::string> messages;
// Names of the probes destroyed.
std::vector<std::string> destroyed;

// A node that keeps its material, as meshes do, and records its messages and its end.
class ProbeNode : public cnode {
public:
    using cnode::cnode;
    ~ProbeNode() override { destroyed.push_back(GetName()); }
    void SetMaterial(cmaterial* m) override { material = m; }
    cmaterial* GetMaterial() const override { return material; }
    int HandleMessage(unsigned long msg, void* a, void* b) override {
        if (msg == MSG_NODE_DELETED)
            messages.push_back(std::string(GetName()) + ":" + static_cast<cnode*>(a)->GetName());
        return cnode::HandleMessage(msg, a, b);
    }

private:
    cmaterial* material = nullptr;
};

// Values printed exactly, one after another; -0 prints as 0, as == sees it.
void Put(std::ostream& s, float value) {
    s << value + 0.0f << ' ';
}
template <class T>
void Put(std::ostream& s, const T& value) {
    if constexpr (std::is_same_v<T, cpoint3>)
        for (float v : {value.x, value.y, value.z}) Put(s, v);
    else if constexpr (std::is_same_v<T, cquat>)
        for (float v : {value.x, value.y, value.z, value.w}) Put(s, v);
    else if constexpr (std::is_same_v<T, ccolor>)
        for (float v : {value.r, value.g, value.b, value.a}) Put(s, v);
    else
        s << value << ' ';
}
template <class... T>
std::string Join(const T&... values) {
    std::ostringstream s;
    s << std::setprecision(9);
    (Put(s, values), ...);
    return s.str();
}

// The scene as a host sees it: every node's identity, name, flags, links, material, transform
// at the current time, keys, colour, properties, IK settings and notes; the counters, the
// materials and their names.
std::string Snapshot() {
    std::string view;
    const int t = GetAnimTime();
    for (int i = 0; i < MainScene.NumNodes(); ++i) {
        cnode* n = MainScene.GetNodeAt(i);
        view += Join(n, n->GetName(), n->GetFlags(), n->GetParent(), n->GetMaterial(),
                     n->GetPosition(t), n->GetScale(t), n->GetRotation(t), n->GetColor(),
                     n->GetCastShadowFlag(), n->GetSeeThroughFlag(), n->IsIKDOFEnabled(),
                     n->IsIKLocked(), n->GetIKDampWidth(), n->GetIKNumIterations(),
                     n->GetIKRecurseNum(), n->GetIKMinRot(), n->GetIKMaxRot(), n->GetIKInitialRot(),
                     std::string(n->GetNotes(), n->NotesSize()));
        for (int k = 0; k < n->GetAnimPtr()->NumKeys(); ++k) {
            ckey key;
            n->GetAnimPtr()->GetKeyAt(k, key);
            view += Join("key", key.time, key.position, key.rotation, key.scale);
        }
        for (int c = 0; c < n->NumChildren(); ++c) view += Join("child", n->GetChild(c));
        view += "\n";
    }
    view += Join(MainScene.NumSelected(), MainScene.NumHidden());
    for (int i = 0; i < MainScene.NumMaterials(); ++i)
        view += Join(MainScene.GetMaterialAt(i), MainScene.GetMaterialAt(i)->GetName());
    return view;
}

int InformDeletedCalls(const ReferenceHost& host) {
    return static_cast<int>(std::count(host.Calls().begin(), host.Calls().end(),
                                       std::string("Application_InformDeleted")));
}

class StandardUndo : public ::testing::Test {
protected:
    // Root carries Arm, Arm carries Hand; Lamp stands apart. Root and Arm have keys at 0
    // and 80; the clock stands at 40, between them. Hand wears Steel.
    void SetUp() override {
        host.Install(tmp.Path().c_str());
        theUndo.Clear();
        theUndo.SetMaxLevels(5);
        messages.clear();
        destroyed.clear();
        root = Add("Root", cpoint3(0.0f, 0.0f, 0.0f));
        arm = Add("Arm", cpoint3(0.0f, 0.0f, 20.0f));
        hand = Add("Hand", cpoint3(0.0f, 0.0f, 60.0f));
        lamp = Add("Lamp", cpoint3(50.0f, 0.0f, 0.0f));
        root->Attach(arm, 1);
        arm->Attach(hand, 1);
        SetAnimOn(1);
        SetAnimTime(80);
        root->SetPosition(80, cpoint3(100.0f, 0.0f, 0.0f));
        arm->SetRotation(80, QuatFromAngleAxis(90.0f, cpoint3(1.0f, 0.0f, 0.0f)));
        SetAnimTime(40);
        SetAnimOn(0);
        MainScene.UpdateNodesAtAnimTimeChange();
        MainScene.AddMaterial(steel = new cmaterial("Steel"), 0);
        hand->SetMaterial(steel);
    }
    void TearDown() override {
        theUndo.Clear();  // held nodes are destroyed for good while the host is installed
        MainScene.Clear();
        host.Uninstall();
        SetAnimOn(0);
        ResetAnim();
    }
    ProbeNode* Add(char const* name, const cpoint3& at) {
        auto* node = new ProbeNode(name);
        Interface::AddToScene(node, 0);
        node->SetPosition(GetAnimTime(), at);
        return node;
    }

    // Records one level of `code` around `edit`, checks that the edit changed `view()` and
    // that Undo(1) drops the level and gives back exactly the view from before Begin.
    static void ExpectUndone(unsigned long code, const std::function<void()>& edit,
                             const std::function<std::string()>& view = Snapshot) {
        const std::string before = view();
        ASSERT_EQ(theUndo.Begin(code, nullptr), 1);
        edit();
        ASSERT_EQ(theUndo.End(), 1);
        EXPECT_NE(view(), before) << "the edit changed nothing";
        EXPECT_EQ(theUndo.Undo(1), 1);
        EXPECT_EQ(theUndo.NumLevels(), 0);
        EXPECT_EQ(view(), before) << code;
    }
    // A level of `code` begun on the current selection keeps nothing.
    static void ExpectNothingKept(unsigned long code) {
        ASSERT_EQ(theUndo.Begin(code, nullptr), 1);
        EXPECT_EQ(theUndo.End(), 0);
    }

    TempDir tmp;
    ReferenceHost& host = ReferenceHost::Instance();
    ProbeNode *root = nullptr, *arm = nullptr, *hand = nullptr, *lamp = nullptr;
    cmaterial* steel = nullptr;
};

// One code of each scope and set of node parts; codes that share both share their item.
TEST_F(StandardUndo, PutsBackTheNodeStatesItsCodeCovers) {
    MainScene.Select(arm);
    MainScene.Select(lamp);
    ExpectUndone(UNDO_MOVE, [] { MainScene.MoveSelected(cpoint3(5.0f, -3.0f, 2.0f)); });
    SetAnimOn(1);
    ExpectUndone(UNDO_SETKEYS, [this] { hand->SnapKey(); });
    SetAnimOn(0);
    ExpectUndone(UNDO_RESETTRANSFORM, [this] { arm->ResetTransform(GetAnimTime(), TM_ALL); });
    ExpectUndone(UNDO_HIDE, [] { MainScene.HideSelected(); });
    ExpectUndone(UNDO_RENAME, [this] { root->SetName("Base"); });
    ExpectUndone(UNDO_UNLINK, [this] { root->DetachAll(1); });
    ExpectUndone(UNDO_OBJECTCOLOR, [this] { lamp->SetColor(ccolor(0.1f, 0.2f, 0.3f, 1.0f)); });
    ExpectUndone(UNDO_OBJECTPROPERTIES, [this] {
        lamp->SetCastShadowFlag(0);
        lamp->SetSeeThroughFlag(1);
    });
    ExpectUndone(UNDO_IKPARAMS, [this] {
        lamp->EnableIKDOF(1);
        lamp->LockIK(1);
        lamp->SetIKDampWidth(33.0f);
        lamp->SetIKMinRot(cpoint3(-45.0f, 0.0f, 0.0f));
        lamp->SetIKMaxRot(cpoint3(0.0f, 0.0f, 90.0f));
        lamp->SetIKInitialRot(MakeQuat(0.6f, 0.0f, 0.0f, 0.8f));
        lamp->SetIKNumIterations(7);
        lamp->SetIKRecurseNum(3);
    });
    lamp->CopyNotes("hangs over the desk", 19);
    ExpectUndone(UNDO_NOTES, [this] { lamp->ClearNotes(); });
}

TEST_F(StandardUndo, TakesCreatedNodesOutAndDestroysThemForGoodWithTheLevel) {
    MainScene.Select(lamp);
    ExpectUndone(UNDO_CREATE, [this] {
        hand->Attach(Add("Finger", cpoint3(0.0f, 1.0f, 60.0f)), 1);
        Add("Box", cpoint3(1.0f, 1.0f, 1.0f));
    });
    EXPECT_EQ(destroyed, (std::vector<std::string>{"Finger", "Box"}));
    EXPECT_EQ(InformDeletedCalls(host), 2);
    ExpectNothingKept(UNDO_CREATE);
}

TEST_F(StandardUndo, PutsDeletedNodesBackAndDeletesThemForGoodWhenTheLevelIsDropped) {
    MainScene.Select(arm);
    const std::string before = Snapshot();
    const cpoint3 handWorld = hand->GetPosition(0);  // at its key
    ASSERT_EQ(theUndo.Begin(UNDO_DELETE, nullptr), 1);
    Interface::RemoveFromScene(arm, 0);
    ASSERT_EQ(theUndo.End(), 1);
    EXPECT_EQ(hand->GetParent(), nullptr) << "the child of a deleted node becomes a root";
    EXPECT_EQ(root->NumChildren(), 0);
    EXPECT_NEAR(hand->GetPosition(0).z, handWorld.z, 1e-3f);
    EXPECT_EQ(theUndo.Undo(1), 1);
    EXPECT_EQ(Snapshot(), before);
    EXPECT_EQ(destroyed.size() + messages.size() + InformDeletedCalls(host), 0u);
    ExpectNothingKept(UNDO_DELETE);

    theUndo.SetMaxLevels(1);
    MainScene.Select(hand);
    theUndo.Begin(UNDO_DELETE, nullptr);
    Interface::RemoveFromScene(hand, 0);
    ASSERT_EQ(theUndo.End(), 1);
    EXPECT_TRUE(destroyed.empty());
    ASSERT_EQ(theUndo.Begin(UNDO_MOVE, nullptr), 1);  // drops the delete level
    EXPECT_EQ(destroyed, (std::vector<std::string>{"Hand"}));
    EXPECT_EQ(messages, (std::vector<std::string>{"Root:Hand", "Arm:Hand", "Lamp:Hand"}));
    EXPECT_EQ(InformDeletedCalls(host), 1);
    EXPECT_EQ(arm->NumChildren(), 0);
}

TEST_F(StandardUndo, PutsBackMaterialAssignmentsAndEditsAndFreesDroppedMaterials) {
    MainScene.Select(lamp);
    MainScene.Select(hand);
    auto* rubber = new cmaterial("Rubber");
    ExpectUndone(UNDO_ASSIGNMATERIAL, [rubber] { MainScene.ApplyMaterial(rubber); });
    EXPECT_EQ(MainScene.Find(rubber), -1) << "held by the dropped level, then freed";
    ExpectUndone(UNDO_EDITMATERIAL, [this] { steel->SetName("Brass"); });
    ExpectUndone(UNDO_DELETEMATERIAL, [this] { MainScene.RemoveMaterial(steel); });

    theUndo.Begin(UNDO_DELETEMATERIAL, nullptr);
    MainScene.RemoveMaterial(steel);
    ASSERT_EQ(theUndo.End(), 1);
    EXPECT_EQ(hand->GetMaterial(), nullptr);
    theUndo.Clear();  // ASan sees the material freed exactly once
    EXPECT_EQ(MainScene.NumMaterials(), 0);
}

// A mesh's vertex positions and flags, face corners and flags.
std::string ViewOf(const cmesh& mesh) {
    std::string view;
    for (int i = 0; i < mesh.NumVerts(); ++i)
        view += Join(mesh.GetVert(i).p, mesh.GetVert(i).flags);
    for (int i = 0; i < mesh.NumFaces(); ++i) {
        const cface f = mesh.GetFace(i);
        view += Join(f.v[0], f.v[1], f.v[2], f.flags);
    }
    return view;
}

TEST_F(StandardUndo, PutsBackMeshAndLightStates) {
    cmesh* mesh = CreateNewMesh();
    for (float x : {0.0f, 1.0f, 2.0f, 3.0f}) mesh->AddVert(cpoint3(x, x * x, 0.0f));
    mesh->AddFace(cface(0, 1, 2));
    mesh->AddFace(cface(0, 2, 3));
    auto* light = new clight();
    for (cnode* node : {static_cast<cnode*>(mesh), static_cast<cnode*>(light)}) {
        Interface::AddToScene(node, 0);
        MainScene.Select(node);
    }
    const auto view = [=] {
        return ViewOf(*mesh) +
               Join(light->GetHotSpot(0), light->GetFallOff(80), light->GetDistance());
    };
    cbitarray first(2);
    first.Set(0);
    mesh->SelectFaceSet(first, 1);
    ExpectUndone(
        UNDO_DELETEELEMENTS, [mesh] { mesh->DeleteSelFaces(); }, view);
    SetAnimOn(1);
    const auto editLight = [light] {
        light->SetFallOff(80, 60.0f);
        light->SetDistance(12.0f);
    };
    ExpectUndone(UNDO_LIGHTPARAMS, editLight, view);

    // Lamp is no mesh: an element level on it holds nothing.
    MainScene.DeselectAll();
    MainScene.Select(lamp);
    ExpectNothingKept(UNDO_ROTATEELEMENTS);
}

}  // namespace
