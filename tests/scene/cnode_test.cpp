#include "cnode.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "animclock.h"
#include "ciofields.h"
#include "cmaterial.h"
#include "cscene.h"
#include "scene/aimednodes.h"
#include "support/bytestring.h"
#include "support/testsupport.h"

namespace {

class Node : public AnimClockTest {};
using NodeRecord = Node;

// A node of a derived class: it keeps a material and lets the test set its box.
class MaterialNode : public cnode {
public:
    using cnode::cnode;
    void SetMaterial(cmaterial* m) override { material = m; }
    cmaterial* GetMaterial() const override { return material; }
    void SetBox(const cpoint3& lo, const cpoint3& hi) { bbMin = lo, bbMax = hi; }
    cmaterial* material = nullptr;
};

// Same rotation: q and -q are equal rotations.
::testing::AssertionResult SameRotation(const cquat& a, const cquat& b) {
    const float dot = std::fabs(DotProd(a, b));
    if (std::fabs(dot - 1.0f) <= 1e-4f) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "|a . b| = " << dot;
}

ckey KeyAt(const cnode& node, int index) {
    ckey key;
    EXPECT_TRUE(node.GetAnimPtr()->GetKeyAt(index, key));
    return key;
}

TEST_F(Node, KeepsNamesOf63AndNotesOf8192Characters) {
    cnode node;
    const ccolor c = node.GetColor();  // random, opaque
    EXPECT_TRUE(c.r >= 0 && c.r <= 1 && c.g >= 0 && c.g <= 1 && c.b >= 0 && c.b <= 1 && c.a == 1);
    const std::string seventy(70, 'n');
    node.SetName(seventy.c_str());
    EXPECT_EQ(std::string(node.GetName()), seventy.substr(0, 63));
    node.SetName(nullptr);
    char buffer[64];
    std::memset(buffer, 'x', sizeof buffer);
    node.GetName(buffer);
    EXPECT_EQ(buffer[63], '\0');
    EXPECT_EQ(std::string(buffer), seventy.substr(0, 63));

    const std::string long_text(10000, 'a');
    node.CopyNotes(long_text.c_str(), 10000);
    EXPECT_EQ(node.NotesSize(), 8192);
    node.CopyNotes(long_text.c_str(), 8190);
    node.AddNotes("xyz", 3);
    node.AddNotes("more", 4);
    node.CopyNotes("", 5);
    node.CopyNotes("abc", 0);
    EXPECT_EQ(std::string(node.GetNotes() + 8188), "aaxy") << "full; empty copies are ignored";
    node.ClearNotes();
    node.AddNotes("first line", 5);
    node.AddNotes("!?", 10);
    EXPECT_STREQ(node.GetNotes(), "first!?");
}

TEST_F(Node, SettersFollowTheAnimationModeAndTheKeyCount) {
    cnode node;
    SetAnimTime(40);
    node.SetPosition(40, cpoint3(1, 0, 0));  // off, one key: the key at 0 follows
    EXPECT_EQ(node.GetAnimPtr()->NumKeys(), 1);
    EXPECT_TRUE(Near3(KeyAt(node, 0).position, cpoint3(1, 0, 0), 0));
    SetAnimOn(1);
    node.SetScale(40, cpoint3(2, 2, 2));  // on: a key at the current time
    ASSERT_TRUE(node.HasKey(40));
    EXPECT_TRUE(Near3(KeyAt(node, 1).scale, cpoint3(2, 2, 2), 0));
    node.SetPosition(80, cpoint3(5, 0, 0));  // another time: a key there, the cache untouched
    EXPECT_TRUE(Near3(KeyAt(node, 2).scale, cpoint3(2, 2, 2), 0));
    EXPECT_TRUE(Near3(node.GetPosition(40), cpoint3(1, 0, 0), 0));
    EXPECT_TRUE(Near3(node.GetPosition(60), cpoint3(3, 0, 0)));
    SetAnimOn(0);  // off with 3 keys: a pose until the time changes
    node.SetPosition(40, cpoint3(9, 9, 9));
    EXPECT_TRUE(Near3(node.GetPosition(40), cpoint3(9, 9, 9), 0));
    EXPECT_EQ(node.GetAnimPtr()->NumKeys(), 3);
    EXPECT_TRUE(Near3(KeyAt(node, 1).position, cpoint3(1, 0, 0), 0));
    SetAnimTime(80);
    node.UpdateTimeIdle();
    SetAnimTime(40);
    node.UpdateTimeIdle();
    EXPECT_TRUE(Near3(node.GetPosition(40), cpoint3(1, 0, 0), 0));
}

TEST_F(Node, SnapsKeysAndNeverDeletesTheKeyAtZero) {
    cnode node;
    node.SetPosition(0, cpoint3(1, 1, 1));
    SetAnimTime(40);
    node.SetPosition(40, cpoint3(2, 2, 2));  // off, one key: moves the key at 0
    node.SnapKey();
    ASSERT_EQ(node.GetAnimPtr()->NumKeys(), 2);
    EXPECT_TRUE(Near3(KeyAt(node, 0).position, cpoint3(2, 2, 2), 0));
    EXPECT_TRUE(node.HasKey(40));
    node.DeleteKey(0);
    EXPECT_EQ(node.GetAnimPtr()->NumKeys(), 2);
    node.SetPosition(40, cpoint3(7, 7, 7));  // a pose, then the key is deleted: back to key 0
    node.DeleteKey(40);
    EXPECT_EQ(node.GetAnimPtr()->NumKeys(), 1);
    EXPECT_TRUE(Near3(node.GetPosition(40), cpoint3(2, 2, 2), 0));
}

TEST_F(Node, NodeMatrixIsScaleThenRotationThenTranslation) {
    cnode node;
    node.SetScale(0, cpoint3(2, 3, 4));
    node.SetRotation(0, cquat(cpoint3(0, 0, 1), 90.0f));
    node.SetPosition(0, cpoint3(5, 6, 7));
    // The rotation by 90 degrees about Z takes X to -Y for row vectors.
    const float expected[4][4] = {{0, -2, 0, 0}, {3, 0, 0, 0}, {0, 0, 4, 0}, {5, 6, 7, 1}};
    const cmatrix4 tm = node.GetNodeTM(0, TM_ALL);
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) EXPECT_NEAR(tm.m[r][c], expected[r][c], 1e-6f) << r << c;
    const cmatrix4 scaleAndPos = node.GetNodeTM(0, TM_SCALE | TM_POS);
    EXPECT_TRUE(Near3(scaleAndPos.GetRow3(1), cpoint3(0, 3, 0), 0));
    EXPECT_TRUE(Near3(scaleAndPos.GetTrans(), cpoint3(5, 6, 7), 0));
    cnode copy;
    copy.SetNodeTM(0, cmatrix4(expected), TM_ALL);
    EXPECT_TRUE(Near3(copy.GetScale(0), cpoint3(2, 3, 4)));
    EXPECT_TRUE(SameRotation(copy.GetRotation(0), node.GetRotation(0)));
    EXPECT_TRUE(Near3(copy.GetPosition(0), cpoint3(5, 6, 7)));
}

