#include "cnode.h"

#include <cstddef>
#include <cstring>
#include <memory>
#include <utility>

#include "ccamera.h"
#include "clight.h"
#include "cmaterial.h"
#include "scene/aimednodes.h"
#include "scene/recordconstruction.h"

namespace {

class Node : public AnimClockTest {};
using NodeRecord = SceneClockTest;

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
    const std::string seventy(70, 'n'), text(10000, 'a');
    node.SetName(seventy.c_str());
    node.SetName(nullptr);
    char buffer[64];
    node.GetName(buffer);
    EXPECT_EQ(std::string(buffer), seventy.substr(0, 63));
    std::memset(buffer, 'x', sizeof buffer);
    cnode("Box").GetName(buffer);
    EXPECT_EQ(std::string(buffer, 6), std::string("Box\0xx", 6)) << "nothing past the terminator";
    node.CopyNotes(text.c_str(), 10000);
    EXPECT_EQ(node.NotesSize(), 8192);
    node.CopyNotes(text.c_str(), 8190);
    node.AddNotes("xyz", 3);
    node.AddNotes("more", 4);
    node.CopyNotes("", 5);
    EXPECT_EQ(std::string(node.GetNotes() + 8188), "aaxy") << "full; empty copies are ignored";
    node.CopyNotes("notes kept", 10);
    node.CopyNotes(node.GetNotes() + 6, 4);
    EXPECT_STREQ(node.GetNotes(), "kept") << "a part of the old notes";
}

TEST_F(Node, KeysFollowTheAnimationModeAndTheKeyCount) {
    cnode node;
    SetAnimTime(40);
    node.SetPosition(40, cpoint3(1, 0, 0));  // off, one key: the key at 0 follows
    EXPECT_TRUE(Near3(KeyAt(node, 0).position, cpoint3(1, 0, 0), 0));
    SetAnimOn(1);
    node.SetScale(40, cpoint3(2, 2, 2));     // on: a key at the current time
    node.SetPosition(80, cpoint3(5, 0, 0));  // another time: a key there, the cache untouched
    EXPECT_EQ(Values(KeyAt(node, 2).scale.y, node.GetPosition(40).x, node.GetPosition(60).x),
              Values(2, 1, 3));
    SetAnimOn(0);  // off with 3 keys: a pose until the time changes
    node.SetPosition(40, cpoint3(9, 9, 9));
    EXPECT_EQ(Values(node.GetPosition(40).y, KeyAt(node, 1).position.x), Values(9, 1));
    node.DeleteKey(0);
    node.DeleteKey(40);  // refreshes the pose from the track
    EXPECT_TRUE(node.GetAnimPtr()->NumKeys() == 2 && Near3(node.GetPosition(40), cpoint3(3, 0, 0)));
    // Snapping the first key away from time 0 pins the pose at 0 as well.
    cnode fresh;
    fresh.GetAnimPtr()->SetKey(0, cpoint3(7, 7, 7), cquat(), cpoint3(1, 1, 1));
    fresh.SnapKey();
    EXPECT_TRUE(Near3(KeyAt(fresh, 0).position, cpoint3(), 0) && fresh.HasKey(40));
}

TEST_F(Node, NodeMatrixIsScaleThenRotationThenTranslation) {
    cnode node, copy;
    node.SetScale(0, cpoint3(2, 3, 4));
    node.SetRotation(0, cquat(cpoint3(0, 0, 1), 90.0f));
    node.SetPosition(0, cpoint3(5, 6, 7));
    // The rotation by 90 degrees about Z takes X to -Y for row vectors.
    const float expected[4][4] = {{0, -2, 0, 0}, {3, 0, 0, 0}, {0, 0, 4, 0}, {5, 6, 7, 1}};
    const cmatrix4 tm = node.GetNodeTM(0, TM_ALL);
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) EXPECT_NEAR(tm.m[r][c], expected[r][c], 1e-6f) << r << c;
    EXPECT_TRUE(Near3(node.GetNodeTM(0, TM_SCALE | TM_POS).GetRow3(1), cpoint3(0, 3, 0), 0));
    copy.SetNodeTM(0, cmatrix4(expected), TM_ALL);
    EXPECT_TRUE(Near3(copy.GetScale(0), cpoint3(2, 3, 4)) &&
                Near3(copy.GetPosition(0), cpoint3(5, 6, 7)));
    EXPECT_TRUE(SameRotation(copy.GetRotation(0), node.GetRotation(0)));
}

TEST_F(Node, ADestroyedChildLeavesItsParentThroughDetach) {
    struct Parent : cnode {
        using cnode::cnode;
        void Detach(const cnode* child, int notify) override {
            told = notify;
            cnode::Detach(child, notify);
        }
        int told = -1;
    } parent("Arm");
    auto* hand = new cnode("Hand");
    auto* finger = new cnode("Finger");
    parent.Attach(hand, 1);
    parent.Attach(finger, 1);
    hand->Delete();
    EXPECT_TRUE(parent.told == 1 && parent.NumChildren() == 1 && parent.GetChild(0) == finger);
    finger->Delete();
}

