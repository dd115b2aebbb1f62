#include "cskin.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "coreinterface.h"
#include "mesh/skinfixtures.h"

namespace {

using SkinBones = SkinTest;
using SkinDeform = SkinTest;

TEST_F(SkinBones, KeepAnOrderedListOfDistinctBonesAndUpToFourHeaviestWeights) {
    cskin skin;
    cnode* a = AddBoneNode("A", cpoint3(1, 2, 3));
    for (const char* name : {"B1", "B2", "B3", "B4"}) skin.AddBone(AddBoneNode(name, cpoint3()));
    // Refused: no node, the skin itself, a bone already held.
    const std::vector<int> added{skin.AddBone(nullptr), skin.AddBone(&skin), skin.AddBone(a),
                                 skin.AddBone(a), skin.FindBone(a)};
    EXPECT_EQ(added, (std::vector<int>{-1, -1, 4, -1, 4}));
    // The bind matrix is the inverse of the bone's world matrix when it was added.
    EXPECT_TRUE(Near(cpoint3(1, 2, 3) * skin.GetBoneBindTM(4), cpoint3(0, 0, 0), 1e-4f));
    // Four influences; a tie with the lightest keeps the older one, a heavier one replaces it;
    // changing a weight re-sorts; weight 0 removes. Refused: negative or non-finite weights,
    // bones or skin vertices out of range.
    const int sv = skin.AddSkinVert();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::tuple<int, int, float, int> calls[] = {
        {sv, 0, 0.1f, 1},  {sv, 1, 0.4f, 1}, {sv, 2, 0.3f, 1}, {sv, 3, 0.2f, 1},
        {sv, 4, 0.1f, 0},  {sv, 4, 0.5f, 1}, {sv, 3, 0.6f, 1}, {sv, 1, 0.0f, 1},
        {sv, 2, -1.0f, 0}, {sv, 2, nan, 0},  {sv, 5, 1.0f, 0}, {1, 0, 1.0f, 0}};
    for (const auto& [v, bone, weight, result] : calls)
        EXPECT_EQ(skin.SetInfluence(v, bone, weight), result) << v << " " << bone << " " << weight;
    skin.NormalizeWeights();
    EXPECT_TRUE(HasInfluences(skin, sv, {{3, 0.6f / 1.4f}, {4, 0.5f / 1.4f}, {2, 0.3f / 1.4f}}));
    // Removing a bone drops its influence, renormalises the rest and moves later bones down.
    EXPECT_EQ(skin.RemoveBone(3), 1);
    EXPECT_TRUE(HasInfluences(skin, sv, {{3, 0.625f}, {2, 0.375f}}));
    EXPECT_EQ(skin.GetBone(3), a);
}

// Root's segment runs from its origin to its child Tip's; Tip, childless, is a point. Each
// vertex is weighed by inverse distance to the nearest `maxBones` segments, or belongs wholly
// to a segment it lies on.
TEST_F(SkinBones, NearestBonesWeighByInverseDistanceToTheirSegments) {
    cnode* root = AddBoneNode("Root", cpoint3());
    cnode* tip = AddBoneNode("Tip", cpoint3(0, 2, 0));
    root->Attach(tip, 1);
    cskin skin;
    SetSkinPoints(skin, {{0, 1, 0}, {3, 0, 0}, {0, 5, 0}});
    skin.AddBone(root);
    skin.AddBone(tip);
    const float near = (1 / 3.0f) / (1 / 3.0f + 1 / std::sqrt(13.0f));
    EXPECT_EQ(skin.AssignNearestBones(4), 3);
    EXPECT_TRUE(HasInfluences(skin, 0, {{0, 1.0f}}));
    EXPECT_TRUE(HasInfluences(skin, 1, {{0, near}, {1, 1 - near}}));
    EXPECT_TRUE(HasInfluences(skin, 2, {{0, 0.5f}, {1, 0.5f}}));
    EXPECT_EQ(skin.AssignNearestBones(1), 3);
    EXPECT_TRUE(HasInfluences(skin, 1, {{0, 1.0f}}));
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
    for (int v = 0; v < 7; ++v) EXPECT_TRUE(Near(skin.GetDeformedVert(v), posed[v], 1e-4f)) << v;
    // The rest positions are untouched, and a bind in the new pose makes it the rest pose.
    skin.Bind();
    EXPECT_TRUE(Near(skin.GetDeformedVert(2), cpoint3(1, 1, 1), 1e-4f));
}

// A bone deleted from the scene is dropped with its influences; a replacement takes the bone's
// place and bind matrix.
TEST_F(SkinDeform, DropsDeletedBonesAndFollowsReplacedOnes) {
    cskin* skin = CreateNewSkin();
    SetSkinPoints(*skin, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
    MainScene.AddNode(skin, 1);
    cnode* doomed = AddBoneNode("Doomed", cpoint3(0, 0, 0));
    cnode* kept = AddBoneNode("Kept", cpoint3(0, 0, 0));
    cnode* stand = AddBoneNode("Stand", cpoint3(0, 3, 0));
    skin->AddBone(doomed);
    skin->AddBone(kept);
    Weigh(*skin, 0, {{0, 1.0f}});
    Weigh(*skin, 1, {{0, 0.25f}, {1, 0.75f}});
    void (*const savedInform)(cnode*) = Application_InformDeleted;
    Application_InformDeleted = [](cnode*) {};
    MainScene.DeleteNodeForGood(doomed);
    Application_InformDeleted = savedInform;
    EXPECT_EQ(BonesOf(*skin), (std::vector<cnode*>{kept}));
    EXPECT_TRUE(HasInfluences(*skin, 0, {}));
    EXPECT_TRUE(HasInfluences(*skin, 1, {{0, 1.0f}}));
    EXPECT_EQ(skin->HandleMessage(MSG_NODE_REPLACED, kept, stand), 1);
    skin->Deform();
    EXPECT_TRUE(Near(skin->GetDeformedVert(1), cpoint3(0, 4, 0), 1e-4f));
}

}  // namespace