TEST_F(Node, SetParentKeepsTheWorldTransformAtEveryKeyTime) {
    cnode parent("Arm"), child("Hand");
    canim& track = *parent.GetAnimPtr();
    track.SetKey(0, cpoint3(1, 2, 3), cquat(cpoint3(0, 0, 1), 30.0f), cpoint3(2, 2, 2));
    track.SetKey(40, cpoint3(-3, 0, 5), cquat(cpoint3(1, 1, 0), 120.0f), cpoint3(1, 3, 0.5f));
    track.SetKey(100, cpoint3(0, 4, -2), cquat(cpoint3(0, 1, 0), 200.0f), cpoint3(0.5f, 1, 2));
    const int times[] = {0, 20, 40, 70, 100};
    const auto Place = [](int t) { return cpoint3(t * 0.01f, 1.0f - t * 0.02f, 2.0f); };
    for (int t : times)
        child.GetAnimPtr()->SetKey(t, Place(t), cquat(10.0f, t, 0), cpoint3(1, 1, 1));
    SetAnimTime(40);
    parent.UpdateTimeIdle();
    child.UpdateTimeIdle();
    parent.Attach(&child, 1);
    ASSERT_EQ(child.GetParent(), &parent);
    for (int t : times) {
        EXPECT_TRUE(Near3(child.GetPosition(t), Place(t))) << t;
        EXPECT_TRUE(SameRotation(child.GetRotation(t), cquat(10.0f, t, 0))) << t;
    }
    parent.Detach(&child, 1);
    EXPECT_EQ(child.GetParent(), nullptr);
    EXPECT_EQ(parent.NumChildren(), 0);
    for (int t : times) EXPECT_TRUE(Near3(child.GetPosition(t), Place(t))) << t;
    // Without keepWorld the node follows its new parent; when that parent is destroyed the
    // node stays where it was in the world.
    cnode leaf("Leaf");
    leaf.SetPosition(40, cpoint3(1, 0, 0));
    {
        cnode base("Base");
        base.SetPosition(40, cpoint3(10, 0, 0));
        base.SetScale(40, cpoint3(2, 2, 2));
        leaf.SetParent(&base, 0);
        base.Attach(&leaf, 0);
        EXPECT_TRUE(Near3(leaf.GetPosition(40), cpoint3(12, 0, 0), 0));
        child.Attach(&base, 1);
        base.Attach(&child, 1);  // a node adopts neither its parent nor itself
        base.Attach(&base, 0);
        EXPECT_EQ(base.NumChildren(), 1);
        EXPECT_EQ(base.GetChild(5), nullptr);
        {
            cnode other("Other");
            other.Attach(&base, 1);  // with notify, the old parent lets go
            EXPECT_EQ(child.NumChildren(), 0);
        }
    }
    EXPECT_EQ(leaf.GetParent(), nullptr);
    EXPECT_TRUE(Near3(leaf.GetPosition(40), cpoint3(12, 0, 0)));
    EXPECT_TRUE(Near3(leaf.GetScale(40), cpoint3(2, 2, 2)));
}

