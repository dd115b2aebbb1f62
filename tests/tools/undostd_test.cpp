#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
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

// Everything a host can see of one node.
struct NodeView {
    cnode* node;
    std::string name;
    unsigned long flags;
    cpoint3 position, scale;
    cquat rotation;
    std::vector<ckey> keys;
    cnode* parent;
    std::vector<cnode*> children;
    cmaterial* material;
};

bool Same(const cquat& a, const cquat& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w;
}

bool Same(const ckey& a, const ckey& b) {
    return a.time == b.time && a.position == b.position && Same(a.rotation, b.rotation) &&
           a.scale == b.scale;
}

bool Same(const std::vector<ckey>& a, const std::vector<ckey>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const ckey& x, const ckey& y) { return Same(x, y); });
}

bool operator==(const NodeView& a, const NodeView& b) {
    return a.node == b.node && a.name == b.name && a.flags == b.flags && a.position == b.position &&
           a.scale == b.scale && Same(a.rotation, b.rotation) && Same(a.keys, b.keys) &&
           a.parent == b.parent && a.children == b.children && a.material == b.material;
}

// The scene as a host sees it: nodes in index order, counters, materials and their names.
struct SceneView {
    std::vector<NodeView> nodes;
    int selected, hidden;
    std::vector<cmaterial*> materials;
    std::vector<std::string> materialNames;

    bool operator==(const SceneView& o) const {
        return nodes == o.nodes && selected == o.selected && hidden == o.hidden &&
               materials == o.materials && materialNames == o.materialNames;
    }
    bool operator!=(const SceneView& o) const { return !(*this == o); }
};

SceneView Snapshot() {
    SceneView view;
    const int time = GetAnimTime();
    for (int i = 0; i < MainScene.NumNodes(); ++i) {
        cnode* node = MainScene.GetNodeAt(i);
        NodeView n{node,
                   node->GetName(),
                   node->GetFlags(),
                   node->GetPosition(time),
                   node->GetScale(time),
                   node->GetRotation(time),
                   {},
                   node->GetParent(),
                   {},
                   node->GetMaterial()};
        for (int k = 0; k < node->GetAnimPtr()->NumKeys(); ++k) {
            ckey key;
            node->GetAnimPtr()->GetKeyAt(k, key);
            n.keys.push_back(key);
        }
        for (int c = 0; c < node->NumChildren(); ++c) n.children.push_back(node->GetChild(c));
        view.nodes.push_back(n);
    }
    view.selected = MainScene.NumSelected();
    view.hidden = MainScene.NumHidden();
    for (int i = 0; i < MainScene.NumMaterials(); ++i) {
        view.materials.push_back(MainScene.GetMaterialAt(i));
        view.materialNames.push_back(MainScene.GetMaterialAt(i)->GetName());
    }
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

    // Records one level of `code` around `edit`, checks that the edit changed the scene and
    // that Undo(1) puts back exactly the scene seen before Begin.
    void ExpectUndone(unsigned long code, const std::function<void()>& edit) {
        const SceneView before = Snapshot();
        ASSERT_EQ(theUndo.Begin(code, nullptr), 1);
        edit();
        ASSERT_EQ(theUndo.End(), 1);
        EXPECT_NE(Snapshot(), before) << "the edit changed nothing";
        EXPECT_EQ(theUndo.Undo(1), 1);
        EXPECT_EQ(theUndo.NumLevels(), 0);
        EXPECT_EQ(Snapshot(), before);
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
        ProbeNode* finger = Add("Finger", cpoint3(0.0f, 1.0f, 60.0f));
        hand->Attach(finger, 1);
        Add("Box", cpoint3(1.0f, 1.0f, 1.0f));
    });
    EXPECT_EQ(destroyed, (std::vector<std::string>{"Finger", "Box"}));
    EXPECT_EQ(Count(host.Calls(), "Application_InformDeleted"), 2);

    // Nothing created: nothing to keep.
    ASSERT_EQ(theUndo.Begin(UNDO_CREATE, nullptr), 1);
    EXPECT_EQ(theUndo.End(), 0);
    EXPECT_EQ(theUndo.NumLevels(), 0);
}

