#include "cskin.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "animclock.h"
#include "coreinterface.h"
#include "cscene.h"
#include "mesh/skinfixtures.h"

namespace {

using SkinBones = SkinTest;
using SkinWeights = SkinTest;
using SkinDeform = SkinTest;
using SkinCopies = SkinTest;
using Bones = std::vector<cnode*>;

// A skin in MainScene whose first three vertices are the given points, one triangle over them.
cskin* AddSkin(const std::vector<cpoint3>& points) {
    cskin* skin = CreateNewSkin();
    MainScene.AddNode(skin, 1);
    SetSkinPoints(*skin, points);
    return skin;
}

TEST_F(SkinBones, IsAMeshOfItsOwnTypeWithAnOrderedListOfDistinctBones) {
    cskin* skin = CreateNewSkin();
    ASSERT_NE(skin, nullptr);
    MainScene.AddNode(skin, 1);
    EXPECT_EQ(skin->GetTypeID(), TYPE_SKIN);
    EXPECT_STREQ(skin->GetName(), "Skin1");
    EXPECT_EQ(skin->IsRenderable(), 1);
    EXPECT_TRUE(skin->GetSkinBindTM().IsIdentity());
    cnode* a = AddBoneNode("A", cpoint3(1, 2, 3));
    cnode* b = AddBoneNode("B", cpoint3(0, 0, 0));
    EXPECT_EQ(skin->AddBone(nullptr), -1);
    EXPECT_EQ(skin->AddBone(skin), -1) << "a skin is not its own bone";
    EXPECT_EQ(skin->AddBone(a), 0);
    EXPECT_EQ(skin->AddBone(b), 1);
    EXPECT_EQ(skin->AddBone(a), -1) << "no duplicates";
    EXPECT_EQ(BonesOf(*skin), (Bones{a, b}));
    EXPECT_EQ(skin->GetBone(2), nullptr);
    EXPECT_EQ(skin->GetBone(-1), nullptr);
    EXPECT_EQ(skin->FindBone(b), 1);
    EXPECT_EQ(skin->FindBone(skin), -1);
    // The bind matrix is the inverse of the bone's world matrix when it was added.
    EXPECT_TRUE(NearPoint(cpoint3(1, 2, 3) * skin->GetBoneBindTM(0), cpoint3(0, 0, 0)));
    EXPECT_TRUE(skin->GetBoneBindTM(5).IsIdentity());
    EXPECT_EQ(skin->RemoveBone(2), 0);
    EXPECT_EQ(skin->RemoveBone(0), 1);
    EXPECT_EQ(BonesOf(*skin), (Bones{b})) << "later bones move down";
    EXPECT_EQ(skin->FindBone(a), -1);
}

TEST_F(SkinWeights, KeepTheFourHeaviestAndNormaliseOnRequest) {
    cskin skin;
    for (const char* name : {"B0", "B1", "B2", "B3", "B4"})
        skin.AddBone(AddBoneNode(name, cpoint3()));
    const int sv = skin.AddSkinVert();
    EXPECT_EQ(sv, 0);
    for (const auto& [bone, weight] : {std::pair(0, 0.1f), {1, 0.4f}, {2, 0.3f}, {3, 0.2f}})
        EXPECT_EQ(skin.SetInfluence(sv, bone, weight), 1) << bone;
    EXPECT_TRUE(HasInfluences(skin, sv, {{1, 0.4f}, {2, 0.3f}, {3, 0.2f}, {0, 0.1f}}));
    EXPECT_EQ(skin.SetInfluence(sv, 4, 0.05f), 0) << "lighter than the four held";
    EXPECT_EQ(skin.SetInfluence(sv, 4, 0.1f), 0) << "a tie keeps the older influence";
    EXPECT_EQ(skin.SetInfluence(sv, 4, 0.5f), 1);
    EXPECT_TRUE(HasInfluences(skin, sv, {{4, 0.5f}, {1, 0.4f}, {2, 0.3f}, {3, 0.2f}}));
    // Changing a weight re-sorts; weight 0 removes.
    EXPECT_EQ(skin.SetInfluence(sv, 3, 0.6f), 1);
    EXPECT_EQ(skin.SetInfluence(sv, 1, 0.0f), 1);
    EXPECT_TRUE(HasInfluences(skin, sv, {{3, 0.6f}, {4, 0.5f}, {2, 0.3f}}));
    int bones[4] = {};
    EXPECT_EQ(skin.GetInfluences(sv, bones, nullptr), 3) << "the weights may be left out";
    // Refused: negative or non-finite weights, bones or skin vertices out of range.
    EXPECT_EQ(skin.SetInfluence(sv, 2, -1.0f), 0);
    EXPECT_EQ(skin.SetInfluence(sv, 2, std::numeric_limits<float>::quiet_NaN()), 0);
    EXPECT_EQ(skin.SetInfluence(sv, 5, 1.0f), 0);
    EXPECT_EQ(skin.SetInfluence(1, 0, 1.0f), 0);
    EXPECT_TRUE(HasInfluences(skin, 1, {}));
    const int empty = skin.AddSkinVert();
    skin.NormalizeWeights();
    EXPECT_TRUE(HasInfluences(skin, sv, {{3, 0.6f / 1.4f}, {4, 0.5f / 1.4f}, {2, 0.3f / 1.4f}}));
    EXPECT_TRUE(HasInfluences(skin, empty, {}));
    // Removing a bone drops its influence, renormalises the rest and renumbers later bones
    // (bone 4 becomes bone 3).
    skin.RemoveBone(3);
    EXPECT_TRUE(HasInfluences(skin, sv, {{3, 0.625f}, {2, 0.375f}}));
}

TEST_F(SkinDeform, RotatesAndBlendsTheRestPositionsByTheBones) {
    cskin skin;
    SetSkinPoints(skin, {{3, 0, 0}, {2, 0, 5}, {1, 1, 1}, {7, 7, 7}, {8, 8, 8}, {9, 9, 9}});
    cnode* arm = AddBoneNode("Arm", cpoint3(2, 0, 0));
    cnode* left = AddBoneNode("Left", cpoint3(-1, 0, 0));
    cnode* right = AddBoneNode("Right", cpoint3(1, 0, 0));
    for (cnode* bone : {arm, left, right}) skin.AddBone(bone);
    Weigh(skin, 0, {{0, 1.0f}});
    Weigh(skin, 1, {{0, 1.0f}});
    Weigh(skin, 2, {{1, 0.5f}, {2, 0.5f}});
    Weigh(skin, 3, {});                      // a skin vertex without influences
    skin.SetSkinVertIndex(4, 99);            // past the skin vertices
    Weigh(skin, 5, {{1, 2.0f}, {2, 2.0f}});  // weights that do not sum to 1
    for (int v = 0; v < skin.NumVerts(); ++v)
        EXPECT_TRUE(NearPoint(skin.GetDeformedVert(v), skin.GetVertPoint(v))) << "bind pose";
    // The arm turns 90 degrees about z (its x axis becomes y); vertex 1 lies on its axis.
    // Vertices 2 and 5 take half of each move; vertex 6 is out of range.
    cmatrix4 turned;
    turned.Set(cpoint3(0, 1, 0), cpoint3(-1, 0, 0), cpoint3(0, 0, 1), cpoint3(2, 0, 0));
    arm->SetNodeTM(0, turned, TM_ALL);
    left->SetPosition(0, cpoint3(-1, 4, 0));
    right->SetPosition(0, cpoint3(3, 0, 0));
    skin.Deform();
    const cpoint3 posed[] = {{2, 1, 0}, {2, 0, 5},   {2, 3, 1}, {7, 7, 7},
                             {8, 8, 8}, {10, 11, 9}, {0, 0, 0}};
    for (int v = 0; v < 7; ++v) EXPECT_TRUE(NearPoint(skin.GetDeformedVert(v), posed[v])) << v;
    // The rest positions are untouched, and a bind in the new pose makes it the rest pose.
    EXPECT_TRUE(NearPoint(skin.GetVertPoint(0), cpoint3(3, 0, 0)));
    skin.Bind();
    EXPECT_TRUE(NearPoint(skin.GetDeformedVert(0), cpoint3(3, 0, 0)));
    EXPECT_TRUE(NearPoint(skin.GetDeformedVert(2), cpoint3(1, 1, 1)));
}

// Deformed points follow the bones' world matrices, not the skin node's: a bone carried by the
// skin node keeps its vertices at rest in the skin's space, and a skin placed before its bone
// in the scene still follows the bone's keys after a time change.
TEST_F(SkinDeform, FollowsTheBonesRatherThanTheSkinNode) {
    cskin* skin = AddSkin({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
    cnode* free = AddBoneNode("Free", cpoint3(0, 0, 0));
    cnode* carried = AddBoneNode("Carried", cpoint3(0, 0, 0));
    skin->Attach(carried, 1);
    skin->AddBone(free);
    skin->AddBone(carried);
    Weigh(*skin, 0, {{0, 1.0f}});
    Weigh(*skin, 1, {{1, 1.0f}});
    // Moving the skin node carries its child bone along: its vertices stay at rest in the
    // skin's space. The free bone holds its vertex where it is in the world.
    skin->SetPosition(0, cpoint3(5, 0, 0));
    skin->Deform();
    EXPECT_TRUE(NearPoint(skin->GetDeformedVert(1), cpoint3(0, 1, 0)));
    EXPECT_TRUE(NearPoint(skin->GetDeformedVert(0), cpoint3(-4, 0, 0)));
    EXPECT_TRUE(NearPoint(skin->GetDeformedVert(2), cpoint3(0, 0, 1))) << "unbound: rigid";
    cskin* keyed = AddSkin({{1, 0, 0}, {0, 2, 0}, {0, 0, 3}});
    cnode* bone = AddBoneNode("Bone", cpoint3(0, 0, 0));
    keyed->AddBone(bone);
    for (int v = 0; v < 3; ++v) Weigh(*keyed, v, {{0, 1.0f}});
    SetAnimOn(1);
    bone->SetPosition(40, cpoint3(4, 0, 0));
    bone->SetPosition(80, cpoint3(4, 8, 0));
    SetAnimOn(0);
    const struct {
        int time;
        cpoint3 offset;
    } expected[] = {{0, {0, 0, 0}}, {20, {2, 0, 0}}, {40, {4, 0, 0}}, {60, {4, 4, 0}}};
    for (const auto& at : expected) {
        SetAnimTime(at.time);
        MainScene.UpdateNodesAtAnimTimeChange();
        const cpoint3* points = keyed->GetDeformedVerts();
        ASSERT_NE(points, nullptr);
        EXPECT_TRUE(NearPoint(points[0], cpoint3(1, 0, 0) + at.offset)) << at.time;
        EXPECT_TRUE(NearPoint(points[2], cpoint3(0, 0, 3) + at.offset)) << at.time;
    }
    // A vertex added later is deformed too.
    keyed->AddVert(cpoint3(1, 1, 1));
    EXPECT_TRUE(NearPoint(keyed->GetDeformedVert(3), cpoint3(1, 1, 1)));
}

TEST_F(SkinDeform, AssignsNearestBonesByInverseDistanceToTheirSegments) {
    cskin skin;
    SetSkinPoints(skin, {{1, 1, 0}, {0, 1, 0}, {10, 3, 0}, {-3, 5, 0}});
    cnode* upper = AddBoneNode("Upper", cpoint3(0, 0, 0));
    cnode* tip = AddBoneNode("Tip", cpoint3(0, 2, 0));
    upper->Attach(tip, 1);
    cnode* far = AddBoneNode("Far", cpoint3(10, 0, 0));
    EXPECT_EQ(skin.AssignNearestBones(4), 0) << "no bones";
    skin.AddBone(upper);
    skin.AddBone(far);
    // Posed after binding: the segments are those of the bind pose.
    upper->SetPosition(0, cpoint3(50, 50, 50));
    ASSERT_EQ(skin.AssignNearestBones(4), 4);
    for (int v = 0; v < 4; ++v) EXPECT_EQ(skin.GetSkinVertIndex(v), static_cast<unsigned>(v));
    // The weight of the nearer of two bones at distances `a` and `b`.
    const auto share = [](float a, float b) { return (1 / a) / (1 / a + 1 / b); };
    // (1, 1, 0): 1 from the segment (0,0,0)-(0,2,0), sqrt(82) from the far bone's origin.
    const float d82 = std::sqrt(82.0f);
    EXPECT_TRUE(HasInfluences(skin, 0, {{0, share(1, d82)}, {1, share(d82, 1)}}, 1e-6f));
    EXPECT_TRUE(HasInfluences(skin, 1, {{0, 1.0f}})) << "on the segment: the bone alone";
    // (10, 3, 0): 3 from the far bone, sqrt(101) from the segment's end (0, 2, 0);
    // (-3, 5, 0): sqrt(18) from (0, 2, 0) against sqrt(194) from (10, 0, 0).
    const float d101 = std::sqrt(101.0f), d18 = std::sqrt(18.0f), d194 = std::sqrt(194.0f);
    EXPECT_TRUE(HasInfluences(skin, 2, {{1, share(3, d101)}, {0, share(d101, 3)}}, 1e-6f));
    EXPECT_TRUE(HasInfluences(skin, 3, {{0, share(d18, d194)}, {1, share(d194, d18)}}, 1e-6f));
    ASSERT_EQ(skin.AssignNearestBones(1), 4);
    EXPECT_TRUE(HasInfluences(skin, 0, {{0, 1.0f}}));
    skin.ClearSkinVerts();
    EXPECT_EQ(skin.NumSkinVerts(), 0);
    EXPECT_EQ(skin.GetSkinVertIndex(0), SKIN_VERTEX_NONE);
}

TEST_F(SkinDeform, DropsBonesDeletedFromTheSceneAndFollowsReplacedOnes) {
    cskin* skin = AddSkin({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
    cnode* doomed = AddBoneNode("Doomed", cpoint3(0, 0, 0));
    cnode* kept = AddBoneNode("Kept", cpoint3(0, 0, 0));
    cnode* stand = AddBoneNode("Stand", cpoint3(0, 0, 0));
    skin->AddBone(doomed);
    skin->AddBone(kept);
    Weigh(*skin, 0, {{0, 0.25f}, {1, 0.75f}});
    Weigh(*skin, 1, {{0, 1.0f}});
    EXPECT_EQ(skin->HandleMessage(MSG_NODE_DELETED, stand, nullptr), 0) << "not a bone";
    void (*const savedInform)(cnode*) = Application_InformDeleted;
    Application_InformDeleted = [](cnode*) {};
    MainScene.DeleteNodeForGood(doomed);
    Application_InformDeleted = savedInform;
    EXPECT_EQ(BonesOf(*skin), (Bones{kept}));
    EXPECT_TRUE(HasInfluences(*skin, 0, {{0, 1.0f}}));
    EXPECT_TRUE(HasInfluences(*skin, 1, {}));
    kept->SetPosition(0, cpoint3(0, 0, 2));
    skin->Deform();
    EXPECT_TRUE(NearPoint(skin->GetDeformedVert(0), cpoint3(1, 0, 2)));
    EXPECT_TRUE(NearPoint(skin->GetDeformedVert(1), cpoint3(0, 1, 0))) << "lost its bone";
    // A replacement takes the bone's place and bind matrix.
    stand->SetPosition(0, cpoint3(0, 3, 0));
    EXPECT_EQ(skin->HandleMessage(MSG_NODE_REPLACED, kept, stand), 1);
    EXPECT_EQ(skin->GetBone(0), stand);
    skin->Deform();
    EXPECT_TRUE(NearPoint(skin->GetDeformedVert(0), cpoint3(1, 3, 0)));
}

TEST_F(SkinCopies, CloneCopyAndAssignmentShareTheBonesAndCopyTheWeights) {
    cskin skin;
    MakeCube(skin);
    skin.SetName("Hand");
    cnode* bone = AddBoneNode("Finger", cpoint3(1, 0, 0));
    skin.AddBone(bone);
    bone->SetPosition(0, cpoint3(2, 0, 0));
    Weigh(skin, 7, {{0, 1.0f}});
    const auto check = [&](cskin& copy, const char* what) {
        EXPECT_EQ(copy.GetTypeID(), TYPE_SKIN) << what;
        EXPECT_EQ(VertsAndFaces(copy), std::pair(8, 12)) << what;
        EXPECT_EQ(BonesOf(copy), (Bones{bone})) << what;
        EXPECT_TRUE(NearPoint(cpoint3(1, 0, 0) * copy.GetBoneBindTM(0), cpoint3())) << what;
        ASSERT_EQ(copy.NumSkinVerts(), 1) << what;
        EXPECT_EQ(copy.GetSkinVertIndex(7), 0u) << what;
        EXPECT_TRUE(NearPoint(copy.GetDeformedVert(7), cpoint3(2, 1, 1))) << what;
        EXPECT_TRUE(NearPoint(copy.GetDeformedVert(6), cpoint3(0, 1, 1))) << what;
    };
    cskin cloned, assigned;
    skin.Clone(0, cloned);
    EXPECT_STREQ(cloned.GetName(), "Hand");
    check(cloned, "clone");
    cskin copied(skin);
    EXPECT_STREQ(copied.GetName(), "Skin1") << "the node part is a new skin's";
    check(copied, "copy");
    assigned.AddBone(AddBoneNode("Other", cpoint3()));
    assigned = skin;
    check(assigned, "assignment");
    // Into a plain mesh only the mesh part goes.
    cmesh mesh;
    skin.Clone(0, mesh);
    EXPECT_EQ(mesh.NumFaces(), 12);
    EXPECT_EQ(mesh.GetSkinVertIndex(7), 0u);
}

}  // namespace