TEST_F(Node, MovesRotatesAndScalesAboutACentre) {
    cnode node;
    node.SetPosition(0, cpoint3(2, 0, 0));
    node.Rotate(0, cquat(cpoint3(0, 0, 1), 90.0f), cpoint3(1, 0, 0), 0);
    EXPECT_TRUE(Near3(node.GetPosition(0), cpoint3(1, -1, 0)));
    EXPECT_TRUE(SameRotation(node.GetRotation(0), cquat(cpoint3(0, 0, 1), 90.0f)));
    node.Scale(0, cpoint3(2, 3, 1), cpoint3(1, 0, 0), 0);
    EXPECT_TRUE(Near3(node.GetPosition(0), cpoint3(1, -3, 0)));
    EXPECT_TRUE(Near3(node.GetScale(0), cpoint3(2, 3, 1)));
    node.Scale(0, cpoint3(2, 0, 1), cpoint3(), 0);
    node.Scale(0, cpoint3(-1, 1, 1), cpoint3(), 0);
    EXPECT_TRUE(Near3(node.GetScale(0), cpoint3(2, 3, 1)));
    EXPECT_TRUE(Near3(node.GetPosition(0), cpoint3(1, -3, 0)));
    // With IK on, the parent turns to bring the node to its target.
    cnode arm("Arm"), hand("Hand");
    hand.SetPosition(0, cpoint3(1, 0, 0));
    arm.Attach(&hand, 1);
    hand.Move(0, cpoint3(-1, 1, 0), 0, 1, 0, 0.0f);
    EXPECT_TRUE(Near3(hand.GetPosition(0), cpoint3(0, 1, 0), 1e-3f));
    EXPECT_FALSE(arm.GetRotation(0).IsIdentity());
    hand.Move(0, cpoint3(0, 1, 0), 0, 0, 0, 0.0f);
    EXPECT_TRUE(Near3(hand.GetPosition(0), cpoint3(0, 2, 0), 1e-3f));
}