TEST_F(StandardUndo, PutsDeletedNodesBackWithTheirLinksAndPlaces) {
    MainScene.Select(arm);
    MainScene.Hide(lamp);
    const SceneView before = Snapshot();
    const cpoint3 handWorld = hand->GetPosition(0);  // at its key
    ASSERT_EQ(theUndo.Begin(UNDO_DELETE, nullptr), 1);
    Interface::RemoveFromScene(arm, 0);
    ASSERT_EQ(theUndo.End(), 1);
    EXPECT_EQ(hand->GetParent(), nullptr) << "the child of a deleted node becomes a root";
    EXPECT_EQ(root->NumChildren(), 0);
    const cpoint3 now = hand->GetPosition(0);
    EXPECT_NEAR(now.y, handWorld.y, 1e-3f);
    EXPECT_NEAR(now.z, handWorld.z, 1e-3f);
    EXPECT_EQ(MainScene.NumNodes(), 3);

    EXPECT_EQ(theUndo.Undo(1), 1);
    EXPECT_EQ(Snapshot(), before);
    EXPECT_TRUE(destroyed.empty());
    EXPECT_EQ(Count(host.Calls(), "Application_InformDeleted"), 0);

    // Nothing deleted after all: nothing to keep.
    ASSERT_EQ(theUndo.Begin(UNDO_DELETE, nullptr), 1);
    EXPECT_EQ(theUndo.End(), 0);
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
    std::vector<std::string> expected = {"Root:1:Hand", "Arm:1:Hand", "Lamp:1:Hand"};
    EXPECT_EQ(messages, expected);
    EXPECT_EQ(Count(host.Calls(), "Application_InformDeleted"), 1);
    EXPECT_EQ(arm->NumChildren(), 0);
    EXPECT_EQ(MainScene.NumNodes(), 3);
    EXPECT_EQ(theUndo.NumLevels(), 1);
}

TEST_F(StandardUndo, PutsBackSelectionVisibilityAndNames) {
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
}

TEST_F(StandardUndo, PutsBackHierarchyLinksAndTheTransformsTheyConverted) {
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
    const SceneView start = Snapshot();
    theUndo.Begin(UNDO_MOVE, nullptr);
    MainScene.MoveSelected(cpoint3(1.0f, 0.0f, 0.0f));
    theUndo.End();
    const SceneView moved = Snapshot();
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

}  // namespace

