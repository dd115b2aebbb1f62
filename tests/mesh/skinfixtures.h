// Skins and bones for the skin tests: a scene and clock reset around each test, bones placed in
// MainScene, and comparisons of points, bone lists and influences.
#ifndef ORVANE_TESTS_MESH_SKINFIXTURES_H
#define ORVANE_TESTS_MESH_SKINFIXTURES_H

#include <gtest/gtest.h>

#include "cscene.h"
#include "cskin.h"
#include "mesh/meshfixtures.h"
#include "support/animclockfixture.h"

// MainScene empty and the clock at time 0 with animation off, before and after each test.
class SkinTest : public AnimClockTest {
protected:
    void SetUp() override {
        MainScene.Clear();
        AnimClockTest::SetUp();
    }
    void TearDown() override {
        MainScene.Clear();
        AnimClockTest::TearDown();
    }

    // A plain node named `name` at world position `at`, added to MainScene.
    static cnode* AddBoneNode(const char* name, const cpoint3& at) {
        auto* bone = new cnode(name, ccolor(0.5f, 0.5f, 0.5f, 1.0f));
        bone->SetPosition(GetAnimTime(), at);
        MainScene.AddNode(bone, 1);
        return bone;
    }
};

// Fills `skin` with the given vertices and one triangle over the first three.
inline void SetSkinPoints(cskin& skin, const std::vector<cpoint3>& points) {
    ASSERT_TRUE(BuildMesh(skin, points, {0, 1, 2}));
}

// Gives mesh vertex `vertex` a new skin vertex with the given (bone, weight) influences.
inline int Weigh(cskin& skin, int vertex, std::initializer_list<std::pair<int, float>> weights) {
    const int sv = skin.AddSkinVert();
    for (const auto& w : weights) EXPECT_EQ(skin.SetInfluence(sv, w.first, w.second), 1);
    skin.SetSkinVertIndex(vertex, static_cast<std::uint32_t>(sv));
    return sv;
}

// The skin's bones in order.
inline std::vector<cnode*> BonesOf(const cskin& skin) {
    std::vector<cnode*> bones;
    for (int i = 0; i < skin.NumBones(); ++i) bones.push_back(skin.GetBone(i));
    return bones;
}

// Whether skin vertex `sv` holds exactly the given (bone, weight) influences in this order,
// the weights to four units in the last place.
inline ::testing::AssertionResult HasInfluences(
    const cskin& skin, int sv, std::initializer_list<std::pair<int, float>> expected) {
    int bones[4] = {};
    float weights[4] = {};
    const int count = skin.GetInfluences(sv, bones, weights);
    using Float = ::testing::internal::FloatingPoint<float>;
    bool same = count == static_cast<int>(expected.size());
    for (int i = 0; same && i < count; ++i)
        same = bones[i] == expected.begin()[i].first &&
               Float(weights[i]).AlmostEquals(Float(expected.begin()[i].second));
    auto result = same ? ::testing::AssertionSuccess() : ::testing::AssertionFailure();
    for (int i = 0; i < count; ++i) result << " (" << bones[i] << ", " << weights[i] << ")";
    return result;
}

#endif