TEST_F(Node, ClonesTransformTrackNotesAndIKButNotFlags) {
    cnode root("Root");
    root.SetPosition(0, cpoint3(10, 0, 0));
    cnode source("Source", ccolor(0.5f, 0.5f, 0.5f, 1.0f));
    root.Attach(&source, 1);
    SetAnimOn(1);
    source.SetPosition(0, cpoint3(11, 0, 0));
    source.SetPosition(40, cpoint3(12, 0, 0));
    SetAnimOn(0);
    source.SetFlags(FLAG_SELECTED);
    source.SetReceiveShadowFlag(0);
    source.CopyNotes("note", 4);
    source.LockIK(1);
    source.SetIKMaxRot(cpoint3(1, 2, 3));
    source.SetSeeThroughFlag(1);
    cnode target;
    target.CopyNotes("old", 3);
    source.Clone(0, target);
    EXPECT_STREQ(target.GetName(), "Source");
    EXPECT_EQ(target.GetColor(), source.GetColor());
    EXPECT_EQ(target.GetParent(), &root);
    EXPECT_EQ(root.GetChild(&target), 1);
    EXPECT_TRUE(Near3(target.GetPosition(0), cpoint3(11, 0, 0)));
    EXPECT_TRUE(Near3(target.GetPosition(40), cpoint3(12, 0, 0)));
    EXPECT_STREQ(target.GetNotes(), "note");
    const cpoint3 maxRot = target.GetIKMaxRot();
    EXPECT_EQ(
        Values(target.GetAnimPtr()->NumKeys(), target.GetReceiveShadowFlag(), target.IsIKLocked(),
               maxRot.x, maxRot.y, maxRot.z, target.GetSeeThroughFlag(), target.GetFlags()),
        Values(2, 0, 1, 1, 2, 3, 1, 0));
}

TEST_F(Node, HandlesReplacedParentsAndDeletedMaterials) {
    cnode oldParent("Old"), newParent("New"), other("Other");
    newParent.SetPosition(0, cpoint3(0, 0, 3));
    MaterialNode child("Child");
    child.SetPosition(0, cpoint3(1, 0, 0));
    oldParent.Attach(&child, 1);
    EXPECT_EQ(child.HandleMessage(MSG_NODE_REPLACED, &other, &newParent), 0);
    EXPECT_EQ(child.HandleMessage(MSG_NODE_REPLACED, &oldParent, &newParent), 1);
    EXPECT_EQ(child.GetParent(), &newParent);
    EXPECT_EQ(oldParent.NumChildren(), 0);
    EXPECT_EQ(newParent.GetChild(0), &child);
    EXPECT_TRUE(Near3(child.GetPosition(0), cpoint3(1, 0, 3), 0));  // the local place is kept
    EXPECT_EQ(child.HandleMessage(MSG_NODE_DELETED, &newParent, nullptr), 0);
    cmaterial chrome("Chrome"), gold("Gold");
    child.SetMaterial(&chrome);
    EXPECT_TRUE(child.IsMaterialUsed(&chrome));
    EXPECT_EQ(child.HandleMessage(MSG_MTL_DELETED, &gold, nullptr), 0);
    EXPECT_EQ(child.HandleMessage(MSG_MTL_DELETED, &chrome, nullptr), 1);
    EXPECT_EQ(child.GetMaterial(), nullptr);
    EXPECT_FALSE(child.IsMaterialUsed(&chrome));
}

