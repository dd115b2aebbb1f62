#include "cscene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "animclock.h"
#include "cmaterial.h"
#include "cnode.h"
#include "coreinterface.h"
#include "support/testsupport.h"

namespace {

// What the recording nodes and materials, and the host hook, saw, in order.
std::vector<std::string> events;

// A node that keeps a material, can be given a box, and records messages and its destruction.
class TestNode : public cnode {
public:
    explicit TestNode(const char* name) : cnode(name, ccolor()) {}
    ~TestNode() override { events.push_back(std::string("destroyed ") + GetName()); }

    void SetMaterial(cmaterial* m) override { material = m; }
    cmaterial* GetMaterial() const override { return material; }
    int HandleMessage(unsigned long msg, void* a, void* b) override {
        const char* about = msg == MSG_MTL_DELETED ? static_cast<cmaterial*>(a)->GetName()
                                                   : static_cast<cnode*>(a)->GetName();
        events.push_back(std::string(GetName()) + " told " + std::to_string(msg) + " " + about);
        return cnode::HandleMessage(msg, a, b);
    }
    void SetBox(const cpoint3& min, const cpoint3& max) {
        bbMin = min;
        bbMax = max;
    }

private:
    cmaterial* material = nullptr;
};

class TestMaterial : public cmaterial {
public:
    explicit TestMaterial(const char* name) : cmaterial(name) {}
    ~TestMaterial() override { events.push_back(std::string("destroyed ") + GetName()); }
};

void RecordInformDeleted(cnode* node) {
    events.push_back(std::string("host told ") + node->GetName());
}

class SceneTest : public ::testing::Test {
protected:
    void SetUp() override {
        ResetAnim();
        SetAnimOn(0);
        events.clear();
    }
    void TearDown() override {
        MainScene.Clear();
        for (cnode* node : outside) node->Delete();
        ResetAnim();
        Application_InformDeleted = savedInform;
    }
    // A node added to MainScene (flag 1: its name is kept).
    TestNode* Add(const char* name) {
        auto* node = new TestNode(name);
        MainScene.AddNode(node, 1);
        return node;
    }
    // A node the test deletes itself unless the scene takes it.
    TestNode* Outside(const char* name) {
        auto* node = new TestNode(name);
        outside.push_back(node);
        return node;
    }
    void Adopted(cnode* node) { outside.erase(std::find(outside.begin(), outside.end(), node)); }

