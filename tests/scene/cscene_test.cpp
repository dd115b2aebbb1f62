#include "cscene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "animclock.h"
#include "cmaterial.h"
#include "cnode.h"
#include "coreinterface.h"
#include "scene/aimednodes.h"
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

class SceneTest : public SceneClockTest {
protected:
    void SetUp() override {
        SceneClockTest::SetUp();
        events.clear();
    }
    void TearDown() override {
        SceneClockTest::TearDown();
        for (cnode* node : outside) node->Delete();
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

// MainScene's nodes in order.
std::vector<cnode*> Nodes() {
    std::vector<cnode*> nodes;
    for (int i = 0; i < MainScene.NumNodes(); ++i) nodes.push_back(MainScene.GetNodeAt(i));
    return nodes;
}

// Each node's position at time 0 is near the point of the same index.
void ExpectPositions(std::initializer_list<cnode*> nodes, std::vector<cpoint3> at) {
    int i = 0;
    for (cnode* node : nodes) EXPECT_TRUE(Near3(node->GetPosition(0), at[i++])) << node->GetName();
}

TEST_F(SceneTest, ArrayAdditionStopsAtTheFirstNodeAlreadyPresentAndCountsAsSingleAdditions) {
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
    EXPECT_EQ(Nodes(), (std::vector<cnode*>{present, hiddenSelected, selected, plain}));
    EXPECT_EQ(hiddenSelected->GetFlags(), FLAG_HIDDEN) << "a hidden node cannot stay selected";
    EXPECT_EQ(selected->GetFlags(), FLAG_SELECTED) << "the deleted mark is shed";
    EXPECT_EQ(Values(MainScene.NumHidden(), MainScene.NumSelected()), Values(1, 1));
    EXPECT_EQ(MainScene.GetSelNode(), selected);
    cnode* again[] = {after, present, hiddenSelected};
    MainScene.AddNodeArray(again, 3, 1);
    Adopted(after);
    EXPECT_EQ(MainScene.NumNodes(), 5) << "a node present from the start stops it too";
    MainScene.AddNode(plain, 0);
    EXPECT_EQ(MainScene.NumNodes(), 5) << "a node is in the scene once";
    cmaterial m1("M1"), m3("M3");
    MainScene.AddMaterial(new cmaterial("M2"), 1);
    cmaterial* materials[] = {&m1, MainScene.GetMaterialAt(0), &m3};
    MainScene.AddMaterialArray(materials, 3, 1);
    EXPECT_EQ(MainScene.NumMaterials(), 2);
    EXPECT_EQ(MainScene.RemoveMaterialAt(1), &m1) << "M1 added, M3 not";
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
    EXPECT_EQ(Values(MainScene.NumSelected(), MainScene.NumHidden()), Values(0, 1));
    MainScene.Select(c);
    MainScene.HideUnselected();
    EXPECT_EQ(MainScene.NumHidden(), 2) << "a, besides b already hidden";
    EXPECT_EQ(a->GetFlags(), FLAG_HIDDEN);
    MainScene.HideSelected();
    EXPECT_EQ(Values(MainScene.NumSelected(), MainScene.NumHidden()), Values(0, 3));
    MainScene.Unhide(a);
    MainScene.UnhideAll();
    EXPECT_EQ(Values(MainScene.NumHidden(), a->GetFlags(), b->GetFlags(), c->GetFlags()),
              Values(0, 0, 0, 0));

    // Selecting a hidden node is reported and refused.
    MainScene.Hide(a);
    AssertRecorder recorder;
    MainScene.Select(a);
    ASSERT_EQ(recorder.Count(), 1);
    EXPECT_NE(recorder.Texts()[0].find("File: Core/cscene"), std::string::npos);
    EXPECT_NE(recorder.Texts()[0].find("Expression: !(fl&FLAG_HIDDEN)"), std::string::npos);
    EXPECT_EQ(Values(MainScene.NumSelected(), a->GetFlags()), Values(0, FLAG_HIDDEN));
}

TEST_F(SceneTest, RemovedNodesLeaveTheCountersAndComeBackClean) {
    TestNode* a = Add("A");
    TestNode* b = Add("B");
    a->SetFlags(0x10);
    MainScene.Select(a);
    MainScene.Hide(b);
    EXPECT_EQ(MainScene.RemoveNodeAt(0), a);
    EXPECT_EQ(MainScene.RemoveNode(b), 1);
    outside = {a, b};
    EXPECT_EQ(a->GetFlags(), 0x10 | FLAG_DELETED) << "other bits survive";
    EXPECT_EQ(b->GetFlags(), FLAG_DELETED);
    EXPECT_EQ(Values(MainScene.NumSelected(), MainScene.NumHidden()), Values(0, 0));
    EXPECT_EQ(MainScene.RemoveNodeAt(0), nullptr);
    // Coming back (undo): the deleted mark goes, a hidden node counts as hidden.
    b->SetFlags(FLAG_HIDDEN | FLAG_SELECTED);
    MainScene.AddNode(b, 1);
    MainScene.AddNode(a, 1);
    outside.clear();
    EXPECT_EQ(a->GetFlags(), 0x10u);
    EXPECT_EQ(b->GetFlags(), FLAG_HIDDEN) << "a hidden node is never selected";
    EXPECT_EQ(Values(MainScene.NumSelected(), MainScene.NumHidden()), Values(0, 1));
}

TEST_F(SceneTest, UniqueNamesRenumberTheBaseAndStayWithin63Characters) {
    const std::string a62(62, 'a');
    // Each row: a name added to the scene first (if any), a wanted name, the unique name given.
    const std::string rows[][3] = {{"Box12", "Box12", "Box1"},
                                   {"Box1", "Box1", "Box2"},
                                   {"", "Sphere7", "Sphere7"},
                                   {a62 + "1", a62 + "a", a62 + "2"}};
    Add((a62 + "a").c_str());
    for (const auto& row : rows) {
        if (!row[0].empty()) Add(row[0].c_str());
        char name[64];
        std::snprintf(name, sizeof name, "%s", row[1].c_str());
        UniqueNameForNode(name, 0);
        EXPECT_EQ(std::string(name), row[2]) << row[1];
    }
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
    EXPECT_EQ(events, (std::vector<std::string>{"B told 1 Doomed", "C told 1 Doomed",
                                                "host told Doomed", "destroyed Doomed"}));
    EXPECT_EQ(Values(MainScene.NumNodes(), MainScene.NumSelected()), Values(2, 0));
}

TEST_F(SceneTest, ClearEmptiesInItsOrderAndRestoresTheDefaults) {
    MainScene.Select(Add("A"));
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
    EXPECT_EQ(events,
              (std::vector<std::string>{"A told 2 Steel", "destroyed Steel", "destroyed A"}))
        << "materials go before the nodes";
    EXPECT_EQ(MainScene.NumNodes() + MainScene.NumMaterials() + MainScene.NumSelected(), 0);
    EXPECT_EQ(MainScene.GetBkImage(), nullptr);
    EXPECT_EQ(MainScene.GetNotes(), nullptr);
    EXPECT_EQ(MainScene.GetAmbient(), ccolor(0.2f, 0.2f, 0.2f, 1.0f));
    EXPECT_EQ(MainScene.GetBkColor(), ccolor(0.0f, 0.0f, 0.0f, 1.0f));
    cpoint3 color(9.0f, 9.0f, 9.0f);
    float start = 9.0f, end = 9.0f, density = 9.0f;
    MainScene.GetFogValues(color, start, end, density);
    EXPECT_EQ(Values(MainScene.IsFogEnabled(), color.x, color.y, color.z, start, end, density,
                     MainScene.GetSubLevel()),
              Values(0, 0, 0, 0, 0, 1, 1, 0));
}

TEST_F(SceneTest, WorldBoxCoversTheTransformedNodeBoxes) {
    cpoint3 min, max;
    EXPECT_EQ(MainScene.GetWorldBBox(0, min, max, 0, 1), 0);
    EXPECT_EQ(Values(min.x, min.y, min.z, max.x, max.y, max.z), Values(0, 0, 0, 0, 0, 0));
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
    const auto box = [&](const cpoint3& lo, const cpoint3& hi) {
        EXPECT_TRUE(Near3(min, lo));
        EXPECT_TRUE(Near3(max, hi));
    };
    ASSERT_EQ(MainScene.GetWorldBBox(0, min, max, 0, 0), 1);
    box(cpoint3(-1, -1, -1), cpoint3(16, 5, 1));
    MainScene.Select(a);
    ASSERT_EQ(MainScene.CalcSelBBox(min, max), 1);
    box(cpoint3(8, -1, -1), cpoint3(12, 1, 1));
    MainScene.Hide(c);
    MainScene.Hide(a);
    MainScene.GetWorldBBox(0, min, max, 0, 0);
    box(cpoint3(-1, 4, 0), cpoint3(0, 5, 1));
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
    EXPECT_EQ(std::vector<int>(order.GetData(), order.GetData() + 4),
              (std::vector<int>{1, 0, 2, 3}));
    // A parent chain that loops still lists every node once, starting at the lowest index.
    TestNode* x = Add("X");
    TestNode* y = Add("Y");
    x->Attach(y, 0);
    y->SetParent(x, 0);
    y->Attach(x, 0);
    x->SetParent(y, 0);
    ASSERT_EQ(MainScene.GetNodesHierarchy(order), 6);
    EXPECT_EQ(Values(order[4], order[5]), Values(4, 5));
    x->SetParent(nullptr, 0);
    y->Detach(x, 0);
}

TEST_F(SceneTest, HierarchyOfAnyDepthIsListed) {
    // A chain far deeper than a call stack could follow, added leaf first.
    constexpr int kDepth = 300000;
    std::vector<cnode*> chain(kDepth);
    for (int i = 0; i < kDepth; ++i) chain[i] = new cnode("Link", ccolor());
    // Attached from the bottom, so that each parent is still a root when it takes its child.
    for (int i = kDepth - 1; i > 0; --i) chain[i - 1]->Attach(chain[i], 1);
    std::reverse(chain.begin(), chain.end());
    MainScene.AddNodeArray(chain.data(), kDepth, 1);
    cbitarray order;
    ASSERT_EQ(MainScene.GetNodesHierarchy(order), kDepth);
    for (int k = 0; k < kDepth; ++k) ASSERT_EQ(order[k], kDepth - 1 - k) << k;
    // Unlinked bottom up without keeping world transforms, which would walk the whole chain
    // for every node when the scene is cleared.
    for (int i = 0; i + 1 < kDepth; ++i) chain[i + 1]->Detach(chain[i], 0);
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
    EXPECT_EQ(Nodes(), (std::vector<cnode*>{c, a, b}));
    order.Set(2, 0);  // not a permutation
    EXPECT_EQ(MainScene.SetNodeOrder(order) + MainScene.SetNodeOrder(cbitarray(2)), 0);
    EXPECT_EQ(Nodes(), (std::vector<cnode*>{c, a, b})) << "a refused order changes nothing";
    MainScene.Select(a);
    MainScene.Hide(b);
    MainScene.SetSubLevel(2);
    MainScene.AddMaterial(new TestMaterial("Steel"), 1);
    MainScene.SetAmbient(ccolor(0.5f, 0.5f, 0.5f, 1.0f));
    {
        cscene aside;
        MainScene.SwapNodesAndMaterials(aside);
        EXPECT_EQ(Values(MainScene.NumNodes(), MainScene.NumMaterials(), MainScene.NumSelected(),
                         MainScene.NumHidden(), MainScene.GetSubLevel()),
                  Values(0, 0, 0, 0, 0));
        EXPECT_EQ(MainScene.GetSelNode(), nullptr);
        EXPECT_EQ(MainScene.GetAmbient().r, 0.5f) << "settings stay";
        EXPECT_EQ(aside.GetNodeAt(1), a);
        EXPECT_EQ(aside.GetSelNode(), a);
        EXPECT_EQ(Values(aside.NumHidden(), aside.GetSubLevel()), Values(1, 2));
        MainScene.SwapNodesAndMaterials(aside);
    }
    EXPECT_TRUE(events.empty()) << "nothing was destroyed";
    EXPECT_EQ(Values(MainScene.NumNodes(), MainScene.NumHidden()), Values(3, 1));
    EXPECT_STREQ(MainScene.GetMaterialAt(0)->GetName(), "Steel");
    EXPECT_EQ(MainScene.GetSelNode(), a);
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
    cbitarray unused;
    EXPECT_EQ(Values(MainScene.IsMaterialUsed(used), MainScene.IsMaterialUsed(idle),
                     MainScene.NumUsedMaterials(), MainScene.GetUnusedMaterials(unused)),
              Values(1, 0, 1, 1));
    ASSERT_EQ(unused.GetSize(), 2);
    EXPECT_EQ(Values(unused[0], unused[1]), Values(1, 0));
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

// The notes rules are the nodes' (one shared mechanism); this checks the scene's wiring.
TEST_F(SceneTest, NotesStopAt8192Characters) {
    MainScene.CopyNotes(std::string(8190, 'n').c_str(), 8190);
    MainScene.AddNotes("abcdef", 6);
    MainScene.CopyNotes("", 5);
    EXPECT_EQ(std::string(MainScene.GetNotes()).substr(8188), "nnab");
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
    for (cnode* node : {a, b, c}) MainScene.Select(node);
    // The child moves with its parent only, not a second time of its own.
    MainScene.MoveSelected(cpoint3(1.0f, 0.0f, 0.0f));
    ExpectPositions({a, b, c}, {cpoint3(1, 0, 0), cpoint3(7, 0, 0), cpoint3(1, 3, 0)});
    EXPECT_TRUE(Near3(MainScene.GetSelCenter(), cpoint3(3.0f, 1.0f, 0.0f)));
    MainScene.ScaleSelected(cpoint3(2.0f, 2.0f, 2.0f));
    MainScene.ScaleSelected(cpoint3(2.0f, 0.0f, 2.0f));  // refused: a zero factor
    ExpectPositions({a, b, c}, {cpoint3(-1, -1, 0), cpoint3(11, -1, 0), cpoint3(-1, 5, 0)});
    // Half a turn about z through the centre (3, 1, 0) maps (x, y) to (6 - x, 2 - y).
    MainScene.RotateSelected(QuatFromAngleAxis(180.0f, cpoint3(0.0f, 0.0f, 1.0f)));
    ExpectPositions({a, b, c}, {cpoint3(7, 3, 0), cpoint3(-5, 3, 0), cpoint3(7, -3, 0)});
    cpoint3 center;
    EXPECT_EQ(MainScene.CalcSelPos(center), 3);
    EXPECT_TRUE(Near3(center, cpoint3(3.0f, 1.0f, 0.0f)));
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
    EXPECT_EQ(Values(start, end), Values(-40, 400));
    MainScene.Select(a);
    MainScene.UpdateSelPos();
    SetAnimTime(200);
    MainScene.UpdateNodesAtAnimTimeChange();
    EXPECT_TRUE(Near3(a->GetPosition(200), cpoint3(2.0f, 0.0f, 0.0f)));
    EXPECT_TRUE(Near3(MainScene.GetSelCenter(), cpoint3()));
    MainScene.UpdateMiscAtAnimTimeChange();
    EXPECT_TRUE(Near3(MainScene.GetSelCenter(), cpoint3(2.0f, 0.0f, 0.0f)));
    MainScene.Clear();
    EXPECT_EQ(MainScene.GetAnimSeg(&start, &end), 0);
    EXPECT_EQ(start + end, 0);
}

}  // namespace
