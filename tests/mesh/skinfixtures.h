// Skins and bones for the skin tests: a scene and clock reset around each test, bones placed in
// MainScene, and a point comparison.
#ifndef ORVANE_TESTS_MESH_SKINFIXTURES_H
#define ORVANE_TESTS_MESH_SKINFIXTURES_H

#include <gtest/gtest.h>

#include <cmath>
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

inline ::testing::AssertionResult NearPoint(const cpoint3& a, const cpoint3& b, float eps = 1e-4f) {
    if (std::fabs(a.x - b.x) <= eps && std::fabs(a.y - b.y) <= eps && std::fabs(a.z - b.z) <= eps)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "(" << a.x << ", " << a.y << ", " << a.z << ") vs ("
                                         << b.x << ", " << b.y << ", " << b.z << ")";
}

#endif