    std::vector<cnode*> outside;
    void (*savedInform)(cnode*) = Application_InformDeleted;
};

void ExpectNear(const cpoint3& actual, const cpoint3& expected) {
    EXPECT_NEAR(actual.x, expected.x, 1e-4f);
    EXPECT_NEAR(actual.y, expected.y, 1e-4f);
    EXPECT_NEAR(actual.z, expected.z, 1e-4f);
}

TEST_F(SceneTest, ArrayAdditionStopsAtTheFirstNodeAlreadyPresent) {
    TestNode* a = Outside("A");
    TestNode* b = Add("B");
    TestNode* c = Outside("C");
    cnode* list[] = {a, b, c};
    MainScene.AddNodeArray(list, 3, 1);
    Adopted(a);
    ASSERT_EQ(MainScene.NumNodes(), 2);
    EXPECT_EQ(MainScene.GetNodeAt(0), b);
    EXPECT_EQ(MainScene.GetNodeAt(1), a);
    EXPECT_EQ(MainScene.Find(c), -1) << "the early stop does not skip to the rest";
    MainScene.AddNode(a, 0);
    EXPECT_EQ(MainScene.NumNodes(), 2) << "a node is in the scene once";

    cmaterial m1("M1"), m3("M3");
    MainScene.AddMaterial(new cmaterial("M2"), 1);
    cmaterial* materials[] = {&m1, MainScene.GetMaterialAt(0), &m3};
    MainScene.AddMaterialArray(materials, 3, 1);
    EXPECT_EQ(MainScene.NumMaterials(), 2);
    EXPECT_EQ(MainScene.RemoveMaterialAt(1), &m1) << "M1 added, M3 not";
}

TEST_F(SceneTest, ArrayAdditionCountsEachNodeAsSingleAdditionsDo) {
    TestNode* present = Add("Present");
    TestNode* hiddenSelected = Outside("HiddenSelected");
    hiddenSelected->SetFlags(FLAG_HIDDEN | FLAG_SELECTED);
    TestNode* selected = Outside("Selected");
    selected->SetFlags(FLAG_SELECTED | FLAG_DELETED);
    TestNode* plain = Outside("Plain");
    TestNode* after = Outside("After");
    // Null is skipped; the second `plain` is in the scene by then and ends the addition.
    cnode* list[] = {hiddenSelected, nullptr, selected, plain, plain, after};
    MainScene.AddNodeArray(list, 6, 1);
    for (cnode* node : {hiddenSelected, selected, plain}) Adopted(node);
    ASSERT_EQ(MainScene.NumNodes(), 4);
    EXPECT_EQ(MainScene.GetNodeAt(0), present);
    EXPECT_EQ(MainScene.GetNodeAt(1), hiddenSelected);
    EXPECT_EQ(MainScene.GetNodeAt(2), selected);
    EXPECT_EQ(MainScene.GetNodeAt(3), plain);
    EXPECT_EQ(MainScene.Find(after), -1);
    EXPECT_EQ(hiddenSelected->GetFlags(), FLAG_HIDDEN) << "a hidden node cannot stay selected";
    EXPECT_EQ(selected->GetFlags(), FLAG_SELECTED) << "the deleted mark is shed";
    EXPECT_EQ(MainScene.NumHidden(), 1);
    EXPECT_EQ(MainScene.NumSelected(), 1);
    EXPECT_EQ(MainScene.GetSelNode(), selected);
}

TEST_F(SceneTest, CountersFollowSelectionAndVisibility) {
    TestNode* a = Add("A");
    TestNode* b = Add("B");
    TestNode* c = Add("C");

    MainScene.Select(a);
    MainScene.Select(a);
    EXPECT_EQ(MainScene.NumSelected(), 1) << "selecting twice counts once";
    EXPECT_EQ(MainScene.GetSelNode(), a);
    MainScene.Select(b);
    EXPECT_EQ(MainScene.GetSelNode(), nullptr) << "two nodes selected";
    MainScene.Deselect(a);
    EXPECT_EQ(MainScene.GetSelNode(), b) << "the one left selected";

    MainScene.Hide(b);
    EXPECT_EQ(b->GetFlags() & (FLAG_SELECTED | FLAG_HIDDEN), FLAG_HIDDEN);
    EXPECT_EQ(MainScene.NumSelected(), 0);
    EXPECT_EQ(MainScene.NumHidden(), 1);

    MainScene.Select(c);
    MainScene.HideUnselected();
    EXPECT_EQ(MainScene.NumHidden(), 2) << "a, besides b already hidden";
    EXPECT_EQ(a->GetFlags(), FLAG_HIDDEN);
    MainScene.HideSelected();
    EXPECT_EQ(MainScene.NumHidden(), 3);
    EXPECT_EQ(MainScene.NumSelected(), 0);
    MainScene.Unhide(a);
    MainScene.UnhideAll();
    EXPECT_EQ(MainScene.NumHidden(), 0);
    for (cnode* node : {static_cast<cnode*>(a), static_cast<cnode*>(b), static_cast<cnode*>(c)})
        EXPECT_EQ(node->GetFlags(), 0u) << node->GetName();
}

TEST_F(SceneTest, SelectingAHiddenNodeIsReportedAndRefused) {
    TestNode* a = Add("A");
    MainScene.Hide(a);
    AssertRecorder recorder;
    MainScene.Select(a);
    ASSERT_EQ(recorder.Count(), 1);
    EXPECT_NE(recorder.Texts()[0].find("File: Core/cscene"), std::string::npos);
    EXPECT_NE(recorder.Texts()[0].find("Expression: !(fl&FLAG_HIDDEN)"), std::string::npos);
    EXPECT_EQ(MainScene.NumSelected(), 0);
    EXPECT_EQ(a->GetFlags(), FLAG_HIDDEN);
}

TEST_F(SceneTest, RemovedNodesLeaveTheCountersAndComeBackClean) {
    TestNode* a = Add("A");
    TestNode* b = Add("B");
    a->SetFlags(0x10);
    MainScene.Select(a);
    MainScene.Hide(b);
    EXPECT_EQ(MainScene.RemoveNodeAt(0), a);
    outside.push_back(a);
    EXPECT_EQ(a->GetFlags(), 0x10 | FLAG_DELETED) << "other bits survive";
    EXPECT_EQ(MainScene.NumSelected(), 0);
    EXPECT_EQ(MainScene.RemoveNode(b), 1);
    outside.push_back(b);
    EXPECT_EQ(b->GetFlags(), FLAG_DELETED);
    EXPECT_EQ(MainScene.NumHidden(), 0);
    EXPECT_EQ(MainScene.RemoveNodeAt(0), nullptr);

    // Coming back (undo): the deleted mark goes, a hidden node counts as hidden.
    b->SetFlags(FLAG_HIDDEN | FLAG_SELECTED);
    MainScene.AddNode(b, 1);
    MainScene.AddNode(a, 1);
    outside.clear();
    EXPECT_EQ(a->GetFlags(), 0x10u);
    EXPECT_EQ(b->GetFlags(), FLAG_HIDDEN) << "a hidden node is never selected";
    EXPECT_EQ(MainScene.NumHidden(), 1);
    EXPECT_EQ(MainScene.NumSelected(), 0);
}

TEST_F(SceneTest, UniqueNamesRenumberTheBaseAndStayWithin63Characters) {
    Add("Box12");
    char name[64] = "Box12";
    UniqueNameForNode(name, 0);
    EXPECT_STREQ(name, "Box1");
    Add("Box1");
    std::snprintf(name, sizeof name, "Box1");
    UniqueNameForNode(name, 0);
    EXPECT_STREQ(name, "Box2");
    std::snprintf(name, sizeof name, "Sphere7");
    UniqueNameForNode(name, 0);
    EXPECT_STREQ(name, "Sphere7") << "nobody bears it";

    const std::string longest(63, 'a');
    Add(longest.c_str());
    Add((std::string(62, 'a') + "1").c_str());
    std::snprintf(name, sizeof name, "%s", longest.c_str());
    UniqueNameForNode(name, 0);
    EXPECT_EQ(std::string(name), std::string(62, 'a') + "2");

    // Adding with flag 0 renames; a node already in the scene keeps a name only it bears.
    auto* first = new TestNode("Node1");
    auto* second = new TestNode("Node1");
    MainScene.AddNode(first, 0);
    MainScene.AddNode(second, 0);
    EXPECT_STREQ(first->GetName(), "Node1");
    MainScene.EvalUniqueName(second);
    EXPECT_STREQ(second->GetName(), "Node2") << "only it bears the name";
    second->SetName("Node1");
    MainScene.EvalUniqueName(second);
    EXPECT_STREQ(second->GetName(), "Node2");

    MainScene.AddMaterial(new cmaterial(), 0);
    MainScene.AddMaterial(new cmaterial(), 0);
    EXPECT_STREQ(MainScene.GetMaterialAt(1)->GetName(), "Mat2");
}

TEST_F(SceneTest, FinalDeletionTellsEveryNodeThenTheHostThenDestroys) {
    Application_InformDeleted = RecordInformDeleted;
    TestNode* doomed = Add("Doomed");
    Add("B");
    Add("C");
    MainScene.Select(doomed);
    MainScene.DeleteNodeForGood(doomed);
    const std::vector<std::string> expected = {"B told 1 Doomed", "C told 1 Doomed",
                                               "host told Doomed", "destroyed Doomed"};
    EXPECT_EQ(events, expected);
    EXPECT_EQ(MainScene.NumNodes(), 2);
    EXPECT_EQ(MainScene.NumSelected(), 0);
}

TEST_F(SceneTest, ClearEmptiesInItsOrderAndRestoresTheDefaults) {
    TestNode* a = Add("A");
    MainScene.Select(a);
    MainScene.AddMaterial(new TestMaterial("Steel"), 1);
    int imageStandIn = 0;
    MainScene.SetBkImage(reinterpret_cast<cimage*>(&imageStandIn));
    MainScene.CopyNotes("scene notes", 11);
    MainScene.SetAmbient(ccolor(1.0f, 0.0f, 0.0f));
    MainScene.SetBkColor(ccolor(0.0f, 1.0f, 0.0f));
    MainScene.EnableFog(1);
    MainScene.SetFogValues(cpoint3(1.0f, 1.0f, 1.0f), 5.0f, 50.0f, 0.5f);
    MainScene.SetSubLevel(2);

    MainScene.Clear();
    const std::vector<std::string> expected = {"A told 2 Steel", "destroyed Steel", "destroyed A"};
    EXPECT_EQ(events, expected) << "materials go before the nodes";
    EXPECT_EQ(MainScene.NumNodes() + MainScene.NumMaterials() + MainScene.NumSelected(), 0);
    EXPECT_EQ(MainScene.GetBkImage(), nullptr);
    EXPECT_EQ(MainScene.GetNotes(), nullptr);
    EXPECT_EQ(MainScene.GetAmbient(), ccolor(0.2f, 0.2f, 0.2f, 1.0f));
    EXPECT_EQ(MainScene.GetBkColor(), ccolor(0.0f, 0.0f, 0.0f, 1.0f));
    EXPECT_EQ(MainScene.IsFogEnabled(), 0);
    cpoint3 color(9.0f, 9.0f, 9.0f);
    float start = 9.0f, end = 9.0f, density = 9.0f;
    MainScene.GetFogValues(color, start, end, density);
    EXPECT_EQ(color, cpoint3(0.0f, 0.0f, 0.0f));
    EXPECT_EQ(start, 0.0f);
    EXPECT_EQ(end, 1.0f);
    EXPECT_EQ(density, 1.0f);
    EXPECT_EQ(MainScene.GetSubLevel(), 0);
}

TEST_F(SceneTest, WorldBoxCoversTheTransformedNodeBoxes) {
    cpoint3 min, max;
    EXPECT_EQ(MainScene.GetWorldBBox(0, min, max, 0, 1), 0);
    EXPECT_EQ(min, cpoint3());
    EXPECT_EQ(max, cpoint3());

    TestNode* a = Add("A");
    a->SetBox(cpoint3(-1.0f, -1.0f, -1.0f), cpoint3(1.0f, 1.0f, 1.0f));
    a->SetScale(0, cpoint3(2.0f, 1.0f, 1.0f));
    a->SetPosition(0, cpoint3(10.0f, 0.0f, 0.0f));
    TestNode* b = Add("B");
    b->SetBox(cpoint3(0.0f, 0.0f, 0.0f), cpoint3(1.0f, 1.0f, 1.0f));
    b->SetRotation(0, QuatFromAngleAxis(180.0f, cpoint3(0.0f, 0.0f, 1.0f)));
    b->SetPosition(0, cpoint3(0.0f, 5.0f, 0.0f));
    // A child without geometry, 3 units along its parent's x axis (scaled by 2): x = 16.
    TestNode* c = Add("C");
    c->SetPosition(0, cpoint3(3.0f, 0.0f, 0.0f));
    a->Attach(c, 0);
    c->SetParent(a, 0);

    ASSERT_EQ(MainScene.GetWorldBBox(0, min, max, 0, 0), 1);
    ExpectNear(min, cpoint3(-1.0f, -1.0f, -1.0f));
    ExpectNear(max, cpoint3(16.0f, 5.0f, 1.0f));

    MainScene.Select(a);
    ASSERT_EQ(MainScene.CalcSelBBox(min, max), 1);
    ExpectNear(min, cpoint3(8.0f, -1.0f, -1.0f));
    ExpectNear(max, cpoint3(12.0f, 1.0f, 1.0f));

    MainScene.Hide(c);
    MainScene.Hide(a);
    MainScene.GetWorldBBox(0, min, max, 0, 0);
    ExpectNear(min, cpoint3(-1.0f, 4.0f, 0.0f));
    ExpectNear(max, cpoint3(0.0f, 5.0f, 1.0f));
}

TEST_F(SceneTest, HierarchyListsParentsBeforeChildren) {
    TestNode* child = Add("Child");
    TestNode* root = Add("Root");
    TestNode* grandchild = Add("Grandchild");
    Add("Other");
    root->Attach(child, 1);
    child->Attach(grandchild, 1);

    cbitarray order;
    ASSERT_EQ(MainScene.GetNodesHierarchy(order), 4);
    ASSERT_EQ(order.GetSize(), 4);
    const std::vector<int> expected = {1, 0, 2, 3};
    EXPECT_EQ(std::vector<int>(order.GetData(), order.GetData() + 4), expected);

    // A parent chain that loops still lists every node once, starting at the lowest index.
    TestNode* x = Add("X");
    TestNode* y = Add("Y");
    x->Attach(y, 0);
    y->SetParent(x, 0);
    y->Attach(x, 0);
    x->SetParent(y, 0);
    ASSERT_EQ(MainScene.GetNodesHierarchy(order), 6);
    EXPECT_EQ(order[4], 4);
    EXPECT_EQ(order[5], 5);
    x->SetParent(nullptr, 0);
    y->Detach(x, 0);
}

TEST_F(SceneTest, NodesTakeAGivenOrderAndContentsSwapWithTheirCounters) {
    TestNode* a = Add("A");
    TestNode* b = Add("B");
    TestNode* c = Add("C");
    cbitarray order(3);
    order.Set(0, 2);
    order.Set(1, 0);
    order.Set(2, 1);
    ASSERT_EQ(MainScene.SetNodeOrder(order), 1);
    EXPECT_EQ(MainScene.GetNodeAt(0), c);
    EXPECT_EQ(MainScene.GetNodeAt(1), a);
    EXPECT_EQ(MainScene.GetNodeAt(2), b);
    order.Set(2, 0);  // not a permutation
    EXPECT_EQ(MainScene.SetNodeOrder(order), 0);
    EXPECT_EQ(MainScene.SetNodeOrder(cbitarray(2)), 0);
    EXPECT_EQ(MainScene.GetNodeAt(0), c) << "a refused order changes nothing";

    MainScene.Select(a);
    MainScene.Hide(b);
    MainScene.SetSubLevel(2);
    MainScene.AddMaterial(new TestMaterial("Steel"), 1);
    MainScene.SetAmbient(ccolor(0.5f, 0.5f, 0.5f, 1.0f));
    {
        cscene aside;
        MainScene.SwapNodesAndMaterials(aside);
        EXPECT_EQ(MainScene.NumNodes(), 0);
        EXPECT_EQ(MainScene.NumMaterials(), 0);
        EXPECT_EQ(MainScene.NumSelected(), 0);
        EXPECT_EQ(MainScene.NumHidden(), 0);
        EXPECT_EQ(MainScene.GetSelNode(), nullptr);
        EXPECT_EQ(MainScene.GetSubLevel(), 0);
        EXPECT_EQ(MainScene.GetAmbient().r, 0.5f) << "settings stay";
        EXPECT_EQ(aside.GetNodeAt(1), a);
        EXPECT_EQ(aside.GetSelNode(), a);
        EXPECT_EQ(aside.NumHidden(), 1);
        EXPECT_EQ(aside.GetSubLevel(), 2);
        MainScene.SwapNodesAndMaterials(aside);
    }
    EXPECT_TRUE(events.empty()) << "nothing was destroyed";
    EXPECT_EQ(MainScene.NumNodes(), 3);
    EXPECT_EQ(MainScene.GetMaterialAt(0)->GetName(), std::string("Steel"));
    EXPECT_EQ(MainScene.GetSelNode(), a);
    EXPECT_EQ(MainScene.NumHidden(), 1);
}

TEST_F(SceneTest, MaterialsAreAppliedToTheSelectionAndCountedWhenUsed) {
    TestNode* a = Add("A");
    TestNode* b = Add("B");
    auto* used = new cmaterial("Used");
    auto* idle = new cmaterial("Idle");
    MainScene.AddMaterial(idle, 1);
    MainScene.Select(a);
    EXPECT_EQ(MainScene.ApplyMaterial(used), 1);
    EXPECT_EQ(MainScene.Find(used), 1) << "an applied material joins the scene";
    EXPECT_EQ(a->GetMaterial(), used);
    EXPECT_EQ(b->GetMaterial(), nullptr);
    EXPECT_EQ(MainScene.IsMaterialUsed(used), 1);
    EXPECT_EQ(MainScene.IsMaterialUsed(idle), 0);
    EXPECT_EQ(MainScene.NumUsedMaterials(), 1);
    cbitarray unused;
    EXPECT_EQ(MainScene.GetUnusedMaterials(unused), 1);
    ASSERT_EQ(unused.GetSize(), 2);
    EXPECT_EQ(unused[0], 1);
    EXPECT_EQ(unused[1], 0);

    MainScene.Select(b);
    EXPECT_EQ(MainScene.ApplyMaterial(0), 2);
    EXPECT_EQ(b->GetMaterial(), idle);
    MainScene.Deselect(a);
    EXPECT_EQ(MainScene.ResetMaterial(), 1);
    EXPECT_EQ(b->GetMaterial(), nullptr);

    // Removing a material makes the nodes drop it; the caller then owns it.
    EXPECT_EQ(MainScene.RemoveMaterialAt(0), idle);
    EXPECT_EQ(a->GetMaterial(), nullptr);
    EXPECT_EQ(MainScene.Find(idle), -1);
    idle->Delete();
}

TEST_F(SceneTest, NotesStopAt8192Characters) {
    MainScene.CopyNotes(std::string(8190, 'n').c_str(), 8190);
    MainScene.AddNotes("abcdef", 6);
    EXPECT_EQ(MainScene.NotesSize(), 8192);
    EXPECT_EQ(std::string(MainScene.GetNotes()).substr(8188), "nnab");
    MainScene.CopyNotes("", 5);
    MainScene.CopyNotes("short", 3);
    EXPECT_STREQ(MainScene.GetNotes(), "sho");
}

TEST_F(SceneTest, NumericTransformsMoveEachSelectedSubtreeOnce) {
    TestNode* a = Add("A");
    TestNode* b = Add("B");
    TestNode* c = Add("C");
    b->SetPosition(0, cpoint3(6.0f, 0.0f, 0.0f));
    c->SetPosition(0, cpoint3(0.0f, 3.0f, 0.0f));
    a->Attach(c, 1);
    for (cnode* node : {static_cast<cnode*>(a), static_cast<cnode*>(b), static_cast<cnode*>(c)})
        MainScene.Select(node);

    MainScene.MoveSelected(cpoint3(1.0f, 0.0f, 0.0f));
    ExpectNear(a->GetPosition(0), cpoint3(1.0f, 0.0f, 0.0f));
    ExpectNear(b->GetPosition(0), cpoint3(7.0f, 0.0f, 0.0f));
    // The child moves with its parent only, not a second time of its own.
    ExpectNear(c->GetPosition(0), cpoint3(1.0f, 3.0f, 0.0f));
    ExpectNear(MainScene.GetSelCenter(), cpoint3(3.0f, 1.0f, 0.0f));

    MainScene.ScaleSelected(cpoint3(2.0f, 2.0f, 2.0f));
    ExpectNear(a->GetPosition(0), cpoint3(-1.0f, -1.0f, 0.0f));
    ExpectNear(b->GetPosition(0), cpoint3(11.0f, -1.0f, 0.0f));
    ExpectNear(c->GetPosition(0), cpoint3(-1.0f, 5.0f, 0.0f));
    MainScene.ScaleSelected(cpoint3(2.0f, 0.0f, 2.0f));
    ExpectNear(b->GetPosition(0), cpoint3(11.0f, -1.0f, 0.0f));

    // Half a turn about z through the centre (3, 1, 0) maps (x, y) to (6 - x, 2 - y).
    MainScene.RotateSelected(QuatFromAngleAxis(180.0f, cpoint3(0.0f, 0.0f, 1.0f)));
    ExpectNear(a->GetPosition(0), cpoint3(7.0f, 3.0f, 0.0f));
    ExpectNear(b->GetPosition(0), cpoint3(-5.0f, 3.0f, 0.0f));
    ExpectNear(c->GetPosition(0), cpoint3(7.0f, -3.0f, 0.0f));

    cpoint3 center;
    EXPECT_EQ(MainScene.CalcSelPos(center), 3);
    ExpectNear(center, cpoint3(3.0f, 1.0f, 0.0f));
    MainScene.DeselectAll();
    EXPECT_EQ(MainScene.CalcSelPos(center), 0);
    EXPECT_EQ(center, cpoint3());
}

TEST_F(SceneTest, TimeChangesReevaluateNodesAndTheSelectionCentre) {
    TestNode* a = Add("A");
    TestNode* b = Add("B");
    a->GetAnimPtr()->SetKey(400, cpoint3(4.0f, 0.0f, 0.0f), cquat(), cpoint3(1.0f, 1.0f, 1.0f));
    b->GetAnimPtr()->SetKey(-40, cpoint3(), cquat(), cpoint3(1.0f, 1.0f, 1.0f));
    int start = 1, end = 1;
    EXPECT_EQ(MainScene.GetAnimSeg(&start, &end), 1);
    EXPECT_EQ(start, -40);
    EXPECT_EQ(end, 400);

    MainScene.Select(a);
    MainScene.UpdateSelPos();
    SetAnimEnd(1000);
    SetAnimTime(200);
    MainScene.UpdateNodesAtAnimTimeChange();
    ExpectNear(a->GetPosition(200), cpoint3(2.0f, 0.0f, 0.0f));
    ExpectNear(MainScene.GetSelCenter(), cpoint3());
    MainScene.UpdateMiscAtAnimTimeChange();
    ExpectNear(MainScene.GetSelCenter(), cpoint3(2.0f, 0.0f, 0.0f));

    MainScene.Clear();
    EXPECT_EQ(MainScene.GetAnimSeg(&start, &end), 0);
    EXPECT_EQ(start + end, 0);
}

}  // namespace