TEST_F(Node, MovesItsPivotWhileBoxAndChildrenStayInPlace) {
    MaterialNode node("Pivot");
    node.SetBox(cpoint3(-1, -2, -3), cpoint3(1, 2, 3));
    node.SetScale(0, cpoint3(2, 2, 2));
    node.SetRotation(0, cquat(cpoint3(0, 0, 1), 90.0f));
    node.SetPosition(0, cpoint3(5, 0, 0));
    SetAnimOn(1);
    node.SetPosition(40, cpoint3(5, 10, 0));
    SetAnimOn(0);
    cnode child("Child");
    child.SetPosition(0, cpoint3(1, 1, 1));
    node.Attach(&child, 1);
    // Box corner (1, 2, 3) scaled by 2, turned by 90 degrees about Z, moved by (5, 0, 0).
    const cpoint3 corner0(9, -2, 6), corner40(9, 8, 6);
    const cmatrix4 geometry = node.CenterPivotToGeom(0, cpoint3(5, 2, 0));
    EXPECT_TRUE(Near3(node.GetPosition(0), cpoint3(5, 2, 0)));
    EXPECT_TRUE(Near3(node.GetPosition(40), cpoint3(5, 12, 0)));
    EXPECT_TRUE(Near3(cpoint3(1, 2, 3) * geometry * node.GetNodeTM(0), corner0));
    cpoint3 lo, hi;
    node.GetBBox(0, lo, hi);
    EXPECT_TRUE(Near3(hi * node.GetNodeTM(40), corner40));
    EXPECT_TRUE(Near3(child.GetPosition(0), cpoint3(1, 1, 1)));
    EXPECT_TRUE(Near3(child.GetPosition(40), cpoint3(1, 11, 1)));
    node.ResetTransform(0, TM_ROT | TM_SCALE);
    EXPECT_TRUE(node.GetRotation(0).IsIdentity());
    EXPECT_TRUE(Near3(node.GetScale(0), cpoint3(1, 1, 1)));
    EXPECT_TRUE(Near3(node.GetPosition(0), cpoint3(5, 2, 0)));
    node.GetBBox(0, lo, hi);
    EXPECT_TRUE(Near3(lo, cpoint3(-4, -4, -6)));
    EXPECT_TRUE(Near3(hi, cpoint3(4, 0, 6)));
    EXPECT_TRUE(Near3(child.GetPosition(0), cpoint3(1, 1, 1)));
    EXPECT_TRUE(child.GetRotation(0).IsIdentity());
}

TEST_F(NodeRecord, WritesTheBaseRecordByteForByte) {
    cnode root("Root", ccolor());
    MaterialNode node("Box", ccolor(0.25f, 0.5f, 0.75f, 1.0f));
    cmaterial chrome("Chrome");
    node.SetMaterial(&chrome);
    root.Attach(&node, 1);
    node.SetFlags(FLAG_SELECTED | FLAG_HIDDEN | FLAG_DELETED);
    node.SetSubLevel(3);
    node.SetBox(cpoint3(-1, -2, -3), cpoint3(4, 5, 6));
    node.SetPosition(0, cpoint3(1, 2, 3));
    node.SetScale(0, cpoint3(1, 0.5f, 2));
    node.SetReceiveShadowFlag(0);
    node.EnableIKDOF(1);
    node.SetIKDampWidth(5.0f);
    node.SetIKNumIterations(300);
    node.SetIKRecurseNum(3);
    node.SetSeeThroughFlag(1);
    node.CopyNotes("hi", 2);
    ByteString r;
    r.Word(1).Word(0).Name("Box", 64).Name("Root", 64).Name("Chrome", 64);
    r.Word(2).Word(0).Floats({0.25f, 0.5f, 0.75f, 1.0f, -1, -2, -3, 4, 5, 6});
    r.Floats({1, 2, 3, 0, 0, 0, 1, 1, 0.5f, 2}).Word(1).Word(0);
    r.Word(1).Word(0).Word(0).Floats({5.0f, -180, -180, -180, 180, 180, 180, 0, 0, 0, 1});
    r.Word(200).Word(3).Word(1).Text("hi");
    r.Word(1).Word(0).Word(0).Word(0).Floats({1, 2, 3, 0, 0, 0, 1, 1, 0.5f, 2});
    EXPECT_EQ(SavedRecord(node), r.bytes);
}

// A record of an older version: 32-byte names and no see-through below 13, no IK block below 7.
std::string OldRecord(unsigned long version) {
    ByteString r;
    r.Word(1).Word(0).Name("Old", 32).Name("LoadRoot", 32).Name("LoadChrome", 32);
    r.Word(FLAG_SELECTED | FLAG_HIDDEN).Word(2).Floats({0.1f, 0.2f, 0.3f, 1, 0, 0, 0, 1, 1, 1});
    r.Floats({9, 9, 9, 0, 0, 0, 1, 1, 1, 1}).Word(0).Word(1);
    if (version >= 7) r.Ints({1, 1, 1}).Floats({7.5f, -10, -20, -30, 10, 20, 30, 0, 0, 0, 1});
    if (version >= 7) r.Word(50).Word(4);
    r.Text("abc");
    r.Word(1).Word(0).Word(0).Word(0).Floats({4, 5, 6, 0, 0, 0, 1, 1, 1, 1});
    return r.bytes;
}