namespace {

// A mesh's arrays as a host sees them: vertex positions and flags, face corners and flags.
struct MeshView {
    std::vector<float> verts;
    std::vector<int> faces;
    bool operator==(const MeshView& o) const { return verts == o.verts && faces == o.faces; }
    bool operator!=(const MeshView& o) const { return !(*this == o); }
};

MeshView ViewOf(const cmesh& mesh) {
    MeshView view;
    for (int i = 0; i < mesh.NumVerts(); ++i) {
        const cvertex v = mesh.GetVert(i);
        view.verts.insert(view.verts.end(), {v.p.x, v.p.y, v.p.z, static_cast<float>(v.flags)});
    }
    for (int i = 0; i < mesh.NumFaces(); ++i) {
        const cface f = mesh.GetFace(i);
        view.faces.insert(view.faces.end(), {f.v[0], f.v[1], f.v[2], static_cast<int>(f.flags)});
    }
    return view;
}

// A unit square of two triangles, added to the scene and selected.
cmesh* AddSquare() {
    cmesh* mesh = CreateNewMesh();
    for (const cpoint3& p : {cpoint3(0.0f, 0.0f, 0.0f), cpoint3(1.0f, 0.0f, 0.0f),
                             cpoint3(1.0f, 1.0f, 0.0f), cpoint3(0.0f, 1.0f, 0.0f)})
        mesh->AddVert(p);
    mesh->AddFace(cface(0, 1, 2));
    mesh->AddFace(cface(0, 2, 3));
    Interface::AddToScene(mesh, 0);
    MainScene.Select(mesh);
    return mesh;
}

// Records one level of `code` around `edit` and checks that Undo(1) gives back `view()`'s
// value from before Begin.
template <class View>
void ExpectObjectUndone(unsigned long code, const std::function<View()>& view,
                        const std::function<void()>& edit) {
    const View before = view();
    ASSERT_EQ(theUndo.Begin(code, nullptr), 1);
    edit();
    ASSERT_EQ(theUndo.End(), 1);
    EXPECT_NE(view(), before) << "the edit changed nothing";
    EXPECT_EQ(theUndo.Undo(1), 1);
    EXPECT_EQ(view(), before);
}

TEST_F(StandardUndo, PutsBackMeshArraysAndElementSelection) {
    cmesh* mesh = AddSquare();
    const std::function<MeshView()> view = [mesh] { return ViewOf(*mesh); };
    cbitarray first(2);
    first.Set(0);
    ExpectObjectUndone<MeshView>(UNDO_SELECTELEMENTS, view, [&] { mesh->SelectFaceSet(first, 1); });
    mesh->SelectFaceSet(first, 1);
    ExpectObjectUndone<MeshView>(UNDO_DELETEELEMENTS, view, [mesh] { mesh->DeleteSelFaces(); });
    ExpectObjectUndone<MeshView>(UNDO_MODIFYELEMENTS, view, [mesh] {
        mesh->AddVert(cpoint3(2.0f, 2.0f, 0.0f));
        mesh->AddFace(cface(2, 4, 3));
    });

    // Lights and cameras in the selection are no meshes: an element level holds nothing.
    MainScene.DeselectAll();
    MainScene.Select(lamp);
    ASSERT_EQ(theUndo.Begin(UNDO_ROTATEELEMENTS, nullptr), 1);
    EXPECT_EQ(theUndo.End(), 0);
}

TEST_F(StandardUndo, PutsBackLightAndCameraParametersWithTheirTracks) {
    auto* light = new clight();
    auto* camera = new ccamera();
    Interface::AddToScene(light, 0);
    Interface::AddToScene(camera, 0);
    MainScene.Select(light);
    MainScene.Select(camera);
    const std::function<std::vector<float>()> view = [light, camera] {
        return std::vector<float>{light->GetHotSpot(0),  light->GetHotSpot(80),
                                  light->GetFallOff(80), light->GetDistance(),
                                  camera->GetFOV(0),     camera->GetFOV(80),
                                  camera->GetDepthFar(), camera->GetDistance()};
    };
    SetAnimOn(1);
    SetAnimTime(80);
    ExpectObjectUndone<std::vector<float>>(UNDO_LIGHTPARAMS, view, [light] {
        light->SetFallOff(80, 60.0f);
        light->SetHotSpot(80, 20.0f);
        light->SetDistance(12.0f);
    });
    ExpectObjectUndone<std::vector<float>>(UNDO_CAMERAPARAMS, view, [camera] {
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
    const std::function<std::vector<float>()> colour = [this] {
        const ccolor c = lamp->GetColor();
        return std::vector<float>{c.r, c.g, c.b, c.a};
    };
    ExpectObjectUndone<std::vector<float>>(
        UNDO_OBJECTCOLOR, colour, [this] { lamp->SetColor(ccolor(0.1f, 0.2f, 0.3f, 1.0f)); });
    const std::function<std::vector<int>()> flags = [this] {
        return std::vector<int>{lamp->GetCastShadowFlag(), lamp->GetReceiveShadowFlag(),
                                lamp->GetSeeThroughFlag()};
    };
    ExpectObjectUndone<std::vector<int>>(UNDO_OBJECTPROPERTIES, flags, [this] {
        lamp->SetCastShadowFlag(0);
        lamp->SetSeeThroughFlag(1);
    });
    const std::function<std::vector<float>()> ik = [this] {
        const cpoint3 lo = lamp->GetIKMinRot(), hi = lamp->GetIKMaxRot();
        const cquat q = lamp->GetIKInitialRot();
        return std::vector<float>{float(lamp->IsIKDOFEnabled()),
                                  float(lamp->IsIKDampingEnabled()),
                                  float(lamp->IsIKLocked()),
                                  lamp->GetIKDampWidth(),
                                  lo.x,
                                  hi.z,
                                  q.x,
                                  q.w,
                                  float(lamp->GetIKNumIterations()),
                                  float(lamp->GetIKRecurseNum())};
    };
    ExpectObjectUndone<std::vector<float>>(UNDO_IKPARAMS, ik, [this] {
        lamp->EnableIKDOF(1);
        lamp->LockIK(1);
        lamp->SetIKDampWidth(33.0f);
        lamp->SetIKMinRot(cpoint3(-45.0f, 0.0f, 0.0f));
        lamp->SetIKMaxRot(cpoint3(0.0f, 0.0f, 90.0f));
        lamp->SetIKInitialRot(MakeQuat(0.6f, 0.0f, 0.0f, 0.8f));
        lamp->SetIKNumIterations(7);
        lamp->SetIKRecurseNum(3);
    });
    const std::function<std::string()> notes = [this] {
        return lamp->NotesSize() > 0 ? std::string(lamp->GetNotes(), lamp->NotesSize())
                                     : std::string();
    };
    lamp->CopyNotes("hangs over the desk", 19);
    ExpectObjectUndone<std::string>(UNDO_NOTES, notes, [this] {
        lamp->ClearNotes();
        lamp->CopyNotes("moved to the shelf", 18);
    });
    ExpectObjectUndone<std::string>(UNDO_NOTES, notes, [this] { lamp->ClearNotes(); });
}

}  // namespace