TEST_F(Node, SetParentKeepsTheWorldTransformAtEveryKeyTime) {
    cnode parent("Arm"), child("Hand"), leaf("Leaf");
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
    for (int t : times)
        EXPECT_TRUE(Near3(child.GetPosition(t), Place(t)) &&
                    SameRotation(child.GetRotation(t), cquat(10.0f, t, 0)))
            << t;
    parent.Detach(&child, 1);
    for (int t : times) EXPECT_TRUE(Near3(child.GetPosition(t), Place(t))) << t;
    // Without keepWorld the node follows its new parent; when that parent is destroyed the
    // node stays where it was in the world. A node adopts neither its parent nor itself.
    leaf.SetPosition(40, cpoint3(1, 0, 0));
    {
        cnode base("Base");
        base.SetPosition(40, cpoint3(10, 0, 0));
        leaf.SetParent(&base, 0);
        base.Attach(&leaf, 0);
        child.Attach(&base, 1);
        base.Attach(&child, 1);
        base.Attach(&base, 0);
        EXPECT_EQ(base.NumChildren() + parent.NumChildren(), 1);
        EXPECT_TRUE(Near3(leaf.GetPosition(40), cpoint3(11, 0, 0)));
    }
    EXPECT_TRUE(Near3(leaf.GetPosition(40), cpoint3(11, 0, 0)) && !leaf.GetParent());
}

TEST_F(NodeRecord, WritesTheBaseRecordByteForByteAndReadsItBackAndClonesIt) {
    cnode* root = new cnode("Root", ccolor());
    MainScene.AddNode(root, 1);
    MainScene.AddMaterial(new cmaterial("Chrome"), 1);
    MaterialNode node("Box", ccolor(0.25f, 0.5f, 0.75f, 1.0f)), loaded;
    cnode clone;
    node.SetMaterial(MainScene.GetMaterialAt(0));
    root->Attach(&node, 1);
    node.SetFlags(FLAG_SELECTED | FLAG_HIDDEN | FLAG_DELETED);
    node.SetSubLevel(3);
    node.SetBox(cpoint3(-1, -2, -3), cpoint3(4, 5, 6));
    node.SetPosition(0, cpoint3(1, 2, 3));
    node.SetScale(0, cpoint3(1, 0.5f, 2));
    node.SetReceiveShadowFlag(0);
    node.SetIKDampWidth(5.0f);
    node.SetIKNumIterations(300);
    node.SetSeeThroughFlag(1);
    node.CopyNotes("hi", 2);
    // A clone takes the parent, transform, track, shadows, IK, see-through and notes, but
    // neither the material, the flags nor the box.
    const auto record = [](bool clone) {
        ByteString r;
        r.Word(1).Word(0).Name("Box", 64).Name("Root", 64).Name(clone ? "" : "Chrome", 64);
        r.Word(clone ? 0 : 2).Word(0).Floats({0.25f, 0.5f, 0.75f, 1.0f});
        clone ? r.Floats({0, 0, 0, 0, 0, 0}) : r.Floats({-1, -2, -3, 4, 5, 6});
        r.Floats({1, 2, 3, 0, 0, 0, 1, 1, 0.5f, 2}).Word(1).Word(0);
        r.Word(0).Word(0).Word(0).Floats({5.0f, -180, -180, -180, 180, 180, 180, 0, 0, 0, 1});
        r.Word(200).Word(2).Word(1).Text("hi");
        r.Word(1).Word(0).Word(0).Word(0).Floats({1, 2, 3, 0, 0, 0, 1, 1, 0.5f, 2});
        return r.bytes;
    };
    EXPECT_EQ(SavedRecord(node), record(false));
    ASSERT_TRUE(LoadsWhole(loaded, record(false), 16));
    EXPECT_EQ(SavedRecord(loaded), record(false));
    EXPECT_EQ(root->GetChild(&loaded), 1);
    node.Clone(0, clone);
    EXPECT_EQ(SavedRecord(clone), record(true));
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
}

// A stream on a full device fails when its block goes to the file, here at the first piece that
// no longer fits. The fixed fields' writes are not checked: the key track's write answers.
TEST_F(NodeRecord, AnswersWithTheKeyTrackWrite) {
    constexpr unsigned int kBlock = 64 * 1024, kFixedFields = 200 + 168;
    for (const auto& [room, answer] : {std::pair{100u, 1}, std::pair{kFixedFields, 0}}) {
        cio_save out;
        if (out.Open("/dev/full") != 0) GTEST_SKIP() << "no /dev/full";
        std::string filler(kBlock - room, 'f');
        ASSERT_EQ(out.Write(&filler[0], kBlock - room), 1);
        EXPECT_EQ(cnode("Full").Save(out), answer) << room;
    }
}