TEST_F(NodeRecord, ReadsOlderLayoutsAndResolvesParentAndMaterial) {
    cnode* root = new cnode("LoadRoot");
    root->SetPosition(0, cpoint3(0, 0, 100));
    MainScene.AddNode(root, 1);
    auto* chrome = new cmaterial("LoadChrome");
    MainScene.AddMaterial(chrome, 1);
    MaterialNode v12, v6;
    ASSERT_EQ(LoadRecord(v12, OldRecord(12), 12), 1);
    EXPECT_STREQ(v12.GetName(), "Old");
    EXPECT_EQ(v12.GetParent(), root);
    EXPECT_EQ(root->GetChild(&v12), 0);
    EXPECT_EQ(v12.GetMaterial(), chrome);
    EXPECT_STREQ(v12.GetNotes(), "abc");
    EXPECT_EQ(Values(v12.GetFlags(), v12.GetSubLevel(), v12.GetSeeThroughFlag(), v12.IsIKLocked(),
                     v12.GetIKRecurseNum(), v12.GetReceiveShadowFlag()),
              Values(FLAG_SELECTED | FLAG_HIDDEN, 2, 0, 1, 4, 1));
    EXPECT_TRUE(Near3(v12.GetPosition(0), cpoint3(4, 5, 106), 0));  // from the key, not the cache
    ASSERT_EQ(LoadRecord(v6, OldRecord(6), 6), 1);
    EXPECT_EQ(Values(v6.IsIKLocked(), v6.GetIKRecurseNum()), Values(0, 2));
    EXPECT_STREQ(v6.GetNotes(), "abc");
    v6.SetParent(nullptr, 0);
    root->Detach(&v6, 0);
    // A selected node loads unselected, a hidden one stays hidden; a track without keys gets
    // the key at 0.
    std::string saved = SavedRecord(v12);
    root->Detach(&v12, 0);
    v12.SetParent(nullptr, 0);
    MainScene.RemoveMaterial(chrome);
    MainScene.RemoveNode(root);
    root->Delete();
    chrome->Delete();
    saved.replace(saved.size() - 56, 4, std::string(4, '\0'));  // key count 0
    saved.resize(saved.size() - 44);
    cnode reloaded;
    ASSERT_EQ(LoadRecord(reloaded, saved, 16), 1);
    EXPECT_EQ(reloaded.GetFlags(), FLAG_HIDDEN);
    EXPECT_EQ(reloaded.GetParent(), nullptr);
    ASSERT_EQ(reloaded.GetAnimPtr()->NumKeys(), 1);
    EXPECT_TRUE(Near3(reloaded.GetPosition(0), cpoint3(), 0));
}

TEST_F(NodeRecord, RefusesTruncatedAndCorruptRecords) {
    cnode node("Full");
    node.CopyNotes("some notes", 10);
    const std::string saved = SavedRecord(node);
    std::vector<std::string> refused;
    for (std::size_t cut = 0; cut < saved.size(); ++cut) refused.push_back(saved.substr(0, cut));
    const std::size_t notesLength = saved.size() - 56 - 10 - 4;
    for (std::uint32_t bad : {0xFFFFFFFFu, 0x7FFFFFFFu, 11u + 56u})
        refused.push_back(std::string(saved).replace(notesLength, 4, ByteString().Word(bad).bytes));
    for (const std::string& bytes : refused) {
        cnode fresh;
        EXPECT_EQ(LoadRecord(fresh, bytes, 16), 0) << bytes.size();
    }
    cnode fresh;
    ASSERT_TRUE(LoadsWhole(fresh, saved, 16));
    EXPECT_STREQ(fresh.GetNotes(), "some notes");
}

// A plug-in's node: the table entries it overrides must be the ones the library calls.
class PluginNode : public cnode {
public:
    using cnode::CenterPivotToGeom;
    unsigned long GetTypeID() const override { return 42; }
    int Save(cio_save& out) const override { return cnode::Save(out) && WriteInt32(out, 7); }
    void CenterPivotToGeom(int time) override { centred = time; }
    void SetPosition(int time, const cpoint3& p) override {
        cnode::SetPosition(time, p);
        ++positionsSet;
    }
    int centred = -1, positionsSet = 0;
};

