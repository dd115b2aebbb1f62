#include "cscene.h"

#include <algorithm>
#include <type_traits>

#include "cimage.h"
#include "cmaterial.h"
#include "coreinterface.h"
#include "scene/aimednodes.h"

namespace {

// What the recording nodes and the host hook saw, in order.
std::vector<std::string> events;

// A node that keeps a material and records node deletions and its own destruction.
class TestNode : public cnode {
public:
    explicit TestNode(const char* name) : cnode(name, ccolor()) {}
    ~TestNode() override { events.push_back(std::string("destroyed ") + GetName()); }
    void SetMaterial(cmaterial* m) override { material = m; }
    cmaterial* GetMaterial() const override { return material; }
    int HandleMessage(unsigned long msg, void* a, void* b) override {
        if (msg == MSG_NODE_DELETED || msg == MSG_MTL_DELETED)
            events.push_back(std::string(GetName()) + " told " +
                             (msg == MSG_NODE_DELETED ? static_cast<cnode*>(a)->GetName()
                                                      : static_cast<cmaterial*>(a)->GetName()));
        return cnode::HandleMessage(msg, a, b);
    }
    cmaterial* material = nullptr;
};

class TestMaterial : public cmaterial {
public:
    explicit TestMaterial(const char* name) : cmaterial(name) {}
    ~TestMaterial() override { events.push_back(std::string("destroyed ") + GetName()); }
};

class SceneTest : public SceneClockTest {
protected:
    void SetUp() override {
        SceneClockTest::SetUp();
        events.clear();
    }
    // A node added to MainScene (flag 1: its name is kept).
    static TestNode* Add(const char* name) {
        auto* node = new TestNode(name);
        MainScene.AddNode(node, 1);
        return node;
    }
    // The selected and hidden counters, then each node's flags.
    static std::vector<float> State() {
        std::vector<float> state = Values(MainScene.NumSelected(), MainScene.NumHidden());
        for (int i = 0; i < MainScene.NumNodes(); ++i)
            state.push_back(MainScene.GetNodeAt(i)->GetFlags());
        return state;
    }
};

TEST_F(SceneTest, ArrayAdditionStopsAtTheFirstNodeAlreadyPresent) {
    cnode* none[] = {nullptr};
    cmaterial* noMaterial[] = {nullptr};
    MainScene.AddNodeArray(none, -1, 1);  // a negative count adds nothing
    MainScene.AddMaterialArray(noMaterial, -1, 1);
    TestNode* present = Add("Present");
    auto* hiddenSelected = new TestNode("HiddenSelected");
    auto* selected = new TestNode("Selected");
    TestNode after("After");
    hiddenSelected->SetFlags(FLAG_HIDDEN | FLAG_SELECTED);
    selected->SetFlags(FLAG_SELECTED | FLAG_DELETED);
    // Null is skipped; the second `selected` is in the scene by then and ends the addition.
    cnode* list[] = {hiddenSelected, nullptr, selected, selected, &after};
    MainScene.AddNodeArray(list, 5, 1);
    MainScene.AddNode(present, 0);
    // A hidden node cannot stay selected; the deleted mark is shed.
    EXPECT_EQ(State(), Values(1, 1, 0, FLAG_HIDDEN, FLAG_SELECTED));
    EXPECT_EQ(MainScene.GetSelNode(), selected);
    cmaterial m1("M1"), m3("M3");
    MainScene.AddMaterial(new cmaterial("M2"), 1);
    cmaterial* materials[] = {&m1, MainScene.GetMaterialAt(0), &m3};
    MainScene.AddMaterialArray(materials, 3, 1);
    EXPECT_TRUE(MainScene.NumMaterials() == 2 && MainScene.RemoveMaterialAt(1) == &m1)
        << "M1 added, M3 not";
}

TEST_F(SceneTest, CountersFollowSelectionAndVisibility) {
    TestNode* a = Add("A");
    TestNode* b = Add("B");
    TestNode* c = Add("C");
    for (cnode* node : {a, a, b}) MainScene.Select(node);
    MainScene.Deselect(a);  // selecting twice counted once: b is left
    MainScene.Hide(b);
    EXPECT_EQ(State(), Values(0, 1, 0, FLAG_HIDDEN, 0));
    MainScene.Select(c);
    MainScene.HideUnselected();
    EXPECT_EQ(State(), Values(1, 2, FLAG_HIDDEN, FLAG_HIDDEN, FLAG_SELECTED));
    MainScene.HideSelected();
    MainScene.Unhide(a);
    EXPECT_EQ(State(), Values(0, 2, 0, FLAG_HIDDEN, FLAG_HIDDEN));
    MainScene.UnhideAll();
    MainScene.Hide(a);
    // Selecting a hidden node is reported and refused.
    AssertRecorder recorder;
    MainScene.Select(a);
    EXPECT_TRUE(recorder.Texts().size() == 1 &&
                recorder.Texts()[0].find("Expression: !(fl&FLAG_HIDDEN)") != std::string::npos);
    EXPECT_EQ(State(), Values(0, 1, FLAG_HIDDEN, 0, 0));
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
    // Adding with flag 0 renames; a node keeps a name only it bears.
    auto* second = new TestNode("Node1");
    Add("Node1");
    MainScene.AddNode(second, 0);
    MainScene.EvalUniqueName(second);
    MainScene.AddMaterial(new cmaterial(), 0);
    MainScene.AddMaterial(new cmaterial(), 0);
    EXPECT_EQ(std::string(second->GetName()) + MainScene.GetMaterialAt(1)->GetName(), "Node2Mat2");
}

// Final deletion tells every other node, then the host, then destroys; Clear tells the nodes
// of each material, destroys the materials, then the nodes, and resets the settings.
TEST_F(SceneTest, DeletionTellsTheOthersFirstAndClearDestroysMaterialsBeforeNodes) {
    void (*const savedInform)(cnode*) = Application_InformDeleted;
    Application_InformDeleted = [](cnode* node) {
        events.push_back(std::string("host told ") + node->GetName());
    };
    TestNode* doomed = Add("Doomed");
    MainScene.Select(Add("A"));
    MainScene.Select(doomed);
    MainScene.DeleteNodeForGood(doomed);
    Application_InformDeleted = savedInform;
    EXPECT_EQ(State(), Values(1, 0, FLAG_SELECTED));
    MainScene.AddMaterial(new TestMaterial("Steel"), 1);
    MainScene.CopyNotes("scene notes", 11);
    MainScene.EnableFog(1);
    MainScene.SetSubLevel(2);
    {
        cimage picture;
        unsigned char rgb[3 * 4] = {};
        ASSERT_EQ(picture.SetBits(nullptr, rgb, nullptr, 2, 2, 24, 0), 1);
        MainScene.SetBkImage(&picture);
    }
    EXPECT_EQ(MainScene.GetBkImage()->GetWidth(), 2) << "the scene keeps a copy of its own";
    MainScene.Clear();
    EXPECT_EQ(events,
              (std::vector<std::string>{"A told Doomed", "host told Doomed", "destroyed Doomed",
                                        "A told Steel", "destroyed Steel", "destroyed A"}));
    EXPECT_EQ(Values(MainScene.NumNodes(), MainScene.NumMaterials(), MainScene.NumSelected(),
                     MainScene.IsFogEnabled(), MainScene.GetSubLevel()),
              Values(0, 0, 0, 0, 0));
    EXPECT_EQ(MainScene.GetNotes(), nullptr);
    EXPECT_EQ(MainScene.GetBkImage()->IsEmpty(), 1);
}

// The hierarchy walk's helper keeps its name for classes derived from the scene.
struct HierarchyHelper : cscene {
    using cscene::RecurseNodesHierarchy;
};
static_assert(std::is_member_function_pointer_v<decltype(&HierarchyHelper::RecurseNodesHierarchy)>);

TEST_F(SceneTest, HierarchyOfAnyDepthIsListed) {
    // A chain far deeper than a call stack could follow, added leaf first.
    constexpr int kDepth = 300000;
    std::vector<cnode*> chain(kDepth);
    for (int i = 0; i < kDepth; ++i) chain[i] = new cnode("Link", ccolor());
    for (int i = kDepth - 1; i > 0; --i) chain[i - 1]->Attach(chain[i], 1);
    std::reverse(chain.begin(), chain.end());
    MainScene.AddNodeArray(chain.data(), kDepth, 1);
    cbitarray order;
    ASSERT_EQ(MainScene.GetNodesHierarchy(order), kDepth);
    for (int k = 0; k < kDepth; ++k) ASSERT_EQ(order[k], kDepth - 1 - k) << k;
    // Clearing converts no dying node's keys through the chain above it: this stays quick.
}

TEST_F(SceneTest, MaterialsAreAppliedToTheSelectionAndCountedWhenUsed) {
    MainScene.Select(Add("A"));
    auto* used = new cmaterial("Used");
    MainScene.AddMaterial(new cmaterial("Idle"), 1);
    // Every node is asked, also about no material, which a node without one uses.
    const int noneUsed = MainScene.IsMaterialUsed(nullptr);
    EXPECT_EQ(MainScene.ApplyMaterial(used), 1);
    cbitarray unused;
    EXPECT_EQ(MainScene.GetUnusedMaterials(unused), 1);
    // The applied material joins the scene; removing it makes the nodes drop it.
    EXPECT_EQ(Values(MainScene.Find(used), MainScene.NumUsedMaterials(), unused[0], unused[1],
                     noneUsed, MainScene.IsMaterialUsed(nullptr)),
              Values(1, 1, 1, 0, 1, 0));
    EXPECT_TRUE(MainScene.RemoveMaterialAt(1) == used && !MainScene.GetNodeAt(0)->GetMaterial());
    used->Delete();
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
    EXPECT_TRUE(Near3(MainScene.GetSelCenter(), cpoint3(3.0f, 1.0f, 0.0f)));
    MainScene.ScaleSelected(cpoint3(2.0f, 0.0f, 2.0f));  // refused: a zero factor
    // Half a turn about z through the centre (3, 1, 0) maps (x, y) to (6 - x, 2 - y); doubling
    // about it then maps them to (2x - 3, 2y - 1).
    MainScene.RotateSelected(QuatFromAngleAxis(180.0f, cpoint3(0.0f, 0.0f, 1.0f)));
    MainScene.ScaleSelected(cpoint3(2.0f, 2.0f, 2.0f));
    EXPECT_TRUE(Near3(a->GetPosition(0), cpoint3(7, 3, 0)) &&
                Near3(b->GetPosition(0), cpoint3(-5, 3, 0)) &&
                Near3(c->GetPosition(0), cpoint3(7, -3, 0)));
    cpoint3 center(1, 1, 1);
    MainScene.DeselectAll();
    EXPECT_TRUE(MainScene.CalcSelPos(center) == 0 && center == cpoint3());
}

}  // namespace
