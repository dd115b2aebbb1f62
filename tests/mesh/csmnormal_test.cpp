#include <gtest/gtest.h>

#include <cstdint>
#include <tuple>
#include <vector>

#include "cmesh.h"

static std::vector<std::uint32_t> Masks(const csmnormal& sm) {
    std::vector<std::uint32_t> masks;
    for (const csmgroup* g = sm.GetHead(); g; g = g->next) masks.push_back(g->mask);
    return masks;
}

// New nodes are pushed at the head and report the node count minus one. Intended: mask 3
// bridges the nodes of 2 and 1 and the newer (position 1) takes it alone; mask 0 never matches,
// so it always makes a node of its own.
TEST(MeshSmNormal, MatchesTheNewestNodeSharingABitAndNeverMergesNodes) {
    csmnormal sm, copy;
    const std::vector<int> positions = {
        sm.AddNormal(cpoint3(1, 0, 0), 1), sm.AddNormal(cpoint3(0, 1, 0), 2),
        sm.AddNormal(cpoint3(0, 0, 1), 8), sm.AddNormal(cpoint3(0, 3, 0), 3),
        sm.AddNormal(cpoint3(1, 0, 0), 0), sm.AddNormal(cpoint3(1, 0, 0), 0)};
    EXPECT_EQ(positions, (std::vector<int>{0, 1, 2, 1, 3, 4}));
    EXPECT_EQ((std::vector<int>{sm.FindSM(0), sm.FindSM(1), sm.FindSM(8), sm.FindSM(4)}),
              (std::vector<int>{-1, 3, 2, -1}));
    // The bridged node averages (0, 1, 0) and (0, 3, 0); copies are deep and keep the order.
    sm.Normalize();
    copy.AddNormal(cpoint3(1, 0, 0), 16);
    CopySMnormal(copy, sm);
    sm.Clear();
    EXPECT_EQ(Masks(copy), (std::vector<std::uint32_t>{0, 0, 8, 3, 1}));
    cpoint3 n;
    EXPECT_EQ(std::tuple(copy.GetNormal(n, 2), copy.GetHead()->next->next->next->count),
              std::tuple(1, 2));
    EXPECT_EQ(std::tuple(n.x, n.y, n.z), std::tuple(0.0f, 1.0f, 0.0f));
}
