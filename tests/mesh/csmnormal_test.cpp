#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "cmesh.h"

namespace {

std::vector<std::uint32_t> Masks(const csmnormal& sm) {
    std::vector<std::uint32_t> masks;
    for (const csmgroup* g = sm.GetHead(); g; g = g->next) masks.push_back(g->mask);
    return masks;
}

}  // namespace

TEST(MeshSmNormal, MatchesTheNewestNodeSharingABitAndNeverMergesNodes) {
    csmnormal sm;
    // New nodes are pushed at the head and report the node count minus one.
    EXPECT_EQ(sm.AddNormal(cpoint3(1, 0, 0), 1), 0);
    EXPECT_EQ(sm.AddNormal(cpoint3(0, 1, 0), 2), 1);
    EXPECT_EQ(sm.AddNormal(cpoint3(0, 0, 1), 8), 2);
    EXPECT_EQ(Masks(sm), (std::vector<std::uint32_t>{8, 2, 1}));
    // Mask 3 bridges the nodes of 2 and 1: the newer (position 1) takes it alone.
    EXPECT_EQ(sm.AddNormal(cpoint3(0, 3, 0), 3), 1);
    EXPECT_EQ(Masks(sm), (std::vector<std::uint32_t>{8, 3, 1}));
    EXPECT_EQ(sm.NumGroups(), 3);
    // Mask 0 never matches, so it always makes a node of its own.
    EXPECT_EQ(sm.AddNormal(cpoint3(1, 0, 0), 0), 3);
    EXPECT_EQ(sm.AddNormal(cpoint3(1, 0, 0), 0), 4);
    EXPECT_EQ(sm.FindSM(0), -1);
    EXPECT_EQ(sm.FindSM(1), 3);
    EXPECT_EQ(sm.FindSM(8), 2);
    EXPECT_EQ(sm.FindSM(4), -1);
}

TEST(MeshSmNormal, NormalizesTheAverageAndCopiesDeeply) {
    csmnormal sm;
    sm.AddNormal(cpoint3(2, 0, 0), 1);
    sm.AddNormal(cpoint3(0, 2, 0), 1);
    sm.Normalize();
    cpoint3 n;
    ASSERT_EQ(sm.GetNormal(n, 1), 1);
    EXPECT_NEAR(n.x, 0.70710678f, 1e-6f);
    EXPECT_NEAR(n.y, 0.70710678f, 1e-6f);
    EXPECT_EQ(sm.GetNormal(n, 2), 0);
    csmnormal copy;
    CopySMnormal(copy, sm);
    sm.Clear();
    EXPECT_EQ(sm.NumGroups(), 0);
    EXPECT_EQ(sm.GetHead(), nullptr);
    ASSERT_EQ(copy.NumGroups(), 1);
    ASSERT_EQ(copy.GetNormal(n, 1), 1);
    EXPECT_NEAR(n.x, 0.70710678f, 1e-6f);
    EXPECT_EQ(copy.GetHead()->count, 2);
    // Assignment keeps the order of the source list.
    csmnormal three;
    three.AddNormal(cpoint3(1, 0, 0), 1);
    three.AddNormal(cpoint3(1, 0, 0), 2);
    three.AddNormal(cpoint3(1, 0, 0), 4);
    csmnormal assigned;
    assigned.AddNormal(cpoint3(1, 0, 0), 16);
    assigned = three;
    EXPECT_EQ(Masks(assigned), (std::vector<std::uint32_t>{4, 2, 1}));
}

// Rebuilding reuses the nodes and still gives the list a fresh build would.
TEST(MeshSmNormal, RecycledListsRebuildLikeNewOnes) {
    csmnormal sm;
    sm.AddNormal(cpoint3(1, 0, 0), 1);
    sm.AddNormal(cpoint3(0, 1, 0), 2);
    const csmgroup* oldNodes[] = {sm.GetHead(), sm.GetHead()->next};
    sm.Recycle();
    EXPECT_EQ(sm.NumGroups(), 0);
    EXPECT_EQ(sm.GetHead(), nullptr);
    cpoint3 n;
    EXPECT_EQ(sm.GetNormal(n, 3), 0);
    EXPECT_EQ(sm.AddNormal(cpoint3(0, 0, 2), 4), 0);
    EXPECT_TRUE(sm.GetHead() == oldNodes[0] || sm.GetHead() == oldNodes[1])
        << "a recycled node is taken first";
    EXPECT_EQ(sm.AddNormal(cpoint3(0, 0, 2), 4), 0);
    EXPECT_EQ(sm.AddNormal(cpoint3(3, 0, 0), 8), 1);
    EXPECT_EQ(sm.AddNormal(cpoint3(0, 5, 0), 16), 2);  // beyond the recycled nodes
    EXPECT_EQ(Masks(sm), (std::vector<std::uint32_t>{16, 8, 4}));
    sm.Normalize();
    ASSERT_EQ(sm.GetNormal(n, 4), 1);
    EXPECT_FLOAT_EQ(n.z, 1.0f);
    EXPECT_EQ(sm.GetHead()->next->next->count, 2);
    sm.Clear();  // frees the list and the spare nodes (the leak checker watches)
    EXPECT_EQ(sm.NumGroups(), 0);
}
