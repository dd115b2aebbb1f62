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

// Every node message a probe received, as "<receiver>:<msg>:<subject>".
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
            messages.push_back(std::string(GetName()) + ":" + std::to_string(msg) + ":" +
                               static_cast<cnode*>(a)->GetName());
        return cnode::HandleMessage(msg, a, b);
    }

private:
    cmaterial* material = nullptr;
};

// Values printed exactly, one after another; -0 prints as 0, as == sees it.
template <class T>
void Put(std::ostream& s, const T& value) {
    s << value << ' ';
}
void Put(std::ostream& s, float value) {
    s << value + 0.0f << ' ';
}
void Put(std::ostream& s, const cpoint3& p) {
    for (float v : {p.x, p.y, p.z}) Put(s, v);
}
void Put(std::ostream& s, const cquat& q) {
    for (float v : {q.x, q.y, q.z, q.w}) Put(s, v);
}
template <class... T>
std::string Join(const T&... values) {
    std::ostringstream s;
    s << std::setprecision(9);
    (Put(s, values), ...);
    return s.str();
}

// The scene as a host sees it: every node's identity, name, flags, links, material, transform
// at the current time and keys in index order, the counters, the materials and their names.
std::string Snapshot() {
    std::string view;
    const int t = GetAnimTime();
    for (int i = 0; i < MainScene.NumNodes(); ++i) {
        cnode* n = MainScene.GetNodeAt(i);
        view += Join(n, n->GetName(), n->GetFlags(), n->GetParent(), n->GetMaterial(),
                     n->GetPosition(t), n->GetScale(t), n->GetRotation(t));
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

int Count(const std::vector<std::string>& calls, char const* name) {
    return static_cast<int>(std::count(calls.begin(), calls.end(), name));
}

cquat AboutX(float degrees) {
    return QuatFromAngleAxis(degrees, cpoint3(1.0f, 0.0f, 0.0f));
}

class StandardUndo : public ::testing::Test {
protected:
    void SetUp() override {
        host.Install(tmp.Path().c_str());
        theUndo.Clear();
        theUndo.SetMaxLevels(5);
        messages.clear();
        destroyed.clear();
        BuildScene();
    }
    void TearDown() override {
        theUndo.Clear();  // held nodes are destroyed for good while the host is installed
        MainScene.Clear();
        host.Uninstall();
        SetAnimOn(0);
        ResetAnim();
    }

    // Root carries Arm, Arm carries Hand; Lamp stands apart. Root and Arm have keys at 0
    // and 80; the clock stands at 40, between them.
    void BuildScene() {
        root = Add("Root", cpoint3(0.0f, 0.0f, 0.0f));
        arm = Add("Arm", cpoint3(0.0f, 0.0f, 20.0f));
        hand = Add("Hand", cpoint3(0.0f, 0.0f, 60.0f));
        lamp = Add("Lamp", cpoint3(50.0f, 0.0f, 0.0f));
        root->Attach(arm, 1);
        arm->Attach(hand, 1);
        SetAnimOn(1);
        SetAnimTime(80);
        root->SetPosition(80, cpoint3(100.0f, 0.0f, 0.0f));
        arm->SetRotation(80, AboutX(90.0f));
        SetAnimTime(40);
        SetAnimOn(0);
        MainScene.UpdateNodesAtAnimTimeChange();
        MainScene.AddMaterial(steel = new cmaterial("Steel"), 0);
        hand->SetMaterial(steel);
    }
    ProbeNode* Add(char const* name, const cpoint3& at) {
        auto* node = new ProbeNode(name);
        Interface::AddToScene(node, 0);
        node->SetPosition(GetAnimTime(), at);
        return node;
    }

    // Records one level of `code` around `edit`, checks that the edit changed `view()` and
    // that Undo(1) drops the level and gives back exactly the view from before Begin.
    static void ExpectUndone(unsigned long code, const std::function<std::string()>& view,
                             const std::function<void()>& edit) {
        const std::string before = view();
        ASSERT_EQ(theUndo.Begin(code, nullptr), 1);
        edit();
        ASSERT_EQ(theUndo.End(), 1);
        EXPECT_NE(view(), before) << "the edit changed nothing";
        EXPECT_EQ(theUndo.Undo(1), 1);
        EXPECT_EQ(theUndo.NumLevels(), 0);
        EXPECT_EQ(view(), before);
    }
    static void ExpectUndone(unsigned long code, const std::function<void()>& edit) {
        ExpectUndone(code, Snapshot, edit);
    }
    // A level of `code` begun on the current selection keeps nothing.
    static void ExpectNothingKept(unsigned long code) {
        ASSERT_EQ(theUndo.Begin(code, nullptr), 1);
        EXPECT_EQ(theUndo.End(), 0);
        EXPECT_EQ(theUndo.NumLevels(), 0);
    }

    TempDir tmp;
    ReferenceHost& host = ReferenceHost::Instance();
    ProbeNode *root = nullptr, *arm = nullptr, *hand = nullptr, *lamp = nullptr;
    cmaterial* steel = nullptr;
};

TEST_F(StandardUndo, PutsBackTransformsAndKeyTracksOfTheSelection) {
    MainScene.Select(arm);
    MainScene.Select(lamp);
    ExpectUndone(UNDO_MOVE, [] { MainScene.MoveSelected(cpoint3(5.0f, -3.0f, 2.0f)); });
    ExpectUndone(UNDO_ROTATE, [] { MainScene.RotateSelected(AboutX(30.0f)); });
    ExpectUndone(UNDO_SCALE, [] { MainScene.ScaleSelected(cpoint3(2.0f, 2.0f, 0.5f)); });
    SetAnimOn(1);
    ExpectUndone(UNDO_MOVE, [] { MainScene.MoveSelected(cpoint3(0.0f, 7.0f, 0.0f)); });
    SetAnimOn(0);
    ExpectUndone(UNDO_KEYS, [this] {
        arm->DeleteKey(80);
        lamp->SnapKey();
    });
    ExpectUndone(UNDO_RESETTRANSFORM, [this] { arm->ResetTransform(GetAnimTime(), TM_ALL); });
}

TEST_F(StandardUndo, TakesCreatedNodesOutAndDestroysThemForGoodWithTheLevel) {
    MainScene.Select(lamp);
    ExpectUndone(UNDO_CREATE, [this] {
        hand->Attach(Add("Finger", cpoint3(0.0f, 1.0f, 60.0f)), 1);
        Add("Box", cpoint3(1.0f, 1.0f, 1.0f));
    });
    EXPECT_EQ(destroyed, (std::vector<std::string>{"Finger", "Box"}));
    EXPECT_EQ(Count(host.Calls(), "Application_InformDeleted"), 2);
    ExpectNothingKept(UNDO_CREATE);
}

TEST_F(StandardUndo, PutsDeletedNodesBackWithTheirLinksAndPlaces) {
    MainScene.Select(arm);
    MainScene.Hide(lamp);
    const std::string before = Snapshot();
    const cpoint3 handWorld = hand->GetPosition(0);  // at its key
    ASSERT_EQ(theUndo.Begin(UNDO_DELETE, nullptr), 1);
    Interface::RemoveFromScene(arm, 0);
    ASSERT_EQ(theUndo.End(), 1);
    EXPECT_EQ(hand->GetParent(), nullptr) << "the child of a deleted node becomes a root";
    EXPECT_EQ(root->NumChildren(), 0);
    EXPECT_NEAR(hand->GetPosition(0).y, handWorld.y, 1e-3f);
    EXPECT_NEAR(hand->GetPosition(0).z, handWorld.z, 1e-3f);
    EXPECT_EQ(MainScene.NumNodes(), 3);

    EXPECT_EQ(theUndo.Undo(1), 1);
    EXPECT_EQ(Snapshot(), before);
    EXPECT_TRUE(destroyed.empty());
    EXPECT_EQ(Count(host.Calls(), "Application_InformDeleted"), 0);
    ExpectNothingKept(UNDO_DELETE);
}

TEST_F(StandardUndo, RunsTheFinalDeleteWhenTheDepthLimitDropsADeleteLevel) {
    theUndo.SetMaxLevels(1);
    MainScene.Select(hand);
    theUndo.Begin(UNDO_DELETE, nullptr);
    Interface::RemoveFromScene(hand, 0);
    ASSERT_EQ(theUndo.End(), 1);
    host.ClearCalls();
    EXPECT_TRUE(destroyed.empty());

    MainScene.Select(lamp);
    ASSERT_EQ(theUndo.Begin(UNDO_MOVE, nullptr), 1);  // drops the delete level
    EXPECT_EQ(destroyed, (std::vector<std::string>{"Hand"}));
    EXPECT_EQ(messages, (std::vector<std::string>{"Root:1:Hand", "Arm:1:Hand", "Lamp:1:Hand"}));
    EXPECT_EQ(Count(host.Calls(), "Application_InformDeleted"), 1);
    EXPECT_EQ(arm->NumChildren(), 0);
    EXPECT_EQ(MainScene.NumNodes(), 3);
    EXPECT_EQ(theUndo.NumLevels(), 1);
}

TEST_F(StandardUndo, PutsBackSelectionVisibilityNamesAndLinks) {
    MainScene.Select(root);
    MainScene.Select(arm);
    MainScene.Hide(lamp);
    ExpectUndone(UNDO_SELECT, [this] {
        MainScene.DeselectAll();
        MainScene.Select(hand);
    });
    ExpectUndone(UNDO_HIDE, [] { MainScene.HideSelected(); });
    ExpectUndone(UNDO_UNHIDE, [] { MainScene.UnhideAll(); });
    ExpectUndone(UNDO_RENAME, [this] {
        lamp->SetName("Spot");
        root->SetName("Base");
    });
    ExpectUndone(UNDO_LINK, [this] { lamp->Attach(arm, 1); });
    ExpectUndone(UNDO_UNLINK, [this] { arm->Detach(hand, 1); });
    ExpectUndone(UNDO_UNLINK, [this] { root->DetachAll(1); });
}

TEST_F(StandardUndo, PutsBackMaterialAssignmentsAndEdits) {
    MainScene.Select(lamp);
    MainScene.Select(hand);
    auto* rubber = new cmaterial("Rubber");
    ExpectUndone(UNDO_ASSIGNMATERIAL, [rubber] { MainScene.ApplyMaterial(rubber); });
    EXPECT_EQ(MainScene.Find(rubber), -1) << "held by the dropped level, then freed";
    ExpectUndone(UNDO_ASSIGNMATERIAL, [] { MainScene.ResetMaterial(); });
    ExpectUndone(UNDO_EDITMATERIAL, [this] { steel->SetName("Brass"); });
    ExpectUndone(UNDO_DELETEMATERIAL, [this] { MainScene.RemoveMaterial(steel); });

    // Dropping a delete-material level frees the material.
    theUndo.Begin(UNDO_DELETEMATERIAL, nullptr);
    MainScene.RemoveMaterial(steel);
    ASSERT_EQ(theUndo.End(), 1);
    EXPECT_EQ(hand->GetMaterial(), nullptr);
    theUndo.Clear();
    EXPECT_EQ(MainScene.NumMaterials(), 0);
}

TEST_F(StandardUndo, UndoesSeveralLevelsNewestFirst) {
    MainScene.Select(lamp);
    const std::string start = Snapshot();
    theUndo.Begin(UNDO_MOVE, nullptr);
    MainScene.MoveSelected(cpoint3(1.0f, 0.0f, 0.0f));
    theUndo.End();
    const std::string moved = Snapshot();
    theUndo.Begin(UNDO_DELETE, nullptr);
    Interface::RemoveFromScene(lamp, 0);
    theUndo.End();
    theUndo.Begin(UNDO_RENAME, nullptr);
    root->SetName("Base");
    theUndo.End();

    EXPECT_EQ(theUndo.Undo(1), 1);
    EXPECT_EQ(theUndo.Undo(1), 1);
    EXPECT_EQ(Snapshot(), moved);
    EXPECT_EQ(theUndo.Undo(1), 1);
    EXPECT_EQ(Snapshot(), start);
    EXPECT_EQ(theUndo.Undo(1), 0);
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

TEST_F(StandardUndo, PutsBackMeshArraysAndElementSelection) {
    cmesh* mesh = CreateNewMesh();
    for (const cpoint3& p : {cpoint3(0.0f, 0.0f, 0.0f), cpoint3(1.0f, 0.0f, 0.0f),
                             cpoint3(1.0f, 1.0f, 0.0f), cpoint3(0.0f, 1.0f, 0.0f)})
        mesh->AddVert(p);
    mesh->AddFace(cface(0, 1, 2));
    mesh->AddFace(cface(0, 2, 3));
    Interface::AddToScene(mesh, 0);
    MainScene.Select(mesh);
    const auto view = [mesh] { return ViewOf(*mesh); };
    cbitarray first(2);
    first.Set(0);
    ExpectUndone(UNDO_SELECTELEMENTS, view, [&] { mesh->SelectFaceSet(first, 1); });
    mesh->SelectFaceSet(first, 1);
    ExpectUndone(UNDO_DELETEELEMENTS, view, [mesh] { mesh->DeleteSelFaces(); });
    ExpectUndone(UNDO_MODIFYELEMENTS, view, [mesh] {
        mesh->AddVert(cpoint3(2.0f, 2.0f, 0.0f));
        mesh->AddFace(cface(2, 4, 3));
    });

    // Lights and cameras in the selection are no meshes: an element level holds nothing.
    MainScene.DeselectAll();
    MainScene.Select(lamp);
    ExpectNothingKept(UNDO_ROTATEELEMENTS);
}

TEST_F(StandardUndo, PutsBackLightAndCameraParametersWithTheirTracks) {
    auto* light = new clight();
    auto* camera = new ccamera();
    Interface::AddToScene(light, 0);
    Interface::AddToScene(camera, 0);
    MainScene.Select(light);
    MainScene.Select(camera);
    const auto view = [light, camera] {
        return Join(light->GetHotSpot(0), light->GetHotSpot(80), light->GetFallOff(80),
                    light->GetDistance(), camera->GetFOV(0), camera->GetFOV(80),
                    camera->GetDepthFar(), camera->GetDistance());
    };
    SetAnimOn(1);
    SetAnimTime(80);
    ExpectUndone(UNDO_LIGHTPARAMS, view, [light] {
        light->SetFallOff(80, 60.0f);
        light->SetHotSpot(80, 20.0f);
        light->SetDistance(12.0f);
    });
    ExpectUndone(UNDO_CAMERAPARAMS, view, [camera] {
        camera->SetFOV(80, 30.0f);
        camera->SetDepthFar(100.0f);
    });
}

TEST_F(StandardUndo, PutsBackClonesKeysColoursAndProperties) {
    MainScene.Select(lamp);
    ExpectUndone(UNDO_CLONE, [this] {
        auto* copy = new ProbeNode("Lamp");
        lamp->Clone(GetAnimTime(), *copy);
        Interface::AddToScene(copy, 0);
    });
    EXPECT_EQ(destroyed, (std::vector<std::string>{"Lamp1"}));
    SetAnimOn(1);
    ExpectUndone(UNDO_SETKEYS, [this] {
        lamp->SnapKey();
        hand->SnapKey();
    });
    SetAnimOn(0);
    ExpectUndone(UNDO_DELETEKEYS, [this] { root->DeleteKey(80); });
    const auto lampView = [this] {
        const ccolor c = lamp->GetColor();
        return Join(c.r, c.g, c.b, c.a, lamp->GetCastShadowFlag(), lamp->GetReceiveShadowFlag(),
                    lamp->GetSeeThroughFlag(), lamp->IsIKDOFEnabled(), lamp->IsIKDampingEnabled(),
                    lamp->IsIKLocked(), lamp->GetIKDampWidth(), lamp->GetIKNumIterations(),
                    lamp->GetIKRecurseNum(), lamp->GetIKMinRot(), lamp->GetIKMaxRot(),
                    lamp->GetIKInitialRot(),
                    lamp->NotesSize() ? std::string(lamp->GetNotes(), lamp->NotesSize()) : "");
    };
    ExpectUndone(UNDO_OBJECTCOLOR, lampView,
                 [this] { lamp->SetColor(ccolor(0.1f, 0.2f, 0.3f, 1.0f)); });
    ExpectUndone(UNDO_OBJECTPROPERTIES, lampView, [this] {
        lamp->SetCastShadowFlag(0);
        lamp->SetSeeThroughFlag(1);
    });
    ExpectUndone(UNDO_IKPARAMS, lampView, [this] {
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
    ExpectUndone(UNDO_NOTES, lampView, [this] {
        lamp->ClearNotes();
        lamp->CopyNotes("moved to the shelf", 18);
    });
    ExpectUndone(UNDO_NOTES, lampView, [this] { lamp->ClearNotes(); });
}

}  // namespace