// A base record of an older version: 32-byte names below 13, no IK block below 7 and no
// see-through switch below 15.
std::string OldRecord(unsigned long version) {
    const unsigned int nameSize = version >= 13 ? 64 : 32;
    ByteString r;
    r.Word(1).Word(0).Name("Old", nameSize).Name("", nameSize).Name("", nameSize);
    r.Word(FLAG_HIDDEN).Word(2).Floats({0.1f, 0.2f, 0.3f, 1, 0, 0, 0, 1, 1, 1});
    r.Floats({9, 9, 9, 0, 0, 0, 1, 1, 1, 1}).Word(0).Word(1);
    if (version >= 7) r.Ints({1, 1, 1}).Floats({7.5f, -10, -20, -30, 10, 20, 30, 0, 0, 0, 1});
    if (version >= 7) r.Word(50).Word(4);
    if (version >= 15) r.Word(1);
    r.Text("abc");
    r.Word(1).Word(0).Word(0).Word(0).Floats({4, 5, 6, 0, 0, 0, 1, 1, 1, 1});
    return r.bytes;
}

TEST_F(NodeRecord, ReadsEveryOlderLayout) {
    for (unsigned long version : {6ul, 7ul, 12ul, 13ul, 14ul, 15ul}) {
        cnode node;
        ASSERT_TRUE(LoadsWhole(node, OldRecord(version), version)) << version;
        EXPECT_EQ(Values(node.GetFlags(), node.GetSubLevel(), node.IsIKLocked(),
                         node.GetIKRecurseNum(), node.GetSeeThroughFlag()),
                  Values(FLAG_HIDDEN, 2, version >= 7, version >= 7 ? 4 : 2, version >= 15))
            << version;
        EXPECT_EQ(std::string(node.GetName()) + node.GetNotes(), "Oldabc") << version;
        EXPECT_TRUE(Near3(node.GetPosition(0), cpoint3(4, 5, 6), 0)) << version;
    }
}

// A node made for its record leaves its tracks to the record, which gives the key at time 0
// even when it holds none; lights and cameras end with the keys of their records too.
TEST_F(NodeRecord, NodesMadeForTheirRecordsTakeTheirKeysFromThem) {
    clight spot;
    ccamera eye;
    spot.GetLightAnimPtr()->SetKey(80, ccolor(1, 0, 0, 1), 30.0f, 28.0f, 64.0f, 2.0f);
    eye.GetCamAnimPtr()->SetKey(ccamkey(40, 35.0f));
    std::unique_ptr<cnode> plain;
    std::unique_ptr<clight> light;
    std::unique_ptr<ccamera> camera;
    {
        const RecordConstruction forRecord;
        plain.reset(new cnode("", ccolor()));
        light.reset(CreateNewLight());
        camera.reset(CreateNewCamera());
    }
    EXPECT_EQ(Values(plain->GetAnimPtr()->NumKeys(), light->GetAnimPtr()->NumKeys(),
                     light->GetLightAnimPtr()->NumKeys(), camera->GetCamAnimPtr()->NumKeys()),
              Values(0, 0, 0, 0));
    EXPECT_EQ(cnode().GetAnimPtr()->NumKeys(), 1) << "other nodes start with their key at 0";
    ByteString keyless;
    keyless.Word(1).Word(0).Name("Bare", 64).Name("", 64).Name("", 64).Word(0).Word(0);
    keyless.Floats({1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 5, 6, 7, 0, 0, 0, 1, 1, 1, 1}).Word(1).Word(1);
    keyless.Ints({0, 0, 0}).Floats({10, -90, -90, -90, 90, 90, 90, 0, 0, 0, 1}).Ints({100, 2});
    keyless.Word(0).Text("").Word(0).Word(0).Word(0);
    ASSERT_TRUE(LoadsWhole(*plain, keyless.bytes, 16));
    ckey key;
    ASSERT_EQ(plain->GetAnimPtr()->GetKeyAt(0, key), 1);
    EXPECT_EQ(Values(plain->GetAnimPtr()->NumKeys(), key.time, key.position.x), Values(1, 0, 0.0f))
        << "the key at time 0, at the origin";
    ASSERT_TRUE(LoadsWhole(*light, SavedRecord(spot), 16));
    ASSERT_TRUE(LoadsWhole(*camera, SavedRecord(eye), 16));
    EXPECT_EQ(SavedRecord(*light), SavedRecord(spot));
    EXPECT_EQ(SavedRecord(*camera), SavedRecord(eye));
}

// Itanium C++ ABI: a pointer to a virtual member holds 1 + the entry's byte offset in the
// table. The destructor takes entries 0 and 1, so operation k of the list sits at entry k.
template <class F>
long TableEntry(F member) {
    std::uintptr_t pointer;  // followed by the this-adjustment
    static_assert(sizeof member == 2 * sizeof pointer, "Itanium member pointer");
    std::memcpy(&pointer, &member, sizeof pointer);
    return static_cast<long>((pointer - 1) / sizeof(void*));
}

template <class... F>
std::vector<long> TableEntries(F... members) {
    return {TableEntry(members)...};
}

// Plug-ins are built against the table's layout: every virtual keeps its place.
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
}

}  // namespace
