// Skins and bones for the skin tests: a scene and clock reset around each test, bones placed in
// MainScene, and comparisons of points, bone lists and influences.
#ifndef ORVANE_TESTS_MESH_SKINFIXTURES_H
#define ORVANE_TESTS_MESH_SKINFIXTURES_H

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <utility>
#include <vector>

#include "ccolor.h"
#include "cpoint.h"
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
    std::vector<int> indices = {0, 1, 2};
    ASSERT_TRUE(BuildMesh(skin, points, indices));
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

// Whether skin vertex `sv` holds exactly the given (bone, weight) influences in this order;
// weights agree to within `eps`, or to four units in the last place when `eps` is 0.
inline ::testing::AssertionResult HasInfluences(
    const cskin& skin, int sv, std::initializer_list<std::pair<int, float>> expected,
    float eps = 0.0f) {
    int bones[4] = {};
    float weights[4] = {};
    const int count = skin.GetInfluences(sv, bones, weights);
    using Float = ::testing::internal::FloatingPoint<float>;
    bool same = count == static_cast<int>(expected.size());
    for (int i = 0; same && i < count; ++i) {
        const auto [bone, weight] = expected.begin()[i];
        same = bones[i] == bone && (eps > 0.0f ? std::fabs(weights[i] - weight) <= eps
                                               : Float(weights[i]).AlmostEquals(Float(weight)));
    }
    auto result = same ? ::testing::AssertionSuccess() : ::testing::AssertionFailure();
    result << "skin vertex " << sv << " holds";
    for (int i = 0; i < count; ++i) result << " (" << bones[i] << ", " << weights[i] << ")";
    return result;
}

// Points compared with the looser tolerance of a chain of bone matrices.
inline ::testing::AssertionResult NearPoint(const cpoint3& a, const cpoint3& b) {
    return Near(a, b, 1e-4f);
}

#endif