// Itanium C++ ABI: a pointer to a virtual member holds 1 + the entry's byte offset in the
// table. The destructor takes entries 0 and 1, so operation k of the list sits at entry k.
template <class F>
long TableEntry(F member) {
    struct {
        std::uintptr_t pointer;
        std::ptrdiff_t adjust;
    } rep;
    static_assert(sizeof member == sizeof rep, "Itanium member pointer");
    std::memcpy(&rep, &member, sizeof rep);
    return static_cast<long>((rep.pointer - 1) / sizeof(void*));
}

template <class... F>
std::vector<long> TableEntries(F... members) {
    return {TableEntry(members)...};
}

TEST_F(Node, VirtualsKeepTheirTableOrder) {
#if defined(__x86_64__) || defined(__i386__)
    using N = cnode;
    const std::vector<long> entries = TableEntries(
        &N::Delete, &N::SetName, static_cast<char* (N::*)() const>(&N::GetName),
        static_cast<void (N::*)(char*) const>(&N::GetName), &N::GetTypeID, &N::GetSubTypeID,
        &N::SetFlags, &N::GetFlags, &N::SetSubLevel, &N::GetSubLevel, &N::SetColor, &N::GetColor,
        &N::GetBBox, &N::IsRenderable, &N::ApplyUV, &N::HandlesUVMapping, &N::GetRenderMesh,
        &N::SetParent, &N::GetParent, &N::Attach, static_cast<void (N::*)(int, int)>(&N::Detach),
        static_cast<void (N::*)(const cnode*, int)>(&N::Detach), &N::DetachAll,
        static_cast<int (N::*)(const cnode*) const>(&N::GetChild),
        static_cast<cnode* (N::*)(int) const>(&N::GetChild), &N::NumChildren, &N::SetMaterial,
        &N::GetMaterial, &N::Clone, &N::SetPosition, &N::SetRotation, &N::SetScale, &N::SetNodeTM,
        &N::GetPosition, &N::GetRotation, &N::GetScale, &N::GetNodeTM, &N::HasKey,
        &N::UpdateTimeIdle, &N::SnapKey, &N::DeleteKey, &N::Flash, &N::Render,
        &N::SetCastShadowFlag, &N::SetReceiveShadowFlag, &N::GetCastShadowFlag,
        &N::GetReceiveShadowFlag, &N::GetElement, &N::GetNumElements, &N::GetNumSelElements,
        &N::GetNumHiddenElements, &N::GetSelElementsCenter, &N::SelectAll, &N::DeselectAll,
        &N::InvertSelection, &N::HideSelected, &N::UnhideAll, &N::DeleteSelected, &N::PickElement,
        &N::PickElementRect, &N::PickElementCircle, &N::PickElementContour, &N::Move, &N::Rotate,
        &N::Scale, &N::Mirror, &N::HitTest, &N::HitTestRect, &N::HitTestCircle, &N::HitTestContour,
        &N::SetSeeThroughFlag, &N::GetSeeThroughFlag, &N::Load, &N::Save, &N::ClearNotes,
        &N::CopyNotes, &N::AddNotes, &N::GetNotes, &N::NotesSize, &N::HandleMessage,
        &N::IsMaterialUsed, &N::ResetTransform, &N::CenterGeomToPivot,
        static_cast<void (N::*)(int)>(&N::CenterPivotToGeom));
    ASSERT_EQ(entries.size(), 84u);
    for (long k = 0; k < 84; ++k) EXPECT_EQ(entries[k], k + 2) << "operation " << k + 2;
#endif
    // Through base pointers and from inside the library, the plug-in's entries are called.
    PluginNode plugin;
    cnode* base = &plugin;
    EXPECT_EQ(base->GetTypeID(), 42u);
    base->CenterPivotToGeom(40);
    EXPECT_EQ(plugin.centred, 40);
    const std::string bytes = Saved([&](cio_save& out) { EXPECT_EQ(base->Save(out), 1); });
    EXPECT_EQ(bytes.size(), SavedRecord(cnode()).size() + 4);
    cnode("Source").Clone(0, plugin);
    base->Move(0, cpoint3(1, 0, 0), 0, 0, 0, 0.0f);
    EXPECT_EQ(plugin.positionsSet, 2);
}

}  // namespace
